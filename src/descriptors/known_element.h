#pragma once

#include "base/fast_paths.h"
#include "base/text_copy.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/element.h"
#include "xmlio/node_access.h"

namespace Quillon9Data {

// The member known by a name: documents repeat themselves, so the two names that the elements of a document share hold
// the number of the member that last took an element with them. Both are inline, because IsKnown() runs for almost
// every element.

inline bool CElementInfo::IsKnown(CXmlElement const* element) const {
  if constexpr (!Quillon9::kKnownMember.IsOn()) return false;
  if (element == nullptr || Quillon9::XmlNodeAccess::NameOf(*element).member != m_number) return false;
  Quillon9::kKnownMember.Verify([&] {
    Quillon9::TreeName const& name = Quillon9::XmlNodeAccess::NameOf(*element);
    return name.localName == m_elementName && name.namespaceUri == m_namespace;
  });
  return true;
}

/// Let IsKnown() recognise elements with \p name, which are those of the member with this number.
inline void RememberMember(Quillon9::TreeName const& name, std::uint64_t number) {
  if (name.memory != nullptr) name.member = number;  // the name of a standalone element may change
}

}  // namespace Quillon9Data
