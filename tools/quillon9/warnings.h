#pragma once

#include <cstddef>
#include <string>

#include "losses.h"

namespace Quillon9Tool {

/// Collects what is lost while the file \p name is converted.
class Warnings {
 public:
  explicit Warnings(std::string name) : m_name(std::move(name)) {}

  void Add(std::string const& text);
  /// Add "[count] [one or many]", unless \p count is 0.
  void Add(std::size_t count, char const* one, char const* many);
  void Add(Losses const& losses);

  /// Print one line for each on standard error.
  void Print() const;

 private:
  std::string m_name;
  std::string m_lines;
};

}  // namespace Quillon9Tool
