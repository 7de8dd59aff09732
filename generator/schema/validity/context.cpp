#include "schema/validity/context.h"

#include <algorithm>

namespace Quillon9Generator::Schema {

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
