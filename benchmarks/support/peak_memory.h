#pragma once

#include <cstdint>
#include <functional>
#include <optional>

/// Measures memory as the system sees it: the resident pages of a process that does nothing else.
namespace Benchmarks {

/// What a measured work may say of itself.
class MemoryProbe {
 public:
  /// Count from here: what is resident now is no part of the result. Call it when code and tables have been
  /// touched.
  void Begin();
  /// Forget the peak of what was done since Begin(), but not what is still in use.
  void ForgetPeak();

  /// The most bytes that were resident at a time since Begin() or ForgetPeak(), less what was there at Begin().
  std::uint64_t Peak() const;

 private:
  std::uint64_t m_atBegin = 0;
};

/// Run \p work in a child process of its own and give the peak of its memory in bytes; none when the child failed,
/// or the system does not tell. Call it while this process is small and has one thread, since the child starts as
/// its copy. What \p work throws is told on the error output.
std::optional<std::uint64_t> PeakMemoryOf(std::function<void(MemoryProbe&)> const& work);

}  // namespace Benchmarks
