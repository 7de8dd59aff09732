#include <clocale>
#include <cstddef>
#include <cstdint>
#include <string>

#include "both_readers.h"
#include "fuzzing.h"
#include "quillon9/base/limits.h"
#include "quillon9/binding/serialization_context.h"

namespace {

using namespace Quillon9;

enum Options : unsigned { kKeepCdata = 1, kAscii = 2, kSmall = 4, kFlat = 8, kNoType = 16, kKeepMarkup = 32 };

/// For a time, the locale in which only ASCII can be kept.
class AsciiLocale {
 public:
  explicit AsciiLocale(bool isUsed) : m_isUsed(isUsed) {
    if (m_isUsed) std::setlocale(LC_CTYPE, "C");
  }
  ~AsciiLocale() {
    if (m_isUsed) std::setlocale(LC_CTYPE, "C.UTF-8");
  }
  AsciiLocale(AsciiLocale const&) = delete;
  AsciiLocale& operator=(AsciiLocale const&) = delete;

 private:
  bool m_isUsed;
};

}  // namespace

/// The fast reader reads what the parser reads, or leaves it to the parser and leaves nothing behind.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::Input input(data, size);
  unsigned const options = input.Options();
  Fuzzing::LimitContent((options & kSmall) != 0 ? 1500 : 1u << 20);
  CLimits::SetMaxElementDepth((options & kFlat) != 0 ? 3 : 1000);
  CLimits::SetAllowDocumentType((options & kNoType) == 0);
  CXmlSerializationContext context;
  context.SetStripCDATA((options & kKeepCdata) == 0);
  context.SetKeepUnknown((options & kKeepMarkup) != 0);
  AsciiLocale const locale((options & kAscii) != 0);
  Testing::BothReaders const result = Testing::ReadByBoth(input.Rest(), context);
  Fuzzing::RequireEqual(result.difference, "", "both readers read the same");
  return 0;
}
