#pragma once

#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/element.h"

namespace Quillon9Data {

// Inline: runs for almost every element.
inline bool CElementInfo::IsKnown(CXmlElement const* element) const {
  return element != nullptr && element->GetNames().member == m_number;
}

}  // namespace Quillon9Data
