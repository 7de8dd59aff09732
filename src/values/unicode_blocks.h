#pragma once

#include <optional>
#include <string_view>
#include <utility>

namespace Quillon9 {

/// The first and last character of a block of Unicode by the name that "\p{Is...}" uses, without "Is". The blocks are
/// those of W3C XML Schema Part 2, appendix F.1.1.
std::optional<std::pair<char32_t, char32_t>> UnicodeBlockRange(std::string_view name);

}  // namespace Quillon9
