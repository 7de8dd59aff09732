#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Quillon9 {

/// The exponent of the largest power of ten that 64 bits hold.
constexpr int kMostPower = 19;

constexpr std::array<std::uint64_t, kMostPower + 1> MakePowersOf10() {
  std::array<std::uint64_t, kMostPower + 1> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}

inline constexpr auto kPowersOf10 = MakePowersOf10();

/// Ten to the power of \p exponent, which is 0 to kMostPower.
constexpr std::uint64_t PowerOf10(int exponent) { return kPowersOf10[static_cast<std::size_t>(exponent)]; }

}  // namespace Quillon9
