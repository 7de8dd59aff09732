#include "base/bounded_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

namespace Quillon9 {

namespace {

constexpr std::string_view kMark = "...";

bool IsTrail(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// The last boundary of characters at or before \p at. Text that is not UTF-8 may have none near; then \p at.
std::size_t BoundaryBefore(std::string const& text, std::size_t at) {
  std::size_t boundary = at;
  while (boundary > 0 && at - boundary < 4 && IsTrail(text[boundary])) --boundary;
  return IsTrail(text[boundary]) ? at : boundary;
}

void AppendEscaped(std::string& out, std::uint32_t character) {
  constexpr std::array<std::pair<std::uint32_t, char const*>, 3> kShort = {
      {{'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}}};
  for (auto const& [code, escape] : kShort) {
    if (code == character) {
      out += escape;
      return;
    }
  }
  char room[16];
  std::snprintf(room, sizeof room, character < 0x80 ? "\\x%02X" : "\\u{%04X}", static_cast<unsigned>(character));
  out += room;
}

/// The controls of C1, the separators of lines and paragraphs, and what changes the direction of text.
bool IsHarmful(std::uint32_t c) {
  return (c >= 0x80 && c <= 0x9F) || c == 0x061C || (c >= 0x200E && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069);
}

/// The character of two or three bytes of UTF-8 at \p at; 0 for anything else.
std::uint32_t LongCharacter(std::string const& text, std::size_t at) {
  auto const byte = [&](std::size_t i) {
    return at + i < text.size() ? static_cast<std::uint32_t>(static_cast<unsigned char>(text[at + i])) : 0U;
  };
  bool const isTwo = (byte(0) & 0xE0) == 0xC0 && (byte(1) & 0xC0) == 0x80;
  if (isTwo) return (byte(0) & 0x1F) << 6 | (byte(1) & 0x3F);
  bool const isThree = (byte(0) & 0xF0) == 0xE0 && (byte(1) & 0xC0) == 0x80 && (byte(2) & 0xC0) == 0x80;
  return isThree ? (byte(0) & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F) : 0;
}

}  // namespace

std::string BoundedText::CutEnd(std::string const& text, std::size_t most) {
  if (text.size() <= most) return text;
  return text.substr(0, BoundaryBefore(text, most)).append(kMark);
}

std::string BoundedText::CutMiddle(std::string text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t const head = BoundaryBefore(text, (most - kMark.size()) / 2);
  std::size_t tail = text.size() - (most - kMark.size() - head);
  for (int i = 0; i < 4 && IsTrail(text[tail]); ++i) ++tail;
  return text.substr(0, head).append(kMark).append(text, tail);
}

std::string BoundedText::Escape(std::string const& text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto const byte = static_cast<unsigned char>(text[i]);
    std::uint32_t const character = byte >= 0x80 ? LongCharacter(text, i) : 0;
    if (byte < 0x20 || byte == 0x7F) {
      AppendEscaped(out, byte);
    } else if (IsHarmful(character)) {
      AppendEscaped(out, character);
      i += character < 0x800 ? 1 : 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace Quillon9
