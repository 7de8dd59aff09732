#pragma once

#include <limits>
#include <optional>
#include <string_view>

namespace Quillon9Generator::Schema {

/// Stands for each number beyond the range of minOccurs and maxOccurs.
constexpr int kTooLarge = std::numeric_limits<int>::max();

/// Return the number, kTooLarge beyond the range, or no value for another text.
std::optional<int> ReadCount(std::string_view text);

}  // namespace Quillon9Generator::Schema
