#pragma once

#include <cstdint>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {

/// What everything that nests elements says of one too many.
[[noreturn]] inline void ThrowNestedTooDeep(std::uint32_t limit) {
  throw CQnException(FormatString("The element nesting exceeds the limit of %u levels", limit));
}

}  // namespace Quillon9
