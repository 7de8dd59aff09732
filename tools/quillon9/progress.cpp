#include "progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

using Quillon9::FormatString;

namespace {

constexpr std::chrono::milliseconds kInterval(100);
constexpr std::size_t kBarWidth = 30;
constexpr double kMegabyte = 1e6;

std::string Bar(double share) {
  auto const filled = static_cast<std::size_t>(share * static_cast<double>(kBarWidth));
  return '[' + std::string(filled, '#') + std::string(kBarWidth - filled, '-') + ']';
}

}  // namespace

Progress::Progress(bool isQuiet)
    : m_isShown(!isQuiet && ::isatty(STDERR_FILENO) != 0), m_start(Clock::now()), m_next(m_start + kInterval) {}

void Progress::SetSpan(std::uint64_t start, std::uint64_t end) {
  m_first = start;
  m_end = end;
}

void Progress::Update(std::uint64_t at) {
  if (!m_isShown) return;
  Clock::time_point const now = Clock::now();
  if (now < m_next) return;
  m_next = now + kInterval;
  m_isDrawn = true;
  double const seconds = std::chrono::duration<double>(now - m_start).count();
  std::fprintf(stderr, "\r%s\033[K", Line(at - std::min(at, m_first), seconds).c_str());
}

std::string Progress::Line(std::uint64_t read, double seconds) const {
  double const megabytes = static_cast<double>(read) / kMegabyte;
  std::string const rate = FormatString("%.1f MB/s", megabytes / seconds);
  if (m_end <= m_first) return FormatString("%.1f MB, %s", megabytes, rate.c_str());
  double const size = static_cast<double>(m_end - m_first);
  double const share = std::min(static_cast<double>(read) / size, 1.0);
  return Bar(share) +
         FormatString(" %3.0f %%, %.1f of %.1f MB, %s", 100 * share, megabytes, size / kMegabyte, rate.c_str());
}

void Progress::Clear() {
  if (!m_isDrawn) return;
  m_isDrawn = false;
  std::fputs("\r\033[K", stderr);
}

}  // namespace Quillon9Tool
