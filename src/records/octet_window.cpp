#include "records/octet_window.h"

#include <algorithm>
#include <cstring>

namespace Quillon9 {

// The space grows with what the input delivers, so that a wrong length in a document costs nothing.
OctetSupply::Octets OctetWindow::Supply(std::uint8_t const* position, std::size_t left, std::uint64_t count) {
  constexpr std::size_t kLeastSize = 0x10000;
  if (left != 0) std::memmove(m_octets.data(), position, left);
  std::size_t size = left;
  while (size < count && !m_isAtEnd) {
    if (size == m_octets.size()) m_octets.resize(std::max(kLeastSize, 2 * size));
    std::size_t const more = m_input.Read(reinterpret_cast<char*>(m_octets.data() + size), m_octets.size() - size);
    m_isAtEnd = more == 0;
    size += more;
  }
  return {m_octets.data(), m_octets.data() + size};
}

}  // namespace Quillon9
