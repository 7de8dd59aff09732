#pragma once

#include <string_view>
#include <vector>

namespace Quillon9 {

/// One piece of the content of an element: a run of its text, or one of its children. A list of them is the content in
/// the order of the document. An item owns nothing: it is valid as long as the element and its text do not change.
template <class Node>
class CContentItem {
 public:
  /// A run of text, which is borrowed.
  explicit CContentItem(std::string_view text) : m_text(text) {}
  /// A child, which is borrowed.
  explicit CContentItem(Node& element) : m_element(&element) {}

  /// Return whether this is a run of text.
  bool IsText() const { return m_element == nullptr; }
  /// Return the run of text; empty for a child. No zero needs to follow it.
  std::string_view GetText() const { return m_text; }
  /// Return the child; null for a run of text.
  Node* GetElement() const { return m_element; }

 private:
  std::string_view m_text;
  Node* m_element = nullptr;
};

/// The content of an element in the order of the document. No run of text is empty, and no two runs are neighbours.
template <class Node>
using CContentList = std::vector<CContentItem<Node>>;

}  // namespace Quillon9
