#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon9/export.h"
#include "quillon9/fastinfoset/declaration.h"
#include "quillon9/fastinfoset/vocabulary.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// The URI that a document carries when its context has a vocabulary but no URI for it. It does not name a resource.
inline constexpr char QUILLON_URI[] = "urn:quillon9:external-vocabulary";

class COctetSink;
struct InfosetWriterAccess;
struct WriterTables;

/// Writes a document as Fast Infoset (Rec. ITU-T X.891) into a binary stream. See CXmlWriter for the order of calls;
/// WriteStartDocument() follows Open(), and WriteEndDocument() comes before Close().
///
/// Each name is written in full once and as an index from then on, and so are short values. The ItemType of a value
/// selects its encoding, as the context specifies. The value itself does not influence that choice, so a value that
/// does not fit is a failure. Of comments and processing instructions, only those of WriteMarkup() are written, and
/// in-line schemas are left out. The document element declares namespaces; below it, names carry their prefixes, and
/// only DeclarePrefix() and PrefixForValues() declare any.
///
/// Text may stand in front of, between and after child elements.
///
/// Failures are CQnException "Failed to write FastInfoset. ..." with the reasons that the operations list, those of
/// CXmlWriter, and those of the conversion that an encoding algorithm uses (CConversions). What was written before the
/// failure stays in the stream.
///
/// Octets go to the stream in blocks. All of them have arrived after WriteStartDocument(), WriteEndDocument(), Close()
/// and the destructor, which throws nothing.
class QUILLON9_API CFastInfosetWriter : public CXmlWriter {
 public:
  /// Begin with a copy of the vocabulary of \p options if they use a generated one, otherwise with the built-in
  /// entries. Both arguments are borrowed and must outlive the writer.
  CFastInfosetWriter(CFastInfosetContext const& options, CBinaryStream& stream);
  ~CFastInfosetWriter() override;

  /// \throws CQnException "An Element has not been closed." while an element is open.
  void Close() override;
  /// Write nothing.
  void WriteComment(std::string const& text) override;
  /// Write only the pending element, if any; it can get no attributes after that.
  /// \throws CQnException as WriteStartElement().
  void WritePI(std::string const& text) override;
  /// Write nothing.
  void WriteInlineSchema(std::string const& text) override;
  /// Defer the element until the next operation, which shows whether it has attributes.
  /// \throws CQnException as CXmlWriter; "An octet string may not be empty." for an empty name, here and for
  ///         attributes, once it is written.
  void WriteStartElement(std::string const& localName, std::string const& namespaceUri) override;
  /// Write \p value, unless it is empty.
  /// \throws CQnException depending on what the context specifies for \p type: "Unsupported Feature UTF16BE in
  ///         EncodedCharacterStringBit5.", "Invalid Restricted Alphabet value [%d]", "Invalid Encoding Algorithm value
  ///         [%d]", "Unknown encoding in EncodedCharacterStringBit7.", "Invalid character not found for Restricted
  ///         Alphabet."; "There is no open element for the text." outside of elements; "An octet string may not be
  ///         empty." for text that an algorithm encodes as no octets.
  void WriteString(std::string const& value, ItemType type) override;
  void WriteEndElement() override;
  /// \throws CQnException "Attributes must be added before elements"; otherwise as WriteString(), but with "Unknown
  ///         encoding in EncodedCharacterStringBit5.".
  void WriteAttributeString(std::string const& localName, std::string const& namespaceUri, std::string const& value,
                            ItemType type) override;
  /// Write an xsi:type attribute if \p namespaceUri is empty, the default namespace, or bound to a prefix. If it is
  /// unbound, the attribute is named \p typeName, in \p namespaceUri, instead. Its value is that of xsi:type in either
  /// case.
  void WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) override;
  void WriteAttributeNil() override;
  bool DeclarePrefix(std::string const& prefix, std::string const& uri) override;
  /// Write it. The text is UTF-8 whatever the context specifies, and enters no table.
  void WriteMarkup(CMarkup const& markup) override;
  /// Let text that follows a child be text of the open element or of those in it, until the element ends. Otherwise it
  /// becomes text of that child.
  void PreserveSpace() override;
  /// Write the element in one step, unless this object is of a derived class. \p member saves the lookup of a name.
  void WriteTextElement(std::string const& localName, std::string const& namespaceUri, std::string_view value,
                        ItemType type, std::uint64_t member = 0) override;

  /// Write the header, preceded by the declaration \p decl.
  /// \throws CQnException "Invalid declaration value [%d]".
  void WriteStartDocument(FInfoDecl decl);
  /// End the document. All elements must be closed.
  void WriteEndDocument();

 protected:
  CXmlWriterContext* StartedElement() const override;

 private:
  friend struct InfosetWriterAccess;

  void WriteElement(bool hasAttributes) {
    if (m_pendingElement != nullptr) WritePendingElement(hasAttributes);
  }
  void WritePendingElement(bool hasAttributes);
  unsigned long FindNameOfChild(std::string const* prefix, std::string const& localName,
                                std::string const& namespaceUri, std::uint64_t member);
  void WriteText(std::string_view value, ItemType type);
  bool IsPlain(ItemType type) const;
  void LeaveOpen(std::string const& localName, std::string const& namespaceUri, bool hasName);
  void NameOfPending(std::uint32_t leading);
  void WriteNamespaceAttributes(bool isRoot);
  static std::string const& PrefixOf(CXmlWriterContext& context, std::string const& uri);
  void CloseTag();
  void EndChild();
  void BeginChild();
  void OpenAttribute();
  void QualifiedNameOrIndexBit2(std::string const& prefix, std::string const& uri, std::string const& localName);
  void ElementName(std::uint32_t leading, unsigned long index, std::string const* prefix, std::string const& uri,
                   std::string const& localName);
  void LiteralName(std::uint32_t leading, std::string const& prefix, std::string const& uri,
                   std::string const& localName, CFIIndexMap& map);
  void IdentifyingString(std::string const& text, CFIIndexMap& map);
  void NonEmptyOctetUTF8StringBit2(std::uint32_t leading, std::string const& text);
  void NonIdentifyingStringOrIndexBit1(std::string_view value, ItemType type);
  void NonIdentifyingStringOrIndexBit3(std::uint32_t leading, std::string_view value, ItemType type);
  void EncodedCharacterStringBit3(std::uint32_t leading, std::string_view value, ItemType type);
  void EncodedCharacterStringBit5(std::uint32_t leading, std::string_view value, ItemType type);
  std::string_view Utf8(std::string_view text);
  std::string_view Encoded(unsigned long kind, unsigned long index, std::string_view value);

  std::unique_ptr<COctetSink> m_output;
  CFastInfosetContext const* m_options;
  CXmlWriterContext* m_pendingElement = nullptr;  // started, neither written nor current; its parent link does not own
  CXmlWriterContext const* m_mixed = nullptr;     // the outermost open element that has text between its children
  bool m_terminatorPending = false;               // the end of one element is noted but not yet written
  std::vector<std::pair<std::string, std::string>> m_declared;  // prefixes and URIs for the pending element
  std::unique_ptr<WriterTables> m_tables;
  bool m_isAsciiUtf8;     // in the local code page; determined once per document
  std::string m_scratch;  // octets of the current value, or key of a new name
};

}  // namespace Quillon9
