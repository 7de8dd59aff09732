#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "quillon9/base/plain_classes.h"
#include "quillon9/export.h"
#include "quillon9/values/item_type.h"

namespace Quillon9 {

class CNamespaceScope;

/// Abstract target of everything that produces a document; callers never learn which format comes out. The base
/// holds the stack of open elements, the namespace bindings with their scopes, and the generated prefixes
/// (Namespaces in XML 1.0, W3C).
///
/// Callers keep this order: Open(); for the document only WritePI(), AddNamespace(), SetDefaultNamespace(); then
/// for each element WriteStartElement(), all its attributes (on the document element then WriteInlineSchema()),
/// content and nested elements, WriteEndElement(); at the end Close(). Attributes after content are refused. A
/// writer serves one document and belongs to one thread. A failure leaves the open elements as they are; the
/// destructor frees them.
class QUILLON9_API CXmlWriter {
 public:
  class CXmlWriterContext;

  /// The XML namespace name. Every writer is born with it bound to "xml" and never declares it.
  static constexpr char const* XML_NAMESPACE = "http://www.w3.org/XML/1998/namespace";

  /// Free the open elements, if any are left. Raises nothing.
  virtual ~CXmlWriter();
  CXmlWriter(CXmlWriter const&) = delete;
  CXmlWriter& operator=(CXmlWriter const&) = delete;

  /// Get ready for output. The base does nothing.
  virtual void Open();
  /// End the output. May be called again.
  /// \throws CQnException "An Element has not been closed." while an element is open.
  virtual void Close();
  /// Set the default namespace: of the open element and what is inside it, or of the document element to come.
  /// Only the latter is declared in the output.
  virtual void SetDefaultNamespace(std::string const& uri);
  /// Bind \p uri to the prefix \p alias, replacing the prefix it had: in the open element and what is inside it,
  /// or on the document element to come. Only the latter is declared in the output. \p alias is taken as it is.
  virtual void AddNamespace(std::string const& alias, std::string const& uri);

  /// Write a comment, before the document element.
  virtual void WriteComment(std::string const& text) = 0;
  /// Write a processing instruction, \p text being the whole of it.
  virtual void WritePI(std::string const& text) = 0;
  /// Write \p text, which is attribute text such as a schema location, into the open start tag.
  virtual void WriteInlineSchema(std::string const& text) = 0;
  /// Start an element inside the one that is open, or the document element.
  /// \param namespaceUri empty for no namespace; unbound, it gets a generated prefix for the life of this element.
  /// \throws CQnException "The element nesting exceeds the limit of %u levels" beyond
  /// CLimits::GetMaxElementDepth().
  virtual void WriteStartElement(std::string const& localName, std::string const& namespaceUri) = 0;
  /// Write text content up to a NUL byte; the writer escapes it. \p type may choose the encoding.
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

  /// The first generated prefix that no entry of \p map (namespace URI to prefix) has as its value, compared
  /// exactly. Prefixes that begin with "xml" in any case are reserved and passed over. Linear in the map's size.
  static std::string GetUniquePrefix(std::map<std::string, std::string> const& map);
  /// The generated prefix of number \p number: AA, AB, ... AZ, BA, ... ZZ, then three letters from AAA, and so on.
  /// \throws CQnException "The prefix number [%d] is negative".
  static std::string NsIntToString(int number);

 protected:
  /// \p className names the concrete writer and is not kept.
  explicit CXmlWriter(char const* className);

  /// A context for an element inside the open one, or for the document element. The caller makes it current; until
  /// then it must not be deleted with its parent link set, because the link owns.
  /// \throws CQnException as WriteStartElement() when it lies too deep.
  CXmlWriterContext* NewContext(std::string const& localName, std::string const& namespaceUri);
  /// Leave the open element: free its context and make its parent current. There must be one.
  void PopContext();
  /// \throws CQnException "Attributes must be added before elements" unless a start tag is open.
  void RequireOpenTag() const;
  /// \throws CQnException "There is no open element to end" unless an element is open.
  void RequireOpenElement() const;
  /// \throws CQnException as WriteStartElement() unless the open element, which there must be, may have children.
  void RequireRoomForChild() const;  // in the header, since it is asked for each element that is written at once
  /// The prefix bound to \p uri in \p context. An unbound URI gets a generated prefix in the scope of \p context,
  /// and \p isNew becomes true; otherwise false. The result lives as long as the binding.
  static std::string const& FindOrBindPrefix(CXmlWriterContext& context, std::string const& uri, bool& isNew);
  /// The namespace of xsi:type and xsi:nil (XML Schema: Structures, W3C).
  static std::string const& SchemaInstanceNamespace();

  std::string m_defaultNamespace;                     ///< of the document element, while none is open
  CXmlWriterContext* m_context = nullptr;             ///< innermost open element, owned; null when none is open
  std::map<std::string, std::string> m_namespaceMap;  ///< URI to prefix, for the document element

 private:
  void RequireRoomBelowDeepest() const;

  friend class CXmlGeneratedClass;  // which leaves here what it would find out again for every object

  CXmlWriterContext* m_spare = nullptr;  ///< contexts to use again, linked as parents
  std::string m_namespaceText;           ///< the last one that was handed on, for its memory
  CPlainClasses m_plainClasses;
};

/// One open element of a writer, with the namespace bindings in force inside it. Most elements bind nothing, so a
/// context shares the bindings of its parent, later changes included, until it changes one itself; then it has a copy of
/// its own. When the link to its parent is cleared it keeps the bindings of that moment, whatever becomes of the parent.
/// Another parent in its place does not bring other bindings. Belongs to its writer and one thread; the members are for
/// concrete writers.
class QUILLON9_API CXmlWriter::CXmlWriterContext {
 public:
  /// An element inside \p parent, which must not be null and which this context owns while linked to it.
  CXmlWriterContext(std::string const& localName, std::string const& namespaceUri, CXmlWriterContext* parent);
  /// A document element, with copies of \p defaultNamespace and \p map of its own. \p parent, mostly null, is
  /// owned.
  CXmlWriterContext(std::string const& localName, std::string const& namespaceUri, std::string const& defaultNamespace,
                    std::map<std::string, std::string> const& map, CXmlWriterContext* parent);
  /// Delete the whole chain of parents, however deep. A writer clears the link to a parent that shall live.
  virtual ~CXmlWriterContext();
  CXmlWriterContext(CXmlWriterContext const&) = delete;
  CXmlWriterContext& operator=(CXmlWriterContext const&) = delete;

  /// The default namespace in force, empty for none. Valid until the next change of bindings, here or around.
  std::string const& GetDefaultNamespace() const;
  /// Whether the element is in no namespace or in the default one in force, and so needs no prefix.
  bool NeedsNoPrefix() const {
    if (m_comparedState != m_scopeOwner->m_scopeState) CompareWithDefault();
    return m_needsNoPrefix;
  }
  /// The bindings in force, URI to prefix. Valid until the next change of bindings, here or around.
  std::map<std::string, std::string> const& GetNamespaceMap() const;
  /// The prefix of \p uri in the bindings in force, or null. Valid until the next change of bindings, here or around.
  /// Cheaper than a look into GetNamespaceMap(), which is put together when it is asked for.
  std::string const* FindPrefix(std::string const& uri) const;
  /// What stands for the default namespace and the bindings in force, in the whole process: equal numbers other than 0
  /// mean the same ones. 0 where a caller of GetNamespaceMapValue() may change them unseen.
  std::uint64_t GetScopeState() const { return m_scopeOwner->m_isLoose ? 0 : m_scopeOwner->m_scopeState; }
  /// Set the default namespace for this element and what is inside it.
  void SetDefaultNamespace(std::string const& uri);
  /// Bind \p uri to \p prefix for this element and what is inside it, replacing the prefix it had.
  void SetNamespaceMapValue(std::string const& uri, std::string const& prefix);
  /// The prefix of \p uri in the bindings in force. A URI without one is added to them with an empty prefix, so
  /// look into GetNamespaceMap() first. What is changed here counts for names that are written from then on, inside
  /// elements without bindings of their own as well.
  ///@{
  std::string& GetNamespaceMapValue(std::string const& uri);
  std::string& GetNamespaceMapValue(char const* uri) { return GetNamespaceMapValue(std::string(uri)); }
  ///@}

  unsigned long m_childCount = 0;    ///< child elements started inside this element
  bool m_tagOpen = true;             ///< attributes may still come
  std::uint32_t m_depth = 0;         ///< 0 for the document element
  std::string m_namespace;           ///< URI of this element
  std::string m_elementName;         ///< local name of this element
  CXmlWriterContext* m_parent;       ///< enclosing element, owned while linked
  bool m_attributesWritten = false;  ///< for formats that close a list of attributes
  bool m_inherits;                   ///< default namespace and bindings are those of the parent
  /// For formats that number names: the GetScopeState() with which the element had this number; 0 for never. The next
  /// element that takes this context over keeps it if it has the same name.
  ///@{
  std::uint64_t m_numberedState = 0;
  unsigned long m_nameNumber = 0;
  ///@}

 private:
  friend class CXmlWriter;

  /// Become an element inside \p parent, as by the first constructor. For a context that bound nothing and follows
  /// nobody.
  void Reuse(std::string const& localName, std::string const& namespaceUri, CXmlWriterContext* parent);
  void Follow(CXmlWriterContext& context);
  void StopFollowing();
  void LeaveFollowers();
  template <class Visit>
  void ForEachFollower(Visit visit);
  bool IsLinked() const { return m_followed != nullptr && m_followed == m_parent; }
  void KeepScope();
  CNamespaceScope& ScopeToChange();
  std::string const& BindToGenerated(std::string const& uri);
  void CompareWithDefault() const;

  /// A context without bindings of its own follows the one around it and is in the list of its followers, so that a
  /// change reaches it at once. The owner of the scope is the first one in a row of followed contexts, which follows
  /// none: itself, for a context with bindings of its own.
  ///@{
  CXmlWriterContext* m_scopeOwner;
  CXmlWriterContext* m_followed = nullptr;
  CXmlWriterContext* m_firstFollower = nullptr;
  CXmlWriterContext* m_nextFollower = nullptr;  // of m_followed
  CXmlWriterContext** m_place = nullptr;        // what points to this one in the list of followers
  ///@}
  std::shared_ptr<CNamespaceScope> m_scope;  ///< of an owner, else null
  /// Of an owner: a number that changes with the default namespace and the bindings, and that no others have.
  std::uint64_t m_scopeState = 0;
  bool m_isLoose = false;  ///< of an owner: a binding was handed out for changes
  /// The number of the scope in force when the namespace of this element was compared with the default; 0 for never.
  mutable std::uint64_t m_comparedState = 0;
  mutable bool m_needsNoPrefix = false;
  bool m_isDeepest = false;  ///< no element may be inside this one, by the limit at its start
};

inline void CXmlWriter::RequireRoomForChild() const {
  if (m_context->m_isDeepest) RequireRoomBelowDeepest();
}

}  // namespace Quillon9
