#pragma once

/// \file
/// Conversions between the three encoding forms of the Unicode Standard (chapter 3.9; UTF-8 also in RFC 3629). None of
/// them depends on the locale, throws or allocates. Any thread.
///
/// The converters read from sourceStart up to sourceEnd and return the number of target units.
///
/// With a target they stop before an illegal unit or sequence, a sequence that the end of the source cuts off, and a
/// character that does not fit below targetEnd. The result counts what they have written up to there; nothing reports
/// that they stopped. With a null target they only measure: the result is the number of units needed, or 0 when
/// anything is illegal. They do not terminate the result, and treat U+0000 like any other character.

#include <cstdint>

#include "quillon9/export.h"

namespace Quillon9 {

/// How many bytes follow a lead byte. The table follows the bit patterns only, so it has 4 and 5 for 0xF8 to 0xFD,
/// which never occur in well-formed text; a byte that is not a lead byte has 0.
QUILLON9_API extern std::uint8_t const trailingBytesForUTF8[256];
/// The sum of the marker bits of a sequence, by its number of trailing bytes: to be subtracted from the sum of the
/// shifted bytes.
QUILLON9_API extern std::uint32_t const offsetsFromUTF8[6];
/// The marker bits of the first byte, by the length of the sequence.
QUILLON9_API extern std::uint8_t const firstByteMark[7];

/// Whether the \p length bytes at \p bytes are exactly one well-formed sequence (Unicode Standard, table 3-7).
QUILLON9_API bool IsLegalUTF8(std::uint8_t const* bytes, int length);
/// Whether a well-formed sequence begins at \p source and ends at or before \p sourceEnd.
QUILLON9_API bool IsLegalUTF8Sequence(std::uint8_t const* source, std::uint8_t const* sourceEnd);

/// Convert bytes to 32-bit units. An ill-formed sequence is illegal.
QUILLON9_API unsigned long ConvertUTF8toUTF32(std::uint8_t const* sourceStart, std::uint8_t const* sourceEnd,
                                              std::uint32_t* targetStart, std::uint32_t* targetEnd);
/// Convert 32-bit units to bytes. A surrogate is illegal; a value above 0x10FFFF becomes U+FFFD.
QUILLON9_API unsigned long ConvertUTF32toUTF8(std::uint32_t const* sourceStart, std::uint32_t const* sourceEnd,
                                              std::uint8_t* targetStart, std::uint8_t* targetEnd);
/// Convert 16-bit units to 32-bit units. An unpaired surrogate is illegal.
QUILLON9_API unsigned long ConvertUTF16toUTF32(std::uint16_t const* sourceStart, std::uint16_t const* sourceEnd,
                                               std::uint32_t* targetStart, std::uint32_t* targetEnd);
/// Convert 32-bit units to 16-bit units. A surrogate is illegal, and so is a value above 0x10FFFF.
QUILLON9_API unsigned long ConvertUTF32toUTF16(std::uint32_t const* sourceStart, std::uint32_t const* sourceEnd,
                                               std::uint16_t* targetStart, std::uint16_t* targetEnd);
/// Convert 16-bit units to bytes. An unpaired surrogate is illegal.
QUILLON9_API unsigned long ConvertUTF16toUTF8(std::uint16_t const* sourceStart, std::uint16_t const* sourceEnd,
                                              std::uint8_t* targetStart, std::uint8_t* targetEnd);
/// Convert bytes to 16-bit units. An ill-formed sequence is illegal.
QUILLON9_API unsigned long ConvertUTF8toUTF16(std::uint8_t const* sourceStart, std::uint8_t const* sourceEnd,
                                              std::uint16_t* targetStart, std::uint16_t* targetEnd);

/// The converters that have a wide side, on counted arrays: they read \p sourceCount units and write at most \p
/// targetCount. A null \p target measures.
///@{
QUILLON9_API unsigned long UTF8ToUnicode(std::uint8_t const* source, unsigned long sourceCount, wchar_t* target,
                                         unsigned long targetCount);
QUILLON9_API unsigned long UnicodeToUTF8(wchar_t const* source, unsigned long sourceCount, std::uint8_t* target,
                                         unsigned long targetCount);
QUILLON9_API unsigned long UTF16ToUnicode(std::uint16_t const* source, unsigned long sourceCount, wchar_t* target,
                                          unsigned long targetCount);
QUILLON9_API unsigned long UnicodeToUTF16(wchar_t const* source, unsigned long sourceCount, std::uint16_t* target,
                                          unsigned long targetCount);
///@}

}  // namespace Quillon9
