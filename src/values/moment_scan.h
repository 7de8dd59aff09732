#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "values/number_text.h"

namespace Quillon9 {

/// Takes the text of a date, time or duration from its front to its end. An operation that returns false may have taken
/// something.
class MomentScan {
 public:
  explicit MomentScan(std::string_view text) : m_at(text.data()), m_end(text.data() + text.size()) {}

  bool IsAtEnd() const { return m_at == m_end; }

  bool Take(char c) {
    if (m_at == m_end || *m_at != c) return false;
    ++m_at;
    return true;
  }

  /// Take two digits of a number in this range.
  bool TakeTwo(int& number, int least, int most) {
    if (m_end - m_at < 2 || !IsDigit(m_at[0]) || !IsDigit(m_at[1])) return false;
    number = (m_at[0] - '0') * 10 + (m_at[1] - '0');
    m_at += 2;
    return number >= least && number <= most;
  }

  /// Take all digits that follow.
  std::string_view TakeDigits() {
    char const* const start = m_at;
    while (m_at != m_end && IsDigit(*m_at)) ++m_at;
    return {start, static_cast<std::size_t>(m_at - start)};
  }

  /// Take a point and all digits after it, or nothing where there is no point. \p rest gets the digits after the ninth.
  bool TakeFraction(std::uint64_t& nanoseconds, std::string_view& rest) {
    if (!Take('.')) return true;
    std::string_view const digits = TakeDigits();
    if (digits.empty()) return false;
    constexpr std::size_t kNanoDigits = 9;
    for (std::size_t i = 0; i < kNanoDigits; ++i) {
      nanoseconds = nanoseconds * 10 + (i < digits.size() ? static_cast<unsigned>(digits[i] - '0') : 0);
    }
    if (digits.size() > kNanoDigits) rest = digits.substr(kNanoDigits);
    return true;
  }

 private:
  char const* m_at;
  char const* m_end;
};

}  // namespace Quillon9
