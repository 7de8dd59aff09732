#include "schema/validity/check.h"

#include "schema/validity/attribute_rules.h"
#include "schema/validity/complex_type_rules.h"
#include "schema/validity/element_rules.h"

namespace Quillon9Generator::Schema {

namespace {

void CheckAttribute(AttributeDeclaration const& attribute, ValidityContext& context) {
  AttributeUse const use = {&attribute, false, attribute.defaultValue, attribute.fixedValue, attribute.place};
  CheckAttributes({use}, attribute.place, context);
}

}  // namespace

void CheckComponents(Storage const& storage, Diagnostics& diagnostics) {
  ValidityContext context(diagnostics);
  for (AttributeDeclaration const& attribute : storage.attributes) CheckAttribute(attribute, context);
  for (ElementDeclaration const& element : storage.elements) CheckElement(element, context);
  ComplexTypeRules rules(context);
  for (auto const& [now, before] : storage.redefinedGroups) rules.CheckRedefinition(*now, *before);
  for (ComplexType const& type : storage.complexTypes) rules.Check(type);
  if (context.MaySpend(0) || storage.paths.empty()) return;
  diagnostics.Warning({&storage.paths.front(), 0, 0}, "the schema is so large that not all of its content is checked");
}

}  // namespace Quillon9Generator::Schema
