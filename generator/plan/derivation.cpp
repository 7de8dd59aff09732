#include "plan/derivation.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "plan/element_groups.h"

namespace Quillon9Generator::Plan {

namespace {

using Schema::ComplexType;
using Schema::ElementDeclaration;
using Schema::Particle;

std::string Quoted(std::string const& name) { return "\"" + name + "\""; }

std::string Described(ComplexType const& type) {
  return type.IsAnonymous() ? "the anonymous type" : "the type " + Quoted(type.name.local);
}

bool IsRestriction(ComplexType const& type) { return type.derivation == ComplexType::Derivation::Restriction; }

// As in ClassBuilder: more than any real set has.
constexpr std::size_t kMostParts = 200'000;

bool SameElement(ElementDeclaration const& a, ElementDeclaration const& b) {
  return a.name == b.name && a.simpleType == b.simpleType && a.complexType == b.complexType &&
         a.nillable == b.nillable && a.defaultValue == b.defaultValue && a.fixedValue == b.fixedValue;
}

bool SameWildcard(Schema::Wildcard const& a, Schema::Wildcard const& b) {
  return a.constraint == b.constraint && a.notNamespace == b.notNamespace && a.namespaces == b.namespaces;
}

bool SameContent(ContentNode const& a, ContentNode const& b) {
  if (a.kind != b.kind || a.minOccurs != b.minOccurs || a.maxOccurs != b.maxOccurs) return false;
  if (a.kind == ContentNode::Kind::Element) return SameElement(*a.element, *b.element);
  if (a.kind == ContentNode::Kind::Wildcard) return SameWildcard(*a.wildcard, *b.wildcard);
  return std::equal(a.children.begin(), a.children.end(), b.children.begin(), b.children.end(), SameContent);
}

}  // namespace

// ---- Decisions

Derivations::Derivations(Schema::SchemaSet const& set, Schema::Diagnostics& diagnostics)
    : m_diagnostics(diagnostics), m_budget(kMostParts) {
  Decide(set);
}

// Types contain one another. So each derives and has as much of its base as may be until something speaks against it,
// and that may speak against others.
void Derivations::Decide(Schema::SchemaSet const& set) {
  std::vector<ComplexType const*> types;
  for (ComplexType const* base : set.complexTypes) {
    for (ComplexType const* type : base->derived) {
      if (type->base == nullptr || type->base->anyType) continue;
      types.push_back(type);
      m_decisions[type].manner = IsRestriction(*type) ? Manner::ReplacesElements : Manner::SharesElements;
    }
  }
  for (bool isStable = false; !isStable;) {
    std::vector<std::pair<ComplexType const*, Decision>> lowered;
    for (ComplexType const* type : types) {
      Manner const manner = m_decisions[type].manner;
      Decision decision = manner == Manner::Alone ? Decision() : Decided(*type, manner);
      if (decision.manner != manner) lowered.emplace_back(type, std::move(decision));
    }
    for (auto& [type, decision] : lowered) m_decisions[type] = std::move(decision);
    m_elements.clear();
    m_parts.clear();
    isStable = lowered.empty();
  }
}

Derivations::Decision Derivations::Decided(ComplexType const& type, Manner most) {
  if (most == Manner::ReplacesElements && FitsMembers(type)) return {most, "", false};
  std::string obstacle = IsRestriction(type) ? ObstacleOfRestriction(type) : ObstacleOfExtension(type);
  return {obstacle.empty() ? Manner::SharesElements : Manner::Alone, std::move(obstacle), false};
}

ComplexType const* Derivations::BaseClassOf(ComplexType const& type) const {
  auto const found = m_decisions.find(&type);
  return found != m_decisions.end() && found->second.manner != Manner::Alone ? type.base : nullptr;
}

ComplexType const* Derivations::BaseOf(ComplexType const& type) {
  auto const found = m_decisions.find(&type);
  if (found == m_decisions.end()) return nullptr;
  Decision& decision = found->second;
  if (decision.manner != Manner::Alone) return type.base;
  if (!std::exchange(decision.warned, true)) {
    m_diagnostics.Warning(type.place, "the class of " + Described(type) + " does not derive from that of " +
                                          Quoted(type.base->name.local) + ", since " + decision.obstacle +
                                          "; it cannot stand where that is expected");
  }
  return nullptr;
}

bool Derivations::ReplacesElements(ComplexType const& type) const {
  auto const found = m_decisions.find(&type);
  return found != m_decisions.end() && found->second.manner == Manner::ReplacesElements;
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

// ---- Whether the tables of the base read the documents of a type

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
  ComplexType const* const base = BaseClassOf(type);
  if (base != nullptr && !ReplacesElements(type)) elements = ElementsOfTables(*base);
  if (base == nullptr || ReplacesElements(type)) {
    Collect(type.particle, elements);
  } else if (!IsRestriction(type)) {
    Collect(type.ownParticle, elements);
  }
  return m_elements.emplace(&type, std::move(elements)).first->second;
}

bool Derivations::AddsAttributes(ComplexType const& type) const {
  std::set<Schema::QualifiedName> inherited;
  for (ComplexType const* base = BaseClassOf(type); base != nullptr; base = BaseClassOf(*base)) {
    for (Schema::AttributeUse const& use : base->attributes) inherited.insert(use.declaration->name);
  }
  return std::any_of(type.attributes.begin(), type.attributes.end(),
                     [&](Schema::AttributeUse const& use) { return inherited.count(use.declaration->name) == 0; });
}

bool Derivations::TableHoldsType(ElementDeclaration const& wide, ElementDeclaration const& narrow) const {
  if (wide.complexType == nullptr) return narrow.complexType == nullptr;
  if (wide.complexType->anyType) return true;
  if (narrow.complexType == nullptr) return false;
  // Without xsi:type, the tables of the base could not say which class an object of an abstract type has.
  if (wide.complexType->abstract && narrow.complexType != wide.complexType) return false;
  ComplexType const* type = narrow.complexType;
  while (type != wide.complexType) {
    type = IsRestriction(*type) && !AddsAttributes(*type) ? BaseClassOf(*type) : nullptr;
    if (type == nullptr) return false;
  }
  return true;
}

// An element of a substitution group stands where its head is declared.
bool Derivations::HasHeadOf(Elements const& elements, ElementDeclaration const& element) {
  for (ElementDeclaration const* head = element.substitutionHead; head != nullptr; head = head->substitutionHead) {
    auto const found = elements.byName.find(head->name);
    if (found != elements.byName.end() && found->second == head) return true;
  }
  return false;
}

std::string Derivations::ObstacleOfRestriction(ComplexType const& type) {
  Elements narrow;
  Collect(type.particle, narrow);
  if (narrow.byName.empty()) return "";
  Elements const& wide = ElementsOfTables(*type.base);
  for (auto const& [name, element] : narrow.byName) {
    auto const found = wide.byName.find(name);
    if (found == wide.byName.end()) {
      if (!wide.hasWildcard && !HasHeadOf(wide, *element)) return "the base has no element " + Quoted(name.local);
    } else if (!TableHoldsType(*found->second, *element)) {
      return "the element " + Quoted(name.local) + " has another type in the base";
    }
  }
  return "";
}

bool Derivations::SharesRestrictedTable(ComplexType const& type) const {
  for (ComplexType const* each = &type; each != nullptr && !ReplacesElements(*each); each = BaseClassOf(*each)) {
    if (IsRestriction(*each) && BaseClassOf(*each) != nullptr) return true;
  }
  return false;
}

// The tables of the base may still hold what a restriction removed, and would take what the extension adds.
std::string Derivations::ObstacleOfExtension(ComplexType const& type) {
  if (!type.ownParticle || !SharesRestrictedTable(*type.base)) return "";
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

// ---- Whether the members of the base hold what a restriction has

ContentNode const* Derivations::ContentOf(std::optional<Particle> const& particle) {
  static ContentNode const kNothing;
  if (!particle) return &kNothing;
  auto const known = m_contents.find(&*particle);
  std::optional<ContentNode> const& content =
      known != m_contents.end() ? known->second
                                : m_contents.emplace(&*particle, NormalizedContent(particle, m_budget)).first->second;
  return content ? &*content : nullptr;
}

void Derivations::CollectParts(ContentNode const& node, bool mandatory, Parts& parts) {
  mandatory = mandatory && node.minOccurs > 0;
  if (!node.IsGroup() || node.IsRepeated()) {
    parts.push_back({&node, mandatory && !node.IsRepeated(), node.IsRepeated()});
    return;
  }
  for (ContentNode const& child : node.children) {
    CollectParts(child, mandatory && node.kind != ContentNode::Kind::Choice, parts);
  }
}

// For each part of the type the member that holds it, with the element that the table of the type has.
Derivations::Parts const& Derivations::PartsOfTables(ComplexType const& type) {
  auto const known = m_parts.find(&type);
  if (known != m_parts.end()) return known->second;
  ComplexType const* const base = BaseClassOf(type);
  Parts parts;
  if (base != nullptr) parts = PartsOfTables(*base);
  bool const hasOwn = base == nullptr || !IsRestriction(type) || ReplacesElements(type);
  ContentNode const* const content =
      hasOwn ? ContentOf(base == nullptr || IsRestriction(type) ? type.particle : type.ownParticle) : nullptr;
  Parts own;
  if (content != nullptr) CollectParts(*content, true, own);
  std::vector<std::size_t> places;
  if (!ReplacesElements(type)) {
    parts.insert(parts.end(), own.begin(), own.end());
  } else if (Match(parts, own, places)) {
    for (std::size_t i = 0; i < own.size(); ++i) {
      own[i].mandatory = parts[places[i]].mandatory;
      own[i].repeated = parts[places[i]].repeated;
    }
    parts = std::move(own);
  }
  return m_parts.emplace(&type, std::move(parts)).first->second;
}

// Finds the one member for each part: that of its name, or the only wildcard, or the only repeated group.
bool Derivations::Match(Parts const& wide, Parts const& narrow, std::vector<std::size_t>& places) {
  std::set<std::size_t> taken;
  for (Part const& part : narrow) {
    auto const isThis = [&part](Part const& other) {
      if (part.node->IsGroup() || other.node->IsGroup()) return part.node->IsGroup() && other.node->IsGroup();
      if (part.node->kind != other.node->kind) return false;
      if (part.node->kind == ContentNode::Kind::Wildcard) return true;
      return part.node->element->name == other.node->element->name ||
             StandsFor(*part.node->element, *other.node->element);
    };
    auto const found = std::find_if(wide.begin(), wide.end(), isThis);
    if (found == wide.end() || std::find_if(found + 1, wide.end(), isThis) != wide.end()) return false;
    places.push_back(static_cast<std::size_t>(found - wide.begin()));
    if (!taken.insert(places.back()).second) return false;
  }
  return true;
}

bool Derivations::MemberHoldsType(ElementDeclaration const& wide, ElementDeclaration const& narrow) const {
  if (wide.complexType == nullptr) return narrow.complexType == nullptr;
  if (wide.complexType->anyType) return true;
  ComplexType const* type = narrow.complexType;
  while (type != nullptr && type != wide.complexType) type = BaseClassOf(*type);
  return type != nullptr;
}

// The class of the rounds is that of the base.
bool Derivations::RoundHolds(ContentNode const& wide, ContentNode const& narrow) const {
  if (wide.kind != narrow.kind || wide.IsRepeated() != narrow.IsRepeated()) return false;
  if (wide.kind == ContentNode::Kind::Element) {
    if (StandsFor(*narrow.element, *wide.element)) return true;
    return wide.element->name == narrow.element->name && TableHoldsType(*wide.element, *narrow.element);
  }
  return std::equal(wide.children.begin(), wide.children.end(), narrow.children.begin(), narrow.children.end(),
                    [this](ContentNode const& a, ContentNode const& b) { return RoundHolds(a, b); });
}

bool Derivations::MemberHolds(Part const& wide, Part const& narrow) const {
  if ((wide.mandatory && !narrow.mandatory) || (narrow.repeated && !wide.repeated)) return false;
  if (narrow.node->IsGroup()) return RoundHolds(*wide.node, *narrow.node);
  if (narrow.node->kind == ContentNode::Kind::Wildcard) return true;
  return StandsFor(*narrow.node->element, *wide.node->element) ||
         MemberHoldsType(*wide.node->element, *narrow.node->element);
}

bool Derivations::FitsMembers(ComplexType const& type) {
  ContentNode const* const content = ContentOf(type.particle);
  ContentNode const* const ofBase = ContentOf(type.base->particle);
  Parts const& wide = PartsOfTables(*type.base);
  if (content == nullptr || ofBase == nullptr || wide.empty()) return false;
  // The rows of the base do as well.
  if (!SharesRestrictedTable(*type.base) && SameContent(*content, *ofBase)) return false;
  Parts narrow;
  CollectParts(*content, true, narrow);
  std::vector<std::size_t> places;
  if (!Match(wide, narrow, places)) return false;
  for (std::size_t i = 0; i < narrow.size(); ++i) {
    if (!MemberHolds(wide[places[i]], narrow[i])) return false;
  }
  // A member that is always set cannot be removed.
  for (std::size_t i = 0; i < wide.size(); ++i) {
    if (wide[i].mandatory && std::find(places.begin(), places.end(), i) == places.end()) return false;
  }
  return true;
}

}  // namespace Quillon9Generator::Plan
