#include "schema/validity/derivation.h"

#include <unordered_set>

#include "schema/node.h"

namespace Quillon9Generator::Schema {

namespace {

/// Add \p type and, if it is a union, all types that it is made of.
void Collect(SimpleType const& type, std::unordered_set<SimpleType const*>& types) {
  if (!types.insert(&type).second || type.variety != Variety::Union) return;
  for (SimpleType const* member : type.memberTypes) Collect(*member, types);
}

bool IsSimpleDerived(SimpleType const& type, SimpleType const& base, unsigned excluded) {
  if (&type == &base) return true;
  std::unordered_set<SimpleType const*> bases;
  Collect(base, bases);
  if (bases.count(&type) != 0) return true;
  if ((excluded & kRestriction) != 0) return false;
  for (SimpleType const* each = type.base; each != nullptr; each = each->base) {
    if (bases.count(each) != 0) return true;
  }
  return false;
}

}  // namespace

Type TypeOf(ElementDeclaration const& element) { return {element.simpleType, element.complexType}; }

bool IsDerived(Type type, Type base, unsigned excluded) {
  if (type == base) return true;
  bool const isAny = base.complex != nullptr && base.complex->anyType;
  for (ComplexType const* each = type.complex; each != nullptr; each = each->base) {
    if (each == base.complex) return true;
    if (each->anyType) return false;
    bool const isExtension = each->derivation == ComplexType::Derivation::Extension;
    if ((excluded & (isExtension ? kExtension : kRestriction)) != 0) return false;
    type.simple = each->simpleBase;
  }
  if (isAny) return type.simple == nullptr || (excluded & kRestriction) == 0;
  return type.simple != nullptr && base.simple != nullptr && IsSimpleDerived(*type.simple, *base.simple, excluded);
}

std::string Described(Type type) {
  QualifiedName const name = type.simple != nullptr    ? type.simple->name
                             : type.complex != nullptr ? type.complex->name
                                                       : QualifiedName();
  if (name.local.empty()) return "an anonymous type";
  return name.ns == kSchemaNamespace ? "xs:" + name.local : "\"" + name.local + "\"";
}

}  // namespace Quillon9Generator::Schema
