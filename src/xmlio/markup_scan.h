#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/byte_blocks.h"
#include "text/utf8_scan.h"

namespace Quillon9 {

/// Finds the places in XML text at which something has to be decided. UTF-8 only.
namespace MarkupScan {

/// What a byte may be, as bits.
enum ByteClass : std::uint8_t {
  kSpace = 1,       ///< white space
  kNameStart = 2,   ///< begins a name; ASCII, without the colon
  kNamePart = 4,    ///< may be part of a name; so may a colon and everything beyond ASCII, for all that is known
  kPlainPart = 8,   ///< may be part of a name; ASCII, without the colon
  kCharacter = 16,  ///< a whole character that a document may have
};

namespace detail {

constexpr bool IsLetter(int byte) { return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z'); }

constexpr std::uint8_t ClassOf(int byte) {
  bool const isSpace = byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
  bool const isStart = IsLetter(byte) || byte == '_';
  bool const isPlainPart = isStart || (byte >= '0' && byte <= '9') || byte == '-' || byte == '.';
  bool const isPart = isPlainPart || byte == ':' || byte >= 0x80;
  bool const isCharacter = isSpace || (byte > ' ' && byte < 0x80);
  return static_cast<std::uint8_t>((isSpace ? kSpace : 0) | (isStart ? kNameStart : 0) | (isPart ? kNamePart : 0) |
                                   (isPlainPart ? kPlainPart : 0) | (isCharacter ? kCharacter : 0));
}

constexpr std::array<std::uint8_t, 256> MakeClasses() {
  std::array<std::uint8_t, 256> classes{};
  for (int byte = 0; byte < 256; ++byte) classes[static_cast<std::size_t>(byte)] = ClassOf(byte);
  return classes;
}

inline constexpr std::array<std::uint8_t, 256> kClasses = MakeClasses();

}  // namespace detail

inline bool Is(ByteClass wanted, char byte) {
  return (detail::kClasses[static_cast<unsigned char>(byte)] & wanted) != 0;
}

/// Return the first byte from \p at on that is not white space. The caller knows that there is one.
inline char const* SkipSpace(char const* at) {
  while (Is(kSpace, *at)) ++at;
  return at;
}

/// Where a run of characters stands.
enum class Within { kText, kDoubleQuotes, kSingleQuotes };

/// A block with high bits where \p block has bytes at which a run ends or has to be looked at: angle brackets,
/// ampersands, the quotation mark around it, control characters, and all beyond ASCII. The lowest bit is reliable.
template <Within kWithin>
constexpr std::uint64_t Stops(std::uint64_t block) {
  using namespace ByteBlocks;
  // The two brackets differ in one bit, and so does either quotation mark from the ampersand.
  constexpr unsigned char kBit = kWithin == Within::kText           ? 0
                                 : kWithin == Within::kDoubleQuotes ? '&' ^ '"'
                                                                    : '&' ^ '\'';
  std::uint64_t const bracket = Equal(block & ~(kOnes * 0x02), '<');
  std::uint64_t const ampersand = Equal(block & ~(kOnes * kBit), '&' & ~kBit);
  return (bracket | ampersand | Below(block, ' ') | block) & kHighBits;
}

/// Return the first such byte of [at, end), or \p end.
template <Within kWithin>
inline char const* FindStop(char const* at, char const* end) {
  constexpr std::ptrdiff_t kBlock = sizeof(std::uint64_t);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  for (; end - at >= kBlock; at += kBlock) {
    std::uint64_t const stops = Stops<kWithin>(ByteBlocks::Load<std::uint64_t>(at));
    if (stops != 0) return at + __builtin_ctzll(stops) / 8;
  }
#else
  while (end - at >= kBlock && Stops<kWithin>(ByteBlocks::Load<std::uint64_t>(at)) == 0) at += kBlock;
#endif
  while (at != end && (Stops<kWithin>(static_cast<unsigned char>(*at)) & 0x80) == 0) ++at;
  return at;
}

/// Return the length of the character beyond ASCII that begins at \p at; 0 if it is ill-formed or no document may have
/// it.
inline std::size_t CharacterLength(char const* at, char const* end) {
  auto const* const bytes = reinterpret_cast<std::uint8_t const*>(at);
  std::size_t const length = SequenceLength(bytes, static_cast<std::size_t>(end - at));
  bool const isNone = bytes[0] == 0xEF && length == 3 && bytes[1] == 0xBF && bytes[2] >= 0xBE;  // U+FFFE, U+FFFF
  return isNone ? 0 : length;
}

/// Return the end of the characters beyond ASCII that begin at \p at; null if one is wrong.
inline char const* SkipBeyondAscii(char const* at, char const* end) {
  while (at != end && static_cast<unsigned char>(*at) >= 0x80) {
    std::size_t const length = CharacterLength(at, end);
    if (length == 0) return nullptr;
    at += length;
  }
  return at;
}

/// Return the end of the character of any kind that begins at \p at; null if it is wrong.
inline char const* SkipCharacter(char const* at, char const* end) {
  if (Is(kCharacter, *at)) return at + 1;
  std::size_t const length = static_cast<unsigned char>(*at) < 0x80 ? 0 : CharacterLength(at, end);
  return length != 0 ? at + length : nullptr;
}

/// Whether the text of [at, end) begins with \p wanted.
inline bool StartsWith(char const* at, char const* end, std::string_view wanted) {
  return static_cast<std::size_t>(end - at) >= wanted.size() && std::string_view(at, wanted.size()) == wanted;
}

/// Whether \p text is ASCII.
inline bool IsAscii(std::string_view text) {
  auto const* const bytes = reinterpret_cast<std::uint8_t const*>(text.data());
  return AsciiLength(bytes, text.size()) == text.size();
}

/// Return the position of the colon of the name \p text, 0 if it has none, or npos if it is no QName (Namespaces in
/// XML 1.0, W3C, section 4).
std::size_t FindColon(std::string_view text);

}  // namespace MarkupScan

}  // namespace Quillon9
