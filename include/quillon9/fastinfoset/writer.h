#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "quillon9/export.h"
#include "quillon9/fastinfoset/declaration.h"
#include "quillon9/fastinfoset/vocabulary.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// The URI that a document carries when its context has a vocabulary but no URI for it. It names no resource.
inline constexpr char QUILLON_URI[] = "urn:quillon9:external-vocabulary";

class CKnownNames;
class COctetSink;

/// Writes a document as Fast Infoset (Rec. ITU-T X.891) into a binary stream. See CXmlWriter for the order of calls;
/// WriteStartDocument() follows Open(), and WriteEndDocument() comes before Close().
///
/// Names are written in full once and as an index from then on, and so are short values. The ItemType of a value
/// chooses its encoding, as the context says; the value itself is not looked at, so one that does not fit is a failure.
/// Comments, processing instructions and in-line schemas are left out. Only the document element declares namespaces;
/// further down, names carry their prefixes with them.
///
/// Text after a child element becomes text of that child: mixed content is outside what is written here.
///
/// Failures are CQnException "Failed to write FastInfoset. ..." with what is told at the operations, those of
/// CXmlWriter, and those of the conversion that an encoding algorithm asks for (CConversions). What was written before
/// stays in the stream.
///
/// Octets go to the stream in blocks: all of them are there after WriteStartDocument(), WriteEndDocument(), Close() and
/// the destructor, which throws nothing.
class QUILLON9_API CFastInfosetWriter : public CXmlWriter {
 public:
  /// Begin with a copy of the vocabulary of \p options, if they use a generated one, or with the built-in entries. Both
  /// arguments are borrowed and must outlive the writer.
  CFastInfosetWriter(CFastInfosetContext const& options, CBinaryStream& stream);
  ~CFastInfosetWriter() override;

  /// \throws CQnException "An Element has not been closed." while an element is open.
  void Close() override;
  /// Write nothing.
  void WriteComment(std::string const& text) override;
  /// Write nothing but the element that was started last, which can get no attributes any more.
  /// \throws CQnException as WriteStartElement().
  void WritePI(std::string const& text) override;
  /// Write nothing.
  void WriteInlineSchema(std::string const& text) override;
  /// The element is written only with the next operation, which tells whether it has attributes.
  /// \throws CQnException as CXmlWriter; "An octet string may not be empty." for an empty name, here and for
  ///         attributes, once it is written.
  void WriteStartElement(std::string const& localName, std::string const& namespaceUri) override;
  /// An empty \p value is not written.
  /// \throws CQnException by what the context says for \p type: "Unsupported Feature UTF16BE in
  ///         EncodedCharacterStringBit5.", "Invalid Restricted Alphabet value [%d]", "Invalid Encoding Algorithm value
  ///         [%d]", "Unknown encoding in EncodedCharacterStringBit7.", "Invalid character not found for Restricted
  ///         Alphabet."; "There is no open element for the text." outside of elements; "An octet string may not be
  ///         empty." for text that an algorithm turns into nothing.
  void WriteString(std::string const& value, ItemType type) override;
  void WriteEndElement() override;
  /// \throws CQnException "Attributes must be added before elements"; as WriteString(), but "Unknown encoding in
  ///         EncodedCharacterStringBit5.".
  void WriteAttributeString(std::string const& localName, std::string const& namespaceUri, std::string const& value,
                            ItemType type) override;
  /// An xsi:type attribute, if \p namespaceUri is empty, the default namespace, or bound to a prefix. If it is unbound
  /// the attribute is named \p typeName, in \p namespaceUri, instead. The value is that of xsi:type in either case.
  void WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) override;
  void WriteAttributeNil() override;

  /// The same as WriteStartElement(), WriteString() and WriteEndElement() in a row, at less cost. What a derived class
  /// overrides is not called. There is a zero behind \p value. \p member is 0, or the number that a member of a class
  /// has in this process: one number always comes with the same two names.
  /// \throws CQnException as these.
  void WriteTextElement(std::string const& localName, std::string const& namespaceUri, std::string_view value,
                        ItemType type, std::uint64_t member = 0);

  /// Write the header, with the declaration \p decl in front of it.
  /// \throws CQnException "Invalid declaration value [%d]".
  void WriteStartDocument(FInfoDecl decl);
  /// End the document. All elements must be closed.
  void WriteEndDocument();

 private:
  void WriteElement(bool hasAttributes) {
    if (m_pendingElement != nullptr) WritePendingElement(hasAttributes);
  }
  void WritePendingElement(bool hasAttributes);
  void WriteTextInSteps(std::string const& localName, std::string const& namespaceUri, std::string_view value,
                        ItemType type);
  unsigned long FindNameOfChild(std::string const* prefix, std::string const& localName,
                                std::string const& namespaceUri, std::uint64_t member);
  void WriteText(std::string_view value, ItemType type);
  bool IsPlain(ItemType type) const;
  void LeaveOpen(std::string const& localName, std::string const& namespaceUri, bool hasName);
  void NameOfPending(std::uint32_t leading);
  void WriteNamespaceAttributes();
  static std::string const& PrefixOf(CXmlWriterContext& context, std::string const& uri);
  void CloseTag();
  void OpenAttribute();
  void QualifiedNameOrIndexBit2(std::string const& prefix, std::string const& uri, std::string const& localName);
  void ElementName(std::uint32_t leading, unsigned long index, std::string const* prefix, std::string const& uri,
                   std::string const& localName);
  void LiteralName(std::uint32_t leading, std::string const& prefix, std::string const& uri,
                   std::string const& localName, CFIIndexMap& map);
  void Prefix(std::string const& prefix);
  void NamespaceName(std::string const& uri);
  void LocalName(std::string const& localName);
  void NonEmptyOctetUTF8StringBit2(std::uint32_t leading, std::string const& text);
  void NonIdentifyingStringOrIndexBit1(std::string_view value, ItemType type);
  void NonIdentifyingStringOrIndexBit3(std::uint32_t leading, std::string_view value, ItemType type);
  void EncodedCharacterStringBit3(std::uint32_t leading, std::string_view value, ItemType type);
  void EncodedCharacterStringBit5(std::uint32_t leading, std::string_view value, ItemType type);
  std::string_view Utf8(std::string_view text);
  std::string_view Encoded(unsigned long kind, unsigned long index, std::string_view value);

  std::unique_ptr<COctetSink> m_output;
  CFastInfosetContext const* m_options;
  CXmlWriterContext* m_pendingElement = nullptr;  // started, not written, not current; its parent link does not own
  bool m_terminatorPending = false;               // one element's end has been noted, but no octet written for it
  CFIVocabulary m_vocabulary;
  std::unique_ptr<CKnownNames> m_knownNames;
  bool m_isAsciiUtf8;     // in the local code page, which is asked for once a document
  std::string m_scratch;  // octets of the value in hand, or key of a new name
};

}  // namespace Quillon9
