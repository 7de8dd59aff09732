#pragma once

#include <cstddef>
#include <utility>

namespace Quillon9 {

/// A block of memory for a tree. The first blocks of a tree are small, and a thread keeps some of them for its next
/// document. The others grow and are aligned for huge pages, because the system takes long to provide small ones.
class TreeBlock {
 public:
  /// Allocate the block with this number in its tree, from 0.
  /// \throws std::bad_alloc.
  explicit TreeBlock(std::size_t number);
  TreeBlock(TreeBlock&& other) noexcept : m_start(std::exchange(other.m_start, nullptr)), m_size(other.m_size) {}
  TreeBlock& operator=(TreeBlock&&) = delete;
  ~TreeBlock();

  char* Start() const { return m_start; }
  std::size_t Size() const { return m_size; }

 private:
  char* m_start = nullptr;
  std::size_t m_size = 0;
};

}  // namespace Quillon9
