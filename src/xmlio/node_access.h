#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text_copy.h"
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
  static std::size_t CountChildren(CXmlElement const& element);
  static bool HasText(CXmlElement const& element) { return element.m_text != 0; }
  /// Where the children stand in the text; null if this is not kept.
  static CChildPlaces* PlacesOf(CXmlElement const& element) { return NodeText::FindPlaces(element.m_text); }
  static CXmlAttribute* LastAttribute(CXmlElement const& element);
  static CXmlAttribute* FirstAttribute(CXmlElement const& element);
  /// The comments and processing instructions in the element; none unless its document keeps them.
  static std::vector<CMarkup> MarkupIn(CXmlElement const& element) {
    CTreeMemory const* const memory = MemoryOf(element);
    return memory != nullptr && memory->Markup() != nullptr ? memory->Markup()->In(element) : std::vector<CMarkup>();
  }
  /// Those around the document element.
  static std::vector<CMarkup> MarkupIn(CXmlDocument const& document) {
    CTreeMemory const* const memory = document.m_memory;
    return memory != nullptr && memory->Markup() != nullptr ? memory->Markup()->InDocument() : std::vector<CMarkup>();
  }
  /// The prefixes, each with its URI, that can be declared on the document element without a change of their meaning
  /// further in; those of a document that was read with a filter are not known.
  static std::vector<std::pair<std::string, std::string>> PrefixesOf(CXmlDocument const& document);
  /// @}

  /// \name Changing a tree
  /// @{
  /// Note that \p prefix stands for \p uri in the next child of the innermost open element, or in the document element.
  /// Returns \p uri as the tree keeps it, the same string for equal arguments; null if the document has a filter.
  static std::string const* NoteNamespace(CXmlDocument& document, std::string_view prefix, std::string_view uri,
                                          NamespaceDeclarations::Kind kind = NamespaceDeclarations::Kind::Declaration);
  /// The same with what else CXmlDocument::SetNamespaceAlias() does.
  static std::string const* DeclareNamespace(CXmlDocument& document, std::string_view prefix, std::string_view uri);
  /// Whether a reader of \p document is to keep comments and processing instructions.
  static bool KeepsMarkup(CXmlDocument const& document);
  /// Keep a comment (without a target) or processing instruction in the innermost open element, or around the document
  /// element.
  /// \throws what CXmlDocument::CountContent() throws.
  static void AddMarkup(CXmlDocument& document, std::string target, std::string text);
  /// Create an element with a name that the tree shares.
  static CXmlElement* NewElement(CXmlName const& name, CTreeMemory& memory) {
    return ::new (memory.Allocate(sizeof(CXmlElement))) CXmlElement(name);
  }
  /// Append to the text, as a reader does: it keeps itself where the children stand.
  ///@{
  static void AppendText(CXmlElement& element, std::string_view text) {
    NodeText::Append(element.m_text, text, MemoryOf(element));
  }
  static bool AppendLineFeed(CXmlElement& element) { return NodeText::AppendLineFeed(element.m_text); }
  static bool AppendPlainText(CXmlElement& element, std::string_view text) {
    return NodeText::AppendPlain(element.m_text, text, MemoryOf(element));
  }
  ///@}
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
  /// Keep where the children stand in the text.
  static void KeepPlaces(CXmlElement& element, CChildPlaces places) {
    NodeText::KeepPlaces(element.m_text, MemoryOf(element), std::move(places));
  }
  /// The places of the children of an element that is not being read. Without any so far, the present children stand in
  /// front of its text.
  static CChildPlaces& MakePlaces(CXmlElement& element);
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
    document.m_schemaType = from.m_schemaType;
    LendInput(document, from.m_inputData, from.m_inputSize);
  }
  /// CXmlDocument::LoadXmlStream() and LoadXml() without a copy of the input, which must outlive \p document.
  ///@{
  static void LoadLentStream(CXmlDocument& document, unsigned char const* data, unsigned long size);
  static void LoadLentText(CXmlDocument& document, char const* text);
  ///@}
  /// Whether nothing has been built or declared in \p document.
  static bool IsUntouched(CXmlDocument const& document) {
    return document.m_memory == nullptr && document.m_documentElement == nullptr && document.m_elementStack.empty() &&
           document.m_namespaceAliases.empty();
  }
  static bool HasFilter(CXmlDocument const& document) { return document.m_filter != nullptr; }
  /// Drop what has been built or declared, but not the input.
  static void DropTree(CXmlDocument& document) noexcept;
  /// The steps of CXmlDocument::AddChildElement(), inline, for readers that check the depth themselves: add a child to
  /// \p parent, the innermost open element, and open it. A document with a filter needs more.
  ///@{
  static CXmlElement* AddCountedChild(CXmlDocument& document, CXmlElement& parent, CXmlName const& name) {
    document.CountContent(static_cast<TreeName const&>(name).charge);
    document.m_elementStack.back().hadChildren = true;
    if (HasText(parent)) document.NotePlace(parent);
    return AddChild(parent, name);
  }
  /// Both together with the end of the element, for one that has only \p text. Return null, with nothing changed, if the
  /// text is not plain or not short, or if the two are too much for the document.
  static CXmlElement* AddTextChild(CXmlDocument& document, CXmlElement& parent, CXmlName const& name,
                                   std::string_view text) {
    TreeName const& treeName = static_cast<TreeName const&>(name);
    std::uint64_t const size = document.m_contentSize + treeName.charge + text.size();
    std::uintptr_t place = 0;
    if (size > document.m_contentLimit || !NodeText::SetFirst(place, text, *treeName.memory, HasUnplain())) {
      return nullptr;
    }
    document.m_contentSize = size;
    document.m_elementStack.back().hadChildren = true;
    if (HasText(parent)) document.NotePlace(parent);
    CXmlElement* const element = AddChild(parent, NewElement(name, *treeName.memory));
    element->m_text = place;
    return element;
  }
  static CXmlElement* Open(CXmlDocument& document, CXmlElement* element) {
    document.m_elementStack.push_back({element, 0, false});
    return element;
  }
  ///@}
  /// CXmlDocument::EndElement() and CloseElement(), inline, because they run for every element.
  ///@{
  static void EndElement(CXmlDocument& document) {
    if (document.m_filter != nullptr) {
      document.EndFilteredElement();
    } else {
      CloseElement(document);
    }
  }
  static void CloseElement(CXmlDocument& document) {
    CXmlElement const& element = *document.OpenElementOrThrow();
    auto const& open = document.m_elementStack.back();
    if (open.hadChildren && (open.placed != 0 || HasText(element))) document.SettlePlaces();
    document.m_elementStack.pop_back();
    if (document.m_filter != nullptr) document.m_previous.pop_back();
  }
  ///@}
  /// What CXmlDocument::CountContent() has counted.
  static std::uint64_t& ContentSize(CXmlDocument& document) { return document.m_contentSize; }
  /// @}

 private:
  static void LendInput(CXmlDocument& document, unsigned char const* data, unsigned long size) {
    document.m_inputData = data;
    document.m_inputSize = size;
    document.StartCounting();
  }
};

}  // namespace Quillon9
