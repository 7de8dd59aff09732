// Arithmetic with numbers of 10,000 digits, and texts of a million. Every operation proves its result before it is
// timed.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <stdexcept>
#include <string>

#include "quillon9/quillon9.h"

namespace {

using namespace Quillon9;

constexpr std::size_t kDigits = 10000;

/// The same digits for the same arguments. The first and the last one are not 0.
std::string Digits(std::size_t count, unsigned seed) {
  std::mt19937 random(seed);
  std::string digits(count, '7');
  for (std::size_t i = 1; i + 1 < count; ++i) digits[i] = static_cast<char>('0' + random() % 10);
  return digits;
}

/// The text of a Number with this many digits.
template <class Number>
std::string Text(std::size_t count, unsigned seed);

template <>
std::string Text<CBigInteger>(std::size_t count, unsigned seed) {
  return Digits(count, seed);
}

/// With as many digits after the point as a product keeps.
template <>
std::string Text<CDecimal>(std::size_t count, unsigned seed) {
  return Digits(count, seed).insert(count - static_cast<std::size_t>(CDecimal::m_maxDivider), ".");
}

template <class Number>
struct Operands {
  std::string text = Text<Number>(kDigits, 1);
  Number a = Number(text.c_str());
  Number b = Number(Text<Number>(kDigits, 2).c_str());
  Number divisor = Number(Text<Number>(kDigits / 2, 3).c_str());
  Number quotient = Number(Text<Number>(kDigits / 2, 4).c_str());
  Number dividend = divisor * quotient + Number(1);  // the quotient is still the nearest
};

/// Times \p action on the operands; \p isRight returns whether its result is right.
template <class Given, class Action, class Proof>
void Register(std::string const& name, Action action, Proof isRight) {
  auto const run = [=](benchmark::State& state) {
    Given const given;
    if (!isRight(given, action(given))) throw std::runtime_error("wrong answer of " + name);
    for ([[maybe_unused]] auto const& iteration : state) benchmark::DoNotOptimize(action(given));
  };
  benchmark::RegisterBenchmark(name.c_str(), run)->Unit(benchmark::kMicrosecond)->MinTime(0.1);
}

template <class Number>
void RegisterCommon(std::string const& kind) {
  using Given = Operands<Number>;
  Register<Given>(
      kind + "/parse", [](Given const& given) { return Number(given.text.c_str()); },
      [](Given const& given, Number const& result) { return result.ToString() == given.text; });
  Register<Given>(
      kind + "/print", [](Given const& given) { return given.a.ToString(); },
      [](Given const& given, std::string const& result) { return result == given.text; });
  Register<Given>(
      kind + "/add", [](Given const& given) { return given.a + given.b; },
      [](Given const& given, Number const& result) { return result - given.b == given.a; });
  Register<Given>(
      kind + "/subtract", [](Given const& given) { return given.a - given.b; },
      [](Given const& given, Number const& result) { return result + given.b == given.a; });
  Register<Given>(
      kind + "/multiply", [](Given const& given) { return given.a * given.b; },
      [](Given const& given, Number const& result) { return result / given.b == given.a; });
  Register<Given>(
      kind + "/divide", [](Given const& given) { return given.dividend / given.divisor; },
      [](Given const& given, Number const& result) { return result == given.quotient; });
}

void RegisterOfIntegers() {
  using Given = Operands<CBigInteger>;
  Register<Given>(
      "integer/modulo", [](Given const& given) { return given.dividend % given.divisor; },
      [](Given const&, CBigInteger const& result) { return result == CBigInteger(1); });
  Register<Given>(
      "integer/square_root", [](Given const& given) { return given.a.SquareRoot(); },
      [](Given const& given, CBigInteger const& result) {
        CBigInteger const next = result + CBigInteger(1);
        return result * result <= given.a && given.a < next * next;
      });
}

struct LongText {
  std::string text = Digits(1000000, 5);
};

bool RegisterAll() {
  RegisterCommon<CBigInteger>("integer");
  RegisterOfIntegers();
  Register<LongText>(
      "integer/parse_million", [](LongText const& given) { return CBigInteger(given.text.c_str()); },
      [](LongText const& given, CBigInteger const& result) { return result.ToString() == given.text; });
  RegisterCommon<CDecimal>("decimal");
  return true;
}

[[maybe_unused]] bool const s_registered = RegisterAll();

}  // namespace
