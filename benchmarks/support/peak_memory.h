#pragma once

#include <cstdint>
#include <functional>
#include <optional>

/// Measures memory as the system sees it: the resident pages of a process that does nothing else.
namespace Benchmarks {

/// Lets measured work mark what counts.
class MemoryProbe {
 public:
  /// Start counting: memory that is resident now does not count. Call it when code and tables have been touched.
  void Begin();
  /// Forget the peak since Begin(), but not memory that is still in use.
  void ForgetPeak();

  /// The peak number of resident bytes since Begin() or ForgetPeak(), minus those resident at Begin().
  std::uint64_t Peak() const;

 private:
  std::uint64_t m_atBegin = 0;
};

/// Run \p work in a separate child process and return its peak memory in bytes; empty when the child failed or the
/// system does not report it. Call it while this process is small and has one thread, since the child starts as its
/// copy. An exception from \p work is reported on the error output.
std::optional<std::uint64_t> PeakMemoryOf(std::function<void(MemoryProbe&)> const& work);

}  // namespace Benchmarks
