#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>

#include "base/text_arguments.h"
#include "commands.h"
#include "failure.h"
#include "files.h"
#include "input_document.h"
#include "namespaces.h"
#include "tree_walk.h"
#include "utf8.h"
#include "value_types.h"
#include "warnings.h"

namespace Quillon9Tool {

using namespace Quillon9;

namespace {

constexpr std::string_view kCdataStart = "<![CDATA[";

bool IsBinary(DocumentKind kind, CompressionType compression) {
  return kind == DocumentKind::FastInfoset || compression != CompressionType_None;
}

void RefuseTerminal(ConvertOptions const& options, DocumentKind kind) {
  if (options.output == "-" && IsBinary(kind, options.compression)) RefuseBinaryOnTerminal();
}

/// What must be known about all elements before the first one is written.
struct Survey {
  bool hasKeptSpace = false;  ///< white space between elements that are not mixed, as written
  std::size_t blurredAttributes = 0;
};

void RequireName(std::string const& name) {
  if (!IsNcName(name)) throw CQnException("the name " + Quoted(name) + " is none in XML");
}

Survey Look(CXmlElement const& root, bool keepSpace) {
  Survey survey;
  auto const start = [&](CXmlElement const& element) {
    RequireName(element.GetLocalName());
    for (CXmlAttribute const* const attribute : element.GetAttributes()) {
      RequireName(attribute->GetLocalName());
      if (attribute->GetValue().find_first_of("\t\r") != std::string::npos) ++survey.blurredAttributes;
    }
    if (element.GetFirstElement() == nullptr) return;
    survey.hasKeptSpace |= !element.IsMixed() && !TextOf(element, keepSpace).empty();
  };
  Walk(root, start, [](CXmlElement const&) {});
  return survey;
}

/// Writes a tree with any writer, with all namespaces on the root. Where white space between elements is kept, it stands
/// before the children.
class TreeWriter {
 public:
  TreeWriter(CXmlWriter& writer, ConvertOptions const& options, DocumentKind kind)
      : m_writer(writer),
        m_keepSpace(options.keepSpace),
        m_isText(kind == DocumentKind::XmlText),
        m_choosesTypes(!m_isText && options.suggestedEncodings) {}

  void Write(CXmlElement const& root, Namespaces const& namespaces) {
    if (!namespaces.GetDefault().empty()) m_writer.SetDefaultNamespace(namespaces.GetDefault());
    for (auto const& [uri, prefix] : namespaces.GetPrefixes()) {
      if (uri != CXmlWriter::XML_NAMESPACE) m_writer.AddNamespace(prefix, uri);
    }
    WalkContent(
        root, [this](CXmlElement const& element) { Start(element); },
        [this](std::string_view text) { WriteText(std::string(text)); },
        [this](CXmlElement const&) { m_writer.WriteEndElement(); });
  }

 private:
  void Start(CXmlElement const& element) {
    m_writer.WriteStartElement(element.GetLocalName(), element.GetNamespaceURI());
    for (CXmlAttribute const* const attribute : element.GetAttributes()) {
      m_writer.WriteAttributeString(attribute->GetLocalName(), attribute->GetNamespaceURI(), attribute->GetValue(),
                                    TypeOf(attribute->GetValue()));
    }
    if (!element.IsMixed()) return WriteText(TextOf(element, m_keepSpace));
    m_writer.PreserveSpace();
  }

  void WriteText(std::string const& text) {
    if (text.empty()) return;
    if (m_isText && StartsWith(text, kCdataStart)) {
      // In one piece, it would be written as a CDATA section.
      m_writer.WriteString(text.substr(0, 1), ItemType_string);
      m_writer.WriteString(text.substr(1), ItemType_string);
    } else {
      m_writer.WriteString(text, TypeOf(text));
    }
  }

  ItemType TypeOf(std::string const& value) const { return m_choosesTypes ? ShortestType(value) : ItemType_string; }

  CXmlWriter& m_writer;
  bool m_keepSpace;
  bool m_isText;
  bool m_choosesTypes;
};

/// \throws CQnException for a document that XML text cannot express, such as one with control characters.
CBinaryData ToXmlText(InputDocument const& document, Namespaces const& namespaces, ConvertOptions const& options,
                      bool format) {
  CTextStream stream(XmlEncoding_UTF8);
  CXmlTextWriter writer(stream);
  writer.SetFormat(format);
  writer.SetEscapesNamespaces(true);
  writer.Open();
  if (options.declaration.value_or(true)) writer.WriteStartDocument();
  TreeWriter(writer, options, DocumentKind::XmlText).Write(document.GetRoot(), namespaces);
  writer.Close();
  if (!format) stream.Append('\n');
  CBinaryData bytes = stream.GetEncodedStream();
  try {
    CXmlDocument().LoadXmlStream(bytes.GetData(), bytes.GetLength());
  } catch (CQnException const& failure) {
    throw CQnException("XML text cannot express it: " + failure.GetMessage());
  }
  return bytes;
}

CBinaryData ToInfoset(InputDocument const& document, Namespaces const& namespaces, ConvertOptions const& options) {
  CFastInfosetContext context;
  if (options.suggestedEncodings) context.SetSuggestedValues();
  CBinaryStream stream;
  CFastInfosetWriter writer(context, stream);
  writer.Open();
  writer.WriteStartDocument(options.declaration.value_or(false) ? FInfoDecl_Version10 : FInfoDecl_None);
  TreeWriter(writer, options, DocumentKind::FastInfoset).Write(document.GetRoot(), namespaces);
  writer.WriteEndDocument();
  writer.Close();
  return stream.GetBinaryStream();
}

void Compress(CBinaryData& bytes, ConvertOptions const& options) {
  try {
    CQnZip::CompressData(bytes, options.compression);
  } catch (CQnException const& failure) {
    throw Failure(OutputName(options.output),
                  "it does not become shorter when it is compressed: " + failure.GetMessage());
  }
}

void Warn(Warnings& warnings, Survey const& survey, Namespaces const& namespaces, DocumentKind kind) {
  for (std::string const& prefix : namespaces.GetDroppedPrefixes()) {
    warnings.Add("the prefix " + Escaped(prefix) + " is left out: its namespace has another one");
  }
  if (kind == DocumentKind::FastInfoset) return;
  warnings.Add(survey.blurredAttributes, "attribute value with tabs or carriage returns, which are lost",
               "attribute values with tabs or carriage returns, which are lost");
}

/// Return the format for \p document; if nothing specifies one, the format that it does not have.
DocumentKind ChooseKind(ConvertOptions const& options, InputDocument const& document) {
  if (options.to) return *options.to;
  return document.IsFastInfoset() ? DocumentKind::XmlText : DocumentKind::FastInfoset;
}

/// Whether the input is a file that is too long for a tree, and the options do not need one.
bool IsTooLong(ConvertOptions const& options) {
  if (!options.to || options.keepSpace || options.suggestedEncodings || options.input == "-") return false;
  std::error_code failure;
  std::uintmax_t const size = std::filesystem::file_size(options.input, failure);
  return !failure && size > std::numeric_limits<std::uint32_t>::max();
}

/// Convert one child of the root after the other.
void ConvertLarge(ConvertOptions const& options) {
  RecordsOptions records;
  records.paths = {"/*/*"};
  records.input = options.input;
  records.output = options.output;
  records.to = options.to;
  records.compression = options.compression;
  records.format = options.format;
  records.declaration = options.declaration;
  records.quiet = options.quiet;
  records.needsRecord = true;
  ReadRecords(records);
}

}  // namespace

void Convert(ConvertOptions const& options) {
  if (options.to) RefuseTerminal(options, *options.to);  // before a long input is read
  if (options.large) return ConvertLarge(options);
  if (IsTooLong(options)) {
    Warnings warnings(InputName(options.input));
    warnings.Add("what is between the children of the document element is left out, as with --large");
    if (!options.quiet) warnings.Print();
    return ConvertLarge(options);
  }
  Progress progress(options.quiet);
  InputDocument const document(options.input, &progress);
  DocumentKind const kind = ChooseKind(options, document);
  RefuseTerminal(options, kind);
  Warnings warnings(InputName(options.input));
  warnings.Add(document.GetLosses());
  CBinaryData bytes = Named(InputName(options.input), [&] {
    Survey const survey = Look(document.GetRoot(), options.keepSpace);
    Namespaces const namespaces(document.GetRoot(), document.GetPrefixes());
    Warn(warnings, survey, namespaces, kind);
    if (kind == DocumentKind::FastInfoset) return ToInfoset(document, namespaces, options);
    return ToXmlText(document, namespaces, options, options.format && !survey.hasKeptSpace);
  });
  Compress(bytes, options);
  WriteOutput(options.output, View(bytes));
  if (!options.quiet) warnings.Print();
}

}  // namespace Quillon9Tool
