#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/base/failures.h"
#include "records/text_window.h"

namespace Quillon9 {

/// Places in a document that is never there as a whole.
namespace RecordPlace {

CFailurePlace At(TextPosition const& at, std::string path);

/// Give \p failure, which was made just now, this place.
void Set(CQnException& failure, CFailurePlace place);

/// Give the place of \p failure, if it has one, this path.
void SetPath(CQnException& failure, std::string path);

/// The failure with this place, for throw statements.
template <class Exception>
Exception Noted(CFailurePlace place, Exception failure) {
  Set(failure, std::move(place));
  return failure;
}

/// Fail because the record at \p place has more than \p limit bytes.
/// \throws CQnException "The record exceeds the limit of %zu bytes", always.
[[noreturn]] void ThrowTooLarge(std::size_t limit, CFailurePlace place);

/// Fail because no read can begin at a record.
/// \throws CQnInvalidStateException "A read can begin in the middle of uncompressed text in UTF-8 only", always.
[[noreturn]] void ThrowNotResumable();

}  // namespace RecordPlace

}  // namespace Quillon9
