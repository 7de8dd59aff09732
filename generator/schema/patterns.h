#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Quillon9Generator::Schema {

/// The patterns of a simple type as one pattern for Quillon9::TestRegEx(), which takes the first match that PCRE finds:
/// the result reaches to the end of the value whenever a way there exists. \p steps are the derivation steps: each must
/// match, by one of its alternatives. Regular expressions are those of XML Schema Part 2, appendix F
/// (https://www.w3.org/TR/xmlschema-2/#regexs). Nothing for one that breaks their grammar, or that is too large for PCRE.
std::optional<std::string> CombinePatterns(std::vector<std::vector<std::string>> const& steps);

/// What is wrong with one regular expression.
struct PatternFaults {
  std::string error;    ///< why it breaks the grammar; empty if it does not
  std::string warning;  ///< what the grammar does not allow, but is taken as most processors take it
};
PatternFaults CheckPattern(std::string_view pattern);

/// The first and last character of a block of Unicode by the name that "\p{Is...}" uses.
std::optional<std::pair<char32_t, char32_t>> UnicodeBlockRange(std::string_view name);

}  // namespace Quillon9Generator::Schema
