#include "xmlio/fast_reader_mode.h"

#include <cstdlib>
#include <string_view>

#include "base/fast_paths.h"
#include "quillon9/base/limits.h"

namespace Quillon9 {

namespace {

FastReaderMode ModeOfEnvironment() {
  char const* const value = ::secure_getenv("QUILLON9_FAST_READER");
  std::string_view const mode = value != nullptr ? value : "";
  if (mode == "off") return FastReaderMode::kOff;
  return mode == "compare" || kChecksCaches ? FastReaderMode::kCompared : FastReaderMode::kOn;
}

}  // namespace

FastReaderMode CurrentFastReaderMode() {
  static FastReaderMode const mode = ModeOfEnvironment();
  return kFastReader.IsOn() && CLimits::GetUseFastReader() ? mode : FastReaderMode::kOff;
}

}  // namespace Quillon9
