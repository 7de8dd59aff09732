#include "quillon9/descriptors/attribute_info.h"

#include "base/failure_detail.h"
#include "base/text_arguments.h"
#include "descriptors/printed_text.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "values/facet_filter.h"
#include "values/ruled_values.h"
#include "values/schema_facets.h"
#include "values/variant_access.h"
#include "xmlio/node_access.h"

namespace Quillon9Data {

using namespace Quillon9;

CAttributeInfo::CAttributeInfo(char const* name, char const* ns, int index, bool optional, char const* defaultValue)
    : m_attributeName(name),
      m_namespace(ns),
      m_propertyIndex(index),
      m_optional(optional),
      m_defaultValue(OrEmpty(defaultValue)) {}

CAttributeInfo::~CAttributeInfo() = default;

bool CAttributeInfo::IsThisAttribute(CXmlSerializationContext const& ctx, CXmlAttribute* attribute) const {
  if (attribute == nullptr || attribute->GetLocalName() != m_attributeName) return false;
  return ctx.GetIgnoreNamespaces() || attribute->GetNamespaceURI() == m_namespace;
}

void CAttributeInfo::AccessProperty(CXmlGeneratedClass* holder, bool read, QnVariant& value) const {
  holder->AccessProperty(m_propertyIndex, read, value);
}

void CAttributeInfo::ReadProperty(CXmlGeneratedClass const* holder, QnVariant& value) const {
  holder->ReadProperty(m_propertyIndex, value);
}

std::string CAttributeInfo::GetTargetNamespace(CXmlObjectBase const* object) { return object->GetTargetNamespace(); }

void CAttributeInfo::ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool isRoot, char const* ns,
                               CXmlSerializationContext const& ctx) {
  CXmlObjectBase::ToXml_Int(object, writer, isRoot, ns, ctx, false);
}

void CAttributeInfo::TestNamespace(std::string const& ns, std::string const& list, std::string const& target) {
  CXmlObjectHelper::TestNamespace(ns, list, target);
}

bool CAttributeInfo::IsSuppressedDefault(CXmlSerializationContext const& ctx, std::string const& text) const {
  return m_optional && !m_defaultValue.empty() && ctx.GetNoOptionalAttributeDefaultOutput() && text == m_defaultValue;
}

void CAttributeInfo::ThrowIfRequiredAndMissing(bool found) const {
  if (m_optional || found) return;
  throw OfKind(
      FailureKind_MissingAttribute,
      CQnValidationException(FormatString("Failed to find the required Attribute [%s]", m_attributeName.c_str())));
}

// ---- Primitive

CAttributeInfoPrimitive::CAttributeInfoPrimitive(char const* name, char const* ns, int index, bool optional,
                                                 ItemType type, char const* format,
                                                 CWhitespaceUtils::WhitespaceRule rule,
                                                 CPrimitiveRestrictions const& restrictions, char const* defaultValue)
    : CAttributeInfo(name, ns, index, optional, defaultValue),
      m_restrictions(restrictions),
      m_itemType(type),
      m_format(format),
      m_whitespaceRule(rule),
      m_filter(CFacetFilter::Make(type, restrictions)) {}

CAttributeInfoPrimitive::~CAttributeInfoPrimitive() = default;

namespace {

/// \p value, which is not valid, cannot be converted, and that is the failure of a required attribute.
[[gnu::cold]] void ThrowNotSet(QnVariant const& value) {
  try {
    value.ToString();
  } catch (CQnException& failure) {
    FailureAccess::DetailOf(failure).kind = FailureKind_MissingAttribute;
    throw;
  }
}

}  // namespace

void CAttributeInfoPrimitive::AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                             CXmlWriter* writer) const {
  QnVariant value;
  ReadProperty(holder, value);
  if (!value.IsValid()) {
    if (m_optional) return;
    ThrowNotSet(value);
  }
  if (RulesInUse::AreSchema()) return WriteBySchema(ctx, value, *writer);
  PrintedText const text(value, m_format);
  if (IsSuppressedDefault(ctx, text.Get())) return;
  CheckFacets(value);
  writer->WriteAttributeString(m_attributeName, m_namespace, text.Get(), value.GetItemType());
}

// Unlike IsThisAttribute(), compares the namespace even where the context ignores namespaces.
bool CAttributeInfoPrimitive::AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                               CXmlAttribute* attribute) {
  if (attribute->GetLocalName() != m_attributeName || attribute->GetNamespaceURI() != m_namespace) return false;
  QnVariant value;
  std::string_view const text = XmlNodeAccess::TextOf(*attribute);
  if (RulesInUse::AreSchema()) {
    SchemaConversions::Convert(value, text, m_itemType, m_whitespaceRule);
    CheckBySchema(value, text);
  } else {
    VariantAccess::FromText(value, text, m_itemType, m_whitespaceRule);
    if (ctx.GetChecksFacetsOnReading()) CheckFacets(value);
  }
  AccessProperty(holder, false, value);
  return true;
}

void CAttributeInfoPrimitive::Validate(CXmlSerializationContext const&, bool found) const {
  ThrowIfRequiredAndMissing(found);
}

void CAttributeInfoPrimitive::CheckFacets(QnVariant const& value) const {
  CFacetFilter::CheckUnlessPasses(m_filter.get(), value, [&] {
    CXmlObjectHelper::CheckRestriction(m_attributeName.c_str(), value, m_itemType, m_restrictions);
  });
}

void CAttributeInfoPrimitive::WriteBySchema(CXmlSerializationContext const& ctx, QnVariant const& value,
                                            CXmlWriter& writer) const {
  SchemaFacets const& facets = m_schemaFacets.Get(m_itemType, m_restrictions);
  auto const write = [&](std::string const& text) {
    if (IsSuppressedDefault(ctx, text)) return;
    facets.Check(m_attributeName.c_str(), value, text);
    writer.WriteAttributeString(m_attributeName, m_namespace, text, value.GetItemType());
  };
  if (facets.UsesText()) return write(facets.TextOf(value));
  write(PrintedText(value, nullptr).Get());
}

void CAttributeInfoPrimitive::CheckBySchema(QnVariant const& value, std::string_view text) const {
  m_schemaFacets.Get(m_itemType, m_restrictions).CheckRead(m_attributeName.c_str(), value, text);
}

void CAttributeInfoPrimitive::CheckRestriction(QnVariant value) const {
  CXmlObjectHelper::CheckRestriction(m_attributeName.c_str(), value, m_itemType, m_restrictions);
}

// ---- Enum

CAttributeInfoEnum::CAttributeInfoEnum(char const* name, char const* ns, int index, bool optional, EnumToText toText,
                                       EnumFromText fromText, char const* defaultValue)
    : CAttributeInfo(name, ns, index, optional, defaultValue), m_fromText(fromText), m_toText(toText) {}

CAttributeInfoEnum::~CAttributeInfoEnum() = default;

void CAttributeInfoEnum::AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                        CXmlWriter* writer) const {
  QnVariant value;
  ReadProperty(holder, value);
  if (m_optional && !value.IsValid()) return;
  int const number = value.GetI4();  // 0 for a required value that is not set
  char const* const enumerator = m_toText(number);
  if (enumerator == nullptr) {
    throw OfKind(FailureKind_BadValue, CQnException(FormatString("The number %d of the attribute [%s] has no text",
                                                                 number, m_attributeName.c_str())));
  }
  std::string const text = enumerator;
  if (IsSuppressedDefault(ctx, text)) return;
  writer->WriteAttributeString(m_attributeName, m_namespace, text, ItemType_string);
}

bool CAttributeInfoEnum::AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                          CXmlAttribute* attribute) {
  if (!IsThisAttribute(ctx, attribute)) return false;
  QnVariant value;
  try {
    value.SetI4(m_fromText(attribute->GetValueView().data()));
  } catch (CQnException& failure) {
    GiveKind(failure, FailureKind_BadValue);
    throw;
  }
  AccessProperty(holder, false, value);
  return true;
}

void CAttributeInfoEnum::Validate(CXmlSerializationContext const&, bool found) const {
  ThrowIfRequiredAndMissing(found);
}

// ---- Any

CAttributeInfoAny::CAttributeInfoAny(char const* name, char const* ns, int index, bool optional,
                                     char const* restriction, char const* targetNamespace, char const* defaultValue)
    : CAttributeInfo(name, ns, index, optional, defaultValue),
      m_namespaceRestriction(OrEmpty(restriction)),
      m_targetNamespace(OrEmpty(targetNamespace)) {}

CAttributeInfoAny::~CAttributeInfoAny() = default;

namespace {

CAttributeCol& AttributesOf(QnVariant const& value) {
  bool const isObject = value.GetItemType() == ItemType_xmlCollection || value.GetItemType() == ItemType_xmlObject;
  auto* const attributes = isObject ? dynamic_cast<CAttributeCol*>(value.GetXmlObject().Get()) : nullptr;
  if (attributes != nullptr) return *attributes;
  throw OfKind(FailureKind_Factory,
               CQnException("Serialization Data Error : The collection should be a CAttributeCol, it was not!"));
}

}  // namespace

void CAttributeInfoAny::AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                       CXmlWriter* writer) const {
  QnVariant value;
  ReadProperty(holder, value);
  std::string const ns = GetTargetNamespace(holder);
  ToXml_Int(&AttributesOf(value), writer, false, ns.c_str(), ctx);
}

bool CAttributeInfoAny::AttributeFromXml(CXmlSerializationContext const&, CXmlGeneratedClass* holder,
                                         CXmlAttribute* attribute) {
  TestNamespace(attribute->GetNamespaceURI(), m_namespaceRestriction, m_targetNamespace);
  QnVariant value;
  AccessProperty(holder, true, value);
  AttributesOf(value).Add(attribute->GetLocalName().c_str(), attribute->GetValueView().data(),
                          attribute->GetNamespaceURI().c_str());
  return true;
}

void CAttributeInfoAny::Validate(CXmlSerializationContext const&, bool) const {}

}  // namespace Quillon9Data
