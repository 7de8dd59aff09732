#include <utility>

#include "base/failure_detail.h"
#include "base/text_arguments.h"
#include "binding/failure_report.h"
#include "descriptors/generic_size.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

namespace {

std::string FirstToken(std::string const& list) { return list.substr(0, list.find(' ')); }

/// The default namespace of a collection of attributes: \p ns, or the URI that \p restriction begins with.
std::string DefaultNamespace(std::string ns, std::string const& restriction) {
  if (!ns.empty()) return ns;
  std::string token = FirstToken(restriction);
  bool const isUri = token.size() > 1 && token[0] != '#' && token[1] != '#';
  return isUri ? token : ns;
}

/// \p name with a prefix that has its meaning in the element that was started last.
std::string WithValidPrefix(std::string const& name, std::map<std::string, std::string> const& prefixes,
                            CXmlWriter& writer) {
  std::string const text = CWhitespaceUtils::Collapse(name);
  std::size_t const colon = text.find(':');
  std::string const prefix = colon != std::string::npos ? text.substr(0, colon) : std::string();
  auto const known = prefixes.find(prefix);
  if (known == prefixes.end()) return name;
  if (!prefix.empty() && writer.DeclarePrefix(prefix, known->second)) return name;
  return writer.PrefixForValues(known->second, prefix) + ':' + (prefix.empty() ? text : text.substr(colon + 1));
}

}  // namespace

// ---- CAttribute

CAttribute::CAttribute(char const* name, char const* value, char const* ns)
    : m_name(OrEmpty(name)), m_value(OrEmpty(value)), m_namespace(OrEmpty(ns)) {}

CAttribute::~CAttribute() = default;

CSmartPtr<CAttribute> CAttribute::Clone() const {
  return new CAttribute(m_name.c_str(), m_value.c_str(), m_namespace.c_str());
}

void CAttribute::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const&, bool) const {
  writer->WriteAttributeString(m_name, m_namespace, m_value, ItemType_string);
}

CXmlElement* CAttribute::FromXml_Int(CXmlElement*, CXmlElement*, CXmlSerializationContext const&, bool) {
  throw CQnException("This should be done by the collection");
}

// ---- CAttributeCol

CAttributeCol::CAttributeCol(char const* ns, char const* restriction, char const* targetNamespace)
    : CXmlCollection("", DefaultNamespace(OrEmpty(ns), OrEmpty(restriction)).c_str(), 0, -1),
      m_namespaceRestriction(OrEmpty(restriction)),
      m_targetNamespace(OrEmpty(targetNamespace)) {}

CAttributeCol::~CAttributeCol() = default;

CSmartPtr<CAttributeCol> CAttributeCol::Clone() const {
  CSmartPtr<CAttributeCol> copy(
      new CAttributeCol(GetNamespace().c_str(), m_namespaceRestriction.c_str(), m_targetNamespace.c_str()));
  for (CAttribute const& attribute : *this) copy->Add(attribute.Clone().Get());
  if (m_prefixes != nullptr) copy->m_prefixes = std::make_unique<std::map<std::string, std::string>>(*m_prefixes);
  return copy;
}

CSmartPtr<CAttribute> CAttributeCol::Add(CAttribute* attribute) {
  CSmartPtr<CAttribute> held(attribute);
  if (!held) throw CQnInvalidParamException("The attribute to add may not be NULL");
  AppendItem(attribute);
  return held;
}

CSmartPtr<CAttribute> CAttributeCol::Add(char const* name) { return Add(name, ""); }

CSmartPtr<CAttribute> CAttributeCol::Add(char const* name, char const* value) {
  std::string const ns = GetNamespace();
  // The check does not find a URI in a list of several; but if the collection has it from that list, it is admitted.
  if (!ns.empty() && ns == FirstToken(m_namespaceRestriction)) return Add(new CAttribute(name, value, ns.c_str()));
  return Add(name, value, ns.c_str());
}

CSmartPtr<CAttribute> CAttributeCol::Add(char const* name, char const* value, char const* ns) {
  CXmlObjectHelper::TestNamespace(OrEmpty(ns), m_namespaceRestriction, m_targetNamespace);
  return Add(new CAttribute(name, value, ns));
}

CSmartPtr<CAttribute> CAttributeCol::Item(int index) const {
  if (index < 0 || index >= GetCount()) return nullptr;
  return static_cast<CAttribute*>(GetNodeAtIndex(index)->m_item.Get());
}

CSmartPtr<CAttribute> CAttributeCol::Find(char const* name, char const* ns) const {
  std::string const wanted = OrEmpty(name);
  for (CAttribute& attribute : *this) {
    if (attribute.GetName() == wanted && (ns == nullptr || attribute.GetNamespace() == ns)) return &attribute;
  }
  return nullptr;
}

void CAttributeCol::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                              bool) const {
  if (m_prefixes != nullptr) WritePrefixes(*writer);
  for (CAttribute const& attribute : *this) {
    bool const isType = m_prefixes != nullptr && attribute.GetName() == "type" &&
                        attribute.GetNamespace() == "http://www.w3.org/2001/XMLSchema-instance";
    if (isType) {
      writer->WriteAttributeString(attribute.GetName(), attribute.GetNamespace(),
                                   WithValidPrefix(attribute.GetValue(), *m_prefixes, *writer), ItemType_string);
    } else {
      CXmlObjectBase::ToXml_Int(&attribute, writer, false, ns, ctx, false);
    }
  }
}

void CAttributeCol::SetPrefix(std::string const& prefix, std::string ns) {
  if (m_prefixes == nullptr) m_prefixes = std::make_unique<std::map<std::string, std::string>>();
  (*m_prefixes)[prefix] = std::move(ns);
}

void CAttributeCol::WritePrefixes(CXmlWriter& writer) const {
  if (m_prefixes == nullptr) return;
  for (auto const& [prefix, ns] : *m_prefixes) {
    if (prefix.empty() || !writer.DeclarePrefix(prefix, ns)) writer.PrefixForValues(ns, prefix);
  }
}

CXmlElement* CAttributeCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                        bool) {
  if (parent == nullptr) return cursor;
  for (auto const* attribute = parent->GetFirstAttribute(); attribute != nullptr;
       attribute = attribute->GetNextAttribute()) {
    try {
      std::string const& ns = attribute->GetNamespaceURI();
      if (!CXmlObjectHelper::IsNamespaceValid(ns, m_namespaceRestriction, m_targetNamespace)) {
        throw OfKind(FailureKind_Namespace, CQnInvalidNamespaceException(FormatString(
                                                "Invalid Attribute [%s]. The attributes namespace is Inappropriate.",
                                                attribute->GetLocalName().c_str())));
      }
      GenericSize::CountAttribute(*parent, *attribute);
      Add(attribute->GetLocalName().c_str(), attribute->GetValueView().data(), ns.c_str());
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {parent, attribute})) throw;
    }
  }
  return cursor;
}

}  // namespace Quillon9
