#pragma once

#include <string_view>

namespace Quillon9 {

/// Fill \p table with the Unicode characters of the 256 bytes of the encoding \p name, -1 for a byte without a meaning,
/// as the system's converter knows them. Returns false for a \p name that the converter does not know, and for an
/// encoding in which a character can have several bytes. Any thread.
/// \throws std::bad_alloc.
bool FillSingleByteTable(std::string_view name, int (&table)[256]);

}  // namespace Quillon9
