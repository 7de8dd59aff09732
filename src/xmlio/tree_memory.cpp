#include "xmlio/tree_memory.h"

#include <array>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define QN_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QN_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef QN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#endif

namespace Quillon9 {

namespace {

constexpr std::size_t kBlockSize = 64 * 1024;
using Block = std::unique_ptr<char[]>;

/// Blocks between two documents of a thread, at most 4 MiB. Reading small documents one after the other then asks the
/// system for none. Giving never fails: destructors do it.
class BlockCache {
 public:
  static Block Take() {
    if (t_isGone || Instance().m_count == 0) return Block(new char[kBlockSize]);
    BlockCache& cache = Instance();
    return std::move(cache.m_blocks[--cache.m_count]);
  }
  static void Give(Block block) noexcept {
    // A document that is destroyed after the thread's own data finds no cache any more.
    if (t_isGone || Instance().m_count == kMost) return;
    BlockCache& cache = Instance();
    cache.m_blocks[cache.m_count++] = std::move(block);
  }

 private:
  static constexpr std::size_t kMost = 64;

  BlockCache() = default;
  ~BlockCache() { t_isGone = true; }
  static BlockCache& Instance() {
    static thread_local BlockCache cache;
    return cache;
  }

  static inline thread_local bool t_isGone = false;
  std::size_t m_count = 0;
  std::array<Block, kMost> m_blocks;
};

}  // namespace

CTreeMemory::CTreeMemory() = default;

CTreeMemory::~CTreeMemory() {
  for (Block& block : m_blocks) {
    ASAN_UNPOISON_MEMORY_REGION(block.get(), kBlockSize);
    BlockCache::Give(std::move(block));
  }
}

void CTreeMemory::Abandon() {
  m_isAbandoned = true;
  if (m_nodes == 0) delete this;
}

CXmlName const* CTreeMemory::ShareName(std::string_view namespaceUri, std::string_view localName) {
  auto const found = m_names.find({namespaceUri, localName});
  if (found != m_names.end()) return found->second.get();
  std::unique_ptr<CXmlName> name(new CXmlName{std::string(namespaceUri), std::string(localName), true});
  CXmlName const* const result = name.get();
  m_names.emplace(std::make_pair(std::string_view(result->namespaceUri), std::string_view(result->localName)),
                  std::move(name));
  return result;
}

void* CTreeMemory::AllocateAlone(std::size_t size) {
  auto* const storage = static_cast<Header*>(::operator new(sizeof(Header) + size));
  *storage = nullptr;
  return storage + 1;
}

void* CTreeMemory::Allocate(std::size_t size) {
  std::size_t const granules = (sizeof(Header) + size + kGranule - 1) / kGranule;
  if (granules >= kSizes) return AllocateAlone(size);
  std::size_t const bytes = granules * kGranule;
  void* storage = m_free[granules];
  if (storage != nullptr) {
    ASAN_UNPOISON_MEMORY_REGION(storage, bytes);
    m_free[granules] = m_free[granules]->next;
  } else {
    if (static_cast<std::size_t>(m_blockEnd - m_blockAt) < bytes) StartBlock();
    storage = m_blockAt;
    ASAN_UNPOISON_MEMORY_REGION(storage, bytes);
    m_blockAt += bytes;
  }
  ++m_nodes;
  auto* const header = static_cast<Header*>(storage);
  *header = this;
  return header + 1;
}

void CTreeMemory::StartBlock() {
  m_blocks.push_back(BlockCache::Take());
  m_blockAt = m_blocks.back().get();
  m_blockEnd = m_blockAt + kBlockSize;
  ASAN_POISON_MEMORY_REGION(m_blockAt, kBlockSize);
}

void CTreeMemory::Free(void* node, std::size_t size) noexcept {
  auto* const header = static_cast<Header*>(node) - 1;
  CTreeMemory* const memory = *header;
  if (memory == nullptr) return ::operator delete(header);
  std::size_t const granules = (sizeof(Header) + size + kGranule - 1) / kGranule;
  auto* const freed = reinterpret_cast<FreeNode*>(header);
  freed->next = memory->m_free[granules];
  memory->m_free[granules] = freed;
  ASAN_POISON_MEMORY_REGION(header, granules * kGranule);
  if (--memory->m_nodes == 0 && memory->m_isAbandoned) delete memory;
}

}  // namespace Quillon9
