#pragma once

#include <cstdint>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

/// Throws the failure that all code which nests elements reports for one level too many.
[[noreturn]] inline void ThrowNestedTooDeep(std::uint32_t limit) {
  throw OfKind(FailureKind_Limit,
               CQnException(FormatString("The element nesting exceeds the limit of %u levels", limit)));
}

}  // namespace Quillon9
