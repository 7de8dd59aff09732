#pragma once

#include <string>

namespace Quillon9 {

/// TestRegEx() without its copies, for the facet checks.
bool MatchesPattern(std::string const& utf8Pattern, std::string const& value);

}  // namespace Quillon9
