#include "quillon9/values/big_integer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "quillon9/binding/exceptions.h"
#include "quillon9/values/decimal.h"
#include "values/limbs.h"
#include "values/number_text.h"

namespace Quillon9 {

namespace {

using Digits = std::vector<char>;

// Up to it, dividing a double by ten and cutting the fraction gives the digits of the integer.
constexpr double kExactDouble = 9007199254740992.0;

[[noreturn]] void ThrowInvalid(char const* message) { throw CQnInvalidValueException(message); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// What needs no CDecimal to be understood.
bool IsIntegerCharacter(char c) {
  return IsDigit(c) || c == '-' || c == '+' || c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// The run of digits that ends at `end`.
Digits ReadLastRun(char const* begin, char const* end) {
  char const* first = end;
  while (first != begin && IsDigit(first[-1])) --first;
  while (first != end && *first == '0') ++first;
  if (first == end) return Digits(1, 0);
  Digits digits(static_cast<std::size_t>(end - first));
  for (char& digit : digits) digit = static_cast<char>(*--end - '0');
  return digits;
}

template <class Unsigned>
void BuildUnsigned(Unsigned value, Digits& digits) {
  char buffer[24];
  std::size_t count = 0;
  do {
    buffer[count++] = static_cast<char>(value % 10);
    value /= 10;
  } while (value != 0);
  digits.assign(buffer, buffer + count);
}

// The same vector may stand for both. Allocates before it changes anything.
void AddInto(Digits& to, Digits const& from) {
  std::size_t const size = std::max(to.size(), from.size());
  if (size == 0) return;
  int const top = (to.size() == size ? to.back() : 0) + (from.size() == size ? from.back() : 0);
  if (top >= 9) to.reserve(size + 1);
  to.resize(size);
  int carry = 0;
  for (std::size_t i = 0; i < from.size() || (carry != 0 && i < size); ++i) {
    int const sum = to[i] + (i < from.size() ? from[i] : 0) + carry;
    carry = sum >= 10 ? 1 : 0;
    to[i] = static_cast<char>(carry != 0 ? sum - 10 : sum);
  }
  if (carry != 0) to.push_back(1);
}

// False when `from` is above `to`, which then makes no sense any more.
bool SubtractFrom(Digits& to, Digits const& from) {
  if (CBigInteger::Position(from) >= static_cast<std::ptrdiff_t>(to.size())) return false;
  std::size_t const size = std::min(to.size(), from.size());
  int borrow = 0;
  for (std::size_t i = 0; i < size || (borrow != 0 && i < to.size()); ++i) {
    int const difference = to[i] - (i < size ? from[i] : 0) - borrow;
    borrow = difference < 0 ? 1 : 0;
    to[i] = static_cast<char>(borrow != 0 ? difference + 10 : difference);
  }
  CBigInteger::Clean(to);
  return borrow == 0;
}

}  // namespace

CBigInteger const CBigInteger::MAX_LONG(CDecimal("2147483647"));
CBigInteger const CBigInteger::MIN_LONG(CDecimal("-2147483648"));
CBigInteger const CBigInteger::MAX_LONGLONG(CDecimal("9223372036854775807"));
CBigInteger const CBigInteger::MIN_LONGLONG(CDecimal("-9223372036854775808"));
CBigInteger const CBigInteger::MAX_DOUBLE(CDecimal("1.7E+308"));
CBigInteger const CBigInteger::MIN_DOUBLE(CDecimal("-1.7E+308"));

// ---- Making values

CBigInteger::CBigInteger() : m_digits(1, 0) {}

CBigInteger::CBigInteger(int value) : m_sign(value < 0 ? -1 : 1) {
  unsigned int const bits = static_cast<unsigned int>(value);
  Build(value < 0 ? 0U - bits : bits, m_digits);
}

CBigInteger::CBigInteger(double value) : m_sign(value < 0 ? -1 : 1) { BuildDouble(std::fabs(value), m_digits); }

CBigInteger::CBigInteger(char const* text) { Parse(text); }

CBigInteger::CBigInteger(CDecimal const& value) : CBigInteger(value.ToBigInteger()) {}

CBigInteger::CBigInteger(std::int32_t sign, std::vector<char> digits) : m_sign(sign), m_digits(std::move(digits)) {}

CBigInteger::CBigInteger(CBigInteger const& other) = default;
CBigInteger::CBigInteger(CBigInteger&& other) noexcept = default;
CBigInteger& CBigInteger::operator=(CBigInteger const& other) {
  if (this == &other) return *this;
  m_digits = other.m_digits;
  m_sign = other.m_sign;
  return *this;
}
CBigInteger& CBigInteger::operator=(CBigInteger&& other) noexcept = default;
CBigInteger::~CBigInteger() = default;

// ---- Sums

void CBigInteger::AddSigned(CBigInteger const& other, std::int32_t otherSign) {
  if (m_sign == otherSign) return AddInto(m_digits, other.m_digits);
  int const order = Compare(m_digits, other.m_digits);
  if (order == 0) {
    *this = CBigInteger();
  } else if (order > 0) {
    SubtractFrom(m_digits, other.m_digits);
  } else {
    Digits difference = other.m_digits;
    SubtractFrom(difference, m_digits);
    m_digits = std::move(difference);
    m_sign = otherSign;
  }
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
  CBigInteger product(m_sign * other.m_sign, Digits());
  Multiply(m_digits, other.m_digits, product.m_digits);
  return product;
}

CBigInteger& CBigInteger::operator*=(CBigInteger const& other) { return *this = *this * other; }

CBigInteger CBigInteger::DividedBy(CBigInteger const& divisor, CBigInteger& remainder) const {
  CBigInteger quotient(m_sign == divisor.m_sign ? 1 : -1, Digits());
  remainder.m_sign = m_sign;
  Divide(m_digits, divisor.m_digits, quotient.m_digits, remainder.m_digits);
  return quotient;
}

// The sign alone is asked first, as operator< does; a zero divisor is only refused where there is something to
// divide.
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
  UnpackDigits(SquareRootOfLimbs(PackDigits(m_digits)), root.m_digits);
  return root;
}

CBigInteger CBigInteger::Pow10(unsigned int exponent) {
  CBigInteger power(1, Digits());
  Pow10(exponent, power.m_digits);
  return power;
}

// Multiply by ten to the power of `exponent`.
void CBigInteger::TimesPow10(std::size_t exponent) {
  if (exponent != 0 && !IsZero()) m_digits.insert(m_digits.begin(), exponent, 0);
}

// Divide by ten to the power of `exponent` and return the remainder, with the signs that / and % give.
CBigInteger CBigInteger::SplitAtPow10(std::size_t exponent) {
  if (IsZero()) {
    m_sign = 1;
    return CBigInteger();
  }
  auto const split = static_cast<std::ptrdiff_t>(std::min(exponent, m_digits.size()));
  CBigInteger remainder(m_sign, Digits(m_digits.begin(), m_digits.begin() + split));
  Clean(remainder.m_digits);
  m_digits.erase(m_digits.begin(), m_digits.begin() + split);
  if (m_digits.empty()) m_digits.push_back(0);
  return remainder;
}

// ---- Order and sign

bool CBigInteger::operator==(CBigInteger const& other) const {
  return m_digits == other.m_digits && (m_sign == other.m_sign || IsZero());
}

// -1, 0 or +1, as if both were multiplied by ten to the power of their shift.
int CBigInteger::Order(CBigInteger const& other, std::size_t shift, std::size_t otherShift) const {
  if (m_sign != other.m_sign) return m_sign < other.m_sign ? -1 : 1;
  if (IsZero()) shift = 0;
  if (other.IsZero()) otherShift = 0;
  std::size_t const size = m_digits.size() + shift;
  std::size_t const otherSize = other.m_digits.size() + otherShift;
  if (size != otherSize) return size < otherSize ? -m_sign : m_sign;
  for (std::size_t i = size; i-- != std::min(shift, otherShift);) {
    int const digit = i < shift ? 0 : m_digits[i - shift];
    int const otherDigit = i < otherShift ? 0 : other.m_digits[i - otherShift];
    if (digit != otherDigit) return digit < otherDigit ? -m_sign : m_sign;
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

CBigInteger CBigInteger::GetAbs() const { return CBigInteger(1, m_digits); }

// ---- Conversions

CBigInteger::operator int() const {
  constexpr std::size_t kIntDigits = 10;
  std::int64_t value = m_digits.size() <= kIntDigits ? 0 : INT64_MAX;
  for (std::size_t i = std::min(m_digits.size(), kIntDigits); value != INT64_MAX && i-- != 0;) {
    value = value * 10 + m_digits[i];
  }
  if (value > INT32_MAX + std::int64_t{m_sign < 0 ? 1 : 0}) ThrowInvalid("ERROR: Value out of bound of int.");
  return static_cast<int>(value * m_sign);
}

std::string CBigInteger::ToString() const {
  if (IsZero()) return "0";
  std::string text(m_digits.size() + (m_sign < 0 ? 1 : 0), '-');
  char* to = text.data() + text.size();
  for (char const digit : m_digits) *--to = static_cast<char>('0' + digit);
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
  m_digits = ReadLastRun(begin, end);
  m_sign = isNegative ? -1 : 1;
}

// ---- Helpers on magnitudes

int CBigInteger::Compare(std::vector<char> const& a, std::vector<char> const& b) {
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  for (std::size_t i = a.size(); i-- != 0;) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}

void CBigInteger::Add(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result) {
  Digits sum = a;
  AddInto(sum, b);
  result = std::move(sum);
}

void CBigInteger::Subtract(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result) {
  Digits difference = a;
  if (!SubtractFrom(difference, b)) throw CQnInvalidParamException("The subtrahend is above the minuend");
  result = std::move(difference);
}

void CBigInteger::Multiply(std::vector<char> const& a, char digit, std::vector<char>& result) {
  Multiply(a, Digits(1, digit), result);
}

void CBigInteger::Multiply(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result) {
  if (a.size() + b.size() <= kWideDigits) return UnpackWide(PackWide(a) * PackWide(b), result);
  UnpackDigits(MultiplyLimbs(PackDigits(a), PackDigits(b)), result);
}

void CBigInteger::Divide(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& quotient,
                         std::vector<char>& remainder) {
  if (Position(b) < 0) ThrowInvalid("ERROR: Overflow in Divide.");
  if (std::max(a.size(), b.size()) <= kWideDigits) {
    Wide const dividend = PackWide(a);
    Wide const divisor = PackWide(b);
    UnpackWide(dividend / divisor, quotient);
    UnpackWide(dividend % divisor, remainder);
    return;
  }
  Limbs rest = PackDigits(a);
  UnpackDigits(DivideLimbs(rest, PackDigits(b)), quotient);
  UnpackDigits(rest, remainder);
}

void CBigInteger::Clean(std::vector<char>& digits) {
  while (!digits.empty() && digits.back() == 0) digits.pop_back();
  if (digits.empty()) digits.push_back(0);
}

void CBigInteger::ShiftLeft(std::vector<char>& digits, unsigned int count) { digits.insert(digits.begin(), count, 0); }

std::ptrdiff_t CBigInteger::Position(std::vector<char> const& digits) {
  std::size_t size = digits.size();
  while (size != 0 && digits[size - 1] == 0) --size;
  return static_cast<std::ptrdiff_t>(size) - 1;
}

void CBigInteger::Build(unsigned int value, std::vector<char>& digits) { BuildUnsigned(value, digits); }

void CBigInteger::BuildDWORDLONG(unsigned long long value, std::vector<char>& digits) { BuildUnsigned(value, digits); }

void CBigInteger::Build(std::string const& text, std::vector<char>& digits) {
  digits = ReadLastRun(text.data(), text.data() + text.size());
}

void CBigInteger::BuildDouble(double value, std::vector<char>& digits) {
  if (!std::isfinite(value)) {
    std::string const text = GeneralText(value, 6);
    throw CQnInvalidValueException(FormatString("The value [%s] can not be converted to a BigInteger", text.c_str()));
  }
  double rest = std::ceil(value - 0.5);
  if (rest <= kExactDouble) return BuildUnsigned(rest > 0 ? static_cast<std::uint64_t>(rest) : 0, digits);
  Digits built;
  while (rest > 0) {
    built.push_back(static_cast<char>(std::fmod(rest, 10.0)));
    rest = std::trunc(rest / 10.0);
  }
  digits = std::move(built);
}

void CBigInteger::Pow10(unsigned int exponent, std::vector<char>& digits) {
  digits.assign(std::size_t{exponent} + 1, 0);
  digits.back() = 1;
}

}  // namespace Quillon9
