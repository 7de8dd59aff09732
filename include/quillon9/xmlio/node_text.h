#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/export.h"

namespace Quillon9 {

class CTreeMemory;
struct CTreeString;

/// The text of a node of a tree: bytes in the tree's memory, with a zero behind them. It becomes a std::string only for
/// who asks for one, and when it is long. Nearly all are short and only looked at: a std::string in each node would
/// double the memory of a tree and have each node visited at its end. For the nodes; callers ask those.
///
/// The memory is that of the node's document, or null for a node by itself; it is the same in all calls. One thread at
/// a time, for the const operations too.
class QUILLON9_API CNodeText {
 public:
  CNodeText() = default;
  CNodeText(CNodeText const&) = delete;
  CNodeText& operator=(CNodeText const&) = delete;

  /// The bytes, until the next call of another operation.
  std::string_view GetView() const {
    if (m_place == 0) return std::string_view("", 0);
    return IsString() ? ViewOfString() : std::string_view(Bytes(), Size());
  }
  /// The same as a string, which lives until the next Append() or Free().
  std::string const& GetString(CTreeMemory* memory) const;
  /// Append \p text. Appending n bytes in any number of runs costs O(n).
  void Append(std::string_view text, CTreeMemory* memory);
  /// The same for ASCII without zeros and carriage returns, looked at while it is copied. False when the text is
  /// another one, or has to become a string: nothing has changed then.
  bool AppendPlain(std::string_view text, CTreeMemory* memory) {
    return m_place == 0 && memory != nullptr ? SetPlain(text, *memory) : AppendMorePlain(text, memory);
  }
  /// Give all memory back; the text is empty then. Where it is not called, the bytes go with the tree's memory, and
  /// those of a node by itself are lost.
  void Free(CTreeMemory* memory) noexcept;

 private:
  static constexpr std::uintptr_t kIsString = 1;
  /// Two bytes in front of the text: how long it is, and how long it may get where it stands.
  static constexpr std::size_t kHead = 2;

  std::string_view ViewOfString() const;
  bool IsPart(std::string_view text) const;
  void BecomeString(CTreeMemory* memory, std::size_t capacity) const;
  char* Reserve(std::size_t size, CTreeMemory* memory);
  void Commit(char* end);
  bool SetPlain(std::string_view text, CTreeMemory& memory);
  bool AppendMorePlain(std::string_view text, CTreeMemory* memory);
  void Move(std::size_t size, CTreeMemory& memory);
  static std::size_t GranulesFor(std::size_t size);
  void Place(char* bytes, std::size_t granules);
  void FreeBytes(CTreeMemory* memory) const noexcept;

  bool IsString() const { return (m_place & kIsString) != 0; }
  CTreeString* String() const { return reinterpret_cast<CTreeString*>(m_place & ~kIsString); }
  char* Bytes() const { return reinterpret_cast<char*>(m_place); }
  std::size_t Size() const { return static_cast<unsigned char>(Bytes()[-2]); }
  std::size_t Capacity() const { return static_cast<unsigned char>(Bytes()[-1]); }

  mutable std::uintptr_t m_place = 0;  // the first byte, 0 for none; or the string with the bit kIsString
};

}  // namespace Quillon9
