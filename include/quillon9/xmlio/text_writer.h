#pragma once

#include <string>
#include <string_view>

#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/output_options.h"
#include "quillon9/xmlio/writer.h"

namespace Quillon9 {

/// Writes a document as XML 1.0 text (W3C) into a text stream. See CXmlWriter for the order of calls. Item types
/// do not matter here.
///
/// Formatted, each element without text stands on lines of its own, indented by one tab a level. Text is written
/// at its place, with no line end added. Once 4,096 bytes wait in the stream after an operation, it is flushed;
/// failures of the stream pass through.
///
/// Text and attribute values are escaped as PadAndAppend() tells. Names, namespace URIs, processing instructions
/// and the in-line schema are written as given.
class QUILLON9_API CXmlTextWriter : public CXmlWriter {
 public:
  /// Formatted, with EOLType_LF. \p stream is borrowed and must outlive the writer.
  explicit CXmlTextWriter(CTextStream& stream);
  ~CXmlTextWriter() override;

  void Open() override;
  /// Close the stream in any case, then check that no element is open.
  void Close() override;
  /// The text is escaped as content; a "--" in it is not mended. Followed by a line end.
  void WriteComment(std::string const& text) override;
  /// Followed by two line ends.
  void WritePI(std::string const& text) override;
  void WriteInlineSchema(std::string const& text) override;
  /// The element of the default namespace gets no prefix. Neither that namespace nor the absence of one is
  /// declared on it: only the document element declares, what was set on the writer before it.
  void WriteStartElement(std::string const& localName, std::string const& namespaceUri) override;
  /// An empty \p value leaves the start tag open. A value that begins with "<![CDATA[" is written as it stands.
  void WriteString(std::string const& value, ItemType type) override;
  void WriteEndElement() override;
  void WriteAttributeString(std::string const& localName, std::string const& namespaceUri, std::string const& value,
                            ItemType type) override;
  /// A type of no namespace or of the default namespace gets no prefix.
  void WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) override;
  void WriteAttributeNil() override;

  /// Whether line ends and tabs are written.
  bool GetFormat() const { return m_format; }
  /// Write line ends and tabs between elements, or none. To be called before any output, as SetEOLType().
  void SetFormat(bool format) { m_format = format; }
  /// The line end in use.
  EOLType GetEOLType() const { return m_eolType; }
  /// \throws CQnException "Invalid EOL type." for an unknown value; the old one stays.
  void SetEOLType(EOLType type);

  /// Write the XML declaration, naming the stream's encoding, and a line end.
  void WriteStartDocument();
  /// Write \p text as it is, such as a document type declaration, and a line end.
  /// \throws CQnException "Headed directives must appear before an Element has been added." once an element is
  /// open.
  void WriteHeaderDirective(std::string const& text);
  /// Write \p text as it is, such as elements written elsewhere, after CloseParentElm().
  void WriteRawElement(std::string const& text);
  /// The same as WriteStartElement(), WriteString() and WriteEndElement() in a row, at less than half of their cost.
  /// What a derived class overrides is not called.
  /// \throws CQnException as WriteStartElement().
  void WriteTextElement(std::string const& localName, std::string const& namespaceUri, std::string_view value,
                        ItemType type);
  /// Count a child of the open element and close its start tag. Does nothing when no element is open.
  void CloseParentElm();
  /// Append \p text up to its NUL, escaped; null is an empty text. `"`, `&`, `<` and `>` become entity references
  /// and a carriage return is dropped. A line feed becomes `&#xA;` in an attribute value and the writer's line end
  /// elsewhere.
  void PadAndAppend(char const* text, bool inAttribute);

 private:
  void CloseTag();
  void AppendEndTag();
  void AppendLineEnd();
  void WriteTextInSteps(std::string const& localName, std::string const& namespaceUri, std::string_view value);
  void AppendText(std::string_view text);
  char* PutEndTag(char* to, std::string_view name) const;
  char* PutLineEnd(char* to) const;
  void AppendDeclaration(std::string const& prefix, std::string const& uri);
  void AppendEscaped(std::string_view text, bool inAttribute);
  void Commit(char const* start, char const* end);
  void AppendDocumentDeclarations();
  void FlushIfFull();

  std::string m_lineEnd;
  EOLType m_eolType;
  bool m_format;
  CTextStream* m_stream;  // not owned
  bool m_streamFlushes;   // whether a flush of the stream may do anything
};

}  // namespace Quillon9
