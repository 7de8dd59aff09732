#include "support/result_collector.h"

#include <algorithm>

namespace Benchmarks {

// Without colours: the output is often kept in a file.
ResultCollector::ResultCollector() : ConsoleReporter(OO_None) {}

ResultCollector::~ResultCollector() = default;

void ResultCollector::ReportRuns(std::vector<Run> const& runs) {
  for (Run const& run : runs) {
    // The median stands in where the single repetitions are not reported.
    bool const isMedian = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
    if (run.run_type != Run::RT_Iteration && !isMedian) continue;
    auto const speed = run.counters.find("bytes_per_second");
    if (speed != run.counters.end()) m_speeds[run.run_name.function_name].push_back(speed->second);
  }
  ConsoleReporter::ReportRuns(runs);
}

std::optional<double> ResultCollector::Speed(std::string const& name) const {
  auto const found = m_speeds.find(name);
  if (found == m_speeds.end()) return std::nullopt;
  std::vector<double> speeds = found->second;
  std::sort(speeds.begin(), speeds.end());
  std::size_t const middle = speeds.size() / 2;
  return speeds.size() % 2 == 1 ? speeds[middle] : (speeds[middle - 1] + speeds[middle]) / 2;
}

}  // namespace Benchmarks
