#pragma once

#include <string_view>
#include <vector>

#include "schema/storage.h"

namespace Quillon9Generator::Schema {

/// The types that XML Schema defines itself.
struct BuiltInTypes {
  ComplexType const* anyType;
  std::vector<SimpleType const*> simpleTypes;  ///< all but None, in the order of BuiltIn

  SimpleType const* Get(BuiltIn type) const { return simpleTypes[static_cast<std::size_t>(type) - 1]; }
};

/// Create these types in \p storage.
BuiltInTypes AddBuiltInTypes(Storage& storage);

/// Return the name of a built-in type, without a prefix.
char const* NameOf(BuiltIn type);

/// Return whether XML Schema defines a type with this local name.
bool IsBuiltInType(std::string_view name);

}  // namespace Quillon9Generator::Schema
