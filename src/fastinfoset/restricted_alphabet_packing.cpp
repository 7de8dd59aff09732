#include "fastinfoset/restricted_alphabet_packing.h"

#include <cstddef>

#include "fastinfoset/octet_sink.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kFewest = 2;
constexpr std::size_t kMost = std::size_t{1} << 20;

/// Return the number of bits for one position: one value more than there are characters must fit.
int BitWidth(std::size_t characters) {
  int width = 3;
  while (characters >= std::size_t{1} << width) ++width;
  return width;
}

unsigned PositionOf(char character, std::string const& alphabet) {
  std::size_t const position = alphabet.find(character);
  if (position == std::string::npos) {
    ThrowFastInfosetWriteFailure("Invalid character not found for Restricted Alphabet.");
  }
  return static_cast<unsigned>(position);
}

void Append(std::string& target, unsigned octet) { target += static_cast<char>(static_cast<unsigned char>(octet)); }

}  // namespace

void AppendRestrictedAlphabetString(std::string& target, std::string_view text, std::string const& alphabet) {
  if (alphabet.size() < kFewest || alphabet.size() > kMost) {
    ThrowFastInfosetWriteFailure("Invalid Restricted Alphabet. Alphabet must contain between 2 and 2^20 characters.");
  }
  int const width = alphabet.size() < 4 ? 2 : BitWidth(alphabet.size());
  if (width == 8) {
    for (char const character : text) Append(target, PositionOf(character, alphabet));
  } else if (width == 4) {
    for (std::size_t i = 0; i < text.size(); i += 2) {
      unsigned const high = PositionOf(text[i], alphabet);
      unsigned const low = i + 1 < text.size() ? PositionOf(text[i + 1], alphabet) : 15;
      Append(target, high << 4 | low);
    }
  } else {
    ThrowFastInfosetWriteFailure("Unsupported Feature in AppendRestrictedAlphabetString.");
  }
}

}  // namespace Quillon9
