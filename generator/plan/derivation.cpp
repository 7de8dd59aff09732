#include "plan/derivation.h"

#include <optional>
#include <set>

namespace Quillon9Generator::Plan {

namespace {

using Schema::ComplexType;
using Schema::ElementDeclaration;
using Schema::Particle;

std::string Quoted(std::string const& name) { return "\"" + name + "\""; }

std::string Described(ComplexType const& type) {
  return type.IsAnonymous() ? "the anonymous type" : "the type " + Quoted(type.name.local);
}

}  // namespace

void Derivations::Collect(std::optional<Particle> const& particle, Elements& elements) {
  if (!particle) return;
  std::vector<Particle const*> pending{&*particle};
  std::set<Schema::ModelGroup const*> seen;  // groups that refer to groups twice grow without end otherwise
  while (!pending.empty()) {
    Particle const& next = *pending.back();
    pending.pop_back();
    if (auto const* const element = std::get_if<ElementDeclaration const*>(&next.term)) {
      elements.byName.emplace((*element)->name, *element);
    } else if (auto const* const group = std::get_if<Schema::ModelGroup const*>(&next.term)) {
      if (!seen.insert(*group).second) continue;
      for (Particle const& inner : (*group)->particles) pending.push_back(&inner);
    } else {
      elements.hasWildcard = true;
    }
  }
}

Derivations::Elements const& Derivations::ElementsOfTables(ComplexType const& type) {
  auto const known = m_elements.find(&type);
  if (known != m_elements.end()) return known->second;
  Elements elements;
  ComplexType const* const base = BaseOf(type);
  if (base != nullptr) elements = ElementsOfTables(*base);
  if (base == nullptr || type.derivation == ComplexType::Derivation::Extension) {
    Collect(base != nullptr ? type.ownParticle : type.particle, elements);
  }
  return m_elements.emplace(&type, std::move(elements)).first->second;
}

bool Derivations::HoldsType(ElementDeclaration const& wide, ElementDeclaration const& narrow) {
  if (wide.complexType == nullptr) return narrow.complexType == nullptr;
  if (wide.complexType->anyType) return true;
  if (narrow.complexType == nullptr) return false;
  // Without xsi:type, the tables of the base could not say which class an object of an abstract type has.
  if (wide.complexType->abstract && narrow.complexType != wide.complexType) return false;
  ComplexType const* type = narrow.complexType;
  while (type != wide.complexType) {
    bool const addsNothing = type->derivation == ComplexType::Derivation::Restriction && OwnAttributes(*type).empty();
    type = addsNothing ? BaseOf(*type) : nullptr;
    if (type == nullptr) return false;
  }
  return true;
}

std::string Derivations::ObstacleOfRestriction(ComplexType const& type) {
  Elements narrow;
  Collect(type.particle, narrow);
  if (narrow.byName.empty()) return "";
  Elements const& wide = ElementsOfTables(*type.base);
  for (auto const& [name, element] : narrow.byName) {
    auto const found = wide.byName.find(name);
    if (found == wide.byName.end()) {
      if (!wide.hasWildcard) return "the base has no element " + Quoted(name.local);
    } else if (!HoldsType(*found->second, *element)) {
      return "the element " + Quoted(name.local) + " has another type in the base";
    }
  }
  return "";
}

bool Derivations::HasRestrictedBase(ComplexType const& type) {
  for (ComplexType const* base = type.base; base != nullptr; base = BaseOf(*base)) {
    if (base->derivation == ComplexType::Derivation::Restriction && BaseOf(*base) != nullptr) return true;
  }
  return false;
}

// The tables of the base may still hold what a restriction removed, and would take what the extension adds.
std::string Derivations::ObstacleOfExtension(ComplexType const& type) {
  if (!type.ownParticle || !HasRestrictedBase(type)) return "";
  Elements own, restricted;
  Collect(type.ownParticle, own);
  Collect(type.base->particle, restricted);
  Elements const& inTables = ElementsOfTables(*type.base);
  for (auto const& [name, element] : own.byName) {
    if (inTables.byName.count(name) != 0) return "its base is restricted in the element " + Quoted(name.local);
  }
  bool const lostWildcard = inTables.hasWildcard && !restricted.hasWildcard;
  return lostWildcard && !own.byName.empty() ? "its base is restricted in a wildcard" : "";
}

std::string Derivations::ObstacleOf(ComplexType const& type) {
  return type.derivation == ComplexType::Derivation::Extension ? ObstacleOfExtension(type)
                                                               : ObstacleOfRestriction(type);
}

ComplexType const* Derivations::BaseOf(ComplexType const& type) {
  if (type.base == nullptr || type.base->anyType) return nullptr;
  // Types that contain one another: it derives unless something speaks against it.
  auto const [known, isNew] = m_bases.emplace(&type, type.base);
  if (!isNew) return known->second;
  std::string const obstacle = ObstacleOf(type);
  if (obstacle.empty()) return type.base;
  m_bases[&type] = nullptr;
  m_elements.erase(&type);
  m_diagnostics.Warning(type.place, "the class of " + Described(type) + " does not derive from that of " +
                                        Quoted(type.base->name.local) + ", since " + obstacle +
                                        "; it cannot stand where that is expected");
  return nullptr;
}

Particle const* Derivations::OwnContent(ComplexType const& type) {
  ComplexType const* const base = BaseOf(type);
  if (base != nullptr && type.derivation != ComplexType::Derivation::Extension) return nullptr;
  // What extends xs:anyType has any elements in front of its own, which would take those.
  bool const extendsAny = type.base == nullptr && type.ownParticle;
  bool const extends = type.derivation == ComplexType::Derivation::Extension && (base != nullptr || extendsAny);
  std::optional<Particle> const& particle = extends ? type.ownParticle : type.particle;
  return particle ? &*particle : nullptr;
}

std::vector<Schema::AttributeUse const*> Derivations::OwnAttributes(ComplexType const& type) {
  std::set<Schema::QualifiedName> inherited;
  for (ComplexType const* base = BaseOf(type); base != nullptr; base = BaseOf(*base)) {
    for (Schema::AttributeUse const& use : base->attributes) inherited.insert(use.declaration->name);
  }
  std::vector<Schema::AttributeUse const*> own;
  for (Schema::AttributeUse const& use : type.attributes) {
    if (inherited.count(use.declaration->name) == 0) own.push_back(&use);
  }
  return own;
}

}  // namespace Quillon9Generator::Plan
