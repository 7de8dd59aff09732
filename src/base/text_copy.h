#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/byte_blocks.h"

namespace Quillon9 {

/// Copies text while examining it, eight bytes at a time. Names and values are short, so a call of memcpy() and a loop
/// over the bytes cost more than the text itself.

/// Whether one of the eight bytes is zero.
struct HasZero {
  bool operator()(std::uint64_t block) const { return (ByteBlocks::Equal(block, 0) & ByteBlocks::kHighBits) != 0; }
};

/// Whether one of the eight bytes must not appear unescaped in a document: a quotation mark, an ampersand, an angle
/// bracket or a control character.
struct HasMarkup {
  bool operator()(std::uint64_t block) const {
    using namespace ByteBlocks;
    std::uint64_t const quoteOrAmpersand = Equal(block & ~(kOnes * 0x04), '"');  // they differ in one bit
    std::uint64_t const bracket = Equal(block & ~(kOnes * 0x02), '<');           // and so do these
    return ((quoteOrAmpersand | bracket | Below(block, ' ')) & kHighBits) != 0;
  }
};

/// For ByteBlocks::Any(): bytes that are zero, a carriage return or not ASCII.
constexpr std::uint64_t FindUnplain(std::uint64_t block) {
  using namespace ByteBlocks;
  return Equal(block, '\r') | Below(block, 1) | block;
}

/// Whether FindUnplain() finds one of the eight bytes.
struct HasUnplain {
  bool operator()(std::uint64_t block) const { return (FindUnplain(block) & ByteBlocks::kHighBits) != 0; }
};

template <class Block>
void StoreBlock(char* to, Block block) {
  std::memcpy(to, &block, sizeof block);
}

/// CopyBlocks() for fewer than eight bytes.
template <class Stops>
[[gnu::always_inline]] inline std::size_t CopyLessThanBlock(char* to, std::string_view text, Stops stops) {
  std::size_t const length = text.size();
  char const* const from = text.data();
  std::uint64_t const block = ByteBlocks::LoadShort(from, length, ' ');
  if (stops(block)) return 0;
  if (length >= 4) {
    StoreBlock(to, static_cast<std::uint32_t>(block));
    StoreBlock(to + length - 4, static_cast<std::uint32_t>(block >> 32));
  } else if (length != 0) {
    to[0] = static_cast<char>(block);
    to[length / 2] = static_cast<char>(block >> 8);
    to[length - 1] = static_cast<char>(block >> 16);
  }
  return length;
}

/// Copy \p text to \p to, which has room for it and does not overlap it, up to a block of eight bytes for which \p
/// stops returns true. Returns how many bytes were copied.
template <class Stops>
[[gnu::always_inline]] inline std::size_t CopyBlocks(char* to, std::string_view text, Stops stops) {
  constexpr std::size_t kBlock = sizeof(std::uint64_t);
  std::size_t const length = text.size();
  if (length < kBlock) return CopyLessThanBlock(to, text, stops);
  std::size_t const last = length - kBlock;  // where the last block starts, which may overlap the one before
  for (std::size_t at = 0;; at = at + kBlock < last ? at + kBlock : last) {
    auto const block = ByteBlocks::Load<std::uint64_t>(text.data() + at);
    if (stops(block)) return at;
    StoreBlock(to + at, block);
    if (at == last) return length;
  }
}

/// Whether the two texts are equal.
inline bool IsSameText(std::string_view left, std::string_view right) {
  constexpr std::size_t kBlock = sizeof(std::uint64_t);
  std::size_t const length = left.size();
  if (length != right.size()) return false;
  auto const differ = [&](std::size_t at, auto block) {
    using Block = decltype(block);
    return ByteBlocks::Load<Block>(left.data() + at) != ByteBlocks::Load<Block>(right.data() + at);
  };
  if (length < kBlock) {
    if (length >= 4) return !differ(0, std::uint32_t{}) && !differ(length - 4, std::uint32_t{});
    std::size_t at = 0;
    while (at < length && left[at] == right[at]) ++at;
    return at == length;
  }
  for (std::size_t at = 0; at < length - kBlock; at += kBlock) {
    if (differ(at, std::uint64_t{})) return false;
  }
  return !differ(length - kBlock, std::uint64_t{});
}

}  // namespace Quillon9
