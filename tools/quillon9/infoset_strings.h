#pragma once

#include <cstddef>
#include <string>

#include "infoset_parser.h"

namespace Quillon9Tool {

/// The encoding algorithm whose values the library does not read as they were.
inline constexpr std::uint32_t kFloatAlgorithm = 7;

/// The text of \p string in UTF-8, made of its first \p mostOctets octets only; the alphabets of \p parser are those
/// that may be used. What cannot be decoded is shown in hexadecimal digits.
std::string Decoded(EncodedString const& string, InfosetParser const& parser, std::size_t mostOctets);

/// How \p string is encoded, in words; nothing for UTF-8.
std::string EncodingName(EncodedString const& string);

/// The name at \p index with its prefix, as far as the tables of \p parser have it.
std::string NameText(InfosetParser const& parser, Table table, std::uint32_t index);

}  // namespace Quillon9Tool
