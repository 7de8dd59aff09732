#include "quillon9/xmlio/node_text.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

#include "xmlio/text_copy.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

namespace {

/// A longer text is a string from the start: it moves less when it grows, and its end gives the memory back.
constexpr std::size_t kMostBytes = CTreeMemory::kLargest - 1;

std::size_t CapacityFor(std::size_t size) {
  return (size / CTreeMemory::kGranule + 1) * CTreeMemory::kGranule - 1;  // what the zero leaves of whole granules
}

}  // namespace

std::string_view CNodeText::ViewOfString() const { return String()->text; }

std::string const& CNodeText::GetString(CTreeMemory* memory) const {
  static std::string const* const none = new std::string;
  if (m_capacity != kIsString) {
    if (m_size == 0) return *none;
    BecomeString(memory, m_size);
  }
  return String()->text;
}

void CNodeText::BecomeString(CTreeMemory* memory, std::size_t capacity) const {
  auto string = std::make_unique<CTreeString>(memory);
  string->text.reserve(capacity);
  string->text.assign(GetView());
  if (m_place != nullptr) memory->Free(Bytes(), m_capacity + std::size_t{1});
  m_place = string.release();
  m_size = 0;
  m_capacity = kIsString;
}

/// Room for \p size bytes in all.
void CNodeText::Move(std::size_t size, CTreeMemory& memory) {
  std::size_t const capacity = CapacityFor(std::min(std::max<std::size_t>(size, 2 * m_size), kMostBytes));
  auto* const bytes = static_cast<char*>(memory.Allocate(capacity + 1));
  if (m_place != nullptr) {
    std::memcpy(bytes, Bytes(), m_size);
    memory.Free(Bytes(), m_capacity + std::size_t{1});
  }
  m_place = bytes;
  m_capacity = static_cast<std::uint32_t>(capacity);
}

/// Where \p size more bytes and a zero are to be written; null when the text is or must become a string.
inline char* CNodeText::Reserve(std::size_t size, CTreeMemory* memory) {
  std::size_t const total = m_size + size;
  if (total > kMostBytes || m_capacity == kIsString || memory == nullptr) return nullptr;
  if (total > m_capacity) Move(total, *memory);
  return Bytes() + m_size;
}

/// What was written there counts.
inline void CNodeText::Commit(char* end) {
  *end = '\0';
  m_size = static_cast<std::uint32_t>(end - Bytes());
}

/// Whether \p text stands in these bytes, which may move.
bool CNodeText::IsPart(std::string_view text) const {
  std::less<> const isBelow;
  return !isBelow(text.data(), Bytes()) && isBelow(text.data(), Bytes() + m_size);
}

void CNodeText::Append(std::string_view text, CTreeMemory* memory) {
  if (text.empty()) return;
  if (IsPart(text)) return Append(std::string(text), memory);
  if (char* const to = Reserve(text.size(), memory)) {
    Commit(to + CopyBlocks(to, text, [](std::uint64_t) { return false; }));
    return;
  }
  if (m_capacity != kIsString) BecomeString(memory, m_size + text.size());
  String()->text.append(text);
}

/// AppendPlain() of the first text, as nearly all are.
bool CNodeText::SetPlain(std::string_view text, CTreeMemory& memory) {
  if (text.size() > kMostBytes) return false;
  std::size_t const granules = text.size() / CTreeMemory::kGranule + 1;
  auto* const bytes = static_cast<char*>(memory.AllocateGranules(granules));
  if (CopyBlocks(bytes, text, HasUnplain()) != text.size()) {
    memory.Free(bytes, granules * CTreeMemory::kGranule);
    return false;
  }
  m_place = bytes;
  m_capacity = static_cast<std::uint32_t>(granules * CTreeMemory::kGranule - 1);
  Commit(bytes + text.size());
  return true;
}

bool CNodeText::AppendMorePlain(std::string_view text, CTreeMemory* memory) {
  if (IsPart(text)) return false;
  char* const to = Reserve(text.size(), memory);
  if (to == nullptr) return false;
  bool const isPlain = CopyBlocks(to, text, HasUnplain()) == text.size();
  Commit(isPlain ? to + text.size() : to);  // the zero went with the first blocks of another text
  return isPlain;
}

void CNodeText::Free(CTreeMemory* memory) noexcept {
  if (m_capacity == kIsString) {
    delete String();
  } else if (m_place != nullptr) {
    memory->Free(Bytes(), m_capacity + std::size_t{1});
  }
  m_place = nullptr;
  m_size = m_capacity = 0;
}

}  // namespace Quillon9
