#include "records/text_records.h"

#include <algorithm>
#include <utility>

#include "base/failure_detail.h"
#include "binding/lost_text.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "records/record_place.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

RecordBatch::~RecordBatch() = default;

RecordStream::~RecordStream() = default;

// ---- LoadedChunk

LoadedChunk::LoadedChunk(CXmlSerializationContext const& ctx, Utf8Text::Use use, RecordChunk const& chunk,
                         std::optional<std::size_t> record, std::string const& file, bool hasOffsets,
                         std::uint64_t& content)
    : m_chunk(chunk),
      m_only(record),
      m_use(use),
      m_file(file),
      m_hasOffsets(hasOffsets),
      m_document(ctx),
      m_places(m_document, InputForm::kBytes) {
  Utf8Text::Scope const scope(use);
  if (record) m_single = chunk.Document(*record);
  std::string const& text = record ? m_single : chunk.text;
  try {
    LossesOfReading losses(m_document);
    XmlNodeAccess::LoadLentStream(m_document, reinterpret_cast<unsigned char const*>(text.data()), text.size());
    content = XmlNodeAccess::ContentSize(m_document);
    losses.Tell();
  } catch (CQnException& failure) {
    content = XmlNodeAccess::ContentSize(m_document);
    ThrowCorrected(failure);
  }
  std::vector<CXmlElement const*> const ancestors = Ancestors();
  m_first = ancestors.empty() ? m_document.GetDocumentElement() : ancestors.back()->GetFirstElement();
  m_cursor = m_first;
  m_next = record.value_or(0);
}

std::vector<CXmlElement const*> LoadedChunk::Ancestors() const {
  std::vector<CXmlElement const*> ancestors;
  CXmlElement const* element = m_document.GetDocumentElement();
  for (std::size_t depth = 0; depth < m_chunk.ancestors->elements.size();
       ++depth, element = element->GetFirstElement()) {
    ancestors.push_back(element);
  }
  return ancestors;
}

bool LoadedChunk::IsThere(std::size_t record) const {
  return (!m_only || *m_only == record) && !m_chunk.records[record].isTooLarge;
}

CXmlElement const* LoadedChunk::Element(std::size_t record) {
  if (record < m_next) {
    m_cursor = m_first;
    m_next = 0;
  }
  for (; m_next < record; ++m_next) {
    if (IsThere(m_next)) m_cursor = m_cursor->GetNextSiblingElement();
  }
  return m_cursor;
}

CFailurePlace LoadedChunk::Find(FailurePoint const& point) { return Corrected(m_places.Find(point)); }

CFailurePlace LoadedChunk::Corrected(CFailurePlace const& place) const {
  auto const offset = static_cast<std::size_t>(std::max<std::int64_t>(place.GetOffset(), 0));
  std::size_t record = m_only.value_or(0);
  if (!m_only) {
    while (record + 1 < m_chunk.records.size() && m_chunk.records[record + 1].start <= offset) ++record;
  }
  RecordSpan const& span = m_chunk.records[record];
  std::size_t const start = m_only ? m_chunk.ancestors->startTags.size() : span.start;
  std::string_view const text = m_chunk.TextOf(record);
  TextPosition at = span.at;
  if (offset > start) at.Pass(text.substr(0, std::min(offset - start, text.size())));
  CFailurePlace corrected = RecordPlace::At(at, CorrectedPath(place.GetPath(), span));
  if (!m_hasOffsets) corrected.SetOffset(-1);
  corrected.SetFile(m_file);
  return corrected;
}

// The first steps are those of the ancestors and of the record.
std::string LoadedChunk::CorrectedPath(std::string const& path, RecordSpan const& span) const {
  std::size_t at = 0;
  for (std::size_t step = 0; step <= m_chunk.ancestors->elements.size() && at < path.size(); ++step) {
    at = std::min(path.find('/', at + 1), path.size());
  }
  return m_chunk.PathOf(span) + path.substr(at);
}

void LoadedChunk::ThrowCorrected(CQnException& failure) const {
  CFailurePlace const* const known = failure.GetPlace();
  if (known == nullptr) throw;
  std::string const inChunk = " at line " + std::to_string(known->GetLine());
  CFailurePlace const place = Corrected(*known);
  std::string const& message = failure.GetMessage();
  bool const namesLine =
      message.size() > inChunk.size() && message.compare(message.size() - inChunk.size(), inChunk.size(), inChunk) == 0;
  if (!namesLine) {
    RecordPlace::Set(failure, place);
    throw;
  }
  std::string const reason = message.substr(0, message.size() - inChunk.size());
  throw RecordPlace::Noted(
      place, OfKind(FailureKind_Parse, CQnException(FormatString("%s at line %lu", reason.c_str(),
                                                                 static_cast<unsigned long>(place.GetLine())))));
}

// ---- TextBatch

CXmlElement const* TextBatch::Load(std::size_t record, Utf8Text::Use use) {
  if (m_chunk.records[record].isTooLarge) RecordPlace::ThrowTooLarge(m_shared.limits.mostRecord, Place(record));
  if (!m_isSingle && (m_loaded == nullptr || m_loaded->GetUse() != use)) {
    std::swap(m_loaded, m_other);  // for a program that looks at each tree and then reads it into an object
    if (Size() == 1) m_other.reset();
    if (m_loaded == nullptr || m_loaded->GetUse() != use) LoadAll(use);
  }
  if (m_isSingle) LoadOne(record, use);
  return m_loaded->Element(record);
}

// What is in front of the records is parsed again for each chunk, and an entity can multiply each of them, so that
// all of it together has the bounds of one document.
void TextBatch::RequireContent(std::size_t record) {
  std::uint64_t const grown = CLimits::GetMaxContentGrowth() * m_chunk.records[record].at.offset;
  std::uint64_t const limit = std::max(CLimits::GetMaxContentSize(), grown);
  if (m_shared.excess <= limit) return;
  m_isAtEnd = true;
  throw RecordPlace::Noted(
      Place(record),
      OfKind(FailureKind_Limit, CQnException(FormatString("The content of the document exceeds the limit of %llu bytes",
                                                          static_cast<unsigned long long>(limit)))));
}

void TextBatch::Charge(std::optional<std::size_t> record, std::uint64_t content) {
  constexpr std::uint64_t kFree = 0x4000;  // as much work as there is for any chunk
  std::size_t const startTags = m_chunk.ancestors->startTags.size();
  std::size_t const text = record ? m_chunk.TextOf(*record).size() : m_chunk.recordsEnd - startTags;
  std::uint64_t const fair = kFree + std::uint64_t{CLimits::GetMaxContentGrowth()} * text;
  if (startTags + content > fair) m_shared.excess += startTags + content - fair;
}

void TextBatch::LoadAll(Utf8Text::Use use) {
  try {
    Parse(use, std::nullopt);
  } catch (CQnException const&) {
    m_isSingle = true;  // the records in front of the fault are right
  }
}

void TextBatch::LoadOne(std::size_t record, Utf8Text::Use use) {
  try {
    Parse(use, record);
  } catch (CQnException const& failure) {
    // What is beyond a limit is a fault of this record only.
    m_isAtEnd = m_isAtEnd || failure.GetKind() != FailureKind_Limit || !m_chunk.records[record].isWhole;
    throw;
  }
}

void TextBatch::Parse(Utf8Text::Use use, std::optional<std::size_t> record) {
  m_loaded.reset();
  RequireContent(record.value_or(0));
  std::uint64_t content = 0;
  try {
    m_loaded =
        std::make_unique<LoadedChunk>(m_shared.ctx, use, m_chunk, record, m_shared.file, m_shared.hasOffsets, content);
  } catch (...) {
    Charge(record, content);
    throw;
  }
  Charge(record, content);
}

CFailurePlace TextBatch::Place(std::size_t record) const {
  RecordSpan const& span = m_chunk.records[record];
  CFailurePlace place = RecordPlace::At(span.at, m_chunk.PathOf(span));
  if (!m_shared.hasOffsets) place.SetOffset(-1);
  place.SetFile(m_shared.file);
  return place;
}

std::string TextBatch::ResumePointOf(std::size_t record) const {
  if (!m_shared.canResume) RecordPlace::ThrowNotResumable();
  return m_chunk.PointOf(m_chunk.records[record]).ToText();
}

// ---- TextRecords

TextRecords::TextRecords(Utf8Document document, std::vector<RecordPath> paths, RecordLimits const& limits,
                         CXmlSerializationContext const& ctx, std::string const& file, bool canResume)
    : m_input(std::move(document)),
      m_shared{ctx, file, limits, !m_input.isConverted, canResume && !m_input.isConverted},
      m_window(*m_input.input, m_input.start, limits.mostRecord),
      m_splitter(m_window, std::move(paths), limits.batchSize) {
  m_splitter.SetEnd(limits.end);
  if (limits.start) m_splitter.Resume(*limits.start);
}

TextRecords::~TextRecords() = default;

std::unique_ptr<RecordBatch> TextRecords::Next(Utf8Text::Use) {
  std::optional<RecordChunk> chunk = m_splitter.Next();
  if (!chunk) return nullptr;
  return std::make_unique<TextBatch>(std::move(*chunk), m_shared);
}

}  // namespace Quillon9
