#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

#include "quillon9/fwd.h"

namespace Quillon9 {

/// A name, or a namespace, to look for in a tree. The text is borrowed, so it must outlive the ranges and iterators that
/// are made with it; a literal does, and a temporary string does not compile. An empty text is a name of its own:
/// the empty namespace is that of nodes in no namespace.
class CXmlNameFilter {
 public:
  /// Every name.
  CXmlNameFilter() = default;
  /// Exactly this text; every name for null.
  ///@{
  CXmlNameFilter(char const* text) : m_isAny(text == nullptr), m_text(text != nullptr ? text : "") {}
  CXmlNameFilter(std::string_view text) : m_isAny(false), m_text(text) {}
  CXmlNameFilter(std::string const& text) : m_isAny(false), m_text(text) {}
  ///@}
  CXmlNameFilter(std::string const&& text) = delete;

  /// Tell whether \p name is one of those looked for. It is compared byte by byte.
  bool Admits(std::string_view name) const { return m_isAny || name == m_text; }

 private:
  bool m_isAny = true;
  std::string_view m_text;
};

/// A walk over those children, or attributes, of an element that have certain names. A forward iterator: copies go on
/// independently. It points to a node and owns nothing.
///
/// It is valid as long as the node that it stands on belongs to the element. Nodes that are appended during a walk are
/// still met, as long as the walk has not come to its end; nodes that it does not stand on may be removed. Once the node
/// under it is detached, the next step leads to the end. A step from a node that was destroyed is undefined.
template <class Node>
class CXmlNodeIterator {
 public:
  /// What algorithms ask of an iterator.
  ///@{
  using iterator_category = std::forward_iterator_tag;
  using value_type = std::remove_const_t<Node>;
  using difference_type = std::ptrdiff_t;
  using pointer = Node*;
  using reference = Node&;
  ///@}

  /// The end of every range.
  CXmlNodeIterator() = default;
  /// Stand on the first node from \p node on that both filters admit, or at the end. \p node may be null.
  CXmlNodeIterator(Node* node, CXmlNameFilter const& localName, CXmlNameFilter const& namespaceUri)
      : m_node(node), m_localName(localName), m_namespaceUri(namespaceUri) {
    SkipOthers();
  }

  /// The node. There must be one.
  ///@{
  Node& operator*() const { return *m_node; }
  Node* operator->() const { return m_node; }
  ///@}
  /// Go to the next node that the filters admit. There must be a node under this.
  ///@{
  CXmlNodeIterator& operator++() {
    m_node = Next(*m_node);
    SkipOthers();
    return *this;
  }
  CXmlNodeIterator operator++(int) {
    CXmlNodeIterator const old = *this;
    ++*this;
    return old;
  }
  ///@}
  /// Whether both stand on the same node, or both at the end.
  ///@{
  bool operator==(CXmlNodeIterator const& other) const { return m_node == other.m_node; }
  bool operator!=(CXmlNodeIterator const& other) const { return m_node != other.m_node; }
  ///@}

 private:
  static Node* Next(Node& node) {
    if constexpr (std::is_same_v<value_type, CXmlElement>) {
      return node.GetNextSiblingElement();
    } else {
      return node.GetNextAttribute();
    }
  }
  bool IsOther() const {
    return !m_localName.Admits(m_node->GetLocalName()) || !m_namespaceUri.Admits(m_node->GetNamespaceURI());
  }
  void SkipOthers() {
    while (m_node != nullptr && IsOther()) m_node = Next(*m_node);
  }

  Node* m_node = nullptr;
  CXmlNameFilter m_localName;
  CXmlNameFilter m_namespaceUri;
};

/// Children or attributes of an element, for range-for and for standard algorithms. It owns nothing and looks at the
/// element when it is made, and then at each step; see CXmlNodeIterator for changes meanwhile. The element must outlive
/// it. One thread at a time, as for the tree.
template <class Node>
class CXmlNodeRange {
 public:
  /// A walk over the nodes of this range.
  using iterator = CXmlNodeIterator<Node>;
  /// The same. Whether nodes are const is a matter of the range.
  using const_iterator = iterator;

  /// \p first and its next ones, as far as both filters admit them. \p first may be null.
  CXmlNodeRange(Node* first, CXmlNameFilter const& localName, CXmlNameFilter const& namespaceUri)
      : m_first(first, localName, namespaceUri) {}

  /// From the first node to the end, in document order.
  ///@{
  iterator begin() const { return m_first; }
  iterator end() const { return {}; }
  ///@}
  /// Tell whether there is no node.
  bool empty() const { return m_first == iterator(); }
  /// The first node, owned by the tree; null when there is none.
  Node* First() const { return m_first.operator->(); }

 private:
  iterator m_first;
};

}  // namespace Quillon9
