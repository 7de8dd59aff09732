#pragma once

#include <cstddef>

#include "quillon9/descriptors/generic_content.h"
#include "xmlio/node_access.h"
#include "xmlio/object_content.h"

namespace Quillon9 {

/// The memory that generic content made from a tree takes: each object with its node in a collection, the collections,
/// the texts, which are copied, and the names, which are shared.
class GenericSize {
 public:
  /// Count the CElement for \p element, without its attributes and children.
  static void CountElement(CXmlElement const& element) {
    std::size_t size = kElement + XmlNodeAccess::TextOf(element).size();
    if (element.GetFirstAttribute() != nullptr) size += kAttributes;
    if (element.GetFirstElement() != nullptr) size += kElements;
    ObjectContent::Count(element, size);
  }
  /// Count the CAttribute for \p attribute of \p element.
  static void CountAttribute(CXmlElement const& element, CXmlAttribute const& attribute) {
    ObjectContent::Count(element, kAttribute + XmlNodeAccess::TextOf(attribute).size());
  }
  /// Count the names of elements or attributes of the tree of \p element.
  static void CountNames(CXmlElement const& element, CXmlName const& name) {
    ObjectContent::Count(element, kNames + name.localName.size() + name.namespaceUri.size());
  }

  /// Count \p markup, which an object made from \p element keeps.
  static void CountMarkup(CXmlElement const& element, CMarkup const& markup) {
    ObjectContent::Count(element, sizeof(CMarkup) + markup.target.size() + markup.text.size());
  }

 private:
  static constexpr std::size_t kAllocation = 16;  // overhead of the allocator
  static constexpr std::size_t kElement = kAllocation + sizeof(CElement) + sizeof(CNode);
  static constexpr std::size_t kAttribute = kAllocation + sizeof(CAttribute) + sizeof(CNode);
  static constexpr std::size_t kElements = kAllocation + sizeof(CElementCol);
  static constexpr std::size_t kAttributes = kAllocation + sizeof(CAttributeCol);
  static constexpr std::size_t kNames = kAllocation + sizeof(detail::GenericNames);
};

}  // namespace Quillon9
