#include "schema/lexical.h"

#include <algorithm>
#include <iterator>

namespace Quillon9Generator::Schema {

namespace {

struct Range {
  char32_t first, last;
};

// https://www.w3.org/TR/xml/#NT-NameStartChar
constexpr Range kStart[] = {{':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
                            {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                            {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                            {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
// What may follow besides.
constexpr Range kRest[] = {{'-', '.'}, {'0', '9'}, {0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

template <std::size_t Size>
bool Contains(Range const (&ranges)[Size], char32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges),
                     [=](Range range) { return character >= range.first && character <= range.last; });
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

char32_t TakeCodePoint(std::string_view& utf8) {
  auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  std::size_t const length = byte(0) < 0x80 ? 1 : byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : byte(0) >= 0xC0 ? 2 : 0;
  if (length == 0 || length > utf8.size()) {
    utf8.remove_prefix(1);
    return 0xFFFD;
  }
  char32_t character = length == 1 ? byte(0) : byte(0) & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i != length; ++i) character = character << 6 | (byte(i) & 0x3FU);
  utf8.remove_prefix(length);
  return character;
}

bool IsNameStart(char32_t character) { return Contains(kStart, character); }
bool IsNameCharacter(char32_t character) { return IsNameStart(character) || Contains(kRest, character); }

bool IsNmtoken(std::string_view text) {
  if (text.empty()) return false;
  while (!text.empty()) {
    if (!IsNameCharacter(TakeCodePoint(text))) return false;
  }
  return true;
}

bool IsName(std::string_view text) {
  std::string_view rest = text;
  return !text.empty() && IsNameStart(TakeCodePoint(rest)) && IsNmtoken(text);
}

bool IsNCName(std::string_view text) { return IsName(text) && text.find(':') == std::string_view::npos; }

bool IsQName(std::string_view text) {
  std::size_t const colon = text.find(':');
  if (colon == std::string_view::npos) return IsNCName(text);
  return IsNCName(text.substr(0, colon)) && IsNCName(text.substr(colon + 1));
}

bool IsLanguage(std::string_view text) {
  for (bool first = true;; first = false) {
    std::size_t const end = std::min(text.find('-'), text.size());
    std::string_view const part = text.substr(0, end);
    bool const isRight =
        std::all_of(part.begin(), part.end(), [=](char c) { return IsLetter(c) || (!first && IsDigit(c)); });
    if (part.empty() || part.size() > 8 || !isRight) return false;
    if (end == text.size()) return true;
    text.remove_prefix(end + 1);
  }
}

bool IsUri(std::string_view text) {
  std::size_t const fragment = text.find('#');
  if (fragment != std::string_view::npos && text.find('#', fragment + 1) != std::string_view::npos) return false;
  for (std::size_t i = text.find('%'); i != std::string_view::npos; i = text.find('%', i + 1)) {
    std::string_view const digits = text.substr(i + 1, 2);
    if (digits.size() != 2 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos) return false;
  }
  return true;
}

std::vector<std::string_view> Words(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  std::vector<std::string_view> words;
  for (std::size_t begin = text.find_first_not_of(kBlank); begin != std::string_view::npos;
       begin = text.find_first_not_of(kBlank, begin)) {
    std::size_t const end = std::min(text.find_first_of(kBlank, begin), text.size());
    words.push_back(text.substr(begin, end - begin));
    begin = end;
  }
  return words;
}

}  // namespace Quillon9Generator::Schema
