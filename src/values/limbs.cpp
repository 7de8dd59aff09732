#include "values/limbs.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "values/limb_ranges.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kLimbDigits = 18;

// Up to this size the plain method is at least as fast; the exact value matters little.
constexpr std::size_t kKaratsubaLimbs = 48;
static_assert(kKaratsubaLimbs <= 256, "a column of the plain method must fit into a Wide");

// value / kBase for every value. A plain division is fast enough, since it runs only once for each column of a product.
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

// ---- Products on ranges

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

// (a1 x + a0)(b1 x + b0) by three products: the middle one is (a1 + a0)(b1 + b0) minus the two others.
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

// Splits the longer factor into pieces as long as the shorter one.
void MultiplyPieces(Limb const* a, std::size_t aSize, Limb const* b, std::size_t bSize, Limb* product) {
  std::fill_n(product, aSize + bSize, 0);
  std::vector<Limb> piece(2 * bSize);
  for (std::size_t at = 0; at < aSize; at += bSize) {
    std::size_t const size = std::min(bSize, aSize - at);
    Multiply(a + at, size, b, bSize, piece.data());
    AddTo(product + at, piece.data(), size + bSize);
  }
}

}  // namespace

// ---- Ranges

void AddTo(Limb* to, Limb const* from, std::size_t count) {
  bool carry = false;
  for (std::size_t i = 0; i < count || carry; ++i) {
    Limb const sum = to[i] + (i < count ? from[i] : 0) + (carry ? 1 : 0);
    carry = sum >= kBase;
    to[i] = carry ? sum - kBase : sum;
  }
}

void SubtractFrom(Limb* to, Limb const* from, std::size_t count) {
  bool borrow = false;
  for (std::size_t i = 0; i < count || borrow; ++i) {
    Limb const taken = (i < count ? from[i] : 0) + (borrow ? 1 : 0);
    borrow = to[i] < taken;
    to[i] = to[i] - taken + (borrow ? kBase : 0);
  }
}

void Multiply(Limb const* a, std::size_t aSize, Limb const* b, std::size_t bSize, Limb* product) {
  if (aSize < bSize) return Multiply(b, bSize, a, aSize, product);
  if (bSize <= kKaratsubaLimbs) return MultiplyPlain(a, aSize, b, bSize, product);
  if (aSize == bSize) return MultiplyKaratsuba(a, b, aSize, product);
  MultiplyPieces(a, aSize, b, bSize, product);
}

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

}  // namespace Quillon9