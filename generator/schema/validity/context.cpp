#include "schema/validity/context.h"

#include <algorithm>

#include "schema/validity/derivation.h"

namespace Quillon9Generator::Schema {

std::vector<ElementDeclaration const*> const& ValidityContext::SubstitutesOf(ElementDeclaration const& head) {
  auto const [entry, isNew] = m_substitutes.try_emplace(&head);
  std::vector<ElementDeclaration const*>& all = entry->second;
  if (!isNew || (head.block & kSubstitution) != 0) return all;
  std::vector<ElementDeclaration const*> open = {&head};
  unsigned const excluded = head.block | (head.complexType != nullptr ? head.complexType->block : 0U);
  while (!open.empty()) {
    ElementDeclaration const* const element = open.back();
    open.pop_back();
    for (ElementDeclaration const* member : element->substitutes) {
      open.push_back(member);
      if (IsDerived(TypeOf(*member), TypeOf(head), excluded)) all.push_back(member);
    }
  }
  return all;
}

bool ValidityContext::IsEmptiable(Particle const& particle) {
  if (particle.minOccurs == 0) return true;
  auto const* const group = std::get_if<ModelGroup const*>(&particle.term);
  return group != nullptr && IsEmptiable(**group);
}

bool ValidityContext::IsEmptiable(ModelGroup const& group) {
  if (auto const known = m_emptiable.find(&group); known != m_emptiable.end()) return known->second;
  auto const isEmptiable = [this](Particle const& particle) { return IsEmptiable(particle); };
  auto const& particles = group.particles;
  bool const result = group.compositor == ModelGroup::Compositor::Choice
                          ? std::any_of(particles.begin(), particles.end(), isEmptiable)
                          : std::all_of(particles.begin(), particles.end(), isEmptiable);
  return m_emptiable[&group] = result;
}

}  // namespace Quillon9Generator::Schema
