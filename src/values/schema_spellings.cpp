#include "values/schema_spellings.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

#include "values/number_text.h"

namespace Quillon9 {

namespace {

using Accepts = std::function<bool(std::string const&)>;
using Spelling = std::optional<std::string>;

constexpr std::size_t kMostZeros = 18;

Spelling IfAccepted(std::string text, Accepts const& accepts) {
  if (accepts(text)) return text;
  return std::nullopt;
}

/// \p text with up to kMostZeros zeros inserted at \p at, after a point if there is none and \p needsPoint.
Spelling WithZeros(std::string text, std::size_t at, bool needsPoint, Accepts const& accepts) {
  if (needsPoint) text.insert(at++, 1, '.');
  for (std::size_t count = 1; count <= kMostZeros; ++count) {
    text.insert(at, 1, '0');
    if (accepts(text)) return text;
  }
  return std::nullopt;
}

/// Zeros after the point of a number.
Spelling WithFraction(std::string const& number, Accepts const& accepts) {
  return WithZeros(number, number.size(), number.find('.') == std::string::npos, accepts);
}

/// Zeros in front of a number, and after its point if \p hasFraction.
Spelling OfNumber(std::string number, bool hasFraction, Accepts const& accepts) {
  std::size_t const first = number.front() == '-' ? 1 : 0;
  for (std::size_t count = 0; count <= kMostZeros; ++count) {
    if (count != 0) number.insert(first, 1, '0');
    if (count != 0 && accepts(number)) return number;
    if (!hasFraction) continue;
    if (Spelling found = WithFraction(number, accepts)) return found;
  }
  return std::nullopt;
}

/// A finite floating-point number as its digits, without zeros at either end, and the power of ten of the first one.
struct Scientific {
  explicit Scientific(std::string_view text) : isNegative(text.front() == '-') {
    text.remove_prefix(isNegative ? 1 : 0);
    std::string_view const mantissa = text.substr(0, text.find('e'));
    std::size_t const point = std::min(mantissa.find('.'), mantissa.size());
    digits.assign(mantissa.substr(0, point)).append(mantissa.substr(std::min(point + 1, mantissa.size())));
    std::size_t const first = digits.find_first_not_of('0');
    if (first == std::string::npos) {
      digits = "0";
      return;
    }
    digits = digits.substr(first, digits.find_last_not_of('0') + 1 - first);
    power = static_cast<int>(point) - 1 - static_cast<int>(first);
    if (mantissa.size() < text.size()) power += std::stoi(std::string(text.substr(mantissa.size() + 1)));
  }

  std::string WithoutExponent() const {
    auto const zeros = [](int count) { return std::string(static_cast<std::size_t>(count), '0'); };
    auto const size = static_cast<int>(digits.size());
    std::string const sign = isNegative ? "-" : "";
    if (power < 0) return sign + "0." + zeros(-power - 1) + digits;
    if (power >= size - 1) return sign + digits + zeros(power - size + 1);
    return sign + std::string(digits).insert(static_cast<std::size_t>(power) + 1, ".");
  }

  /// \p mark is "e" or "E". With \p hasPoint and "E", the text is the canonical one.
  std::string WithExponent(char const* mark, bool hasPoint) const {
    std::string mantissa = digits;
    if (hasPoint && mantissa.size() == 1) mantissa += '0';
    if (mantissa.size() > 1) mantissa.insert(1, ".");
    return (isNegative ? "-" : "") + mantissa + mark + std::to_string(power);
  }

  bool isNegative;
  std::string digits;
  int power = 0;
};

Spelling OfFloating(std::string const& text, Accepts const& accepts) {
  if (!IsDigit(text[text.front() == '-' ? 1 : 0])) return std::nullopt;
  Scientific const number(text);
  std::string const plain = number.WithoutExponent();
  if (accepts(plain)) return plain;
  if (Spelling found = OfNumber(plain, true, accepts)) return found;
  for (char const* mark : {"E", "e"}) {
    for (bool const hasPoint : {true, false}) {
      if (Spelling found = IfAccepted(number.WithExponent(mark, hasPoint), accepts)) return found;
    }
  }
  return std::nullopt;
}

/// Where the zone of a date or time begins: its end if it has none.
std::size_t ZoneOf(std::string const& text) {
  std::size_t const size = text.size();
  if (text.back() == 'Z') return size - 1;
  bool const hasOffset = size > 6 && text[size - 3] == ':' && (text[size - 6] == '+' || text[size - 6] == '-');
  return hasOffset ? size - 6 : size;
}

/// Zeros after the seconds of a time.
Spelling WithSeconds(std::string const& text, ItemType type, Accepts const& accepts) {
  if (type != ItemType_datetime && type != ItemType_time) return std::nullopt;
  return WithZeros(text, ZoneOf(text), text.find('.') == std::string::npos, accepts);
}

Spelling OfMoment(std::string const& text, ItemType type, Accepts const& accepts) {
  if (Spelling found = WithSeconds(text, type, accepts)) return found;
  std::size_t const zone = ZoneOf(text);
  std::string const suffix = text.substr(zone);
  if (suffix != "Z" && suffix != "+00:00") return std::nullopt;
  std::string const other = text.substr(0, zone) + (suffix == "Z" ? "+00:00" : "Z");
  if (Spelling found = IfAccepted(other, accepts)) return found;
  return WithSeconds(other, type, accepts);
}

Spelling InLowerCase(std::string digits, Accepts const& accepts) {
  for (char& c : digits) {
    if (c >= 'A' && c <= 'F') c = static_cast<char>(c - 'A' + 'a');
  }
  return IfAccepted(std::move(digits), accepts);
}

Spelling Find(std::string const& text, ItemType type, Accepts const& accepts) {
  switch (type) {
    case ItemType_i1:
    case ItemType_i2:
    case ItemType_i4:
    case ItemType_i8:
    case ItemType_ui1:
    case ItemType_ui2:
    case ItemType_ui4:
    case ItemType_ui8:
    case ItemType_integer: return OfNumber(text, false, accepts);
    case ItemType_decimal: return OfNumber(text, true, accepts);
    case ItemType_r4:
    case ItemType_r8: return OfFloating(text, accepts);
    case ItemType_date:
    case ItemType_datetime:
    case ItemType_time:
    case ItemType_yearMonth:
    case ItemType_monthDay: return OfMoment(text, type, accepts);
    case ItemType_boolean: return IfAccepted(text == "true" ? "1" : "0", accepts);
    case ItemType_hexBinary: return InLowerCase(text, accepts);
    case ItemType_base64Binary:
    case ItemType_duration:
    case ItemType_year:
    case ItemType_month:
    case ItemType_day:
    case ItemType_char:
    case ItemType_string:
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  return std::nullopt;
}

}  // namespace

std::string FirstSpelling(std::string const& text, ItemType type, Accepts const& accepts) {
  return Find(text, type, accepts).value_or(text);
}

}  // namespace Quillon9
