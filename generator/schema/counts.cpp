#include "schema/counts.h"

namespace Quillon9Generator::Schema {

std::optional<int> ReadCount(std::string_view text) {
  bool const isNegative = text.substr(0, 1) == "-";
  if (isNegative || text.substr(0, 1) == "+") text.remove_prefix(1);
  if (text.empty() || text.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  int value = 0;
  for (char const digit : text) {
    if (value > (kTooLarge - 9) / 10) return kTooLarge;
    value = value * 10 + (digit - '0');
  }
  if (isNegative && value != 0) return std::nullopt;
  return value;
}

}  // namespace Quillon9Generator::Schema
