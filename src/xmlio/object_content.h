#pragma once

#include <cstddef>
#include <cstdint>

#include "quillon9/xmlio/document.h"
#include "xmlio/node_access.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

/// Counts the memory of objects that are made from a tree against the bounds on the tree's document, because an element
/// of two octets can become an object of several hundred bytes. Only elements of a document count; those that a program
/// builds by itself have no bounds.
///
/// An object of this class represents one operation that makes objects. Its destructor gives back what they counted:
/// the program may read the same tree again and again, and drop what it read.
class ObjectContent {
 public:
  /// \p element belongs to the tree, which must outlive this object.
  explicit ObjectContent(CXmlElement const& element)
      : m_document(CountingFor(XmlNodeAccess::MemoryOf(element))),
        m_before(m_document != nullptr ? XmlNodeAccess::ContentSize(*m_document) : 0) {}
  ~ObjectContent() {
    if (m_document != nullptr) XmlNodeAccess::ContentSize(*m_document) = m_before;
  }
  ObjectContent(ObjectContent const&) = delete;
  ObjectContent& operator=(ObjectContent const&) = delete;

  /// Count \p bytes of what is made from \p element.
  /// \throws what CXmlDocument::CountContent() throws.
  static void Count(CXmlElement const& element, std::size_t bytes) {
    if (CTreeMemory* const memory = XmlNodeAccess::MemoryOf(element)) memory->CountContent(bytes);
  }

  /// The charge for an object of a generated class. The library does not know its real size: not every object is
  /// allocated separately. With this charge, text of any form may become such objects.
  static constexpr std::size_t kClass = 256;
  /// The charge for a value of a collection besides its text.
  static constexpr std::size_t kValue = 96;

 private:
  static CXmlDocument* CountingFor(CTreeMemory const* memory) {
    return memory != nullptr ? memory->Counting() : nullptr;
  }

  CXmlDocument* const m_document;
  std::uint64_t const m_before;
};

}  // namespace Quillon9
