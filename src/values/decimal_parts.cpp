#include "values/decimal_parts.h"

#include <algorithm>
#include <utility>

#include "quillon9/values/decimal.h"
#include "values/digits.h"
#include "values/limbs.h"
#include "values/powers_of_10.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kQuotientDigits = CDecimal::m_maxDivider + 2;

// Whether the magnitude is above half of ten to the power of `exponent`, which is above 0.
bool IsAboveHalf(std::string_view digits, std::size_t exponent) {
  if (digits.size() != exponent || digits.back() < 5) return false;
  return digits.back() > 5 || std::any_of(digits.begin(), digits.end() - 1, [](char digit) { return digit != 0; });
}

// Not CBigInteger::MAX_DOUBLE itself: constants of other files may be initialised earlier.
CBigInteger const& LargestDouble() {
  static auto const& limit = *new CBigInteger("1.7E+308");
  return limit;
}

}  // namespace

// ---- Making values

CDecimalParts::CDecimalParts(std::int32_t sign, std::uint64_t units, std::int32_t divider)
    : m_whole(sign, DigitsOf(units / PowerOf10(divider))),
      m_fraction(sign, DigitsOf(units % PowerOf10(divider))),
      m_divider(divider) {}

CDecimalParts::CDecimalParts(std::int32_t sign, Wide whole, Wide fraction, std::int32_t divider)
    : m_whole(sign, Digits()), m_fraction(sign, Digits()), m_divider(divider) {
  UnpackWide(whole, m_whole.m_digits);
  UnpackWide(fraction, m_fraction.m_digits);
}

CDecimalParts::CDecimalParts(CBigInteger const& whole) : m_whole(whole), m_fraction(whole.m_sign, Digits(1, 0)) {}

CDecimalParts::CDecimalParts(CBigInteger const& whole, CBigInteger const& fraction, std::int32_t divider)
    : m_whole(whole), m_fraction(fraction), m_divider(divider) {}

bool CDecimalParts::Pack(std::uint64_t& units) const {
  if (m_divider > kMostPower || m_whole.m_sign != m_fraction.m_sign) return false;
  auto const divider = static_cast<std::size_t>(m_divider);
  if (!m_fraction.IsZero() && m_fraction.GetLength() > divider) return false;
  if (!m_whole.IsZero() && m_whole.GetLength() + divider > kMostPower) return false;
  Digits scratch;
  Wide const whole = PackWide(m_whole.GetDigits(scratch));
  units = static_cast<std::uint64_t>(whole * PowerOf10(m_divider) + PackWide(m_fraction.GetDigits(scratch)));
  return true;
}

// ---- Parts and digits

// The value as an integer, without its point.
CBigInteger CDecimalParts::GetUnits() const {
  CBigInteger units(m_whole);
  units.TimesPow10(static_cast<std::size_t>(m_divider));
  units += m_fraction;
  return units;
}

// Insert the point again, and round.
void CDecimalParts::SetUnits(CBigInteger units, std::size_t divider) {
  m_fraction = units.SplitAtPow10(divider);
  m_whole = std::move(units);
  m_divider = static_cast<std::int32_t>(divider);
  RoundToLimit();
}

// Does the work of operator* for a power of ten, at the cost of moving digits.
void CDecimalParts::MultiplyByPow10(std::size_t exponent) {
  auto const divider = static_cast<std::size_t>(m_divider);
  CBigInteger units = GetUnits();
  units.TimesPow10(exponent + divider);
  SetUnits(std::move(units), 2 * divider);
}

// Does the work of operator/ for a power of ten.
void CDecimalParts::DivideByPow10(std::size_t exponent) {
  std::size_t const dropped = exponent + static_cast<std::size_t>(m_divider);
  CBigInteger units = GetUnits();
  if (dropped <= kQuotientDigits) {
    units.TimesPow10(kQuotientDigits - dropped);
  } else {
    units.SplitAtPow10(dropped - kQuotientDigits);
  }
  SetUnits(std::move(units), kQuotientDigits);
}

void CDecimalParts::Rationalise() {
  auto const most = static_cast<std::size_t>(std::max(m_divider, 1) - 1);
  std::size_t const zeros =
      m_fraction.IsZero() ? 1 : m_fraction.m_digits.find_first_not_of('\0') + std::size_t{m_fraction.m_zeros};
  std::size_t const dropped = std::min(most, zeros);
  if (dropped == 0) return;
  if (!m_fraction.IsZero()) m_fraction.SplitAtPow10(dropped);
  m_divider -= static_cast<std::int32_t>(dropped);
}

void CDecimalParts::SetDivider(std::size_t divider) {
  auto const current = static_cast<std::size_t>(m_divider);
  if (divider >= current) {
    m_fraction.TimesPow10(divider - current);
    m_divider = static_cast<std::int32_t>(divider);
    return;
  }
  std::size_t const dropped = current - divider;
  CBigInteger const remainder = m_fraction.SplitAtPow10(dropped);
  m_divider = static_cast<std::int32_t>(divider);
  bool const carries = IsAboveHalf(remainder.m_digits, dropped - remainder.m_zeros);
  if (carries) (divider == 0 ? m_whole : m_fraction) += CBigInteger(remainder.m_sign);
  if (carries && divider != 0) {
    AlignSigns();
  } else {
    AlignZeros();
  }
}

void CDecimalParts::RoundToLimit() {
  Rationalise();
  if (m_divider > CDecimal::m_maxDivider) SetDivider(CDecimal::m_maxDivider);
}

// Make both parts carry the sign of the value.
void CDecimalParts::AlignSigns() {
  std::int32_t const sign = m_whole.m_sign;
  if (sign != m_fraction.m_sign && !m_whole.IsZero() && !m_fraction.IsZero()) {
    CBigInteger unit = CBigInteger::Pow10(static_cast<unsigned int>(m_divider));
    unit.m_sign = sign;
    m_fraction += unit;
    m_whole -= CBigInteger(sign);
  }
  AlignZeros();
}

// Give a part that is zero the sign of the other one.
void CDecimalParts::AlignZeros() {
  if (m_fraction.IsZero()) {
    m_fraction.m_sign = m_whole.m_sign;
  } else if (m_whole.IsZero()) {
    m_whole.m_sign = m_fraction.m_sign;
  }
}

// ---- Arithmetic

CDecimalParts CDecimalParts::Plus(CDecimalParts const& other) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, other.m_divider));
  CDecimalParts sum(*this);
  sum.SetDivider(divider);
  if (other.m_divider == sum.m_divider) {
    sum.m_fraction += other.m_fraction;
  } else {
    CBigInteger fraction(other.m_fraction);
    fraction.TimesPow10(divider - static_cast<std::size_t>(other.m_divider));
    sum.m_fraction += fraction;
  }
  sum.m_whole += other.m_whole;
  if (!sum.m_fraction.IsZero() && sum.m_fraction.GetLength() > divider) {
    CBigInteger fraction = sum.m_fraction.SplitAtPow10(divider);
    sum.m_whole += sum.m_fraction;
    sum.m_fraction = std::move(fraction);
  }
  sum.AlignSigns();
  sum.Rationalise();
  return sum;
}

CDecimalParts CDecimalParts::Times(CDecimalParts const& other) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, other.m_divider));
  CBigInteger units = GetUnits() * other.GetUnits();
  units.TimesPow10(2 * divider - static_cast<std::size_t>(m_divider) - static_cast<std::size_t>(other.m_divider));
  CDecimalParts product;
  product.SetUnits(std::move(units), 2 * divider);
  return product;
}

CDecimalParts CDecimalParts::Over(CDecimalParts const& divisor) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, divisor.m_divider));
  CBigInteger numerator = GetUnits();
  numerator.TimesPow10(divider - static_cast<std::size_t>(m_divider) + kQuotientDigits);
  CBigInteger denominator = divisor.GetUnits();
  denominator.TimesPow10(divider - static_cast<std::size_t>(divisor.m_divider));
  CDecimalParts quotient;
  quotient.SetUnits(numerator / denominator, kQuotientDigits);
  return quotient;
}

void CDecimalParts::Negate() {
  m_whole.Negate();
  m_fraction.Negate();
}

// ---- Order

int CDecimalParts::CompareFractions(CDecimalParts const& other) const {
  auto const divider = static_cast<std::size_t>(std::max(m_divider, other.m_divider));
  return m_fraction.Order(other.m_fraction, divider - static_cast<std::size_t>(m_divider),
                          divider - static_cast<std::size_t>(other.m_divider));
}

bool CDecimalParts::Equals(CDecimalParts const& other) const {
  if (m_whole != other.m_whole) return false;
  return (m_fraction.IsZero() && other.m_fraction.IsZero()) || CompareFractions(other) == 0;
}

bool CDecimalParts::IsBelow(CDecimalParts const& other) const {
  return m_whole < other.m_whole || (m_whole == other.m_whole && CompareFractions(other) < 0);
}

bool CDecimalParts::IsNotAbove(CDecimalParts const& other) const {
  return m_whole < other.m_whole || (m_whole == other.m_whole && CompareFractions(other) <= 0);
}

bool CDecimalParts::IsBeyondDouble() const { return m_whole.OrderOfMagnitudes(LargestDouble(), 0, 0) > 0; }

}  // namespace Quillon9
