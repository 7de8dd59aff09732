#include "quillon9/values/big_integer.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/decimal.h"
#include "values/digits.h"
#include "values/limbs.h"
#include "values/number_text.h"

namespace Quillon9 {

namespace {

[[noreturn]] void ThrowInvalid(char const* message) {
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(message));
}

// The characters of texts that can be read without CDecimal.
bool IsIntegerCharacter(char c) {
  return IsDigit(c) || c == '-' || c == '+' || c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

}  // namespace

[[gnu::init_priority(101)]] CBigInteger const CBigInteger::MAX_LONG(CDecimal("2147483647"));
[[gnu::init_priority(101)]] CBigInteger const CBigInteger::MIN_LONG(CDecimal("-2147483648"));
[[gnu::init_priority(101)]] CBigInteger const CBigInteger::MAX_LONGLONG(CDecimal("9223372036854775807"));
[[gnu::init_priority(101)]] CBigInteger const CBigInteger::MIN_LONGLONG(CDecimal("-9223372036854775808"));
[[gnu::init_priority(101)]] CBigInteger const CBigInteger::MAX_DOUBLE(CDecimal("1.7E+308"));
[[gnu::init_priority(101)]] CBigInteger const CBigInteger::MIN_DOUBLE(CDecimal("-1.7E+308"));

// ---- Making values

CBigInteger::CBigInteger() : m_digits(1, 0) {}

CBigInteger::CBigInteger(int value) : m_sign(value < 0 ? -1 : 1) {
  unsigned int const bits = static_cast<unsigned int>(value);
  m_digits = DigitsOf(value < 0 ? 0U - bits : bits);
}

CBigInteger::CBigInteger(double value) : m_sign(value < 0 ? -1 : 1), m_digits(DigitsOfDouble(std::fabs(value))) {}

CBigInteger::CBigInteger(char const* text) { Parse(text); }

CBigInteger::CBigInteger(CDecimal const& value) : CBigInteger(value.ToBigInteger()) {}

CBigInteger::CBigInteger(std::int32_t sign, std::string digits) : m_sign(sign), m_digits(std::move(digits)) {}

CBigInteger::CBigInteger(CBigInteger const& other) = default;
CBigInteger::CBigInteger(CBigInteger&& other) noexcept = default;
CBigInteger& CBigInteger::operator=(CBigInteger const& other) {
  if (this == &other) return *this;
  m_digits = other.m_digits;
  m_zeros = other.m_zeros;
  m_sign = other.m_sign;
  return *this;
}
CBigInteger& CBigInteger::operator=(CBigInteger&& other) noexcept = default;
CBigInteger::~CBigInteger() = default;

// ---- The zeros that are not stored as digits

// Turns zeros into digits until only `remaining` are left. The value does not change.
void CBigInteger::SpellOutZeros(std::uint32_t remaining) {
  if (m_zeros <= remaining) return;
  m_digits.insert(0, m_zeros - remaining, 0);
  m_zeros = remaining;
}

// All digits; in `scratch` if the value does not store all of them.
std::string_view CBigInteger::GetDigits(std::string& scratch) const {
  if (m_zeros == 0) return m_digits;
  scratch.assign(m_zeros, 0);
  return scratch += m_digits;
}

// Right-aligned in a field of `width` characters that is padded with zeros.
void CBigInteger::AppendDigits(std::string& text, std::size_t width) const {
  if (GetLength() < width) text.append(width - GetLength(), '0');
  std::size_t const end = text.size() + m_digits.size();
  text.resize(text.size() + GetLength(), '0');
  char* to = text.data() + end;
  for (char const digit : m_digits) *--to = static_cast<char>('0' + digit);
}

// ---- Sums

void CBigInteger::AddSigned(CBigInteger const& other, std::int32_t otherSign) {
  std::uint32_t const zeros = IsZero() ? other.m_zeros : other.IsZero() ? m_zeros : std::min(m_zeros, other.m_zeros);
  if (other.m_zeros > zeros) {
    CBigInteger aligned(other);
    aligned.SpellOutZeros(zeros);
    return AddSigned(aligned, otherSign);
  }
  SpellOutZeros(zeros);
  if (m_sign == otherSign) {
    AddDigits(m_digits, other.m_digits);
    m_zeros = zeros;
    return;
  }
  int const order = CompareDigits(m_digits, other.m_digits);
  if (order == 0) {
    *this = CBigInteger();
    return;
  }
  if (order > 0) {
    SubtractDigits(m_digits, other.m_digits);
  } else {
    Digits difference = other.m_digits;
    SubtractDigits(difference, m_digits);
    m_digits = std::move(difference);
    m_sign = otherSign;
  }
  m_zeros = zeros;
}

CBigInteger& CBigInteger::operator+=(CBigInteger const& other) {
  AddSigned(other, other.m_sign);
  return *this;
}

CBigInteger& CBigInteger::operator-=(CBigInteger const& other) {
  AddSigned(other, -other.m_sign);
  return *this;
}

CBigInteger CBigInteger::operator+(CBigInteger const& other) const {
  CBigInteger sum(*this);
  sum += other;
  return sum;
}

CBigInteger CBigInteger::operator-(CBigInteger const& other) const {
  CBigInteger difference(*this);
  difference -= other;
  return difference;
}

// ---- Products and quotients

CBigInteger CBigInteger::operator*(CBigInteger const& other) const {
  CBigInteger product(m_sign * other.m_sign, MultipliedDigits(m_digits, other.m_digits));
  product.TimesPow10(m_zeros);
  product.TimesPow10(other.m_zeros);
  return product;
}

CBigInteger& CBigInteger::operator*=(CBigInteger const& other) { return *this = *this * other; }

CBigInteger CBigInteger::DividedBy(CBigInteger const& divisor, CBigInteger& remainder) const {
  remainder = *this;
  remainder.SpellOutZeros(0);
  Digits scratch;
  return CBigInteger(m_sign == divisor.m_sign ? 1 : -1, DividedDigits(remainder.m_digits, divisor.GetDigits(scratch)));
}

// Like operator<, checks only the sign first; a zero divisor is refused only if the dividend is not zero.
void CBigInteger::CheckDivisor(CBigInteger const& divisor, char const* message) const {
  if (divisor.m_sign < 0 || (divisor.IsZero() && !IsZero())) ThrowInvalid(message);
}

CBigInteger CBigInteger::operator/(CBigInteger const& divisor) const {
  if (divisor.IsZero()) ThrowInvalid("ERROR: Overflow in operator/.");
  if (IsZero()) return CBigInteger();
  CBigInteger remainder(1, Digits());
  return DividedBy(divisor, remainder);
}

CBigInteger& CBigInteger::operator/=(CBigInteger const& divisor) {
  CheckDivisor(divisor, "ERROR: Overflow in operator /=.");
  return *this = IsZero() ? CBigInteger() : *this / divisor;
}

CBigInteger CBigInteger::operator%(CBigInteger const& divisor) const {
  CheckDivisor(divisor, "ERROR: Overflow in operator%.");
  if (IsZero()) return CBigInteger();
  CBigInteger remainder(1, Digits());
  DividedBy(divisor, remainder);
  return remainder;
}

CBigInteger& CBigInteger::operator%=(CBigInteger const& divisor) {
  CheckDivisor(divisor, "ERROR: Overflow in operator%=.");
  return *this = *this % divisor;
}

CBigInteger CBigInteger::SquareRoot() const {
  if (m_sign < 0) ThrowInvalid("ERROR: Negative Number in function SquareRoot().");
  if (IsZero()) ThrowInvalid("ERROR: Overflow in operator/.");
  CBigInteger root(1, Digits());
  Digits scratch;
  UnpackDigits(SquareRootOfLimbs(PackDigits(GetDigits(scratch))), root.m_digits);
  return root;
}

CBigInteger CBigInteger::Pow10(unsigned int exponent) {
  CBigInteger power(1);
  power.TimesPow10(exponent);
  return power;
}

// Multiply by ten to the power of `exponent`.
void CBigInteger::TimesPow10(std::size_t exponent) {
  if (IsZero()) return;
  std::size_t const most = std::numeric_limits<std::uint32_t>::max() - m_zeros;
  if (exponent > most) {
    m_digits.insert(0, exponent, 0);
  } else {
    m_zeros += static_cast<std::uint32_t>(exponent);
  }
}

// Divide by ten to the power of `exponent` and return the remainder, with the signs that / and % give.
CBigInteger CBigInteger::SplitAtPow10(std::size_t exponent) {
  if (IsZero()) {
    m_sign = 1;
    return CBigInteger();
  }
  std::uint32_t const zeros = static_cast<std::uint32_t>(std::min<std::size_t>(exponent, m_zeros));
  CBigInteger remainder(m_sign, m_digits.substr(0, exponent - zeros));
  CleanDigits(remainder.m_digits);
  remainder.TimesPow10(zeros);
  m_zeros -= zeros;
  m_digits.erase(0, exponent - zeros);
  if (m_digits.empty()) m_digits.push_back(0);
  return remainder;
}

// ---- Order and sign

bool CBigInteger::operator==(CBigInteger const& other) const {
  return OrderOfMagnitudes(other, 0, 0) == 0 && (m_sign == other.m_sign || IsZero());
}

// -1, 0 or +1, as if both were multiplied by ten to the power of their shift.
int CBigInteger::Order(CBigInteger const& other, std::size_t shift, std::size_t otherShift) const {
  if (m_sign != other.m_sign) return m_sign < other.m_sign ? -1 : 1;
  return m_sign * OrderOfMagnitudes(other, shift, otherShift);
}

int CBigInteger::OrderOfMagnitudes(CBigInteger const& other, std::size_t shift, std::size_t otherShift) const {
  shift = IsZero() ? 0 : shift + m_zeros;
  otherShift = other.IsZero() ? 0 : otherShift + other.m_zeros;
  std::size_t const size = m_digits.size() + shift;
  std::size_t const otherSize = other.m_digits.size() + otherShift;
  if (size != otherSize) return size < otherSize ? -1 : 1;
  for (std::size_t i = size; i-- != std::min(shift, otherShift);) {
    int const digit = i < shift ? 0 : m_digits[i - shift];
    int const otherDigit = i < otherShift ? 0 : other.m_digits[i - otherShift];
    if (digit != otherDigit) return digit < otherDigit ? -1 : 1;
  }
  return 0;
}

CBigInteger& CBigInteger::operator-() {
  Negate();
  return *this;
}

CBigInteger CBigInteger::GetNegative() const {
  CBigInteger negative(*this);
  negative.Negate();
  return negative;
}

CBigInteger CBigInteger::GetAbs() const {
  CBigInteger magnitude(*this);
  magnitude.Abs();
  return magnitude;
}

// ---- Conversions

CBigInteger::operator int() const {
  constexpr std::size_t kIntDigits = 10;
  std::int64_t value = INT64_MAX;
  if (GetLength() <= kIntDigits) {
    Digits scratch;
    value = static_cast<std::int64_t>(PackWide(GetDigits(scratch)));
  }
  if (value > INT32_MAX + std::int64_t{m_sign < 0 ? 1 : 0}) ThrowInvalid("ERROR: Value out of bound of int.");
  return static_cast<int>(value * m_sign);
}

std::string CBigInteger::ToString() const {
  if (IsZero()) return "0";
  std::string text;
  text.reserve(GetLength() + 1);
  if (m_sign < 0) text += '-';
  AppendDigits(text, 0);
  return text;
}

void CBigInteger::Parse(char const* text) {
  if (text == nullptr) throw CQnInvalidParamException("The text of a BigInteger is null");
  char const* begin = text;
  char const* end = text;
  while (IsIntegerCharacter(*end)) ++end;
  if (*end != '\0') {
    *this = CBigInteger(CDecimal(text));
    return;
  }
  while (end != begin && end[-1] == ' ') --end;
  while (begin != end && *begin == ' ') ++begin;
  bool const isNegative = begin != end && *begin == '-';
  m_digits = DigitsOfLastRun(begin, end);
  m_zeros = 0;
  m_sign = isNegative ? -1 : 1;
}

// ---- Helpers on magnitudes

namespace {

Digits DigitsIn(std::vector<char> const& vector) { return Digits(vector.begin(), vector.end()); }

void Store(Digits const& digits, std::vector<char>& vector) { vector.assign(digits.begin(), digits.end()); }

}  // namespace

int CBigInteger::Compare(std::vector<char> const& a, std::vector<char> const& b) {
  return CompareDigits({a.data(), a.size()}, {b.data(), b.size()});
}

void CBigInteger::Add(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result) {
  Digits sum = DigitsIn(a);
  AddDigits(sum, DigitsIn(b));
  Store(sum, result);
}

void CBigInteger::Subtract(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result) {
  Digits difference = DigitsIn(a);
  if (!SubtractDigits(difference, DigitsIn(b))) throw CQnInvalidParamException("The subtrahend is above the minuend");
  Store(difference, result);
}

void CBigInteger::Multiply(std::vector<char> const& a, char digit, std::vector<char>& result) {
  Multiply(a, std::vector<char>(1, digit), result);
}

void CBigInteger::Multiply(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result) {
  Store(MultipliedDigits({a.data(), a.size()}, {b.data(), b.size()}), result);
}

void CBigInteger::Divide(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& quotient,
                         std::vector<char>& remainder) {
  Digits rest = DigitsIn(a);
  Store(DividedDigits(rest, DigitsIn(b)), quotient);
  Store(rest, remainder);
}

void CBigInteger::Clean(std::vector<char>& digits) {
  digits.resize(std::max<std::size_t>(CountDigits({digits.data(), digits.size()}), 1));
}

void CBigInteger::ShiftLeft(std::vector<char>& digits, unsigned int count) { digits.insert(digits.begin(), count, 0); }

std::ptrdiff_t CBigInteger::Position(std::vector<char> const& digits) {
  return static_cast<std::ptrdiff_t>(CountDigits({digits.data(), digits.size()})) - 1;
}

void CBigInteger::Build(unsigned int value, std::vector<char>& digits) { Store(DigitsOf(value), digits); }

void CBigInteger::BuildDWORDLONG(unsigned long long value, std::vector<char>& digits) {
  Store(DigitsOf(value), digits);
}

void CBigInteger::Build(std::string const& text, std::vector<char>& digits) {
  Store(DigitsOfLastRun(text.data(), text.data() + text.size()), digits);
}

void CBigInteger::BuildDouble(double value, std::vector<char>& digits) { Store(DigitsOfDouble(value), digits); }

void CBigInteger::Pow10(unsigned int exponent, std::vector<char>& digits) { Store(DigitsOfPow10(exponent), digits); }

}  // namespace Quillon9
