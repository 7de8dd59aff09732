#pragma once

#include <cstddef>
#include <iterator>
#include <type_traits>

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"

namespace Quillon9::detail {

/// An iterator over the items of a collection, for range-for and standard algorithms. Valid as long as its item is in
/// the collection.
template <class Item>
class NodeIterator {
 public:
  /// The member types that algorithms expect of an iterator.
  ///@{
  using iterator_category = std::forward_iterator_tag;
  using value_type = std::remove_const_t<Item>;
  using difference_type = std::ptrdiff_t;
  using pointer = Item*;
  using reference = Item&;
  ///@}

  NodeIterator() = default;
  /// Point at \p node; null is the end.
  explicit NodeIterator(CNode* node) : m_node(node) {}
  /// Point at the same item as an iterator that may change it.
  template <class Other, class = std::enable_if_t<std::is_same_v<Other const, Item>>>
  NodeIterator(NodeIterator<Other> const& other) : m_node(other.GetNode()) {}

  /// The item.
  /// \throws CQnException "No More Elements in the Collection" at the end.
  ///@{
  Item& operator*() const { return *static_cast<Item*>(Node()->m_item.Get()); }
  Item* operator->() const { return &**this; }
  ///@}
  /// Go to the next item.
  /// \throws CQnException "No More Elements in the Collection" at the end.
  ///@{
  NodeIterator& operator++() {
    m_node = Node()->m_next;
    return *this;
  }
  NodeIterator operator++(int) {
    NodeIterator const old = *this;
    ++*this;
    return old;
  }
  ///@}
  /// Whether both point at the same item.
  ///@{
  bool operator==(NodeIterator const& other) const { return m_node == other.m_node; }
  bool operator!=(NodeIterator const& other) const { return m_node != other.m_node; }
  ///@}
  /// The node of the item, null at the end. For collections.
  CNode* GetNode() const { return m_node; }

 private:
  CNode* Node() const {
    if (m_node == nullptr) throw CQnException("No More Elements in the Collection");
    return m_node;
  }

  CNode* m_node = nullptr;
};

}  // namespace Quillon9::detail
