#pragma once

#include <string_view>

#include "base/text_copy.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// CXmlObjectHelper::DoesElementNameMatch() for names held as string_view.
inline bool IsElementNamed(CXmlSerializationContext const& ctx, CXmlElement const* element, std::string_view name,
                           std::string_view ns) {
  if (element == nullptr || !IsSameText(element->GetLocalName(), name)) return false;
  return ctx.GetIgnoreNamespaces() || IsSameText(element->GetNamespaceURI(), ns);
}

}  // namespace Quillon9
