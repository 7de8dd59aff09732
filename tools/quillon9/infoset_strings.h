#pragma once

#include <cstddef>
#include <string>

#include "infoset_parser.h"

namespace Quillon9Tool {

/// The encoding algorithm whose values the library does not read back correctly.
inline constexpr std::uint32_t kFloatAlgorithm = 7;

/// Return the text of \p string in UTF-8, decoded from its first \p mostOctets octets only, with the alphabets of \p
/// parser. Text that cannot be decoded is shown in hexadecimal digits.
std::string Decoded(EncodedString const& string, InfosetParser const& parser, std::size_t mostOctets);

/// Return the encoding of \p string in words; nothing for UTF-8.
std::string EncodingName(EncodedString const& string);

/// Return the name at \p index with its prefix, as far as the tables of \p parser contain it.
std::string NameText(InfosetParser const& parser, Table table, std::uint32_t index);

}  // namespace Quillon9Tool
