#pragma once

#include <utility>
#include <vector>

namespace Quillon9 {

/// The first and last characters of ranges, ascending and without overlap.
using CharacterRanges = std::vector<std::pair<char32_t, char32_t>>;

/// https://www.w3.org/TR/xml/#NT-NameStartChar and NameChar.
///@{
CharacterRanges const& NameStartCharacters();
CharacterRanges const& NameCharacters();
///@}

/// All other characters; surrogates are none.
CharacterRanges Complement(CharacterRanges const& ranges);

bool Contains(CharacterRanges const& ranges, char32_t character);

}  // namespace Quillon9
