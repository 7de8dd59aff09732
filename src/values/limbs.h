#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Quillon9 {

/// A magnitude in base 10^18, least significant limb first, without most-significant zeros; zero has no limbs.
/// The base makes the way from and to decimal digits linear, and leaves a sum of 256 products of limbs within
/// 128 bits.
using Limbs = std::vector<std::uint64_t>;

__extension__ typedef unsigned __int128 Wide;

/// Most digits that a Wide holds here: two limbs.
constexpr std::size_t kWideDigits = 36;

/// Convert from decimal digits as values 0 to 9, least significant first.
/// \throws CQnInvalidParamException "Invalid decimal digit [%d]".
Limbs PackDigits(std::string_view digits);
/// The same for at most kWideDigits digits.
Wide PackWide(std::string_view digits);

/// Convert to decimal digits without most-significant zeros; zero is the one digit 0.
void UnpackDigits(Limbs const& limbs, std::string& digits);
void UnpackWide(Wide value, std::string& digits);

/// The product; the method of Karatsuba where it pays.
Limbs MultiplyLimbs(Limbs const& a, Limbs const& b);

/// The quotient of a / \p b, which is not zero; \p a becomes the remainder. It costs a few products of that length.
Limbs DivideLimbs(Limbs& a, Limbs const& b);

/// The largest number whose square is not above \p value, by a few divisions.
Limbs SquareRootOfLimbs(Limbs const& value);

}  // namespace Quillon9
