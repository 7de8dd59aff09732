#include "values/character_ranges.h"

#include <algorithm>

namespace Quillon9 {

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

CharacterRanges Complement(CharacterRanges const& ranges) {
  CharacterRanges result;
  char32_t next = 0;
  auto const addBelow = [&result, &next](char32_t end) {
    if (next < 0xD800 && next < end) result.emplace_back(next, std::min<char32_t>(end, 0xD800) - 1);
    next = std::max<char32_t>(next, 0xE000);
    if (end > next) result.emplace_back(next, end - 1);
  };
  for (auto const& [first, last] : ranges) {
    addBelow(first);
    next = last + 1;
  }
  addBelow(0x110000);
  return result;
}

bool Contains(CharacterRanges const& ranges, char32_t character) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [=](auto const& range) { return character >= range.first && character <= range.second; });
}

}  // namespace Quillon9
