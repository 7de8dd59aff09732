#include "quillon9/xmlio/text_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <typeinfo>

#include "base/failure_detail.h"
#include "base/fast_paths.h"
#include "base/text_arguments.h"
#include "base/text_copy.h"
#include "base/text_cursor.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/markup.h"
#include "quillon9/xmlio/streams.h"
#include "values/rules_in_use.h"
#include "xmlio/child_prefix.h"
#include "xmlio/writer_access.h"
#include "xmlio/xml_characters.h"

namespace Quillon9 {

namespace {

constexpr unsigned long kFlushAt = 4096;
constexpr std::string_view kXmlNamespace = CXmlWriter::XML_NAMESPACE;
constexpr std::string_view kCdataStart = "<![CDATA[";
constexpr std::size_t kLongestPiece = 1024;  // of text copied at once: a block of the stream may leave this much unused

/// How PadAndAppend treats a byte.
enum class ByteClass : unsigned char { Plain, End, Tab, LineFeed, CarriageReturn, Control, Escaped };

constexpr std::array<ByteClass, 256> MakeByteClasses() {
  std::array<ByteClass, 256> classes{};
  for (unsigned char control = 1; control < ' '; ++control) classes[control] = ByteClass::Control;
  classes['\0'] = ByteClass::End;
  classes['\t'] = ByteClass::Tab;
  classes['\n'] = ByteClass::LineFeed;
  classes['\r'] = ByteClass::CarriageReturn;
  for (char const escaped : {'"', '&', '<', '>'}) classes[static_cast<unsigned char>(escaped)] = ByteClass::Escaped;
  return classes;
}

constexpr std::array<ByteClass, 256> kByteClasses = MakeByteClasses();

ByteClass ClassOf(char byte) { return kByteClasses[static_cast<unsigned char>(byte)]; }

char const* EntityFor(char byte) {
  switch (byte) {
    case '"': return "&quot;";
    case '&': return "&amp;";
    case '<': return "&lt;";
    default: return "&gt;";
  }
}

/// What stands for a byte that only the rules of XML Schema treat in a special way; null if it stands for itself. A parser
/// makes line feeds of carriage returns, and blanks of both and of tabs in attributes.
char const* ReferenceFor(ByteClass byteClass, bool inAttribute) {
  if (byteClass == ByteClass::CarriageReturn) return "&#xD;";
  return byteClass == ByteClass::Tab && inAttribute ? "&#x9;" : nullptr;
}

// Room for a name and a string of markup around it; `prefix` is null for a name without one.
std::size_t RoomFor(std::string_view markup, std::string const* prefix, std::string const& localName) {
  return markup.size() + (prefix != nullptr ? prefix->size() + 1 : 0) + localName.size();
}

void PutPrefix(CTextCursor& to, std::string_view prefix) {
  to.PutName(prefix);
  to.Put(':');
}

void PutQName(CTextCursor& to, std::string const* prefix, std::string const& localName) {
  if (prefix != nullptr) PutPrefix(to, *prefix);
  to.PutName(localName);
}

CTextCursor Reserve(CTextStream& stream, std::size_t room) { return {stream.Reserve(room), room}; }

void Commit(CTextStream& stream, CTextCursor const& written) { stream.Commit(written.Written()); }

// `name` must be part of the output, so that the bytes after it can be read.
void PutEndTag(CTextCursor& to, std::string_view name, std::string_view lineEnd) {
  to.Put("</");
  to.PutAgain(name);
  to.Put('>');
  to.PutName(lineEnd);
}

char const* EncodingDeclaration(XmlEncoding encoding) {
  switch (encoding) {
    case XmlEncoding_UTF8: return " encoding=\"UTF-8\"";
    case XmlEncoding_UTF16: return " encoding=\"UTF-16\"";
    case XmlEncoding_Default:
    case XmlEncoding_Unicode: break;
  }
  return "";
}

}  // namespace

void ThrowNotInXml(unsigned character) {
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(
                                         "The character U+%04X cannot stand in an XML document", character)));
}

void RequireXmlCharacters(std::string_view text) {
  for (char const character : text) {
    ByteClass const byteClass = ClassOf(character);
    if (byteClass == ByteClass::Control || byteClass == ByteClass::End) {
      ThrowNotInXml(static_cast<unsigned char>(character));
    }
  }
  // U+FFFE and U+FFFF in UTF-8.
  for (std::size_t at = text.find("\xEF\xBF"); at != text.npos; at = text.find("\xEF\xBF", at + 1)) {
    unsigned const last = at + 2 < text.size() ? static_cast<unsigned char>(text[at + 2]) : 0;
    if (last >= 0xBE) ThrowNotInXml(0xFF40 + last);
  }
}

CXmlTextWriter::CXmlTextWriter(CTextStream& stream)
    : CXmlWriter("CXmlTextWriter"),
      m_lineEnd("\n"),
      m_eolType(EOLType_LF),
      m_format(true),
      m_stream(&stream),
      m_streamFlushes(&typeid(stream) != &typeid(CTextStream)) {}

CXmlTextWriter::~CXmlTextWriter() = default;

void CXmlTextWriter::Open() {
  CXmlWriter::Open();
  m_stream->Open();
}

void CXmlTextWriter::Close() {
  m_stream->Close();
  CXmlWriter::Close();
}

void CXmlTextWriter::SetEOLType(EOLType type) {
  switch (type) {
    case EOLType_CRLF:
      m_lineEnd = "\r\n";
      m_eolType = type;
      return;
    case EOLType_LF:
      m_lineEnd = "\n";
      m_eolType = type;
      return;
  }
  throw CQnException("Invalid EOL type.");
}

void CXmlTextWriter::SetIndent(char character, std::uint8_t width, std::uint8_t flatLevels) {
  m_indentCharacter = character == '\t' ? '\t' : ' ';
  m_indentWidth = width;
  m_flatLevels = flatLevels;
}

void CXmlTextWriter::WriteStartDocument() {
  m_stream->Append("<?xml version=\"1.0\"");
  m_stream->Append(EncodingDeclaration(m_stream->GetEncoding()));
  m_stream->Append("?>");
  AppendLineEnd();
  FlushIfFull();
}

void CXmlTextWriter::WriteHeaderDirective(std::string const& text) {
  if (m_context != nullptr) throw CQnException("Headed directives must appear before an Element has been added.");
  m_stream->Append(text);
  AppendLineEnd();
  FlushIfFull();
}

void CXmlTextWriter::WriteComment(std::string const& text) {
  m_stream->Append("<!--");
  RulesInUse::Scope const classic(ValueRules_Classic);  // a comment has no references
  PadAndAppend(text.c_str(), false);
  m_stream->Append("-->");
  AppendLineEnd();
  FlushIfFull();
}

void CXmlTextWriter::WritePI(std::string const& text) {
  m_stream->Append(text);
  AppendLineEnd();
  AppendLineEnd();
  FlushIfFull();
}

void CXmlTextWriter::WriteInlineSchema(std::string const& text) {
  m_stream->Append(' ');
  AppendLineEnd();
  m_stream->Append(text);
  AppendLineEnd();
  FlushIfFull();
}

void CXmlTextWriter::CloseParentElm() {
  if (m_context == nullptr) return;
  if (XmlWriterAccess::IsMixed(*m_context)) WriteTextBeforeChild();
  ++m_context->m_childCount;
  if (!m_context->m_tagOpen) return;
  CloseTag();
  if (m_format) AppendLineEnd();
}

// One check of the remaining room, then names and markup in one go: this matters for the speed of writing.
void CXmlTextWriter::WriteStartElement(std::string const& localName, std::string const& namespaceUri) {
  CloseParentElm();
  m_context = NewContext(localName, namespaceUri);
  bool isNew = false;
  std::string const* const prefix =
      m_context->NeedsNoPrefix() ? nullptr : &FindOrBindPrefix(*m_context, namespaceUri, isNew);
  std::size_t const indent = IndentOf(m_context->m_depth);
  CTextCursor to = Reserve(*m_stream, indent + RoomFor("<", prefix, localName));
  to.Put(m_indentCharacter, indent);
  to.Put('<');
  PutQName(to, prefix, localName);
  Commit(*m_stream, to);
  if (isNew) AppendDeclaration(*prefix, namespaceUri);
  if (m_context->m_depth == 0) AppendDocumentDeclarations();
  FlushIfFull();
}

void CXmlTextWriter::AppendDocumentDeclarations() {
  if (!m_defaultNamespace.empty()) {
    m_stream->Append(" xmlns=\"");
    AppendNamespace(m_defaultNamespace);
    m_stream->Append('"');
  }
  for (auto const& binding : m_namespaceMap) {
    if (!StartsWith(binding.first, kXmlNamespace)) AppendDeclaration(binding.second, binding.first);
  }
}

void CXmlTextWriter::AppendDeclaration(std::string const& prefix, std::string const& uri) {
  m_stream->Append(" xmlns:");
  m_stream->Append(prefix);
  m_stream->Append("=\"");
  AppendNamespace(uri);
  m_stream->Append('"');
}

void CXmlTextWriter::AppendNamespace(std::string const& uri) {
  bool const isPlain = std::all_of(uri.begin(), uri.end(), [](char byte) { return ClassOf(byte) == ByteClass::Plain; });
  if (isPlain || (!m_escapesNamespaces && !RulesInUse::AreSchema())) return m_stream->Append(uri);
  RulesInUse::Scope const rules(ValueRules_XmlSchema);  // nothing is dropped
  AppendEscaped(uri, true);
}

bool CXmlTextWriter::DeclarePrefix(std::string const& prefix, std::string const& uri) {
  RequireOpenTag();
  bool isNew = false;
  bool const isBound = BindPrefix(*m_context, prefix, uri, isNew);
  if (!isNew) return isBound;
  if (m_escapesNamespaces) {
    AppendDeclaration(prefix, uri);
    return true;
  }
  m_stream->Append(" xmlns:");
  m_stream->Append(prefix);
  m_stream->Append("=\"");
  AppendEscaped(uri, true);
  m_stream->Append('"');
  return true;
}

void CXmlTextWriter::WriteAttributeString(std::string const& localName, std::string const& namespaceUri,
                                          std::string const& value, ItemType /*type*/) {
  RequireOpenTag();
  std::string const* prefix = nullptr;
  if (!namespaceUri.empty()) {
    bool isNew = false;
    prefix = &FindOrBindPrefix(*m_context, namespaceUri, isNew);
    if (isNew) AppendDeclaration(*prefix, namespaceUri);
  }
  CTextCursor to = Reserve(*m_stream, RoomFor(" =\"", prefix, localName));
  to.Put(' ');
  PutQName(to, prefix, localName);
  to.Put("=\"");
  Commit(*m_stream, to);
  AppendEscaped(value, true);
  m_stream->Append('"');
  FlushIfFull();
}

void CXmlTextWriter::WriteAttributeType(std::string const& namespaceUri, std::string const& typeName, ItemType type) {
  RequireOpenTag();
  if (namespaceUri.empty() || namespaceUri == m_context->GetDefaultNamespace()) {
    WriteAttributeString("type", SchemaInstanceNamespace(), typeName, type);
    return;
  }
  bool isNew = false;
  std::string const& prefix = FindOrBindPrefix(*m_context, namespaceUri, isNew);
  if (isNew) {
    AppendDeclaration(prefix, namespaceUri);
    m_stream->Append(' ');
  }
  WriteAttributeString("type", SchemaInstanceNamespace(), prefix + ":" + typeName, type);
}

void CXmlTextWriter::WriteAttributeNil() {
  RequireOpenTag();
  WriteAttributeString("nil", SchemaInstanceNamespace(), "true", ItemType_boolean);
}

void CXmlTextWriter::WriteString(std::string const& value, ItemType /*type*/) {
  if (value.empty()) return;
  if (m_context != nullptr && m_context->m_tagOpen) CloseTag();
  AppendText(value);
  FlushIfFull();
}

// Append the text up to the first zero byte.
void CXmlTextWriter::AppendText(std::string_view text) {
  if (text[0] == '<' && StartsWith(text, kCdataStart) && !RulesInUse::AreSchema()) {
    m_stream->Append(text.data(), text.substr(0, text.find('\0')).size());
  } else {
    AppendEscaped(text, false);
  }
}

// An element that gets neither attributes nor children needs no context unless it can fail half-way, and a single check
// of the remaining room covers all of it. This saves much of the work of writing.
void CXmlTextWriter::WriteTextElement(std::string const& localName, std::string const& namespaceUri,
                                      std::string_view value, ItemType type, std::uint64_t member) {
  bool const isPlain = &typeid(*this) == &typeid(CXmlTextWriter) && !m_streamFlushes;  // overrides nothing
  std::string const* prefix = nullptr;
  if (!kElementAtOnce.IsOn() || !isPlain || m_context == nullptr ||
      !FindPrefixOfChild(*m_context, namespaceUri, prefix)) {
    return CXmlWriter::WriteTextElement(localName, namespaceUri, value, type, member);
  }
  CloseParentElm();
  XmlWriterAccess::RequireRoomForChild(*m_context);
  std::size_t const indent = IndentOf(m_context->m_depth + std::size_t{1});
  std::string_view const lineEnd = m_format ? std::string_view(m_lineEnd) : std::string_view();
  std::size_t const endTag = RoomFor("</>", prefix, localName) + lineEnd.size() + CTextCursor::kOverrun;
  std::size_t const copied = value.size() <= kLongestPiece ? value.size() : 0;
  CTextCursor to = Reserve(*m_stream, indent + RoomFor("<>", prefix, localName) + copied + endTag);
  to.Put(m_indentCharacter, indent);
  to.Put('<');
  char const* const name = to.At();
  PutQName(to, prefix, localName);
  std::string_view const written(name, static_cast<std::size_t>(to.At() - name));
  if (value.empty()) {
    to.Put("/>");
    to.PutName(lineEnd);
    return Commit(*m_stream, to);
  }
  to.Put('>');
  std::size_t const plain = to.PutUntil(value.substr(0, copied), HasMarkup());
  if (plain == value.size()) {
    PutEndTag(to, written, lineEnd);
    return Commit(*m_stream, to);
  }
  CXmlWriterContext* const context = NewContext(localName, namespaceUri);  // stays open if the rest fails
  Commit(*m_stream, to);
  context->m_tagOpen = false;
  m_context = context;
  if (plain == 0) {
    AppendText(value);
  } else {
    AppendEscaped(value.substr(plain), false);
  }
  CTextCursor rest = Reserve(*m_stream, endTag);
  PutEndTag(rest, written, lineEnd);
  Commit(*m_stream, rest);
  PopContext();
}

void CXmlTextWriter::WriteEndElement() {
  RequireOpenElement();
  if (m_context->m_tagOpen) {
    m_stream->Append("/>", 2);
  } else {
    AppendEndTag();
  }
  if (m_context == m_preserved) {
    m_preserved = nullptr;
    m_format = true;
  }
  if (m_format) AppendLineEnd();
  FlushIfFull();
  PopContext();
}

void CXmlTextWriter::AppendEndTag() {
  std::string const& localName = m_context->m_elementName;
  bool const hasPrefix = !m_context->NeedsNoPrefix();
  // If the default namespace has changed in the meantime, there is no prefix.
  std::string const* const prefix = hasPrefix ? m_context->FindPrefix(m_context->m_namespace) : nullptr;
  std::size_t const indent = m_context->m_childCount != 0 ? IndentOf(m_context->m_depth) : 0;
  CTextCursor to = Reserve(*m_stream, indent + RoomFor("</:>", prefix, localName));
  to.Put(m_indentCharacter, indent);
  to.Put("</");
  if (hasPrefix) PutPrefix(to, prefix != nullptr ? std::string_view(*prefix) : std::string_view());
  to.PutName(localName);
  to.Put('>');
  Commit(*m_stream, to);
}

XmlWriterAccess::TextMark XmlWriterAccess::GetMark(CXmlTextWriter const& writer) {
  return {GetMark(static_cast<CXmlWriter const&>(writer)), writer.m_format, writer.m_preserved};
}

void XmlWriterAccess::ReturnTo(CXmlTextWriter& writer, TextMark const& mark) {
  ReturnTo(static_cast<CXmlWriter&>(writer), mark.elements);
  writer.m_format = mark.format;
  writer.m_preserved = mark.preserved;
}

void CXmlTextWriter::PreserveSpace() {
  if (!m_format || m_context == nullptr) return;
  m_format = false;
  m_preserved = m_context;
}

namespace {

/// \p text with a blank inside each \p mark.
std::string Parted(std::string text, std::string_view mark) {
  for (std::size_t at = text.find(mark); at != std::string::npos; at = text.find(mark, at + 1))
    text.insert(at + 1, " ");
  return text;
}

}  // namespace

void CXmlTextWriter::WriteMarkup(CMarkup const& markup) {
  if (m_context != nullptr) {
    ++m_context->m_childCount;  // its end tag is on a line of its own
    if (m_context->m_tagOpen) {
      CloseTag();
      if (m_format) AppendLineEnd();
    }
    m_stream->Append(std::string(IndentOf(m_context->m_depth + std::size_t{1}), m_indentCharacter));
  }
  std::string const text = markup.text.c_str();
  if (markup.IsComment()) {
    m_stream->Append("<!--");
    AppendLines(Parted(text, "--"));
    m_stream->Append(!text.empty() && text.back() == '-' ? " -->" : "-->");
  } else {
    m_stream->Append("<?");
    m_stream->Append(Parted(markup.target.c_str(), "?>"));
    if (!text.empty()) m_stream->Append(' ');
    AppendLines(Parted(text, "?>"));
    m_stream->Append("?>");
  }
  if (m_format || m_context == nullptr) AppendLineEnd();
  FlushIfFull();
}

void CXmlTextWriter::AppendLines(std::string_view text) {
  for (char const c : text) {
    if (c == '\n') {
      AppendLineEnd();
    } else {
      m_stream->Append(c);
    }
  }
}

void CXmlTextWriter::WriteRawElement(std::string const& text) {
  m_stream->Append(text);
  if (m_format) AppendLineEnd();
}

void CXmlTextWriter::PadAndAppend(char const* text, bool inAttribute) {
  if (text != nullptr) AppendEscaped(text, inAttribute);
}

// Append the escaped text up to the first zero byte.
void CXmlTextWriter::AppendEscaped(std::string_view text, bool inAttribute) {
  while (!text.empty()) {
    std::string_view const piece = text.substr(0, kLongestPiece);
    CTextCursor to = Reserve(*m_stream, piece.size());
    std::size_t const copied = to.PutUntil(piece, HasMarkup());
    Commit(*m_stream, to);
    text.remove_prefix(copied);
    if (copied == piece.size()) continue;
    std::size_t run = 0;
    while (run < text.size() && ClassOf(text[run]) == ByteClass::Plain) ++run;
    m_stream->Append(text.data(), run);
    text.remove_prefix(run);
    if (text.empty()) return;
    if (ClassOf(text.front()) == ByteClass::End && !RulesInUse::AreSchema()) return;
    AppendSpecial(text.front(), inAttribute);
    text.remove_prefix(1);
  }
}

// Append a byte that is not plain. Nobody writes what a reader refuses or changes under the rules of XML Schema.
void CXmlTextWriter::AppendSpecial(char byte, bool inAttribute) {
  ByteClass const byteClass = ClassOf(byte);
  if (byteClass == ByteClass::LineFeed) return m_stream->Append(inAttribute ? "&#xA;" : m_lineEnd.c_str());
  if (byteClass == ByteClass::Escaped) {
    bool const isPlain = byte == '"' && !inAttribute && m_hasPlainQuotes;
    return isPlain ? m_stream->Append(byte) : m_stream->Append(EntityFor(byte));
  }
  bool const isSchema = RulesInUse::AreSchema();
  if (isSchema && (byteClass == ByteClass::Control || byteClass == ByteClass::End)) {
    ThrowNotInXml(static_cast<unsigned char>(byte));
  }
  char const* const reference = isSchema ? ReferenceFor(byteClass, inAttribute) : nullptr;
  if (reference != nullptr) return m_stream->Append(reference);
  if (byteClass != ByteClass::CarriageReturn) m_stream->Append(byte);
}

void CXmlTextWriter::CloseTag() {
  m_context->m_tagOpen = false;
  m_stream->Append('>');
}

void CXmlTextWriter::AppendLineEnd() { m_stream->Append(m_lineEnd); }

void CXmlTextWriter::FlushIfFull() {
  if (m_streamFlushes && m_stream->GetLength() >= kFlushAt) m_stream->Flush();
}

}  // namespace Quillon9
