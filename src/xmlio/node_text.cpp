#include "quillon9/xmlio/node_text.h"

#include <algorithm>
#include <cstring>
#include <memory>

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

void CNodeText::Grow(std::size_t size, CTreeMemory& memory) {
  std::size_t const capacity = CapacityFor(std::min(std::max<std::size_t>(size, 2 * m_size), kMostBytes));
  auto* const bytes = static_cast<char*>(memory.Allocate(capacity + 1));
  if (m_place != nullptr) {
    std::memcpy(bytes, Bytes(), m_size);
    memory.Free(Bytes(), m_capacity + std::size_t{1});
  }
  m_place = bytes;
  m_capacity = static_cast<std::uint32_t>(capacity);
}

void CNodeText::Append(std::string_view text, CTreeMemory* memory) {
  if (text.empty()) return;
  if (m_capacity != kIsString) {
    std::size_t const size = m_size + text.size();
    if (size <= kMostBytes && memory != nullptr) {
      if (size > m_capacity) Grow(size, *memory);
      std::memcpy(Bytes() + m_size, text.data(), text.size());
      Bytes()[size] = '\0';
      m_size = static_cast<std::uint32_t>(size);
      return;
    }
    BecomeString(memory, size);
  }
  String()->text.append(text);
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
