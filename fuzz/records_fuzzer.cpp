#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

#include "fuzzing.h"
#include "quillon9/base/limits.h"
#include "record_comparison.h"

namespace {

using namespace Quillon9;

/// A failure of a document that a read of records has for reasons of its own.
bool IsOfRecords(std::string const& failure) {
  return failure.find("elements in an entity") != std::string::npos || failure.find("limit") != std::string::npos;
}

/// Whether a path can say \p name, which has its namespace in braces. Names in Fast Infoset can have any characters.
bool CanBeSaid(std::string const& name) {
  std::size_t const end = name.rfind('}');
  return end + 1 < name.size() && name.find('}') == end && name.find_first_of("/*{", end) == std::string::npos;
}

}  // namespace

/// The elements of a name, read as records from an input in pieces, are those of a whole read; a document that a whole
/// read refuses is refused.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::Input input(data, size);
  std::size_t const piece = input.Options() + 1;
  std::size_t const batch = std::size_t{1} << input.Options() % 16;
  std::string const octets = input.Rest();
  Fuzzing::LimitContent(1u << 20);
  CXmlSerializationContext const context = Testing::Utf8Context();
  CXmlDocument whole(context);
  try {
    whole.LoadXmlStream(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
  } catch (CQnException const& failure) {
    if (failure.GetKind() == FailureKind_Limit) return 0;
    Fuzzing::Require(!Testing::ReadAsRecords(octets, "{}none", piece, batch).failure.empty(), "a failure is found");
    Fuzzing::Require(!Testing::ReadAsRecords(octets, "*", piece, batch).failure.empty(),
                     "a failure of a record is found");
    return 0;
  }
  std::set<std::string> names;
  Testing::CollectNames(*whole.GetDocumentElement(), names);
  std::size_t left = 8;
  for (auto name = names.begin(); name != names.end() && left-- > 0; ++name) {
    if (!CanBeSaid(*name)) continue;
    std::string const difference = Testing::DifferenceOfRecords(whole, octets, *name, piece, batch);
    if (!IsOfRecords(difference)) Fuzzing::RequireEqual(difference, "", "records are the elements of a whole read");
  }
  return 0;
}
