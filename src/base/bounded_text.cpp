#include "base/bounded_text.h"

#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <string_view>

namespace Quillon9 {

namespace {

constexpr std::string_view kMark = "...";
constexpr std::size_t kLongestSequence = 4;

struct Character {
  std::uint32_t code;
  std::size_t length;  // in bytes; 0 if there is no character
};

constexpr Character kNone = {0, 0};

bool IsTrail(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// The last boundary of characters at or before \p at. Text that is not UTF-8 may have none near; then \p at.
std::size_t BoundaryBefore(std::string_view text, std::size_t at) {
  std::size_t boundary = at;
  while (boundary > 0 && at - boundary < kLongestSequence - 1 && IsTrail(text[boundary])) --boundary;
  return IsTrail(text[boundary]) ? at : boundary;
}

/// The character of the locale at the start of \p text.
Character FirstOfLocale(std::string_view text) {
  std::mbstate_t state{};
  wchar_t wide = L'\0';
  std::size_t const length = std::mbrtowc(&wide, text.data(), text.size(), &state);
  auto const code = static_cast<std::uint32_t>(wide);
  bool const isCharacter =
      length != 0 && length <= text.size() && (code < 0xD800 || (code > 0xDFFF && code <= 0x10FFFF));
  return isCharacter ? Character{code, length} : kNone;
}

/// The character of several bytes at the start of \p text, in UTF-8 (RFC 3629).
Character FirstOfUtf8(std::string_view text) {
  constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  auto const lead = static_cast<unsigned char>(text[0]);
  std::size_t const length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return kNone;
  std::uint32_t code = lead & (0x7FU >> length);
  for (char const c : text.substr(1, length - 1)) {
    if (!IsTrail(c)) return kNone;
    code = code << 6 | (static_cast<unsigned char>(c) & 0x3FU);
  }
  bool const isLegal = code >= kLeast[length] && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
  return isLegal ? Character{code, length} : kNone;
}

/// Control characters, the separators of lines and paragraphs, and what changes the direction of text.
bool IsHarmful(std::uint32_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x061C || (c >= 0x200E && c <= 0x200F) ||
         (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

std::string EscapeFor(std::uint32_t code, char const* format) {
  switch (code) {
    case '\n': return "\\n";
    case '\r': return "\\r";
    case '\t': return "\\t";
    default: break;
  }
  char room[16];
  std::snprintf(room, sizeof room, format, static_cast<unsigned>(code));
  return room;
}

}  // namespace

std::string BoundedText::CutEnd(std::string const& text, std::size_t most) {
  if (text.size() <= most) return text;
  return text.substr(0, BoundaryBefore(text, most - kMark.size())).append(kMark);
}

std::string BoundedText::CutMiddle(std::string text, std::size_t most) {
  if (text.size() <= most) return text;
  std::size_t const head = BoundaryBefore(text, (most - kMark.size()) / 2);
  std::size_t const least = text.size() - (most - kMark.size() - head);
  std::size_t tail = least;
  while (tail < text.size() && tail - least < kLongestSequence && IsTrail(text[tail])) ++tail;
  return text.substr(0, head).append(kMark).append(text, tail);
}

// The text of a document is in the code page of the locale, or in UTF-8 whatever the locale is.
std::string BoundedText::Escape(std::string const& text) {
  std::string out;
  for (std::string_view left = text; !left.empty();) {
    auto const byte = static_cast<unsigned char>(left[0]);
    bool const isAscii = byte < 0x80;
    Character first = isAscii ? Character{byte, 1} : FirstOfLocale(left);
    if (first.length == 0) first = FirstOfUtf8(left);
    bool const isNone = first.length == 0;
    if (isNone) first = {byte, 1};
    if (isNone || IsHarmful(first.code)) {
      out += EscapeFor(first.code, isNone || isAscii ? "\\x%02X" : "\\u{%04X}");
    } else {
      out += left.substr(0, first.length);
    }
    left.remove_prefix(first.length);
  }
  return out;
}

}  // namespace Quillon9
