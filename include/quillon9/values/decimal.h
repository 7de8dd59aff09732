#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "quillon9/export.h"
#include "quillon9/values/big_integer.h"

namespace Quillon9 {

struct CDecimalParts;
struct DecimalAccess;

/// Holds a value of xs:decimal (W3C XML Schema Part 2, 3.2.3) exactly: a whole part, a fraction part and the number of
/// digits in the fraction, its divider. Parsing, multiplying and dividing keep m_maxDivider fraction digits; sums keep
/// all.
///
/// Where digits are cut the value is rounded to the nearest, an exact half towards zero. Two properties would surprise
/// a user of XML Schema. A fraction that rounds up to one stays in the fraction: 0.999 to two digits is 0 and 100
/// hundredths, prints "0.100" and does not equal 1. And the zeros are ordered like those of CBigInteger: "-0" lies
/// below "0" although it equals it.
///
/// Both parts carry the sign of a value; a part that is zero carries the sign of the other one. A sum of two zeros is
/// -0 only if both are. A product with zero and a quotient that is cut to zero are +0.
///
/// Up to 18 digits need no memory beside the object; more digits need about a byte each. The zeros that an exponent
/// appends take memory only when a sum, a quotient or ToString() needs them as digits; comparing, copying, rounding and
/// multiplying do not. Arithmetic on long values takes as long as that of CBigInteger.
///
/// A plain value: it belongs to one thread at a time, and any number of threads may read it. Operators that throw leave
/// both operands unchanged. Besides the failures named below, operations may throw std::bad_alloc. A value that was
/// moved from may only be assigned to and destroyed.
class QUILLON9_API CDecimal {
 public:
  /// The maximal number of fraction digits after parsing, multiplication and division.
  static constexpr std::int32_t m_maxDivider = 30;

  /// Zero.
  CDecimal();
  /// The number \p value.
  CDecimal(int value);
  /// Print the value with 13 fraction digits, and parse the text.
  /// \throws CQnInvalidValueException as Parse() does, for an infinity or NaN.
  CDecimal(double value);
  /// Parse() of \p text.
  CDecimal(char const* text);
  /// The number \p whole.
  CDecimal(CBigInteger const& whole);
  /// \p whole + \p fraction / 10^\p divider, without normalisation. In a normal value the parts do not differ in sign
  /// and the fraction has no more than \p divider digits; sums normalise any other value.
  /// \param divider 1 to 100,000.
  /// \throws CQnInvalidParamException "The divider of a Decimal is out of range [%d]".
  CDecimal(CBigInteger const& whole, CBigInteger const& fraction, int divider);
  /// Copy or take over the number; a value that was moved from may only be assigned to or destroyed.
  ///@{
  CDecimal(CDecimal const& other);
  CDecimal(CDecimal&& other) noexcept;
  CDecimal& operator=(CDecimal const& other);
  CDecimal& operator=(CDecimal&& other) noexcept;
  ///@}
  virtual ~CDecimal();

  /// Add and subtract exactly.
  ///@{
  CDecimal operator+(CDecimal const& other) const;
  CDecimal operator-(CDecimal const& other) const;
  CDecimal& operator+=(CDecimal const& other);
  CDecimal& operator-=(CDecimal const& other);
  ///@}
  /// Compute the exact product and round it to m_maxDivider fraction digits.
  ///@{
  CDecimal operator*(CDecimal const& other) const;
  CDecimal& operator*=(CDecimal const& other);
  ///@}
  /// Compute the quotient, cut it after m_maxDivider + 2 fraction digits, and then round it to m_maxDivider.
  /// \throws CQnInvalidValueException "ERROR: Overflow in operator/." when \p divisor is zero.
  ///@{
  CDecimal operator/(CDecimal const& divisor) const;
  CDecimal& operator/=(CDecimal const& divisor);
  ///@}
  /// Add or subtract 1.
  ///@{
  CDecimal& operator++();
  CDecimal operator++(int);
  CDecimal& operator--();
  CDecimal operator--(int);
  ///@}

  /// Compare the whole parts and, if they are equal, the fractions.
  ///@{
  bool operator==(CDecimal const& other) const;
  bool operator!=(CDecimal const& other) const { return !(*this == other); }
  bool operator<(CDecimal const& other) const;
  bool operator>(CDecimal const& other) const;
  bool operator<=(CDecimal const& other) const;
  bool operator>=(CDecimal const& other) const;
  ///@}

  /// Negate in place. Zero changes its sign too.
  void Negate();
  /// A negated copy.
  CDecimal GetNegative() const;

  /// Read \p text up to its zero byte. A failure leaves the old value unchanged.
  ///
  /// The text consists of whole digits, then "." and fraction digits, then "e" or "E", a sign and exponent digits; each
  /// may be missing, so "", "-", "." and "e5" are 0. Beyond what xs:decimal allows, there may be an exponent; white
  /// space is skipped everywhere except after the first exponent digit ("1 2" is 12); signs count anywhere before the
  /// point and the last one wins ("1-2" is -12), and likewise before the exponent digits.
  ///
  /// The value is rounded to m_maxDivider fraction digits; with an exponent, after multiplying or dividing by that
  /// power of ten. A fraction that rounds up to one is not carried: 0.999... with 31 nines is "0.1000..." with thirty
  /// zeros.
  /// \throws CQnInvalidParamException "The text of a Decimal is null".
  /// \throws CQnInvalidValueException "The string representing a Decimal, contained an invalid char at position %d
  ///         [%s]", with the index of the character.
  /// \throws CQnOverFlowException, before memory is taken: "The digits of a Decimal exceed the limit of %d [%s]" for
  ///         more than 500,000 digits before or after the point, "The exponent of a Decimal exceeds the limit of %d
  ///         [%s]" above 100,000, and below -100,000 unless the value is rounded to 0. They show the beginning of a
  ///         long text.
  void Parse(char const* text);

  /// The value with all its digits, however many; without a point when the fraction is zero.
  std::string ToString() const;
  /// Add half a unit, 0.5, to the magnitude of the value and cut the fraction after \p digits digits. The half is not
  /// half of the last digit: 1.234 with one digit is "1.7", and 1.5 is "2.0". A fraction shorter than \p digits is not
  /// padded, and 0 digits leave the point: "1.".
  /// \throws CQnInvalidParamException "Invalid number of digits [%d]" below 0.
  std::string ToString(int digits) const;
  /// The nearest double.
  /// \throws CQnOverFlowException "The Decimal value if to large to fit into a Double" beyond 1.7E+308 in either
  ///         direction, which is slightly below the largest double.
  double ToDouble() const;
  /// The nearest integer, an exact half rounding towards zero.
  /// \throws CQnOverFlowException "The Decimal value if to large to fit into a LONG" outside 32 bits.
  std::int32_t ToLong() const;
  /// The value rounded towards zero, unlike ToLong().
  /// \throws CQnOverFlowException "The Decimal value if to large to fit into a LONGLONG" outside 64 bits.
  std::int64_t ToLongLong() const;
  /// The nearest integer, an exact half rounding towards zero.
  CBigInteger ToBigInteger() const;

  /// Whether the value has at most \p total digits, and at most \p fraction of them after the point, as the facets
  /// totalDigits and fractionDigits count them (W3C XML Schema Part 2, 4.3.11 and 4.3.12): without zeros in front and
  /// at the end of the fraction. Throws nothing but std::bad_alloc.
  bool HasAtMostDigits(int total, int fraction) const;

  /// Drop trailing zeros of the fraction, but keep a divider of at least 1. If the fraction is zero, only one digit is
  /// dropped.
  void Rationalise();
  /// Change the number of fraction digits; if it decreases, round to the nearest, an exact half towards zero. With \p
  /// divider 0 the whole part is rounded; otherwise a fraction that rounds up to one stays one: 0.999 to two digits
  /// prints "0.100".
  /// \param divider 0 to 100,000.
  /// \throws CQnInvalidParamException "The divider of a Decimal is out of range [%d]".
  void ChangeFractionalDivider(int divider);
  /// Change both values to the larger of their dividers.
  /// \returns that divider.
  static int Normalize(CDecimal& a, CDecimal& b);

 private:
  friend struct DecimalAccess;

  bool IsShortWith(CDecimal const& other) const { return m_parts == nullptr && other.m_parts == nullptr; }
  bool IsLongWith(CDecimal const& other) const { return m_parts != nullptr && other.m_parts != nullptr; }
  std::unique_ptr<CDecimalParts> CopyParts() const;
  CDecimalParts MakeParts() const;
  void Hold(CDecimalParts&& parts);
  void SetShort(std::int32_t sign, std::uint64_t units, std::int32_t divider);
  bool ParseShort(char const* text);
  void RationaliseShort();
  bool AppendZeros(int divider);
  bool RoundShort(int divider);
  bool AddShort(CDecimal const& a, CDecimal const& b);
  bool MultiplyShort(CDecimal const& a, CDecimal const& b);
  bool DivideShort(CDecimal const& a, CDecimal const& b);
  bool SetExact(std::int32_t sign, std::uint64_t whole, std::uint64_t fraction, std::int32_t divider);
  int OrderShort(CDecimal const& other) const;
  std::int32_t GetDivider() const;
  std::string PrintShort(bool hasFraction) const;

  // Nearly all values are short. Parsing, copying and printing them is much faster without separate memory.
  std::unique_ptr<CDecimalParts> m_parts;  // the value when it is long; null for a short value, which is
  std::uint64_t m_units = 0;               // m_sign * m_units / 10^m_divider, where the divider is at most 19
  std::int32_t m_divider = 1;
  std::int32_t m_sign = 1;  // +1 or -1, also of zero
};

}  // namespace Quillon9
