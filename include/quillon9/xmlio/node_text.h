#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/export.h"

namespace Quillon9 {

class CTreeMemory;
struct CTreeString;

/// The text of a node of a tree: bytes in the tree's memory, followed by a zero. It becomes a std::string only on
/// request and when it is long. Nearly all texts are short and only looked at: a std::string in each node would double
/// the memory of a tree and require a visit to each node at its end. For the nodes; other callers ask those.
///
/// The memory is that of the node's document, or null for a standalone node, and is the same in all calls. Only one
/// thread at a time may use a text, even for the const operations.
class QUILLON9_API CNodeText {
 public:
  CNodeText() = default;
  CNodeText(CNodeText const&) = delete;
  CNodeText& operator=(CNodeText const&) = delete;

  /// Return the bytes, until the next call of another operation.
  std::string_view GetView() const {
    if (m_place == 0) return std::string_view("", 0);
    return IsString() ? ViewOfString() : std::string_view(Bytes(), Size());
  }
  /// Return the same as a string, which lives until the next Append() or Free().
  std::string const& GetString(CTreeMemory* memory) const;
  /// Append \p text. Appending n bytes in any number of pieces costs O(n).
  void Append(std::string_view text, CTreeMemory* memory);
  /// Append ASCII without zeros and carriage returns, checking it while copying. Return false, with nothing changed, if
  /// the text is not of this kind or has to become a string.
  bool AppendPlain(std::string_view text, CTreeMemory* memory) {
    return m_place == 0 && memory != nullptr ? SetPlain(text, *memory) : AppendMorePlain(text, memory);
  }
  /// Release all memory; the text is empty afterwards. Without this call, the bytes go with the tree's memory, and
  /// those of a standalone node leak.
  void Free(CTreeMemory* memory) noexcept;

 private:
  static constexpr std::uintptr_t kIsString = 1;
  /// Two bytes in front of the text hold its length and how long it may get in place.
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
