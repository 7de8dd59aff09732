#include "support/result_collector.h"

#include <algorithm>
#include <utility>

namespace Benchmarks {

namespace {

std::optional<double> MedianOf(std::vector<double> values) {
  if (values.empty()) return std::nullopt;
  std::sort(values.begin(), values.end());
  std::size_t const middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace

// Without colours, because the output is often kept in a file.
ResultCollector::ResultCollector() : ConsoleReporter(OO_None) {}

ResultCollector::~ResultCollector() = default;

bool ResultCollector::ReportContext(Context const& context) {
  return std::exchange(m_hasContext, true) || ConsoleReporter::ReportContext(context);
}

void ResultCollector::ReportRuns(std::vector<Run> const& runs) {
  for (Run const& run : runs) {
    auto const speed = run.counters.find("bytes_per_second");
    if (run.run_type != Run::RT_Iteration || speed == run.counters.end()) continue;
    m_speeds[run.run_name.function_name].push_back(speed->second);
  }
  ConsoleReporter::ReportRuns(runs);
}

std::vector<double> ResultCollector::SpeedsOf(std::string const& name) const {
  auto const found = m_speeds.find(name);
  return found != m_speeds.end() ? found->second : std::vector<double>();
}

std::optional<double> ResultCollector::Speed(std::string const& name) const { return MedianOf(SpeedsOf(name)); }

std::optional<double> ResultCollector::Ratio(std::string const& name, std::string const& yardstick) const {
  std::vector<double> ratios = SpeedsOf(name);
  std::vector<double> const yardsticks = SpeedsOf(yardstick);
  if (ratios.size() != yardsticks.size()) return std::nullopt;
  for (std::size_t i = 0; i < ratios.size(); ++i) ratios[i] /= yardsticks[i];
  return MedianOf(ratios);
}

}  // namespace Benchmarks
