#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Quillon9 {

/// A magnitude: decimal digits as values 0 to 9, least significant first, without most-significant zeros but with at
/// least one digit. A string rather than a vector, because up to 15 digits then need no memory of their own.
using Digits = std::string;

/// -1, 0 or +1 as \p a is below, equal to or above \p b.
int CompareDigits(std::string_view a, std::string_view b);
/// Add \p from, which may be the same object. Allocates before it changes anything.
void AddDigits(Digits& to, Digits const& from);
/// Subtract \p from. Returns false when it is above \p to, which is then meaningless.
bool SubtractDigits(Digits& to, Digits const& from);
/// The product of two magnitudes.
/// \throws CQnInvalidParamException "Invalid decimal digit [%d]".
Digits MultipliedDigits(std::string_view a, std::string_view b);
/// Divide \p a, which becomes the remainder, by \p b.
/// \throws CQnInvalidParamException "Invalid decimal digit [%d]"; CQnInvalidValueException "ERROR: Overflow in Divide."
///         for zero.
Digits DividedDigits(Digits& a, std::string_view b);
/// Remove most-significant zeros.
void CleanDigits(Digits& digits);
/// The number of digits without most-significant zeros: 0 for zero.
std::size_t CountDigits(std::string_view digits);

Digits DigitsOf(unsigned long long value);
/// The digits of the nearest integer; see CBigInteger::BuildDouble().
Digits DigitsOfDouble(double value);
/// The digits of the run that ends at \p end.
Digits DigitsOfLastRun(char const* begin, char const* end);
Digits DigitsOfPow10(std::size_t exponent);

}  // namespace Quillon9
