#include "schema/validity/complex_type_rules.h"

#include "schema/validity/attribute_rules.h"

namespace Quillon9Generator::Schema {

namespace {

using Content = ComplexType::Content;

}  // namespace

bool ComplexTypeRules::IsEmptiable(ComplexType const& type) {
  return type.content == Content::Empty || !type.particle || m_context.IsEmptiable(*type.particle);
}

void ComplexTypeRules::Check(ComplexType const& type) {
  if (type.anyType) return;
  CheckAttributes(type.ownAttributes, type.place, m_context);
  CheckFinal(type);
  if (type.base != nullptr && type.derivation == ComplexType::Derivation::Restriction) {
    CheckRestriction(type, *type.base);
  }
  bool const hasOwnContent = type.ownParticle.has_value();
  if (!hasOwnContent || !type.particle) return;
  CheckConsistency(type);
  UniqueAttribution::Faults const faults = m_attribution.Find(*type.particle);
  if (!faults.error.empty()) return m_context.Error(type.particle->place, faults.error);
  if (!faults.warning.empty()) m_context.GetDiagnostics().Warning(type.particle->place, faults.warning);
}

void ComplexTypeRules::CheckFinal(ComplexType const& type) {
  bool const isExtension = type.derivation == ComplexType::Derivation::Extension;
  unsigned const final = type.base != nullptr         ? type.base->final
                         : type.simpleBase != nullptr ? type.simpleBase->final & kExtension
                                                      : 0U;
  if ((final & (isExtension ? kExtension : kRestriction)) == 0) return;
  m_context.Error(type.place, "the type " + Described({nullptr, type.base}) + " is final and cannot be " +
                                  (isExtension ? "extended" : "restricted"));
}

void ComplexTypeRules::CheckRestriction(ComplexType const& type, ComplexType const& base) {
  CheckAttributeRestriction({type.attributes, type.attributeWildcard}, {base.attributes, base.attributeWildcard},
                            type.place, m_context.GetDiagnostics());
  CheckContentRestriction(type, base);
}

void ComplexTypeRules::CheckContentRestriction(ComplexType const& type, ComplexType const& base) {
  Place const& place = type.particle ? type.particle->place : type.place;
  if (type.content == Content::Simple) {
    if (base.content == Content::Mixed && IsEmptiable(base)) return;
    bool const isDerived = type.simpleContent != nullptr && base.simpleContent != nullptr &&
                           IsDerived({type.simpleContent, nullptr}, {base.simpleContent, nullptr}, 0);
    if (!isDerived) m_context.Error(place, "the type of the text is not derived from that of the base");
  } else if (type.content == Content::Empty) {
    if (base.content == Content::Simple || !IsEmptiable(base)) {
      m_context.Error(place, "the content is empty, but that of the base cannot be");
    }
  } else if (type.content == Content::Mixed && base.content != Content::Mixed) {
    m_context.Error(place, "the content is mixed, but not that of the base");
  } else if (!type.particle) {
    if (!IsEmptiable(base)) m_context.Error(place, "the content is empty, but that of the base cannot be");
  } else if (!base.particle) {
    m_context.Error(place, "the content of the base is empty");
  } else {
    std::string const fault = m_restriction.Fault(*type.particle, *base.particle);
    if (!fault.empty()) m_context.Error(place, "this is no restriction of the base: " + fault);
  }
}

void ComplexTypeRules::CheckRedefinition(GroupDefinition const& narrow, GroupDefinition const& wide) {
  std::string const fault =
      m_restriction.Fault(Particle{1, 1, narrow.group, {}, nullptr}, Particle{1, 1, wide.group, {}, nullptr});
  if (!fault.empty()) m_context.Error(narrow.place, "this does not restrict the group that it redefines: " + fault);
}

/// Elements of one name in one content model must have one type.
void ComplexTypeRules::CheckConsistency(ComplexType const& type) {
  TypesByName types;
  auto const* const group = std::get_if<ModelGroup const*>(&type.particle->term);
  if (group != nullptr) CollectTypes(**group, types, type.place);
}

void ComplexTypeRules::CollectTypes(ModelGroup const& group, TypesByName& types, Place const& place) {
  for (Particle const& particle : group.particles) {
    if (!m_context.MaySpend(1)) return;
    if (auto const* const inner = std::get_if<ModelGroup const*>(&particle.term)) CollectTypes(**inner, types, place);
    auto const* const element = std::get_if<ElementDeclaration const*>(&particle.term);
    if (element == nullptr) continue;
    AddElement(**element, types, particle.place);
    for (ElementDeclaration const* member : (*element)->standIns) AddElement(*member, types, particle.place);
  }
}

void ComplexTypeRules::AddElement(ElementDeclaration const& element, TypesByName& types, Place const& place) {
  if (!m_context.MaySpend(1)) return;
  auto const [entry, isNew] = types.try_emplace(element.name, &element);
  if (isNew || TypeOf(element) == TypeOf(*entry->second)) return;
  m_context.Error(place, "the element \"" + element.name.local + "\" has two types in one content: " +
                             Described(TypeOf(*entry->second)) + " and " + Described(TypeOf(element)));
}

}  // namespace Quillon9Generator::Schema
