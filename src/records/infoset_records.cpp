#include "records/infoset_records.h"

#include <algorithm>
#include <utility>

#include "base/failure_detail.h"
#include "binding/lost_text.h"
#include "quillon9/base/exceptions.h"
#include "records/record_place.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

namespace {

/// Each record for itself, whatever its size.
RecordLimits LimitsOfOne() {
  RecordLimits limits;
  limits.batchSize = 1;
  limits.mostRecord = UINT32_MAX;
  return limits;
}

}  // namespace

/// The loaded records of a chunk, of which one after the other is looked at.
struct InfosetBatch::Tree {
  Tree(CXmlSerializationContext const& ctx, Utf8Text::Use itsUse)
      : use(itsUse), document(ctx), places(document, InputForm::kBytes) {}

  Utf8Text::Use use;
  CXmlDocument document;
  DocumentPlaces places;
  std::size_t firstRecord = 0;
  CXmlElement const* first = nullptr;
  std::size_t record = 0;  // at the cursor
  CXmlElement const* cursor = nullptr;
};

/// Takes the records of a chunk apart.
struct InfosetBatch::Single {
  Single(InfosetChunk const& whole, CXmlSerializationContext const& ctx, std::string const& file)
      : input(InputOfMemory(whole.octets.data(), whole.octets.size())),
        splitter(*input, {{}, whole.ancestors.size()}, LimitsOfOne(), ctx, file) {}

  std::unique_ptr<OctetInput> input;
  InfosetSplitter splitter;
  InfosetChunk chunk;      // of the present record
  std::size_t record = 0;  // the present one
  std::size_t next = 0;
};

InfosetBatch::InfosetBatch(InfosetChunk chunk, RecordLimits const& limits, CXmlSerializationContext const& ctx,
                           std::string const& file)
    : m_chunk(std::move(chunk)), m_limits(limits), m_ctx(ctx), m_file(file) {}

InfosetBatch::~InfosetBatch() = default;

CXmlElement const* InfosetBatch::Load(std::size_t record, Utf8Text::Use use) {
  if (m_chunk.records[record].isTooLarge) RecordPlace::ThrowTooLarge(m_limits.mostRecord, Place(record));
  if (m_single == nullptr && (m_tree == nullptr || m_tree->use != use)) {
    std::swap(m_tree, m_other);  // for a program that looks at each tree and then reads it into an object
    if (Size() == 1) m_other.reset();
    if (m_tree == nullptr || m_tree->use != use) LoadAll(use);
  }
  if (m_single != nullptr) LoadSingle(record, use);
  GoTo(record);
  return m_tree->cursor;
}

void InfosetBatch::LoadAll(Utf8Text::Use use) {
  try {
    Parse(m_chunk, 0, use);
  } catch (CQnException const&) {  // the records in front of the fault are right
    m_single = std::make_unique<Single>(m_chunk, m_ctx, m_file);
  }
}

void InfosetBatch::LoadSingle(std::size_t record, Utf8Text::Use use) {
  FindSingle(record);
  try {
    Parse(m_single->chunk, record, use);
  } catch (CQnException& failure) {
    // What is beyond a limit is a fault of this record only.
    m_isAtEnd = failure.GetKind() != FailureKind_Limit || m_chunk.records[record].end.has_value();
    ThrowCorrected(failure, record);
  }
}

void InfosetBatch::FindSingle(std::size_t record) {
  if (record < m_single->record) m_single = std::make_unique<Single>(m_chunk, m_ctx, m_file);
  for (; m_single->next <= record; ++m_single->next) {
    if (m_chunk.records[m_single->next].isTooLarge) continue;
    std::optional<InfosetChunk> chunk = m_single->splitter.Next();
    m_single->chunk = std::move(*chunk);
    m_single->record = m_single->next;
  }
}

void InfosetBatch::Parse(InfosetChunk const& chunk, std::size_t firstRecord, Utf8Text::Use use) {
  m_tree.reset();
  auto tree = std::make_unique<Tree>(m_ctx, use);
  Utf8Text::Scope const scope(use);
  LossesOfReading losses(tree->document);
  XmlNodeAccess::LoadLentStream(tree->document, reinterpret_cast<unsigned char const*>(chunk.octets.data()),
                                chunk.octets.size());
  losses.Tell();
  m_tree = std::move(tree);
  std::vector<CXmlElement const*> const ancestors = Ancestors();
  m_tree->first = ancestors.empty() ? m_tree->document.GetDocumentElement() : ancestors.back()->GetFirstElement();
  while (m_chunk.records[firstRecord].isTooLarge) ++firstRecord;
  m_tree->firstRecord = firstRecord;
  GoToFirst();
}

std::vector<CXmlElement const*> InfosetBatch::Ancestors() const {
  std::vector<CXmlElement const*> ancestors;
  CXmlElement const* element = m_tree->document.GetDocumentElement();
  for (std::size_t depth = 0; depth < m_chunk.ancestors.size(); ++depth, element = element->GetFirstElement()) {
    ancestors.push_back(element);
  }
  return ancestors;
}

void InfosetBatch::GoToFirst() {
  m_tree->record = m_tree->firstRecord;
  m_tree->cursor = m_tree->first;
}

void InfosetBatch::GoTo(std::size_t record) {
  if (record < m_tree->record) GoToFirst();
  while (m_tree->record < record) {
    if (!m_chunk.records[++m_tree->record].isTooLarge) m_tree->cursor = m_tree->cursor->GetNextSiblingElement();
  }
}

// ---- Places

CFailurePlace InfosetBatch::Place(std::size_t record) const {
  InfosetSpan const& span = m_chunk.records[record];
  CFailurePlace place;
  place.SetOffset(static_cast<std::int64_t>(span.offset));
  place.SetPath(m_chunk.PathOf(span));
  place.SetFile(m_file);
  return place;
}

CFailurePlace InfosetBatch::Find(FailurePoint const& point) {
  if (m_tree == nullptr) return {};
  CFailurePlace const place = m_tree->places.Find(point);
  return PlaceAt(place.GetOffset(), place.GetPath());
}

bool InfosetBatch::HasPositionsOf(CXmlElement const* element) {
  return m_tree != nullptr && m_tree->places.HasPositionsOf(element);
}

/// The place in the whole document of one in the tree.
CFailurePlace InfosetBatch::PlaceAt(std::int64_t offset, std::string const& path) const {
  auto at = static_cast<std::size_t>(std::max<std::int64_t>(offset, 0));
  if (m_single != nullptr) at = static_cast<std::size_t>(m_single->chunk.OffsetOf(0, at));
  std::size_t const record = m_single != nullptr ? m_single->record : m_chunk.RecordAt(at);
  CFailurePlace place;
  place.SetOffset(static_cast<std::int64_t>(m_chunk.OffsetOf(record, at)));
  place.SetPath(CorrectedPath(path, m_chunk.records[record]));
  place.SetFile(m_file);
  return place;
}

// The first steps are those of the ancestors and of the record.
std::string InfosetBatch::CorrectedPath(std::string const& path, InfosetSpan const& span) const {
  std::size_t at = 0;
  for (std::size_t step = 0; step <= m_chunk.ancestors.size() && at < path.size(); ++step) {
    at = std::min(path.find('/', at + 1), path.size());
  }
  return m_chunk.PathOf(span) + path.substr(at);
}

void InfosetBatch::ThrowCorrected(CQnException& failure, std::size_t record) const {
  CFailurePlace const* const known = failure.GetPlace();
  if (known == nullptr) throw;
  CFailurePlace place = PlaceAt(known->GetOffset(), known->GetPath());
  std::optional<InfosetSpan::End> const& end = m_chunk.records[record].end;
  bool const isAtEnd = known->GetOffset() == static_cast<std::int64_t>(m_single->chunk.octets.size());
  if (!end || !isAtEnd) {
    RecordPlace::Set(failure, std::move(place));
    throw;
  }
  place.SetOffset(static_cast<std::int64_t>(end->offset));  // the octets end there only because the document does
  try {
    std::rethrow_exception(end->failure);
  } catch (CQnException& ended) {
    RecordPlace::Set(ended, std::move(place));
    throw;
  }
}

// ---- InfosetRecords

InfosetRecords::InfosetRecords(std::unique_ptr<OctetInput> input, std::vector<RecordPath> paths,
                               RecordLimits const& limits, CXmlSerializationContext const& ctx, std::string const& file)
    : m_input(std::move(input)),
      m_limits(limits),
      m_ctx(ctx),
      m_file(file),
      m_splitter(*m_input, {std::move(paths), std::nullopt}, limits, ctx, file) {}

InfosetRecords::~InfosetRecords() = default;

std::unique_ptr<RecordBatch> InfosetRecords::Next(Utf8Text::Use) {
  std::optional<InfosetChunk> chunk = m_splitter.Next();
  if (!chunk) return nullptr;
  return std::make_unique<InfosetBatch>(std::move(*chunk), m_limits, m_ctx, m_file);
}

}  // namespace Quillon9
