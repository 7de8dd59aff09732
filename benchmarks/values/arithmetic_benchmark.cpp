// Arithmetic with numbers of 10,000 digits, and texts of a million.

#include <benchmark/benchmark.h>

#include <random>
#include <string>

#include "quillon9/quillon9.h"

namespace {

using namespace Quillon9;

constexpr std::size_t kDigits = 10000;

std::string RandomDigits(std::size_t count) {
  static std::mt19937 random(9);
  std::string digits(count, '0');
  for (char& digit : digits) digit = static_cast<char>('0' + random() % 10);
  digits.front() = '7';
  return digits;
}

/// Two operands, the second half as long as the first, so that a quotient has as many digits again.
template <class Number>
struct Operands {
  Number a = Number(RandomDigits(kDigits).c_str());
  Number b = Number(RandomDigits(kDigits / 2).c_str());
};

template <class Number, class Action>
void Repeat(benchmark::State& state, Action action) {
  Operands<Number> const operands;
  for ([[maybe_unused]] auto const& iteration : state) benchmark::DoNotOptimize(action(operands));
}

void ParseDigits(benchmark::State& state, std::size_t count) {
  std::string const text = RandomDigits(count);
  for ([[maybe_unused]] auto const& iteration : state) benchmark::DoNotOptimize(CBigInteger(text.c_str()));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

template <class Number>
void RegisterOperations(std::string const& prefix) {
  auto const add = [&](char const* name, auto action) {
    benchmark::RegisterBenchmark((prefix + name).c_str(),
                                 [action](benchmark::State& state) { Repeat<Number>(state, action); })
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(0.1);
  };
  using Pair = Operands<Number>;
  add("print", [](Pair const& pair) { return pair.a.ToString(); });
  add("add", [](Pair const& pair) { return pair.a + pair.b; });
  add("subtract", [](Pair const& pair) { return pair.a - pair.b; });
  add("multiply", [](Pair const& pair) { return pair.a * pair.b; });
  add("divide", [](Pair const& pair) { return pair.a / pair.b; });
}

bool RegisterAll() {
  for (std::size_t const count : {kDigits, std::size_t{1000000}}) {
    benchmark::RegisterBenchmark(("integer/parse/" + std::to_string(count)).c_str(),
                                 [count](benchmark::State& state) { ParseDigits(state, count); })
        ->Unit(benchmark::kMicrosecond)
        ->MinTime(0.1);
  }
  RegisterOperations<CBigInteger>("integer/");
  RegisterOperations<CDecimal>("decimal/");
  benchmark::RegisterBenchmark(
      "integer/square_root",
      [](benchmark::State& state) {
        Repeat<CBigInteger>(state, [](Operands<CBigInteger> const& pair) { return CBigInteger(pair.a).SquareRoot(); });
      })
      ->Unit(benchmark::kMicrosecond)
      ->MinTime(0.1);
  return true;
}

[[maybe_unused]] bool const s_registered = RegisterAll();

}  // namespace
