#pragma once

#include <string>
#include <string_view>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// Return \p text as a type with this facet compares it.
std::string Normalized(std::string_view text, WhiteSpace whiteSpace);

/// Return why \p text is no value of \p type; an empty text if it is one. Patterns of the user and the declarations of
/// prefixes are not checked.
std::string FaultOfValue(SimpleType const& type, std::string_view text);

}  // namespace Quillon9Generator::Schema
