#pragma once

#include "descriptors/failed_scans.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {

/// What \p member is when a group tries it. A member of a class that a program derived is Kind::kOther, since it may do
/// anything.
Quillon9::FailedScans::Kind KindOf(CElementInfo const& member);

}  // namespace Quillon9Data
