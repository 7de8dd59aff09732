#include <utility>

#include "base/failure_detail.h"
#include "base/text_arguments.h"
#include "binding/failure_report.h"
#include "descriptors/generic_names.h"
#include "descriptors/generic_size.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

using detail::GenericNames;
using detail::GenericNamesPtr;
using detail::GenericRules;

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
    : CAttribute(new GenericNames(OrEmpty(name), OrEmpty(ns), nullptr), OrEmpty(value)) {}

CAttribute::CAttribute(GenericNamesPtr names, char const* value) : m_names(std::move(names)), m_value(value) {}

CAttribute::~CAttribute() = default;

CSmartPtr<CAttribute> CAttribute::Clone() const { return new CAttribute(m_names, m_value.c_str()); }

void CAttribute::SetName(std::string name) { GenericNamesOf::Own(m_names).name = std::move(name); }

void CAttribute::SetNamespace(std::string ns) { GenericNamesOf::Own(m_names).ns = std::move(ns); }

void CAttribute::ToXml_Int(CXmlWriter* writer, bool, char const*, CXmlSerializationContext const&, bool) const {
  writer->WriteAttributeString(m_names->name, m_names->ns, m_value, ItemType_string);
}

CXmlElement* CAttribute::FromXml_Int(CXmlElement*, CXmlElement*, CXmlSerializationContext const&, bool) {
  throw CQnException("This should be done by the collection");
}

// ---- CAttributeCol

CAttributeCol::CAttributeCol(char const* ns, char const* restriction, char const* targetNamespace)
    : CAttributeCol(new GenericNames("", DefaultNamespace(OrEmpty(ns), OrEmpty(restriction)),
                                     new GenericRules(OrEmpty(restriction), OrEmpty(targetNamespace)))) {}

CAttributeCol::CAttributeCol(GenericNamesPtr const& names) : m_names(names) {}

CAttributeCol::~CAttributeCol() = default;

std::string const& CAttributeCol::Namespace() const {
  static auto const& none = *new std::string;
  return m_names->hadNoNamespace ? none : m_names->ns;
}

CSmartPtr<CAttributeCol> CAttributeCol::Clone() const {
  CSmartPtr<CAttributeCol> copy(new CAttributeCol(m_names));
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
  if (!ns.empty() && ns == FirstToken(m_names->rules->restriction)) return Add(new CAttribute(name, value, ns.c_str()));
  return Add(name, value, ns.c_str());
}

CSmartPtr<CAttribute> CAttributeCol::Add(char const* name, char const* value, char const* ns) {
  CXmlObjectHelper::TestNamespace(OrEmpty(ns), m_names->rules->restriction, m_names->rules->target);
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

void CAttributeCol::Take(CXmlElement const& parent, CXmlAttribute const& attribute) {
  GenericSize::CountAttribute(parent, attribute);
  GenericNamesPtr names;
  GenericNamesOf::FindForAttribute(parent, attribute, names);
  Add(new CAttribute(std::move(names), XmlNodeAccess::TextOf(attribute).data()));
}

CXmlElement* CAttributeCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                        bool) {
  if (parent == nullptr) return cursor;
  GenericRules const& rules = *m_names->rules;
  for (auto const* attribute = parent->GetFirstAttribute(); attribute != nullptr;
       attribute = attribute->GetNextAttribute()) {
    try {
      if (!CXmlObjectHelper::IsNamespaceValid(attribute->GetNamespaceURI(), rules.restriction, rules.target)) {
        throw OfKind(FailureKind_Namespace, CQnInvalidNamespaceException(FormatString(
                                                "Invalid Attribute [%s]. The attributes namespace is Inappropriate.",
                                                attribute->GetLocalName().c_str())));
      }
      Take(*parent, *attribute);
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(ctx, failure, {parent, attribute})) throw;
    }
  }
  return cursor;
}

}  // namespace Quillon9
