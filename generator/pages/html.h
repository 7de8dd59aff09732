#pragma once

#include <string>
#include <string_view>

/// Texts of schemas in HTML. The schemas are not trusted.
namespace Quillon9Generator::Pages {

/// \p text as the content of an element or of an attribute in double quotes.
std::string Escaped(std::string_view text);

/// \p name as the fragment of an address (RFC 3986).
std::string Fragment(std::string_view name);

/// \p text in `<code>`.
std::string CodeText(std::string_view text);

/// \p documentation in paragraphs, which empty lines separate; empty for none.
std::string Paragraphs(std::string_view documentation);

/// A whole page: \p body below \p heading, which are HTML, while \p title is text.
std::string Document(std::string_view title, std::string_view heading, std::string_view body);

}  // namespace Quillon9Generator::Pages
