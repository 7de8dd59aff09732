#pragma once

#include <string>
#include <string_view>

namespace Quillon9Generator::Schema {

/// What may stand in an attribute of a schema document.
enum class AttributeKind {
  Text,
  Id,
  Name,
  QualifiedName,
  QualifiedNames,
  Boolean,
  Count,
  CountOrUnbounded,
  Uri,
  Form,
  Use,
  Processing,
  Namespaces,
  DerivationSet,      ///< of complex types
  FinalOfSimpleType,  ///< ways to derive simple types
  FinalDefault,       ///< ways to derive any types
  Block
};

/// Return what is wrong with \p value as the attribute \p name, or an empty text.
std::string FaultOf(AttributeKind kind, std::string_view name, std::string_view value);

}  // namespace Quillon9Generator::Schema
