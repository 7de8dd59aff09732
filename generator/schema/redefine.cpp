#include "schema/builder.h"
#include "schema/validity/attribute_rules.h"

namespace Quillon9Generator::Schema {

namespace {

/// Add the elements in \p node that refer to a group of the tag, those in anonymous types included.
void CollectReferences(Node const& node, Tag tag, std::vector<Node const*>& references) {
  for (Node const& child : node.children) {
    if (child.tag == tag && child.Has("ref")) references.push_back(&child);
    CollectReferences(child, tag, references);
  }
}

/// Return the elements in \p node that may refer to what it redefines, with the attribute that does it.
std::pair<std::vector<Node const*>, char const*> ReferencesIn(Node const& node) {
  std::vector<Node const*> references;
  if (node.tag == Tag::Group || node.tag == Tag::AttributeGroup) {
    CollectReferences(node, node.tag, references);
    return {references, "ref"};
  }
  for (Node const& child : node.children) {
    if (child.tag == Tag::Restriction) references.push_back(&child);
    for (Tag const derivation : {Tag::Restriction, Tag::Extension}) {
      bool const isContent = child.tag == Tag::SimpleContent || child.tag == Tag::ComplexContent;
      if (isContent && child.Child(derivation) != nullptr) references.push_back(child.Child(derivation));
    }
  }
  return {references, "base"};
}

bool OccursOnce(Node const& node) {
  return Trimmed(node.Find("minOccurs").value_or("1")) == "1" && Trimmed(node.Find("maxOccurs").value_or("1")) == "1";
}

}  // namespace

/// Replace definitions, those of the innermost documents first, since what replaces them may be replaced in turn.
void Builder::Redefine(std::vector<Document const*> const& documents) {
  for (auto document = documents.rbegin(); document != documents.rend(); ++document) {
    for (Node const& node : (*document)->Root().children) {
      if (node.tag != Tag::Redefine) continue;
      for (Node const& child : node.children) RedefineOne(**document, child);
    }
  }
}

void Builder::RedefineOne(Document const& document, Node const& node) {
  switch (node.tag) {
    case Tag::SimpleType: return Replace(m_simpleTypes, m_storage.simpleTypes, m_oldSimpleTypes, document, node);
    case Tag::ComplexType: return Replace(m_complexTypes, m_storage.complexTypes, m_oldComplexTypes, document, node);
    case Tag::Group: return Replace(m_groups, m_storage.groups, m_oldGroups, document, node);
    case Tag::AttributeGroup: return Replace(m_attributeGroups, m_attributeSets, m_oldAttributeGroups, document, node);
    default: return;
  }
}

template <class Object>
void Builder::Replace(Table<Object>& table, std::deque<Object>& storage, Originals<Object>& originals,
                      Document const& document, Node const& node) {
  std::optional<QualifiedName> const name = GlobalName(document, node);
  if (!name) return;
  auto const found = table.find(*name);
  if (found == table.end() || found->second.node == nullptr) {
    m_diagnostics.Error(node.place, "no xs:" + std::string(node.name) + " \"" + name->local + "\" to redefine");
    return;
  }
  if (found->second.document == &document) return ReportDuplicate(document, node, found->second);
  Global<Object>& original = originals.all.emplace_back(found->second);
  found->second = {&node, &document, &NewObject(storage, *name, node), State::Empty};
  bool refers = false;
  auto const [references, attribute] = ReferencesIn(node);
  for (Node const* reference : references) {
    std::optional<std::string_view> const text = reference->Find(attribute);
    if (!text || Resolve(document, *reference, *text) != name) continue;
    if (refers) m_diagnostics.Error(reference->place, "a redefinition can refer to what it redefines only once");
    if (!OccursOnce(*reference)) {
      m_diagnostics.Error(reference->place, "what a redefinition refers to must occur once");
    }
    refers = true;
    originals.byReference[{&document, reference}] = &original;
  }
  if (refers) return;
  if constexpr (std::is_same_v<Object, GroupDefinition> || std::is_same_v<Object, AttributeSet>) {
    originals.restricted.emplace_back(*name, &original);
  } else {
    m_diagnostics.Error(node.place, "the base of a redefined type must be the type itself");
  }
}

/// Check redefinitions that do not refer to what they redefine, and so must restrict it.
void Builder::CheckRedefinitions() {
  for (auto const& [name, original] : m_oldGroups.restricted) {
    m_storage.redefinedGroups.emplace_back(m_groups[name].object, original->object);
  }
  for (auto const& [name, original] : m_oldAttributeGroups.restricted) {
    Complete(*original);
    AttributeSet const& now = *m_attributeGroups[name].object;
    AttributeSet const& before = *original->object;
    CheckAttributeRestriction({now.uses, now.wildcard}, {before.uses, before.wildcard},
                              m_attributeGroups[name].node->place, m_diagnostics);
  }
}

/// Take what redefined types have of their originals over, so that nothing refers to these any more.
void Builder::MergeOriginals() {
  for (auto const& original : m_oldComplexTypes.all) m_hiddenTypes.insert(original.object);
  for (ComplexType& type : m_storage.complexTypes) {
    while (m_hiddenTypes.count(type.base) != 0) Merge(type, *type.base);
  }
}

/// A restricted extension of another type is neither of the two seen from there, so it counts as a restriction, whose
/// class may turn out not to derive.
void Builder::Merge(ComplexType& type, ComplexType const& original) {
  using Derivation = ComplexType::Derivation;
  bool const extends = type.derivation == Derivation::Extension && original.derivation == Derivation::Extension;
  if (extends) {
    std::vector<AttributeUse> attributes = original.ownAttributes;
    attributes.insert(attributes.end(), type.ownAttributes.begin(), type.ownAttributes.end());
    type.ownAttributes = std::move(attributes);
    type.ownParticle = Joined(original.ownParticle, type.ownParticle);
  } else {
    type.ownAttributes = type.attributes;
    type.ownParticle = type.particle;
    type.derivation = original.base != nullptr         ? Derivation::Restriction
                      : original.simpleBase != nullptr ? Derivation::Extension
                                                       : Derivation::None;
  }
  type.base = original.base;
  type.simpleBase = original.simpleBase;
}

/// Return the sequence of the two particles.
std::optional<Particle> Builder::Joined(std::optional<Particle> const& first, std::optional<Particle> const& second) {
  if (!first || !second) return first ? first : second;
  ModelGroup& both = m_storage.modelGroups.emplace_back();
  both.place = second->place;
  both.particles = {*first, *second};
  return Particle{1, 1, &both, second->place, nullptr};
}

/// Return what the redefinition that \p reference is in replaces, if \p reference refers to that; else null.
template <class Object>
Builder::Global<Object>* Builder::Original(Originals<Object> const& originals, Document const& document,
                                           Node const& reference) {
  auto const found = originals.byReference.find({&document, &reference});
  return found != originals.byReference.end() ? found->second : nullptr;
}

template Builder::Global<SimpleType>* Builder::Original(Originals<SimpleType> const&, Document const&, Node const&);
template Builder::Global<ComplexType>* Builder::Original(Originals<ComplexType> const&, Document const&, Node const&);
template Builder::Global<GroupDefinition>* Builder::Original(Originals<GroupDefinition> const&, Document const&,
                                                             Node const&);
template Builder::Global<Builder::AttributeSet>* Builder::Original(Originals<AttributeSet> const&, Document const&,
                                                                   Node const&);

}  // namespace Quillon9Generator::Schema
