// CDecimal against a model that keeps both parts as integers and computes each operation in its plainest form. After a
// change, run more steps from other seeds: QN_MODEL_STEPS=1000000 QN_MODEL_SEED=2.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/values/decimal.h"

namespace Quillon9 {
namespace {

using Big = CBigInteger;
using Random = std::mt19937_64;

Big Power(int exponent) { return Big::Pow10(static_cast<unsigned int>(exponent)); }

struct Model {
  Big whole;
  Big fraction;
  int divider = 1;

  bool IsZero() const { return whole == 0 && fraction == 0; }

  // Both parts carry the sign of a value.
  Model& Align() {
    Big& zero = fraction == 0 ? fraction : whole;
    if (zero == 0) zero = (fraction == 0 ? whole : fraction) < Big() ? Big("-0") : Big();
    return *this;
  }

  void Negate() {
    whole.Negate();
    fraction.Negate();
  }

  void PutInOrder(Big const& power) {
    if (whole > 0 && fraction < 0 && !(fraction == 0)) {
      fraction += power;
      whole -= 1;
    }
    if (whole < 0 && fraction > 0) {
      fraction -= power;
      whole += 1;
    }
    if (whole == 0) whole = fraction < Big() ? Big("-0") : Big();
  }

  Model& ChangeDivider(int count) {
    if (count >= divider) {
      fraction *= Power(count - divider);
      divider = count;
      return *this;
    }
    Big const power = Power(divider - count);
    Big const rest = fraction % power;
    fraction = fraction / power;
    divider = count;
    int const carry = rest > power / 2 ? 1 : rest < power / -2 ? -1 : 0;
    if (carry != 0 && count == 0) whole += carry;
    if (carry != 0 && count != 0) {
      fraction += carry;
      PutInOrder(Power(count));
    }
    return Align();
  }

  // A zero fraction prints as one digit, so only that one is dropped.
  Model& Rationalise() {
    std::string const digits = fraction.GetAbs().ToString();
    for (std::size_t i = digits.size(); divider > 1 && i-- != 0 && digits[i] == '0'; --divider)
      fraction = fraction / 10;
    return Align();
  }

  Model& Limit() {
    Rationalise();
    if (divider > CDecimal::m_maxDivider) ChangeDivider(CDecimal::m_maxDivider);
    return *this;
  }
};

void Normalise(Model& a, Model& b) {
  int const divider = std::max(a.divider, b.divider);
  a.ChangeDivider(divider);
  b.ChangeDivider(divider);
}

Model Add(Model a, Model b) {
  Normalise(a, b);
  Big const power = Power(a.divider);
  Model sum{a.whole + b.whole, a.fraction + b.fraction, a.divider};
  for (; sum.fraction >= power; sum.whole += 1) sum.fraction -= power;
  for (; sum.fraction <= power.GetNegative(); sum.whole -= 1) sum.fraction += power;
  sum.PutInOrder(power);
  return sum.Rationalise();
}

Model Multiply(Model a, Model b) {
  Normalise(a, b);
  Big const power = Power(a.divider);
  Big const square = Power(2 * a.divider);
  Big const total = a.whole * b.whole * square + a.whole * b.fraction * power + a.fraction * b.whole * power +
                    a.fraction * b.fraction;
  return Model{total / square, total % square, 2 * a.divider}.Limit();
}

Model Divide(Model a, Model b) {
  Normalise(a, b);
  Big const power = Power(a.divider);
  Big const cut = Power(CDecimal::m_maxDivider + 2);
  Big const quotient = (power * a.whole + a.fraction) * cut / (power * b.whole + b.fraction);
  return Model{quotient / cut, quotient % cut, CDecimal::m_maxDivider + 2}.Limit();
}

std::string Order(Model a, Model b) {
  Normalise(a, b);
  bool const isSame = a.whole == b.whole;
  std::string order = isSame && a.fraction == b.fraction ? "=" : "";
  if (a.whole < b.whole || (isSame && a.fraction < b.fraction)) order += "<";
  if (a.whole > b.whole || (isSame && a.fraction > b.fraction)) order += ">";
  if (a.whole < b.whole || (isSame && a.fraction <= b.fraction)) order += "{";
  if (a.whole > b.whole || (isSame && a.fraction >= b.fraction)) order += "}";
  return order;
}

std::string Order(CDecimal const& a, CDecimal const& b) {
  std::string order = a == b ? "=" : "";
  return order + (a < b ? "<" : "") + (a > b ? ">" : "") + (a <= b ? "{" : "") + (a >= b ? "}" : "");
}

struct Pair {
  Model model;
  CDecimal value;
};

std::string Print(Model const& m) {
  if (m.fraction == 0) return m.whole.ToString();
  std::string const digits = m.fraction.GetAbs().ToString();
  std::size_t const width = std::max(digits.size(), static_cast<std::size_t>(m.divider));
  return (m.whole < Big() ? "-" : "") + m.whole.GetAbs().ToString() + "." + std::string(width - digits.size(), '0') +
         digits;
}

// Both zeros.
std::vector<Pair> Zeros() {
  CDecimal negative("-0.1");
  negative.ChangeFractionalDivider(0);
  CDecimal positive;
  positive.ChangeFractionalDivider(0);
  return {{{Big(), Big(), 0}, positive}, {{Big("-0"), Big("-0"), 0}, negative}};
}

// Everything that distinguishes one value from another.
template <class Value>
std::string Describe(Value const& value, std::string text, int divider, Value Pair::*part) {
  static std::vector<Pair> const zeros = Zeros();
  text += " " + std::to_string(divider);
  for (Pair const& zero : zeros) text += " " + Order(value, zero.*part) + Order(zero.*part, value);
  return text;
}

std::string Describe(Model const& model) { return Describe(model, Print(model), model.divider, &Pair::model); }

std::string Describe(CDecimal const& value) {
  CDecimal copy(value);
  CDecimal none;
  none.ChangeFractionalDivider(0);
  return Describe(value, value.ToString(), CDecimal::Normalize(copy, none), &Pair::value);
}

std::string RandomDigits(Random& random, std::size_t most) {
  std::string digits;
  std::uint64_t const kind = random() % 4;
  for (std::size_t left = random() % (most + 1); left != 0; --left) {
    digits += kind == 0 ? '0' : kind == 1 ? '9' : static_cast<char>('0' + random() % 10);
  }
  return digits;
}

Pair RandomPair(Random& random) {
  std::size_t const most = random() % 4 == 0 ? 40 : random() % 2 == 0 ? 11 : 3;
  std::string const whole = RandomDigits(random, most);
  std::string const fraction = RandomDigits(random, most);
  bool const isNegative = random() % 2 != 0;
  std::string text = (isNegative ? "-" : "") + whole + (fraction.empty() ? "" : "." + fraction);
  Model model{Big(whole.c_str()), Big(fraction.c_str()), std::max(static_cast<int>(fraction.size()), 1)};
  if (isNegative) model.Negate();
  model.Align();
  if (random() % 4 == 0) {
    int const exponent = static_cast<int>(random() % 81) - 40;
    text += "e" + std::to_string(exponent);
    Model const power{Power(std::abs(exponent)), Big(), 1};
    model = exponent < 0 ? Divide(model, power) : Multiply(model, power);
  }
  return {model.Limit(), CDecimal(text.c_str())};
}

Pair Compute(Random& random, Pair const& a, Pair const& b) {
  Pair result = a;
  switch (random() % 8) {
    case 0: return {Add(a.model, b.model), a.value + b.value};
    case 1:
      result.model = b.model;
      result.model.Negate();
      return {Add(a.model, result.model), a.value - b.value};
    case 2: return {Multiply(a.model, b.model), a.value * b.value};
    case 3: return b.model.IsZero() ? result : Pair{Divide(a.model, b.model), a.value / b.value};
    case 4: result.model.Rationalise(), result.value.Rationalise(); return result;
    case 5: result.model.Negate(), result.value.Negate(); return result;
    case 6: return {Add(a.model, a.model), a.value + a.value};
    default: break;
  }
  int const divider = static_cast<int>(random() % (random() % 2 == 0 ? 3 : 45));
  result.model.ChangeDivider(divider);
  result.value.ChangeFractionalDivider(divider);
  return result;
}

TEST(DecimalModel, ChainsOfOperationsAgree) {
  char const* const count = std::getenv("QN_MODEL_STEPS");
  char const* const seed = std::getenv("QN_MODEL_SEED");
  Random random(seed == nullptr ? 1414 : std::strtoul(seed, nullptr, 10));
  std::vector<Pair> values(12);
  for (long step = count == nullptr ? 4000 : std::strtol(count, nullptr, 10); step != 0; --step) {
    Pair const& a = values[random() % values.size()];
    Pair const& b = values[random() % values.size()];
    Pair const next = random() % 4 == 0 ? RandomPair(random) : Compute(random, a, b);
    std::string const expected = Describe(next.model);
    ASSERT_EQ(expected, Describe(next.value)) << step << " " << Describe(a.model) << " | " << Describe(b.model);
    ASSERT_EQ(Order(a.model, b.model), Order(a.value, b.value)) << Describe(a.model) << " | " << Describe(b.model);
    if (expected.size() < 200) values[random() % values.size()] = next;
  }
}

}  // namespace
}  // namespace Quillon9
