#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/output_options.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Writes a document as XML 1.0 text (W3C) into a text stream. See CXmlWriter for the order of calls. Item types have
/// no effect here.
///
/// In formatted output, each element without text stands on its own lines, indented by one tab per level unless
/// SetIndent() was called. Text is
/// written in place, with no line end added. Inside an object that keeps the places of its text, the library adds no
/// layout, as after PreserveSpace(). When 4,096 bytes are pending in the stream after an operation, the stream
/// is flushed; its failures reach the caller.
///
/// Text and attribute values are escaped as PadAndAppend() describes. Names, namespace URIs, processing instructions
/// and the in-line schema are written literally.
class QUILLON9_API CXmlTextWriter : public CXmlWriter {
 public:
  /// Write formatted output with EOLType_LF. \p stream is borrowed and must outlive the writer.
  explicit CXmlTextWriter(CTextStream& stream);
  ~CXmlTextWriter() override;

  void Open() override;
  /// Close the stream in any case, then check that no element is open.
  void Close() override;
  /// Write the text escaped as content, followed by a line end. A "--" in it is not repaired.
  void WriteComment(std::string const& text) override;
  /// Write the processing instruction, followed by two line ends.
  void WritePI(std::string const& text) override;
  void WriteInlineSchema(std::string const& text) override;
  /// Start an element; one in the default namespace gets no prefix. Neither that namespace nor the absence of one is
  /// declared on it: only the document element declares what was set on the writer before it.
  void WriteStartElement(std::string const& localName, std::string const& namespaceUri) override;
  /// Write the content. An empty \p value leaves the start tag open. A value that begins with "<![CDATA[" is written
  /// literally.
  void WriteString(std::string const& value, ItemType type) override;
  void WriteEndElement() override;
  void WriteAttributeString(std::string const& localName, std::string const& namespaceUri, std::string const& value,
                            ItemType type) override;
  /// Write the attribute; a type in no namespace or in the default namespace gets no prefix.
  void WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) override;
  void WriteAttributeNil() override;
  bool DeclarePrefix(std::string const& prefix, std::string const& uri) override;
  /// Write the element in one step, unless this object is of a derived class. No NUL byte needs to follow \p value, and
  /// \p member has no effect.
  void WriteTextElement(std::string const& localName, std::string const& namespaceUri, std::string_view value,
                        ItemType type, std::uint64_t member = 0) override;

  /// Write no line ends and tabs inside the open element from now on, because white space counts there. Its end tag is
  /// again followed by a line end. Does nothing when no element is open.
  void PreserveSpace() override;
  /// Write it on a line of its own where line ends are written. A blank parts what would end it: "--" and "?>".
  void WriteMarkup(CMarkup const& markup) override;
  /// Return whether line ends and tabs are written, which PreserveSpace() affects.
  bool GetFormat() const { return m_format; }
  /// Set whether line ends and tabs are written between elements. Call this, like SetEOLType(), before any output.
  void SetFormat(bool format) { m_format = format; }
  /// Set what a level of formatted output is indented by: \p width blanks, or tabs if \p character is a tab. Any other
  /// character counts as a blank. The document element and \p flatLevels levels inside it are not indented. Call this
  /// before any output.
  void SetIndent(char character, std::uint8_t width, std::uint8_t flatLevels = 0);
  /// Return the line end in use.
  EOLType GetEOLType() const { return m_eolType; }
  /// Set the line end.
  /// \throws CQnException "Invalid EOL type." for an unknown value, which leaves the old one in place.
  void SetEOLType(EOLType type);
  /// Whether SetEscapesNamespaces() has asked for it.
  bool GetEscapesNamespaces() const { return m_escapesNamespaces; }
  /// Choose whether namespaces in declarations are escaped, so that a parser returns each character. By default they are
  /// written as they are, so that the caller must escape what is special in them, unless an object is written by the
  /// rules of XML Schema; only DeclarePrefix() always escapes, like an attribute value of the rules in use. An escaped namespace with a character that XML does not allow fails with CQnInvalidValueException "The
  /// character U+%04X cannot stand in an XML document".
  void SetEscapesNamespaces(bool escapes) { m_escapesNamespaces = escapes; }

  /// Write the XML declaration, which names the stream's encoding, and a line end.
  void WriteStartDocument();
  /// Write \p text literally, such as a document type declaration, and a line end.
  /// \throws CQnException "Headed directives must appear before an Element has been added." when an element is open.
  void WriteHeaderDirective(std::string const& text);
  /// Call CloseParentElm(), then write \p text literally, such as elements written elsewhere.
  void WriteRawElement(std::string const& text);
  /// Count a child of the open element and close its start tag. Do nothing when no element is open.
  void CloseParentElm();
  /// Append \p text up to its NUL, escaped; null counts as empty. `"`, `&`, `<` and `>` become entity references and
  /// carriage returns are dropped. A line feed becomes `&#xA;` in an attribute value and the writer's line end
  /// elsewhere.
  void PadAndAppend(char const* text, bool inAttribute);

 protected:
  /// Write double quotes in text as they are, which is the same for every reader, instead of as `&quot;`.
  void SetPlainQuotes(bool plain) { m_hasPlainQuotes = plain; }

 private:
  friend struct XmlWriterAccess;

  void CloseTag();
  void AppendEndTag();
  void AppendLineEnd();
  std::size_t IndentOf(std::size_t level) const {
    return m_format && level > m_flatLevels ? (level - m_flatLevels) * m_indentWidth : 0;
  }
  void AppendLines(std::string_view text);
  void AppendText(std::string_view text);
  void AppendDeclaration(std::string const& prefix, std::string const& uri);
  void AppendNamespace(std::string const& uri);
  void AppendEscaped(std::string_view text, bool inAttribute);
  void AppendSpecial(char byte, bool inAttribute);
  void AppendDocumentDeclarations();
  void FlushIfFull();

  std::string m_lineEnd;
  EOLType m_eolType;
  bool m_format;
  char m_indentCharacter = '\t';
  std::uint8_t m_indentWidth = 1;
  std::uint8_t m_flatLevels = 0;
  bool m_hasPlainQuotes = false;
  bool m_escapesNamespaces = false;
  CXmlWriterContext const* m_preserved = nullptr;  // the element whose end switches m_format on again
  CTextStream* m_stream;                           // not owned
  bool m_streamFlushes;                            // whether flushing the stream may have an effect
};

}  // namespace Quillon9
