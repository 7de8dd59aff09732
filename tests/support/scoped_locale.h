#pragma once

#include <clocale>
#include <string>

namespace Quillon9::Testing {

/// Sets the locale of the process for the life of a scope.
class ScopedLocale {
 public:
  explicit ScopedLocale(char const* name) : m_isThere(std::setlocale(LC_ALL, name) != nullptr) {}
  ~ScopedLocale() { std::setlocale(LC_ALL, m_before.c_str()); }
  ScopedLocale(ScopedLocale const&) = delete;
  ScopedLocale& operator=(ScopedLocale const&) = delete;

  /// Whether the locale exists; if not, nothing has changed.
  bool IsThere() const { return m_isThere; }

 private:
  std::string m_before = std::setlocale(LC_ALL, nullptr);
  bool m_isThere;
};

}  // namespace Quillon9::Testing
