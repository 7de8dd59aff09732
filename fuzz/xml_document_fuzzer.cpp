#include <cstddef>
#include <cstdint>

#include "quillon9/binding/exceptions.h"
#include "quillon9/xmlio/document.h"

/// Bytes of any kind, compressed ones among them, give a tree or a failure, and nothing else.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Quillon9::CXmlDocument document;
  try {
    document.LoadXmlStream(data, size);
  } catch (Quillon9::CQnException const&) {
  }
  return 0;
}
