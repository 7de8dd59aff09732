#pragma once

#include <string>

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

}  // namespace RecordPlace

}  // namespace Quillon9
