#include "schema/builder.h"

namespace Quillon9Generator::Schema {

void Builder::FillAttribute(AttributeDeclaration& attribute, Document const& document, Node const& node) {
  ReadValueConstraint(node, attribute.defaultValue, attribute.fixedValue);
  Node const* const anonymous = node.Child(Tag::SimpleType);
  std::optional<std::string_view> const name = node.Find("type");
  attribute.type = anonymous != nullptr ? AnonymousSimpleType(document, *anonymous)
                   : name               ? FindSimpleType(document, node, *name)
                                        : m_builtIns.Get(BuiltIn::AnySimpleType);
}

Builder::AttributeSet Builder::MakeAttributes(Document const& document, Node const& node) {
  AttributeSet set;
  std::vector<AttributeUse> uses;
  Node const* wildcard = nullptr;
  for (Node const& child : node.children) {
    if (child.tag == Tag::Attribute) AddAttribute(set, document, child);
    if (child.tag == Tag::AttributeGroup) AddAttributeGroup(set, document, child);
    if (child.tag == Tag::AnyAttribute) wildcard = &child;
  }
  AddUses(uses, set.uses);
  set.uses = std::move(uses);
  if (wildcard == nullptr) return set;
  Wildcard const own = MakeWildcard(document, *wildcard);
  set.wildcard = set.wildcard ? Intersection(own, *set.wildcard) : own;
  return set;
}

void Builder::AddAttribute(AttributeSet& set, Document const& document, Node const& node) {
  AttributeUse use;
  use.place = node.place;
  use.declaration = node.Has("ref") ? ReferredAttribute(document, node) : LocalAttribute(document, node);
  if (use.declaration == nullptr) return;
  std::string_view const how = Trimmed(node.Find("use").value_or("optional"));
  if (how == "prohibited") return set.prohibited.push_back(use.declaration->name);
  use.required = how == "required";
  ReadValueConstraint(node, use.defaultValue, use.fixedValue);
  if (!use.defaultValue && !use.fixedValue) {
    use.defaultValue = use.declaration->defaultValue;
    use.fixedValue = use.declaration->fixedValue;
  }
  set.uses.push_back(use);
}

AttributeDeclaration const* Builder::ReferredAttribute(Document const& document, Node const& node) {
  Global<AttributeDeclaration> const* const found = Find(m_attributes, "attribute", document, node, *node.Find("ref"));
  return found != nullptr ? found->object : nullptr;
}

AttributeDeclaration const* Builder::LocalAttribute(Document const& document, Node const& node) {
  std::optional<QualifiedName> const name = LocalName(document, node, "attributeFormDefault");
  if (!name) return nullptr;
  AttributeDeclaration& attribute = m_storage.attributes.emplace_back();
  Describe(attribute, node);
  attribute.name = *name;
  FillAttribute(attribute, document, node);
  return &attribute;
}

/// Append \p added to \p uses. The same declaration twice, as by a group that is reached on two ways, is no error.
void Builder::AddUses(std::vector<AttributeUse>& uses, std::vector<AttributeUse> const& added) {
  UsesByName known = ByName(uses);
  for (AttributeUse const& use : added) {
    QualifiedName const& name = use.declaration->name;
    auto const [entry, isNew] = known.try_emplace(name, uses.size());
    if (isNew) {
      uses.push_back(use);
    } else if (uses[entry->second].declaration != use.declaration) {
      m_diagnostics.Error(use.place, "a second attribute \"" + name.local + "\" in one type");
    }
  }
}

Builder::UsesByName Builder::ByName(std::vector<AttributeUse> const& uses) {
  UsesByName indices;
  for (std::size_t i = 0; i != uses.size(); ++i) indices.emplace(uses[i].declaration->name, i);
  return indices;
}

void Builder::AddAttributeGroup(AttributeSet& set, Document const& document, Node const& node) {
  std::optional<std::string_view> const reference = node.Find("ref");
  if (!reference) return;
  Global<AttributeSet>* group = Original(m_oldAttributeGroups, document, node);
  if (group == nullptr) group = Find(m_attributeGroups, "attribute group", document, node, *reference);
  if (group == nullptr) return;
  Complete(*group);
  AttributeSet const& added = *group->object;
  if (!MayInherit(added.uses.size(), node.place)) return;
  set.uses.insert(set.uses.end(), added.uses.begin(), added.uses.end());
  if (!added.wildcard) return;
  set.wildcard = set.wildcard ? Intersection(*set.wildcard, *added.wildcard) : *added.wildcard;
}

void Builder::Complete(Global<AttributeSet>& global) {
  if (!Begin(global)) return;
  *global.object = MakeAttributes(*global.document, *global.node);
  End(global);
}

}  // namespace Quillon9Generator::Schema
