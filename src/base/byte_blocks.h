#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Quillon9 {

/// Examines text eight bytes at a time.
namespace ByteBlocks {

inline constexpr std::uint64_t kOnes = 0x0101010101010101U;
inline constexpr std::uint64_t kHighBits = 0x8080808080808080U;

/// A block with high bits where \p block has bytes below \p limit, which is at most 0x80. Bytes above the lowest such
/// byte may be marked falsely, so the only reliable information is whether there is one.
constexpr std::uint64_t Below(std::uint64_t block, unsigned char limit) { return (block - kOnes * limit) & ~block; }
/// The same for bytes equal to \p byte.
constexpr std::uint64_t Equal(std::uint64_t block, unsigned char byte) { return Below(block ^ (kOnes * byte), 1); }

template <class Block>
Block Load(void const* from) {
  Block block;
  std::memcpy(&block, from, sizeof block);
  return block;
}

/// Up to eight bytes, some of them twice, padded with \p filler: a different word for each text of one length. For a
/// longer text, its first four and last four bytes. Avoids a loop, because the CPU could not predict its end.
inline std::uint64_t LoadShort(char const* from, std::size_t size, unsigned char filler) {
  if (size >= 4) return std::uint64_t{Load<std::uint32_t>(from + size - 4)} << 32 | Load<std::uint32_t>(from);
  std::uint64_t const block = kOnes * filler;
  if (size == 0) return block;
  auto const byte = [&](std::size_t at) { return std::uint64_t{static_cast<unsigned char>(from[at])}; };
  return block << 24 | byte(size - 1) << 16 | byte(size / 2) << 8 | byte(0);
}

/// Whether \p find gives a high bit for some block of \p text; a partial block is padded with \p filler, and some bytes
/// are examined twice.
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
