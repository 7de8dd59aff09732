#include "records/markup.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "quillon9/base/limits.h"
#include "xmlio/markup_scan.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kNone = TextWindow::kNone;

bool StartsWith(TextWindow& window, std::size_t at, std::string_view wanted) {
  return window.Has(at + wanted.size() - 1) && window.Text(at, at + wanted.size()) == wanted;
}

std::size_t EndAfter(TextWindow& window, std::string_view wanted, std::size_t from) {
  std::size_t const found = window.Find(wanted, from);
  return found != kNone ? found + wanted.size() : kNone;
}

/// The end of a literal whose quotation mark is at \p at.
std::size_t EndOfLiteral(TextWindow& window, std::size_t at) {
  char const quote[] = {window.At(at)};
  return EndAfter(window, {quote, 1}, at + 1);
}

/// How much of a tag is neither its end nor a quotation mark.
std::size_t LengthOfPlain(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && text[length] != '>' && text[length] != '"' && text[length] != '\'') ++length;
  return length;
}

/// The end of a tag: the first '>' outside of quotation marks.
std::size_t EndOfTag(TextWindow& window, std::size_t at) {
  while (window.Has(at)) {
    std::string_view const text = window.Text(at, window.Size());
    std::size_t const length = LengthOfPlain(text);
    at += length;
    if (length == text.size()) continue;
    if (text[length] == '>') return at + 1;
    at = EndOfLiteral(window, at);
    if (at == kNone) return kNone;
  }
  return kNone;
}

/// The end of a document type declaration that goes on at \p at.
std::size_t EndOfDocumentType(TextWindow& window, std::size_t at) {
  bool isInside = false;  // of the brackets
  while (window.Has(at)) {
    char const c = window.At(at);
    if (c == '"' || c == '\'') {
      at = EndOfLiteral(window, at);
    } else if (StartsWith(window, at, "<!--")) {
      at = EndAfter(window, "-->", at + 4);
    } else if (StartsWith(window, at, "<?")) {
      at = EndAfter(window, "?>", at + 2);
    } else if (c == '>' && !isInside) {
      return at + 1;
    } else {
      if (c == '[') isInside = true;
      if (c == ']') isInside = false;
      ++at;
    }
    if (at == kNone) return kNone;
  }
  return kNone;
}

}  // namespace

Markup ReadMarkup(TextWindow& window, std::size_t at) {
  using Kind = Markup::Kind;
  if (!window.Has(at + 1)) return {Kind::kStartTag, kNone};
  switch (window.At(at + 1)) {
    case '/': return {Kind::kEndTag, EndAfter(window, ">", at + 2)};
    case '?': return {Kind::kInstruction, EndAfter(window, "?>", at + 2)};
    case '!':
      if (StartsWith(window, at, "<!--")) return {Kind::kComment, EndAfter(window, "-->", at + 4)};
      if (StartsWith(window, at, "<![CDATA[")) return {Kind::kCData, EndAfter(window, "]]>", at + 9)};
      return {Kind::kDocumentType, EndOfDocumentType(window, at + 2)};
    default: break;
  }
  std::size_t const end = EndOfTag(window, at + 1);
  bool const isEmpty = end != kNone && window.At(end - 2) == '/';
  return {isEmpty ? Kind::kEmptyTag : Kind::kStartTag, end};
}

std::size_t EndOfName(TextWindow& window, std::size_t at) {
  while (window.Has(at) && MarkupScan::Is(MarkupScan::kNamePart, window.At(at))) ++at;
  return at;
}

// ---- ReadExtent

namespace {

/// The position past the tag in \p text that goes on at \p at; kNone if it ends beyond the text.
std::size_t EndOfTagIn(std::string_view text, std::size_t at) {
  for (;; ++at) {
    at += LengthOfPlain(text.substr(at));
    if (at >= text.size()) return kNone;
    if (text[at] == '>') return at + 1;
    at = text.find(text[at], at + 1);
    if (at == kNone) return kNone;
  }
}

/// Finds the end of an element by its tags.
class ExtentScan {
 public:
  ExtentScan(TextWindow& window, std::size_t start, std::size_t startTagEnd)
      : m_window(window), m_at(startTagEnd), m_open{start} {}

  ElementExtent Run() {
    while (!m_open.empty()) {
      m_at = m_window.Find("<", m_at);
      if (m_at == kNone) return {m_window.Size(), false};
      Markup const markup = NextMarkup();
      if (markup.end == kNone) return {m_window.Size(), false};
      if (markup.kind == Markup::Kind::kStartTag) Open();
      if (markup.kind == Markup::Kind::kEndTag && !Close()) return {markup.end, false};
      m_at = markup.end;
    }
    return {m_at, true};
  }

 private:
  /// What ReadMarkup() finds, found quickly for a tag that is in the window already.
  Markup NextMarkup() {
    using Kind = Markup::Kind;
    std::string_view const text = m_window.Text(0, m_window.Size());
    char const next = m_at + 1 < text.size() ? text[m_at + 1] : '!';
    if (next == '/') {
      std::size_t const end = text.find('>', m_at + 2);
      if (end != kNone) return {Kind::kEndTag, end + 1};
    } else if (next != '!' && next != '?') {
      std::size_t const end = EndOfTagIn(text, m_at + 1);
      if (end != kNone) return {text[end - 2] == '/' ? Kind::kEmptyTag : Kind::kStartTag, end};
    }
    return ReadMarkup(m_window, m_at);
  }

  // A record that is too deep cannot be loaded, whatever the names of its tags.
  void Open() {
    if (m_open.size() < m_mostOpen) {
      m_open.push_back(m_at);
    } else {
      ++m_tooDeep;
    }
  }

  bool Close() {
    if (m_tooDeep != 0) {
      --m_tooDeep;
      return true;
    }
    if (!Closes()) return false;
    m_open.pop_back();
    return true;
  }

  /// Whether the end tag has the name of the innermost start tag.
  bool Closes() {
    std::size_t const start = m_at + 2;
    std::size_t const length = EndOfName(m_window, start) - start;
    std::size_t const opened = m_open.back() + 1;
    std::string_view const text = m_window.Text(0, m_window.Size());
    return text.compare(opened, length, text, start, length) == 0 &&
           !MarkupScan::Is(MarkupScan::kNamePart, text[opened + length]);
  }

  TextWindow& m_window;
  std::size_t m_at;
  std::size_t const m_mostOpen = std::size_t{CLimits::GetMaxElementDepth()} + 1;
  std::vector<std::size_t> m_open;  // where the start tags begin
  std::size_t m_tooDeep = 0;        // how many more are open
};

}  // namespace

ElementExtent ReadExtent(TextWindow& window, std::size_t at, Markup const& tag) {
  if (tag.kind == Markup::Kind::kEmptyTag) return {tag.end, true};
  return ExtentScan(window, at, tag.end).Run();
}

// ---- SkipElement

namespace {

/// Drop what is in front of \p wanted, and that. False if the text ends before.
bool DropPast(TextWindow& window, std::string_view wanted) {
  while (window.Has(wanted.size() - 1)) {
    std::size_t const found = window.Text(0, window.Size()).find(wanted);
    bool const isFound = found != std::string_view::npos;
    window.Drop(isFound ? found + wanted.size() : window.Size() - (wanted.size() - 1));
    if (isFound) return true;
  }
  return false;
}

/// Drop the rest of a tag. Return how much deeper its element is; nothing if the text ends before.
std::optional<int> DropTag(TextWindow& window, bool isEnd) {
  bool isEmpty = false;
  while (window.Has(0)) {
    std::string_view const text = window.Text(0, window.Size());
    std::size_t const length = LengthOfPlain(text);
    if (length != 0) isEmpty = text[length - 1] == '/';
    if (length == text.size()) {
      window.Drop(length);
      continue;
    }
    char const stop[] = {text[length]};
    window.Drop(length + 1);
    if (stop[0] == '>') return isEnd ? -1 : (isEmpty ? 0 : 1);
    isEmpty = false;
    if (!DropPast(window, {stop, 1})) return std::nullopt;
  }
  return std::nullopt;
}

/// The same for any markup.
std::optional<int> DropMarkup(TextWindow& window) {
  auto const dropped = [&](std::size_t start, std::string_view end) -> std::optional<int> {
    window.Drop(start);
    if (!DropPast(window, end)) return std::nullopt;
    return 0;
  };
  if (StartsWith(window, 0, "<!--")) return dropped(4, "-->");
  if (StartsWith(window, 0, "<![CDATA[")) return dropped(9, "]]>");
  if (StartsWith(window, 0, "<?")) return dropped(2, "?>");
  return DropTag(window, StartsWith(window, 0, "</"));
}

}  // namespace

bool SkipElement(TextWindow& window) {
  std::int64_t depth = 0;
  do {
    std::optional<int> const change = DropMarkup(window);
    if (!change) return false;
    depth += *change;
    while (depth > 0 && window.Has(0) && window.At(0) != '<') {
      window.Drop(std::min(window.Text(0, window.Size()).find('<'), window.Size()));
    }
  } while (depth > 0);
  return true;
}

}  // namespace Quillon9
