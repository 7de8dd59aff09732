#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Quillon9 {

/// Append to \p target the text that \p length octets hold as positions in \p alphabet (Rec. ITU-T X.891, 10.1 and
/// C.29). Each position has as many bits as the number of characters plus one more position needs, but 2 bits for at
/// most 3 characters and at least 3 bits for more. The position of all ones ends the text, except where positions have
/// 8 bits and in the high half of an octet where they have 4. The text also ends after \p most characters.
/// \throws CQnException "Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must contain
///         between 2 and 2^20 characters."; for a position beyond the alphabet "Failed to parse FastInfoset. Invalid
///         Encoding of Restricted Alphabet. Index is beyond the Alphabet."
void AppendRestrictedAlphabetText(std::string& target, std::uint8_t const* octets, std::size_t length,
                                  std::string const& alphabet, std::uint64_t most = ~std::uint64_t{0});

}  // namespace Quillon9
