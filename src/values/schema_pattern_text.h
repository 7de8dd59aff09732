#pragma once

#include <string>

#include "values/schema_pattern_syntax.h"

namespace Quillon9 {

/// The start of a text for PCRE that is right for short values. Where PCRE2 knows one character of a condition and another
/// one of the rest, it takes for granted that a value has both, though they may be the same: "(?=a\z)(?:b?a|a)\z".
constexpr char kForEveryLength[] = "(*NO_START_OPT)";

/// The expression for PCRE, in UTF-8, which matches the same texts if it has to reach their end.
std::string TextForPcre(PatternNode const& node);

/// Whether there are several ways through the expression, so that the first match of PCRE may end early.
bool HasSeveralWays(PatternNode const& node);

}  // namespace Quillon9
