#include "plan/make_plan.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <tuple>

#include "plan/blocking.h"
#include "plan/check_values.h"
#include "plan/class_builder.h"
#include "plan/namespaces.h"
#include "plan/naming.h"
#include "plan/order.h"
#include "plan/reachable.h"
#include "quillon9/text/whitespace.h"
#include "schema/built_ins.h"

namespace Quillon9Generator::Plan {

namespace {

std::string WithoutFolder(std::string const& path) { return path.substr(path.find_last_of('/') + 1); }

// An option for a type that does not exist is most likely misspelled.
void CheckOptions(Schema::SchemaSet const& set, PlanOptions const& options, Schema::Diagnostics& diagnostics) {
  std::set<std::string> simple, all;
  for (Schema::SimpleType const* type : set.simpleTypes) simple.insert(KeyOf(type->name));
  for (Schema::ComplexType const* type : set.complexTypes) all.insert(KeyOf(type->name));
  for (Schema::ElementDeclaration const* element : set.elements) all.insert(KeyOf(element->name));
  all.insert(simple.begin(), simple.end());
  for (int i = static_cast<int>(Schema::BuiltIn::AnySimpleType); i <= static_cast<int>(Schema::BuiltIn::Notation);
       ++i) {
    simple.insert(std::string("xs:") + Schema::NameOf(static_cast<Schema::BuiltIn>(i)));
  }
  for (auto const& each : options.kinds) {
    if (simple.count(each.first) == 0) {
      diagnostics.Error("", "no simple type \"" + each.first + "\" to map to another kind");
    }
  }
  for (auto const& each : options.names) {
    if (all.count(each.first) == 0) {
      diagnostics.Error("", "no type or global element \"" + each.first + "\" to rename");
    }
  }
}

void NumberRestatedMembers(Plan& plan) {
  for (auto const& cls : plan.classStorage) {
    for (Member& member : cls->restated) {
      member.property = member.restates->property;
      member.cppName = member.restates->cppName;
      member.field = member.restates->field;
    }
  }
}

}  // namespace

Enumerator const* Enumeration::Find(std::string const& text) const {
  std::string const collapsed = Quillon9::CWhitespaceUtils::Collapse(text);
  auto const found = std::find_if(enumerators.begin(), enumerators.end(),
                                  [&](Enumerator const& each) { return each.text == text || each.text == collapsed; });
  return found != enumerators.end() ? &*found : nullptr;
}

bool Facets::operator==(Facets const& other) const {
  auto const all = [](Facets const& f) {
    return std::tie(f.pattern, f.length, f.minLength, f.maxLength, f.totalDigits, f.fractionDigits, f.minInclusive,
                    f.maxInclusive, f.minExclusive, f.maxExclusive);
  };
  return all(*this) == all(other);
}

bool Facets::Empty() const { return *this == Facets(); }

bool ValueType::HasChecks() const {
  return !facets.Empty() || !members.empty() || !values.empty() || (item != nullptr && item->HasChecks());
}

bool ValueType::IsHeldLike(ValueType const& other) const {
  if ((item == nullptr) != (other.item == nullptr)) return false;
  return kind == other.kind && enumeration == other.enumeration && isQualifiedName == other.isQualifiedName &&
         (item == nullptr || item->IsHeldLike(*other.item));
}

bool ValueType::HasSameRules(ValueType const& other) const {
  return IsHeldLike(other) && isIdentifier == other.isIdentifier && form == other.form && facets == other.facets &&
         whiteSpace == other.whiteSpace && values == other.values &&
         (item == nullptr || item->HasSameRules(*other.item)) &&
         std::equal(members.begin(), members.end(), other.members.begin(), other.members.end(),
                    [](ValueType const& a, ValueType const& b) { return a.HasSameRules(b); });
}

void ValueType::CompareByMember() {
  if (members.empty()) members = std::move(uncheckedMembers);
  for (ValueType& member : members) member.CompareByMember();
  if (item == nullptr) return;
  ValueType itemCompared = *item;
  itemCompared.CompareByMember();
  item = std::make_shared<ValueType const>(std::move(itemCompared));
}

Plan MakePlan(Schema::SchemaSet const& set, PlanOptions const& options, Schema::Diagnostics& diagnostics) {
  Plan plan;
  CheckOptions(set, options, diagnostics);
  Selection const selection = options.roots.empty() ? SelectAll(set) : SelectReachable(set, options.roots, diagnostics);
  ClassBuilder(selection, options, plan, diagnostics).Build();
  for (auto const& cls : plan.classStorage) cls->classicValues = options.classicValues;
  for (std::string const* file : set.files) plan.schemaFiles.push_back(WithoutFolder(*file));
  if (plan.schemaFiles.empty()) plan.schemaFiles = set.targetNamespaces;  // the program brings them
  OrderClasses(plan);
  SettleBlocking(plan);
  AssignNamespaces(set, options, plan, diagnostics);
  for (Namespace& ns : plan.namespaces) ns.classicValues = options.classicValues;
  GiveNames(plan);
  NumberRestatedMembers(plan);
  CheckValues(plan, diagnostics);
  return plan;
}

}  // namespace Quillon9Generator::Plan
