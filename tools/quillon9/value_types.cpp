#include "value_types.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace Quillon9Tool {

using Quillon9::ItemType;

namespace {

/// Without the exponent: it is lower case in the library's alphabet and upper case in the standard's.
constexpr std::string_view kNumeric = "0123456789-+. ";
constexpr std::string_view kDateTime = Quillon9::RESTRICTED_ALPHABET_VALUES_DATE_TIME;
/// The octet that identifies the alphabet or the algorithm.
constexpr std::size_t kExtraOctet = 1;
constexpr std::size_t kLongestInteger = 20;

bool IsOf(std::string_view alphabet, std::string const& value) {
  return value.find_first_not_of(alphabet) == std::string::npos;
}

/// Return the number whose only spelling is \p value.
std::optional<std::int64_t> IntegerOf(std::string const& value) {
  if (value.empty() || value.size() > kLongestInteger) return std::nullopt;
  std::int64_t number = 0;
  auto const result = std::from_chars(value.data(), value.data() + value.size(), number);
  bool const isWhole = result.ec == std::errc() && result.ptr == value.data() + value.size();
  if (!isWhole || std::to_string(number) != value) return std::nullopt;
  return number;
}

template <class Integer>
bool Fits(std::int64_t number) {
  return number >= std::numeric_limits<Integer>::min() && number <= std::numeric_limits<Integer>::max();
}

}  // namespace

// Binary values are excluded, because any word may look like one, and so are floating-point numbers, because readers
// spell them differently.
ItemType ShortestType(std::string const& value) {
  ItemType best = Quillon9::ItemType_string;
  std::size_t bestSize = value.size();
  auto const offer = [&](ItemType type, std::size_t octets) {
    if (octets + kExtraOctet >= bestSize) return;
    best = type;
    bestSize = octets + kExtraOctet;
  };
  if (value == "true" || value == "false") offer(Quillon9::ItemType_boolean, 1);
  std::size_t const packed = (value.size() + 1) / 2;
  bool const isDateLike = value.find_first_of("-:", 1) != std::string::npos;  // and also a number, by its characters
  if (isDateLike && IsOf(kDateTime, value)) offer(Quillon9::ItemType_datetime, packed);
  if (IsOf(kNumeric, value)) offer(Quillon9::ItemType_decimal, packed);
  if (auto const number = IntegerOf(value)) {
    if (Fits<std::int16_t>(*number)) offer(Quillon9::ItemType_i2, sizeof(std::int16_t));
    if (Fits<std::int32_t>(*number)) offer(Quillon9::ItemType_i4, sizeof(std::int32_t));
    offer(Quillon9::ItemType_i8, sizeof(std::int64_t));
  }
  return best;
}

}  // namespace Quillon9Tool
