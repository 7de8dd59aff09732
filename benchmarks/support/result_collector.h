#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Benchmarks {

/// Prints each benchmark as Google Benchmark does, and remembers its speed for a table at the end. One object may serve
/// several calls of RunSpecifiedBenchmarks(), which are the rounds of one measurement.
class ResultCollector : public benchmark::ConsoleReporter {
 public:
  ResultCollector();
  ~ResultCollector() override;
  bool ReportContext(Context const& context) override;
  void ReportRuns(std::vector<Run> const& runs) override;

  /// Bytes per second of processor time: the median of the rounds. Empty for a benchmark that did not run or failed.
  std::optional<double> Speed(std::string const& name) const;
  /// The speed relative to \p yardstick: the median of the ratios in each round, so that a machine whose speed varies
  /// affects both. Empty if the two did not run equally often.
  std::optional<double> Ratio(std::string const& name, std::string const& yardstick) const;

 private:
  std::vector<double> SpeedsOf(std::string const& name) const;

  bool m_hasContext = false;
  std::map<std::string, std::vector<double>> m_speeds;
};

}  // namespace Benchmarks
