#pragma once

#include <cstddef>
#include <cstdint>

#include "base/byte_blocks.h"
#include "quillon9/text/unicode.h"

namespace Quillon9 {

/// The number of bytes at the start of \p text that are below 0x80.
inline std::size_t AsciiLength(std::uint8_t const* text, std::size_t length) {
  using Block = std::uint64_t;
  std::size_t at = 0;
  // Four blocks at a time, because whole documents are scanned.
  for (; length - at >= 4 * sizeof(Block); at += 4 * sizeof(Block)) {
    auto const block = [&](std::size_t number) { return ByteBlocks::Load<Block>(text + at + number * sizeof(Block)); };
    if (((block(0) | block(1) | block(2) | block(3)) & ByteBlocks::kHighBits) != 0) break;
  }
  for (; length - at >= sizeof(Block); at += sizeof(Block)) {
    if ((ByteBlocks::Load<Block>(text + at) & ByteBlocks::kHighBits) != 0) break;
  }
  while (at < length && text[at] < 0x80) ++at;
  return at;
}

inline bool IsTrailByte(std::uint8_t byte) { return (byte & 0xC0) == 0x80; }

/// IsLegalUTF8() for inner loops.
inline bool IsLegalSequence(std::uint8_t const* bytes, std::size_t length) {
  std::uint8_t const lead = bytes[0];
  switch (length) {
    case 1: return lead < 0x80;
    case 2: return lead >= 0xC2 && lead <= 0xDF && IsTrailByte(bytes[1]);
    case 3:
      return (lead & 0xF0) == 0xE0 && IsTrailByte(bytes[1]) && IsTrailByte(bytes[2]) &&
             (lead != 0xE0 || bytes[1] >= 0xA0) && (lead != 0xED || bytes[1] <= 0x9F);
    case 4:
      return lead >= 0xF0 && lead <= 0xF4 && IsTrailByte(bytes[1]) && IsTrailByte(bytes[2]) && IsTrailByte(bytes[3]) &&
             (lead != 0xF0 || bytes[1] >= 0x90) && (lead != 0xF4 || bytes[1] <= 0x8F);
    default: return false;
  }
}

/// The character that a well-formed sequence encodes.
inline std::uint32_t DecodeSequence(std::uint8_t const* bytes, std::size_t length) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < length; ++i) sum = (sum << 6) + bytes[i];
  return sum - offsetsFromUTF8[length - 1];
}

/// The length of the well-formed sequence at the start of \p text, or 0 if there is none.
inline std::size_t SequenceLength(std::uint8_t const* text, std::size_t length) {
  std::uint8_t const lead = text[0];
  std::size_t const sequence = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  return sequence <= length && IsLegalSequence(text, sequence) ? sequence : 0;
}

/// The number of bytes at the start of \p text that are well-formed UTF-8; a sequence cut off by the end does not
/// count.
inline std::size_t LegalUtf8Length(std::uint8_t const* text, std::size_t length) {
  std::size_t at = 0;
  while (at < length) {
    std::size_t const taken =
        text[at] < 0x80 ? AsciiLength(text + at, length - at) : SequenceLength(text + at, length - at);
    if (taken == 0) break;
    at += taken;
  }
  return at;
}

}  // namespace Quillon9
