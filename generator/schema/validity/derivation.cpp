#include "schema/validity/derivation.h"

#include <algorithm>

#include "schema/node.h"

namespace Quillon9Generator::Schema {

namespace {

bool IsSimpleDerived(SimpleType const& type, SimpleType const& base, unsigned excluded) {
  if (&type == &base || base.builtIn == BuiltIn::AnySimpleType) return &type == &base || (excluded & kRestriction) == 0;
  bool const isMember =
      base.variety == Variety::Union &&
      std::any_of(base.memberTypes.begin(), base.memberTypes.end(),
                  [&](SimpleType const* member) { return IsSimpleDerived(type, *member, excluded); });
  if (isMember) return true;
  return type.base != nullptr && (excluded & kRestriction) == 0 && IsSimpleDerived(*type.base, base, excluded);
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
