#pragma once

#include <cstddef>
#include <string>

namespace Quillon9 {

/// Texts of a document in messages for people: of bounded length, and unable to write lines of their own into a log.
class BoundedText {
 public:
  /// The length of a text or path in a failure, in bytes.
  static constexpr std::size_t kMost = 4096;

  /// \p text, or its first bytes and "...", \p most bytes in all. No character of UTF-8 is divided.
  static std::string CutEnd(std::string const& text, std::size_t most = kMost);
  /// \p text, or its first bytes, "..." and its last bytes, \p most bytes in all. No character of UTF-8 is divided.
  static std::string CutMiddle(std::string text, std::size_t most = kMost);
  /// \p text with control characters, line separators and the characters that change the direction of text as escape
  /// sequences: `\n`, `\x1B`, `\u{202E}`. A byte that belongs to no character, of the current locale or of UTF-8, is
  /// written as `\xE9`. A NUL byte does not end the text.
  static std::string Escape(std::string const& text);
};

}  // namespace Quillon9
