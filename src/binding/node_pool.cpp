#include "binding/node_pool.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/address_sanitizer.h"

namespace Quillon9 {

void* NodePool::Take(NodePool*& pool) {
  static_assert(alignof(CNode) <= alignof(Block) && sizeof(CNode) >= sizeof(Free), "does not fit");
  static_assert(sizeof(NodePool) % alignof(Block) == 0, "the nodes of the first block do not follow it");
  if (pool == nullptr) pool = New(kFirstNodes);
  return pool->TakeOne();
}

NodePool* NodePool::New(std::uint32_t nodes) {
  return new (::operator new(sizeof(NodePool) + nodes * sizeof(CNode))) NodePool(nodes);
}

void NodePool::Reserve(NodePool*& pool, std::size_t count) {
  if (kNodePool.IsOn() && pool == nullptr && count != 0) pool = New(static_cast<std::uint32_t>(count));
}

void* NodePool::TakeOne() {
  if (m_free == nullptr && m_newest->taken == m_newest->nodes) {
    std::uint32_t const nodes = std::min(2 * m_newest->nodes, kMostNodes);
    m_newest = new (::operator new(sizeof(Block) + nodes * sizeof(CNode))) Block{m_newest, nodes, 0};
  }
  ++m_count;
  if (m_free == nullptr) return m_newest->At(m_newest->taken++);
  ASAN_UNPOISON_MEMORY_REGION(m_free, sizeof(CNode));
  return std::exchange(m_free, m_free->next);
}

void NodePool::Give(NodePool*& pool, void* storage) noexcept {
  Free*& list = pool->m_pauses == 0 ? pool->m_free : pool->m_held;
  list = new (storage) Free{list};
  ASAN_POISON_MEMORY_REGION(storage, sizeof(CNode));
  if (--pool->m_count == 0 && pool->m_pauses == 0) Delete(pool);
}

void NodePool::EndPause(NodePool*& pool) noexcept {
  if (--pool->m_pauses != 0) return;
  while (pool->m_held != nullptr) {
    Free* const storage = pool->m_held;
    ASAN_UNPOISON_MEMORY_REGION(storage, sizeof(CNode));
    pool->m_held = storage->next;
    storage->next = pool->m_free;
    pool->m_free = storage;
    ASAN_POISON_MEMORY_REGION(storage, sizeof(CNode));
  }
  if (pool->m_count == 0) Delete(pool);
}

void NodePool::Delete(NodePool*& pool) noexcept {
  NodePool* const old = std::exchange(pool, nullptr);
  for (Block* block = old->m_newest; block != nullptr;) {
    Block* const older = block->older;
    ASAN_UNPOISON_MEMORY_REGION(block->At(0), block->nodes * sizeof(CNode));
    if (older != nullptr) ::operator delete(block);  // the first one is part of the pool
    block = older;
  }
  ::operator delete(old);
}

}  // namespace Quillon9
