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
    if (m_capacity == kIsString) return ViewOfString();
    return m_size != 0 ? std::string_view(Bytes(), m_size) : std::string_view("", 0);
  }
  /// The same as a string, which lives until the next Append() or Free().
  std::string const& GetString(CTreeMemory* memory) const;
  /// Append \p text. Appending n bytes in any number of runs costs O(n).
  void Append(std::string_view text, CTreeMemory* memory);
  /// The same for ASCII without zeros and carriage returns, looked at while it is copied. False when the text is
  /// another one, or has to become a string: nothing has changed then.
  bool AppendPlain(std::string_view text, CTreeMemory* memory) {
    return m_place == nullptr && memory != nullptr ? SetPlain(text, *memory) : AppendMorePlain(text, memory);
  }
  /// Give all memory back; the text is empty then. Where it is not called, the bytes go with the tree's memory, and
  /// those of a node by itself are lost.
  void Free(CTreeMemory* memory) noexcept;

 private:
  static constexpr std::uint32_t kIsString = ~std::uint32_t{0};

  std::string_view ViewOfString() const;
  bool IsPart(std::string_view text) const;
  void BecomeString(CTreeMemory* memory, std::size_t capacity) const;
  char* Reserve(std::size_t size, CTreeMemory* memory);
  void Commit(char* end);
  bool SetPlain(std::string_view text, CTreeMemory& memory);
  bool AppendMorePlain(std::string_view text, CTreeMemory* memory);
  void Move(std::size_t size, CTreeMemory& memory);

  char* Bytes() const { return static_cast<char*>(m_place); }
  CTreeString* String() const { return static_cast<CTreeString*>(m_place); }

  mutable void* m_place = nullptr;  // the bytes, null for none; or the string
  mutable std::uint32_t m_size = 0;
  mutable std::uint32_t m_capacity = 0;  // without the zero; or kIsString
};

}  // namespace Quillon9
