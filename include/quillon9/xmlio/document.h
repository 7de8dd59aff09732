#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/element.h"
#include "quillon9/xmlio/schema_type.h"

namespace Quillon9 {

class CTreeMemory;

/// A document in memory: the bytes it was read from and the tree of its elements. An object can be loaded repeatedly;
/// each load drops the previous contents. The tree has no comments, processing instructions and document type; under
/// CXmlSerializationContext::SetKeepUnknown(), the document keeps the first two for objects that are read from it.
/// External DTDs and entities are never fetched. The supported encodings are those built into expat and
/// every single-byte encoding that extends ASCII and that iconv() knows.
///
/// All text of the tree is in the code page of the process locale, or in UTF-8 under ASCIIOnly(true) or if the context
/// asks for TextEncoding_UTF8 when the tree is loaded. Only one thread at a time may use a document and its tree.
class QUILLON9_API CXmlDocument {
 public:
  /// Called for each element when it is complete, children first. Returns true to have the element removed and
  /// destroyed. The document element is never removed, nor is an element that the filter itself has detached. An
  /// exception from the filter ends the load and reaches its caller. If the filter loads or cleans up the document, the
  /// load fails with CQnException "The filter changed the document that is being read".
  using ElementFilter = bool (*)(CXmlElement*);

  /// Use no filter and the default context.
  CXmlDocument();
  /// Use \p filter and the default context.
  explicit CXmlDocument(ElementFilter filter);
  /// Keep a reference to \p context, which must outlive the document. Its schema type is read now.
  ///@{
  explicit CXmlDocument(CXmlSerializationContext const& context);
  CXmlDocument(ElementFilter filter, CXmlSerializationContext const& context);
  ///@}
  virtual ~CXmlDocument();
  /// Drop the tree, the input and the namespace aliases. The filter, context and schema type stay.
  virtual void Cleanup();
  CXmlDocument(CXmlDocument const&) = delete;
  CXmlDocument& operator=(CXmlDocument const&) = delete;

  /// Load XML text: the bytes of \p text up to its NUL, in the encoding that the document declares, or UTF-8 if it
  /// declares none. Compressed input and Fast Infoset are not recognised here.
  ///
  /// All four loads copy their input. They fail with CQnException on malformed XML ("[what expat says] at line
  /// [number]"; the elements read so far stay until Cleanup()), beyond CLimits::GetMaxElementDepth() ("The element
  /// nesting exceeds the limit of %u levels") and beyond 4,294,967,295 bytes ("The document exceeds the limit of
  /// 4294967295 bytes"; for a file, with its path: see Load()). CQnException::GetPlace() says where in the input a
  /// reader stopped, with the path of the innermost element that is open there. To name the elements as the document
  /// spells them, a load that fails reads the input again up to that place.
  /// \throws CQnException "XML String is empty!", also for null.
  void LoadXml(char const* text);
  /// Load wide text. Only the low 16 bits of each character count, so pass a character beyond the basic plane as a
  /// surrogate pair. A declared encoding must be UTF-16. Failures as above; the offsets of their places count the bytes
  /// of \p text.
  void LoadXml(wchar_t const* text);
  /// Load \p size bytes of XML text or Fast Infoset (Rec. ITU-T X.891), plain or compressed with gzip or zlib. The
  /// filter does not see the elements of Fast Infoset.
  /// \throws CQnException "XML Stream is empty!" for null or no bytes; otherwise as above. For malformed Fast Infoset
  ///         "Failed to parse FastInfoset. [reason]", or what CFastInfosetBinaryData throws for encoded values.
  ///         CQnUtf16Exception for a string in UTF-16 in Fast Infoset.
  void LoadXmlStream(unsigned char const* data, unsigned long size);
  /// Load a file of XML text or Fast Infoset, as LoadXmlStream() does. Never wait for the writer of a pipe.
  /// \throws CQnException "Failed to open the file [%s]",
  ///         "Failed to get the size of the file [%s] Error [%s]" (a directory, a pipe),
  ///         "Failed to read the contents of the file [%s] Error [%s]" (also an empty file),
  ///         "The file [%s] exceeds the limit of 4294967295 bytes"; otherwise as above. Error is the system's text.
  ///         The place of each of them names the file.
  void Load(char const* path);

  /// Return the root of the tree, owned by this document; null if nothing was read.
  CXmlElement* GetDocumentElement() const { return m_documentElement; }
  /// Return the URI to which the last declaration anywhere in the document bound \p prefix (empty for the default
  /// namespace); empty for an unknown prefix.
  std::string LookupNamespaceFromAlias(char const* prefix) const;
  /// Store the URI to which \p prefix (empty for the default namespace) is bound at \p element of this tree, and return
  /// true; false, and an empty URI, for none. After a load with a filter, the last declaration in the document counts.
  bool LookupNamespace(CXmlElement const& element, std::string_view prefix, std::string& namespaceUri) const;
  /// Return all prefixes, each with that URI, until the next change of the document.
  std::map<std::string, std::string> const& GetNamespaceAliases() const { return m_namespaceAliases; }

  /// Return the context that was passed to the constructor.
  CXmlSerializationContext const& GetContext() const { return m_context; }
  /// Return the schema type that the context had when this document was constructed.
  SchemaType GetSchemaType() const { return m_schemaType; }
  /// Return the bytes of the input, decompressed, which live until the next Cleanup(). Null before a load.
  unsigned char const* GetInputData() const { return m_inputData; }
  /// Return the number of these bytes.
  unsigned long GetInputSize() const { return m_inputSize; }

  /// Return whether the context asks for CDATA sections to be read as plain text.
  bool StripsCDATA() const;

  /// \name Building the tree
  /// For readers. Elements are open when created, and close in reverse order.
  /// @{
  /// Create the document element and open it. Null counts as an empty text.
  /// \throws CQnException "The document has a document element already"; on nesting beyond the limit, as above.
  CXmlElement* AddDocElement(char const* namespaceUri, char const* localName);
  CXmlElement* AddDocElement(std::string_view namespaceUri, std::string_view localName);
  CXmlElement* AddDocElement(CXmlName const* name);
  /// Create a child of the innermost open element and open it.
  /// \throws CQnException "No element is open"; on nesting beyond the limit, as above.
  CXmlElement* AddChildElement(char const* namespaceUri, char const* localName);
  CXmlElement* AddChildElement(std::string_view namespaceUri, std::string_view localName);
  CXmlElement* AddChildElement(CXmlName const* name);
  /// Return the name object that all nodes of this document with these names share. It lives until Cleanup(), or longer
  /// while a node that a caller detached exists.
  CXmlName const* ShareName(std::string_view namespaceUri, std::string_view localName);
  /// Close the innermost open element and pass it to the filter.
  /// \throws CQnException "No element is open".
  void EndElement();
  /// Close the innermost open element without calling the filter.
  /// \throws CQnException "No element is open".
  void CloseElement();
  std::size_t GetOpenElementCount() const { return m_elementStack.size(); }
  /// Return the innermost open element, or null.
  CXmlElement* GetOpenElement() const { return m_elementStack.empty() ? nullptr : m_elementStack.back().element; }
  void AddElementAttribute(CXmlElement* element, std::string_view localName, std::string_view value,
                           std::string_view namespaceUri);
  /// Add an attribute to an element of this document.
  void AddElementAttribute(CXmlElement* element, CXmlName const* name, std::string_view value);
  /// Append \p text, up to its NUL or \p length bytes, to \p element without the carriage returns.
  void AppendTextExcludingCR(CXmlElement* element, char const* text, unsigned long length);
  void AppendTextExcludingCR(CXmlElement* element, char const* text);
  /// Count \p bytes of content that a reader has put into the tree by itself. The other operations here count what they
  /// add.
  /// \throws CQnException "The content of the document exceeds the limit of %llu bytes" when the input that is being
  ///         loaded has delivered more than CLimits allows: see CLimits::GetMaxContentSize().
  void CountContent(std::size_t bytes) {
    m_contentSize += bytes;
    if (m_contentSize > m_contentLimit) ThrowContentTooLarge();
  }
  /// Return how many bytes CountContent() still accepts.
  std::uint64_t GetContentLeft() const { return m_contentSize < m_contentLimit ? m_contentLimit - m_contentSize : 0; }
  /// Bind \p prefix to \p namespaceUri, replacing an earlier binding.
  void SetNamespaceAlias(std::string prefix, std::string namespaceUri);
  /// Report that the input has a document type declaration.
  /// \throws CQnException "The document has a document type declaration, which is not allowed" after
  ///         CLimits::SetAllowDocumentType(false).
  static void CheckDocumentType();
  /// @}

 private:
  struct OpenElement {
    CXmlElement* element;
    /// How many of the last numbers in m_places are those of its children.
    std::uint32_t placed;
    bool hadChildren;
  };

  friend struct XmlNodeAccess;
  void CopyInput(void const* data, unsigned long size);
  void Parse(char const* file = nullptr);
  void DecompressInput();
  void ReadFile(char const* path);
  bool ParseInfoset(char const* file);
  void ParseText(bool isWide = false, char const* file = nullptr);
  unsigned char* AllocateInput(unsigned long size);
  CXmlElement* OpenElementOrThrow() const {
    if (m_elementStack.empty()) ThrowNoneOpen();
    return m_elementStack.back().element;
  }
  [[noreturn]] static void ThrowNoneOpen();
  void NotePlace(CXmlElement const& parent);
  void EndFilteredElement();
  bool AskFilter(CXmlElement* element);
  void DropPlaceOfLastChild();
  void SettlePlaces();
  void CheckDepth() const;
  void StartCounting();
  [[noreturn]] void ThrowContentTooLarge() const;
  CTreeMemory& Memory();

  CXmlElement* m_documentElement = nullptr;
  std::vector<OpenElement> m_elementStack;
  /// For each open element, the previous child of the same parent, so that a filter that drops many elements stays
  /// linear. Empty without a filter.
  std::vector<CXmlElement*> m_previous;
  /// For the last children of each open element, all of them since it has text: the size of the text in front. Kept
  /// only until it is known whether there is text besides white space.
  std::vector<std::size_t> m_places;
  std::map<std::string, std::string> m_namespaceAliases;
  unsigned char const* m_inputData = nullptr;
  unsigned long m_inputSize = 0;
  std::unique_ptr<unsigned char[]> m_ownedInput;
  SchemaType m_schemaType;
  ElementFilter m_filter;
  CXmlSerializationContext const& m_context;
  std::uint64_t m_cleanups = 0;
  std::uint64_t m_contentSize = 0;
  static constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};
  std::uint64_t m_contentLimit = kNoLimit;  // for trees that a program builds
  /// The memory of the nodes, created with the first one.
  CTreeMemory* m_memory = nullptr;
};

/// The switch that AsyncFromXmlFile(bool) sets. It does not affect reading.
QUILLON9_API extern bool ASYNC_FROMXMLFILE;
/// Store \p async in ASYNC_FROMXMLFILE. Call it before other threads run.
QUILLON9_API void AsyncFromXmlFile(bool async);

/// Return the length of an open file in bytes and keep its position; -1 if a step fails (errno has the reason).
QUILLON9_API long _filelength(std::FILE* file);

}  // namespace Quillon9
