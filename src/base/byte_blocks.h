#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Quillon9 {

/// Looks at texts eight bytes at once.
namespace ByteBlocks {

inline constexpr std::uint64_t kOnes = 0x0101010101010101U;
inline constexpr std::uint64_t kHighBits = 0x8080808080808080U;

/// A block with high bits where \p block has bytes below \p limit, which is at most 0x80. Above the lowest such byte
/// there may be others, so that only whether there is one counts.
constexpr std::uint64_t Below(std::uint64_t block, unsigned char limit) { return (block - kOnes * limit) & ~block; }
/// The same for bytes that are \p byte.
constexpr std::uint64_t Equal(std::uint64_t block, unsigned char byte) { return Below(block ^ (kOnes * byte), 1); }

template <class Block>
Block Load(void const* from) {
  Block block;
  std::memcpy(&block, from, sizeof block);
  return block;
}

/// Up to eight bytes, some of them twice, filled up with \p filler: another word for each text of one length. The first
/// and the last four of a longer text. Without a loop, whose end nobody could predict.
inline std::uint64_t LoadShort(char const* from, std::size_t size, unsigned char filler) {
  if (size >= 4) return std::uint64_t{Load<std::uint32_t>(from + size - 4)} << 32 | Load<std::uint32_t>(from);
  std::uint64_t const block = kOnes * filler;
  if (size == 0) return block;
  auto const byte = [&](std::size_t at) { return std::uint64_t{static_cast<unsigned char>(from[at])}; };
  return block << 24 | byte(size - 1) << 16 | byte(size / 2) << 8 | byte(0);
}

/// Whether \p find gives a high bit for some block of \p text; a block that is not full has \p filler in it, and some
/// bytes are seen twice.
template <class Find>
bool Any(std::string_view text, unsigned char filler, Find find) {
  constexpr std::size_t kBlock = sizeof(std::uint64_t);
  char const* at = text.data();
  std::size_t left = text.size();
  if (left < kBlock) return (find(LoadShort(at, left, filler)) & kHighBits) != 0;
  std::uint64_t found = find(Load<std::uint64_t>(at + left - kBlock));
  for (; left >= kBlock; left -= kBlock, at += kBlock) found |= find(Load<std::uint64_t>(at));
  return (found & kHighBits) != 0;
}

}  // namespace ByteBlocks

}  // namespace Quillon9
