#pragma once

#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/element.h"
#include "xmlio/node_access.h"

namespace Quillon9Data {

// Inline: runs for almost every element.
inline bool CElementInfo::IsKnown(CXmlElement const* element) const {
  return element != nullptr && Quillon9::XmlNodeAccess::NameOf(*element).member == m_number;
}

}  // namespace Quillon9Data
