#include "fastinfoset/restricted_alphabet.h"

#include <algorithm>

#include "fastinfoset/octet_source.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kMostCharacters = std::size_t{1} << 20;

std::uint32_t BitWidth(std::size_t characters) {
  if (characters <= 3) return 2;
  std::uint32_t width = 3;
  while (characters >= std::size_t{1} << width) ++width;
  return width;
}

/// Reads values of equal width, most significant bit first, across octet boundaries.
class BitReader {
 public:
  BitReader(std::uint8_t const* octets, std::uint32_t width) : m_octets(octets), m_width(width) {}

  std::uint32_t GetBits() {
    for (; m_bitsLeft < m_width; m_bitsLeft += 8) m_bits = m_bits << 8 | *m_octets++;
    m_bitsLeft -= m_width;
    return m_bits >> m_bitsLeft & GetAllOnes();
  }
  std::uint32_t GetAllOnes() const { return (std::uint32_t{1} << m_width) - 1; }

 private:
  std::uint8_t const* m_octets;
  std::uint32_t m_width;  // at most 21, so that the remaining bits and an octet fit
  std::uint32_t m_bitsLeft = 0;
  std::uint32_t m_bits = 0;
};

}  // namespace

void AppendRestrictedAlphabetText(std::string& target, std::uint8_t const* octets, std::size_t length,
                                  std::string const& alphabet, std::uint64_t most) {
  if (alphabet.size() < 2 || alphabet.size() > kMostCharacters) {
    ThrowFastInfosetFailure(
        "Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 and 2^20 characters.");
  }
  std::uint32_t const width = BitWidth(alphabet.size());
  std::size_t const count = std::min<std::uint64_t>(length * 8 / width, most);
  BitReader reader(octets, width);
  target.reserve(target.size() + count);
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t const position = reader.GetBits();
    if (position < alphabet.size()) {
      target += alphabet[position];
    } else {
      bool const mayEnd = width != 8 && (width != 4 || i % 2 == 1);
      if (mayEnd && position == reader.GetAllOnes()) return;
      ThrowFastInfosetFailure("Invalid Encoding of Restricted Alphabet. Index is beyond the Alphabet.");
    }
  }
}

}  // namespace Quillon9
