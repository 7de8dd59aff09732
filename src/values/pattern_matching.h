#pragma once

#include <string>

namespace Quillon9 {

/// TestRegEx() without copies, for the facet checks.
bool MatchesPattern(std::string const& utf8Pattern, std::string const& value);

/// \throws CQnException "The value is too long to be matched"
[[noreturn]] void ThrowTooLongToMatch();

}  // namespace Quillon9
