#include "quillon9/binding/node_pool.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/address_sanitizer.h"
#include "quillon9/binding/collection.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kFirstNodes = 2;
constexpr std::size_t kMostNodes = 128;

}  // namespace

/// The nodes follow this header.
struct CNodePool::Block {
  Block* older;
  std::size_t nodes;  ///< capacity
  std::size_t taken;  ///< number of nodes ever taken from this block

  void* At(std::size_t index) { return reinterpret_cast<unsigned char*>(this + 1) + index * sizeof(CNode); }
};

struct CNodePool::Free {
  Free* next;
};

void* CNodePool::Take() {
  static_assert(alignof(CNode) <= alignof(Block) && sizeof(CNode) >= sizeof(Free), "does not fit");
  if (m_free == nullptr && (m_newest == nullptr || m_newest->taken == m_newest->nodes)) {
    std::size_t const nodes = m_newest == nullptr ? kFirstNodes : std::min(2 * m_newest->nodes, kMostNodes);
    m_newest = new (::operator new(sizeof(Block) + nodes * sizeof(CNode))) Block{m_newest, nodes, 0};
  }
  ++m_count;
  if (m_free == nullptr) return m_newest->At(m_newest->taken++);
  ASAN_UNPOISON_MEMORY_REGION(m_free, sizeof(CNode));
  return std::exchange(m_free, m_free->next);
}

void CNodePool::Give(void* storage) noexcept {
  Free*& list = m_pauses == 0 ? m_free : m_held;
  list = new (storage) Free{list};
  ASAN_POISON_MEMORY_REGION(storage, sizeof(CNode));
  if (--m_count == 0 && m_pauses == 0) Clear();
}

void CNodePool::EndPause() noexcept {
  if (--m_pauses != 0) return;
  while (m_held != nullptr) {
    Free* const storage = m_held;
    ASAN_UNPOISON_MEMORY_REGION(storage, sizeof(CNode));
    m_held = storage->next;
    storage->next = m_free;
    m_free = storage;
    ASAN_POISON_MEMORY_REGION(storage, sizeof(CNode));
  }
  if (m_count == 0) Clear();
}

void CNodePool::Clear() noexcept {
  m_free = nullptr;
  while (m_newest != nullptr) {
    Block* const block = m_newest;
    m_newest = block->older;
    ASAN_UNPOISON_MEMORY_REGION(block->At(0), block->nodes * sizeof(CNode));
    ::operator delete(block);
  }
}

}  // namespace Quillon9
