#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/content_item.h"
#include "quillon9/xmlio/element_ranges.h"

namespace Quillon9 {

class CTreeMemory;

/// The two names of an element or attribute. The nodes of a document share one object for each pair of names, which
/// CXmlDocument::ShareName() returns. For readers; other callers use the operations of the nodes.
struct CXmlName {
  CXmlName(CXmlName const&) = delete;
  CXmlName& operator=(CXmlName const&) = delete;

  std::string namespaceUri;  ///< empty for none
  std::string localName;     ///< without prefix

 protected:
  /// Only the library creates names, because they know where they belong.
  CXmlName(std::string uri, std::string name) : namespaceUri(std::move(uri)), localName(std::move(name)) {}
  ~CXmlName() = default;
};

/// One attribute of a parsed element. It is immutable and owned by its element. Namespace declarations are attributes
/// only for a schema without namespaces.
class QUILLON9_API CXmlAttribute {
 public:
  /// Create a standalone attribute.
  CXmlAttribute(std::string localName, std::string_view value, std::string namespaceUri);
  virtual ~CXmlAttribute();
  CXmlAttribute(CXmlAttribute const&) = delete;
  CXmlAttribute& operator=(CXmlAttribute const&) = delete;

  /// Return the name without its prefix.
  std::string const& GetLocalName() const { return m_name->localName; }
  /// Return the value with entities resolved. It lives as long as this attribute.
  std::string const& GetValue() const;
  /// Return the same bytes without creating a string, until GetValue() is called. A zero follows them.
  std::string_view GetValueView() const;
  /// Return the namespace; empty if the attribute is in none.
  std::string const& GetNamespaceURI() const { return m_name->namespaceUri; }
  /// Return the next attribute of the same element in document order, or null.
  CXmlAttribute* GetNextAttribute() const {
    return (m_next & kIsLast) != 0 ? nullptr : reinterpret_cast<CXmlAttribute*>(m_next);
  }

  /// Return whether this is "nil" in the XML Schema instance namespace or in the namespace of declarations.
  bool IsNilAttribute() const;
  /// Return whether this attribute belongs to the schema-instance machinery ("xmlns", "type", "schemaLocation" or
  /// "noNamespaceSchemaLocation" in one of the same two namespaces), so that no class member reads it.
  bool IsNamespaceAttribute() const;

 private:
  friend struct XmlNodeAccess;
  static constexpr std::uintptr_t kIsLast = 1;

  /// Use a name that a document shares.
  explicit CXmlAttribute(CXmlName const& name) noexcept : m_name(&name) {}

  CXmlName const* m_name;
  mutable std::uintptr_t m_value = 0;  // only NodeText in the sources can read it
  std::uintptr_t m_next = kIsLast;     // the next one; in the last one, the first one with the bit kIsLast
};

/// One element of a parsed document: its name, attributes and children, and all character data directly inside it as
/// one text. Where text other than white space stands beside children, the element also knows where each child stands in
/// its text, and Content() returns both in order.
///
/// An element owns its attributes and its children; a sibling does not own the next one. Everything that it returns
/// lives as long as the element. Destroying a tree takes constant stack, however deep it is. Only one thread at a time
/// may use an element, even for the const operations.
class QUILLON9_API CXmlElement {
 public:
  /// Create an element without a name in \p document, which is not owned and which every child gets as well.
  explicit CXmlElement(CXmlDocument const* document);
  virtual ~CXmlElement();
  CXmlElement(CXmlElement const&) = delete;
  CXmlElement& operator=(CXmlElement const&) = delete;

  /// Return the document that was passed to the constructor.
  CXmlDocument const* GetDocument() const;
  /// Return the first child, or null.
  CXmlElement* GetFirstElement() const {
    return m_lastChild != nullptr ? reinterpret_cast<CXmlElement*>(m_lastChild->m_next & ~kIsLast) : nullptr;
  }
  /// Return the next child of the same parent, or null.
  CXmlElement* GetNextSiblingElement() const {
    return (m_next & kIsLast) != 0 ? nullptr : reinterpret_cast<CXmlElement*>(m_next);
  }
  /// Return the name without its prefix; empty until one is set.
  std::string const& GetLocalName() const { return m_name->localName; }
  /// Return the namespace; empty if the element is in none.
  std::string const& GetNamespaceURI() const { return m_name->namespaceUri; }
  /// Return both names, until this element gets others. For readers.
  CXmlName const& GetNames() const { return *m_name; }
  /// Return all character data directly inside the element, until more is appended.
  std::string const& GetText() const;
  /// Return the same bytes without creating a string, until GetText() is called or more is appended. A zero follows
  /// them.
  std::string_view GetTextView() const;
  /// Return whether the content is mixed: there are children, and text other than white space beside them. O(n) for n
  /// bytes of white space.
  bool IsMixed() const;
  /// Return the runs of text and the children in document order. If the content is not mixed, white space between
  /// children is left out. The runs are parts of GetTextView().
  ///
  /// Text that was appended to an element whose children had only white space beside them follows all of these
  /// children, together with that white space, and so does text of an element that a reader has not completed.
  ///@{
  CContentList<CXmlElement> Content();
  CContentList<CXmlElement const> Content() const;
  ///@}
  /// Return the attributes in document order.
  std::vector<CXmlAttribute*> const& GetAttributes() const;
  /// Return the first attribute, or null. Continuing with GetNextAttribute() costs less than the vector, which
  /// GetAttributes() creates on demand.
  CXmlAttribute* GetFirstAttribute() const;
  /// Return the value of the first attribute with exactly this name and namespace. For an absent attribute this is an
  /// empty text that lives as long as the process; so does the value of an empty one.
  std::string const& GetAttribute(std::string const& localName, std::string const& namespaceUri) const;

  /// Return the children in document order, for range-for and standard algorithms: all children, those with this name
  /// in any namespace, or those with this name in this namespace (empty for no namespace). A null pointer matches every
  /// name. The arguments are borrowed, see CXmlNameFilter. CXmlNodeIterator describes what may change during a loop.
  /// Throws nothing.
  ///@{
  CXmlNodeRange<CXmlElement> Children(CXmlNameFilter const& localName = {}, CXmlNameFilter const& namespaceUri = {}) {
    return {GetFirstElement(), localName, namespaceUri};
  }
  CXmlNodeRange<CXmlElement const> Children(CXmlNameFilter const& localName = {},
                                            CXmlNameFilter const& namespaceUri = {}) const {
    return {GetFirstElement(), localName, namespaceUri};
  }
  ///@}
  /// Return the attributes in document order, in the same way, without creating the vector of GetAttributes().
  ///@{
  CXmlNodeRange<CXmlAttribute> Attributes() { return {GetFirstAttribute(), {}, {}}; }
  CXmlNodeRange<CXmlAttribute const> Attributes() const { return {GetFirstAttribute(), {}, {}}; }
  ///@}
  /// Return the first attribute with this name, in any namespace or in this one (empty for no namespace). This element
  /// owns it; null if there is none. Unlike GetAttribute(), it distinguishes an absent attribute from an empty one.
  CXmlAttribute const* FindAttribute(CXmlNameFilter const& localName, CXmlNameFilter const& namespaceUri = {}) const {
    return CXmlNodeRange<CXmlAttribute const>(GetFirstAttribute(), localName, namespaceUri).First();
  }

  /// Set the local name, or the namespace (empty for none), to a copy of the text.
  ///@{
  void SetElementName(std::string_view localName);
  void SetNamespace(std::string_view namespaceUri);
  ///@}

  /// Append to the text, after the present children. Appending n bytes in any number of pieces costs O(n).
  void AppendText(char const* text) { AppendText(std::string_view(text)); }
  /// Append the \p length bytes at \p text; a negative length appends nothing.
  ///@{
  void AppendText(char const* text, int length);
  void AppendText(std::string_view text);
  ///@}
  /// Append ASCII without zeros and carriage returns. Return false, with nothing changed, for other or long text.
  bool AppendPlainText(std::string_view text);

  /// Append an attribute. Names are not checked for duplicates.
  void AddAttribute(std::string_view localName, std::string_view value, std::string_view namespaceUri);

  /// Append a child without a name and return it; this element owns it.
  CXmlElement* CreateNewChildElement();
  /// Detach the last child and pass its ownership to the caller. Null if there is none. Walks through the children. A
  /// child from a document's tree stays in the document's memory: it may outlive the document and then keeps that
  /// memory, but only one thread at a time may use the two.
  CXmlElement* RemoveLastChildElement();

  /// Allocate from the memory of a document or from the heap, and free to where the node came from.
  ///@{
  static void* operator new(std::size_t size);
  static void* operator new(std::size_t size, CTreeMemory& memory);
  static void operator delete(void* node, std::size_t size) noexcept;
  static void operator delete(void* node, CTreeMemory& memory) noexcept;
  ///@}

 private:
  friend struct XmlNodeAccess;
  static constexpr std::uintptr_t kIsLast = 1;

  /// Create an element of a document's tree with a name that the tree shares.
  explicit CXmlElement(CXmlName const& name) noexcept : m_name(&name) {}

  // Kept at 48 bytes: the size of a node determines much of the time of reading.
  std::uintptr_t m_next = kIsLast;  // the next sibling; in the last one, the first one with the bit kIsLast
  CXmlElement* m_lastChild = nullptr;
  mutable std::uintptr_t m_attributes = 0;  // the last one; with the lowest bit set, the CTreeAttributes
  CXmlName const* m_name;                   // knows the memory as well; a standalone element owns it
  mutable std::uintptr_t m_text = 0;        // only NodeText in the sources can read it
};

}  // namespace Quillon9
