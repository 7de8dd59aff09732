#include "quillon9/xmlio/node_text.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>

#include "base/text_copy.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

namespace {

/// A longer text is a string from the start: it moves less when it grows, and its end gives the memory back.
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

/// An empty text in so many granules that begin at \p bytes.
inline void CNodeText::Place(char* bytes, std::size_t granules) {
  m_place = reinterpret_cast<std::uintptr_t>(bytes + kHead);
  bytes[1] = static_cast<char>(static_cast<unsigned char>(granules * CTreeMemory::kGranule - kHead - 1));
}

/// What a text of \p size bytes takes with its head and its zero.
inline std::size_t CNodeText::GranulesFor(std::size_t size) { return (kHead + size) / CTreeMemory::kGranule + 1; }

/// Room for \p size bytes in all.
void CNodeText::Move(std::size_t size, CTreeMemory& memory) {
  std::size_t const old = m_place != 0 ? Size() : 0;
  std::size_t const granules = GranulesFor(std::min(std::max(size, 2 * old), kMostBytes));
  auto* const bytes = static_cast<char*>(memory.AllocateGranules(granules));
  if (old != 0) std::memcpy(bytes + kHead, Bytes(), old);
  FreeBytes(&memory);
  Place(bytes, granules);
  Commit(Bytes() + old);
}

/// Where \p size more bytes and a zero are to be written; null when the text is or must become a string.
inline char* CNodeText::Reserve(std::size_t size, CTreeMemory* memory) {
  if (IsString() || memory == nullptr) return nullptr;
  std::size_t const total = (m_place != 0 ? Size() : 0) + size;
  if (total > kMostBytes) return nullptr;
  if (m_place == 0 || total > Capacity()) Move(total, *memory);
  return Bytes() + Size();
}

/// What was written there counts.
inline void CNodeText::Commit(char* end) {
  *end = '\0';
  Bytes()[-2] = static_cast<char>(static_cast<unsigned char>(end - Bytes()));
}

/// Whether \p text stands in these bytes, which may move.
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

/// AppendPlain() of the first text, as nearly all are.
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
  Commit(isPlain ? to + text.size() : to);  // the zero went with the first blocks of another text
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
