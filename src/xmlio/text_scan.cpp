#include "xmlio/text_scan.h"

#include <strings.h>

#include <algorithm>
#include <exception>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

namespace Quillon9 {

// ---- The second parse

/// It processes no namespaces, so names come with their prefixes.
class TextScan::Parse {
 public:
  Parse(TextScan& scan, DocumentOutline& outline, std::uint64_t stopAt)
      : m_scan(scan), m_outline(outline), m_stopAt(stopAt), m_parser(XML_ParserCreate(nullptr)) {
    if (m_parser == nullptr) throw std::bad_alloc();
    XML_SetUserData(m_parser.get(), this);
    XML_SetElementHandler(m_parser.get(), FnStart, FnEnd);
    if (stopAt < scan.m_input.size) XML_SetCharacterDataHandler(m_parser.get(), FnText);
    XML_SetXmlDeclHandler(m_parser.get(), FnDeclaration);
    XML_SetUnknownEncodingHandler(m_parser.get(), FnUnknownEncoding, this);
  }

  void Run() {
    m_scan.m_input.FeedTo(m_parser.get(), true);
    if (m_failure != nullptr) std::rethrow_exception(std::exchange(m_failure, nullptr));
  }

 private:
  struct ParserDeleter {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  template <class Action>
  static void Guarded(void* self, Action action) noexcept {
    auto& parse = *static_cast<Parse*>(self);
    if (parse.m_isStopped) return;
    try {
      action(parse);
    } catch (...) {
      parse.m_failure = std::current_exception();
      parse.Stop();
    }
  }

  static void XMLCALL FnStart(void* self, XML_Char const* name, XML_Char const**) {
    Guarded(self, [=](Parse& parse) {
      InputPosition const position = parse.Position();
      if (!parse.m_isStopped) parse.m_outline.Start(name, position);
    });
  }

  static void XMLCALL FnEnd(void* self, XML_Char const*) {
    Guarded(self, [](Parse& parse) { parse.End(); });
  }

  static void XMLCALL FnText(void* self, XML_Char const*, int) {
    Guarded(self, [](Parse& parse) { parse.Position(); });
  }

  static void XMLCALL FnDeclaration(void* self, XML_Char const*, XML_Char const* encoding, int) {
    if (encoding == nullptr || strcasecmp(encoding, "ISO-8859-1") != 0) return;
    Parse& parse = *static_cast<Parse*>(self);
    parse.m_scan.m_form = Form::kSingleByte;
    for (int i = 0; i < 256; ++i) parse.m_scan.m_table[static_cast<std::size_t>(i)] = i;
  }

  static int XMLCALL FnUnknownEncoding(void* self, XML_Char const* name, XML_Encoding* encoding) {
    bool isKnown = false;
    Guarded(self, [&](Parse& parse) {
      isKnown = parse.m_scan.m_input.FillEncoding(name, *encoding);
      if (!isKnown) return;
      parse.m_scan.m_form = Form::kSingleByte;
      std::copy(std::begin(encoding->map), std::end(encoding->map), parse.m_scan.m_table.begin());
    });
    return isKnown ? XML_STATUS_OK : XML_STATUS_ERROR;
  }

  // Of an empty-element tag, the event has no bytes of its own, and the end is where the start is.
  void End() {
    bool const isEmptyTag = XML_GetCurrentByteCount(m_parser.get()) == 0;
    std::uint32_t const open = m_outline.GetOpen();
    if (isEmptyTag && open != DocumentOutline::kNone) return m_outline.End(m_outline.StartOf(open));
    InputPosition const position = Position();
    if (!m_isStopped) m_outline.End(position);
  }

  InputPosition Position() {
    InputPosition const position = m_scan.m_input.PositionOf(m_parser.get());
    if (position.offset >= m_stopAt) Stop();
    return position;
  }

  void Stop() {
    m_isStopped = true;
    XML_StopParser(m_parser.get(), XML_FALSE);
  }

  TextScan& m_scan;
  DocumentOutline& m_outline;
  std::uint64_t const m_stopAt;
  std::unique_ptr<XML_ParserStruct, ParserDeleter> m_parser;
  std::exception_ptr m_failure;
  bool m_isStopped = false;
};

void TextScan::Outline(DocumentOutline& outline, std::uint64_t stopAt) {
  m_form = Form::kUtf8;
  if (m_input.size >= 2) {
    unsigned const two = static_cast<unsigned>(m_input.data[0]) << 8 | m_input.data[1];
    if (two == 0xFEFF || m_input.data[0] == 0) m_form = Form::kUtf16BE;
    if (two == 0xFFFE || m_input.data[1] == 0) m_form = Form::kUtf16LE;
  }
  Parse(*this, outline, stopAt).Run();
}

// ---- Start tags

/// Goes through the characters of the input and counts lines and columns as expat does.
class TextScan::Cursor {
 public:
  Cursor(TextScan const& scan, InputPosition const& at) : m_scan(scan), m_position(at), m_next(at.offset) { Decode(); }

  InputPosition const& GetPosition() const { return m_position; }
  std::uint32_t Get() const { return m_character; }

  void Advance() {
    std::uint32_t const passed = m_character;
    m_position.offset = static_cast<std::uint32_t>(m_next);
    Decode();
    bool const endsLine = passed == '\n' || (passed == '\r' && m_character != '\n');
    if (endsLine) {
      ++m_position.line;
      m_position.column = 1;
    } else {
      ++m_position.column;
    }
  }
  template <class Test>
  void SkipWhile(Test test) {
    while (m_character != 0 && test(m_character)) Advance();
  }

 private:
  void Decode() { m_character = m_scan.CharacterAt(m_position.offset, m_next); }

  TextScan const& m_scan;
  InputPosition m_position;
  std::size_t m_next;
  std::uint32_t m_character = 0;
};

namespace {

bool IsSpace(std::uint32_t c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool EndsTag(std::uint32_t c) { return c == '>' || c == '/'; }
bool IsOfName(std::uint32_t c) { return !IsSpace(c) && !EndsTag(c) && c != '='; }

bool DeclaresNamespace(std::string const& name) { return name == "xmlns" || name.compare(0, 6, "xmlns:") == 0; }

void AppendUtf8(std::string& out, std::uint32_t c) {
  auto const append = [&](std::uint32_t byte) { out += static_cast<char>(byte); };
  if (c < 0x80) return append(c);
  if (c < 0x800) {
    append(0xC0 | c >> 6);
  } else if (c < 0x10000) {
    append(0xE0 | c >> 12);
    append(0x80 | (c >> 6 & 0x3F));
  } else {
    append(0xF0 | c >> 18);
    append(0x80 | (c >> 12 & 0x3F));
    append(0x80 | (c >> 6 & 0x3F));
  }
  append(0x80 | (c & 0x3F));
}

}  // namespace

std::vector<InputPosition> TextScan::AttributesAt(InputPosition const& tag, bool withDeclarations) const {
  std::vector<InputPosition> attributes;
  Cursor cursor(*this, tag);
  if (cursor.Get() != '<') return attributes;
  cursor.SkipWhile(IsOfName);
  for (cursor.SkipWhile(IsSpace); cursor.Get() != 0 && !EndsTag(cursor.Get()); cursor.SkipWhile(IsSpace)) {
    InputPosition const position = cursor.GetPosition();
    if (withDeclarations || !DeclaresNamespace(NameAt(position))) attributes.push_back(position);
    cursor.SkipWhile([](std::uint32_t c) { return c != '"' && c != '\''; });
    std::uint32_t const quote = cursor.Get();
    cursor.Advance();
    cursor.SkipWhile([quote](std::uint32_t c) { return c != quote; });
    cursor.Advance();
  }
  return attributes;
}

std::string TextScan::NameAt(InputPosition const& at) const {
  constexpr std::size_t kMore = 200;
  std::string name;
  Cursor cursor(*this, at);
  cursor.SkipWhile([&](std::uint32_t c) {
    if (!IsOfName(c) || name.size() > kMore) return false;
    AppendUtf8(name, c);
    return true;
  });
  return DocumentOutline::Shown(name);
}

// ---- Characters. The first parse has found them to be well-formed.

std::uint32_t TextScan::CharacterAt(std::size_t at, std::size_t& end) const {
  end = at;
  if (at >= m_input.size) return 0;
  switch (m_form) {
    case Form::kUtf8: return Utf8At(at, end);
    case Form::kUtf16LE:
    case Form::kUtf16BE: return Utf16At(at, end);
    case Form::kSingleByte: break;
  }
  end = at + 1;
  return static_cast<std::uint32_t>(m_table[m_input.data[at]]);
}

std::uint32_t TextScan::Utf8At(std::size_t at, std::size_t& end) const {
  std::uint32_t const lead = m_input.data[at];
  std::size_t const size = lead < 0xC0 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  std::uint32_t character = size == 1 ? lead : lead & (0x7FU >> size);
  for (end = at + 1; end < at + size && end < m_input.size; ++end)
    character = character << 6 | (m_input.data[end] & 0x3FU);
  return character;
}

std::uint32_t TextScan::Utf16At(std::size_t at, std::size_t& end) const {
  auto const unitAt = [&](std::size_t i) -> std::uint32_t {
    if (i + 1 >= m_input.size) return 0;
    std::uint32_t const first = m_input.data[i];
    std::uint32_t const second = m_input.data[i + 1];
    return m_form == Form::kUtf16LE ? second << 8 | first : first << 8 | second;
  };
  std::uint32_t const high = unitAt(at);
  end = at + 2;
  if (high < 0xD800 || high >= 0xDC00) return high;
  end = at + 4;
  return 0x10000 + ((high - 0xD800) << 10) + ((unitAt(at + 2) - 0xDC00) & 0x3FF);
}

}  // namespace Quillon9
