#include "schema/builder.h"
#include "schema/limits.h"

namespace Quillon9Generator::Schema {

void Builder::FillElement(ElementDeclaration& element, Document const& document, Node const& node) {
  element.nillable = ReadBool(node, "nillable", false);
  element.abstract = ReadBool(node, "abstract", false);
  element.block = ReadDerivations(document, node, "block", kExtension | kRestriction | kSubstitution);
  if (element.global) element.final = ReadDerivations(document, node, "final", kExtension | kRestriction);
  ReadValueConstraint(node, element.defaultValue, element.fixedValue);
  ReadIdentityConstraints(element, document, node);
  FillElementType(element, document, node);
  bool const hasType = element.simpleType != nullptr || element.complexType != nullptr;
  if (!hasType && !element.global) element.complexType = m_builtIns.anyType;  // a global one may have that of its head
  FillSubstitution(element, document, node);
}

void Builder::FillElementType(ElementDeclaration& element, Document const& document, Node const& node) {
  Node const* const simple = node.Child(Tag::SimpleType);
  Node const* const complex = node.Child(Tag::ComplexType);
  std::optional<std::string_view> const name = node.Find("type");
  if (simple != nullptr) {
    element.simpleType = AnonymousSimpleType(document, *simple);
  } else if (complex != nullptr) {
    ComplexType& type = m_storage.complexTypes.emplace_back();
    Describe(type, *complex);
    type.owner = &element;
    element.complexType = &type;
    m_pending.push_back({&type, complex, &document});
  } else if (name) {
    TypeReference const type = FindType(document, node, *name);
    element.simpleType = type.simple;
    element.complexType = type.complex != nullptr ? type.complex->object : nullptr;
    if (type.simple == nullptr && type.complex == nullptr) element.complexType = m_builtIns.anyType;  // after an error
  }
}

void Builder::FillSubstitution(ElementDeclaration& element, Document const& document, Node const& node) {
  std::optional<std::string_view> const name = node.Find("substitutionGroup");
  if (!name) return;
  if (!element.global) return;
  Global<ElementDeclaration> const* const head = Find(m_elements, "element", document, node, *name);
  if (head != nullptr) element.substitutionHead = head->object;
}

void Builder::CompleteSubstitutions() {
  for (auto const& [tag, name] : m_order) {
    if (tag != Tag::Element) continue;
    ElementDeclaration& element = *m_elements[name].object;
    CheckSubstitution(element);
    TakeTypeOfHead(element);
    if (element.substitutionHead == nullptr) continue;
    m_elements[element.substitutionHead->name].object->substitutes.push_back(&element);
  }
}

/// Heads that lead back to the element are an error, after which it has no head.
void Builder::CheckSubstitution(ElementDeclaration& element) {
  int levels = 0;
  for (ElementDeclaration const* head = element.substitutionHead; head != nullptr; head = head->substitutionHead) {
    if (head != &element && ++levels <= kMaxLevels) continue;
    m_diagnostics.Error(element.place,
                        head == &element
                            ? "the element \"" + element.name.local + "\" substitutes itself"
                            : "more than " + std::to_string(kMaxLevels) + " elements substitute one another");
    element.substitutionHead = nullptr;
    return;
  }
}

// A type is inherited from the nearest head that has one.
void Builder::TakeTypeOfHead(ElementDeclaration& element) {
  int levels = 0;
  ElementDeclaration const* source = &element;
  while (source->simpleType == nullptr && source->complexType == nullptr && source->substitutionHead != nullptr) {
    source = source->substitutionHead;
    if (++levels > kMaxLevels) break;  // a circle, which is reported at the elements in it
  }
  element.simpleType = source->simpleType;
  element.complexType = source->complexType;
  if (element.simpleType == nullptr && element.complexType == nullptr) element.complexType = m_builtIns.anyType;
}

namespace {

/// Whether \p derived, a type other than \p base, may stand where an element of the type \p base blocks that much.
bool IsBlocked(ComplexType const* derived, ComplexType const& base, unsigned blocked) {
  unsigned used = 0;
  for (ComplexType const* type = derived; type != nullptr && type != &base; type = type->base) {
    used |= type->derivation == ComplexType::Derivation::Extension ? kExtension : kRestriction;
    blocked |= type->base != nullptr ? type->base->block : base.block;
  }
  return (used & blocked) != 0;
}

/// XML Schema Part 1, 3.3.6, "Substitution Group OK (Transitive)".
bool MayStandFor(ElementDeclaration const& head, ElementDeclaration const& member) {
  if (member.abstract) return false;
  bool const isSameType = member.simpleType == head.simpleType && member.complexType == head.complexType;
  if (isSameType) return true;
  if (member.complexType == nullptr || head.complexType == nullptr) return (head.block & kRestriction) == 0;
  return !IsBlocked(member.complexType, *head.complexType, head.block);
}

}  // namespace

// Needs the derivation of all types.
void Builder::CollectStandIns() {
  for (auto const& [name, global] : m_elements) {
    ElementDeclaration& head = *global.object;
    if ((head.block & kSubstitution) != 0) continue;
    std::vector<ElementDeclaration const*> group = head.substitutes;
    for (std::size_t i = 0; i < group.size(); ++i) {  // no element is in its own group
      ElementDeclaration const* const member = group[i];
      if (MayStandFor(head, *member)) head.standIns.push_back(member);
      for (ElementDeclaration const* const next : member->substitutes) group.push_back(next);
    }
  }
}

}  // namespace Quillon9Generator::Schema
