#pragma once

#include <cstdio>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/binding/serialization_context.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// One attribute of a parsed element. Namespace declarations are attributes only for a schema without namespaces.
/// Immutable; owned by its element.
class QUILLON9_API CXmlAttribute {
 public:
  CXmlAttribute(std::string localName, std::string value, std::string namespaceUri);
  virtual ~CXmlAttribute();

  std::string const& GetLocalName() const { return m_localName; }
  std::string const& GetValue() const { return m_value; }
  /// Empty when the attribute is in no namespace.
  std::string const& GetNamespaceURI() const { return m_namespaceUri; }

  /// Tell whether this is "nil" of the XML Schema instance namespace or of the namespace of declarations.
  bool IsNilAttribute() const;
  /// Tell whether this belongs to the schema-instance machinery ("xmlns", "type", "schemaLocation" or
  /// "noNamespaceSchemaLocation" in one of the same two namespaces), so that no member of a class takes it.
  bool IsNamespaceAttribute() const;

 private:
  std::string m_localName;
  std::string m_value;
  std::string m_namespaceUri;
};

/// One element of a parsed document: its name, attributes, children, and all character data directly inside it as
/// one text. Where the text stood between the children is not kept.
///
/// An element owns its attributes and its children; a sibling does not own the next one. Everything handed out
/// lives as long as the element. Destroying a tree takes constant stack, however deep it is. One thread at a time.
class QUILLON9_API CXmlElement {
 public:
  /// An element without name in \p document, which is kept, not owned, and handed to every child.
  explicit CXmlElement(CXmlDocument const* document);
  virtual ~CXmlElement();
  CXmlElement(CXmlElement const&) = delete;
  CXmlElement& operator=(CXmlElement const&) = delete;

  CXmlDocument const* GetDocument() const { return m_document; }
  /// The first child, or null.
  CXmlElement* GetFirstElement() const { return m_firstChild; }
  /// The next child of the same parent, or null.
  CXmlElement* GetNextSiblingElement() const { return m_nextSibling; }
  std::string const& GetLocalName() const { return m_localName; }
  /// Empty when the element is in no namespace.
  std::string const& GetNamespaceURI() const { return m_namespaceUri; }
  std::string const& GetText() const { return m_text; }
  /// The attributes in document order.
  std::vector<CXmlAttribute*> const& GetAttributes() const { return m_attributes; }
  /// The value of the first attribute with exactly this name and namespace. An absent attribute gives an empty
  /// text that lives as long as the process, just as an empty one does.
  std::string const& GetAttribute(std::string const& localName, std::string const& namespaceUri) const;

  void SetElementName(std::string_view localName) { m_localName.assign(localName); }
  void SetNamespace(std::string_view namespaceUri) { m_namespaceUri.assign(namespaceUri); }

  /// Append to the text. Appending n bytes in any number of runs costs O(n).
  void AppendText(char const* text) { m_text.append(text); }
  /// The same for the \p length bytes at \p text; a negative length appends nothing.
  void AppendText(char const* text, int length);
  void AppendText(std::string_view text) { m_text.append(text); }
  /// Append text in UTF-8, converted by CEncoder and without its carriage returns: with one copy, what
  /// CXmlDocument::AppendTextExcludingCR() does with text that is converted already.
  void AppendUtf8TextExcludingCR(std::string_view utf8);

  /// Append an attribute; names are not checked for duplicates.
  void AddAttribute(std::string localName, std::string value, std::string namespaceUri);
  /// Make room for \p count attributes in all.
  void ReserveAttributes(std::size_t count) { m_attributes.reserve(count); }

  /// Append a child without name and return it; it stays owned by this element.
  CXmlElement* CreateNewChildElement();
  /// Detach the last child and hand it to the caller, who owns it then. Null when there is none. O(1).
  CXmlElement* RemoveLastChildElement();

 private:
  void DeleteChildren();

  CXmlDocument const* m_document;
  CXmlElement* m_nextSibling = nullptr;
  CXmlElement* m_firstChild = nullptr;
  CXmlElement* m_lastChild = nullptr;
  std::vector<CXmlAttribute*> m_attributes;
  std::string m_text;
  std::string m_localName;
  std::string m_namespaceUri;
  /// Makes RemoveLastChildElement constant, so that a filter that drops many of a million siblings stays linear.
  CXmlElement* m_previousSibling = nullptr;
};

/// A document in memory: the bytes it was read from and the tree of its elements. One object can be loaded
/// repeatedly; each load drops what was there. Comments, processing instructions and the document type are not
/// kept; an external DTD or entity is never fetched; the encodings are those that expat knows by itself.
///
/// All text of the tree is in the code page of the process locale, or in UTF-8 under ASCIIOnly(true). A document
/// and its tree belong to one thread at a time.
class QUILLON9_API CXmlDocument {
 public:
  /// Sees each element when it is complete, children first, and answers true to have it removed and destroyed. The
  /// document element is never removed. What it throws ends the load and passes through.
  using ElementFilter = bool (*)(CXmlElement*);

  /// No filter, the default context.
  CXmlDocument();
  explicit CXmlDocument(ElementFilter filter);
  /// \p context is kept, not copied: it must outlive the document. Its schema type is taken now.
  explicit CXmlDocument(CXmlSerializationContext const& context);
  CXmlDocument(ElementFilter filter, CXmlSerializationContext const& context);
  virtual ~CXmlDocument();
  /// Drop the tree, the input and the namespace aliases. Filter, context and schema type stay.
  virtual void Cleanup();
  CXmlDocument(CXmlDocument const&) = delete;
  CXmlDocument& operator=(CXmlDocument const&) = delete;

  /// Load XML text: the bytes of \p text up to its NUL, in the encoding that the document declares, UTF-8 if none.
  /// Compressed input is not recognised here.
  ///
  /// All four loads copy their input, and fail with CQnException on malformed XML
  /// ("[what expat says] at line [number]", the elements read so far stay until Cleanup()), beyond
  /// CLimits::GetMaxElementDepth() ("The element nesting exceeds the limit of %u levels") and beyond 4,294,967,295
  /// bytes ("The document exceeds the limit of 4294967295 bytes").
  /// \throws CQnException "XML String is empty!", also for null.
  void LoadXml(char const* text);
  /// Load wide text. Each character counts with its low 16 bits, so one beyond the basic plane is to be given as a
  /// surrogate pair. A declared encoding must be UTF-16. Failures as above.
  void LoadXml(wchar_t const* text);
  /// Load \p size bytes of XML text, as it is or in a gzip or zlib wrapper.
  /// \throws CQnException "XML Stream is empty!" for no bytes or null; otherwise as above.
  void LoadXmlStream(unsigned char const* data, unsigned long size);
  /// Load a file of XML text, as it is or in a gzip or zlib wrapper. It never waits for the writer of a pipe.
  /// \throws CQnException "Failed to open the file [%s]",
  ///         "Failed to get the size of the file [%s] Error [%s]" (a directory, a pipe),
  ///         "Failed to read the contents of the file [%s] Error [%s]" (also an empty file); otherwise as above.
  ///         The error is the system's text.
  void Load(char const* path);

  /// The root of the tree, owned by this document; null when nothing was read.
  CXmlElement* GetDocumentElement() const { return m_documentElement; }
  /// The URI that \p prefix (empty for the default namespace) was bound to by its last declaration anywhere in the
  /// document; empty for an unknown prefix.
  std::string LookupNamespaceFromAlias(char const* prefix) const;

  CXmlSerializationContext const& GetContext() const { return m_context; }
  /// The schema type that the context had when this document was made.
  SchemaType GetSchemaType() const { return m_schemaType; }
  /// The bytes being read, decompressed; owned by this document until the next Cleanup(). Null before a load.
  unsigned char const* GetInputData() const { return m_inputData; }
  /// Their number.
  unsigned long GetInputSize() const { return m_inputSize; }

  /// \name Building the tree
  /// For readers. Elements are created open and close in reverse order.
  /// @{
  /// Create the document element and open it. Null counts as an empty text.
  /// \throws CQnException "The document has a document element already"; on nesting beyond the limit, as told
  /// above.
  CXmlElement* AddDocElement(char const* namespaceUri, char const* localName);
  CXmlElement* AddDocElement(std::string_view namespaceUri, std::string_view localName);
  /// Create a child of the innermost open element and open it.
  /// \throws CQnException "No element is open"; on nesting beyond the limit, as told above.
  CXmlElement* AddChildElement(char const* namespaceUri, char const* localName);
  CXmlElement* AddChildElement(std::string_view namespaceUri, std::string_view localName);
  /// Close the innermost open element and show it to the filter.
  /// \throws CQnException "No element is open".
  void EndElement();
  /// The innermost open element, or null.
  CXmlElement* GetOpenElement() const { return m_elementStack.empty() ? nullptr : m_elementStack.back(); }
  void AddElementAttribute(CXmlElement* element, std::string localName, std::string value, std::string namespaceUri);
  /// Append \p text to \p element without its carriage returns, up to its NUL or \p length bytes.
  void AppendTextExcludingCR(CXmlElement* element, char const* text, unsigned long length);
  void AppendTextExcludingCR(CXmlElement* element, char const* text);
  /// Bind \p prefix to \p namespaceUri, in place of an earlier binding.
  void SetNamespaceAlias(std::string prefix, std::string namespaceUri);
  /// @}

 private:
  void Init();
  void Parse();
  void ParseText();
  void AllocateInput(unsigned long size);
  CXmlElement* OpenElementOrThrow() const;
  void CheckDepth() const;
  CXmlElement* Open(CXmlElement* element, std::string_view namespaceUri, std::string_view localName);

  CXmlElement* m_documentElement;
  std::vector<CXmlElement*> m_elementStack;
  std::map<std::string, std::string> m_namespaceAliases;
  unsigned char* m_inputData;
  unsigned long m_inputSize;
  SchemaType m_schemaType;
  ElementFilter m_filter;
  CXmlSerializationContext const& m_context;
};

/// Set by AsyncFromXmlFile(bool); reading is the same either way.
QUILLON9_API extern bool ASYNC_FROMXMLFILE;
/// Store \p async in ASYNC_FROMXMLFILE. Call it before threads run.
QUILLON9_API void AsyncFromXmlFile(bool async);

/// The length of an open file in bytes, its position kept; -1 when a step fails (errno tells why).
QUILLON9_API long _filelength(std::FILE* file);

}  // namespace Quillon9
