#include "generated/attributes.h"

#include <string>

#include "base/failure_detail.h"
#include "generated/bound_access.h"
#include "generated/namespace_rule.h"
#include "generated/value_rule.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "xmlio/checking_writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

using namespace Quillon9Data;

namespace {

/// A value that is an enumerator, is fixed, or has rules that the library's own descriptors do not know.
class ValueAttribute : public CAttributeInfo {
 public:
  explicit ValueAttribute(CAttributeRow const& row)
      : CAttributeInfo(row.name, row.ns, row.property, row.occurs == Occurs::Optional, row.defaultText),
        m_rule(row.name, *row.value, nullptr, row.fixedText) {}

  void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                      CXmlWriter* writer) const override {
    QnVariant value;
    ReadProperty(holder, value);
    if (!value.IsValid() && m_optional) return;
    bool const hasNames = value.IsValid() && ValueRule::HasNames(m_rule.GetType());
    std::string const text = hasNames ? m_rule.NamesText(value, *writer) : Print(value);
    if (IsSuppressedDefault(ctx, text)) return;
    m_rule.Check(value);
    bool const isEnumerator = m_rule.GetType().enumeration != nullptr;
    writer->WriteAttributeString(m_attributeName, m_namespace, text,
                                 isEnumerator ? ItemType_string : value.GetItemType());
  }

  bool AttributeFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                        CXmlAttribute* attribute) override {
    if (!IsThisAttribute(ctx, attribute)) return false;
    QnVariant value = m_rule.Read(attribute->GetValueView(), false, &ctx);
    AccessProperty(holder, false, value);
    return true;
  }

  void Validate(CXmlSerializationContext const&, bool found) const override { ThrowIfRequiredAndMissing(found); }

 private:
  std::string Print(QnVariant const& value) const {
    try {
      return m_rule.Print(value);
    } catch (CQnException& failure) {
      if (!value.IsValid()) FailureAccess::DetailOf(failure).kind = FailureKind_MissingAttribute;
      throw;
    }
  }

  ValueRule m_rule;
};

/// The attributes of a wildcard, held in a CAttributeCol that is made for the first one.
class AnyAttributes : public CAttributeInfo {
 public:
  explicit AnyAttributes(CAttributeRow const& row)
      : CAttributeInfo("", "", row.property, true, nullptr), m_rule(*row.rule) {}

  void AttributeToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                      CXmlWriter* writer) const override {
    auto const* const held = static_cast<CAttributeCol const*>(BoundAccess::Property(holder, m_propertyIndex).Look());
    if (held == nullptr) return;
    for (CAttribute const& attribute : *held) RequireAllowedAttribute(attribute, *writer);
    ToXml_Int(held, writer, false, "", ctx);
  }

  bool AttributeFromXml(CXmlSerializationContext const&, CXmlGeneratedClass* holder,
                        CXmlAttribute* attribute) override {
    if (!Allows(m_rule, attribute->GetNamespaceURI())) return false;
    CPropertyRef const property = BoundAccess::Property(holder, m_propertyIndex);
    if (property.Look() == nullptr) property.Hold(property.Make(nullptr).Get());
    static_cast<CAttributeCol*>(property.Look())
        ->Add(attribute->GetLocalName().c_str(), attribute->GetValueView().data(),
              attribute->GetNamespaceURI().c_str());
    return true;
  }

  void Validate(CXmlSerializationContext const&, bool) const override {}

 private:
  void RequireAllowedAttribute(CAttribute const& attribute, CXmlWriter const& writer) const {
    try {
      RequireAllowed(m_rule, attribute.GetNamespace());
    } catch (CQnException& failure) {
      CheckingWriter* const check = XmlWriterAccess::Checking(writer);
      if (check == nullptr || !check->GoesOn(failure, attribute.GetName().c_str())) throw;
    }
  }

  CNamespaceRule const& m_rule;
};

}  // namespace

std::unique_ptr<CAttributeInfo> MakeAttribute(CAttributeRow const& row) {
  if (row.value == nullptr) return std::make_unique<AnyAttributes>(row);
  CValueType const& type = *row.value;
  if (type.enumeration != nullptr || row.fixedText != nullptr || ValueRule::HasOwnRules(type)) {
    return std::make_unique<ValueAttribute>(row);
  }
  return std::make_unique<CAttributeInfoPrimitive>(row.name, row.ns, row.property, row.occurs == Occurs::Optional,
                                                   type.kind, FormatOf(type.kind), type.whitespace,
                                                   RestrictionsOf(type), row.defaultText);
}

}  // namespace Quillon9
