#pragma once

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <string>

#include "quillon9/text/encoder.h"
#include "text/utf8_scan.h"
#include "text/utf8_text.h"

namespace Quillon9 {

/// The encoding of the current locale, as far as it matters for conversions, or UTF-8 while Utf8Text is in use. Each
/// function queries libc anew, since the program may change its locale; any thread.
namespace CodePage {

enum class Charset {
  kUtf8,   ///< libc and this library agree on every well-formed sequence, so it is copied
  kAscii,  ///< bytes below 0x80 are ASCII wherever a character begins, and there are no shift states
  kOther,  ///< everything goes through libc
};

/// The charset of the calling thread's locale, or of the process's.
Charset Current();

/// Whether ASCIIOnly(true) is in force, so that nothing is converted.
inline bool IsPassedThrough() { return ASCII_ONLY && !Utf8Text::IsInUse(); }

inline std::uint8_t const* Bytes(char const* text) { return reinterpret_cast<std::uint8_t const*>(text); }

inline bool IsAscii(char const* text, std::size_t length) { return AsciiLength(Bytes(text), length) == length; }
bool IsAscii(wchar_t const* text, std::size_t length);

/// Whether the local code page and UTF-8 have the same bytes for \p text.
bool IsSameInUtf8(Charset charset, char const* text, std::size_t length);

/// Append \p length bytes of UTF-8 to \p target in the local code page, up to a NUL or the first ill-formed sequence.
void AppendFromUtf8(std::string& target, Charset charset, char const* text, std::size_t length);

/// Decode \p text into \p target, which has room for \p length characters. Returns the number of characters.
std::size_t Decode(Charset charset, char const* text, std::size_t length, wchar_t* target);

/// Appends characters to a string in the local code page.
class Writer {
 public:
  Writer(std::string& target, Charset charset) : m_target(target), m_charset(charset) {}

  void Put(std::uint32_t character);
  /// Write the characters that the code page may still hold back.
  void Finish();

 private:
  void PutUtf8(wchar_t character);

  std::string& m_target;
  Charset m_charset;
  std::mbstate_t m_state{};
};

}  // namespace CodePage

}  // namespace Quillon9
