#pragma once

#include <string_view>

namespace Quillon9 {

/// \throws CQnInvalidValueException "The character U+%04X cannot stand in an XML document".
[[noreturn]] void ThrowNotInXml(unsigned character);

/// Check that \p text, which is UTF-8, has neither U+FFFE nor U+FFFF, and no character below U+0020 but tabs, line feeds
/// and carriage returns (XML 1.0, W3C, 2.2).
/// \throws as ThrowNotInXml().
void RequireXmlCharacters(std::string_view text);

}  // namespace Quillon9
