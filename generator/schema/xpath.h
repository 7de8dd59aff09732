#pragma once

#include <string>
#include <string_view>

#include "schema/node.h"

namespace Quillon9Generator::Schema {

/// Return what is wrong with \p path as the path of a selector, or of a field if \p mayEndInAttribute
/// (https://www.w3.org/TR/xmlschema-1/#coss-identity-constraint); an empty text for nothing.
std::string FaultOfPath(std::string_view path, bool mayEndInAttribute, Scope const& scope);

}  // namespace Quillon9Generator::Schema
