#include "records/record_splitter.h"

#include <algorithm>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "records/record_place.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kNone = TextWindow::kNone;
constexpr char kStandalone[] = R"(<?xml version="1.0" standalone="yes"?>)";
constexpr std::size_t kMostNames = 1000;      // of children that are counted
constexpr std::size_t kShortTags = 0x10000;   // start tags that may be longer than the records between them
constexpr std::size_t kLongestName = 256;     // of these
constexpr std::size_t kMostOpen = 0x1000000;  // octets of start tags that are repeated for each chunk

/// A start tag as one that has content.
std::string Opened(std::string_view tag, Markup::Kind kind) {
  std::string text(tag);
  if (kind == Markup::Kind::kEmptyTag) text.erase(text.size() - 2, 1);
  return text;
}

std::string EndTagOf(std::string const& name) { return "</" + name + ">"; }

void AddStep(std::string& path, std::string const& name, std::uint64_t number) {
  path += "/" + name;
  if (number > 1) path += "[" + std::to_string(number) + "]";
}

}  // namespace

std::string_view RecordChunk::TextOf(std::size_t record) const {
  std::size_t const end = record + 1 < records.size() ? records[record + 1].start : recordsEnd;
  return std::string_view(text).substr(records[record].start, end - records[record].start);
}

std::string RecordChunk::Document(std::size_t record) const {
  std::string document = ancestors->startTags;
  document += TextOf(record);
  if (records[record].isWhole) document += ancestors->endTags;  // the failure of a text that is cut is another one
  return document;
}

std::string RecordChunk::PathOf(RecordSpan const& record) const {
  std::string path = ancestors->path;
  AddStep(path, record.name, record.number);
  return path;
}

ResumePoint RecordChunk::PointOf(RecordSpan const& record) const {
  return {record.at, ancestors->prolog, ancestors->elements, record.name, record.number};
}

RecordSplitter::RecordSplitter(TextWindow& window, std::vector<RecordPath> paths, std::size_t chunkSize)
    : m_window(window), m_paths(std::move(paths)), m_chunkSize(chunkSize) {}

void RecordSplitter::Resume(ResumePoint const& point) {
  m_skeleton.Feed(point.prolog, point.at);
  std::string_view constexpr kDeclaration = kStandalone;
  bool const hasDeclaration = point.prolog.compare(0, kDeclaration.size(), kDeclaration) == 0;
  m_documentType = point.prolog.substr(hasDeclaration ? kDeclaration.size() : 0);
  for (ResumePoint::Element const& element : point.elements) {
    m_skeleton.Feed(element.startTag, point.at, 1);
    if (element.startTag.front() != '<' || m_skeleton.Depth() != m_levels.size() + 1) {
      ResumePoint::ThrowNoResumePoint(point.ToText());
    }
    std::string const name = element.startTag.substr(1, element.startTag.find_first_of(" \t\r\n>") - 1);
    if (!m_levels.empty() && element.number > 0) {
      m_nameCount += m_levels.back().children.emplace(name, element.number).second ? 1U : 0U;
    }
    m_openSize += element.startTag.size();
    m_levels.push_back({element.startTag, name, element.number, StatesOfInnermost(), {}});
  }
  m_resumedLevels = m_levels.size();
  if (m_levels.empty() || point.number == 0) return;
  m_nameCount += m_levels.back().children.emplace(point.name, point.number - 1).second ? 1U : 0U;
}

std::optional<RecordChunk> RecordSplitter::Next() {
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
  RecordChunk chunk;
  m_isChunkDone = false;
  try {
    GoOn(chunk);
  } catch (CQnException& failure) {
    RecordPlace::SetPath(failure, PathOfLevels());
    m_failure = std::current_exception();
  } catch (...) {
    m_failure = std::current_exception();
  }
  if (!chunk.records.empty()) {
    chunk.recordsEnd = chunk.text.size();
    chunk.text += chunk.ancestors->endTags;
    return chunk;
  }
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
  return std::nullopt;
}

// Records that are there are not kept waiting for an input that delivers the next ones later.
void RecordSplitter::GoOn(RecordChunk& chunk) {
  try {
    m_window.SetMayRead(true);
    if (m_opened) AddRecord(chunk);
    while (!m_isChunkDone && !m_isAtEnd) {
      m_window.SetMayRead(chunk.records.empty());
      Step(chunk);
    }
  } catch (TextWindow::NeedsMore const&) {
  }
}

// Go on by one piece of markup or by the text in front of it.
void RecordSplitter::Step(RecordChunk& chunk) {
  if (!m_window.Has(0)) return PassRest();
  std::size_t const at = m_window.Text(0, m_window.Size()).find('<');
  if (at != 0) return PassText(at != std::string_view::npos ? at : m_window.Size());
  Markup markup;
  try {
    markup = ReadMarkup(m_window, 0);
  } catch (TextWindow::Full const&) {
    ThrowLimitExceeded("The markup exceeds the limit of %zu bytes", m_window.Most());
  }
  if (markup.end == kNone) return PassRest();
  if (markup.IsStart()) return StartElement(chunk, markup);
  if (markup.kind == Markup::Kind::kEndTag && !chunk.records.empty()) {
    m_isChunkDone = true;
    return;
  }
  PassMarkup(markup);
}

void RecordSplitter::PassRest() {
  m_isAtEnd = true;
  m_skeleton.Finish(m_window.Text(0, m_window.Size()), m_window.Start());
}

void RecordSplitter::PassText(std::size_t end) {
  m_skeleton.Feed(m_window.Text(0, end), m_window.Start());
  m_window.Drop(end);
}

void RecordSplitter::PassMarkup(Markup const& markup) {
  std::string_view const text = m_window.Text(0, markup.end);
  m_skeleton.Feed(text, m_window.Start());
  if (markup.kind == Markup::Kind::kDocumentType) m_documentType = text;
  if (markup.kind == Markup::Kind::kEndTag && !m_levels.empty()) {
    m_openSize -= m_levels.back().startTag.size();
    m_nameCount -= m_levels.back().children.size();
    m_levels.pop_back();
    m_resumedLevels = std::min(m_resumedLevels, m_levels.size());
    m_ancestors.reset();
  }
  m_window.Drop(markup.end);
}

void RecordSplitter::StartElement(RecordChunk& chunk, Markup const& tag) {
  Level level;
  level.name = m_window.Text(1, EndOfName(m_window, 1));
  level.startTag = Opened(m_window.Text(0, tag.end), tag.kind);
  m_skeleton.Feed(level.startTag, m_window.Start(), 1);
  level.number = CountChild(level.name);
  level.states = StatesOfInnermost();
  if (std::optional<std::size_t> const selection = SelectionOf(level.states)) {
    m_isAtEnd = m_window.Start().offset >= m_end;
    if (m_isAtEnd) return;
    RecordSpan span;
    span.at = m_window.Start();
    span.name = std::move(level.name);
    span.number = level.number;
    span.selection = *selection;
    m_opened.emplace(OpenedRecord{tag, std::move(span)});
    return AddRecord(chunk);
  }
  // The records of a chunk have the same ancestors, and they are siblings in a row.
  m_isChunkDone = !chunk.records.empty() && tag.kind != Markup::Kind::kEmptyTag;
  StartLevel(tag, std::move(level));
}

void RecordSplitter::StartLevel(Markup const& tag, Level level) {
  if (tag.kind == Markup::Kind::kEmptyTag) {
    m_skeleton.Feed(EndTagOf(level.name), m_window.Start());
  } else {
    m_openSize += level.startTag.size();
    if (m_openSize > kMostOpen)
      ThrowLimitExceeded("The start tags of the open elements exceed the limit of %zu bytes", kMostOpen);
    m_levels.push_back(std::move(level));
    m_ancestors.reset();
  }
  m_window.Drop(tag.end);
}

// Add the record whose start tag the skeleton knows. One that is not whole ends the document, and the failure of loading
// it says why.
void RecordSplitter::AddRecord(RecordChunk& chunk) {
  RecordSpan& span = m_opened->span;
  std::size_t end = 0;
  try {
    ElementExtent const extent = ReadExtent(m_window, 0, m_opened->tag);
    span.isWhole = extent.isWhole;
    end = extent.end;
    if (end > m_window.Most()) throw TextWindow::Full();  // although it is in the window already
  } catch (TextWindow::Full const&) {
    end = 0;  // the window begins past the record then
    m_window.SetMayRead(true);
    span.isTooLarge = true;
    span.isWhole = SkipElement(m_window);
  }
  if (chunk.ancestors == nullptr) {
    chunk.ancestors = Ancestors();
    chunk.text.reserve(chunk.ancestors->startTags.size() + m_chunkSize * 5 / 4 + chunk.ancestors->endTags.size());
    chunk.text = chunk.ancestors->startTags;
  }
  span.start = chunk.text.size();
  chunk.text += m_window.Text(0, end);
  m_window.Drop(end);
  if (span.isWhole) m_skeleton.Feed(EndTagOf(span.name), m_window.Start());
  m_isAtEnd = !span.isWhole && !span.isTooLarge;
  // Long start tags are repeated for as many records as would take the same time.
  std::size_t const startTags = chunk.ancestors->startTags.size();
  std::size_t const size = chunk.text.size() - startTags;
  m_isChunkDone = (size >= m_chunkSize && size + kShortTags >= startTags) || m_isAtEnd;
  chunk.records.push_back(std::move(span));
  m_opened.reset();
}

std::vector<RecordPath::State> RecordSplitter::StatesOfInnermost() const {
  std::vector<RecordPath::State> states;
  ElementName const& name = m_skeleton.Opened();
  for (std::size_t i = 0; i < m_paths.size(); ++i) {
    RecordPath::State const outside = m_levels.empty() ? RecordPath::kStart : m_levels.back().states[i];
    states.push_back(m_paths[i].Enter(outside, name));
  }
  return states;
}

std::optional<std::size_t> RecordSplitter::SelectionOf(std::vector<RecordPath::State> const& states) const {
  for (std::size_t i = 0; i < m_paths.size(); ++i) {
    if (m_paths[i].IsRecord(states[i])) return i;
  }
  return std::nullopt;
}

// The children of an element can have any number of names, so that some are not counted.
std::uint64_t RecordSplitter::CountChild(std::string const& name) {
  if (m_levels.empty()) return 1;
  auto& children = m_levels.back().children;
  auto const found = children.find(name);
  if (found != children.end()) return ++found->second;
  if (m_levels.size() <= m_resumedLevels) return 0;  // some have been in front of the place where the read began
  if (m_nameCount >= kMostNames || name.size() > kLongestName) return 0;
  ++m_nameCount;
  children.emplace(name, 1);
  return 1;
}

std::string RecordSplitter::PathOfLevels() const {
  std::string path;
  for (Level const& level : m_levels) AddStep(path, level.name, level.number);
  return path;
}

std::string RecordSplitter::Prolog() const { return (m_skeleton.IsStandalone() ? kStandalone : "") + m_documentType; }

std::shared_ptr<RecordAncestors const> const& RecordSplitter::Ancestors() {
  if (m_ancestors != nullptr) return m_ancestors;
  auto made = std::make_shared<RecordAncestors>();
  made->prolog = Prolog();
  made->startTags = made->prolog;
  made->path = PathOfLevels();
  for (Level const& level : m_levels) {
    made->elements.push_back({level.startTag, level.number});
    made->startTags += level.startTag;
    made->endTags.insert(0, EndTagOf(level.name));
  }
  m_ancestors = std::move(made);
  return m_ancestors;
}

void RecordSplitter::ThrowLimitExceeded(char const* message, std::size_t limit) const {
  throw RecordPlace::Noted(RecordPlace::At(m_window.Start(), {}),
                           OfKind(FailureKind_Limit, CQnException(FormatString(message, limit))));
}

}  // namespace Quillon9
