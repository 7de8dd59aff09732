#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/byte_blocks.h"

namespace Quillon9 {

/// Hashes of text for tables whose keys a document chooses. The seed is drawn once per process, so the author of a
/// document cannot know which texts collide. Any thread.
namespace SeededHash {

inline constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
/// OfText() for texts of up to this size is OfShort().
inline constexpr std::size_t kShort = sizeof(std::uint64_t);

/// Values that an outsider cannot know.
struct Secret {
  std::uint64_t start;   ///< the initial value of a hash
  std::uint64_t factor;  ///< for one of the two factors: a text that made a factor 0 would cancel the other
};

/// Return random numbers of the system, or of the clock where the system has none yet.
Secret DrawSecret();

inline Secret const& TheSecret() {
  static Secret const secret = DrawSecret();
  return secret;
}

/// Combine both halves of the product, so that every bit of either factor has an effect.
inline std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  Wide const product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// The bytes of a text of up to kShort bytes as a word, which identifies the text among those of its size.
inline std::uint64_t ShortWord(std::string_view text) { return ByteBlocks::LoadShort(text.data(), text.size(), 0); }

/// Hash the text of \p size bytes that has this ShortWord().
inline std::uint64_t OfShort(std::uint64_t word, std::size_t size) {
  Secret const& secret = TheSecret();
  return Mix(secret.start ^ size * kOdd ^ word, secret.factor);
}

/// Hash a text of more than kShort bytes.
std::uint64_t OfLong(std::string_view text);

/// Hash any text.
inline std::uint64_t OfText(std::string_view text) {
  return text.size() <= kShort ? OfShort(ShortWord(text), text.size()) : OfLong(text);
}

}  // namespace SeededHash

}  // namespace Quillon9
