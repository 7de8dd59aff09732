#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Quillon9 {

/// One flag for each entry of a table, all false at first. Up to 64 flags, enough for most classes, need no memory
/// beyond the object; reading a class takes one such set.
class FlagSet {
 public:
  explicit FlagSet(std::size_t count) {
    if (count > kFew) m_many.resize(count);
  }
  bool operator[](std::size_t i) const { return m_many.empty() ? (m_few >> i & 1) != 0 : bool{m_many[i]}; }
  void Set(std::size_t i) {
    if (m_many.empty()) {
      m_few |= std::uint64_t{1} << i;
    } else {
      m_many[i] = true;
    }
  }

 private:
  static constexpr std::size_t kFew = 64;

  std::uint64_t m_few = 0;
  std::vector<bool> m_many;
};

}  // namespace Quillon9
