#include "xmlio/tree_memory.h"

#include <algorithm>
#include <array>
#include <new>
#include <utility>

#include "base/fast_paths.h"
#include "base/per_thread.h"
#include "base/seeded_hash.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

namespace {

// Large enough that the allocator of the process does not trim its memory at the end of each block.
constexpr std::size_t kBlockSize = 256 * 1024;
using Block = std::unique_ptr<char[]>;

/// Keeps blocks between two documents of a thread, at most 4 MiB. Reading small documents one after the other then
/// requests no memory from the system. Giving a block back never fails, because destructors do it.
class BlockCache {
 public:
  static Block Take() {
    BlockCache* const cache = PerThread<BlockCache>::Find();
    if (cache == nullptr || cache->m_count == 0) return Block(new char[kBlockSize]);
    return std::move(cache->m_blocks[--cache->m_count]);
  }
  static void Give(Block block) noexcept {
    BlockCache* const cache = kBlockCache.IsOn() ? PerThread<BlockCache>::Find() : nullptr;
    if (cache == nullptr || cache->m_count == kMost) return;
    cache->m_blocks[cache->m_count++] = std::move(block);
  }

 private:
  static constexpr std::size_t kMost = 16;

  std::size_t m_count = 0;
  std::array<Block, kMost> m_blocks;
};

}  // namespace

CTreeExtra::CTreeExtra(CTreeMemory* memory) noexcept {
  if (memory == nullptr) return;
  m_next = memory->m_extras;
  m_link = &memory->m_extras;
  if (m_next != nullptr) m_next->m_link = &m_next;
  memory->m_extras = this;
}

CTreeExtra::~CTreeExtra() {
  if (m_link != nullptr) *m_link = m_next;
  if (m_next != nullptr) m_next->m_link = m_link;
}

CTreeMemory::~CTreeMemory() {
  while (m_extras != nullptr) delete m_extras;
  for (Block& block : m_blocks) {
    ASAN_UNPOISON_MEMORY_REGION(block.get(), kBlockSize);
    BlockCache::Give(std::move(block));
  }
}

void CTreeMemory::Abandon(CXmlElement* root) noexcept {
  m_isAbandoned = true;
  m_counting = nullptr;
  if (m_detached == 0) {
    delete this;
  } else if (root != nullptr) {
    XmlNodeAccess::Dispose(root);  // what it has outside this memory need not wait
  }
}

void CTreeMemory::FreeDetached(void* node) noexcept {
  Free(node, sizeof(CXmlElement));
  if (--m_detached == 0 && m_isAbandoned) delete this;
}

TreeName const* CTreeMemory::ShareName(std::string_view namespaceUri, std::string_view localName) {
  // The document chooses the names.
  std::uint64_t const hash = SeededHash::Mix(SeededHash::OfText(localName) ^ SeededHash::kOdd,
                                             SeededHash::OfText(namespaceUri) ^ SeededHash::TheSecret().factor);
  if (!m_nameBuckets.empty()) {
    for (TreeName* name = BucketOf(hash); name != nullptr; name = name->nextInBucket) {
      bool const isFound = name->hash == hash && name->localName == localName && name->namespaceUri == namespaceUri;
      if (isFound) return name;
    }
  }
  return AddName(namespaceUri, localName, hash);
}

TreeName* CTreeMemory::AddName(std::string_view namespaceUri, std::string_view localName, std::uint64_t hash) {
  std::size_t const size = namespaceUri.size() + localName.size();
  CountContent(kNameCharge + 2 * size);
  if (m_names.size() == m_nameBuckets.size()) AddNameBuckets();
  TreeName* const name = &m_names.emplace_back(namespaceUri, localName, this, ChargeOfNode(size));
  name->hash = hash;
  name->nextInBucket = std::exchange(BucketOf(hash), name);
  return name;
}

void CTreeMemory::AddNameBuckets() {
  m_nameBuckets.assign(std::max(2 * m_nameBuckets.size(), kFirstNameBuckets), nullptr);
  for (TreeName& name : m_names) name.nextInBucket = std::exchange(BucketOf(name.hash), &name);
}

void* CTreeMemory::TakeFreed(std::size_t granules) {
  Freed* const storage = m_free[granules];
  ASAN_UNPOISON_MEMORY_REGION(storage, granules * kGranule);
  m_free[granules] = storage->next;
  return storage;
}

void CTreeMemory::StartBlock() {
  m_blocks.push_back(BlockCache::Take());
  m_blockAt = m_blocks.back().get();
  m_blockEnd = m_blockAt + kBlockSize;
  ASAN_POISON_MEMORY_REGION(m_blockAt, kBlockSize);
}

void CTreeMemory::Free(void* storage, std::size_t size) noexcept {
  std::size_t const granules = Granules(size);
  m_free[granules] = new (storage) Freed{m_free[granules]};
  ASAN_POISON_MEMORY_REGION(storage, granules * kGranule);
}

void* CTreeMemory::AllocateAlone(std::size_t size) { return ::operator new(size); }

void CTreeMemory::FreeAlone(void* storage) noexcept { ::operator delete(storage); }

}  // namespace Quillon9
