#pragma once

#include <string_view>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// The attribute xsi:type of \p element; null if it has none.
CXmlAttribute const* FindTypeAttribute(CXmlElement const& element);

/// Whether \p element has children and no text but the white space between them. That comes from the layout of the
/// document, and a writer that makes a layout of its own would add to it each time.
bool HasOnlyLayout(CXmlElement const& element);

/// Read the element under \p cursor, a child of \p parent, into a new generic one, without the white space that belongs
/// to the layout, and move the cursor. Mixed content keeps where its text stands.
CSmartPtr<CElement> TakeGeneric(CXmlElement* parent, CXmlElement** cursor, CXmlSerializationContext const& ctx);
/// The same for the document element.
CSmartPtr<CElement> CopyGeneric(CXmlElement const& root);

/// Give \p attributes, which are of \p element or of a copy of it, the prefixes that seem to stand in the values of its
/// attributes and in its text, with their namespaces.
void NotePrefixes(CXmlElement const& element, CAttributeCol& attributes);
/// The same for the prefixes in \p value, which stands in \p element.
void NotePrefixes(CXmlElement const& element, std::string_view value, CAttributeCol& attributes);

}  // namespace Quillon9
