#pragma once

#include <utility>

#include "quillon9/generated/bound_object.h"

namespace Quillon9 {

/// The row of a class CValueElement whose value is of the type \p value; \p targetNamespace is that of its element
/// where it is the document root. An empty element has the value \p defaultText, and each one the value \p fixedText,
/// if these are not null. \p rules are those of values where the context does not say.
constexpr CClassRow ValueElementRow(CValueType const& value, char const* targetNamespace = "",
                                    char const* defaultText = nullptr, char const* fixedText = nullptr,
                                    ValueRules rules = ValueRules_XmlSchema) {
  CClassRow row;
  row.textDefault = defaultText;
  row.textFixed = fixedText;
  row.targetNamespace = targetNamespace;
  row.propertyCount = 1;
  row.textProperty = 0;
  row.text = &value;
  row.valueRules = rules;
  return row;
}

/// An element of simple type that is an object of its own: because it may be nil, or because it is the document
/// element. It has no attributes.
template <class T>
class CValueElement : public CNillable<CBoundObject> {
 public:
  /// The function for a CClassTables with ValueElementRow().
  static CSmartPtr<CXmlObjectBase> Make(CClassTables const& tables, char const* elementName) {
    CSmartPtr<CValueElement> element = new CValueElement(tables, elementName);
    element->SetDefaultText();
    return element;
  }

  /// Make it not nil, with the default or fixed value of the element, or else an empty one.
  void Init() override {
    CNillable::Init();
    SetDefaultText();
  }
  /// The value.
  T const& GetValue() const { return m_value; }
  /// Set it; it is not nil any more.
  /// \throws CQnException "Invalid Value for %s [%s]" for a broken facet.
  void SetValue(T value) {
    Assign(0, m_value, std::move(value));
    SetNil(false);
  }

 protected:
  /// The arguments of CBoundObject.
  CValueElement(CClassTables const& tables, char const* elementName) : CNillable(tables, elementName) {}
  CPropertyRef Property(int index) override {
    if (index != 0) return {};
    return {m_value, GetClassTables().GetRow().text->HeldKind()};
  }

 private:
  T m_value{};
};

}  // namespace Quillon9
