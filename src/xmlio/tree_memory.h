#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/address_sanitizer.h"
#include "quillon9/base/plain_classes.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/element.h"

namespace Quillon9 {

class CTreeMemory;

/// What a node has outside the memory of its tree. It goes with its node, or with the memory.
class CTreeExtra {
 public:
  /// \p memory is null for a node by itself.
  explicit CTreeExtra(CTreeMemory* memory) noexcept;
  virtual ~CTreeExtra();
  CTreeExtra(CTreeExtra const&) = delete;
  CTreeExtra& operator=(CTreeExtra const&) = delete;

 private:
  CTreeExtra* m_next = nullptr;
  CTreeExtra** m_link = nullptr;  // what points to this one
};

/// The text of a node that was asked for as a string, or is long.
struct CTreeString : CTreeExtra {
  using CTreeExtra::CTreeExtra;
  std::string text;
};

/// The attributes of an element that were asked for as a vector.
struct CTreeAttributes : CTreeExtra {
  using CTreeExtra::CTreeExtra;
  std::vector<CXmlAttribute*> table;
};

/// Where the nodes of a document's tree, their texts and their names live. They come from blocks instead of one by one,
/// and each name stands here once, however many nodes bear it. The end of a document is the end of the blocks: no node
/// is visited.
///
/// It belongs to its document, and outlives it as long as there is a node that a caller detached. Everything here is
/// for one thread at a time, as the tree is.
class CTreeMemory {
 public:
  /// For the nodes of \p document. Made with new; the document gives it up by Abandon().
  explicit CTreeMemory(CXmlDocument* document)
      : m_document(document), m_counting(document), m_noName{{}, {}, this, nullptr, 0, kNodeCharge} {}
  CTreeMemory(CTreeMemory const&) = delete;
  CTreeMemory& operator=(CTreeMemory const&) = delete;

  CXmlDocument const* GetDocument() const { return m_document; }

  /// Tell that the document needs it and the tree \p root, which may be null, no more. It goes now, or with the last
  /// detached element.
  void Abandon(CXmlElement* root) noexcept;
  /// An element was handed to a caller.
  void CountDetached() { ++m_detached; }
  /// Such an element was destroyed, and its storage is to go as well.
  void FreeDetached(void* node) noexcept;

  /// Of the classes that have been read from this tree, those that are not nillable.
  CPlainClasses& PlainClasses() { return m_plainClasses; }

  /// Count \p bytes of what is made from the tree against the bounds on the document, as long as there is one.
  /// \throws what CXmlDocument::CountContent() throws.
  void CountContent(std::size_t bytes) {
    if (m_counting != nullptr) m_counting->CountContent(bytes);
  }
  /// The document that counts, or null when it is gone.
  CXmlDocument* Counting() const { return m_counting; }

  /// What a node counts for besides its texts.
  static constexpr std::size_t kNodeCharge = 64;
  /// What a node counts for whose names have so many bytes. They are stored once, but whoever copies or writes the tree
  /// repeats them with each node: those of usual lengths are free, long ones are not.
  static constexpr std::size_t ChargeOfNode(std::size_t nameSize) {
    return kNodeCharge + (nameSize > kFreeName ? nameSize - kFreeName : 0);
  }

  /// The one name with these texts. A new one counts as content.
  CXmlName const* ShareName(std::string_view namespaceUri, std::string_view localName);

  /// That of elements which were given none yet.
  CXmlName const* NoName() const { return &m_noName; }

  /// Storage of \p size bytes, at most kLargest, aligned for a pointer.
  void* Allocate(std::size_t size) { return AllocateGranules(Granules(size)); }
  /// The same by the number of granules, at least 1.
  void* AllocateGranules(std::size_t granules) {
    if (m_free[granules] != nullptr) return TakeFreed(granules);
    std::size_t const bytes = granules * kGranule;
    if (static_cast<std::size_t>(m_blockEnd - m_blockAt) < bytes) StartBlock();
    char* const storage = m_blockAt;
    ASAN_UNPOISON_MEMORY_REGION(storage, bytes);
    m_blockAt += bytes;
    return storage;
  }
  void Free(void* storage, std::size_t size) noexcept;
  /// The same for a node by itself. Behind calls, since compilers take what an `operator new` shows for a mismatch.
  ///@{
  static void* AllocateAlone(std::size_t size);
  static void FreeAlone(void* storage) noexcept;
  ///@}

  static constexpr std::size_t kGranule = 8;
  static constexpr std::size_t kLargest = 152;

 private:
  friend class CTreeExtra;
  static constexpr std::size_t kFreeName = 1024;
  /// What a name counts for besides its texts: it stands in the map, and in a table of the reader.
  static constexpr std::size_t kNameCharge = 256;
  struct Freed {
    Freed* next;
  };
  static constexpr std::size_t Granules(std::size_t size) { return (size + kGranule - 1) / kGranule; }

  ~CTreeMemory();
  void* TakeFreed(std::size_t granules);
  void StartBlock();

  CXmlDocument const* m_document;
  CXmlDocument* m_counting;
  CXmlName m_noName;
  CPlainClasses m_plainClasses;
  std::size_t m_detached = 0;
  bool m_isAbandoned = false;
  Freed* m_free[kLargest / kGranule + 1] = {};
  char* m_blockAt = nullptr;
  char* m_blockEnd = nullptr;
  std::vector<std::unique_ptr<char[]>> m_blocks;
  CTreeExtra* m_extras = nullptr;
  /// By namespace, then by local name; ordered, since the document chooses the names.
  std::map<std::pair<std::string_view, std::string_view>, std::unique_ptr<CXmlName>> m_names;
};

// Here for the readers, who make nearly all elements.

inline CXmlElement* CXmlElement::AddChild(CXmlElement* child) noexcept {
  auto const place = reinterpret_cast<std::uintptr_t>(child);
  child->m_next = (m_lastChild != nullptr ? m_lastChild->m_next : place) | kIsLast;
  if (m_lastChild != nullptr) m_lastChild->m_next = place;
  m_lastChild = child;
  return child;
}

inline CXmlElement* CXmlElement::AddChild(CXmlName const* name) {
  CTreeMemory& memory = *Memory();
  return AddChild(::new (memory.Allocate(sizeof(CXmlElement))) CXmlElement(*name));
}

}  // namespace Quillon9
