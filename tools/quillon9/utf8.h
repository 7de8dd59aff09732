#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Quillon9Tool {

/// Return the size of the well-formed UTF-8 sequence (RFC 3629) at the start of \p text; 0 if there is none.
std::size_t Utf8Size(std::string_view text);

/// Append \p character, which must not be a surrogate, as UTF-8.
void AppendUtf8(std::string& text, char32_t character);

/// Return \p text in quotes, safe for a line on a terminal: control characters, those that change the direction of
/// writing, quotes and bytes that are not UTF-8 become escapes. Text longer than \p mostCharacters ends in "...".
std::string Quoted(std::string_view text, std::size_t mostCharacters);
/// The same for the whole text.
std::string Quoted(std::string_view text);
/// The same without quotes, for names.
std::string Escaped(std::string_view text);

}  // namespace Quillon9Tool
