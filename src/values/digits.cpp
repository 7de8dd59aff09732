#include "values/digits.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "values/limbs.h"
#include "values/number_text.h"

namespace Quillon9 {

namespace {

// Up to this value, dividing a double by ten and cutting the fraction gives the digits of the integer.
constexpr double kExactDouble = 9007199254740992.0;

}  // namespace

int CompareDigits(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  for (std::size_t i = a.size(); i-- != 0;) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}

void AddDigits(Digits& to, Digits const& from) {
  std::size_t const size = std::max(to.size(), from.size());
  if (size == 0) return;
  int const top = (to.size() == size ? to.back() : 0) + (from.size() == size ? from.back() : 0);
  if (top >= 9) to.reserve(size + 1);
  to.resize(size);
  int carry = 0;
  for (std::size_t i = 0; i < from.size() || (carry != 0 && i < size); ++i) {
    int const sum = to[i] + (i < from.size() ? from[i] : 0) + carry;
    carry = sum >= 10 ? 1 : 0;
    to[i] = static_cast<char>(carry != 0 ? sum - 10 : sum);
  }
  if (carry != 0) to.push_back(1);
}

bool SubtractDigits(Digits& to, Digits const& from) {
  if (CountDigits(from) > to.size()) return false;
  std::size_t const size = std::min(to.size(), from.size());
  int borrow = 0;
  for (std::size_t i = 0; i < size || (borrow != 0 && i < to.size()); ++i) {
    int const difference = to[i] - (i < size ? from[i] : 0) - borrow;
    borrow = difference < 0 ? 1 : 0;
    to[i] = static_cast<char>(borrow != 0 ? difference + 10 : difference);
  }
  CleanDigits(to);
  return borrow == 0;
}

Digits MultipliedDigits(std::string_view a, std::string_view b) {
  Digits product;
  if (a.size() + b.size() <= kWideDigits) {
    UnpackWide(PackWide(a) * PackWide(b), product);
  } else {
    UnpackDigits(MultiplyLimbs(PackDigits(a), PackDigits(b)), product);
  }
  return product;
}

Digits DividedDigits(Digits& a, std::string_view b) {
  if (CountDigits(b) == 0) throw OfKind(FailureKind_BadValue, CQnInvalidValueException("ERROR: Overflow in Divide."));
  Digits quotient;
  if (std::max(a.size(), b.size()) <= kWideDigits) {
    Wide const dividend = PackWide(a);
    Wide const divisor = PackWide(b);
    UnpackWide(dividend / divisor, quotient);
    UnpackWide(dividend % divisor, a);
  } else {
    Limbs rest = PackDigits(a);
    UnpackDigits(DivideLimbs(rest, PackDigits(b)), quotient);
    UnpackDigits(rest, a);
  }
  return quotient;
}

void CleanDigits(Digits& digits) { digits.resize(std::max<std::size_t>(CountDigits(digits), 1)); }

std::size_t CountDigits(std::string_view digits) {
  std::size_t count = digits.size();
  while (count != 0 && digits[count - 1] == 0) --count;
  return count;
}

Digits DigitsOf(unsigned long long value) {
  char digits[std::numeric_limits<unsigned long long>::digits10 + 1];
  std::size_t count = 0;
  do {
    digits[count++] = static_cast<char>(value % 10);
    value /= 10;
  } while (value != 0);
  return Digits(digits, count);
}

Digits DigitsOfDouble(double value) {
  if (!std::isfinite(value)) {
    std::string const text = GeneralText(value, 6);
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(
                                           "The value [%s] can not be converted to a BigInteger", text.c_str())));
  }
  double rest = std::ceil(value - 0.5);
  if (rest <= kExactDouble) return DigitsOf(rest > 0 ? static_cast<std::uint64_t>(rest) : 0);
  Digits digits;
  while (rest > 0) {
    digits.push_back(static_cast<char>(std::fmod(rest, 10.0)));
    rest = std::trunc(rest / 10.0);
  }
  return digits;
}

Digits DigitsOfLastRun(char const* begin, char const* end) {
  char const* first = end;
  while (first != begin && IsDigit(first[-1])) --first;
  while (first != end && *first == '0') ++first;
  if (first == end) return Digits(1, 0);
  Digits digits(static_cast<std::size_t>(end - first), 0);
  for (char& digit : digits) digit = static_cast<char>(*--end - '0');
  return digits;
}

Digits DigitsOfPow10(std::size_t exponent) {
  Digits digits(exponent + 1, 0);
  digits.back() = 1;
  return digits;
}

}  // namespace Quillon9
