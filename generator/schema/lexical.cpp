#include "schema/lexical.h"

#include <algorithm>
#include <cstddef>

namespace Quillon9Generator::Schema {

namespace {

bool Contains(CharacterRanges const& ranges, char32_t character) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [=](auto const& range) { return character >= range.first && character <= range.second; });
}

int TrailingBytes(unsigned char lead) {
  if (lead >= 0xC2 && lead < 0xE0) return 1;
  if (lead >= 0xE0 && lead < 0xF0) return 2;
  if (lead >= 0xF0 && lead < 0xF5) return 3;
  return 0;
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

char32_t TakeCharacter(std::string_view& utf8) {
  constexpr char32_t kReplacement = 0xFFFD;
  auto const lead = static_cast<unsigned char>(utf8.front());
  int const trailing = TrailingBytes(lead);
  utf8.remove_prefix(1);
  if (lead < 0x80) return lead;
  if (trailing == 0 || utf8.size() < static_cast<std::size_t>(trailing)) return kReplacement;
  char32_t result = lead & (0x3Fu >> trailing);
  for (int i = 0; i < trailing; ++i) {
    auto const next = static_cast<unsigned char>(utf8.front());
    if ((next & 0xC0u) != 0x80) return kReplacement;
    result = result << 6 | (next & 0x3Fu);
    utf8.remove_prefix(1);
  }
  return result;
}

CharacterRanges const& NameStartCharacters() {
  static auto const& ranges = *new CharacterRanges{
      {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},        {0xC0, 0xD6},     {0xD8, 0xF6},
      {0xF8, 0x2FF},    {0x370, 0x37D},   {0x37F, 0x1FFF},  {0x200C, 0x200D},  {0x2070, 0x218F}, {0x2C00, 0x2FEF},
      {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
  return ranges;
}

CharacterRanges const& NameCharacters() {
  static auto const& ranges = *new CharacterRanges{
      {'-', '.'},       {'0', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},       {0xB7, 0xB7},
      {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x37D},    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x203F, 0x2040},
      {0x2070, 0x218F}, {0x2C00, 0x2FEF}, {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
  return ranges;
}

bool IsNameStart(char32_t character) { return Contains(NameStartCharacters(), character); }
bool IsNameCharacter(char32_t character) { return Contains(NameCharacters(), character); }

bool IsNmtoken(std::string_view text) {
  if (text.empty()) return false;
  while (!text.empty()) {
    if (!IsNameCharacter(TakeCharacter(text))) return false;
  }
  return true;
}

bool IsName(std::string_view text) {
  std::string_view rest = text;
  return !text.empty() && IsNameStart(TakeCharacter(rest)) && IsNmtoken(text);
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
    if (digits.size() != 2 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos)
      return false;
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
