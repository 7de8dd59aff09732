#pragma once

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

#include "quillon9/fwd.h"

namespace Quillon9 {

/// The local name or the namespace URI that a search in a tree looks for. An empty text matches only empty names, so
/// the empty URI finds nodes in no namespace.
///
/// The text is borrowed: it must outlive the ranges and iterators that are made with it. A literal does; a temporary
/// std::string would not, so it does not compile.
class CXmlNameFilter {
 public:
  /// Match everything.
  CXmlNameFilter() = default;
  /// Match exactly \p text; a null pointer matches everything.
  ///@{
  CXmlNameFilter(char const* text) : m_isAny(text == nullptr), m_text(text != nullptr ? text : "") {}
  CXmlNameFilter(std::string_view text) : m_isAny(false), m_text(text) {}
  CXmlNameFilter(std::string const& text) : m_isAny(false), m_text(text) {}
  ///@}
  CXmlNameFilter(std::string const&& text) = delete;

  /// Return whether \p name matches, compared byte by byte.
  bool Admits(std::string_view name) const { return m_isAny || name == m_text; }

 private:
  bool m_isAny = true;
  std::string_view m_text;
};

/// A forward iterator over the matching children or attributes of an element. It points to a node and owns nothing;
/// copies advance independently.
///
/// The tree may change during a loop. The loop visits nodes that are appended before it ends, and nodes other than the
/// current one may be removed. If the current node is detached, the next step reaches the end. If it is destroyed, the
/// next step is undefined behaviour.
template <class Node>
class CXmlNodeIterator {
 public:
  /// The types that standard algorithms require.
  ///@{
  using iterator_category = std::forward_iterator_tag;
  using value_type = std::remove_const_t<Node>;
  using difference_type = std::ptrdiff_t;
  using pointer = Node*;
  using reference = Node&;
  ///@}

  /// The end of every range.
  CXmlNodeIterator() = default;
  /// Start at the first match among \p node, which may be null, and the nodes after it; at the end if there is none.
  CXmlNodeIterator(Node* node, CXmlNameFilter const& localName, CXmlNameFilter const& namespaceUri)
      : m_node(node), m_localName(localName), m_namespaceUri(namespaceUri) {
    SkipOthers();
  }

  /// The current node. The iterator must not be at the end.
  ///@{
  Node& operator*() const { return *m_node; }
  Node* operator->() const { return m_node; }
  ///@}
  /// Go to the next match. The iterator must not be at the end.
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
  /// Return whether both have the same current node, or whether both are at the end.
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

/// The matching children or attributes of an element, for range-for and standard algorithms. It owns nothing, so the
/// element must outlive it. CXmlNodeIterator describes what may change during a loop. A range belongs to the thread
/// that uses the tree.
template <class Node>
class CXmlNodeRange {
 public:
  /// The iterator of this range.
  using iterator = CXmlNodeIterator<Node>;
  /// The same type; the range itself decides whether its nodes are const.
  using const_iterator = iterator;

  /// Select the matches among \p first, which may be null, and the nodes after it.
  CXmlNodeRange(Node* first, CXmlNameFilter const& localName, CXmlNameFilter const& namespaceUri)
      : m_first(first, localName, namespaceUri) {}

  /// The matches in document order.
  ///@{
  iterator begin() const { return m_first; }
  iterator end() const { return {}; }
  ///@}
  /// Return whether nothing matches.
  bool empty() const { return m_first == iterator(); }
  /// The first match, owned by the tree; null if nothing matches.
  Node* First() const { return m_first.operator->(); }

 private:
  iterator m_first;
};

}  // namespace Quillon9
