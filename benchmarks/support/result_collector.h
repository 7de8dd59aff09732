#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Benchmarks {

/// Prints each benchmark as Google Benchmark does, and remembers its speed for a table at the end.
class ResultCollector : public benchmark::ConsoleReporter {
 public:
  ResultCollector();
  ~ResultCollector() override;
  void ReportRuns(std::vector<Run> const& runs) override;

  /// Bytes per second of processor time: the median of the repetitions. None for what did not run or failed.
  std::optional<double> Speed(std::string const& name) const;

 private:
  std::map<std::string, std::vector<double>> m_speeds;
};

}  // namespace Benchmarks
