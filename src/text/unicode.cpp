#include "quillon9/text/unicode.h"

#include <cstddef>

#include "text/utf8_scan.h"

namespace Quillon9 {

// clang-format off
std::uint8_t const trailingBytesForUTF8[256] = {
  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
  0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
  1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
  2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 0, 0,
};
// clang-format on

std::uint32_t const offsetsFromUTF8[6] = {0x00000000, 0x00003080, 0x000E2080, 0x03C82080, 0xFA082080, 0x82082080};

std::uint8_t const firstByteMark[7] = {0x00, 0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};

namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::uint32_t kLastCharacter = 0x10FFFF;

enum class Outcome { kTaken, kIllegal, kCutOff };

/// One character taken from a source.
struct Character {
  Outcome outcome;
  std::uint32_t value = 0;
  std::ptrdiff_t units = 0;
};

bool IsHighSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool IsSurrogate(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDFFF; }

// The three encoding forms: each takes a character from a non-empty range, returns its size, and writes it.

struct Utf8 {
  static Character Take(std::uint8_t const* at, std::uint8_t const* end) {
    std::size_t const length = trailingBytesForUTF8[*at] + std::size_t{1};
    if (static_cast<std::ptrdiff_t>(length) > end - at) return {Outcome::kCutOff};
    if (!IsLegalSequence(at, length)) return {Outcome::kIllegal};
    return {Outcome::kTaken, DecodeSequence(at, length), static_cast<std::ptrdiff_t>(length)};
  }
  static std::ptrdiff_t Size(std::uint32_t value) {
    return value < 0x80 ? 1 : value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
  }
  static void Put(std::uint32_t value, std::uint8_t* at) {
    std::ptrdiff_t const size = Size(value);
    for (std::ptrdiff_t i = size - 1; i > 0; --i, value >>= 6) {
      at[i] = static_cast<std::uint8_t>((value & 0x3F) | 0x80);
    }
    at[0] = static_cast<std::uint8_t>(value | firstByteMark[size]);
  }
};

struct Utf16 {
  static Character Take(std::uint16_t const* at, std::uint16_t const* end) {
    if (!IsSurrogate(at[0])) return {Outcome::kTaken, at[0], 1};
    if (!IsHighSurrogate(at[0])) return {Outcome::kIllegal};
    if (end - at < 2) return {Outcome::kCutOff};
    if (!IsLowSurrogate(at[1])) return {Outcome::kIllegal};
    return {Outcome::kTaken, 0x10000 + ((at[0] - 0xD800U) << 10) + (at[1] - 0xDC00U), 2};
  }
  static std::ptrdiff_t Size(std::uint32_t value) { return value < 0x10000 ? 1 : 2; }
  static void Put(std::uint32_t value, std::uint16_t* at) {
    if (value < 0x10000) {
      at[0] = static_cast<std::uint16_t>(value);
      return;
    }
    at[0] = static_cast<std::uint16_t>(0xD800 + ((value - 0x10000) >> 10));
    at[1] = static_cast<std::uint16_t>(0xDC00 + ((value - 0x10000) & 0x3FF));
  }
};

/// Unit is a template parameter because wide characters are not the same type as 32-bit integers.
struct Utf32 {
  template <class Unit>
  static Character Take(Unit const* at, Unit const*) {
    auto const value = static_cast<std::uint32_t>(*at);
    if (IsSurrogate(value) || value > kLastCharacter) return {Outcome::kIllegal};
    return {Outcome::kTaken, value, 1};
  }
  static std::ptrdiff_t Size(std::uint32_t) { return 1; }
  template <class Unit>
  static void Put(std::uint32_t value, Unit* at) {
    *at = static_cast<Unit>(value);
  }
};

/// Reads UTF-32 for the conversion to UTF-8.
struct Utf32Replacing {
  template <class Unit>
  static Character Take(Unit const* at, Unit const* end) {
    if (static_cast<std::uint32_t>(*at) > kLastCharacter) return {Outcome::kTaken, kReplacement, 1};
    return Utf32::Take(at, end);
  }
};

template <class From, class To, class Source, class Target>
unsigned long Convert(Source const* source, Source const* sourceEnd, Target* target, Target* targetEnd) {
  bool const measures = target == nullptr;
  unsigned long count = 0;
  while (source < sourceEnd) {
    Character const character = From::Take(source, sourceEnd);
    if (character.outcome == Outcome::kIllegal && measures) return 0;
    if (character.outcome != Outcome::kTaken) break;
    std::ptrdiff_t const size = To::Size(character.value);
    if (!measures) {
      if (targetEnd - target < size) break;
      To::Put(character.value, target);
      target += size;
    }
    source += character.units;
    count += static_cast<unsigned long>(size);
  }
  return count;
}

template <class From, class To, class Source, class Target>
unsigned long ConvertCounted(Source const* source, unsigned long sourceCount, Target* target,
                             unsigned long targetCount) {
  return Convert<From, To>(source, source + sourceCount, target, target != nullptr ? target + targetCount : nullptr);
}

}  // namespace

bool IsLegalUTF8(std::uint8_t const* bytes, int length) {
  return length > 0 && IsLegalSequence(bytes, static_cast<std::size_t>(length));
}

bool IsLegalUTF8Sequence(std::uint8_t const* source, std::uint8_t const* sourceEnd) {
  return source < sourceEnd && Utf8::Take(source, sourceEnd).outcome == Outcome::kTaken;
}

unsigned long ConvertUTF8toUTF32(std::uint8_t const* sourceStart, std::uint8_t const* sourceEnd,
                                 std::uint32_t* targetStart, std::uint32_t* targetEnd) {
  return Convert<Utf8, Utf32>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF32toUTF8(std::uint32_t const* sourceStart, std::uint32_t const* sourceEnd,
                                 std::uint8_t* targetStart, std::uint8_t* targetEnd) {
  return Convert<Utf32Replacing, Utf8>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF16toUTF32(std::uint16_t const* sourceStart, std::uint16_t const* sourceEnd,
                                  std::uint32_t* targetStart, std::uint32_t* targetEnd) {
  return Convert<Utf16, Utf32>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF32toUTF16(std::uint32_t const* sourceStart, std::uint32_t const* sourceEnd,
                                  std::uint16_t* targetStart, std::uint16_t* targetEnd) {
  return Convert<Utf32, Utf16>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF16toUTF8(std::uint16_t const* sourceStart, std::uint16_t const* sourceEnd,
                                 std::uint8_t* targetStart, std::uint8_t* targetEnd) {
  return Convert<Utf16, Utf8>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long ConvertUTF8toUTF16(std::uint8_t const* sourceStart, std::uint8_t const* sourceEnd,
                                 std::uint16_t* targetStart, std::uint16_t* targetEnd) {
  return Convert<Utf8, Utf16>(sourceStart, sourceEnd, targetStart, targetEnd);
}

unsigned long UTF8ToUnicode(std::uint8_t const* source, unsigned long sourceCount, wchar_t* target,
                            unsigned long targetCount) {
  return ConvertCounted<Utf8, Utf32>(source, sourceCount, target, targetCount);
}

unsigned long UnicodeToUTF8(wchar_t const* source, unsigned long sourceCount, std::uint8_t* target,
                            unsigned long targetCount) {
  return ConvertCounted<Utf32Replacing, Utf8>(source, sourceCount, target, targetCount);
}

unsigned long UTF16ToUnicode(std::uint16_t const* source, unsigned long sourceCount, wchar_t* target,
                             unsigned long targetCount) {
  return ConvertCounted<Utf16, Utf32>(source, sourceCount, target, targetCount);
}

unsigned long UnicodeToUTF16(wchar_t const* source, unsigned long sourceCount, std::uint16_t* target,
                             unsigned long targetCount) {
  return ConvertCounted<Utf32, Utf16>(source, sourceCount, target, targetCount);
}

}  // namespace Quillon9
