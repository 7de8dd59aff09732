#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/element_ranges.h"
#include "quillon9/xmlio/node_text.h"

namespace Quillon9 {

class CTreeMemory;

/// The two names of an element or attribute, and where it belongs. The nodes of a document share one object for each
/// pair of names that occurs. For readers; callers ask the nodes.
struct CXmlName {
  std::string namespaceUri;                ///< empty for none
  std::string localName;                   ///< without prefix
  CTreeMemory* memory = nullptr;           ///< of the document that shares it; null for the name of a node by itself
  CXmlDocument const* document = nullptr;  ///< of an element by itself
  mutable std::uint64_t member = 0;        ///< the number of the member of a class that is known to have both names
  std::size_t charge = 0;                  ///< what each node with it counts for against CLimits, in a document
};

/// One attribute of a parsed element. Namespace declarations are attributes only for a schema without namespaces.
/// Immutable; owned by its element.
class QUILLON9_API CXmlAttribute {
 public:
  /// An attribute by itself.
  CXmlAttribute(std::string localName, std::string_view value, std::string namespaceUri);
  virtual ~CXmlAttribute();
  CXmlAttribute(CXmlAttribute const&) = delete;
  CXmlAttribute& operator=(CXmlAttribute const&) = delete;

  /// The name without prefix.
  std::string const& GetLocalName() const { return m_name->localName; }
  /// The value, entities resolved. It lives as long as this.
  std::string const& GetValue() const { return m_value.GetString(m_name->memory); }
  /// The same bytes without a string made of them, with a zero behind them, until GetValue() is called.
  std::string_view GetValueView() const { return m_value.GetView(); }
  /// Empty when the attribute is in no namespace.
  std::string const& GetNamespaceURI() const { return m_name->namespaceUri; }
  /// The next attribute of the same element in document order, or null.
  CXmlAttribute* GetNextAttribute() const {
    return (m_next & kIsLast) != 0 ? nullptr : reinterpret_cast<CXmlAttribute*>(m_next);
  }

  /// Tell whether this is "nil" of the XML Schema instance namespace or of the namespace of declarations.
  bool IsNilAttribute() const;
  /// Tell whether this belongs to the schema-instance machinery ("xmlns", "type", "schemaLocation" or
  /// "noNamespaceSchemaLocation" in one of the same two namespaces), so that no member of a class takes it.
  bool IsNamespaceAttribute() const;

 private:
  friend class CXmlElement;
  static constexpr std::uintptr_t kIsLast = 1;

  /// With a name that a document shares.
  explicit CXmlAttribute(CXmlName const& name) noexcept : m_name(&name) {}
  void Dispose() noexcept;

  CXmlName const* m_name;
  CNodeText m_value;
  std::uintptr_t m_next = kIsLast;  // the next one; of the last one, the first one with the bit kIsLast
};

/// One element of a parsed document: its name, attributes, children, and all character data directly inside it as
/// one text. Where the text stood between the children is not kept.
///
/// An element owns its attributes and its children; a sibling does not own the next one. Everything handed out
/// lives as long as the element. Destroying a tree takes constant stack, however deep it is. One thread at a time,
/// for the const operations too.
class QUILLON9_API CXmlElement {
 public:
  /// An element without name in \p document, which is kept, not owned, and handed to every child.
  explicit CXmlElement(CXmlDocument const* document);
  virtual ~CXmlElement();
  CXmlElement(CXmlElement const&) = delete;
  CXmlElement& operator=(CXmlElement const&) = delete;

  /// The document that the constructor was given.
  CXmlDocument const* GetDocument() const;
  /// The first child, or null.
  CXmlElement* GetFirstElement() const {
    return m_lastChild != nullptr ? reinterpret_cast<CXmlElement*>(m_lastChild->m_next & ~kIsLast) : nullptr;
  }
  /// The next child of the same parent, or null.
  CXmlElement* GetNextSiblingElement() const {
    return (m_next & kIsLast) != 0 ? nullptr : reinterpret_cast<CXmlElement*>(m_next);
  }
  /// The name without prefix; empty until one is set.
  std::string const& GetLocalName() const { return m_name->localName; }
  /// Empty when the element is in no namespace.
  std::string const& GetNamespaceURI() const { return m_name->namespaceUri; }
  /// Both, as long as this keeps them. For readers.
  CXmlName const& GetNames() const { return *m_name; }
  /// All character data directly inside the element, until more is appended.
  std::string const& GetText() const { return m_text.GetString(Memory()); }
  /// The same bytes without a string made of them, with a zero behind them, until GetText() is called or more is
  /// appended.
  std::string_view GetTextView() const { return m_text.GetView(); }
  /// The attributes in document order.
  std::vector<CXmlAttribute*> const& GetAttributes() const;
  /// The first attribute, or null. Going on by GetNextAttribute() costs less than the vector, which is made when it is
  /// asked for.
  CXmlAttribute* GetFirstAttribute() const;
  /// The value of the first attribute with exactly this name and namespace. An absent attribute gives an empty
  /// text that lives as long as the process, just as an empty one does.
  std::string const& GetAttribute(std::string const& localName, std::string const& namespaceUri) const;

  /// The children in document order, for range-for and standard algorithms: all children, those with this name in any
  /// namespace, or those with this name in this namespace (empty for no namespace). A null pointer matches every name.
  /// The arguments are borrowed, see CXmlNameFilter. CXmlNodeIterator describes what may change during a loop. Throws
  /// nothing.
  ///@{
  CXmlNodeRange<CXmlElement> Children(CXmlNameFilter const& localName = {}, CXmlNameFilter const& namespaceUri = {}) {
    return {GetFirstElement(), localName, namespaceUri};
  }
  CXmlNodeRange<CXmlElement const> Children(CXmlNameFilter const& localName = {},
                                            CXmlNameFilter const& namespaceUri = {}) const {
    return {GetFirstElement(), localName, namespaceUri};
  }
  ///@}
  /// The attributes in document order, in the same way. This does not make the vector of GetAttributes().
  ///@{
  CXmlNodeRange<CXmlAttribute> Attributes() { return {GetFirstAttribute(), {}, {}}; }
  CXmlNodeRange<CXmlAttribute const> Attributes() const { return {GetFirstAttribute(), {}, {}}; }
  ///@}
  /// The first attribute with this name, in any namespace or in this one (empty for no namespace). It is owned by this
  /// element; null if there is none. Unlike GetAttribute(), it distinguishes an absent attribute from an empty one.
  CXmlAttribute const* FindAttribute(CXmlNameFilter const& localName, CXmlNameFilter const& namespaceUri = {}) const {
    return CXmlNodeRange<CXmlAttribute const>(GetFirstAttribute(), localName, namespaceUri).First();
  }

  /// Set the local name, or the namespace (empty for none), to a copy of the text.
  ///@{
  void SetElementName(std::string_view localName);
  void SetNamespace(std::string_view namespaceUri);
  ///@}

  /// Append to the text. Appending n bytes in any number of runs costs O(n).
  void AppendText(char const* text) { AppendText(std::string_view(text)); }
  /// The same for the \p length bytes at \p text; a negative length appends nothing.
  ///@{
  void AppendText(char const* text, int length);
  void AppendText(std::string_view text) { m_text.Append(text, Memory()); }
  ///@}
  /// The same for ASCII without zeros and carriage returns. False for another text, or a long one: nothing has changed.
  bool AppendPlainText(std::string_view text) { return m_text.AppendPlain(text, Memory()); }

  /// Append an attribute; names are not checked for duplicates.
  void AddAttribute(std::string_view localName, std::string_view value, std::string_view namespaceUri);

  /// Append a child without name and return it; it stays owned by this element.
  CXmlElement* CreateNewChildElement();
  /// Detach the last child and hand it to the caller, who owns it then. Null when there is none. Goes through the
  /// children. A child of a document's tree still stands in the document's memory: it may outlive the document, whose
  /// memory it keeps then, but the two belong to one thread at a time together.
  CXmlElement* RemoveLastChildElement();

  /// From the memory of a document, or alone; back to where it came from.
  ///@{
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t size, CTreeMemory& memory);
  static void operator delete(void* node, std::size_t size) noexcept;
  static void operator delete(void* node, CTreeMemory& memory) noexcept;
  ///@}

 private:
  friend class CXmlDocument;
  friend class CXmlGeneratedClass;  // which leaves in the memory what it would find out again for every object
  friend class CTreeMemory;
  friend class ObjectContent;  // which counts in the memory what is made from the tree
  static constexpr std::uintptr_t kIsLast = 1;

  /// An element of a document's tree, with a name that is shared there.
  explicit CXmlElement(CXmlName const& name) noexcept : m_name(&name) {}
  CTreeMemory* Memory() const { return m_name->memory; }
  CXmlName& OwnName() { return const_cast<CXmlName&>(*m_name); }
  CXmlAttribute* LastAttribute() const;
  void AddAttribute(CXmlName const* name, std::string_view value);
  void LinkAttribute(CXmlAttribute* attribute);
  CXmlElement* AddChild(CXmlElement* child) noexcept;
  CXmlElement* AddChild(CXmlName const* name);
  CXmlElement* RemoveLastChild(CXmlElement* before) noexcept;
  CXmlElement* TakeChildren(CXmlElement* rest) noexcept;
  void DeleteChildren() noexcept;
  void FreeContents() noexcept;
  void Dispose() noexcept;

  // 48 bytes, a third of a node that held strings and a vector: six percent of the time of reading.
  std::uintptr_t m_next = kIsLast;  // the next sibling; of the last one, the first one with the bit kIsLast
  CXmlElement* m_lastChild = nullptr;
  mutable std::uintptr_t m_attributes = 0;  // the last one, or with the lowest bit the CTreeAttributes
  CXmlName const* m_name;                   // which knows the memory as well; an element by itself owns it
  CNodeText m_text;
};

}  // namespace Quillon9
