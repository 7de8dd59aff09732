#include <algorithm>
#include <limits>
#include <tuple>

#include "schema/builder.h"
#include "schema/limits.h"

namespace Quillon9Generator::Schema {

namespace {

ModelGroup const* GroupOf(Particle const& particle) {
  auto const* const group = std::get_if<ModelGroup const*>(&particle.term);
  return group != nullptr ? *group : nullptr;
}

}  // namespace

void Builder::LinkDerivedTypes(SchemaSet const& set) {
  std::unordered_map<std::string const*, std::size_t> ranks;
  for (std::string const* file : set.files) ranks.emplace(file, ranks.size());
  std::vector<ComplexType*> types;
  for (ComplexType& type : m_storage.complexTypes) {
    if (type.base != nullptr && m_hiddenTypes.count(&type) == 0) types.push_back(&type);
  }
  auto const position = [&](ComplexType const* type) {
    return std::make_tuple(ranks[type->place.file], type->place.line, type->place.column);
  };
  std::stable_sort(types.begin(), types.end(),
                   [&](ComplexType const* a, ComplexType const* b) { return position(a) < position(b); });
  // A base is a global type, which this builder made and has only handed out as constant.
  for (ComplexType* type : types) const_cast<ComplexType*>(type->base)->derived.push_back(type);
}

void Builder::CheckGroups() {
  for (GroupDefinition const& group : m_storage.groups) SizeOf(group.group, group.place, 1);
  for (ComplexType const& type : m_storage.complexTypes) {
    if (!type.particle || GroupOf(*type.particle) == nullptr) continue;
    Particle const& particle = *type.particle;
    if (GroupOf(particle)->compositor == ModelGroup::Compositor::All && particle.maxOccurs != 1) {
      m_diagnostics.Error(particle.place, "xs:all must occur once at most");
    }
    if (SizeOf(GroupOf(*type.particle), type.place, 1).particles <= kMaxExpandedParticles) continue;
    m_diagnostics.Error(type.place, "the type has more than " + std::to_string(kMaxExpandedParticles) +
                                        " particles when each group is replaced by its content");
  }
}

/// Return how deep and how large \p group is with the groups in it. Each is visited once.
Builder::GroupSize Builder::SizeOf(ModelGroup const* group, Place const& reference, int depth) {
  auto const [entry, isNew] = m_sizes.try_emplace(group);
  GroupSize& size = entry->second;
  if (!isNew) {
    if (size.height == 0) m_diagnostics.Error(reference, "a group contains itself");
    return size;
  }
  GroupSize sum{1, 0};
  for (Particle const& particle : group->particles) {
    ++sum.particles;
    ModelGroup const* const inner = GroupOf(particle);
    if (inner == nullptr || depth > kMaxLevels) continue;
    if (inner->compositor == ModelGroup::Compositor::All) {
      m_diagnostics.Error(particle.place, "xs:all can only be the whole content of a type");
    }
    GroupSize const part = SizeOf(inner, particle.place, depth + 1);
    sum.height = std::max(sum.height, part.height + 1);
    sum.particles = std::min(sum.particles + part.particles, kMaxExpandedParticles + 1);
  }
  if (sum.height > kMaxLevels || depth > kMaxLevels) {
    m_diagnostics.Error(reference, "more than " + std::to_string(kMaxLevels) + " groups contain one another");
  }
  return size = sum;
}

}  // namespace Quillon9Generator::Schema
