#pragma once

#include <string>
#include <vector>

#include "quillon9/base/exceptions.h"
#include "quillon9/base/failures.h"
#include "records/record_path.h"
#include "records/text_window.h"

namespace Quillon9 {

/// Places in a document that is never there as a whole.
namespace RecordPlace {

/// `/orders/order`.
std::string PathOf(std::vector<ElementName> const& open);

CFailurePlace At(TextPosition const& at, std::string path);

/// Give \p failure, which was made just now, this place.
void Set(CQnException& failure, CFailurePlace place);

}  // namespace RecordPlace

}  // namespace Quillon9
