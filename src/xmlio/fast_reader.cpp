#include "xmlio/fast_reader.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/xmlio/writer.h"
#include "text/utf8_to_local.h"
#include "values/rules_in_use.h"
#include "xmlio/markup_scan.h"
#include "xmlio/markup_skip.h"
#include "xmlio/node_access.h"
#include "xmlio/reserved_namespaces.h"

namespace Quillon9 {

namespace {

using MarkupScan::FindStop;
using MarkupScan::Is;
using MarkupScan::SkipSpace;
using MarkupScan::StartsWith;
using MarkupScan::Within;

constexpr std::string_view kXmlNamespace = CXmlWriter::XML_NAMESPACE;
constexpr std::string_view kDocumentTypeStart = "<!DOCTYPE";
constexpr std::string_view kCDataStart = "[CDATA[";
constexpr std::string_view kCDataEnd = "]]>";
/// The parser refuses a comment, a value or the like of a gibibyte; a document that may have one is left to it.
constexpr std::size_t kMostInput = 0x3FFF0000;
/// Few documents need more room than this.
constexpr std::size_t kUsualDepth = 16;
constexpr std::size_t kUsualAttributes = 8;

char const* InputStart(CXmlDocument const& document) { return reinterpret_cast<char const*>(document.GetInputData()); }

bool IsBeyondAscii(char byte) { return static_cast<unsigned char>(byte) >= 0x80; }

/// Whether the bracket at \p at ends a CDATA section, if the text in front of it begins at \p start.
bool IsCDataEnd(char const* start, char const* at) { return at - start >= 2 && at[-1] == ']' && at[-2] == ']'; }

/// Passes over what stops a scan but is an ordinary part of text.
char const* SkipLayout(char const* at) {
  while (*at == '\n' || *at == '\t') ++at;
  return at;
}

std::string_view TextOf(char const* start, char const* end) { return {start, static_cast<std::size_t>(end - start)}; }

}  // namespace

// ---- The document

bool FastReader::Read(CXmlDocument& document) {
  CUtf8ToLocal const toLocal;
  bool const isSuitable = document.GetInputSize() <= kMostInput && document.GetSchemaType() != SchemaType_DTD &&
                          toLocal.KeepsAscii() && XmlNodeAccess::IsUntouched(document) &&
                          !XmlNodeAccess::HasFilter(document);
  if (!isSuitable) return false;
  std::uint64_t const contentSize = XmlNodeAccess::ContentSize(document);
  try {
    if (FastReader(document, toLocal.KeepsUtf8()).ReadAll()) return true;
  } catch (CQnException const&) {  // beyond a limit, which the parser finds as well
  }
  XmlNodeAccess::DropTree(document);
  XmlNodeAccess::ContentSize(document) = contentSize;
  return false;
}

FastReader::FastReader(CXmlDocument& document, bool takesAll)
    : m_document(document),
      m_takesAll(takesAll),
      m_keepsMarkup(XmlNodeAccess::KeepsMarkup(document)),
      m_end(InputStart(document) + document.GetInputSize()),
      m_names(takesAll) {
  m_open.reserve(kUsualDepth);
  m_attributes.reserve(kUsualAttributes);
}

bool FastReader::ReadAll() {
  char const* at = InputStart(m_document);
  while (m_end != at && Is(MarkupScan::kSpace, m_end[-1])) --m_end;
  if (m_end == at || m_end[-1] != '>') return false;
  at = ReadProlog(at);
  if (at == nullptr || at == m_end || *at != '<') return false;
  at = ReadStartTag(at + 1);
  if (at != nullptr && !m_open.empty()) at = ReadContent(at);
  if (at != nullptr) at = ReadMiscellaneous(at);
  return at == m_end;
}

/// Reads what is in front of the document element.
char const* FastReader::ReadProlog(char const* at) {
  at = MarkupSkip::Declaration(at, m_end);
  if (at != nullptr) at = ReadMiscellaneous(at);
  if (at == nullptr || !StartsWith(at, m_end, kDocumentTypeStart)) return at;
  if (!CLimits::GetAllowDocumentType()) return nullptr;
  at = MarkupSkip::DocumentType(at + kDocumentTypeStart.size(), m_end);
  return at != nullptr ? ReadMiscellaneous(at) : nullptr;
}

/// Reads what stands around the document element.
char const* FastReader::ReadMiscellaneous(char const* at) {
  if (!m_keepsMarkup) return MarkupSkip::Miscellaneous(at, m_end);
  while (at != nullptr) {
    while (at != m_end && Is(MarkupScan::kSpace, *at)) ++at;
    if (!StartsWith(at, m_end, "<!--") && !StartsWith(at, m_end, "<?")) break;
    at = ReadMarkup(at + 1);
  }
  return at;
}

// ---- Content

char const* FastReader::ReadContent(char const* at) {
  do {
    at = ReadText(at);
    if (at == nullptr) return nullptr;
    char const next = at[1];
    if (next == '/') {
      at = ReadEndTag(at + 2);
    } else if (next == '!' || next == '?') {
      at = ReadMarkup(at + 1);
    } else {
      at = ReadStartTag(at + 1);
    }
  } while (at != nullptr && !m_open.empty());
  return at;
}

/// Reads up to the next '<'.
char const* FastReader::ReadText(char const* at) {
  if (at == m_end) return nullptr;
  if (*at == '<') return at;
  char const* const start = at;
  at = FindStop<Within::kText>(SkipLayout(at), m_end);
  if (at == m_end) return nullptr;
  if (*at != '<') return ReadOtherText(start, at);
  if (at != start) AppendText(start, at);
  return at;
}

/// Goes on with a text that begins at \p start, from a byte on at which something has to be decided.
char const* FastReader::ReadOtherText(char const* start, char const* at) {
  while (at != nullptr && at != m_end) {
    switch (*at) {
      case '<': AppendText(start, at); return at;
      case '\t':
      case '\n': at = SkipLayout(at); break;
      case '>':
        if (IsCDataEnd(start, at)) return nullptr;
        ++at;
        break;
      case '\r':
        AppendText(start, at);
        start = ++at;
        if (*at != '\n') AppendCharacter("\n");
        break;
      case '&':
        AppendText(start, at);
        start = at = ReadReference(at);
        break;
      default: at = ReadBeyondAscii(at);
    }
    if (at != nullptr) at = FindStop<Within::kText>(at, m_end);
  }
  return nullptr;
}

/// Reads the characters beyond ASCII.
char const* FastReader::ReadBeyondAscii(char const* at) const {
  return m_takesAll && IsBeyondAscii(*at) ? MarkupScan::SkipBeyondAscii(at, m_end) : nullptr;
}

bool FastReader::IsTaken(CharacterReference const& reference) const {
  return m_takesAll || !IsBeyondAscii(reference.Text()[0]);
}

char const* FastReader::ReadReference(char const* at) {
  CharacterReference reference;
  at = reference.Read(at, m_end);
  if (at == nullptr || !IsTaken(reference)) return nullptr;
  AppendCharacter(reference.Text());
  return at;
}

/// Reads what begins with "<!" or "<?", from behind the '<' on.
char const* FastReader::ReadMarkup(char const* at) {
  if (*at == '?') return ReadInstruction(at + 1);
  ++at;
  if (StartsWith(at, m_end, "--")) return ReadComment(at + 2);
  return StartsWith(at, m_end, kCDataStart) ? ReadCData(at + kCDataStart.size()) : nullptr;
}

char const* FastReader::ReadComment(char const* at) {
  char const* const end = MarkupSkip::Comment(at, m_end);
  if (!m_keepsMarkup || end == nullptr) return end;
  return KeepMarkup({}, TextOf(at, end - 3)) ? end : nullptr;
}

char const* FastReader::ReadInstruction(char const* at) {
  char const* const end = MarkupSkip::Instruction(at, m_end);
  if (!m_keepsMarkup || end == nullptr) return end;
  std::string_view text = TextOf(at, end - 2);
  constexpr std::string_view kBlanks = " \t\r\n";
  std::string_view const target = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(target.size());
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return KeepMarkup(target, text) ? end : nullptr;
}

/// Returns false if the text has to be converted.
bool FastReader::KeepMarkup(std::string_view target, std::string_view text) {
  auto const isConverted = [this](std::string_view part) {
    return !m_takesAll && std::any_of(part.begin(), part.end(), IsBeyondAscii);
  };
  if (isConverted(target) || isConverted(text)) return false;
  std::string lines;
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool const isLineEnd = text[i] == '\r';
    if (isLineEnd && i + 1 < text.size() && text[i + 1] == '\n') continue;
    lines += isLineEnd ? '\n' : text[i];
  }
  XmlNodeAccess::AddMarkup(m_document, std::string(target), std::move(lines));
  return true;
}

char const* FastReader::ReadCData(char const* at) {
  bool const isMarked = !m_document.StripsCDATA();
  if (isMarked) AppendCharacter("<![CDATA[");
  char const* const contentStart = at;
  char const* start = at;
  for (;;) {
    at = FindStop<Within::kText>(at, m_end);
    if (at == m_end) return nullptr;
    if (*at == '>' && IsCDataEnd(contentStart, at)) break;
    if (*at == '\r') {
      AppendText(start, at);
      start = ++at;
      if (*at != '\n') AppendCharacter("\n");
    } else if (Is(MarkupScan::kCharacter, *at)) {
      ++at;
    } else {
      at = ReadBeyondAscii(at);
      if (at == nullptr) return nullptr;
    }
  }
  AppendText(start, at - 2);
  if (isMarked) AppendCharacter(kCDataEnd);
  return at + 1;
}

void FastReader::AppendText(char const* start, char const* end) {
  if (start == end) return;
  std::string_view const text = TextOf(start, end);
  m_document.CountContent(text.size());
  XmlNodeAccess::AppendText(*m_document.GetOpenElement(), text);
}

/// Appends what does not stand in the input like this. A carriage return counts, but is left out by the classic rules.
void FastReader::AppendCharacter(std::string_view character) {
  m_document.CountContent(character.size());
  if (character != "\r" || RulesInUse::AreSchema()) XmlNodeAccess::AppendText(*m_document.GetOpenElement(), character);
}

// ---- Tags

/// Reads a start tag from behind its '<' on.
char const* FastReader::ReadStartTag(char const* at) {
  FastName* const name = m_names.Read(at, m_end);
  if (name == nullptr) return nullptr;
  if (*at != '>') {
    at = ReadAttributes(at);
    if (at == nullptr) return nullptr;
  }
  bool const isEmpty = *at == '/';
  if (isEmpty && *++at != '>') return nullptr;
  if (!Open(*name)) return nullptr;
  if (isEmpty) Close();
  return at + 1;
}

/// Reads up to the '>' or '/' that ends the tag.
char const* FastReader::ReadAttributes(char const* at) {
  ++m_tag;
  while (at != nullptr) {
    char const* const next = SkipSpace(at);
    if (*next == '>' || *next == '/') return next;
    at = next != at ? ReadAttribute(next) : nullptr;
  }
  return nullptr;
}

char const* FastReader::ReadAttribute(char const* at) {
  FastName* const name = m_names.Read(at, m_end);
  if (name == nullptr || std::exchange(name->lastTag, m_tag) == m_tag) return nullptr;
  at = SkipSpace(at);
  if (*at != '=') return nullptr;
  at = SkipSpace(at + 1);
  char const quote = *at;
  if (quote != '"' && quote != '\'') return nullptr;
  char const* const start = ++at;
  bool isPlain = true;
  at = ReadValue(at, quote, isPlain);
  if (at == nullptr) return nullptr;
  Attribute const attribute = {name, TextOf(start, at), isPlain};
  if (name->declared == nullptr) {
    m_attributes.push_back(attribute);
  } else if (!Declare(*name->declared, Normalized(attribute))) {
    return nullptr;
  }
  return at + 1;
}

/// Reads up to the quotation mark that ends the value, and clears \p isPlain if the value has to be normalized.
char const* FastReader::ReadValue(char const* at, char quote, bool& isPlain) const {
  while (at != nullptr) {
    at = quote == '"' ? FindStop<Within::kDoubleQuotes>(at, m_end) : FindStop<Within::kSingleQuotes>(at, m_end);
    if (at == m_end || *at == '<') return nullptr;
    if (*at == quote) return at;
    if (*at == '>') {
      ++at;
    } else if (*at == '&') {
      CharacterReference reference;
      at = reference.Read(at, m_end);
      if (at == nullptr || !IsTaken(reference)) return nullptr;
      isPlain = false;
    } else if (Is(MarkupScan::kSpace, *at)) {
      ++at;
      isPlain = false;
    } else {
      at = ReadBeyondAscii(at);
    }
  }
  return nullptr;
}

/// The value of an attribute as XML 1.0 (W3C, section 3.3.3) normalizes it, until the next call. Its references have
/// been read before.
std::string_view FastReader::Normalized(Attribute const& attribute) {
  if (attribute.isPlain) return attribute.value;
  m_value.clear();
  char const* at = attribute.value.data();
  char const* const end = at + attribute.value.size();
  while (at != end) {
    if (*at == '&') {
      CharacterReference reference;
      at = reference.Read(at, end);
      m_value += reference.Text();
    } else {
      if (*at == '\r' && at + 1 != end && at[1] == '\n') ++at;
      m_value += Is(MarkupScan::kSpace, *at) ? ' ' : *at;
      ++at;
    }
  }
  return m_value;
}

/// Reads an end tag from behind its "</" on.
char const* FastReader::ReadEndTag(char const* at) {
  FastName const& name = *m_open.back();
  if (!name.IsAt(at, m_end)) return nullptr;
  at = SkipSpace(at + name.text.size());
  if (*at != '>') return nullptr;
  Close();
  return at + 1;
}

// ---- The tree

bool FastReader::Open(FastName& name) {
  CXmlName const* const shared = SharedName(name);
  if (shared == nullptr) return false;
  CXmlElement* const element = m_open.empty() ? m_document.AddDocElement(shared) : m_document.AddChildElement(shared);
  m_open.push_back(&name);
  return m_attributes.empty() || AddAttributes(*element);
}

void FastReader::Close() {
  XmlNodeAccess::CloseElement(m_document);
  m_open.pop_back();
  for (; !m_bindings.empty() && m_bindings.back().depth == m_open.size(); m_bindings.pop_back()) {
    m_bindings.back().prefix->bound = m_bindings.back().outer;
  }
}

/// Adds the attributes of the start tag. Only those with prefixes can have the same name in spite of different texts.
bool FastReader::AddAttributes(CXmlElement& element) {
  m_prefixed.clear();
  for (Attribute const& attribute : m_attributes) {
    CXmlName const* const shared = SharedAttributeName(*attribute.name);
    if (shared == nullptr) return false;
    if (attribute.name->colon != 0) m_prefixed.push_back(shared);
    m_document.AddElementAttribute(&element, shared, Normalized(attribute));
  }
  m_attributes.clear();
  // Sorting keeps the cost of an element with many of them almost linear.
  std::sort(m_prefixed.begin(), m_prefixed.end(), std::less<>());
  return std::adjacent_find(m_prefixed.begin(), m_prefixed.end()) == m_prefixed.end();
}

CXmlName const* FastReader::SharedAttributeName(FastName& name) {
  if (name.colon != 0) return SharedName(name);
  if (name.sharedAlone == nullptr) name.sharedAlone = m_document.ShareName({}, name.text);
  return name.sharedAlone;
}

/// Returns null if the prefix is not declared.
CXmlName const* FastReader::SharedName(FastName& name) {
  std::string const* const uri = name.prefix->bound;
  if (name.shared != nullptr && name.sharedUri == uri) return name.shared;
  if (uri == nullptr && name.colon != 0) return nullptr;
  name.sharedUri = uri;
  name.shared = m_document.ShareName(uri != nullptr ? std::string_view(*uri) : std::string_view(), name.LocalName());
  return name.shared;
}

/// Binds a prefix in the element whose start tag is being read. Returns false if that is not allowed (Namespaces in
/// XML 1.0, W3C, section 3), or if the parser may think so.
bool FastReader::Declare(FastName& prefix, std::string_view uri) {
  bool const isReserved = prefix.text == "xmlns" || uri == kDeclarationsNamespace ||
                          (prefix.text == "xml") != (uri == kXmlNamespace) || uri.find('|') != std::string_view::npos;
  if (isReserved || (uri.empty() && !prefix.text.empty())) return false;
  std::string const* const kept = XmlNodeAccess::DeclareNamespace(m_document, prefix.text, uri);
  m_bindings.push_back({&prefix, prefix.bound, m_open.size()});
  prefix.bound = uri.empty() ? nullptr : kept;
  return true;
}

}  // namespace Quillon9
