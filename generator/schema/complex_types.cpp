#include <algorithm>

#include "schema/builder.h"

namespace Quillon9Generator::Schema {

namespace {

using Content = ComplexType::Content;

bool IsEmpty(Particle const& particle) {
  auto const* const group = std::get_if<ModelGroup const*>(&particle.term);
  if (group == nullptr || particle.group != nullptr || !(*group)->particles.empty()) return false;
  return (*group)->compositor != ModelGroup::Compositor::Choice || particle.minOccurs == 0;
}

}  // namespace

void Builder::Complete(Global<ComplexType>& global) {
  if (!Begin(global)) return;
  FillComplexType(*global.object, *global.document, *global.node);
  End(global);
}

void Builder::FillComplexType(ComplexType& type, Document const& document, Node const& node) {
  type.abstract = ReadBool(node, "abstract", false);
  type.final = ReadDerivations(document, node, "final", kExtension | kRestriction);
  type.block = ReadDerivations(document, node, "block", kExtension | kRestriction);
  bool const mixed = ReadBool(node, "mixed", false);
  if (Node const* const content = node.Child(Tag::SimpleContent)) return FillSimpleContent(type, document, *content);
  if (Node const* const content = node.Child(Tag::ComplexContent)) {
    return FillComplexContent(type, document, *content, ReadBool(*content, "mixed", mixed));
  }
  SetParticle(type, nullptr, OwnParticle(document, node), mixed);
  SetAttributes(type, nullptr, MakeAttributes(document, node));
}

void Builder::FillComplexContent(ComplexType& type, Document const& document, Node const& node, bool mixed) {
  Node const* const derivation = DerivationIn(node);
  if (derivation == nullptr) return;
  TypeReference const reference = FindBase(document, *derivation);
  if (reference.simple != nullptr) {
    m_diagnostics.Error(derivation->place, "a type with complex content cannot be derived from a simple type");
  }
  ComplexType const* const base = reference.complex != nullptr ? reference.complex->object : nullptr;
  SetBase(type, base, *derivation);
  SetParticle(type, base, OwnParticle(document, *derivation), mixed);
  if (base != nullptr && base->content == Content::Simple) KeepSimpleContent(type, *base, *derivation);
  SetAttributes(type, base, MakeAttributes(document, *derivation));
}

/// An extension without content of its own has that of its base, even if that is simple.
void Builder::KeepSimpleContent(ComplexType& type, ComplexType const& base, Node const& derivation) {
  type.simpleContent = base.simpleContent;
  if (type.content == Content::Simple) return;
  m_diagnostics.Error(derivation.place, "complex content cannot be derived from simple content");
}

void Builder::FillSimpleContent(ComplexType& type, Document const& document, Node const& node) {
  type.content = Content::Simple;
  type.simpleContent = m_builtIns.Get(BuiltIn::AnySimpleType);
  Node const* const derivation = DerivationIn(node);
  if (derivation == nullptr) return;
  TypeReference const reference = FindBase(document, *derivation);
  ComplexType const* const base = reference.complex != nullptr ? reference.complex->object : nullptr;
  SetBase(type, base, *derivation);
  type.simpleBase = reference.simple;
  if (derivation->tag == Tag::Restriction) {
    if (reference.simple != nullptr) {
      m_diagnostics.Error(derivation->place, "the base of a restriction in xs:simpleContent must be a complex type");
    } else if (base != nullptr) {
      type.simpleContent = RestrictedContent(*base, document, *derivation);
    }
  } else if (reference.simple != nullptr) {
    type.simpleContent = reference.simple;
  } else if (base != nullptr) {
    type.simpleContent = SimpleContentOf(*base, *derivation);
  }
  SetAttributes(type, base, MakeAttributes(document, *derivation));
}

Node const* Builder::DerivationIn(Node const& content) {
  for (Node const& child : content.children) {
    if (child.tag == Tag::Restriction || child.tag == Tag::Extension) return &child;
  }
  return nullptr;
}

/// Return the base type, complete.
Builder::TypeReference Builder::FindBase(Document const& document, Node const& derivation) {
  std::optional<std::string_view> const name = derivation.Find("base");
  if (!name) return {};
  TypeReference const type = FindType(document, derivation, *name);
  if (type.complex != nullptr) Complete(*type.complex);
  return type.complex == nullptr || type.complex->state == State::Filled ? type : TypeReference{};
}

SimpleType const* Builder::SimpleContentOf(ComplexType const& base, Node const& derivation) {
  if (base.content == Content::Simple && base.simpleContent != nullptr) return base.simpleContent;
  m_diagnostics.Error(derivation.place, "the base of a type with simple content must have simple content");
  return m_builtIns.Get(BuiltIn::AnySimpleType);
}

/// Return the type of the text of a restriction of \p base.
SimpleType const* Builder::RestrictedContent(ComplexType const& base, Document const& document,
                                             Node const& derivation) {
  Node const* const anonymous = derivation.Child(Tag::SimpleType);
  SimpleType const* const content =
      anonymous != nullptr ? AnonymousSimpleType(document, *anonymous) : SimpleContentOf(base, derivation);
  if (!HasFacets(derivation)) return content;
  SimpleType& type = m_storage.simpleTypes.emplace_back();
  type.place = derivation.place;
  Derive(type, content);
  ApplyFacets(type, document, derivation);
  return &type;
}

/// Return the content that \p node itself has; no value if it is empty.
std::optional<Particle> Builder::OwnParticle(Document const& document, Node const& node) {
  for (Node const& child : node.children) {
    if (child.tag != Tag::Group && child.tag != Tag::All && child.tag != Tag::Choice && child.tag != Tag::Sequence)
      continue;
    std::optional<Particle> particle = MakeParticle(document, child);
    if (particle && IsEmpty(*particle)) particle.reset();
    return particle;
  }
  return std::nullopt;
}

void Builder::SetBase(ComplexType& type, ComplexType const* base, Node const& derivation) {
  bool const isExtension = derivation.tag == Tag::Extension;
  if (base == nullptr || !base->anyType) type.base = base;
  if (isExtension || base == nullptr || !base->anyType) {
    type.derivation = isExtension ? ComplexType::Derivation::Extension : ComplexType::Derivation::Restriction;
  }
}

void Builder::SetParticle(ComplexType& type, ComplexType const* base, std::optional<Particle> own, bool mixed) {
  bool const isExtension = type.derivation == ComplexType::Derivation::Extension;
  bool const baseIsMixed = base != nullptr && base->content == Content::Mixed;
  bool const baseHasElements = base != nullptr && base->content == Content::ElementOnly;
  if (isExtension && ((mixed && baseHasElements) || (!mixed && own && baseIsMixed))) {
    m_diagnostics.Error(type.place, "the content must be mixed in the base as well, or in neither");
  }
  type.ownParticle = type.particle = own;
  type.content = mixed ? Content::Mixed : own ? Content::ElementOnly : Content::Empty;
  if (type.derivation != ComplexType::Derivation::Extension || base == nullptr) return;
  if (!own && !mixed) type.content = base->content;
  if (base->content == Content::Mixed) type.content = Content::Mixed;
  if (!base->particle) return;
  type.particle = Joined(base->particle, own);
  if (own && type.content == Content::Empty) type.content = Content::ElementOnly;
}

void Builder::SetAttributes(ComplexType& type, ComplexType const* base, AttributeSet own) {
  bool const isExtension = type.derivation == ComplexType::Derivation::Extension;
  type.attributeWildcard = own.wildcard;
  if (base != nullptr && !base->anyType && MayInherit(base->attributes.size(), type.place)) {
    type.attributes = base->attributes;
  }
  if (isExtension) {
    if (base != nullptr && base->attributeWildcard) {
      type.attributeWildcard =
          own.wildcard ? United(*own.wildcard, *base->attributeWildcard) : *base->attributeWildcard;
    }
    AddUses(type.attributes, own.uses);
    type.ownAttributes = std::move(own.uses);
  } else {
    Restrict(type.attributes, own);
    type.ownAttributes = type.attributes;
  }
}

/// Replace, remove and add uses as a restriction says.
void Builder::Restrict(std::vector<AttributeUse>& uses, AttributeSet const& own) {
  UsesByName const inherited = ByName(uses);
  for (AttributeUse const& use : own.uses) {
    auto const found = inherited.find(use.declaration->name);
    found != inherited.end() ? void(uses[found->second] = use) : uses.push_back(use);
  }
  std::set<QualifiedName> const prohibited(own.prohibited.begin(), own.prohibited.end());
  auto const isProhibited = [&](AttributeUse const& use) { return prohibited.count(use.declaration->name) != 0; };
  uses.erase(std::remove_if(uses.begin(), uses.end(), isProhibited), uses.end());
}

}  // namespace Quillon9Generator::Schema
