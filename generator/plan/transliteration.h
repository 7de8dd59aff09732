#pragma once

#include <string>
#include <string_view>

namespace Quillon9Generator::Plan {

/// A letter beyond ASCII in letters of ASCII: its usual transcription for Latin, Cyrillic and Greek letters, "U" and
/// the code point in hexadecimal for the others.
std::string Transliterate(char32_t character);

}  // namespace Quillon9Generator::Plan
