#include "xmlio/markup_scan.h"

#include "xmlio/name_characters.h"

namespace Quillon9::MarkupScan {

namespace {

/// Return the length of the character at the start of \p rest if it may stand there in a name without a colon, or 0.
std::size_t NameCharacterLength(std::string_view rest, bool isFirst) {
  if (static_cast<unsigned char>(rest[0]) < 0x80) {
    bool const isAllowed = isFirst ? Is(kNameStart, rest[0]) : Is(kNamePart, rest[0]) && rest[0] != ':';
    return isAllowed ? 1 : 0;
  }
  std::size_t const length = CharacterLength(rest.data(), rest.data() + rest.size());
  if (length == 0) return 0;
  std::uint32_t const character = DecodeSequence(reinterpret_cast<std::uint8_t const*>(rest.data()), length);
  bool const isAllowed = isFirst ? NameCharacters::IsStart(character) : NameCharacters::IsPart(character);
  return isAllowed ? length : 0;
}

}  // namespace

std::size_t FindColon(std::string_view text) {
  std::size_t colon = 0;
  bool isFirst = true;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == ':' && !isFirst && colon == 0) {
      colon = at++;
      isFirst = true;
      continue;
    }
    std::size_t const length = NameCharacterLength(text.substr(at), isFirst);
    if (length == 0) return std::string_view::npos;
    at += length;
    isFirst = false;
  }
  return isFirst ? std::string_view::npos : colon;
}

}  // namespace Quillon9::MarkupScan
