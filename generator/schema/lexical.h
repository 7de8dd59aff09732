#pragma once

#include <string_view>
#include <utility>
#include <vector>

/// Texts of XML (https://www.w3.org/TR/xml/, https://www.w3.org/TR/xml-names/).
namespace Quillon9Generator::Schema {

/// The character at the start of \p utf8, which is removed from it; U+FFFD for a byte that begins no character.
char32_t TakeCharacter(std::string_view& utf8);

/// The first and last characters of ranges, ascending and without overlap.
using CharacterRanges = std::vector<std::pair<char32_t, char32_t>>;
/// https://www.w3.org/TR/xml/#NT-NameStartChar and NameChar.
CharacterRanges const& NameStartCharacters();
CharacterRanges const& NameCharacters();

bool IsNameStart(char32_t character);
bool IsNameCharacter(char32_t character);

bool IsName(std::string_view text);
bool IsNmtoken(std::string_view text);
bool IsNCName(std::string_view text);
/// Return whether \p text is a name with or without a prefix.
bool IsQName(std::string_view text);
/// Return whether \p text is a language as RFC 3066 writes it.
bool IsLanguage(std::string_view text);

/// Return whether \p text is a URI reference, in which characters may stand unescaped (RFC 2396, RFC 2732).
bool IsUri(std::string_view text);

/// Return the parts of \p text between white space.
std::vector<std::string_view> Words(std::string_view text);

}  // namespace Quillon9Generator::Schema
