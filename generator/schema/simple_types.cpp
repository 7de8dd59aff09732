#include <algorithm>

#include "schema/builder.h"
#include "schema/limits.h"

namespace Quillon9Generator::Schema {

void Builder::Complete(Global<SimpleType>& global) {
  if (!Begin(global)) return;
  FillSimpleType(*global.object, *global.document, *global.node);
  End(global);
}

SimpleType const* Builder::AnonymousSimpleType(Document const& document, Node const& node) {
  SimpleType& type = m_storage.simpleTypes.emplace_back();
  Describe(type, node);
  Derive(type, m_builtIns.Get(BuiltIn::AnySimpleType));
  if (!MayDescend(node)) return &type;
  ++m_depth;
  FillSimpleType(type, document, node);
  --m_depth;
  return &type;
}

void Builder::FillSimpleType(SimpleType& type, Document const& document, Node const& node) {
  Derive(type, m_builtIns.Get(BuiltIn::AnySimpleType));
  if (!type.IsAnonymous()) type.final = ReadDerivations(document, node, "final", kRestriction | kList | kUnion);
  if (Node const* const restriction = node.Child(Tag::Restriction))
    return FillRestriction(type, document, *restriction);
  if (Node const* const list = node.Child(Tag::List)) return FillList(type, document, *list);
  if (Node const* const members = node.Child(Tag::Union)) return FillUnion(type, document, *members);
}

void Builder::FillRestriction(SimpleType& type, Document const& document, Node const& node) {
  SimpleType const* const base = ReferredSimpleType(document, node, "base");
  if (base == nullptr) return;
  CheckFinal(*base, kRestriction, node);
  std::optional<std::string_view> const name = node.Find("base");
  if (name && base->builtIn == BuiltIn::AnySimpleType && Resolve(document, node, *name) == base->name) {
    m_diagnostics.Error(node.place, "xs:anySimpleType cannot be restricted");
  }
  Derive(type, base);
  ApplyFacets(type, document, node);
}

/// Return the type that \p attribute names or that \p node contains; null after an error.
SimpleType const* Builder::ReferredSimpleType(Document const& document, Node const& node, std::string_view attribute) {
  std::optional<std::string_view> const name = node.Find(attribute);
  Node const* const anonymous = node.Child(Tag::SimpleType);
  if (name && anonymous == nullptr) return FindSimpleType(document, node, *name);
  if (!name && anonymous != nullptr) return AnonymousSimpleType(document, *anonymous);
  return nullptr;
}

void Builder::Derive(SimpleType& type, SimpleType const* base) {
  Facets const& facets = base->facets;
  if (!MayInherit(facets.enumeration.size() + facets.patterns.size() + base->memberTypes.size(), type.place)) return;
  type.base = base;
  type.ancestor = base->ancestor;
  type.variety = base->variety;
  type.itemType = base->itemType;
  type.memberTypes = base->memberTypes;
  type.hasLists = base->hasLists;
  type.facets = facets;
}

void Builder::FillList(SimpleType& type, Document const& document, Node const& node) {
  type.variety = Variety::List;
  type.hasLists = true;
  type.facets.whiteSpace = WhiteSpace::Collapse;
  type.itemType = ReferredSimpleType(document, node, "itemType");
  if (type.itemType == nullptr) type.itemType = m_builtIns.Get(BuiltIn::AnySimpleType);
  CheckFinal(*type.itemType, kList, node);
  if (type.itemType->hasLists) m_diagnostics.Error(node.place, "a list cannot have lists as its items");
}

void Builder::FillUnion(SimpleType& type, Document const& document, Node const& node) {
  type.variety = Variety::Union;
  type.facets.whiteSpace = WhiteSpace::Collapse;
  std::string_view names = Trimmed(node.Find("memberTypes").value_or(""));
  while (!names.empty()) {
    std::size_t const end = std::min(names.find_first_of(" \t\r\n"), names.size());
    type.memberTypes.push_back(FindSimpleType(document, node, names.substr(0, end)));
    names = Trimmed(names.substr(end));
  }
  for (SimpleType const* member : type.memberTypes) CheckFinal(*member, kUnion, node);
  for (Node const& child : node.children) {
    if (child.tag == Tag::SimpleType) type.memberTypes.push_back(AnonymousSimpleType(document, child));
  }
  type.hasLists = std::any_of(type.memberTypes.begin(), type.memberTypes.end(),
                              [](SimpleType const* member) { return member->hasLists; });
}

void Builder::CheckFinal(SimpleType const& type, unsigned derivation, Node const& node) {
  if ((type.final & derivation) == 0) return;
  m_diagnostics.Error(
      node.place, "the type \"" + type.name.local + "\" is final and cannot be used in xs:" + std::string(node.name));
}

bool Builder::MayInherit(std::size_t count, Place const& place) {
  m_inherited += count;
  if (m_inherited <= kMaxInherited) return true;
  if (m_inherited - count <= kMaxInherited) {
    m_diagnostics.Error(place, "the types inherit more than " + std::to_string(kMaxInherited) + " values");
  }
  return false;
}

}  // namespace Quillon9Generator::Schema
