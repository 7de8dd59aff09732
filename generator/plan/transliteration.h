#pragma once

#include <string>
#include <string_view>

namespace Quillon9Generator::Plan {

/// The character at the start of \p utf8, which is removed from it; U+FFFD for a byte that begins no character.
char32_t TakeCharacter(std::string_view& utf8);

/// A letter beyond ASCII in letters of ASCII: its usual transcription for Latin, Cyrillic and Greek letters, "U" and
/// the code point in hexadecimal for the others.
std::string Transliterate(char32_t character);

}  // namespace Quillon9Generator::Plan
