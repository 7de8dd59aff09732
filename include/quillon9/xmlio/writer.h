#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "quillon9/export.h"
#include "quillon9/values/item_type.h"

namespace Quillon9 {

class CNamespaceScope;
class CheckingWriter;
class MixedTexts;
class PlainClasses;
struct CMarkup;

/// Abstract target of everything that produces a document; callers do not learn which format comes out. The base class
/// holds the stack of open elements, the namespace bindings with their scopes, and the generated prefixes (Namespaces
/// in XML 1.0, W3C).
///
/// Callers keep this order: Open(); for the document only WritePI(), AddNamespace(), SetDefaultNamespace(); then for
/// each element WriteStartElement(), all its attributes (on the document element then WriteInlineSchema()), content and
/// nested elements, WriteEndElement(); at the end Close(). Attributes after content are refused. A writer serves one
/// document and belongs to one thread. After a failure the open elements stay open; the destructor frees them.
class QUILLON9_API CXmlWriter {
 public:
  class CXmlWriterContext;

  /// The XML namespace name. Every writer has it bound to "xml" from the start and never declares it.
  static constexpr char const* XML_NAMESPACE = "http://www.w3.org/XML/1998/namespace";

  /// Free the open elements, if any are left. Throws nothing.
  virtual ~CXmlWriter();
  CXmlWriter(CXmlWriter const&) = delete;
  CXmlWriter& operator=(CXmlWriter const&) = delete;

  /// Prepare for output. The base class does nothing.
  virtual void Open();
  /// End the output. May be called more than once.
  /// \throws CQnException "An Element has not been closed." while an element is open.
  virtual void Close();
  /// Set the default namespace of the open element and its contents, or of the document element if none has started
  /// yet. Only the latter is declared in the output.
  virtual void SetDefaultNamespace(std::string const& uri);
  /// Bind \p uri to the prefix \p alias, replacing its previous prefix, in the open element and its contents, or on the
  /// document element if none has started yet. Only the latter is declared in the output. \p alias is not checked.
  virtual void AddNamespace(std::string const& alias, std::string const& uri);

  /// Write a comment, before the document element.
  virtual void WriteComment(std::string const& text) = 0;
  /// Write a processing instruction that consists of \p text.
  virtual void WritePI(std::string const& text) = 0;
  /// Write \p text, which is attribute text such as a schema location, into the open start tag.
  virtual void WriteInlineSchema(std::string const& text) = 0;
  /// Start an element inside the open element, or the document element.
  /// \param namespaceUri empty for no namespace; an unbound one gets a generated prefix for the life of this element.
  /// \throws CQnException "The element nesting exceeds the limit of %u levels" beyond CLimits::GetMaxElementDepth().
  virtual void WriteStartElement(std::string const& localName, std::string const& namespaceUri) = 0;
  /// Write text content up to a NUL byte; the writer escapes it. \p type may select the encoding.
  virtual void WriteString(std::string const& value, ItemType type) = 0;
  /// End the open element.
  /// \throws CQnException "There is no open element to end".
  virtual void WriteEndElement() = 0;
  /// Write an attribute of the open element. An unbound \p namespaceUri gets a generated prefix.
  /// \throws CQnException "Attributes must be added before elements" when no start tag is open.
  virtual void WriteAttributeString(std::string const& localName, std::string const& namespaceUri,
                                    std::string const& value, ItemType type) = 0;
  /// Write the xsi:type attribute for the type \p typeName of \p namespaceUri.
  /// \throws CQnException as WriteAttributeString().
  virtual void WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) = 0;
  /// Write xsi:nil="true".
  /// \throws CQnException as WriteAttributeString().
  virtual void WriteAttributeNil() = 0;
  /// Write an element that contains only text. The base class calls WriteStartElement(), WriteString() and
  /// WriteEndElement(); a concrete writer may have a faster way to the same output. The writers of the library use
  /// theirs only for objects of exactly their own class, so a derived class sees its overrides of the three operations
  /// called.
  /// \param value a NUL byte must follow it.
  /// \param member 0, or the process-wide number of a class member, under which a writer may remember the name; one
  ///        number must always come with the same two names.
  /// \throws CQnException as these three operations do.
  virtual void WriteTextElement(std::string const& localName, std::string const& namespaceUri, std::string_view value,
                                ItemType type, std::uint64_t member = 0);

  /// Let \p prefix stand for \p uri in the element that was started last and its contents, for names in values. Only
  /// before its first attribute. Return false, with nothing changed, if it stands for another namespace there, if it is
  /// not a name of ASCII characters, or if it or the namespace is reserved. The writers of the library declare it in the
  /// output.
  /// \throws CQnException "Attributes must be added before elements" when no start tag is open.
  virtual bool DeclarePrefix(std::string const& prefix, std::string const& uri);
  /// Say, after its attributes, that the open element has text between its children, so that white space counts in it
  /// and its contents. The base class does nothing.
  virtual void PreserveSpace();
  /// Write a comment or processing instruction into the open element, after its attributes, or into the document around
  /// its element. The base class writes nothing.
  virtual void WriteMarkup(CMarkup const& markup);
  /// Return a prefix for names of the namespace \p uri, which is not empty, in values of the element that was started
  /// last: the one that is bound, or else \p preferred where DeclarePrefix() accepts it, or else a generated one, which
  /// is declared.
  /// \throws CQnException as DeclarePrefix().
  std::string PrefixForValues(std::string const& uri, std::string const& preferred);

  /// Return the first generated prefix that does not occur as a value in \p map (namespace URI to prefix), compared
  /// exactly. Prefixes that begin with "xml" in any case are reserved and skipped. Linear in the map's size.
  static std::string GetUniquePrefix(std::map<std::string, std::string> const& map);
  /// Return the generated prefix \p number: AA, AB, ... AZ, BA, ... ZZ, then three letters from AAA, and so on.
  /// \throws CQnException "The prefix number [%d] is negative".
  static std::string NsIntToString(int number);

 protected:
  /// \p className names the concrete writer and is not kept.
  explicit CXmlWriter(char const* className);

  /// Return a context for an element inside the open one, or for the document element. The caller makes it current;
  /// until then it must not be deleted while its parent link is set, because the link owns the parent.
  /// \throws CQnException as WriteStartElement() if it is nested too deeply.
  CXmlWriterContext* NewContext(std::string const& localName, std::string const& namespaceUri);
  /// Leave the open element, which must exist: free its context and make its parent current.
  void PopContext();
  /// Check that a start tag is open.
  /// \throws CQnException "Attributes must be added before elements" otherwise.
  void RequireOpenTag() const;
  /// Check that an element is open.
  /// \throws CQnException "There is no open element to end" otherwise.
  void RequireOpenElement() const;
  /// Return the prefix bound to \p uri in \p context and set \p isNew to false. An unbound URI gets a generated prefix
  /// in the scope of \p context, and \p isNew becomes true. The result lives as long as the binding.
  static std::string const& FindOrBindPrefix(CXmlWriterContext& context, std::string const& uri, bool& isNew);
  /// Concrete writers call this before they write a child of the open element, if there is one, and count the child:
  /// where an object has mixed content, it writes the text in front of that child with WriteString(). A writer that does
  /// not call it gets all text of such an object after the children.
  void WriteTextBeforeChild();
  /// DeclarePrefix() in \p context; \p isNew says whether the output needs a declaration.
  static bool BindPrefix(CXmlWriterContext& context, std::string const& prefix, std::string const& uri, bool& isNew);
  /// The element that was started last; null if there is none.
  virtual CXmlWriterContext* StartedElement() const;
  /// The namespace of xsi:type and xsi:nil (XML Schema: Structures, W3C).
  static std::string const& SchemaInstanceNamespace();

  std::string m_defaultNamespace;                     ///< of the document element, until it starts
  CXmlWriterContext* m_context = nullptr;             ///< innermost open element, owned; null when none is open
  std::map<std::string, std::string> m_namespaceMap;  ///< URI to prefix, for the document element

 private:
  friend struct XmlWriterAccess;

  CXmlWriterContext* m_spare = nullptr;  ///< contexts for reuse, linked as parents
  MixedTexts* m_mixedTexts = nullptr;    ///< of the innermost object with mixed content, borrowed
  std::string m_namespaceText;
  std::unique_ptr<PlainClasses> m_plainClasses;
  CheckingWriter* m_checking = nullptr;  // this one, if it only checks
};

/// One open element of a writer, with the namespace bindings in force inside it. Most elements bind nothing, so a
/// context shares the bindings of its parent, later changes included, until it changes one itself and gets its own
/// copy. When the link to its parent is cleared, it keeps the bindings of that moment, whatever happens to the parent.
/// Setting another parent does not change the bindings. A context belongs to its writer and one thread; the members are
/// for concrete writers.
class QUILLON9_API CXmlWriter::CXmlWriterContext {
 public:
  /// Create an element inside \p parent, which must not be null and which this context owns while linked to it.
  CXmlWriterContext(std::string const& localName, std::string const& namespaceUri, CXmlWriterContext* parent);
  /// Create a document element with its own copies of \p defaultNamespace and \p map. \p parent, usually null, is
  /// owned.
  CXmlWriterContext(std::string const& localName, std::string const& namespaceUri, std::string const& defaultNamespace,
                    std::map<std::string, std::string> const& map, CXmlWriterContext* parent);
  /// Delete the whole chain of parents, however deep. A writer clears the link to a parent that must survive.
  virtual ~CXmlWriterContext();
  CXmlWriterContext(CXmlWriterContext const&) = delete;
  CXmlWriterContext& operator=(CXmlWriterContext const&) = delete;

  /// Return the default namespace in force, empty for none. Valid until the next change of bindings here or in a
  /// parent.
  std::string const& GetDefaultNamespace() const;
  /// Return whether the element is in no namespace or in the default one in force, and so needs no prefix.
  bool NeedsNoPrefix() const {
    if (m_comparedState != m_scopeOwner->m_scopeState) CompareWithDefault();
    return m_needsNoPrefix;
  }
  /// Return the bindings in force, URI to prefix. Valid until the next change of bindings here or in a parent.
  std::map<std::string, std::string> const& GetNamespaceMap() const;
  /// Return the prefix of \p uri in the bindings in force, or null. Valid until the next change of bindings here or in
  /// a parent. Cheaper than a lookup in GetNamespaceMap(), which is built on request.
  std::string const* FindPrefix(std::string const& uri) const;
  /// Set the default namespace for this element and its contents.
  void SetDefaultNamespace(std::string const& uri);
  /// Bind \p uri to \p prefix for this element and its contents, replacing its previous prefix.
  void SetNamespaceMapValue(std::string const& uri, std::string const& prefix);
  /// Return the prefix of \p uri in the bindings in force. A URI without a prefix is added with an empty one, so check
  /// GetNamespaceMap() first. A change through the reference affects the names written from then on, including those
  /// inside elements without bindings of their own.
  ///@{
  std::string& GetNamespaceMapValue(std::string const& uri);
  std::string& GetNamespaceMapValue(char const* uri) { return GetNamespaceMapValue(std::string(uri)); }
  ///@}

  unsigned long m_childCount = 0;    ///< child elements started inside this element
  bool m_tagOpen = true;             ///< attributes may still follow
  std::uint32_t m_depth = 0;         ///< 0 for the document element
  std::string m_namespace;           ///< URI of this element
  std::string m_elementName;         ///< local name of this element
  CXmlWriterContext* m_parent;       ///< enclosing element, owned while linked
  bool m_attributesWritten = false;  ///< for formats that close a list of attributes
  bool m_inherits;                   ///< default namespace and bindings come from the parent

 private:
  friend struct XmlWriterAccess;

  void CompareWithDefault() const;

  /// Who shares the bindings of whom.
  ///@{
  CXmlWriterContext* m_scopeOwner;
  CXmlWriterContext* m_followed = nullptr;
  CXmlWriterContext* m_firstFollower = nullptr;
  CXmlWriterContext* m_nextFollower = nullptr;  // of m_followed
  CXmlWriterContext** m_place = nullptr;        // what points to this one in the list of followers
  ///@}
  std::shared_ptr<CNamespaceScope> m_scope;  ///< of an owner, otherwise null
  /// For an owner: a number that is unique to this state of the default namespace and the bindings.
  std::uint64_t m_scopeState = 0;
  bool m_isLoose = false;  ///< for an owner: a binding was handed out for changes
  /// The state number of the scope when this element's namespace was last compared with the default; 0 for never.
  mutable std::uint64_t m_comparedState = 0;
  mutable bool m_needsNoPrefix = false;
  bool m_isMixed = false;             ///< m_mixedTexts of the writer are those of this element
  bool m_isDeepest = false;           ///< no element may be inside this one, by the limit when it started
  std::uint64_t m_numberedState = 0;  ///< the state number of the scope when the name got its number; 0 for never
  unsigned long m_nameNumber = 0;
};

}  // namespace Quillon9
