#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/element.h"
#include "xmlio/node_text.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

/// The only friend of the document and its nodes: what the library does with them and callers must not, and what
/// reading and writing do so often that it has to be inline.
struct XmlNodeAccess {
  /// \name Looking
  /// @{
  template <class Node>
  static TreeName const& NameOf(Node const& node) {
    return static_cast<TreeName const&>(*node.m_name);
  }
  /// The memory of the tree; null for a standalone node.
  template <class Node>
  static CTreeMemory* MemoryOf(Node const& node) {
    return NameOf(node).memory;
  }
  /// What GetTextView() and GetValueView() return.
  ///@{
  static std::string_view TextOf(CXmlElement const& element) { return NodeText::GetView(element.m_text); }
  static std::string_view TextOf(CXmlAttribute const& attribute) { return NodeText::GetView(attribute.m_value); }
  ///@}
  static CXmlElement* LastChild(CXmlElement const& element) { return element.m_lastChild; }
  static CXmlAttribute* LastAttribute(CXmlElement const& element);
  static CXmlAttribute* FirstAttribute(CXmlElement const& element);
  /// @}

  /// \name Changing a tree
  /// @{
  /// Note that \p prefix stands for \p uri in the next child of the innermost open element, or in the document element.
  static void NoteNamespace(CXmlDocument& document, std::string const& prefix, std::string const& uri);
  /// Create an element with a name that the tree shares.
  static CXmlElement* NewElement(CXmlName const& name, CTreeMemory& memory) {
    return ::new (memory.Allocate(sizeof(CXmlElement))) CXmlElement(name);
  }
  static bool AppendPlainText(CXmlElement& element, std::string_view text) {
    return NodeText::AppendPlain(element.m_text, text, MemoryOf(element));
  }
  static CXmlElement* AddChild(CXmlElement& parent, CXmlElement* child) noexcept {
    auto const place = reinterpret_cast<std::uintptr_t>(child);
    CXmlElement* const last = parent.m_lastChild;
    child->m_next = (last != nullptr ? last->m_next : place) | CXmlElement::kIsLast;
    if (last != nullptr) last->m_next = place;
    parent.m_lastChild = child;
    return child;
  }
  /// Create a child in a tree. Inline: the readers create nearly all elements here.
  static CXmlElement* AddChild(CXmlElement& parent, CXmlName const& name) {
    return AddChild(parent, NewElement(name, *MemoryOf(parent)));
  }
  /// Detach the last child. \p before is the child in front of it, or null.
  static CXmlElement* RemoveLastChild(CXmlElement& parent, CXmlElement* before) noexcept;
  /// Add an attribute to an element of a tree.
  static void AddAttribute(CXmlElement& element, CXmlName const& name, std::string_view value);
  static void LinkAttribute(CXmlElement& element, CXmlAttribute* attribute);
  /// @}

  /// \name Destroying
  /// @{
  /// Destroy a node that no caller owns.
  ///@{
  static void Dispose(CXmlElement* element) noexcept;
  static void Dispose(CXmlAttribute* attribute) noexcept;
  ///@}
  static void DeleteChildren(CXmlElement& element) noexcept;
  /// Free everything except the children and the name.
  static void FreeContents(CXmlElement& element) noexcept;
  /// Return the first child, with \p rest linked after the last one; \p parent has no children afterwards.
  static CXmlElement* TakeChildren(CXmlElement& parent, CXmlElement* rest) noexcept;
  /// @}

  /// \name The document
  /// @{
  /// Give \p document the input of another one, which must outlive it, for a second tree under the same limits.
  static void LendInput(CXmlDocument& document, CXmlDocument const& from) {
    document.m_inputData = from.m_inputData;
    document.m_inputSize = from.m_inputSize;
    document.StartCounting();
  }
  /// What CXmlDocument::CountContent() has counted.
  static std::uint64_t& ContentSize(CXmlDocument& document) { return document.m_contentSize; }
  /// @}
};

}  // namespace Quillon9
