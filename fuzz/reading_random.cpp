// The search of the reading fuzzer without libFuzzer: random tables, options and documents, the same ones in each run.
//
//   reading_random [CASES [FIRST]]     2000 cases from number 0 by default

#include <cstdio>
#include <cstdlib>
#include <random>

#include "descriptors/reading_allowance.h"
#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "reading_case.h"

namespace {

using namespace Reading;
using Quillon9::ReadingAllowance;

Chooser Random(unsigned long seed) {
  return [generator = std::mt19937(static_cast<std::mt19937::result_type>(seed))](unsigned below) mutable {
    return static_cast<unsigned>(generator() % below);
  };
}

/// Passes rows of unknown children in one step from the beginning, which must not change the results.
void RunHastily(Case const& tried) {
  ReadingAllowance::t_isHasty = true;
  RunCase(tried, Compared::kResults);
  ReadingAllowance::t_isHasty = false;
}

std::string Repeated(std::string const& text, unsigned times) {
  std::string all;
  for (unsigned i = 0; i < times; ++i) all += text;
  return all;
}

/// Four times the children must take about four times the steps. Where attempts with effects are repeated, this holds
/// only from the length at which the allowance ends them.
bool IsLinear(unsigned long seed) {
  Chooser const choose = Random(seed);
  Schema const schema = MakeSchema(choose);
  std::string const ignoring = choose(2) == 0 ? "UCIA" : "UA";
  std::string pattern;
  for (unsigned count = 1 + choose(4); count > 0; --count) pattern += MakeChild(choose, choose(2));
  std::string const tail = choose(2) == 0 ? "" : MakeChild(choose, 1);
  auto const steps = [&](unsigned times) {
    return StepsOf(schema, ignoring, MakeDocument("", Repeated(pattern, times) + tail));
  };
  std::size_t once = steps(100);
  std::size_t fourTimes = steps(400);
  auto const isLinear = [&] { return 2 * fourTimes <= 9 * once + 1000; };
  for (unsigned times = 1600; !isLinear() && times <= 6400; times *= 4) {
    once = fourTimes;
    fourTimes = steps(times);
  }
  if (isLinear()) return true;
  std::printf("seed %lu: %zu steps, %zu for four times the children %s%s\n%s\n", seed, once, fourTimes, pattern.c_str(),
              tail.c_str(), Describe({schema, {}, ignoring}).c_str());
  return false;
}

}  // namespace

int main(int count, char** arguments) {
  unsigned long const cases = count > 1 ? std::strtoul(arguments[1], nullptr, 10) : 2000;
  unsigned long const first = count > 2 ? std::strtoul(arguments[2], nullptr, 10) : 0;
  for (unsigned long seed = first; seed < first + cases; ++seed) {
    Case const tried = MakeCase(Random(seed));
    RunCase(tried);
    RunWithSinks(tried);
    RunHastily(tried);
    RunHastily(MakeCase(Random(seed), 20));
  }
  ReadingAllowance::t_base = 0;  // so that short documents reach its end
  ReadingAllowance::t_times = 1;
  bool isLinear = true;
  for (unsigned long seed = first; seed < first + cases / 10; ++seed) isLinear = IsLinear(seed) && isLinear;
  std::printf("%lu cases\n", cases);
  return isLinear ? 0 : 1;
}
