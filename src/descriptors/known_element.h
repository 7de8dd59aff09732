#pragma once

#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/element.h"

namespace Quillon9Data {

// Here since it is asked of nearly all elements: a percent of reading.
inline bool CElementInfo::IsKnown(CXmlElement const* element) const {
  return element != nullptr && element->GetNames().member == m_number;
}

}  // namespace Quillon9Data
