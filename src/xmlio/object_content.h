#pragma once

#include <cstddef>
#include <cstdint>

#include "quillon9/xmlio/document.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

/// What objects that are made from a tree take. It counts against the bounds on the tree's document, since an element of
/// two octets can become an object of several hundred bytes. Only elements of a document count; those that a program builds by
/// itself have no bounds.
///
/// An object of this class stands for one operation that makes objects. At its end it gives back what they counted: the
/// program may read the same tree again and again, and drop what it read.
class ObjectContent {
 public:
  /// \p element is of the tree, which must outlive this.
  explicit ObjectContent(CXmlElement const& element)
      : m_document(element.Memory() != nullptr ? element.Memory()->Counting() : nullptr),
        m_before(m_document != nullptr ? m_document->m_contentSize : 0) {}
  ~ObjectContent() {
    if (m_document != nullptr) m_document->m_contentSize = m_before;
  }
  ObjectContent(ObjectContent const&) = delete;
  ObjectContent& operator=(ObjectContent const&) = delete;

  /// Count \p bytes of what is made from \p element.
  /// \throws what CXmlDocument::CountContent() throws.
  static void Count(CXmlElement const& element, std::size_t bytes) {
    if (CTreeMemory* const memory = element.Memory()) memory->CountContent(bytes);
  }

  /// What an object of a generated class counts for. The library does not know what it takes: not every object is
  /// allocated by itself. With this, text of any form may become such objects.
  static constexpr std::size_t kClass = 256;
  /// What a value of a collection counts for besides its text.
  static constexpr std::size_t kValue = 96;

 private:
  CXmlDocument* const m_document;
  std::uint64_t const m_before;
};

}  // namespace Quillon9
