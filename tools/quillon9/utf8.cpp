#include "utf8.h"

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

using Quillon9::FormatString;

namespace {

/// The well-formed sequences, by first byte: their length and the bounds of the second byte.
struct Range {
  unsigned char m_first;
  unsigned char m_last;
  unsigned char m_size;
  unsigned char m_secondFirst;
  unsigned char m_secondLast;
};
constexpr Range kRanges[] = {
    {0x00, 0x7F, 1, 0x00, 0xFF}, {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

unsigned char ByteAt(std::string_view text, std::size_t at) { return static_cast<unsigned char>(text[at]); }

/// Return the character that the well-formed sequence of \p size bytes encodes.
char32_t CharacterOf(std::string_view text, std::size_t size) {
  if (size == 1) return ByteAt(text, 0);
  char32_t character = ByteAt(text, 0) & (0xFFU >> (size + 1));
  for (std::size_t i = 1; i < size; ++i) character = character << 6 | (ByteAt(text, i) & 0x3F);
  return character;
}

bool MovesTheCursor(char32_t character) {
  bool const isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
  bool const isLineEnd = character == 0x2028 || character == 0x2029;
  bool const turnsRound = (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
  return isControl || isLineEnd || turnsRound;
}

/// Append the first character of \p text and return its size.
std::size_t AppendEscaped(std::string& target, std::string_view text, bool escapeQuotes) {
  std::size_t const size = Utf8Size(text);
  if (size == 0) {
    target += FormatString("\\x%02X", static_cast<unsigned>(ByteAt(text, 0)));
    return 1;
  }
  char32_t const character = CharacterOf(text, size);
  if (character == '\n') {
    target += "\\n";
  } else if (character == '\t') {
    target += "\\t";
  } else if (character == '\\' || (escapeQuotes && character == '"')) {
    target += {'\\', text[0]};
  } else if (MovesTheCursor(character)) {
    target += FormatString("\\u{%X}", static_cast<unsigned>(character));
  } else {
    target.append(text.substr(0, size));
  }
  return size;
}

}  // namespace

std::size_t Utf8Size(std::string_view text) {
  if (text.empty()) return 0;
  for (Range const& range : kRanges) {
    if (ByteAt(text, 0) < range.m_first || ByteAt(text, 0) > range.m_last) continue;
    if (text.size() < range.m_size) return 0;
    for (std::size_t i = 1; i < range.m_size; ++i) {
      if ((ByteAt(text, i) & 0xC0) != 0x80) return 0;
    }
    if (range.m_size == 1) return 1;
    return ByteAt(text, 1) >= range.m_secondFirst && ByteAt(text, 1) <= range.m_secondLast ? range.m_size : 0;
  }
  return 0;
}

void AppendUtf8(std::string& text, char32_t character) {
  auto const append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (character < 0x80) return append(character);
  int shift = character < 0x800 ? 6 : character < 0x10000 ? 12 : 18;
  append((character < 0x800 ? 0xC0 : character < 0x10000 ? 0xE0 : 0xF0) | character >> shift);
  for (shift -= 6; shift >= 0; shift -= 6) append(0x80 | (character >> shift & 0x3F));
}

std::string Quoted(std::string_view text, std::size_t mostCharacters) {
  std::string quoted = "\"";
  for (std::size_t count = 0; !text.empty() && count < mostCharacters; ++count) {
    text.remove_prefix(AppendEscaped(quoted, text, true));
  }
  quoted += text.empty() ? "\"" : "\"...";
  return quoted;
}

std::string Quoted(std::string_view text) { return Quoted(text, text.size()); }

std::string Escaped(std::string_view text) {
  std::string escaped;
  while (!text.empty()) text.remove_prefix(AppendEscaped(escaped, text, false));
  return escaped;
}

}  // namespace Quillon9Tool
