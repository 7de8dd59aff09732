#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "quillon9/values/big_integer.h"
#include "values/limbs.h"

namespace Quillon9 {

/// The number whole + fraction / 10^divider, of any length: CDecimal stores and computes long values with it, for which
/// its short form is not enough. CDecimal documents the operations and the treatment of signs.
struct CDecimalParts {
  /// The largest exponent of a text, and the largest divider.
  static constexpr int m_maxExponent = 100000;

  /// Zero.
  CDecimalParts() = default;
  /// \p sign * \p units / 10^\p divider, which is at most kMostPower.
  CDecimalParts(std::int32_t sign, std::uint64_t units, std::int32_t divider);
  /// Both parts of the number, with \p sign.
  CDecimalParts(std::int32_t sign, Wide whole, Wide fraction, std::int32_t divider);
  explicit CDecimalParts(CBigInteger const& whole);
  CDecimalParts(CBigInteger const& whole, CBigInteger const& fraction, std::int32_t divider);
  static CDecimalParts Parse(char const* text);

  /// Return the arguments of that constructor. False when they could not represent this number with its signs and its
  /// divider.
  bool Pack(std::uint64_t& units) const;
  std::int32_t GetSign() const { return m_whole.m_sign; }

  CDecimalParts Plus(CDecimalParts const& other) const;
  CDecimalParts Times(CDecimalParts const& other) const;
  CDecimalParts Over(CDecimalParts const& divisor) const;
  void Negate();

  bool Equals(CDecimalParts const& other) const;
  bool IsBelow(CDecimalParts const& other) const;
  bool IsNotAbove(CDecimalParts const& other) const;
  bool IsBeyondDouble() const;

  bool HasAtMostDigits(int total, int fraction) const;
  std::string ToString() const;
  std::string ToString(int digits) const;

  void Rationalise();
  void SetDivider(std::size_t divider);

  CBigInteger m_whole;
  CBigInteger m_fraction;
  std::int32_t m_divider = 1;

 private:
  int CompareFractions(CDecimalParts const& other) const;
  CBigInteger GetUnits() const;
  void SetUnits(CBigInteger units, std::size_t divider);
  void MultiplyByPow10(std::size_t exponent);
  void DivideByPow10(std::size_t exponent);
  void RoundToLimit();
  void AlignSigns();
  void AlignZeros();
};

}  // namespace Quillon9
