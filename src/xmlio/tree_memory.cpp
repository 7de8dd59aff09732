#include "xmlio/tree_memory.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <utility>

#include "base/fast_paths.h"
#include "base/per_thread.h"
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

/// The memory that a thread keeps for its next document.
class KeptTreeMemory {
 public:
  /// Return it, or null if there is none.
  static CTreeMemory* Take() {
    KeptTreeMemory* const kept = kTreeNames.IsOn() ? PerThread<KeptTreeMemory>::Find() : nullptr;
    return kept != nullptr ? std::exchange(kept->m_memory, nullptr) : nullptr;
  }
  /// Keep \p memory and return true, or return false.
  static bool Give(CTreeMemory* memory) noexcept {
    KeptTreeMemory* const kept = kTreeNames.IsOn() ? PerThread<KeptTreeMemory>::Find() : nullptr;
    if (kept == nullptr || kept->m_memory != nullptr) return false;
    kept->m_memory = memory;
    return true;
  }
  ~KeptTreeMemory() { delete m_memory; }

 private:
  CTreeMemory* m_memory = nullptr;
};

CTreeMemory* CTreeMemory::For(CXmlDocument& document) {
  CTreeMemory* memory = KeptTreeMemory::Take();
  if (memory == nullptr) memory = new CTreeMemory;
  memory->Begin(document);
  return memory;
}

void CTreeMemory::Begin(CXmlDocument& document) {
  m_document = m_counting = &document;
  ++m_use;
}

bool CTreeMemory::IsWorthKeeping() const {
  return !m_names.empty() && m_names.size() <= kMostKeptNames && m_nameText <= kMostKeptText;
}

/// The last use of the nodes has ended.
void CTreeMemory::End() noexcept {
  DropNodes();
  if (!IsWorthKeeping()) return delete this;
  for (TreeName const& name : m_names) name.user.reset();  // it may share more than names
  if (!KeptTreeMemory::Give(this)) delete this;
}

void CTreeMemory::DropNodes() noexcept {
  while (m_extras != nullptr) delete m_extras;
  m_document = nullptr;
  m_isAbandoned = false;
  m_plainClasses = {};
  m_declarations = {};
  m_markup.reset();
  std::fill(std::begin(m_free), std::end(m_free), nullptr);
  m_blockAt = m_blockEnd = nullptr;
  m_blocks.clear();
}

CTreeMemory::~CTreeMemory() { DropNodes(); }

void CTreeMemory::Abandon(CXmlElement* root) noexcept {
  m_isAbandoned = true;
  m_document = m_counting = nullptr;
  if (m_detached == 0) {
    End();
  } else if (root != nullptr) {
    XmlNodeAccess::Dispose(root);  // what it has outside this memory need not wait
  }
}

void CTreeMemory::FreeDetached(void* node) noexcept {
  Free(node, sizeof(CXmlElement));
  if (--m_detached == 0 && m_isAbandoned) End();
}

TreeName::User::~User() = default;

TreeName const* CTreeMemory::ShareName(std::string_view namespaceUri, std::string_view localName) {
  // The document chooses the names.
  std::uint64_t const hash = SeededHash::Mix(SeededHash::OfText(localName) ^ SeededHash::kOdd,
                                             SeededHash::OfText(namespaceUri) ^ SeededHash::TheSecret().factor);
  if (!m_nameBuckets.empty()) {
    for (TreeName* name = BucketOf(hash); name != nullptr; name = name->nextInBucket) {
      bool const isFound = name->hash == hash && name->localName == localName && name->namespaceUri == namespaceUri;
      if (!isFound) continue;
      if (name->use != m_use) CountName(*name);
      return name;
    }
  }
  return AddName(namespaceUri, localName, hash);
}

/// Count a name of an earlier document as one that is new.
void CTreeMemory::CountName(TreeName& name) {
  CountContent(kNameCharge + 2 * (name.namespaceUri.size() + name.localName.size()));
  name.use = m_use;
}

TreeName* CTreeMemory::AddName(std::string_view namespaceUri, std::string_view localName, std::uint64_t hash) {
  std::size_t const size = namespaceUri.size() + localName.size();
  CountContent(kNameCharge + 2 * size);
  if (m_names.size() == m_nameBuckets.size()) AddNameBuckets();
  TreeName* const name = &m_names.emplace_back(namespaceUri, localName, this, ChargeOfNode(size));
  m_nameText += size;
  name->use = m_use;
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
