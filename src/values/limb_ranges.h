#pragma once

#include <cstddef>
#include <cstdint>

#include "values/limbs.h"

namespace Quillon9 {

using Limb = Limbs::value_type;

constexpr Limb kBase = 1'000'000'000'000'000'000U;

inline void Trim(Limbs& limbs) {
  while (!limbs.empty() && limbs.back() == 0) limbs.pop_back();
}

/// value / kBase for a value below 2^123. Multiplying by the reciprocal is faster than dividing. The first estimate is
/// at most three too small.
inline Limb SplitNarrow(Wide value, Limb& low) {
  constexpr int kShift = 59;
  constexpr Limb kReciprocal = static_cast<Limb>((Wide{1} << (64 + kShift)) / kBase);
  auto quotient = static_cast<Limb>((Wide{static_cast<Limb>(value >> kShift)} * kReciprocal) >> 64);
  low = static_cast<Limb>(value) - quotient * kBase;
  for (; low >= kBase; low -= kBase) ++quotient;
  return quotient;
}

/// to += from; the carry propagates in \p to, which has room for it.
void AddTo(Limb* to, Limb const* from, std::size_t count);
/// to -= from, where \p from is not above \p to.
void SubtractFrom(Limb* to, Limb const* from, std::size_t count);
/// Write the aSize + bSize limbs of a product; both sizes are above 0.
void Multiply(Limb const* a, std::size_t aSize, Limb const* b, std::size_t bSize, Limb* product);

}  // namespace Quillon9
