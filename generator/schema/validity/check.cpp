#include "schema/validity/check.h"

#include "schema/simple_values.h"
#include "schema/validity/attribute_rules.h"
#include "schema/validity/complex_type_rules.h"
#include "schema/validity/element_rules.h"

namespace Quillon9Generator::Schema {

namespace {

void CheckAttribute(AttributeDeclaration const& attribute, Diagnostics& diagnostics) {
  AttributeUse const use = {&attribute, false, attribute.defaultValue, attribute.fixedValue, attribute.place};
  CheckAttributes({use}, attribute.place, diagnostics);
}

}  // namespace

void CheckComponents(Storage const& storage, Diagnostics& diagnostics) {
  for (AttributeDeclaration const& attribute : storage.attributes) CheckAttribute(attribute, diagnostics);
  for (ElementDeclaration const& element : storage.elements) CheckElement(element, diagnostics);
  Substitutions substitutions;
  ComplexTypeRules rules(substitutions, diagnostics);
  for (auto const& [now, before] : storage.redefinedGroups) rules.CheckRedefinition(*now, *before);
  for (ComplexType const& type : storage.complexTypes) rules.Check(type);
}

}  // namespace Quillon9Generator::Schema
