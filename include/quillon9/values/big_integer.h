#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "quillon9/export.h"

namespace Quillon9 {

class CDecimal;
struct CDecimalParts;

/// Holds a value of xs:integer (W3C XML Schema Part 2, 3.3.13) or of a type derived from it, of any length.
///
/// A value is a sign and decimal digits. Zero may carry either sign (Parse() of "-0", products and quotients): both
/// zeros are equal and print "0", but the order operators compare the signs first, so -0 lies below +0 (unexpectedly
/// for a user of XML Schema: "-0" violates minInclusive "0").
///
/// A number takes one byte per digit. The zeros that an exponent or Pow10() appends take memory only when a sum, a
/// quotient or ToString() needs them as digits; comparing, copying and multiplying do not. The time of parsing,
/// printing, comparing, adding and subtracting grows with the number of digits n, that of multiplying with n to the
/// power of 1.6 (Karatsuba). A division takes as long as a few products, SquareRoot() as long as a few divisions.
///
/// A plain value: it belongs to one thread at a time, and any number of threads may read it. Operators that throw leave
/// both operands unchanged. Besides the failures named below, operations may throw std::bad_alloc. A value that was
/// moved from may only be assigned to and destroyed.
class QUILLON9_API CBigInteger {
 public:
  static CBigInteger const MAX_LONG;      ///< 2147483647
  static CBigInteger const MIN_LONG;      ///< -2147483648
  static CBigInteger const MAX_LONGLONG;  ///< 9223372036854775807
  static CBigInteger const MIN_LONGLONG;  ///< -9223372036854775808
  static CBigInteger const MAX_DOUBLE;    ///< 1.7E+308, which is slightly below the largest double
  static CBigInteger const MIN_DOUBLE;    ///< -1.7E+308

  /// Zero, with the sign +1.
  CBigInteger();
  /// The number \p value.
  CBigInteger(int value);
  /// The nearest integer, a half rounding towards zero. A negative value that rounds to zero gives -0.
  /// \throws CQnInvalidValueException as BuildDouble() does.
  CBigInteger(double value);
  /// Parse() of \p text.
  CBigInteger(char const* text);
  /// CDecimal::ToBigInteger() of \p value: rounded, an exact half towards zero.
  CBigInteger(CDecimal const& value);
  /// Copy or take over the number; a value that was moved from may only be assigned to or destroyed.
  ///@{
  CBigInteger(CBigInteger const& other);
  CBigInteger(CBigInteger&& other) noexcept;
  CBigInteger& operator=(CBigInteger const& other);
  CBigInteger& operator=(CBigInteger&& other) noexcept;
  ///@}
  virtual ~CBigInteger();

  /// Add and subtract. The sum of two numbers of opposite sign and equal magnitude is +0.
  ///@{
  CBigInteger operator+(CBigInteger const& other) const;
  CBigInteger operator-(CBigInteger const& other) const;
  CBigInteger& operator+=(CBigInteger const& other);
  CBigInteger& operator-=(CBigInteger const& other);
  ///@}
  /// The sign of a product is the product of the signs, also for zero.
  ///@{
  CBigInteger operator*(CBigInteger const& other) const;
  CBigInteger& operator*=(CBigInteger const& other);
  ///@}

  /// Divide, rounding towards zero: 7 / -2 is -3. A dividend of 0 gives +0; otherwise the sign is -1 when the signs
  /// differ, also for a quotient of zero. Note that the four operators accept different divisors.
  /// \throws CQnInvalidValueException "ERROR: Overflow in operator/." when \p divisor is zero (0 / 0 too).
  CBigInteger operator/(CBigInteger const& divisor) const;
  /// Divide in place, with the result of operator/.
  /// \throws CQnInvalidValueException "ERROR: Overflow in operator /=." when \p divisor is below 0 (as is -0), and when
  ///         it is zero and the dividend is not.
  CBigInteger& operator/=(CBigInteger const& divisor);
  /// The remainder of a division that rounds towards zero; it has the sign of the dividend: -7 % 2 is -1. A dividend of
  /// 0 gives +0.
  /// \throws CQnInvalidValueException "ERROR: Overflow in operator%." when \p divisor is below 0 (as is -0), and when
  ///         it is zero and the dividend is not.
  CBigInteger operator%(CBigInteger const& divisor) const;
  /// Replace the number by the remainder, as operator% computes it.
  /// \throws CQnInvalidValueException "ERROR: Overflow in operator%=.", as operator% does.
  CBigInteger& operator%=(CBigInteger const& divisor);

  /// Compare digits and signs; zeros are equal whatever their signs.
  ///@{
  bool operator==(CBigInteger const& other) const;
  bool operator!=(CBigInteger const& other) const { return !(*this == other); }
  ///@}
  /// Order the numbers. The sign decides first, so -0 < +0 holds although -0 == +0.
  ///@{
  bool operator<(CBigInteger const& other) const { return Order(other) < 0; }
  bool operator>(CBigInteger const& other) const { return Order(other) > 0; }
  bool operator<=(CBigInteger const& other) const { return Order(other) <= 0; }
  bool operator>=(CBigInteger const& other) const { return Order(other) >= 0; }
  ///@}

  /// The number as an int.
  /// \throws CQnInvalidValueException "ERROR: Value out of bound of int."
  operator int() const;

  /// Negate this object itself and return it: unlike the usual operator, it makes no copy.
  CBigInteger& operator-();
  /// Negate in place. Zero changes its sign too.
  void Negate() { m_sign = m_sign == -1 ? 1 : -1; }
  /// Make the sign +1.
  void Abs() { m_sign = 1; }
  /// Return a copy with the opposite sign; return a copy with the sign +1.
  ///@{
  CBigInteger GetNegative() const;
  CBigInteger GetAbs() const;
  ///@}

  /// The decimal digits without leading zeros, with "-" when negative. Zero is "0", whatever its sign.
  std::string ToString() const;

  /// Read \p text up to its zero byte. A failure leaves the old value unchanged.
  ///
  /// A text of only digits, "-", "+" and white space has its spaces (but no other white space) trimmed; a "-" in front
  /// makes it negative, and the value is the last run of digits, which must reach the end. So more is accepted than
  /// xs:integer allows: "12-3" is 3, "1 2" is 2, "\t-5" is 5, and "5\t", "-" and an empty text are 0. Any other text is
  /// read as a CDecimal, which is rounded, an exact half towards zero: "1.6" is 2, "1E3" is 1000.
  /// \throws CQnInvalidParamException "The text of a BigInteger is null"; whatever CDecimal::Parse() throws.
  void Parse(char const* text);

  /// The largest number whose square is not above this one.
  /// \throws CQnInvalidValueException "ERROR: Negative Number in function SquareRoot()." below 0 (as is -0); "ERROR:
  ///         Overflow in operator/." for 0.
  CBigInteger SquareRoot() const;

  /// Ten to the power of \p exponent.
  static CBigInteger Pow10(unsigned int exponent);

  /// Helpers on magnitudes: decimal digits as values 0 to 9, least significant first, without most-significant zeros
  /// but with at least one digit. A result may be the same vector as an argument. Multiply() and Divide() throw
  /// CQnInvalidParamException "Invalid decimal digit [%d]" for other values; the other helpers give meaningless results
  /// for them.

  /// -1, 0 or +1 as \p a is below, equal to or above \p b. The shorter vector counts as the smaller number.
  static int Compare(std::vector<char> const& a, std::vector<char> const& b);
  /// The sum, which has as many digits as the longer operand or one more.
  static void Add(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result);
  /// The difference.
  /// \throws CQnInvalidParamException "The subtrahend is above the minuend".
  static void Subtract(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result);
  /// The product with one \p digit, 0 to 9.
  static void Multiply(std::vector<char> const& a, char digit, std::vector<char>& result);
  /// The product of two numbers.
  static void Multiply(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& result);
  /// Quotient and remainder.
  /// \throws CQnInvalidValueException "ERROR: Overflow in Divide." when \p b is zero.
  static void Divide(std::vector<char> const& a, std::vector<char> const& b, std::vector<char>& quotient,
                     std::vector<char>& remainder);
  /// Remove most-significant zeros, but leave one digit; an empty vector becomes the digit 0.
  static void Clean(std::vector<char>& digits);
  /// Insert \p count zeros at the least significant end, also before a zero.
  static void ShiftLeft(std::vector<char>& digits, unsigned int count);
  /// The index of the most significant digit that is not 0; -1 when there is none.
  static std::ptrdiff_t Position(std::vector<char> const& digits);
  /// The digits of \p value.
  ///@{
  static void Build(unsigned int value, std::vector<char>& digits);
  static void BuildDWORDLONG(unsigned long long value, std::vector<char>& digits);
  ///@}
  /// The digits of the last run of digits in \p text, which must reach its end; without one, the digit 0.
  static void Build(std::string const& text, std::vector<char>& digits);
  /// The digits of the nearest integer, a half rounding down; 0 when that is below 0. Above 2^53 the digits come from
  /// repeated division by ten and so include its rounding errors.
  /// \throws CQnInvalidValueException "The value [%s] can not be converted to a BigInteger" for an infinity or NaN.
  static void BuildDouble(double value, std::vector<char>& digits);
  /// Ten to the power of \p exponent.
  static void Pow10(unsigned int exponent, std::vector<char>& digits);

 private:
  friend struct CDecimalParts;

  CBigInteger(std::int32_t sign, std::string digits);

  bool IsZero() const { return m_digits.size() <= 1 && (m_digits.empty() || m_digits[0] == 0); }
  std::size_t GetLength() const { return m_digits.size() + m_zeros; }
  int Order(CBigInteger const& other, std::size_t shift = 0, std::size_t otherShift = 0) const;
  int OrderOfMagnitudes(CBigInteger const& other, std::size_t shift, std::size_t otherShift) const;
  void SpellOutZeros(std::uint32_t remaining);
  std::string_view GetDigits(std::string& scratch) const;
  void AppendDigits(std::string& text, std::size_t width) const;
  void AddSigned(CBigInteger const& other, std::int32_t otherSign);
  CBigInteger DividedBy(CBigInteger const& divisor, CBigInteger& remainder) const;
  void CheckDivisor(CBigInteger const& divisor, char const* message) const;
  void TimesPow10(std::size_t exponent);
  CBigInteger SplitAtPow10(std::size_t exponent);

  std::int32_t m_sign = 1;    // +1 or -1
  std::uint32_t m_zeros = 0;  // zeros that follow the digits; 0 for the value zero. "1e100000" takes no more memory
                              // than its text.
  std::string m_digits;       // as the helpers expect them; in a string because it holds a few digits without
                              // allocating
};

/// Enables arithmetic and comparison with an int, in both orders. Without it, `value + 1` could also mean the sum of
/// two int values.
template <class A, class B>
using EnableForIntAndBigInteger = std::enable_if_t<(std::is_same_v<A, CBigInteger> && std::is_same_v<B, int>) ||
                                                   (std::is_same_v<A, int> && std::is_same_v<B, CBigInteger>)>;

// clang-format off
/// Operators between an `int` and a CBigInteger, in either order. They behave like those of CBigInteger, which document
/// what they throw.
///@{
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
CBigInteger operator+(A const& a, B const& b) { return CBigInteger(a).operator+(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
CBigInteger operator-(A const& a, B const& b) { return CBigInteger(a).operator-(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
CBigInteger operator*(A const& a, B const& b) { return CBigInteger(a).operator*(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
CBigInteger operator/(A const& a, B const& b) { return CBigInteger(a).operator/(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
CBigInteger operator%(A const& a, B const& b) { return CBigInteger(a).operator%(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
bool operator==(A const& a, B const& b) { return CBigInteger(a).operator==(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
bool operator!=(A const& a, B const& b) { return CBigInteger(a).operator!=(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
bool operator<(A const& a, B const& b) { return CBigInteger(a).operator<(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
bool operator>(A const& a, B const& b) { return CBigInteger(a).operator>(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
bool operator<=(A const& a, B const& b) { return CBigInteger(a).operator<=(CBigInteger(b)); }
template <class A, class B, class = EnableForIntAndBigInteger<A, B>>
bool operator>=(A const& a, B const& b) { return CBigInteger(a).operator>=(CBigInteger(b)); }
///@}
// clang-format on

}  // namespace Quillon9
