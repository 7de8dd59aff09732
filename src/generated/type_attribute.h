#pragma once

#include "quillon9/fwd.h"

namespace Quillon9 {

/// The attribute xsi:type of \p element; null if it has none.
CXmlAttribute const* FindTypeAttribute(CXmlElement const& element);

}  // namespace Quillon9
