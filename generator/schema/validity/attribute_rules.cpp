#include "schema/validity/attribute_rules.h"

#include <map>
#include <string>

#include "schema/simple_values.h"
#include "schema/validity/derivation.h"
#include "schema/validity/wildcard_rules.h"

namespace Quillon9Generator::Schema {

namespace {

std::string Quoted(AttributeUse const& use) { return "\"" + use.declaration->name.local + "\""; }

bool IsSame(AttributeUse const& a, AttributeUse const& b) {
  return a.declaration == b.declaration && a.required == b.required && a.fixedValue == b.fixedValue;
}

/// Return why \p narrow cannot stand in place of \p wide.
std::string FaultOfUse(AttributeUse const& narrow, AttributeUse const& wide) {
  std::string const start = "the attribute " + Quoted(narrow);
  if (wide.required && !narrow.required) return start + " is required in the base";
  SimpleType const* const type = narrow.declaration->type;
  SimpleType const* const base = wide.declaration->type;
  if (type != nullptr && base != nullptr && !IsDerived({type, nullptr}, {base, nullptr}, 0)) {
    return "the type of " + start + " is not derived from its type in the base, which is " + Described({base, nullptr});
  }
  if (!wide.fixedValue) return {};
  bool const isSame = narrow.fixedValue && type != nullptr && AreEqual(*type, *narrow.fixedValue, *wide.fixedValue);
  return isSame ? "" : start + " has not the fixed value of the base";
}

void CheckWildcardRestriction(AttributesView narrow, AttributesView wide, Place const& place,
                              Diagnostics& diagnostics) {
  if (!narrow.wildcard) return;
  if (!wide.wildcard) return diagnostics.Error(place, "xs:anyAttribute stands where the base has none");
  if (!IsSubset(*narrow.wildcard, *wide.wildcard)) {
    diagnostics.Error(place, "xs:anyAttribute allows namespaces that that of the base does not allow");
  } else if (!IsAsStrict(*narrow.wildcard, *wide.wildcard)) {
    diagnostics.Error(place, "xs:anyAttribute is less strict than that of the base");
  }
}

void CheckValue(AttributeUse const& use, std::optional<std::string> const& value, ValidityContext& context) {
  if (!value || use.declaration->type == nullptr) return;
  std::string const fault = context.Values().FaultOf(*use.declaration->type, *value);
  if (!fault.empty()) context.Error(use.place, "the attribute " + Quoted(use) + ": " + fault);
}

}  // namespace

void CheckAttributeRestriction(AttributesView narrow, AttributesView wide, Place const& place,
                               Diagnostics& diagnostics) {
  std::map<QualifiedName, AttributeUse const*> ofBase;
  for (AttributeUse const& use : wide.uses) ofBase.emplace(use.declaration->name, &use);
  for (AttributeUse const& use : narrow.uses) {
    auto const found = ofBase.find(use.declaration->name);
    if (found == ofBase.end()) {
      if (wide.wildcard && Allows(*wide.wildcard, use.declaration->name.ns)) continue;
      diagnostics.Error(use.place, "the attribute " + Quoted(use) + " does not stand in the base");
      continue;
    }
    if (!IsSame(use, *found->second)) {
      std::string const fault = FaultOfUse(use, *found->second);
      if (!fault.empty()) diagnostics.Error(use.place, fault);
    }
    ofBase.erase(found);
  }
  for (auto const& [name, use] : ofBase) {
    if (use->required) diagnostics.Error(place, "the attribute " + Quoted(*use) + " is required in the base");
  }
  CheckWildcardRestriction(narrow, wide, place, diagnostics);
}

void CheckAttributes(std::vector<AttributeUse> const& uses, Place const& place, ValidityContext& context) {
  bool hasId = false;
  for (AttributeUse const& use : uses) {
    CheckValue(use, use.defaultValue, context);
    CheckValue(use, use.fixedValue, context);
    std::optional<std::string> const& fixed = use.declaration->fixedValue;
    bool const isSame = !fixed || (use.fixedValue && use.declaration->type != nullptr &&
                                   AreEqual(*use.declaration->type, *use.fixedValue, *fixed));
    if (!isSame) {
      context.Error(use.place, "the attribute " + Quoted(use) + " has the fixed value \"" + *fixed + "\"");
    }
    SimpleType const* const type = use.declaration->type;
    if (type != nullptr && LacksEnumeration(*type)) {
      context.Error(use.place, "the attribute " + Quoted(use) + " needs a type with an enumeration of notations");
    }
    if (type == nullptr || type->variety != Variety::Atomic || type->ancestor != BuiltIn::ID) continue;
    if (hasId) context.Error(place, "a type cannot have two attributes of the type xs:ID");
    hasId = true;
    if (use.defaultValue || use.fixedValue) {
      context.Error(use.place, "an attribute of the type xs:ID cannot have a default or fixed value");
    }
  }
}

}  // namespace Quillon9Generator::Schema
