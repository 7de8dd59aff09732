#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Quillon9 {

/// A magnitude in base 10^18, least significant limb first, without most-significant zeros; zero has no limbs. With
/// this base the conversion from and to decimal digits is linear, and a sum of 256 products of limbs fits into 128
/// bits.
using Limbs = std::vector<std::uint64_t>;

__extension__ typedef unsigned __int128 Wide;

/// The maximal number of digits in a Wide here: two limbs.
constexpr std::size_t kWideDigits = 36;

/// Convert from decimal digits as values 0 to 9, least significant first.
/// \throws CQnInvalidParamException "Invalid decimal digit [%d]".
Limbs PackDigits(std::string_view digits);
/// The same for at most kWideDigits digits.
Wide PackWide(std::string_view digits);

/// Convert to decimal digits without most-significant zeros; zero gives the single digit 0.
void UnpackDigits(Limbs const& limbs, std::string& digits);
void UnpackWide(Wide value, std::string& digits);

/// The product, by Karatsuba's method where that is faster.
Limbs MultiplyLimbs(Limbs const& a, Limbs const& b);

/// The quotient of a / \p b, which is not zero; \p a becomes the remainder. Takes as long as a few products of that
/// length.
Limbs DivideLimbs(Limbs& a, Limbs const& b);

/// The largest number whose square is not above \p value. Takes a few divisions.
Limbs SquareRootOfLimbs(Limbs const& value);

}  // namespace Quillon9
