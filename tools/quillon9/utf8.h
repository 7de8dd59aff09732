#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Quillon9Tool {

/// The size of the well-formed UTF-8 sequence (RFC 3629) that \p text begins with; 0 if it begins with none.
std::size_t Utf8Size(std::string_view text);

/// Append \p character, which is no surrogate, as UTF-8.
void AppendUtf8(std::string& text, char32_t character);

/// \p text in quotes, fit for a line on a terminal: control characters, those that turn the direction of writing round,
/// quotes and what is no UTF-8 as escapes. Beyond \p mostCharacters it ends in "...".
std::string Quoted(std::string_view text, std::size_t mostCharacters);
/// The same of the whole text.
std::string Quoted(std::string_view text);
/// The same without quotes, for names.
std::string Escaped(std::string_view text);

}  // namespace Quillon9Tool
