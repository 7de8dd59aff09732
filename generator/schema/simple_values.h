#pragma once

#include <string>
#include <string_view>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// Return \p text as a type with this facet compares it.
std::string Normalized(std::string_view text, WhiteSpace whiteSpace);

/// Return whether \p type is xs:NOTATION or derived from it without an enumeration, so that nothing can have this type.
bool LacksEnumeration(SimpleType const& type);

/// Return whether two texts are the same value of \p type. Those of lists and unions are compared as text.
bool AreEqual(SimpleType const& type, std::string_view a, std::string_view b);

/// Return why \p text is no value of \p type; an empty text if it is one. Patterns of the user and the declarations of
/// prefixes are not checked.
std::string FaultOfValue(SimpleType const& type, std::string_view text);

}  // namespace Quillon9Generator::Schema
