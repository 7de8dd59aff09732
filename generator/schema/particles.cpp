#include "schema/builder.h"

namespace Quillon9Generator::Schema {

/// Return the particle of \p node; no value if it cannot occur or after an error.
std::optional<Particle> Builder::MakeParticle(Document const& document, Node const& node) {
  Particle particle;
  particle.place = node.place;
  ReadOccurrence(node, particle);
  if (particle.maxOccurs == 0 || !MakeTerm(particle, document, node)) return std::nullopt;
  return particle;
}

bool Builder::MakeTerm(Particle& particle, Document const& document, Node const& node) {
  switch (node.tag) {
    case Tag::Element: return MakeElementTerm(particle, document, node);
    case Tag::Group: return MakeGroupTerm(particle, document, node);
    case Tag::Any: {
      Wildcard& wildcard = m_storage.wildcards.emplace_back(MakeWildcard(document, node));
      particle.term = &wildcard;
      return true;
    }
    case Tag::All:
    case Tag::Choice:
    case Tag::Sequence: {
      ModelGroup& group = m_storage.modelGroups.emplace_back();
      FillModelGroup(group, document, node);
      particle.term = &group;
      return true;
    }
    default: return false;
  }
}

bool Builder::MakeElementTerm(Particle& particle, Document const& document, Node const& node) {
  if (auto const reference = node.Find("ref")) {
    Global<ElementDeclaration> const* const element = Find(m_elements, "element", document, node, *reference);
    if (element != nullptr) particle.term = element->object;
    return element != nullptr;
  }
  std::optional<QualifiedName> const name = LocalName(document, node, "elementFormDefault");
  if (!name) return false;
  ElementDeclaration& element = m_storage.elements.emplace_back();
  Describe(element, node);
  element.name = *name;
  FillElement(element, document, node);
  particle.term = &element;
  return true;
}

bool Builder::MakeGroupTerm(Particle& particle, Document const& document, Node const& node) {
  std::optional<std::string_view> const reference = node.Find("ref");
  if (!reference) return false;
  Global<GroupDefinition> const* group = Original(m_oldGroups, document, node);
  if (group == nullptr) group = Find(m_groups, "group", document, node, *reference);
  if (group == nullptr) return false;
  particle.group = group->object;
  particle.term = group->object->group;  // perhaps filled later
  return true;
}

void Builder::FillModelGroup(ModelGroup& group, Document const& document, Node const& node) {
  Describe(group, node);
  group.compositor = node.tag == Tag::All      ? ModelGroup::Compositor::All
                     : node.tag == Tag::Choice ? ModelGroup::Compositor::Choice
                                               : ModelGroup::Compositor::Sequence;
  for (Node const& child : node.children) {
    if (child.tag == Tag::Annotation) continue;
    if (std::optional<Particle> particle = MakeParticle(document, child)) group.particles.push_back(*particle);
  }
}

void Builder::FillGroup(GroupDefinition const& definition, Document const& document, Node const& node) {
  for (Node const& child : node.children) {
    if (child.tag != Tag::All && child.tag != Tag::Choice && child.tag != Tag::Sequence) continue;
    // Made by this builder, which has only handed it out as constant.
    return FillModelGroup(const_cast<ModelGroup&>(*definition.group), document, child);
  }
}

}  // namespace Quillon9Generator::Schema
