// Quotients and square roots of limbs.

#include <algorithm>
#include <cstddef>
#include <utility>

#include "values/limb_ranges.h"
#include "values/limbs.h"

namespace Quillon9 {

namespace {

// Up to this size the plain method is at least as fast; the exact value matters little.
constexpr std::size_t kPlainDivisionLimbs = 16;

// limbs *= factor, growing by one limb.
void ScaleLimbs(Limbs& limbs, Limb factor) {
  Limb carry = 0;
  for (Limb& limb : limbs) carry = SplitNarrow(Wide{limb} * factor + carry, limb);
  limbs.push_back(carry);
}

// limbs /= divisor; returns the remainder.
Limb DivideBySmall(Limbs& limbs, Limb divisor) {
  Limb rest = 0;
  for (std::size_t i = limbs.size(); i-- != 0;) {
    Wide const value = Wide{rest} * kBase + limbs[i];
    limbs[i] = static_cast<Limb>(value / divisor);
    rest = static_cast<Limb>(value - Wide{limbs[i]} * divisor);
  }
  Trim(limbs);
  return rest;
}

// The next limb of the quotient, at most one too large. `top` is the highest limb of the remaining dividend, divisorEnd
// the end of a divisor of at least two limbs.
Limb EstimateQuotient(Limb const* top, Limb const* divisorEnd) {
  Limb const divisor = divisorEnd[-1];
  Wide const value = Wide{top[0]} * kBase + top[-1];
  Wide quotient = value / divisor;
  Wide rest = value - quotient * divisor;
  while (quotient >= kBase || quotient * divisorEnd[-2] > rest * kBase + top[-2]) {
    --quotient;
    rest += divisor;
    if (rest >= kBase) break;
  }
  return static_cast<Limb>(quotient);
}

// to -= from * factor over size + 1 limbs. True when the result is below zero; it is then kBase^(size + 1) too large.
bool SubtractMultiple(Limb* to, Limb const* from, std::size_t size, Limb factor) {
  Limb carry = 0;
  bool borrow = false;
  for (std::size_t i = 0; i <= size; ++i) {
    Limb taken = carry;
    if (i < size) carry = SplitNarrow(Wide{from[i]} * factor + carry, taken);
    taken += borrow ? 1 : 0;
    borrow = to[i] < taken;
    to[i] = to[i] - taken + (borrow ? kBase : 0);
  }
  return borrow;
}

// to += from over size limbs and the one above them. True when there is a carry out of that one.
bool AddBack(Limb* to, Limb const* from, std::size_t size) {
  bool carry = false;
  for (std::size_t i = 0; i <= size; ++i) {
    Limb const sum = to[i] + (i < size ? from[i] : 0) + (carry ? 1 : 0);
    carry = sum >= kBase;
    to[i] = carry ? sum - kBase : sum;
  }
  return carry;
}

// The three functions below divide size + count limbs, which are less than the divisor times kBase^count and become the
// remainder, and write `count` limbs of the quotient. The highest of the `size` limbs of the divisor is at least half
// the base, so that estimates are close.
void Divide(Limb* rest, Limb const* divisor, std::size_t size, std::size_t count, Limb* quotient);

// Knuth, The Art of Computer Programming, volume 2, 4.3.1, algorithm D.
void DividePlain(Limb* rest, Limb const* divisor, std::size_t size, std::size_t count, Limb* quotient) {
  for (std::size_t at = count; at-- != 0;) {
    quotient[at] = EstimateQuotient(rest + at + size, divisor + size);
    if (!SubtractMultiple(rest + at, divisor, size, quotient[at])) continue;
    AddBack(rest + at, divisor, size);
    --quotient[at];
  }
}

// For a quotient that is shorter than the divisor. The leading limbs of both give an estimate that is at most two too
// large; the product with the other limbs of the divisor corrects it.
void DivideByLeading(Limb* rest, Limb const* divisor, std::size_t size, std::size_t count, Limb* quotient) {
  std::size_t const others = size - count;
  Limb const* const leading = divisor + others;
  if (std::equal(leading, leading + count, rest + size)) {
    std::fill_n(quotient, count, kBase - 1);
    std::fill_n(rest + size, count, 0);
    AddTo(rest + others, leading, count);
  } else {
    Divide(rest + others, leading, count, count, quotient);
  }
  Limbs product(size);
  Multiply(quotient, count, divisor, others, product.data());
  Limb const one = 1;
  for (bool isBelowZero = SubtractMultiple(rest, product.data(), size, 1); isBelowZero;) {
    SubtractFrom(quotient, &one, 1);
    isBelowZero = !AddBack(rest, divisor, size);
  }
}

// Burnikel and Ziegler, Fast Recursive Division, MPI-I-98-1-022: the quotient is computed in pieces, each from the
// leading limbs of the divisor, so that products do most of the work.
void Divide(Limb* rest, Limb const* divisor, std::size_t size, std::size_t count, Limb* quotient) {
  if (std::min(size, count) <= kPlainDivisionLimbs) return DividePlain(rest, divisor, size, count, quotient);
  if (count < size) return DivideByLeading(rest, divisor, size, count, quotient);
  std::size_t const most = count == size ? (count + 1) / 2 : size;
  for (std::size_t end = count; end != 0;) {
    std::size_t const piece = (end - 1) % most + 1;
    end -= piece;
    Divide(rest + end, divisor, size, piece, quotient + end);
  }
}

bool IsBelow(Limbs const& a, Limbs const& b) {
  if (a.size() != b.size()) return a.size() < b.size();
  return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

// ---- Square roots

// From above, as for all numbers here; the start is a power of ten that is certainly not too small.
Wide SquareRootOfWide(Wide value) {
  Wide estimate = 10;
  for (Wide rest = value / 100; rest != 0; rest /= 100) estimate *= 10;
  for (;;) {
    Wide const next = (estimate + value / estimate) / 2;
    if (next >= estimate) return estimate;
    estimate = next;
  }
}

// A number above the root whose leading half is right: the root of the leading limbs, plus one.
Limbs EstimateRoot(Limbs const& value) {
  std::size_t const dropped = std::max<std::size_t>(value.size() / 4, 2) - 1;
  Limbs const leading(value.begin() + static_cast<std::ptrdiff_t>(2 * dropped), value.end());
  Limbs estimate = SquareRootOfLimbs(leading);
  estimate.push_back(0);
  Limb const one = 1;
  AddTo(estimate.data(), &one, 1);
  Trim(estimate);
  estimate.insert(estimate.begin(), dropped, 0);
  return estimate;
}

}  // namespace

Limbs DivideLimbs(Limbs& a, Limbs const& b) {
  if (IsBelow(a, b)) return {};
  if (b.size() == 1) {
    Limbs quotient = std::move(a);
    a.assign(1, DivideBySmall(quotient, b[0]));
    Trim(a);
    return quotient;
  }
  // Scaled so that the highest limb of the divisor is at least half the base.
  Limb const scale = kBase / (b.back() + 1);
  Limbs divisor = b;
  ScaleLimbs(divisor, scale);
  divisor.pop_back();
  ScaleLimbs(a, scale);
  std::size_t const size = divisor.size();
  Limbs quotient(a.size() - size);
  Divide(a.data(), divisor.data(), size, quotient.size(), quotient.data());
  Trim(a);
  DivideBySmall(a, scale);
  Trim(quotient);
  return quotient;
}

Limbs SquareRootOfLimbs(Limbs const& value) {
  if (value.empty()) return {};
  if (value.size() <= 2) {
    Wide const wide = (value.size() == 2 ? Wide{value[1]} * kBase : 0) + value[0];
    return {static_cast<Limb>(SquareRootOfWide(wide))};
  }
  Limbs estimate = EstimateRoot(value);
  for (;;) {
    Limbs rest = value;
    Limbs next = DivideLimbs(rest, estimate);
    next.resize(std::max(next.size(), estimate.size()) + 1);
    AddTo(next.data(), estimate.data(), estimate.size());
    DivideBySmall(next, 2);
    if (!IsBelow(next, estimate)) return estimate;
    estimate = std::move(next);
  }
}

}  // namespace Quillon9
