#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/text_copy.h"
#include "base/text_cursor.h"
#include "fastinfoset/constants.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// Fail with "Failed to write FastInfoset. " and \p reason.
/// \throws CQnException always.
[[noreturn]] void ThrowFastInfosetWriteFailure(std::string const& reason);

/// Collects the octets of a Fast Infoset document for a stream, and writes the forms of integers and octet strings in
/// Rec. ITU-T X.891, C.22 to C.28. A form is named after the bit of its first octet on which it begins, bit 1 being the
/// most significant; \p leading holds the bits before it.
class COctetSink {
 public:
  /// \p stream is borrowed.
  explicit COctetSink(CBinaryStream& stream) : m_stream(&stream) {}
  COctetSink(COctetSink const&) = delete;
  COctetSink& operator=(COctetSink const&) = delete;

  void Octet(std::uint32_t octet) {
    CTextCursor to = Reserve(1);
    to.Put(CharOf(octet));
    Commit(to);
  }
  void Octets(std::string_view octets) {
    CTextCursor to = Reserve(octets.size());
    to.PutUntil(octets, [](std::uint64_t) { return false; });
    Commit(to);
  }
  /// Pass the collected octets to the stream.
  void Flush();
  /// From now on, keep the octets instead, until Drop().
  ///@{
  void Hold() { m_stream = nullptr; }
  std::string_view Held() const { return {m_octets.get(), m_size}; }
  void Drop() { m_size = 0; }
  ///@}
  /// Do so when a block of 4,096 octets is full. Each append to a stream locks, so octets go there in blocks.
  void FlushIfFull() {
    if (m_size >= kBlockSize) Flush();
  }

  /// \p value is in the range 1 to 2^20; for the last function it may also be 0.
  void Integer1To2pw20Bit2(std::uint32_t leading, unsigned long value);
  /// The longest form, above 526,368, stores one more than the standard's form; the readers of this library do not undo
  /// it.
  void Integer1To2pw20Bit3(std::uint32_t leading, unsigned long value) {
    if (value >= fi::kInteger3Medium.m_first) return LongIntegerBit3(leading, value);
    Octet(leading | static_cast<std::uint32_t>(value - 1));
  }
  void Integer1To2pw20Bit4(std::uint32_t leading, unsigned long value) {
    if (value >= fi::kInteger4Medium.m_first) return LongIntegerBit4(leading, value);
    Octet(leading | static_cast<std::uint32_t>(value - 1));
  }
  void Integer0To2pw20Bit2(std::uint32_t leading, unsigned long value);

  /// Write the length and the octets.
  /// \throws CQnException "Failed to write FastInfoset. An octet string may not be empty.", or "... An octet string is
  ///         too long [%zu octets]" if the length does not fit in its 32 bits.
  void NonEmptyOctetStringBit2(std::uint32_t leading, std::string_view octets);
  void NonEmptyOctetStringBit5(std::uint32_t leading, std::string_view octets);
  void NonEmptyOctetStringBit7(std::uint32_t leading, std::string_view octets);
  /// The last function for non-empty ASCII without zero bytes, which it checks while copying. Return false, with
  /// nothing changed, for other text.
  bool AsciiStringBit7(std::uint32_t leading, std::string_view text);

 private:
  static constexpr std::size_t kBlockSize = 4096;

  void LongIntegerBit3(std::uint32_t leading, unsigned long value);
  void LongIntegerBit4(std::uint32_t leading, unsigned long value);
  void Stored(fi::Form const& form, std::uint32_t leading, unsigned long value, int moreOctets);
  void OctetString(std::uint32_t leading, std::string_view octets, fi::Form const& medium, fi::Form const& large);

  static char CharOf(std::uint32_t octet) { return static_cast<char>(static_cast<unsigned char>(octet)); }
  CTextCursor Reserve(std::size_t more) {
    if (m_capacity - m_size < more) Grow(more);
    return {m_octets.get() + m_size, more};
  }
  void Commit(CTextCursor const& written) { m_size += written.Written(); }
  void Grow(std::size_t more);

  CBinaryStream* m_stream;  // null: the octets stay here
  // A buffer like std::string, but with fewer steps for each octet.
  std::unique_ptr<char[]> m_octets;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};

// Inline: most values of a document pass through here.
inline bool COctetSink::AsciiStringBit7(std::uint32_t leading, std::string_view text) {
  if (text.empty() || text.size() >= fi::kLength7Large.m_first) return false;
  constexpr std::size_t kLength = 2;  // the octets of the longest length that is possible here
  CTextCursor to = Reserve(kLength + text.size());
  if (text.size() < fi::kLength7Medium.m_first) {
    to.Put(CharOf(leading | static_cast<std::uint32_t>(text.size() - 1)));
  } else {
    to.Put(CharOf(leading | fi::kLength7Medium.m_pattern));
    to.Put(CharOf(static_cast<std::uint32_t>(text.size() - fi::kLength7Medium.m_first)));
  }
  auto const isOther = [](std::uint64_t block) {
    return ((block | ByteBlocks::Below(block, 1)) & ByteBlocks::kHighBits) != 0;
  };
  if (to.PutUntil(text, isOther) != text.size()) return false;
  Commit(to);
  return true;
}

}  // namespace Quillon9
