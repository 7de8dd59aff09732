#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quillon9/export.h"

namespace Quillon9 {

/// The append buffer under text streams: a chain of blocks, so that appending never moves what is held already.
/// Allocation may fail with std::bad_alloc; the buffer then holds what was appended up to there. One thread.
class QUILLON9_API CStringBuffer {
 public:
  /// Blocks of 4,095 characters.
  CStringBuffer();
  /// Blocks of \p blockSize bytes, of which one ends the text; at least 2.
  explicit CStringBuffer(unsigned long blockSize);
  CStringBuffer(CStringBuffer const&) = delete;
  CStringBuffer& operator=(CStringBuffer const&) = delete;
  virtual ~CStringBuffer();

  /// Append one character. A zero is held like any other.
  void Append(char character) {
    *Reserve(1) = character;
    Commit(1);
  }
  /// Append \p text up to its terminating zero; null is an empty text.
  void Append(char const* text);
  /// Append \p text up to the first zero in it.
  void Append(std::string const& text);
  /// Append \p length characters, zeros included.
  void Append(char const* text, unsigned long length);
  /// Room for \p count characters in one piece behind the text, to be filled before anything else is done here. What is
  /// left of the current block, if that is too little, stays unused.
  char* Reserve(unsigned long count) {
    if (m_capacity - m_used < count) AddBlock(count);
    return m_current + m_used;
  }
  /// Take up the first \p count characters of the room reserved last into the text.
  void Commit(unsigned long count) {
    m_used += count;
    m_length += count;
    m_current[m_used] = '\0';  // so that one block is always a text, at less than the cost of zero fill
  }
  /// Replace what is held by \p text, which must not be text of this buffer.
  void SetText(char const* text);

  /// Join the blocks to one and return it, zero-terminated. Never null. The buffer keeps owning it: it is valid up
  /// to the next Clear(), SetText() or Empty(), and the next append may change what follows the text.
  char const* GetText();
  /// The text in the pieces in which it is held, valid until the next change. One pass over them copies what GetText()
  /// would join first.
  std::vector<std::string_view> GetBlocks() const;
  /// All characters held.
  unsigned long GetLength() const { return m_length; }

  /// Forget the text but keep the block, when there is exactly one, for the text to come.
  void Empty();
  /// Forget the text and free the memory.
  void Clear();

  /// Open a new block for the next append, and leave the rest of the current one unused. Appending does it when it
  /// has to.
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
