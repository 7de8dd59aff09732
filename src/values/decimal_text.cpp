#include <string.h>

#include <algorithm>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/whitespace.h"
#include "values/decimal_parts.h"
#include "values/digits.h"
#include "values/number_text.h"

namespace Quillon9 {

namespace {

// No real value comes near these limits; eight characters of text must not cost gigabytes. The first one applies
// separately to the digits before the point and to those after it.
constexpr std::size_t kMaxDigits = 500000;
constexpr int kMaxExponent = CDecimalParts::m_maxExponent;
// Reading of exponents stops here: they leave nothing of any accepted digits.
constexpr std::size_t kHugeExponent = 100000000;

// A section of a text that contains `count` digits and skipped characters.
struct DigitRange {
  char const* begin = nullptr;
  char const* end = nullptr;
  std::size_t count = 0;
};

struct DecimalText {
  DigitRange whole;
  DigitRange fraction;
  DigitRange exponentDigits;
  std::size_t exponent = 0;
  bool isNegative = false;
  bool isExponentNegative = false;
};

bool IsExponentMark(char c) { return c == 'e' || c == 'E'; }
bool IsSign(char c) { return c == '-' || c == '+'; }

[[noreturn]] void ThrowInvalidChar(char const* text, char const* at) {
  throw OfKind(FailureKind_BadValue,
               CQnInvalidValueException(
                   FormatString("The string representing a Decimal, contained an invalid char at position %d [%s]",
                                static_cast<int>(at - text), text)));
}

// `format` expects the limit and the text.
[[noreturn]] void ThrowBeyondLimit(char const* format, int limit, char const* text) {
  constexpr std::size_t kShown = 64;
  std::string shown(text, strnlen(text, kShown));
  if (text[shown.size()] != '\0') shown += "...";
  throw OfKind(FailureKind_BadValue, CQnOverFlowException(FormatString(format, limit, shown.c_str())));
}

// Reads digits, and also signs if `isNegative` is given, until a character that is neither of them nor white space.
DigitRange ScanDigits(char const* at, bool* isNegative) {
  DigitRange range;
  range.begin = at;
  for (;; ++at) {
    if (IsDigit(*at)) {
      ++range.count;
    } else if (isNegative != nullptr && IsSign(*at)) {
      *isNegative = *at == '-';
    } else if (!CWhitespaceUtils::IsWhiteSpace(*at)) {
      break;
    }
  }
  range.end = at;
  return range;
}

char const* ScanExponent(char const* at, DecimalText& parts) {
  for (; CWhitespaceUtils::IsWhiteSpace(*at) || IsSign(*at); ++at) {
    if (IsSign(*at)) parts.isExponentNegative = *at == '-';
  }
  parts.exponentDigits.begin = at;
  for (; IsDigit(*at); ++at) {
    if (parts.exponent < kHugeExponent) parts.exponent = parts.exponent * 10 + static_cast<std::size_t>(*at - '0');
  }
  parts.exponentDigits.end = at;
  parts.exponentDigits.count = static_cast<std::size_t>(at - parts.exponentDigits.begin);
  return at;
}

DecimalText Scan(char const* text) {
  DecimalText parts;
  parts.whole = ScanDigits(text, &parts.isNegative);
  char const* at = parts.whole.end;
  if (*at == '.') {
    parts.fraction = ScanDigits(at + 1, nullptr);
    at = parts.fraction.end;
  }
  if (IsExponentMark(*at)) at = ScanExponent(at + 1, parts);
  if (*at != '\0') ThrowInvalidChar(text, at);
  if (parts.whole.count > kMaxDigits || parts.fraction.count > kMaxDigits) {
    ThrowBeyondLimit("The digits of a Decimal exceed the limit of %d [%s]", static_cast<int>(kMaxDigits), text);
  }
  return parts;
}

[[noreturn]] void ThrowExponentBeyondLimit(char const* text) {
  ThrowBeyondLimit("The exponent of a Decimal exceeds the limit of %d [%s]", kMaxExponent, text);
}

// Least significant first, without the most significant zeros.
Digits ReadDigits(DigitRange range) {
  while (range.count != 0 && (*range.begin < '1' || *range.begin > '9')) {
    if (*range.begin == '0') --range.count;
    ++range.begin;
  }
  if (range.count == 0) return Digits(1, 0);
  Digits digits(range.count, 0);
  for (char const* at = range.begin; at != range.end; ++at) {
    if (IsDigit(*at)) digits[--range.count] = static_cast<char>(*at - '0');
  }
  return digits;
}

}  // namespace

CDecimalParts CDecimalParts::Parse(char const* text) {
  DecimalText const scanned = Scan(text);
  bool const isBeyondLimit = scanned.exponent > kMaxExponent;
  if (isBeyondLimit && !scanned.isExponentNegative) ThrowExponentBeyondLimit(text);

  std::int32_t const sign = scanned.isNegative ? -1 : 1;
  CDecimalParts parsed;
  parsed.m_whole = CBigInteger(sign, ReadDigits(scanned.whole));
  parsed.m_fraction = CBigInteger(sign, ReadDigits(scanned.fraction));
  parsed.m_divider = static_cast<std::int32_t>(std::max<std::size_t>(scanned.fraction.count, 1));
  if (scanned.exponentDigits.count != 0) {
    scanned.isExponentNegative ? parsed.DivideByPow10(scanned.exponent) : parsed.MultiplyByPow10(scanned.exponent);
  }
  if (isBeyondLimit && !(parsed.m_whole.IsZero() && parsed.m_fraction.IsZero())) ThrowExponentBeyondLimit(text);
  parsed.RoundToLimit();
  return parsed;
}

bool CDecimalParts::HasAtMostDigits(int total, int fraction) const {
  std::string const text = ToString();
  std::size_t const point = std::min(text.find('.'), text.size());
  std::size_t const first = std::min(text.find_first_of("123456789"), point);
  std::size_t const last = text.find_last_not_of('0') + 1;
  std::size_t const places = last > point + 1 ? last - point - 1 : 0;
  auto const isAtMost = [](std::size_t count, int limit) {
    return limit >= 0 && count <= static_cast<std::size_t>(limit);
  };
  return isAtMost(places, fraction) && isAtMost(point - first + places, total);
}

std::string CDecimalParts::ToString() const {
  if (m_fraction.IsZero()) return m_whole.ToString();
  auto const divider = static_cast<std::size_t>(m_divider);
  std::string text;
  text.reserve(m_whole.GetLength() + std::max(divider, m_fraction.GetLength()) + 2);
  if (m_whole.m_sign < 0) text += '-';
  m_whole.AppendDigits(text, 0);
  text += '.';
  m_fraction.AppendDigits(text, divider);
  return text;
}

std::string CDecimalParts::ToString(int digits) const {
  CDecimalParts const sum = CDecimalParts(m_whole.m_sign, 5, 1).Plus(*this);
  std::string fraction;
  sum.m_fraction.AppendDigits(fraction, static_cast<std::size_t>(sum.m_divider));
  std::string text = sum.m_whole.m_sign < 0 ? "-" : "";
  sum.m_whole.AppendDigits(text, 0);
  text += '.';
  return text.append(fraction, 0, static_cast<std::size_t>(digits));
}

}  // namespace Quillon9
