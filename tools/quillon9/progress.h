#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace Quillon9Tool {

/// Shows on standard error how much of an input has been read, in one line that is drawn again and again.
class Progress {
 public:
  /// Nothing is shown if \p isQuiet, or if standard error is not a terminal.
  explicit Progress(bool isQuiet);
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;
  ~Progress() { Clear(); }

  /// What is read are the bytes of the input from \p start on, and up to \p end, or up to an unknown end if that is 0.
  void SetSpan(std::uint64_t start, std::uint64_t end);
  /// The input has been read up to the offset \p at. Draws at most ten times a second.
  void Update(std::uint64_t at);
  /// Remove the line, in front of other output, until it is drawn again.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::string Line(std::uint64_t read, double seconds) const;

  bool m_isShown;
  bool m_isDrawn = false;
  std::uint64_t m_first = 0;
  std::uint64_t m_end = 0;
  Clock::time_point m_start;
  Clock::time_point m_next;
};

}  // namespace Quillon9Tool
