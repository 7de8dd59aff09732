#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/address_sanitizer.h"
#include "base/plain_classes.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/element.h"
#include "xmlio/namespace_declarations.h"
#include "xmlio/tree_block.h"
#include "xmlio/tree_markup.h"

namespace Quillon9 {

class CTreeMemory;

/// A name with what the library keeps about it. Each CXmlName is one.
struct TreeName final : CXmlName {
  /// A name in \p treeMemory, with which each node counts for \p nodeCharge.
  TreeName(std::string_view uri, std::string_view name, CTreeMemory* treeMemory, std::size_t nodeCharge)
      : CXmlName(std::string(uri), std::string(name)), memory(treeMemory), charge(nodeCharge) {}
  /// The name of a standalone element of \p itsDocument, or of a standalone attribute.
  TreeName(std::string uri, std::string name, CXmlDocument const* itsDocument)
      : CXmlName(std::move(uri), std::move(name)), document(itsDocument) {}

  /// What higher floors keep for a name of a document, until the tree is destroyed.
  struct User {
    User() = default;
    User(User const&) = delete;
    User& operator=(User const&) = delete;
    virtual ~User();
  };

  CTreeMemory* memory = nullptr;           ///< of the document that shares it; null for a standalone node's name
  CXmlDocument const* document = nullptr;  ///< of a standalone element
  mutable std::uint64_t member = 0;        ///< the number of the class member that is known to have both names
  std::size_t charge = 0;                  ///< what each node with this name counts for against CLimits, in a document
  std::uint64_t hash = 0;                  ///< of both names, in a document
  std::uint64_t use = 0;                   ///< the last use of the memory that had this name
  TreeName* nextInBucket = nullptr;        ///< another one of the document
  mutable std::unique_ptr<User> user;      ///< null for most
};

/// Data that a node has outside the memory of its tree. It is freed with its node or with the memory.
class CTreeExtra {
 public:
  /// \p memory is null for a standalone node.
  explicit CTreeExtra(CTreeMemory* memory) noexcept;
  virtual ~CTreeExtra();
  CTreeExtra(CTreeExtra const&) = delete;
  CTreeExtra& operator=(CTreeExtra const&) = delete;

 private:
  CTreeExtra* m_next = nullptr;
  CTreeExtra** m_link = nullptr;  // what points to this one
};

/// Where the children of an element stand in its text. The first ones stand in front of all text; for each of the
/// others, in order, there is the size of the text in front of it.
struct CChildPlaces {
  std::size_t leading = 0;
  std::vector<std::size_t> others;
};

/// The text of a node, if it was requested as a string or is long, or if children stand in it.
struct CTreeString : CTreeExtra {
  using CTreeExtra::CTreeExtra;
  std::string text;
  std::unique_ptr<CChildPlaces> places;  // null unless the node is an element with mixed content
};

/// The attributes of an element, if they were requested as a vector.
struct CTreeAttributes : CTreeExtra {
  using CTreeExtra::CTreeExtra;
  std::vector<CXmlAttribute*> table;
};

/// Holds the nodes of a document's tree, their texts and their names. They come from blocks instead of one by one, and
/// each name is stored once, however many nodes have it. When a document is destroyed its blocks are freed without a
/// visit to the nodes.
///
/// It belongs to its document, and outlives it as long as a node that a caller detached exists. Only one thread at a
/// time may use it, as with the tree. A thread keeps the last one with its names, if these are few, for its next
/// document, because documents that are read one after the other have mostly the same names.
class CTreeMemory {
 public:
  /// Return memory for the nodes of \p document, which releases it with Abandon().
  /// \throws std::bad_alloc.
  static CTreeMemory* For(CXmlDocument& document);
  CTreeMemory(CTreeMemory const&) = delete;
  CTreeMemory& operator=(CTreeMemory const&) = delete;

  CXmlDocument const* GetDocument() const { return m_document; }

  /// Report that the document no longer needs this memory and the tree \p root, which may be null. The nodes are
  /// destroyed now, or with the last detached element.
  void Abandon(CXmlElement* root) noexcept;
  /// Count an element that was passed to a caller.
  void CountDetached() { ++m_detached; }
  /// Free the storage of such an element after its destruction.
  void FreeDetached(void* node) noexcept;

  /// Which namespaces are declared in the document.
  NamespaceDeclarations& Declarations() { return m_declarations; }

  /// The comments and processing instructions that are kept; null for none.
  ///@{
  TreeMarkup* Markup() const { return m_markup.get(); }
  TreeMarkup& MarkupToChange() {
    if (m_markup == nullptr) m_markup = std::make_unique<TreeMarkup>();
    return *m_markup;
  }
  ///@}

  /// The classes read from this tree that are not nillable.
  PlainClasses& PlainTypes() { return m_plainClasses; }

  /// Count \p bytes of what is made from the tree against the bounds on the document, while the document exists.
  /// \throws what CXmlDocument::CountContent() throws.
  void CountContent(std::size_t bytes) {
    if (m_counting != nullptr) m_counting->CountContent(bytes);
  }
  /// Return the document that counts, or null after its end.
  CXmlDocument* Counting() const { return m_counting; }

  /// The charge for a node besides its texts.
  static constexpr std::size_t kNodeCharge = 64;
  /// Return the charge for a node whose names have this many bytes. They are stored once, but copying or writing the
  /// tree repeats them with each node: names of usual length are free, long ones are not.
  static constexpr std::size_t ChargeOfNode(std::size_t nameSize) {
    return kNodeCharge + (nameSize > kFreeName ? nameSize - kFreeName : 0);
  }

  /// Return the only name with these texts. A new one counts as content.
  TreeName const* ShareName(std::string_view namespaceUri, std::string_view localName);

  /// Return the name of elements that have not been given one yet.
  TreeName const* NoName() const { return &m_noName; }

  /// Return storage of \p size bytes, at most kLargest, aligned for a pointer.
  void* Allocate(std::size_t size) { return AllocateGranules(Granules(size)); }
  /// The same for a number of granules, at least 1.
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
  /// The same for a standalone node. Not inline, because compilers report the visible body of an `operator new` as a
  /// mismatch.
  ///@{
  static void* AllocateAlone(std::size_t size);
  static void FreeAlone(void* storage) noexcept;
  ///@}

  static constexpr std::size_t kGranule = 8;
  static constexpr std::size_t kLargest = 152;

 private:
  friend class CTreeExtra;
  friend class KeptTreeMemory;
  static constexpr std::size_t kFreeName = 1024;
  static constexpr std::size_t kFirstNameBuckets = 32;
  /// The charge for a name besides its texts: it is in the map and in a table of the reader.
  static constexpr std::size_t kNameCharge = 256;
  struct Freed {
    Freed* next;
  };
  static constexpr std::size_t Granules(std::size_t size) { return (size + kGranule - 1) / kGranule; }

  CTreeMemory() : m_noName({}, {}, this, kNodeCharge) {}
  ~CTreeMemory();
  void Begin(CXmlDocument& document);
  void End() noexcept;
  void DropNodes() noexcept;
  bool IsWorthKeeping() const;
  void CountName(TreeName& name);
  TreeName* AddName(std::string_view namespaceUri, std::string_view localName, std::uint64_t hash);
  void AddNameBuckets();
  TreeName*& BucketOf(std::uint64_t hash) { return m_nameBuckets[hash & (m_nameBuckets.size() - 1)]; }
  void* TakeFreed(std::size_t granules);
  void StartBlock();

  /// What a thread keeps at most: this many names, and texts of names of this size.
  static constexpr std::size_t kMostKeptNames = 256;
  static constexpr std::size_t kMostKeptText = 16 * 1024;

  CXmlDocument const* m_document = nullptr;
  CXmlDocument* m_counting = nullptr;
  std::uint64_t m_use = 0;  // the number of documents so far
  TreeName m_noName;
  PlainClasses m_plainClasses;
  NamespaceDeclarations m_declarations;
  std::unique_ptr<TreeMarkup> m_markup;
  std::size_t m_detached = 0;
  bool m_isAbandoned = false;
  Freed* m_free[kLargest / kGranule + 1] = {};
  char* m_blockAt = nullptr;
  char* m_blockEnd = nullptr;
  std::vector<TreeBlock> m_blocks;
  CTreeExtra* m_extras = nullptr;
  std::deque<TreeName> m_names;  // their places do not change
  std::vector<TreeName*> m_nameBuckets;
  std::size_t m_nameText = 0;  // bytes in all names
};

}  // namespace Quillon9
