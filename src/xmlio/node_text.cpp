#include "quillon9/xmlio/node_text.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

#include "base/text_copy.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

namespace {

/// A longer text is a string from the start: it moves less often when it grows, and its destruction frees the memory.
constexpr std::size_t kMostBytes = CTreeMemory::kLargest - 3;

}  // namespace

std::string_view CNodeText::ViewOfString() const { return String()->text; }

std::string const& CNodeText::GetString(CTreeMemory* memory) const {
  static std::string const* const none = new std::string;
  if (m_place == 0) return *none;
  if (!IsString()) BecomeString(memory, Size());
  return String()->text;
}

void CNodeText::BecomeString(CTreeMemory* memory, std::size_t capacity) const {
  auto string = std::make_unique<CTreeString>(memory);
  string->text.reserve(capacity);
  string->text.assign(GetView());
  FreeBytes(memory);
  m_place = reinterpret_cast<std::uintptr_t>(string.release()) | kIsString;
}

void CNodeText::FreeBytes(CTreeMemory* memory) const noexcept {
  if (m_place != 0) memory->Free(Bytes() - kHead, kHead + Capacity() + 1);
}

/// Start an empty text in this many granules at \p bytes.
inline void CNodeText::Place(char* bytes, std::size_t granules) {
  m_place = reinterpret_cast<std::uintptr_t>(bytes + kHead);
  bytes[1] = static_cast<char>(static_cast<unsigned char>(granules * CTreeMemory::kGranule - kHead - 1));
}

/// The number of granules for a text of \p size bytes with its head and its zero.
inline std::size_t CNodeText::GranulesFor(std::size_t size) { return (kHead + size) / CTreeMemory::kGranule + 1; }

/// Move the text to storage for \p size bytes in total.
void CNodeText::Move(std::size_t size, CTreeMemory& memory) {
  std::size_t const old = m_place != 0 ? Size() : 0;
  std::size_t const granules = GranulesFor(std::min(std::max(size, 2 * old), kMostBytes));
  auto* const bytes = static_cast<char*>(memory.AllocateGranules(granules));
  if (old != 0) std::memcpy(bytes + kHead, Bytes(), old);
  FreeBytes(&memory);
  Place(bytes, granules);
  Commit(Bytes() + old);
}

/// Return where \p size more bytes and a zero are to be written; null if the text is or must become a string.
inline char* CNodeText::Reserve(std::size_t size, CTreeMemory* memory) {
  if (IsString() || memory == nullptr) return nullptr;
  std::size_t const total = (m_place != 0 ? Size() : 0) + size;
  if (total > kMostBytes) return nullptr;
  if (m_place == 0 || total > Capacity()) Move(total, *memory);
  return Bytes() + Size();
}

/// Make the bytes that were written there part of the text.
inline void CNodeText::Commit(char* end) {
  *end = '\0';
  Bytes()[-2] = static_cast<char>(static_cast<unsigned char>(end - Bytes()));
}

/// Return whether \p text lies within these bytes, which may move.
bool CNodeText::IsPart(std::string_view text) const {
  if (m_place == 0 || IsString()) return false;
  std::less<> const isBelow;
  return !isBelow(text.data(), Bytes()) && isBelow(text.data(), Bytes() + Size());
}

void CNodeText::Append(std::string_view text, CTreeMemory* memory) {
  if (text.empty()) return;
  if (IsPart(text)) return Append(std::string(text), memory);
  if (char* const to = Reserve(text.size(), memory)) {
    Commit(to + CopyBlocks(to, text, [](std::uint64_t) { return false; }));
    return;
  }
  if (!IsString()) BecomeString(memory, GetView().size() + text.size());
  String()->text.append(text);
}

/// AppendPlain() for the first text, which is nearly always the only one.
bool CNodeText::SetPlain(std::string_view text, CTreeMemory& memory) {
  if (text.size() > kMostBytes) return false;
  std::size_t const granules = GranulesFor(text.size());
  auto* const bytes = static_cast<char*>(memory.AllocateGranules(granules));
  if (CopyBlocks(bytes + kHead, text, HasUnplain()) != text.size()) {
    memory.Free(bytes, granules * CTreeMemory::kGranule);
    return false;
  }
  Place(bytes, granules);
  Commit(Bytes() + text.size());
  return true;
}

bool CNodeText::AppendMorePlain(std::string_view text, CTreeMemory* memory) {
  if (IsPart(text)) return false;
  char* const to = Reserve(text.size(), memory);
  if (to == nullptr) return false;
  bool const isPlain = CopyBlocks(to, text, HasUnplain()) == text.size();
  Commit(isPlain ? to + text.size() : to);  // the first blocks of other text have overwritten the zero
  return isPlain;
}

void CNodeText::Free(CTreeMemory* memory) noexcept {
  if (IsString()) {
    delete String();
  } else {
    FreeBytes(memory);
  }
  m_place = 0;
}

}  // namespace Quillon9
