// Tables, options and documents of generated classes, made from the input: the library must read like the model.

#include <cstddef>
#include <cstdint>

#include "reading_case.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  std::uint8_t const* const end = data + size;
  Reading::Case const tried = Reading::MakeCase([&](unsigned below) { return data != end ? *data++ % below : 0; });
  Reading::RunCase(tried);
  Reading::RunWithSinks(tried);
  return 0;
}
