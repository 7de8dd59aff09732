#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "records/octet_input.h"

namespace Quillon9 {

/// A place in a text of any length.
struct TextPosition {
  std::uint64_t offset = 0;  ///< in bytes
  std::uint64_t line = 1;    ///< CR LF, CR and LF end a line
  std::uint64_t column = 1;  ///< in characters, from 1

  /// Go over \p text, which is UTF-8. The CR of a CR LF may end one text, and the LF begin the next.
  void Pass(std::string_view text);

 private:
  bool m_isAfterReturn = false;
};

/// A part of a long text, which grows at its end and shrinks at its start. Positions count from its start.
class TextWindow {
 public:
  static constexpr std::size_t kNone = ~std::size_t{0};

  /// What a window throws that would have to become larger than it may be.
  struct Full {};
  /// What a window throws that would have to read while it may not.
  struct NeedsMore {};

  /// \p input delivers UTF-8 from \p start of the document on, and is borrowed. The window has not much more than \p most
  /// bytes at any time.
  TextWindow(OctetInput& input, TextPosition const& start, std::size_t most)
      : m_input(input), m_most(most), m_start(start) {}

  std::size_t Most() const { return m_most; }
  /// Whether it may read from the input, which can mean to wait.
  void SetMayRead(bool may) { m_mayRead = may; }
  /// Return whether there is a byte at \p at, after reading as much as that takes.
  /// \throws Full; NeedsMore; what the input throws.
  bool Has(std::size_t at) { return at < Size() || Fill(at); }
  char At(std::size_t at) const { return m_bytes[m_first + at]; }
  /// What has been read from \p from on, up to \p to.
  std::string_view Text(std::size_t from, std::size_t to) const { return {m_bytes.data() + m_first + from, to - from}; }
  /// How much has been read.
  std::size_t Size() const { return m_last - m_first; }
  /// Where \p wanted begins from \p from on; kNone if the text ends before. A long search looks at each byte about once.
  std::size_t Find(std::string_view wanted, std::size_t from);

  /// Drop the first \p count bytes, which have been read.
  void Drop(std::size_t count);
  /// Where the window begins.
  TextPosition const& Start() const { return m_start; }

 private:
  bool Fill(std::size_t at);

  OctetInput& m_input;
  std::size_t m_most;
  bool m_mayRead = true;
  std::vector<char> m_bytes;
  std::size_t m_first = 0;
  std::size_t m_last = 0;
  bool m_isAtEnd = false;
  TextPosition m_start;
};

}  // namespace Quillon9
