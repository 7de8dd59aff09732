#pragma once

#include <string>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// A type of either sort.
struct Type {
  SimpleType const* simple = nullptr;
  ComplexType const* complex = nullptr;

  bool operator==(Type const& other) const { return simple == other.simple && complex == other.complex; }
  bool operator!=(Type const& other) const { return !(*this == other); }
};

Type TypeOf(ElementDeclaration const& element);

/// Return whether \p type is \p base or derived from it without a step that \p excluded, a set of Derivations, names
/// (https://www.w3.org/TR/xmlschema-1/#cos-ct-derived-ok, #cos-st-derived-ok).
bool IsDerived(Type type, Type base, unsigned excluded);

/// Return what a message calls the type.
std::string Described(Type type);

}  // namespace Quillon9Generator::Schema
