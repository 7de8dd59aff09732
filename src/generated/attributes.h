#pragma once

#include <memory>

#include "quillon9/descriptors/attribute_info.h"
#include "quillon9/generated/rows.h"

namespace Quillon9 {

/// Make the descriptor of an attribute row.
std::unique_ptr<Quillon9Data::CAttributeInfo> MakeAttribute(CAttributeRow const& row);

}  // namespace Quillon9
