#include "xmlio/tree_block.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <new>

#include "base/address_sanitizer.h"
#include "base/fast_paths.h"
#include "base/per_thread.h"

namespace Quillon9 {

namespace {

// Large enough that the allocator of the process does not trim its memory at the end of each block.
constexpr std::size_t kSmallSize = 256 * 1024;
constexpr std::size_t kMostKept = 16;
constexpr std::size_t kHugePage = 2 * 1024 * 1024;
/// How often large blocks double in size. Memory that is not used yet is only reserved.
constexpr std::size_t kMostDoublings = 4;

/// Keeps blocks between two documents of a thread, at most 4 MiB. Reading small documents one after the other then
/// requests no memory from the system. Giving a block back never fails, because destructors do it.
class BlockCache {
 public:
  static char* Take() {
    BlockCache* const cache = PerThread<BlockCache>::Find();
    if (cache == nullptr || cache->m_count == 0) return new char[kSmallSize];
    return cache->m_blocks[--cache->m_count].release();
  }
  static void Give(char* start) noexcept {
    std::unique_ptr<char[]> block(start);
    BlockCache* const cache = kBlockCache.IsOn() ? PerThread<BlockCache>::Find() : nullptr;
    if (cache == nullptr || cache->m_count == kMostKept) return;
    cache->m_blocks[cache->m_count++] = std::move(block);
  }

 private:
  std::size_t m_count = 0;
  std::array<std::unique_ptr<char[]>, kMostKept> m_blocks;
};

/// Reserve \p size bytes that begin at a huge page.
char* Map(std::size_t size) {
  std::size_t const reserved = size + kHugePage;
  void* const place = ::mmap(nullptr, reserved, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (place == MAP_FAILED) throw std::bad_alloc();
  char* const first = static_cast<char*>(place);
  std::size_t const before = (kHugePage - reinterpret_cast<std::uintptr_t>(first) % kHugePage) % kHugePage;
  if (before != 0) ::munmap(first, before);
  ::munmap(first + before + size, kHugePage - before);
  ::madvise(first + before, size, MADV_HUGEPAGE);  // may fail: small pages do as well
  return first + before;
}

}  // namespace

TreeBlock::TreeBlock(std::size_t number) {
  if (number < kMostKept) {
    m_start = BlockCache::Take();
    m_size = kSmallSize;
  } else {
    std::size_t const size = kHugePage << std::min(number - kMostKept, kMostDoublings);
    m_start = Map(size);
    m_size = size;
  }
  ASAN_POISON_MEMORY_REGION(m_start, m_size);
}

TreeBlock::~TreeBlock() {
  if (m_start == nullptr) return;
  ASAN_UNPOISON_MEMORY_REGION(m_start, m_size);
  if (m_size == kSmallSize) {
    BlockCache::Give(m_start);
  } else {
    ::munmap(m_start, m_size);
  }
}

}  // namespace Quillon9
