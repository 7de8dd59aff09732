#include "records/record_splitter.h"

#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kNone = TextWindow::kNone;
constexpr std::size_t kMostNames = 1000;  // of children that are counted

/// A start tag as one that has content.
std::string Opened(std::string_view tag, Markup::Kind kind) {
  std::string text(tag);
  if (kind == Markup::Kind::kEmptyTag) text.erase(text.size() - 2, 1);
  return text;
}

std::string EndTagOf(std::string const& name) { return "</" + name + ">"; }

}  // namespace

std::string_view RecordChunk::TextOf(std::size_t record) const {
  std::size_t const end = record + 1 < records.size() ? records[record + 1].start : text.size();
  return std::string_view(text).substr(records[record].start, end - records[record].start);
}

std::string RecordChunk::Document(std::size_t record) const {
  std::string document = ancestors->startTags;
  document += TextOf(record);
  if (records[record].isWhole) document += ancestors->endTags;  // the failure of a text that is cut is another one
  return document;
}

RecordSplitter::RecordSplitter(TextWindow& window, std::vector<RecordPath> paths, std::size_t chunkSize,
                               std::size_t mostRecord)
    : m_window(window), m_paths(std::move(paths)), m_chunkSize(chunkSize), m_mostRecord(mostRecord) {}

std::optional<RecordChunk> RecordSplitter::Next() {
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
  RecordChunk chunk;
  m_isChunkDone = false;
  try {
    while (!m_isChunkDone && !m_isAtEnd) Step(chunk);
  } catch (...) {
    m_failure = std::current_exception();
    if (chunk.records.empty()) throw;
  }
  if (chunk.records.empty()) return std::nullopt;
  return chunk;
}

// Go on by one piece of markup with the text in front of it.
void RecordSplitter::Step(RecordChunk& chunk) {
  if (!m_window.Has(0)) {
    m_isAtEnd = true;
    return m_skeleton.Finish(m_window.Start());
  }
  std::size_t const at = m_window.Text(0, m_window.Size()).find('<');
  if (at != 0) return PassText(at != std::string_view::npos ? at : m_window.Size());
  Markup const markup = ReadMarkup(m_window, 0);
  if (markup.end == kNone) return PassText(m_window.Size());
  bool const isTag = markup.kind == Markup::Kind::kStartTag || markup.kind == Markup::Kind::kEmptyTag;
  if (isTag) return StartElement(chunk, markup);
  if (markup.kind == Markup::Kind::kEndTag && !chunk.records.empty()) {
    m_isChunkDone = true;
    return;
  }
  PassMarkup(markup);
}

void RecordSplitter::PassText(std::size_t end) {
  m_skeleton.Feed(m_window.Text(0, end), m_window.Start());
  Drop(end);
}

void RecordSplitter::PassMarkup(Markup const& markup) {
  std::string_view const text = m_window.Text(0, markup.end);
  m_skeleton.Feed(text, m_window.Start());
  if (markup.kind == Markup::Kind::kDocumentType) m_documentType = text;
  if (markup.kind == Markup::Kind::kEndTag && !m_levels.empty()) {
    m_levels.pop_back();
    m_ancestors.reset();
  }
  Drop(markup.end);
}

void RecordSplitter::StartElement(RecordChunk& chunk, Markup const& tag) {
  std::size_t const nameEnd = EndOfName(m_window, 1);
  std::string name(m_window.Text(1, nameEnd));
  std::string startTag = Opened(m_window.Text(0, tag.end), tag.kind);
  m_skeleton.Feed(startTag, m_window.Start(), 1);
  std::uint64_t const number = CountChild(name);
  if (std::optional<std::size_t> const selection = SelectionOfInnermost()) {
    RecordSpan span;
    span.at = m_window.Start();
    span.name = std::move(name);
    span.number = number;
    span.selection = *selection;
    return AddRecord(chunk, tag, std::move(span));
  }
  if (tag.kind == Markup::Kind::kEmptyTag) {
    m_skeleton.Feed(EndTagOf(name), m_window.Start());
  } else {
    m_levels.push_back({std::move(startTag), std::move(name), number, {}});
    m_ancestors.reset();
    m_isChunkDone = !chunk.records.empty();
  }
  Drop(tag.end);
}

void RecordSplitter::AddRecord(RecordChunk& chunk, Markup const& tag, RecordSpan span) {
  RecordAncestors const& ancestors = Ancestors(chunk);
  ElementExtent const extent = ReadExtent(m_window, 0, tag, m_mostRecord);
  if (chunk.text.empty()) chunk.text = ancestors.startTags;
  span.start = chunk.text.size();
  span.isTooLarge = extent.end > m_mostRecord;
  span.isWhole = extent.isWhole;
  if (!span.isTooLarge) chunk.text += m_window.Text(0, extent.end);
  // A record that is not whole ends the document, but the failure of its own text says why.
  if (span.isTooLarge && !extent.isWhole) {
    SkipRest(extent.end);
  } else {
    if (!extent.isWhole) m_isAtEnd = true;
    Drop(extent.end);
  }
  m_skeleton.Feed(EndTagOf(span.name), m_window.Start());
  chunk.records.push_back(std::move(span));
  if (chunk.text.size() >= m_chunkSize || m_isAtEnd) m_isChunkDone = true;
}

// Pass over the rest of a record without keeping it. The window begins at its start tag.
void RecordSplitter::SkipRest(std::size_t at) {
  std::size_t depth = 0;
  static_cast<void>(at);
  for (;;) {
    std::size_t const next = m_window.Has(0) ? m_window.Text(0, m_window.Size()).find('<') : kNone;
    if (next == std::string_view::npos && m_window.Has(0)) {
      Drop(m_window.Size());
      continue;
    }
    if (!m_window.Has(0)) return;
    Drop(next);
    Markup const markup = ReadMarkup(m_window, 0);
    if (markup.end == kNone) return Drop(m_window.Size());
    if (markup.kind == Markup::Kind::kStartTag) ++depth;
    if (markup.kind == Markup::Kind::kEndTag) --depth;
    Drop(markup.end);
    if (depth == 0) return;
  }
}

std::optional<std::size_t> RecordSplitter::SelectionOfInnermost() const {
  for (std::size_t i = 0; i < m_paths.size(); ++i) {
    if (m_paths[i].Matches(m_skeleton.Open())) return i;
  }
  return std::nullopt;
}

std::uint64_t RecordSplitter::CountChild(std::string const& name) {
  if (m_levels.empty()) return 1;
  auto& children = m_levels.back().children;
  auto const found = children.find(name);
  if (found != children.end()) return ++found->second;
  if (children.size() >= kMostNames) return 0;
  children.emplace(name, 1);
  return 1;
}

RecordAncestors const& RecordSplitter::Ancestors(RecordChunk& chunk) {
  if (m_ancestors == nullptr) {
    auto made = std::make_shared<RecordAncestors>();
    made->startTags = m_documentType;
    made->depth = m_levels.size();
    for (Level const& level : m_levels) {
      made->startTags += level.startTag;
      made->endTags.insert(0, EndTagOf(level.name));
      made->path += "/" + level.name;
      if (level.number > 1) made->path += "[" + std::to_string(level.number) + "]";
    }
    m_ancestors = std::move(made);
  }
  if (chunk.ancestors == nullptr) chunk.ancestors = m_ancestors;
  return *m_ancestors;
}

}  // namespace Quillon9
