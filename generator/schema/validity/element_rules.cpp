#include "schema/validity/element_rules.h"

#include <string>

#include "schema/validity/derivation.h"

namespace Quillon9Generator::Schema {

namespace {

/// Return why the element cannot have \p value.
std::string FaultOfElementValue(ElementDeclaration const& element, std::string const& value, ValidityContext& context) {
  SimpleType const* text = element.simpleType;
  if (ComplexType const* const type = element.complexType) {
    bool const isMixed = type->content == ComplexType::Content::Mixed;
    if (isMixed && (!type->particle || context.IsEmptiable(*type->particle))) return {};
    if (type->content != ComplexType::Content::Simple) return "its content cannot be text only";
    text = type->simpleContent;
  }
  if (text == nullptr) return {};
  bool const isId = text->variety == Variety::Atomic && text->ancestor == BuiltIn::ID;
  return isId ? "the type xs:ID allows no default or fixed value" : context.Values().FaultOf(*text, value);
}

}  // namespace

void CheckElement(ElementDeclaration const& element, ValidityContext& context) {
  std::optional<std::string> const& value = element.defaultValue ? element.defaultValue : element.fixedValue;
  if (value) {
    std::string const fault = FaultOfElementValue(element, *value, context);
    if (!fault.empty()) context.Error(element.place, "the element \"" + element.name.local + "\": " + fault);
  }
  if (element.simpleType != nullptr && LacksEnumeration(*element.simpleType)) {
    context.Error(element.place,
                  "the element \"" + element.name.local + "\" needs a type with an enumeration of notations");
  }
  ElementDeclaration const* const head = element.substitutionHead;
  if (head == nullptr || IsDerived(TypeOf(element), TypeOf(*head), head->final)) return;
  context.Error(element.place, "the element \"" + element.name.local + "\" cannot substitute \"" + head->name.local +
                                   "\": its type is not derived from " + Described(TypeOf(*head)) +
                                   (head->final != 0 ? " in a way that it allows" : ""));
}

}  // namespace Quillon9Generator::Schema
