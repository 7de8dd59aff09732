#include "quillon9/values/decimal.h"

#include <string.h>

#include <algorithm>
#include <utility>

#include "quillon9/binding/exceptions.h"
#include "quillon9/values/whitespace.h"
#include "values/digits.h"
#include "values/number_text.h"

namespace Quillon9 {

namespace {

// No real value comes near these; eight characters of text must not cost gigabytes. The larger limit is for the
// digits in front of the point and for those behind it, the other one for the exponent as text and for dividers.
constexpr std::size_t kMaxDigits = 500000;
constexpr int kMaxExponent = 100000;
// Where exponents stop being read: nothing is left of any accepted digits then.
constexpr std::size_t kHugeExponent = 100000000;

constexpr std::size_t kQuotientDigits = CDecimal::m_maxDivider + 2;

// A stretch of a text that holds `count` digits and whatever else was skipped.
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
  throw CQnInvalidValueException(
      FormatString("The string representing a Decimal, contained an invalid char at position %d [%s]",
                   static_cast<int>(at - text), text));
}

// `format` takes the limit and the text.
[[noreturn]] void ThrowBeyondLimit(char const* format, int limit, char const* text) {
  constexpr std::size_t kShown = 64;
  std::string shown(text, strnlen(text, kShown));
  if (text[shown.size()] != '\0') shown += "...";
  throw CQnOverFlowException(FormatString(format, limit, shown.c_str()));
}

// Reads digits, and signs when they are looked for, until something that is neither they nor white space.
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

char const* EndOfDigits(char const* at) {
  while (IsDigit(*at)) ++at;
  return at;
}

// Whether the magnitude is above half of ten to the power of `exponent`, which is above 0.
bool IsAboveHalf(Digits const& digits, std::size_t exponent) {
  if (digits.size() != exponent || digits.back() < 5) return false;
  return digits.back() > 5 || std::any_of(digits.begin(), digits.end() - 1, [](char digit) { return digit != 0; });
}

// Right-aligned in a field of `width` characters.
void AppendDigits(std::string& text, Digits const& digits, std::size_t width) {
  if (digits.size() < width) text.append(width - digits.size(), '0');
  std::size_t const end = text.size() + digits.size();
  text.resize(end);
  char* to = text.data() + end;
  for (char const digit : digits) *--to = static_cast<char>('0' + digit);
}

int CheckedDivider(int divider, int least) {
  if (divider >= least && divider <= kMaxExponent) return divider;
  throw CQnInvalidParamException(FormatString("The divider of a Decimal is out of range [%d]", divider));
}

// Not CBigInteger::MAX_DOUBLE itself: constants of other files may be built before that one is.
CBigInteger const& LargestDouble() {
  static CBigInteger const limit("1.7E+308");
  return limit;
}

}  // namespace

// ---- Making values

CDecimal::CDecimal() = default;
CDecimal::CDecimal(Unset) : m_whole(1, Digits()), m_fraction(1, Digits()) {}
CDecimal::CDecimal(int value) : m_whole(value), m_fraction(m_whole.m_sign, Digits(1, 0)) {}
CDecimal::CDecimal(double value) : CDecimal((FixedText(value, 13) + "\n").c_str()) {}
CDecimal::CDecimal(char const* text) : CDecimal(Unset()) { Parse(text); }
CDecimal::CDecimal(CBigInteger const& whole) : m_whole(whole), m_fraction(whole.m_sign, Digits(1, 0)) {}
CDecimal::CDecimal(CBigInteger const& whole, CBigInteger const& fraction, int divider)
    : m_whole(whole), m_fraction(fraction), m_divider(CheckedDivider(divider, 1)) {}
CDecimal::CDecimal(CDecimal const& other) = default;
CDecimal::CDecimal(CDecimal&& other) noexcept = default;
CDecimal& CDecimal::operator=(CDecimal const& other) {
  m_whole.m_digits.reserve(other.m_whole.m_digits.size());
  m_fraction.m_digits.reserve(other.m_fraction.m_digits.size());
  m_whole = other.m_whole;  // from here on nothing can fail
  m_fraction = other.m_fraction;
  m_divider = other.m_divider;
  return *this;
}
CDecimal& CDecimal::operator=(CDecimal&& other) noexcept = default;
CDecimal::~CDecimal() = default;

// What nearly all texts are: a sign, digits, a point and digits, so few that they need no memory. Takes a third of the
// time of the long way. False when it is another text, and nothing has changed then.
bool CDecimal::ParseShort(char const* text) {
  constexpr std::ptrdiff_t kMost = 15;
  bool const isNegative = *text == '-';
  char const* const whole = text + (isNegative ? 1 : 0);
  char const* const point = EndOfDigits(whole);
  char const* const fraction = *point == '.' ? point + 1 : point;
  char const* const end = EndOfDigits(fraction);
  if (*end != '\0' || point - whole > kMost || end - fraction > kMost) return false;
  char const* last = end;
  while (last != fraction && last[-1] == '0') --last;
  if (last == fraction && end != fraction) return false;  // its divider is another one
  TakeDigits(whole, point, m_whole.m_digits);
  TakeDigits(fraction, last, m_fraction.m_digits);
  m_whole.m_sign = m_fraction.m_sign = isNegative ? -1 : 1;
  m_divider = static_cast<std::int32_t>(std::max<std::ptrdiff_t>(last - fraction, 1));
  return true;
}

void CDecimal::Parse(char const* text) {
  if (text == nullptr) throw CQnInvalidParamException("The text of a Decimal is null");
  if (ParseShort(text)) return;
  DecimalText const parts = Scan(text);
  bool const isBeyondLimit = parts.exponent > kMaxExponent;
  if (isBeyondLimit && !parts.isExponentNegative) ThrowExponentBeyondLimit(text);

  CDecimal parsed{Unset()};
  std::int32_t const sign = parts.isNegative ? -1 : 1;
  parsed.m_whole = CBigInteger(sign, ReadDigits(parts.whole));
  parsed.m_fraction = CBigInteger(sign, ReadDigits(parts.fraction));
  parsed.m_divider = static_cast<std::int32_t>(std::max<std::size_t>(parts.fraction.count, 1));
  if (parts.exponentDigits.count != 0) {
    parts.isExponentNegative ? parsed.DivideByPow10(parts.exponent) : parsed.MultiplyByPow10(parts.exponent);
  }
  if (isBeyondLimit && !(parsed.m_whole.IsZero() && parsed.m_fraction.IsZero())) ThrowExponentBeyondLimit(text);
  parsed.RoundToLimit();
  *this = std::move(parsed);
}

// ---- Parts and digits

// The value without its point.
CBigInteger CDecimal::GetUnits() const {
  CBigInteger units(m_whole);
  units.TimesPow10(static_cast<std::size_t>(m_divider));
  units += m_fraction;
  return units;
}

// Put the point in again, and round.
void CDecimal::SetUnits(CBigInteger units, std::size_t divider) {
  m_fraction = units.SplitAtPow10(divider);
  m_whole = std::move(units);
  m_divider = static_cast<std::int32_t>(divider);
  RoundToLimit();
}

// What operator* does with a power of ten, at the cost of moving digits.
void CDecimal::MultiplyByPow10(std::size_t exponent) {
  auto const divider = static_cast<std::size_t>(m_divider);
  CBigInteger units = GetUnits();
  units.TimesPow10(exponent + divider);
  SetUnits(std::move(units), 2 * divider);
}

// What operator/ does with a power of ten.
void CDecimal::DivideByPow10(std::size_t exponent) {
  std::size_t const dropped = exponent + static_cast<std::size_t>(m_divider);
  CBigInteger units = GetUnits();
  if (dropped <= kQuotientDigits) {
    units.TimesPow10(kQuotientDigits - dropped);
  } else {
    units.SplitAtPow10(dropped - kQuotientDigits);
  }
  SetUnits(std::move(units), kQuotientDigits);
}

void CDecimal::Rationalise() {
  Digits& digits = m_fraction.m_digits;
  auto const most = static_cast<std::size_t>(std::max(m_divider, 1) - 1);
  std::size_t dropped = 0;
  if (m_fraction.IsZero()) {
    dropped = std::min<std::size_t>(most, 1);
  } else {
    while (dropped < most && digits[dropped] == 0) ++dropped;
    digits.erase(0, dropped);
  }
  m_divider -= static_cast<std::int32_t>(dropped);
}

void CDecimal::ChangeFractionalDivider(int divider) {
  SetDivider(static_cast<std::size_t>(CheckedDivider(divider, 0)));
}

void CDecimal::SetDivider(std::size_t divider) {
  auto const current = static_cast<std::size_t>(m_divider);
  if (divider >= current) {
    m_fraction.TimesPow10(divider - current);
    m_divider = static_cast<std::int32_t>(divider);
    return;
  }
  std::size_t const dropped = current - divider;
  CBigInteger const remainder = m_fraction.SplitAtPow10(dropped);
  m_divider = static_cast<std::int32_t>(divider);
  bool const carries = IsAboveHalf(remainder.m_digits, dropped);
  if (carries) (divider == 0 ? m_whole : m_fraction) += CBigInteger(remainder.m_sign);
  if (carries && divider != 0) {
    AlignSigns();
  } else {
    AlignZeros();
  }
}

void CDecimal::RoundToLimit() {
  Rationalise();
  if (m_divider > m_maxDivider) SetDivider(static_cast<std::size_t>(m_maxDivider));
}

// Make both parts carry the sign of the value.
void CDecimal::AlignSigns() {
  std::int32_t const sign = m_whole.m_sign;
  if (sign != m_fraction.m_sign && !m_whole.IsZero() && !m_fraction.IsZero()) {
    CBigInteger unit = CBigInteger::Pow10(static_cast<unsigned int>(m_divider));
    unit.m_sign = sign;
    m_fraction += unit;
    m_whole -= CBigInteger(sign);
  }
  AlignZeros();
}

void CDecimal::AlignZeros() {
  if (m_fraction.IsZero()) {
    m_fraction.m_sign = m_whole.m_sign;
  } else if (m_whole.IsZero()) {
    m_whole.m_sign = m_fraction.m_sign;
  }
}

int CDecimal::Normalize(CDecimal& a, CDecimal& b) {
  std::int32_t const divider = std::max(a.m_divider, b.m_divider);
  a.ChangeFractionalDivider(divider);
  b.ChangeFractionalDivider(divider);
  return divider;
}

// ---- Arithmetic

CDecimal CDecimal::operator+(CDecimal const& other) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, other.m_divider));
  CDecimal sum(*this);
  sum.SetDivider(divider);
  if (other.m_divider == sum.m_divider) {
    sum.m_fraction += other.m_fraction;
  } else {
    CBigInteger fraction(other.m_fraction);
    fraction.TimesPow10(divider - static_cast<std::size_t>(other.m_divider));
    sum.m_fraction += fraction;
  }
  sum.m_whole += other.m_whole;
  if (sum.m_fraction.m_digits.size() > divider) {
    CBigInteger fraction = sum.m_fraction.SplitAtPow10(divider);
    sum.m_whole += sum.m_fraction;
    sum.m_fraction = std::move(fraction);
  }
  sum.AlignSigns();
  sum.Rationalise();
  return sum;
}

CDecimal CDecimal::operator-(CDecimal const& other) const { return *this + other.GetNegative(); }

CDecimal CDecimal::operator*(CDecimal const& other) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, other.m_divider));
  CBigInteger units = GetUnits() * other.GetUnits();
  units.TimesPow10(2 * divider - static_cast<std::size_t>(m_divider) - static_cast<std::size_t>(other.m_divider));
  CDecimal product{Unset()};
  product.SetUnits(std::move(units), 2 * divider);
  return product;
}

CDecimal CDecimal::operator/(CDecimal const& divisor) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, divisor.m_divider));
  CBigInteger numerator = GetUnits();
  numerator.TimesPow10(divider - static_cast<std::size_t>(m_divider) + kQuotientDigits);
  CBigInteger denominator = divisor.GetUnits();
  denominator.TimesPow10(divider - static_cast<std::size_t>(divisor.m_divider));
  CDecimal quotient{Unset()};
  quotient.SetUnits(numerator / denominator, kQuotientDigits);
  return quotient;
}

CDecimal& CDecimal::operator+=(CDecimal const& other) { return *this = *this + other; }
CDecimal& CDecimal::operator-=(CDecimal const& other) { return *this = *this - other; }
CDecimal& CDecimal::operator*=(CDecimal const& other) { return *this = *this * other; }
CDecimal& CDecimal::operator/=(CDecimal const& divisor) { return *this = *this / divisor; }

CDecimal& CDecimal::operator++() { return *this += CDecimal(1); }
CDecimal& CDecimal::operator--() { return *this -= CDecimal(1); }

CDecimal CDecimal::operator++(int) {
  CDecimal old(*this);
  ++*this;
  return old;
}

CDecimal CDecimal::operator--(int) {
  CDecimal old(*this);
  --*this;
  return old;
}

void CDecimal::Negate() {
  m_whole.Negate();
  m_fraction.Negate();
}

CDecimal CDecimal::GetNegative() const {
  CDecimal negative(*this);
  negative.Negate();
  return negative;
}

// ---- Order

int CDecimal::CompareFractions(CDecimal const& other) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, other.m_divider));
  return m_fraction.Order(other.m_fraction, divider - static_cast<std::size_t>(m_divider),
                          divider - static_cast<std::size_t>(other.m_divider));
}

bool CDecimal::operator==(CDecimal const& other) const {
  if (m_whole != other.m_whole) return false;
  return (m_fraction.IsZero() && other.m_fraction.IsZero()) || CompareFractions(other) == 0;
}

bool CDecimal::operator<(CDecimal const& other) const {
  return m_whole < other.m_whole || (m_whole == other.m_whole && CompareFractions(other) < 0);
}

bool CDecimal::operator>(CDecimal const& other) const {
  return m_whole > other.m_whole || (m_whole == other.m_whole && CompareFractions(other) > 0);
}

bool CDecimal::operator<=(CDecimal const& other) const {
  return m_whole < other.m_whole || (m_whole == other.m_whole && CompareFractions(other) <= 0);
}

bool CDecimal::operator>=(CDecimal const& other) const {
  return m_whole > other.m_whole || (m_whole == other.m_whole && CompareFractions(other) >= 0);
}

// ---- Conversions

std::string CDecimal::ToString() const {
  if (m_fraction.IsZero()) return m_whole.ToString();
  auto const divider = static_cast<std::size_t>(m_divider);
  std::string text;
  text.reserve(m_whole.m_digits.size() + std::max(divider, m_fraction.m_digits.size()) + 2);
  if (m_whole.m_sign < 0) text += '-';
  AppendDigits(text, m_whole.m_digits, 0);
  text += '.';
  AppendDigits(text, m_fraction.m_digits, divider);
  return text;
}

std::string CDecimal::ToString(int digits) const {
  if (digits < 0) throw CQnInvalidParamException(FormatString("Invalid number of digits [%d]", digits));
  CDecimal sum(m_whole.m_sign < 0 ? "-0.5" : "0.5");
  sum += *this;
  std::string fraction;
  AppendDigits(fraction, sum.m_fraction.m_digits, static_cast<std::size_t>(sum.m_divider));
  std::string text = sum.m_whole.m_sign < 0 ? "-" : "";
  AppendDigits(text, sum.m_whole.m_digits, 0);
  text += '.';
  return text.append(fraction, 0, static_cast<std::size_t>(digits));
}

double CDecimal::ToDouble() const {
  if (CompareDigits(m_whole.m_digits, LargestDouble().m_digits) > 0) {
    throw CQnOverFlowException("The Decimal value if to large to fit into a Double");
  }
  double value = 0;
  ParseDouble(ToString(), value);
  return value;
}

std::int32_t CDecimal::ToLong() const {
  CBigInteger const whole = ToBigInteger();
  std::int32_t value = 0;
  if (ParseInteger(whole.ToString(), value) != NumberStatus::Ok) {
    throw CQnOverFlowException("The Decimal value if to large to fit into a LONG");
  }
  return value;
}

std::int64_t CDecimal::ToLongLong() const {
  CDecimal rounded(*this);
  rounded.SetDivider(1);
  std::int64_t value = 0;
  if (ParseInteger(rounded.m_whole.ToString(), value) != NumberStatus::Ok) {
    throw CQnOverFlowException("The Decimal value if to large to fit into a LONGLONG");
  }
  return value;
}

CBigInteger CDecimal::ToBigInteger() const {
  CDecimal rounded(*this);
  rounded.SetDivider(0);
  return std::move(rounded.m_whole);
}

}  // namespace Quillon9
