#include "xmlio/tree_memory.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/seeded_hash.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

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
  TreeBlock const& block = m_blocks.emplace_back(m_blocks.size());
  m_blockAt = block.Start();
  m_blockEnd = m_blockAt + block.Size();
}

void CTreeMemory::Free(void* storage, std::size_t size) noexcept {
  std::size_t const granules = Granules(size);
  m_free[granules] = new (storage) Freed{m_free[granules]};
  ASAN_POISON_MEMORY_REGION(storage, granules * kGranule);
}

void* CTreeMemory::AllocateAlone(std::size_t size) { return ::operator new(size); }

void CTreeMemory::FreeAlone(void* storage) noexcept { ::operator delete(storage); }

}  // namespace Quillon9
