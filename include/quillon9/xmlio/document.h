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

/// A document in memory: the bytes it was read from and the tree of its elements. One object can be loaded
/// repeatedly; each load drops what was there. Comments, processing instructions and the document type are not
/// kept; an external DTD or entity is never fetched; the encodings are those that expat knows by itself.
///
/// All text of the tree is in the code page of the process locale, or in UTF-8 under ASCIIOnly(true). A document
/// and its tree belong to one thread at a time.
class QUILLON9_API CXmlDocument {
 public:
  /// Sees each element when it is complete, children first, and answers true to have it removed and destroyed. The
  /// document element is never removed, nor is an element that the filter itself has detached. What it throws ends the
  /// load and passes through, and so does CQnException "The filter changed the document that is being read" after one
  /// that loads or cleans up the document.
  using ElementFilter = bool (*)(CXmlElement*);

  /// No filter, the default context.
  CXmlDocument();
  /// With \p filter and the default context.
  explicit CXmlDocument(ElementFilter filter);
  /// \p context is kept, not copied: it must outlive the document. Its schema type is taken now.
  ///@{
  explicit CXmlDocument(CXmlSerializationContext const& context);
  CXmlDocument(ElementFilter filter, CXmlSerializationContext const& context);
  ///@}
  virtual ~CXmlDocument();
  /// Drop the tree, the input and the namespace aliases. Filter, context and schema type stay.
  virtual void Cleanup();
  CXmlDocument(CXmlDocument const&) = delete;
  CXmlDocument& operator=(CXmlDocument const&) = delete;

  /// Load XML text: the bytes of \p text up to its NUL, in the encoding that the document declares, UTF-8 if none.
  /// Compressed input and Fast Infoset are not recognised here.
  ///
  /// All four loads copy their input, and fail with CQnException on malformed XML
  /// ("[what expat says] at line [number]", the elements read so far stay until Cleanup()), beyond
  /// CLimits::GetMaxElementDepth() ("The element nesting exceeds the limit of %u levels") and beyond 4,294,967,295
  /// bytes ("The document exceeds the limit of 4294967295 bytes"; of a file, with its path: Load()).
  /// \throws CQnException "XML String is empty!", also for null.
  void LoadXml(char const* text);
  /// Load wide text. Each character counts with its low 16 bits, so one beyond the basic plane is to be given as a
  /// surrogate pair. A declared encoding must be UTF-16. Failures as above.
  void LoadXml(wchar_t const* text);
  /// Load \p size bytes of XML text or Fast Infoset (Rec. ITU-T X.891), as they are or in a gzip or zlib wrapper. The
  /// filter does not see the elements of Fast Infoset.
  /// \throws CQnException "XML Stream is empty!" for no bytes or null; otherwise as above. For malformed Fast Infoset
  ///         "Failed to parse FastInfoset. [reason]", or what CFastInfosetBinaryData says of encoded values.
  ///         CQnUtf16Exception for a string in UTF-16 in it.
  void LoadXmlStream(unsigned char const* data, unsigned long size);
  /// Load a file of XML text or Fast Infoset, as LoadXmlStream() does. It never waits for the writer of a pipe.
  /// \throws CQnException "Failed to open the file [%s]",
  ///         "Failed to get the size of the file [%s] Error [%s]" (a directory, a pipe),
  ///         "Failed to read the contents of the file [%s] Error [%s]" (also an empty file),
  ///         "The file [%s] exceeds the limit of 4294967295 bytes"; otherwise as above. The error is the system's text.
  void Load(char const* path);

  /// The root of the tree, owned by this document; null when nothing was read.
  CXmlElement* GetDocumentElement() const { return m_documentElement; }
  /// The URI that \p prefix (empty for the default namespace) was bound to by its last declaration anywhere in the
  /// document; empty for an unknown prefix.
  std::string LookupNamespaceFromAlias(char const* prefix) const;
  /// All prefixes, each with that URI. They live until the next change of the document.
  std::map<std::string, std::string> const& GetNamespaceAliases() const { return m_namespaceAliases; }

  /// The context that the constructor was given.
  CXmlSerializationContext const& GetContext() const { return m_context; }
  /// The schema type that the context had when this document was made.
  SchemaType GetSchemaType() const { return m_schemaType; }
  /// The bytes being read, decompressed; they live until the next Cleanup(). Null before a load, and behind one by
  /// CXmlObjectBase, unless they were compressed.
  unsigned char const* GetInputData() const { return m_inputData; }
  /// Their number.
  unsigned long GetInputSize() const { return m_inputSize; }

  /// Whether the context asks for CDATA sections to be read as plain text.
  bool StripsCDATA() const;

  /// \name Building the tree
  /// For readers. Elements are created open and close in reverse order.
  /// @{
  /// Create the document element and open it. Null counts as an empty text.
  /// \throws CQnException "The document has a document element already"; on nesting beyond the limit, as told
  /// above.
  CXmlElement* AddDocElement(char const* namespaceUri, char const* localName);
  CXmlElement* AddDocElement(std::string_view namespaceUri, std::string_view localName);
  CXmlElement* AddDocElement(CXmlName const* name);
  /// Create a child of the innermost open element and open it.
  /// \throws CQnException "No element is open"; on nesting beyond the limit, as told above.
  CXmlElement* AddChildElement(char const* namespaceUri, char const* localName);
  CXmlElement* AddChildElement(std::string_view namespaceUri, std::string_view localName);
  CXmlElement* AddChildElement(CXmlName const* name);
  /// The name that all nodes of this document with these names share. It lives until Cleanup(), and as long as there is
  /// a node that a caller detached.
  CXmlName const* ShareName(std::string_view namespaceUri, std::string_view localName);
  /// Close the innermost open element and show it to the filter.
  /// \throws CQnException "No element is open".
  void EndElement() {
    if (m_filter != nullptr) {
      EndFilteredElement();
    } else {
      CloseElement();
    }
  }
  /// Close the innermost open element, without the filter.
  /// \throws CQnException "No element is open".
  void CloseElement() {
    OpenElementOrThrow();
    m_elementStack.pop_back();
  }
  std::size_t GetOpenElementCount() const { return m_elementStack.size(); }
  /// The innermost open element, or null.
  CXmlElement* GetOpenElement() const { return m_elementStack.empty() ? nullptr : m_elementStack.back().element; }
  void AddElementAttribute(CXmlElement* element, std::string_view localName, std::string_view value,
                           std::string_view namespaceUri);
  /// To an element of this document.
  void AddElementAttribute(CXmlElement* element, CXmlName const* name, std::string_view value);
  /// Append \p text to \p element without its carriage returns, up to its NUL or \p length bytes.
  void AppendTextExcludingCR(CXmlElement* element, char const* text, unsigned long length);
  void AppendTextExcludingCR(CXmlElement* element, char const* text);
  /// Note that a reader has put \p bytes of content into the tree by itself. The other operations here do it
  /// themselves.
  /// \throws CQnException "The content of the document exceeds the limit of %llu bytes" when the input that is being
  ///         loaded has delivered more than CLimits allows: see CLimits::GetMaxContentSize().
  void CountContent(std::size_t bytes) {
    m_contentSize += bytes;
    if (m_contentSize > m_contentLimit) ThrowContentTooLarge();
  }
  /// How many bytes CountContent() still takes.
  std::uint64_t GetContentLeft() const { return m_contentSize < m_contentLimit ? m_contentLimit - m_contentSize : 0; }
  /// Bind \p prefix to \p namespaceUri, in place of an earlier binding.
  void SetNamespaceAlias(std::string prefix, std::string namespaceUri);
  /// Note that the input has a document type declaration.
  /// \throws CQnException "The document has a document type declaration, which is not allowed" after
  ///         CLimits::SetAllowDocumentType(false).
  static void CheckDocumentType();
  /// @}

 private:
  struct OpenElement {
    CXmlElement* element;
    /// The child of the same parent in front of it, so that a filter that drops many stays linear.
    CXmlElement* before;
  };

  friend class ObjectContent;   // which gives back what objects counted
  friend class CXmlObjectBase;  // which reads from bytes that outlive its document
  /// LoadXml() and LoadXmlStream() without the copy. It would cost three percent of reading, and a byte for each byte.
  ///@{
  void LoadLentXml(char const* text);
  void LoadLentXmlStream(unsigned char const* data, unsigned long size);
  ///@}
  void LendInput(void const* data, unsigned long size);
  void ReturnInput();
  void CopyInput(void const* data, unsigned long size);
  void Parse();
  void DecompressInput();
  void ParseText();
  unsigned char* AllocateInput(unsigned long size);
  CXmlElement* OpenElementOrThrow() const {
    if (m_elementStack.empty()) ThrowNoneOpen();
    return m_elementStack.back().element;
  }
  [[noreturn]] static void ThrowNoneOpen();
  CXmlElement* PushOpen(CXmlElement* element, CXmlElement* before);
  void EndFilteredElement();
  bool AskFilter(CXmlElement* element);
  void CheckDepth() const;
  void StartCounting();
  [[noreturn]] void ThrowContentTooLarge() const;
  CTreeMemory& Memory();

  CXmlElement* m_documentElement = nullptr;
  std::vector<OpenElement> m_elementStack;
  std::map<std::string, std::string> m_namespaceAliases;
  unsigned char const* m_inputData = nullptr;
  unsigned long m_inputSize = 0;
  std::unique_ptr<unsigned char[]> m_ownedInput;  // null where the bytes are the caller's
  SchemaType m_schemaType;
  ElementFilter m_filter;
  CXmlSerializationContext const& m_context;
  std::uint64_t m_cleanups = 0;
  std::uint64_t m_contentSize = 0;
  static constexpr std::uint64_t kNoLimit = ~std::uint64_t{0};
  std::uint64_t m_contentLimit = kNoLimit;  // for trees that a program builds
  /// Of the nodes; made for the first one.
  CTreeMemory* m_memory = nullptr;
};

/// Set by AsyncFromXmlFile(bool); reading is the same either way.
QUILLON9_API extern bool ASYNC_FROMXMLFILE;
/// Store \p async in ASYNC_FROMXMLFILE. Call it before threads run.
QUILLON9_API void AsyncFromXmlFile(bool async);

/// The length of an open file in bytes, its position kept; -1 when a step fails (errno tells why).
QUILLON9_API long _filelength(std::FILE* file);

}  // namespace Quillon9
