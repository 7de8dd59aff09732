#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quillon9/export.h"

namespace Quillon9 {

/// The append buffer of text streams: a chain of blocks, so that appending never moves earlier text. Allocation may
/// fail with std::bad_alloc; the buffer then holds everything appended up to that point. One thread.
class QUILLON9_API CStringBuffer {
 public:
  /// Use blocks of 4,095 characters.
  CStringBuffer();
  /// Use blocks of \p blockSize bytes, of which one terminates the text; at least 2.
  explicit CStringBuffer(unsigned long blockSize);
  CStringBuffer(CStringBuffer const&) = delete;
  CStringBuffer& operator=(CStringBuffer const&) = delete;
  virtual ~CStringBuffer();

  /// Append one character. A zero is stored like any other character.
  void Append(char character) {
    *Reserve(1) = character;
    Commit(1);
  }
  /// Append \p text up to its terminating zero; null counts as empty.
  void Append(char const* text);
  /// Append \p text up to the first zero in it.
  void Append(std::string const& text);
  /// Append \p length characters, zeros included.
  void Append(char const* text, unsigned long length);
  /// Return room for \p count characters in one piece after the text, to be filled before any other operation on this
  /// buffer. If the rest of the current block is too small, it stays unused.
  char* Reserve(unsigned long count) {
    if (m_capacity - m_used < count) AddBlock(count);
    return m_current + m_used;
  }
  /// Add the first \p count characters of the room reserved last to the text.
  void Commit(unsigned long count) {
    m_used += count;
    m_length += count;
    m_current[m_used] = '\0';  // so that one block is always a text; cheaper than filling with zeros
  }
  /// Replace the contents by \p text, which must not be text of this buffer.
  void SetText(char const* text);

  /// Join the blocks to one and return it, zero-terminated. Never null. The buffer keeps ownership: the text is valid
  /// until the next Clear(), SetText() or Empty(), and the next append may change what follows it.
  char const* GetText();
  /// The pieces that hold the text, valid until the next change. One pass over them copies what GetText() would first
  /// join.
  std::vector<std::string_view> GetBlocks() const;
  /// The number of characters held.
  unsigned long GetLength() const { return m_length; }

  /// Drop the text. If there is exactly one block, keep it for later text.
  void Empty();
  /// Drop the text and free the memory.
  void Clear();

  /// Open a new block for the next append and leave the rest of the current one unused. Appending does this when
  /// necessary.
  void AddNewBlock();

 private:
  void AddBlock(unsigned long least);
  void JoinBlocks();

  std::vector<char*> m_blocks;
  std::vector<unsigned long> m_blockSizes;
  unsigned long m_blockSize;
  unsigned long m_used = 0;
  unsigned long m_capacity = 0;
  char* m_current = nullptr;
  unsigned long m_length = 0;
};

}  // namespace Quillon9
