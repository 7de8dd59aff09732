#pragma once

#include <cstddef>

#include "quillon9/export.h"

namespace Quillon9 {

class CNode;

/// Allocates the nodes of a collection in blocks that grow with it, instead of one by one, which makes reading cheaper.
/// For collections; one thread at a time.
class QUILLON9_API CNodePool {
 public:
  /// While a Pause exists, storage that is given back is not reused, so a node that existed before can be recognised by
  /// its address.
  class Pause {
   public:
    /// Start the pause. \p pool must outlive it.
    explicit Pause(CNodePool& pool) noexcept : m_pool(pool) { ++m_pool.m_pauses; }
    ~Pause() { m_pool.EndPause(); }
    Pause(Pause const&) = delete;
    Pause& operator=(Pause const&) = delete;

   private:
    CNodePool& m_pool;
  };

  CNodePool() = default;
  CNodePool(CNodePool const&) = delete;
  CNodePool& operator=(CNodePool const&) = delete;
  /// Frees the storage, including that of nodes that are left.
  ~CNodePool() { Clear(); }

  /// Allocate storage for a node.
  /// \throws std::bad_alloc when out of memory; the pool is then unchanged.
  void* Take();
  /// Take back the storage of a node, which has been destroyed. When the last node comes back, all memory is freed, at
  /// the end of a Pause if there is one.
  void Give(void* storage) noexcept;

 private:
  struct Block;
  struct Free;

  void EndPause() noexcept;
  void Clear() noexcept;

  Block* m_newest = nullptr;
  Free* m_free = nullptr;
  Free* m_held = nullptr;   // given back during a pause
  std::size_t m_count = 0;  // number of nodes in use
  std::size_t m_pauses = 0;
};

}  // namespace Quillon9
