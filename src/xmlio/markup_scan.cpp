#include "xmlio/markup_scan.h"

#include "text/name_characters.h"

namespace Quillon9::MarkupScan {

namespace {

/// Return the end of the part of a name without a colon that begins at \p at; \p at if it may not begin there.
char const* PartEnd(char const* at, char const* end) {
  bool isFirst = true;
  for (; at != end; isFirst = false) {
    if (Is(isFirst ? kNameStart : kPlainPart, *at)) {
      ++at;
      continue;
    }
    std::size_t const length = static_cast<unsigned char>(*at) < 0x80 ? 0 : CharacterLength(at, end);
    if (length == 0) break;
    std::uint32_t const character = DecodeSequence(reinterpret_cast<std::uint8_t const*>(at), length);
    if (!(isFirst ? NameCharacters::IsStart(character) : NameCharacters::IsPart(character))) break;
    at += length;
  }
  return at;
}

}  // namespace

std::size_t FindColon(std::string_view text) {
  char const* const end = text.data() + text.size();
  char const* const colon = PartEnd(text.data(), end);
  if (colon == text.data()) return std::string_view::npos;
  if (colon == end) return 0;
  if (*colon != ':' || colon + 1 == end || PartEnd(colon + 1, end) != end) return std::string_view::npos;
  return static_cast<std::size_t>(colon - text.data());
}

}  // namespace Quillon9::MarkupScan
