#include "records/tree_writing.h"

#include <string_view>
#include <vector>

#include "base/nesting_guard.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/schema_values.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/content_writing.h"
#include "xmlio/node_access.h"
#include "xmlio/reserved_namespaces.h"

namespace Quillon9 {

namespace {

bool IsName(std::string const& name) {
  if (CEncoder::IsUtf8SameInLocalCodePage(name.data(), name.size())) {
    return CSchemaValues::HasForm(name, SchemaForm::NCName);
  }
  CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(name.c_str());
  return CSchemaValues::HasForm({reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength()}, SchemaForm::NCName);
}

}  // namespace

void TreeWriting::RequireName(std::string const& name) {
  if (!IsName(name)) {
    throw CQnInvalidParamException(FormatString("The name [%s] is not a name in XML", name.c_str()));
  }
}

void TreeWriting::RequireElementName(std::string const& localName, std::string const& namespaceUri,
                                     bool hasDefaultNamespace) {
  RequireName(localName);
  if (namespaceUri == kDeclarationsNamespace) {
    throw CQnInvalidParamException(
        FormatString("The element [%s] is in the namespace of declarations", localName.c_str()));
  }
  if (!hasDefaultNamespace || !namespaceUri.empty()) return;
  throw CQnInvalidParamException(
      FormatString("The element [%s] has no namespace, which cannot be written where there is a default namespace",
                   localName.c_str()));
}

void TreeWriting::RequireAttributeName(std::string const& localName, std::string const& namespaceUri) {
  RequireName(localName);
  if (namespaceUri == kDeclarationsNamespace || (namespaceUri.empty() && localName == "xmlns")) {
    throw CQnInvalidParamException(FormatString("The attribute [%s] would declare a namespace", localName.c_str()));
  }
}

void TreeWriting::SetDefaultNamespace(std::string const& uri) {
  m_writer.SetDefaultNamespace(uri);
  m_hasDefaultNamespace = m_isText && !uri.empty();
}

void TreeWriting::Start(std::string const& localName, std::string const& namespaceUri) {
  RequireElementName(localName, namespaceUri, m_hasDefaultNamespace);
  m_writer.WriteStartElement(localName, namespaceUri);
}

void TreeWriting::WriteAttribute(std::string const& localName, std::string const& namespaceUri,
                                 std::string const& value, ItemType type) {
  RequireAttributeName(localName, namespaceUri);
  m_writer.WriteAttributeString(localName, namespaceUri, value, type);
}

// The prefixes that stand for something else here are left out: nothing that is certain needs them.
void TreeWriting::DeclarePrefixesOf(CXmlDocument const& document) {
  for (auto const& [prefix, uri] : XmlNodeAccess::PrefixesOf(document)) {
    if (!uri.empty()) m_writer.DeclarePrefix(prefix, uri);
  }
}

void TreeWriting::Write(CXmlElement const& element, bool keepsPrefixes) {
  NestingGuard const guard(true);
  CXmlDocument const* const document = keepsPrefixes ? element.GetDocument() : nullptr;
  bool const hasOnlyText = element.GetFirstAttribute() == nullptr && element.GetFirstElement() == nullptr;
  std::string const& uri = element.GetNamespaceURI();
  if (hasOnlyText && document == nullptr && XmlNodeAccess::MarkupIn(element).empty()) {
    RequireElementName(element.GetLocalName(), uri, m_hasDefaultNamespace);
    return m_writer.WriteTextElement(element.GetLocalName(), uri, element.GetTextView(), ItemType_string);
  }
  Start(element.GetLocalName(), uri);
  if (document != nullptr) DeclarePrefixesOf(*document);
  for (CXmlAttribute const& attribute : element.Attributes()) {
    m_value = attribute.GetValueView();
    WriteAttribute(attribute.GetLocalName(), attribute.GetNamespaceURI(), m_value, ItemType_string);
  }
  WriteContentOf(element);
  m_writer.WriteEndElement();
}

void TreeWriting::WriteContentOf(CXmlElement const& element) {
  std::vector<CMarkup> const markup = XmlNodeAccess::MarkupIn(element);
  bool const isMixed = element.IsMixed();
  bool const hasChildren = element.GetFirstElement() != nullptr;
  if (isMixed || !markup.empty()) {
    if (isMixed || (!hasChildren && !element.GetTextView().empty())) m_writer.PreserveSpace();
    WriteContentItems(m_writer, element.Content(), markup, [this](CXmlElement const& child) { Write(child, false); });
  } else if (hasChildren) {
    for (CXmlElement const& child : element.Children()) Write(child, false);
  } else {
    m_value = element.GetTextView();
    m_writer.WriteString(m_value, ItemType_string);
  }
}

}  // namespace Quillon9
