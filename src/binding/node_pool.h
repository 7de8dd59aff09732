#pragma once

#include <cstddef>
#include <cstdint>

#include "base/fast_paths.h"
#include "quillon9/binding/collection.h"

namespace Quillon9 {

/// Allocates the nodes of a collection in blocks that grow with it, instead of one by one, which makes reading cheaper.
/// It exists only while the collection has nodes, and is in front of the first of them: most collections have few or
/// none, and pay for one pointer. One thread at a time.
class NodePool {
 public:
  /// While a Pause exists, storage that is given back is not reused, so a node that existed before can be recognised by
  /// its address.
  class Pause {
   public:
    /// Start the pause. \p pool must outlive it.
    explicit Pause(NodePool*& pool) noexcept : m_pool(pool), m_isPaused(pool != nullptr) {
      if (m_isPaused) ++m_pool->m_pauses;
    }
    ~Pause() {
      if (m_isPaused) EndPause(m_pool);
    }
    Pause(Pause const&) = delete;
    Pause& operator=(Pause const&) = delete;

   private:
    NodePool*& m_pool;
    bool const m_isPaused;  // without nodes there is nothing to recognise
  };

  NodePool(NodePool const&) = delete;
  NodePool& operator=(NodePool const&) = delete;

  /// Allocate storage for a node from \p pool, which is created for the first one.
  /// \throws std::bad_alloc when out of memory; the pool is then unchanged.
  static void* Take(NodePool*& pool);
  /// Make room for \p count nodes in one block, if there is no pool yet.
  /// \throws std::bad_alloc when out of memory; the pool is then unchanged.
  static void Reserve(NodePool*& pool, std::size_t count);
  /// Free \p pool, which may be null, after Reserve() that no Take() followed.
  static void DropUnused(NodePool*& pool) noexcept {
    if (pool != nullptr && pool->m_count == 0) Delete(pool);
  }
  /// Take back the storage of a node, which has been destroyed. When the last node comes back, the pool is freed and
  /// becomes null, at the end of a Pause if there is one.
  static void Give(NodePool*& pool, void* storage) noexcept;

 private:
  /// The nodes follow this header.
  struct Block {
    Block* older;
    std::uint32_t nodes;  // capacity
    std::uint32_t taken;  // number of nodes ever taken from this block

    void* At(std::size_t index) { return reinterpret_cast<unsigned char*>(this + 1) + index * sizeof(CNode); }
  };
  struct Free {
    Free* next;
  };

  explicit NodePool(std::uint32_t firstNodes) : m_first{nullptr, firstNodes, 0} {}
  static NodePool* New(std::uint32_t nodes);
  void* TakeOne();
  static void EndPause(NodePool*& pool) noexcept;
  static void Delete(NodePool*& pool) noexcept;

  static constexpr std::uint32_t kFirstNodes = kNodePool.IsOn() ? 2 : 1;
  static constexpr std::uint32_t kMostNodes = kNodePool.IsOn() ? 128 : 1;

  Block* m_newest = &m_first;
  Free* m_free = nullptr;
  Free* m_held = nullptr;     // given back during a pause
  std::uint32_t m_count = 0;  // number of nodes in use
  std::uint32_t m_pauses = 0;
  Block m_first;  // the last member, because nodes follow it
};

}  // namespace Quillon9
