// The operations of CXmlDocument that need its context, which also holds options of objects and of Fast Infoset.

#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

CXmlDocument::CXmlDocument() : CXmlDocument(nullptr, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilter filter) : CXmlDocument(filter, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(CXmlSerializationContext const& context) : CXmlDocument(nullptr, context) {}

CXmlDocument::CXmlDocument(ElementFilter filter, CXmlSerializationContext const& context)
    : m_schemaType(context.GetSchemaType()), m_filter(filter), m_context(context) {}

bool CXmlDocument::StripsCDATA() const { return m_context.GetStripCDATA(); }

// A filter may remove the elements by which the place of a comment is known.
bool XmlNodeAccess::KeepsMarkup(CXmlDocument const& document) {
  return document.m_context.GetKeepUnknown() && document.m_filter == nullptr;
}

}  // namespace Quillon9
