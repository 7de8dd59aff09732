#pragma once

#include <cstddef>
#include <string>

namespace Quillon9 {

/// Texts of a document in messages for people: of bounded length, and unable to write lines of their own into a log.
class BoundedText {
 public:
  static constexpr std::size_t kMost = 4096;

  /// \p text, or its first \p most bytes with "..." after them. A character of UTF-8 is not divided.
  static std::string CutEnd(std::string const& text, std::size_t most = kMost);
  /// \p text, or its first and last bytes with "..." in the middle, \p most bytes in all.
  static std::string CutMiddle(std::string text, std::size_t most = kMost);
  /// \p text with control characters, line separators and the characters that change the direction of text as escape
  /// sequences: `\n`, `\x1B`, `\u{202E}`. A NUL byte is one of them.
  static std::string Escape(std::string const& text);
};

}  // namespace Quillon9
