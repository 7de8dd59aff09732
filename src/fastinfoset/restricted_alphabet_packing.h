#pragma once

#include <string>
#include <string_view>

namespace Quillon9 {

/// Append to \p target the octets that hold \p text as positions in \p alphabet (Rec. ITU-T X.891, 9): one position per
/// octet if the alphabet needs 8 bits, two if it needs 4, the first in the high half. An unused low half is all ones.
/// \throws CQnException "Failed to write FastInfoset. " with "Invalid Restricted Alphabet. Alphabet must contain
///         between 2 and 2^20 characters.", "Unsupported Feature in AppendRestrictedAlphabetString." for an alphabet
///         that needs other widths, "Invalid character not found for Restricted Alphabet."; octets may already have
///         been appended then.
void AppendRestrictedAlphabetString(std::string& target, std::string_view text, std::string const& alphabet);

}  // namespace Quillon9
