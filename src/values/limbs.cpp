#include "values/limbs.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "quillon9/binding/exceptions.h"

namespace Quillon9 {

namespace {

using Limb = std::uint64_t;

constexpr Limb kBase = 1'000'000'000'000'000'000U;
constexpr std::size_t kLimbDigits = 18;

// Up to it the plain method is as fast or faster; between 32 and 96 the difference is small.
constexpr std::size_t kKaratsubaLimbs = 48;
static_assert(kKaratsubaLimbs <= 256, "a column of the plain method must fit into a Wide");

void Trim(Limbs& limbs) {
  while (!limbs.empty() && limbs.back() == 0) limbs.pop_back();
}

// value / kBase for a value below 2^123. A multiplication by the reciprocal takes a quarter off the time of a long
// division. The first estimate is at most three too small.
Limb SplitNarrow(Wide value, Limb& low) {
  constexpr int kShift = 59;
  constexpr Limb kReciprocal = static_cast<Limb>((Wide{1} << (64 + kShift)) / kBase);
  auto quotient = static_cast<Limb>((Wide{static_cast<Limb>(value >> kShift)} * kReciprocal) >> 64);
  low = static_cast<Limb>(value) - quotient * kBase;
  for (; low >= kBase; low -= kBase) ++quotient;
  return quotient;
}

// The same for every value. Once a column of a product, the plain division costs nothing that could be measured.
Wide SplitWide(Wide value, Limb& low) {
  Wide const quotient = value / kBase;
  low = static_cast<Limb>(value - quotient * kBase);
  return quotient;
}

Limb PackLimb(char const* digits, std::size_t count) {
  Limb limb = 0;
  while (count-- != 0) {
    auto const digit = static_cast<unsigned char>(digits[count]);
    if (digit > 9) throw CQnInvalidParamException(FormatString("Invalid decimal digit [%d]", digits[count]));
    limb = limb * 10 + digit;
  }
  return limb;
}

void UnpackLimb(Limb limb, char* digits) {
  for (std::size_t i = 0; i != kLimbDigits; ++i, limb /= 10) digits[i] = static_cast<char>(limb % 10);
}

void TrimDigits(std::string& digits) {
  while (digits.size() > 1 && digits.back() == 0) digits.pop_back();
}

// ---- Sums on ranges

// to += from; what is carried runs on in `to`, which has room for it.
void AddTo(Limb* to, Limb const* from, std::size_t count) {
  bool carry = false;
  for (std::size_t i = 0; i < count || carry; ++i) {
    Limb const sum = to[i] + (i < count ? from[i] : 0) + (carry ? 1 : 0);
    carry = sum >= kBase;
    to[i] = carry ? sum - kBase : sum;
  }
}

// to -= from, which is not above it.
void SubtractFrom(Limb* to, Limb const* from, std::size_t count) {
  bool borrow = false;
  for (std::size_t i = 0; i < count || borrow; ++i) {
    Limb const taken = (i < count ? from[i] : 0) + (borrow ? 1 : 0);
    borrow = to[i] < taken;
    to[i] = to[i] - taken + (borrow ? kBase : 0);
  }
}

// ---- Products on ranges

void Multiply(Limb const* a, std::size_t aSize, Limb const* b, std::size_t bSize, Limb* product);

// Column by column, so that each limb of the product is reduced once. bSize is at most kKaratsubaLimbs.
void MultiplyPlain(Limb const* a, std::size_t aSize, Limb const* b, std::size_t bSize, Limb* product) {
  Wide sum = 0;
  for (std::size_t column = 0; column + 1 < aSize + bSize; ++column) {
    std::size_t const first = column < bSize ? 0 : column - bSize + 1;
    std::size_t const last = std::min(column, aSize - 1);
    for (std::size_t i = first; i <= last; ++i) sum += Wide{a[i]} * b[column - i];
    sum = SplitWide(sum, product[column]);
  }
  product[aSize + bSize - 1] = static_cast<Limb>(sum);
}

// (a1 x + a0)(b1 x + b0) by three products: the middle one is (a1 + a0)(b1 + b0) less the two others.
void MultiplyKaratsuba(Limb const* a, Limb const* b, std::size_t size, Limb* product) {
  std::size_t const low = size / 2;
  std::size_t const high = size - low;
  Multiply(a, low, b, low, product);
  Multiply(a + low, high, b + low, high, product + 2 * low);
  std::vector<Limb> scratch(4 * (high + 1));
  Limb* const aSum = scratch.data();
  Limb* const bSum = aSum + high + 1;
  Limb* const middle = bSum + high + 1;
  std::copy_n(a + low, high, aSum);
  std::copy_n(b + low, high, bSum);
  AddTo(aSum, a, low);
  AddTo(bSum, b, low);
  Multiply(aSum, high + 1, bSum, high + 1, middle);
  SubtractFrom(middle, product, 2 * low);
  SubtractFrom(middle, product + 2 * low, 2 * high);
  std::size_t middleSize = 2 * (high + 1);
  while (middleSize != 0 && middle[middleSize - 1] == 0) --middleSize;
  AddTo(product + low, middle, middleSize);
}

// The longer factor in pieces of the length of the shorter one.
void MultiplyPieces(Limb const* a, std::size_t aSize, Limb const* b, std::size_t bSize, Limb* product) {
  std::fill_n(product, aSize + bSize, 0);
  std::vector<Limb> piece(2 * bSize);
  for (std::size_t at = 0; at < aSize; at += bSize) {
    std::size_t const size = std::min(bSize, aSize - at);
    Multiply(a + at, size, b, bSize, piece.data());
    AddTo(product + at, piece.data(), size + bSize);
  }
}

// Writes aSize + bSize limbs; both are above 0.
void Multiply(Limb const* a, std::size_t aSize, Limb const* b, std::size_t bSize, Limb* product) {
  if (aSize < bSize) return Multiply(b, bSize, a, aSize, product);
  if (bSize <= kKaratsubaLimbs) return MultiplyPlain(a, aSize, b, bSize, product);
  if (aSize == bSize) return MultiplyKaratsuba(a, b, aSize, product);
  MultiplyPieces(a, aSize, b, bSize, product);
}

// ---- Quotients

// limbs *= factor, with one limb more.
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

// The next limb of the quotient, at most one too large. `top` is the highest limb of what is left of the dividend,
// divisorEnd the end of a divisor of two limbs or more.
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

// to -= from * factor over size + 1 limbs. True when the result is below zero, and then kBase^(size + 1) too
// large.
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

// to += from over size limbs and the one above them; what is carried out of that is dropped.
void AddBack(Limb* to, Limb const* from, std::size_t size) {
  bool carry = false;
  for (std::size_t i = 0; i <= size; ++i) {
    Limb const sum = to[i] + (i < size ? from[i] : 0) + (carry ? 1 : 0);
    carry = sum >= kBase;
    to[i] = carry ? sum - kBase : sum;
  }
}

bool IsBelow(Limbs const& a, Limbs const& b) {
  if (a.size() != b.size()) return a.size() < b.size();
  return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

// ---- Square roots

// From above, as for all numbers here; the start is the power of ten that cannot be too small.
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

// ---- Digits

Limbs PackDigits(std::string_view digits) {
  Limbs limbs;
  limbs.reserve(digits.size() / kLimbDigits + 1);
  for (std::size_t at = 0; at < digits.size(); at += kLimbDigits) {
    limbs.push_back(PackLimb(digits.data() + at, std::min(kLimbDigits, digits.size() - at)));
  }
  Trim(limbs);
  return limbs;
}

Wide PackWide(std::string_view digits) {
  std::size_t const low = std::min(kLimbDigits, digits.size());
  Wide const high = PackLimb(digits.data() + low, digits.size() - low);
  return high * kBase + PackLimb(digits.data(), low);
}

void UnpackDigits(Limbs const& limbs, std::string& digits) {
  digits.resize(std::max<std::size_t>(limbs.size(), 1) * kLimbDigits);
  if (limbs.empty()) UnpackLimb(0, digits.data());
  for (std::size_t i = 0; i != limbs.size(); ++i) UnpackLimb(limbs[i], digits.data() + i * kLimbDigits);
  TrimDigits(digits);
}

void UnpackWide(Wide value, std::string& digits) {
  char buffer[40];
  std::size_t count = 0;
  while (value >= kBase) {
    Limb low = 0;
    value = SplitWide(value, low);
    UnpackLimb(low, buffer + count);
    count += kLimbDigits;
  }
  auto rest = static_cast<Limb>(value);
  do {
    buffer[count++] = static_cast<char>(rest % 10);
    rest /= 10;
  } while (rest != 0);
  digits.assign(buffer, buffer + count);
}

// ---- Arithmetic

Limbs MultiplyLimbs(Limbs const& a, Limbs const& b) {
  if (a.empty() || b.empty()) return {};
  Limbs product(a.size() + b.size());
  Multiply(a.data(), a.size(), b.data(), b.size(), product.data());
  Trim(product);
  return product;
}

Limbs DivideLimbs(Limbs& a, Limbs const& b) {
  if (IsBelow(a, b)) return {};
  if (b.size() == 1) {
    Limbs quotient = std::move(a);
    a.assign(1, DivideBySmall(quotient, b[0]));
    Trim(a);
    return quotient;
  }
  // Scaled so that the highest limb of the divisor is at least half the base: then estimates are close.
  Limb const scale = kBase / (b.back() + 1);
  Limbs divisor = b;
  ScaleLimbs(divisor, scale);
  divisor.pop_back();
  ScaleLimbs(a, scale);
  std::size_t const size = divisor.size();
  Limbs quotient(a.size() - size);
  for (std::size_t at = quotient.size(); at-- != 0;) {
    Limb digit = EstimateQuotient(a.data() + at + size, divisor.data() + size);
    if (SubtractMultiple(a.data() + at, divisor.data(), size, digit)) {
      AddBack(a.data() + at, divisor.data(), size);
      --digit;
    }
    quotient[at] = digit;
  }
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
