#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "base/text_copy.h"

namespace Quillon9 {

/// Fills room that was reserved for text, from front to back. Builds with assertions check that the text fits in the
/// room; in others the caller's sum must be right, and a cursor costs no more than a pointer.
class CTextCursor {
 public:
  /// PutAgain() may use this many bytes after its text.
  static constexpr std::size_t kOverrun = sizeof(std::uint64_t) - 1;

  /// \p start is followed by \p room bytes.
  CTextCursor(char* start, [[maybe_unused]] std::size_t room)
      : m_start(start),
        m_at(start)
#ifndef NDEBUG
        ,
        m_end(start + room)
#endif
  {
  }

  /// Return where the next byte goes.
  char const* At() const { return m_at; }
  /// Return how many bytes have been put.
  std::size_t Written() const { return static_cast<std::size_t>(m_at - m_start); }

  void Put(char byte) {
    Require(1);
    *m_at++ = byte;
  }
  void Put(char byte, std::size_t count) {
    Require(count);
    for (; count != 0; --count) *m_at++ = byte;
  }
  /// Put a literal without its zero.
  template <std::size_t size>
  void Put(char const (&literal)[size]) {
    Require(size - 1);
    std::memcpy(m_at, literal, size - 1);
    m_at += size - 1;
  }
  /// Put \p text up to its first zero byte. Needs room for all of it.
  void PutName(std::string_view text) {
    std::size_t at = PutUntil(text, HasZero());
    for (; at < text.size() && text[at] != '\0'; ++at) *m_at++ = text[at];
  }
  /// Put \p text up to a block of eight bytes for which \p stops returns true, as CopyBlocks() does. Needs room for all
  /// of it. Returns how many bytes were put.
  template <class Stops>
  [[gnu::always_inline]] std::size_t PutUntil(std::string_view text, Stops stops) {
    Require(text.size());
    std::size_t const copied = CopyBlocks(m_at, text, stops);
    m_at += copied;
    return copied;
  }
  /// Put \p text in whole blocks of eight bytes, which is faster. Needs kOverrun more bytes of room, and as many must be
  /// readable after \p text.
  void PutAgain(std::string_view text) {
    Require(text.size() + kOverrun);
    for (std::size_t at = 0; at < text.size(); at += sizeof(std::uint64_t)) {
      StoreBlock(m_at + at, ByteBlocks::Load<std::uint64_t>(text.data() + at));
    }
    m_at += text.size();
  }

 private:
  void Require([[maybe_unused]] std::size_t count) const {
    assert(count <= static_cast<std::size_t>(m_end - m_at) && "more text than room was reserved for");
  }

  char* m_start;
  char* m_at;
#ifndef NDEBUG
  char* m_end;
#endif
};

}  // namespace Quillon9
