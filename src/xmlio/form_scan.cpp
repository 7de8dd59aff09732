#include "xmlio/form_scan.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/text_copy.h"
#include "quillon9/xmlio/element.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kLongestKept = 65536;  // of each text that is kept as it is spelled
constexpr std::size_t kLookedAt = 65536;     // of the document, for its tags
constexpr std::string_view kSpace = " \t\r\n";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kInfosetStart("\xE0\0\0\1", 4);
constexpr std::string_view kDeclarationStart = "<?xml";
constexpr std::string_view kCommentStart = "<!--";
constexpr std::string_view kDocumentTypeStart = "<!DOCTYPE";
constexpr char kSchemaInstance[] = "http://www.w3.org/2001/XMLSchema-instance";

bool IsSpace(char byte) { return kSpace.find(byte) != kNone; }

bool HasAt(std::string_view text, std::size_t at, std::string_view part) {
  return text.compare(at, part.size(), part) == 0;
}

std::size_t SkipSpace(std::string_view text, std::size_t at) {
  return std::min(text.find_first_not_of(kSpace, at), text.size());
}

/// What follows \p part from \p at on; npos if it is not there.
std::size_t FindEndOf(std::string_view text, std::string_view part, std::size_t at) {
  std::size_t const found = text.find(part, at);
  return found != kNone ? found + part.size() : kNone;
}

bool IsWide(std::string_view text) {
  if (text.size() < 2) return false;
  bool const isMarked = HasAt(text, 0, "\xFF\xFE") || HasAt(text, 0, "\xFE\xFF");
  return isMarked || ((text[0] == '\0') != (text[1] == '\0'));
}

/// UTF-16 as ASCII, with a mark in place of each other character.
std::string Narrowed(std::string_view wide) {
  constexpr unsigned kMark = 0xFEFF;
  auto const byteAt = [&](std::size_t at) { return static_cast<unsigned>(static_cast<unsigned char>(wide[at])); };
  bool const isBigEndian = byteAt(0) == 0xFE || byteAt(0) == 0;
  std::string text;
  text.reserve(wide.size() / 2);
  for (std::size_t at = 0; at + 1 < wide.size(); at += 2) {
    unsigned const unit = byteAt(at) << (isBigEndian ? 8 : 0) | byteAt(at + 1) << (isBigEndian ? 0 : 8);
    if (at == 0 && unit == kMark) continue;
    text += unit < 0x80 ? static_cast<char>(unit) : '\x1A';
  }
  return text;
}

/// \p text with line feeds as line ends; nothing if it is long.
std::string Kept(std::string_view text) {
  if (text.size() > kLongestKept) return {};
  std::string lines;
  lines.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '\r') {
      lines += text[at];
    } else if (at + 1 == text.size() || text[at + 1] != '\n') {
      lines += '\n';
    }
  }
  return lines;
}

/// Whether \p text is the same in each encoding of the output.
bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return (c >= ' ' && c < '\x7F') || IsSpace(c); });
}

void TakeSchemaLocations(CDocumentForm& form, CXmlElement const& root) {
  for (CXmlAttribute const& attribute : root.Attributes()) {
    if (attribute.GetNamespaceURI() != kSchemaInstance) continue;
    std::string const& name = attribute.GetLocalName();
    if (name == "schemaLocation") form.schemaLocation = attribute.GetValue();
    if (name == "noNamespaceSchemaLocation") form.noNamespaceSchemaLocation = attribute.GetValue();
  }
}

/// The default namespace counts if the document element has no prefix in spite of it.
void TakeDefaultNamespace(CDocumentForm& form, CXmlDocument const& document) {
  CXmlElement const& root = *document.GetDocumentElement();
  std::string uri;
  if (!document.LookupNamespace(root, "", uri) || uri.find_first_of("&<\"") != kNone) return;
  std::string_view const tag = form.startTags.empty() ? std::string_view() : form.startTags.front();
  bool const hasPrefix = tag.substr(0, tag.find_first_of(" \t\n/>")).find(':') != kNone;
  if (!tag.empty() && !(hasPrefix && uri == root.GetNamespaceURI())) form.defaultNamespace = uri;
}

}  // namespace

CDocumentForm FormScan::Of(CXmlDocument const& document) {
  CDocumentForm form;
  TakeSchemaLocations(form, *document.GetDocumentElement());
  if (document.GetInputData() == nullptr) return form;
  std::string_view text(reinterpret_cast<char const*>(document.GetInputData()), document.GetInputSize());
  std::string narrow;
  if (IsWide(text)) text = narrow = Narrowed(text);
  FormScan scan(text, form);
  if (scan.TakeInfosetDeclaration()) return form;
  scan.Run();
  TakeDefaultNamespace(form, document);
  return form;
}

/// Returns false if the input is text.
bool FormScan::TakeInfosetDeclaration() {
  if (HasAt(m_text, 0, kInfosetStart)) return true;
  if (!HasAt(m_text, 0, kDeclarationStart)) return false;
  std::string_view const declaration = m_text.substr(0, m_text.find("?>"));
  if (declaration.find("encoding='finf'") == kNone) return false;
  auto const has = [&](std::string_view part) { return declaration.find(part) != kNone; };
  m_form.declaration = has("version='1.1'") ? "<?xml version=\"1.1\"" : "<?xml version=\"1.0\"";
  if (has("standalone='yes'")) m_form.declaration += " standalone=\"yes\"";
  if (has("standalone='no'")) m_form.declaration += " standalone=\"no\"";
  m_form.declaration += "?>";
  return true;
}

void FormScan::Run() {
  m_form.hasLayout = true;
  std::size_t const lineFeed = m_text.find('\n');
  bool const hasReturn = lineFeed != kNone && lineFeed > 0 && m_text[lineFeed - 1] == '\r';
  m_form.lineEnd = hasReturn ? EOLType_CRLF : EOLType_LF;
  m_form.hasFinalLineEnd = !m_text.empty() && (m_text.back() == '\n' || m_text.back() == '\r');
  TakeDeclaration();
  if (!TakeProlog()) return;
  TakeTags();
  TakeEpilog();
}

void FormScan::TakeDeclaration() {
  m_form.hasByteOrderMark = HasAt(m_text, 0, kByteOrderMark);
  if (m_form.hasByteOrderMark) m_at = kByteOrderMark.size();
  std::size_t const name = m_at + kDeclarationStart.size();
  if (!HasAt(m_text, m_at, kDeclarationStart) || name >= m_text.size() || !IsSpace(m_text[name])) return;
  std::size_t const end = FindEndOf(m_text, "?>", m_at);
  if (end == kNone) return;
  m_form.declaration = Kept(m_text.substr(m_at, end - m_at));
  m_at = end;
}

/// Leaves the place at the document element; returns false if that is not found.
bool FormScan::TakeProlog() {
  std::size_t const start = m_at;
  for (std::size_t end = 0; end != kNone;) {
    m_at = SkipSpace(m_text, m_at);
    end = FindMarkupEnd(m_text, m_at);
    if (end == kNone) break;
    std::string_view const markup = m_text.substr(m_at, end - m_at);
    bool const isType = HasAt(markup, 0, kDocumentTypeStart);
    if (isType && markup.find('[') == kNone && IsPlain(markup)) m_form.documentType = Kept(markup);
    m_at = end;
  }
  m_form.prolog = Kept(m_text.substr(start, m_at - start));
  return m_at + 1 < m_text.size() && m_text[m_at] == '<';
}

void FormScan::TakeEpilog() {
  std::size_t start = m_text.size();
  for (;;) {
    std::size_t const last = start == 0 ? kNone : m_text.find_last_not_of(kSpace, start - 1);
    start = last == kNone ? 0 : last + 1;
    std::string_view const front = m_text.substr(0, start);
    bool const isComment = front.size() > 3 && HasAt(front, start - 3, "-->");
    bool const isInstruction = front.size() > 2 && HasAt(front, start - 2, "?>");
    if (!isComment && !isInstruction) break;
    std::size_t const markup = front.rfind(isComment ? kCommentStart : "<?");
    if (markup == kNone || markup <= m_at) break;
    start = markup;
  }
  m_form.epilog = Kept(m_text.substr(start));
}

/// Looks at the tags of the first part of the document.
void FormScan::TakeTags() {
  std::string_view const text = m_text.substr(m_at, kLookedAt);
  std::size_t startTagEnd = kNone;  // of the tag in front, if it is a start tag
  std::size_t depth = 0;
  for (std::size_t at = 0, last = 0; at != kNone; at = text.find('<', last)) {
    std::string_view const space = text.substr(last, at - last);
    last = FindTextMarkupEnd(text, at);
    if (last == kNone) break;
    std::string_view const markup = text.substr(at, last - at);
    bool const isEndTag = markup[1] == '/';
    bool const isStartTag = !isEndTag && markup[1] != '!' && markup[1] != '?';
    if (startTagEnd != kNone && !isEndTag) TakeIndentation(space, markup, depth);
    if (isEndTag && at == startTagEnd) ++m_emptyElements[EmptyElementForm_Pair];
    bool const isEmpty = isStartTag && TakeStartTag(markup);
    startTagEnd = isStartTag && !isEmpty ? last : kNone;
    if (startTagEnd != kNone) ++depth;
    if (isEndTag && depth != 0) --depth;
  }
  m_form.hasPlainQuotes = text.find("&quot;") == kNone;
  auto const most = std::max_element(m_emptyElements.begin(), m_emptyElements.end());
  m_form.emptyElements = static_cast<EmptyElementForm>(most - m_emptyElements.begin());
}

/// The white space between a start tag and \p next, its first child, at \p depth. The first that is indented shows what
/// a level is.
void FormScan::TakeIndentation(std::string_view space, std::string_view next, std::size_t depth) {
  bool const isLayout = SkipSpace(space, 0) == space.size() && !HasAt(next, 0, "<![");
  if (!isLayout || depth != m_flatLevels + std::size_t{1} || m_isIndentKnown) return;
  std::size_t const lineEnd = space.find_last_of("\r\n");
  if (depth == 1) m_form.isFormatted = lineEnd != kNone;
  if (depth == 1) m_form.indentWidth = 0;
  if (lineEnd == kNone) return;
  std::string_view const indent = space.substr(lineEnd + 1);
  if (indent.empty() && m_flatLevels < UINT8_MAX) {
    ++m_flatLevels;
    return;
  }
  auto const tabs = static_cast<std::size_t>(std::count(indent.begin(), indent.end(), '\t'));
  m_form.indentCharacter = tabs != 0 ? '\t' : ' ';
  m_form.indentWidth = static_cast<std::uint8_t>(std::min<std::size_t>(tabs != 0 ? tabs : indent.size(), UINT8_MAX));
  m_form.flatLevels = m_flatLevels;
  m_isIndentKnown = true;
}

/// Keeps the first tag of each name, and those that have other attributes than the ones before. Returns whether the
/// element is empty.
bool FormScan::TakeStartTag(std::string_view spelled) {
  bool const isEmpty = spelled.size() > 3 && spelled[spelled.size() - 2] == '/';
  if (isEmpty)
    ++m_emptyElements[IsSpace(spelled[spelled.size() - 3]) ? EmptyElementForm_Blank : EmptyElementForm_Short];
  StartTag const tag(spelled);
  if (!m_form.startTags.empty() && !(tag.IsRight() && tag.HasAttributes())) return isEmpty;
  auto const known = m_known.emplace(tag.Name(), tag);
  if (!known.second) {
    if (!known.first->second.LacksAttributeOf(tag)) return isEmpty;
    known.first->second.Learn(tag);
  }
  m_form.startTags.push_back(Kept(spelled));
  return isEmpty;
}

std::size_t FormScan::FindMarkupEnd(std::string_view text, std::size_t start) {
  if (HasAt(text, start, kCommentStart)) return FindEndOf(text, "-->", start + kCommentStart.size());
  if (HasAt(text, start, "<?")) return FindEndOf(text, "?>", start + 2);
  if (HasAt(text, start, kDocumentTypeStart)) return FindDocumentTypeEnd(text, start + kDocumentTypeStart.size());
  return kNone;
}

/// The same for all that is between texts.
std::size_t FormScan::FindTextMarkupEnd(std::string_view text, std::size_t start) {
  if (HasAt(text, start, "<![")) return FindEndOf(text, "]]>", start);
  bool const isTag = !HasAt(text, start, "<!") && !HasAt(text, start, "<?");
  return isTag ? FindTagEnd(text, start) : FindMarkupEnd(text, start);
}

std::size_t FormScan::FindDocumentTypeEnd(std::string_view text, std::size_t start) {
  bool isInside = false;  // the brackets, where declarations end with the same character
  for (std::size_t at = text.find_first_of("\"'<[]>", start); at < text.size();) {
    char const found = text[at];
    if (found == '>' && !isInside) return at + 1;
    if (found == '[') isInside = true;
    if (found == ']') isInside = false;
    std::size_t next = at + 1;
    if (found == '"' || found == '\'') next = FindEndOf(text, text.substr(at, 1), next);
    if (HasAt(text, at, kCommentStart) || HasAt(text, at, "<?")) next = FindMarkupEnd(text, at);
    at = next != kNone ? text.find_first_of("\"'<[]>", next) : kNone;
  }
  return kNone;
}

bool FormScan::SplitMarkup(std::string_view text, std::vector<std::string_view>& pieces) {
  for (std::size_t at = SkipSpace(text, 0); at < text.size(); at = SkipSpace(text, at)) {
    std::size_t const end = FindMarkupEnd(text, at);
    if (end == kNone) return false;
    pieces.push_back(text.substr(at, end - at));
    at = end;
  }
  return true;
}

std::size_t FormScan::FindTagEnd(std::string_view text, std::size_t start) {
  for (std::size_t at = text.find_first_of("\"'>", start); at != kNone; at = text.find_first_of("\"'>", at)) {
    if (text[at] == '>') return at + 1;
    at = FindEndOf(text, text.substr(at, 1), at + 1);
    if (at == kNone) break;
  }
  return kNone;
}

namespace {

bool IsSameName(std::string_view a, std::string_view b) {
  auto const lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace

std::string FormScan::WithEncoding(std::string declaration, std::string_view name) {
  std::size_t const keyword = declaration.find("encoding");
  std::size_t const open = keyword != kNone ? declaration.find_first_of("\"'", keyword) : kNone;
  std::size_t const close = open != kNone ? declaration.find(declaration[open], open + 1) : kNone;
  if (close != kNone) {
    std::string_view const old = std::string_view(declaration).substr(open + 1, close - open - 1);
    if (IsSameName(old, name)) return declaration;
    if (!name.empty()) return declaration.replace(open + 1, old.size(), name);
    std::size_t const before = declaration.find_last_not_of(kSpace, keyword - 1);
    return declaration.erase(before + 1, close - before);
  }
  bool const isImplied = name.empty() || name == "UTF-8";
  std::size_t const version = isImplied ? kNone : declaration.find_first_of("\"'");
  std::size_t const end = version != kNone ? declaration.find(declaration[version], version + 1) : kNone;
  if (end != kNone) declaration.insert(end + 1, " encoding=\"" + std::string(name) + '"');
  return declaration;
}

}  // namespace Quillon9
