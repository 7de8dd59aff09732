#include "quillon9/values/decimal.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "values/decimal_access.h"
#include "values/decimal_parts.h"
#include "values/limbs.h"
#include "values/number_text.h"
#include "values/powers_of_10.h"

namespace Quillon9 {

namespace {

constexpr std::uint64_t kMostUnits = std::numeric_limits<std::uint64_t>::max();

void CheckDivider(int divider, int least) {
  if (divider >= least && divider <= CDecimalParts::m_maxExponent) return;
  throw CQnInvalidParamException(FormatString("The divider of a Decimal is out of range [%d]", divider));
}

// Appends digits to `units`, which wraps round when there are too many, and returns their end.
char const* ReadUnits(char const* at, std::uint64_t& units) {
  std::uint64_t read = units;
  for (; IsDigit(*at); ++at) read = read * 10 + static_cast<std::uint64_t>(*at - '0');
  units = read;
  return at;
}

// Writes the last `count` digits before `end`, and returns where they begin.
char* PrintLast(char* end, std::uint64_t value, std::int32_t count) {
  for (; count > 0; --count, value /= 10) *--end = static_cast<char>('0' + value % 10);
  return end;
}

char* PrintAll(char* end, std::uint64_t value) {
  do {
    *--end = static_cast<char>('0' + value % 10);
    value /= 10;
  } while (value != 0);
  return end;
}

}  // namespace

// ---- Making values

CDecimal::CDecimal() = default;
CDecimal::CDecimal(int value)
    : m_units(static_cast<std::uint64_t>(value < 0 ? -std::int64_t{value} : std::int64_t{value}) * 10),
      m_sign(value < 0 ? -1 : 1) {}
CDecimal::CDecimal(double value) : CDecimal((FixedText(value, 13) + "\n").c_str()) {}
CDecimal::CDecimal(char const* text) { Parse(text); }
CDecimal::CDecimal(CBigInteger const& whole) { Hold(CDecimalParts(whole)); }
CDecimal::CDecimal(CBigInteger const& whole, CBigInteger const& fraction, int divider) {
  CheckDivider(divider, 1);
  Hold(CDecimalParts(whole, fraction, divider));
}
CDecimal::CDecimal(CDecimal const& other)
    : m_parts(other.CopyParts()), m_units(other.m_units), m_divider(other.m_divider), m_sign(other.m_sign) {}
CDecimal::CDecimal(CDecimal&& other) noexcept = default;
CDecimal& CDecimal::operator=(CDecimal const& other) {
  m_parts = other.CopyParts();  // nothing can fail after this
  m_units = other.m_units;
  m_divider = other.m_divider;
  m_sign = other.m_sign;
  return *this;
}
CDecimal& CDecimal::operator=(CDecimal&& other) noexcept = default;
CDecimal::~CDecimal() = default;

std::unique_ptr<CDecimalParts> CDecimal::CopyParts() const {
  return m_parts == nullptr ? nullptr : std::make_unique<CDecimalParts>(*m_parts);
}

CDecimalParts CDecimal::MakeParts() const {
  return m_parts == nullptr ? CDecimalParts(m_sign, m_units, m_divider) : *m_parts;
}

void CDecimal::Hold(CDecimalParts&& parts) {
  std::uint64_t units = 0;
  if (parts.Pack(units)) {
    SetShort(parts.GetSign(), units, parts.m_divider);
  } else if (m_parts != nullptr) {
    *m_parts = std::move(parts);
  } else {
    m_parts = std::make_unique<CDecimalParts>(std::move(parts));
  }
}

void CDecimal::SetShort(std::int32_t sign, std::uint64_t units, std::int32_t divider) {
  m_parts.reset();
  m_units = units;
  m_divider = divider;
  m_sign = sign;
}

// Parses the form of nearly all texts: a sign, digits, a point and digits, few enough for the short form. Returns false
// for any other text, without changing anything.
bool CDecimal::ParseShort(char const* text) {
  bool const isNegative = *text == '-';
  if (isNegative) ++text;
  std::uint64_t units = 0;
  char const* const point = ReadUnits(text, units);
  char const* const fraction = *point == '.' ? point + 1 : point;
  char const* const end = ReadUnits(fraction, units);
  std::ptrdiff_t const divider = std::max<std::ptrdiff_t>(end - fraction, 1);
  if (*end != '\0' || point - text + divider > kMostPower) return false;
  SetShort(isNegative ? -1 : 1, fraction == end ? units * 10 : units, static_cast<std::int32_t>(divider));
  RationaliseShort();
  return true;
}

void CDecimal::Parse(char const* text) {
  if (text == nullptr) throw CQnInvalidParamException("The text of a Decimal is null");
  if (!ParseShort(text)) Hold(CDecimalParts::Parse(text));
}

// ---- Dividers

void CDecimal::RationaliseShort() {
  if (m_divider <= 1 || m_units % 10 != 0) return;
  bool const isWhole = m_units % PowerOf10(m_divider) == 0;
  do {
    m_units /= 10;
    --m_divider;
  } while (!isWhole && m_divider > 1 && m_units % 10 == 0);
}

void CDecimal::Rationalise() {
  if (m_parts == nullptr) {
    RationaliseShort();
  } else {
    m_parts->Rationalise();
  }
}

// False if there would be fewer digits, or too many.
bool CDecimal::AppendZeros(int divider) {
  if (divider < m_divider || divider > kMostPower) return false;
  Wide const units = Wide{m_units} * PowerOf10(divider - m_divider);
  if (units > kMostUnits) return false;
  SetShort(m_sign, static_cast<std::uint64_t>(units), divider);
  return true;
}

// False if there would not be fewer digits, and for a fraction that rounds up to one.
bool CDecimal::RoundShort(int divider) {
  if (divider >= m_divider) return false;
  std::uint64_t const dropped = PowerOf10(m_divider - divider);
  std::uint64_t const kept = PowerOf10(divider);
  std::uint64_t units = m_units / dropped;
  if (m_units % dropped > dropped / 2) ++units;
  if (divider != 0 && units != m_units / dropped && units % kept == 0) return false;
  SetShort(m_sign, units, divider);
  return true;
}

void CDecimal::ChangeFractionalDivider(int divider) {
  CheckDivider(divider, 0);
  if (m_parts == nullptr && (AppendZeros(divider) || RoundShort(divider))) return;
  CDecimalParts changed = MakeParts();
  changed.SetDivider(static_cast<std::size_t>(divider));
  Hold(std::move(changed));
}

int CDecimal::Normalize(CDecimal& a, CDecimal& b) {
  std::int32_t const divider = std::max(a.GetDivider(), b.GetDivider());
  a.ChangeFractionalDivider(divider);
  b.ChangeFractionalDivider(divider);
  return divider;
}

std::int32_t CDecimal::GetDivider() const { return m_parts == nullptr ? m_divider : m_parts->m_divider; }

// ---- Arithmetic

// False when the sum is too long.
bool CDecimal::AddShort(CDecimal const& a, CDecimal const& b) {
  std::int32_t const divider = std::max(a.m_divider, b.m_divider);
  Wide const left = Wide{a.m_units} * PowerOf10(divider - a.m_divider);
  Wide const right = Wide{b.m_units} * PowerOf10(divider - b.m_divider);
  std::int32_t sign = a.m_sign;
  Wide sum = left + right;
  if (a.m_sign != b.m_sign) {
    sign = left == right ? 1 : left < right ? b.m_sign : a.m_sign;
    sum = left < right ? right - left : left - right;
  }
  if (sum > kMostUnits) return false;
  SetShort(sign, static_cast<std::uint64_t>(sum), divider);
  RationaliseShort();
  return true;
}

// False when the product is too long. A whole product keeps all its zeros but one.
bool CDecimal::MultiplyShort(CDecimal const& a, CDecimal const& b) {
  std::int32_t const divider = a.m_divider + b.m_divider;
  Wide const product = Wide{a.m_units} * b.m_units;
  if (divider > kMostPower || product > kMostUnits) return false;
  SetShort(product == 0 ? 1 : a.m_sign * b.m_sign, static_cast<std::uint64_t>(product), divider);
  RationaliseShort();
  if (m_units % PowerOf10(m_divider) != 0) return true;
  return AppendZeros(std::max(2 * std::max(a.m_divider, b.m_divider) - 1, std::min(divider, 1)));
}

// Drops the zeros at the end of the fraction. False when the fraction is zero, or the value too long.
bool CDecimal::SetExact(std::int32_t sign, std::uint64_t whole, std::uint64_t fraction, std::int32_t divider) {
  if (fraction == 0) return false;
  for (; fraction % 10 == 0; --divider) fraction /= 10;
  Wide const units = Wide{whole} * PowerOf10(divider) + fraction;
  if (units > kMostUnits) return false;
  SetShort(sign, static_cast<std::uint64_t>(units), divider);
  return true;
}

// False when the divisor is zero or too long. The remainder stays within 64 bits, and yields twice sixteen digits of
// the fraction: two more than are kept.
bool CDecimal::DivideShort(CDecimal const& a, CDecimal const& b) {
  static_assert(m_maxDivider + 2 == 2 * 16);
  std::int32_t const divider = std::max(a.m_divider, b.m_divider);
  Wide const divisor = Wide{b.m_units} * PowerOf10(divider - b.m_divider);
  if (divisor == 0 || divisor > kMostUnits) return false;
  Wide const dividend = Wide{a.m_units} * PowerOf10(divider - a.m_divider);
  Wide const power = PowerOf10(16);
  Wide const whole = dividend / divisor;
  Wide const rest = dividend % divisor * power;
  auto const high = static_cast<std::uint64_t>(rest / divisor);
  Wide const low = rest % divisor * power / divisor;
  std::int32_t const sign = whole == 0 && high == 0 && low == 0 ? 1 : a.m_sign * b.m_sign;
  if (low == 0 && whole <= kMostUnits && SetExact(sign, static_cast<std::uint64_t>(whole), high, 16)) return true;
  Wide const fraction = high * (power / 100) + low / 100;
  CDecimalParts quotient(sign, whole, fraction + (low % 100 > 50 ? 1 : 0), m_maxDivider);
  if (fraction != 0 && low % 100 == 0) quotient.Rationalise();
  Hold(std::move(quotient));
  return true;
}

CDecimal CDecimal::operator+(CDecimal const& other) const {
  CDecimal sum;
  if (IsShortWith(other) && sum.AddShort(*this, other)) return sum;
  sum.Hold(IsLongWith(other) ? m_parts->Plus(*other.m_parts) : MakeParts().Plus(other.MakeParts()));
  return sum;
}

CDecimal CDecimal::operator-(CDecimal const& other) const { return *this + other.GetNegative(); }

CDecimal CDecimal::operator*(CDecimal const& other) const {
  CDecimal product;
  if (IsShortWith(other) && product.MultiplyShort(*this, other)) return product;
  product.Hold(IsLongWith(other) ? m_parts->Times(*other.m_parts) : MakeParts().Times(other.MakeParts()));
  return product;
}

CDecimal CDecimal::operator/(CDecimal const& divisor) const {
  CDecimal quotient;
  if (IsShortWith(divisor) && quotient.DivideShort(*this, divisor)) return quotient;
  quotient.Hold(IsLongWith(divisor) ? m_parts->Over(*divisor.m_parts) : MakeParts().Over(divisor.MakeParts()));
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
  m_sign = -m_sign;
  if (m_parts != nullptr) m_parts->Negate();
}

CDecimal CDecimal::GetNegative() const {
  CDecimal negative(*this);
  negative.Negate();
  return negative;
}

// ---- Order

// -1, 0 or +1 for two short values. The sign decides first, even for zeros.
int CDecimal::OrderShort(CDecimal const& other) const {
  if (m_sign != other.m_sign) return m_sign;
  std::int32_t const divider = std::max(m_divider, other.m_divider);
  Wide const left = Wide{m_units} * PowerOf10(divider - m_divider);
  Wide const right = Wide{other.m_units} * PowerOf10(divider - other.m_divider);
  return left == right ? 0 : left < right ? -m_sign : m_sign;
}

bool CDecimal::operator==(CDecimal const& other) const {
  if (IsShortWith(other)) return (m_units == 0 && other.m_units == 0) || OrderShort(other) == 0;
  return IsLongWith(other) ? m_parts->Equals(*other.m_parts) : MakeParts().Equals(other.MakeParts());
}

bool CDecimal::operator<(CDecimal const& other) const {
  if (IsShortWith(other)) return OrderShort(other) < 0;
  return IsLongWith(other) ? m_parts->IsBelow(*other.m_parts) : MakeParts().IsBelow(other.MakeParts());
}

bool CDecimal::operator<=(CDecimal const& other) const {
  if (IsShortWith(other)) return OrderShort(other) <= 0;
  return IsLongWith(other) ? m_parts->IsNotAbove(*other.m_parts) : MakeParts().IsNotAbove(other.MakeParts());
}

bool CDecimal::operator>(CDecimal const& other) const { return other < *this; }
bool CDecimal::operator>=(CDecimal const& other) const { return other <= *this; }

// A sum is exact, and normal where its operands are not.
int DecimalAccess::CompareLong(CDecimal const& left, CDecimal const& right) {
  CDecimal const difference = left - right;
  CDecimal const zero;
  return difference == zero ? 0 : difference < zero ? -1 : 1;
}

// ---- Conversions

std::string CDecimal::PrintShort(bool hasFraction) const {
  char buffer[32];
  char* const end = buffer + sizeof buffer;
  char* begin = end;
  if (hasFraction) {
    begin = PrintLast(begin, m_units, m_divider);
    *--begin = '.';
  }
  begin = PrintAll(begin, m_units / PowerOf10(m_divider));
  if (m_sign < 0 && m_units != 0) *--begin = '-';
  return std::string(begin, end);
}

std::string CDecimal::ToString() const {
  if (m_parts != nullptr) return m_parts->ToString();
  return PrintShort(m_units % PowerOf10(m_divider) != 0);
}

std::string CDecimal::ToString(int digits) const {
  if (digits < 0) throw CQnInvalidParamException(FormatString("Invalid number of digits [%d]", digits));
  if (m_parts != nullptr) return m_parts->ToString(digits);
  CDecimal sum;
  sum.SetShort(m_sign, 5, 1);  // a half
  if (!sum.AddShort(sum, *this)) return MakeParts().ToString(digits);
  std::string text = sum.PrintShort(true);
  if (digits < sum.m_divider) text.resize(text.size() - static_cast<std::size_t>(sum.m_divider - digits));
  return text;
}

bool CDecimal::HasAtMostDigits(int total, int fraction) const {
  if (m_parts != nullptr) return m_parts->HasAtMostDigits(total, fraction);
  std::uint64_t units = m_units;
  int places = m_divider;
  for (; places > 0 && units % 10 == 0; --places) units /= 10;
  return places <= fraction && places <= total && (total > kMostPower || units < PowerOf10(total));
}

double CDecimal::ToDouble() const {
  if (m_parts != nullptr && m_parts->IsBeyondDouble()) {
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
  CDecimalParts rounded = MakeParts();
  rounded.SetDivider(1);
  std::int64_t value = 0;
  if (ParseInteger(rounded.m_whole.ToString(), value) != NumberStatus::Ok) {
    throw CQnOverFlowException("The Decimal value if to large to fit into a LONGLONG");
  }
  return value;
}

CBigInteger CDecimal::ToBigInteger() const {
  CDecimalParts rounded = MakeParts();
  rounded.SetDivider(0);
  return std::move(rounded.m_whole);
}

}  // namespace Quillon9
