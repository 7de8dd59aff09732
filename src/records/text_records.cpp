#include "records/text_records.h"

#include <utility>

#include "base/failure_detail.h"
#include "binding/lost_text.h"
#include "quillon9/base/exceptions.h"
#include "records/record_place.h"

namespace Quillon9 {

RecordStream::~RecordStream() = default;

// ---- LoadedChunk

LoadedChunk::LoadedChunk(CXmlSerializationContext const& ctx, Utf8Text::Use use, RecordChunk const& chunk,
                         std::optional<std::size_t> record, std::string const& file, bool hasOffsets)
    : m_chunk(chunk),
      m_only(record),
      m_use(use),
      m_file(file),
      m_hasOffsets(hasOffsets),
      m_document(ctx),
      m_places(m_document, InputForm::kBytes) {
  Utf8Text::Scope const scope(use);
  std::string const text = record ? chunk.Document(*record) : chunk.Document();
  try {
    LossesOfReading losses(m_document);
    m_document.LoadXmlStream(reinterpret_cast<unsigned char const*>(text.data()), text.size());
    losses.Tell();
  } catch (CQnException& failure) {
    ThrowCorrected(failure);
  }
  CXmlElement const* parent = nullptr;
  CXmlElement const* element = m_document.GetDocumentElement();
  for (std::size_t depth = 0; depth < chunk.ancestors->depth && element != nullptr; ++depth) {
    parent = std::exchange(element, element->GetFirstElement());
  }
  static_cast<void>(parent);
  m_cursor = element;
  m_next = record.value_or(0);
}

bool LoadedChunk::IsThere(std::size_t record) const {
  return (!m_only || *m_only == record) && !m_chunk.records[record].isTooLarge;
}

CXmlElement const* LoadedChunk::Element(std::size_t record) {
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
  for (std::size_t step = 0; step <= m_chunk.ancestors->depth && at < path.size(); ++step) {
    at = std::min(path.find('/', at + 1), path.size());
  }
  std::string corrected = m_chunk.ancestors->path + "/" + span.name;
  if (span.number > 1) corrected += "[" + std::to_string(span.number) + "]";
  return corrected + path.substr(at);
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
  auto corrected = OfKind(FailureKind_Parse, CQnException(message.substr(0, message.size() - inChunk.size()) +
                                                          " at line " + std::to_string(place.GetLine())));
  RecordPlace::Set(corrected, place);
  throw corrected;
}

// ---- TextRecords

TextRecords::TextRecords(Utf8Document document, std::vector<RecordPath> paths, RecordLimits const& limits,
                         CXmlSerializationContext const& ctx, std::string const& file)
    : m_ctx(ctx),
      m_file(file),
      m_input(std::move(document)),
      m_limits(limits),
      m_window(*m_input.input, m_input.markSize),
      m_splitter(m_window, std::move(paths), limits.chunkSize, limits.mostRecord) {}

TextRecords::~TextRecords() = default;

bool TextRecords::Next(Utf8Text::Use use) {
  if (m_end != nullptr) std::rethrow_exception(m_end);
  m_element = nullptr;
  if (m_chunk && m_present + 1 < m_chunk->records.size()) {
    ++m_present;
  } else if (!NextChunk(use)) {
    return false;
  }
  if (Span().isTooLarge) ThrowTooLarge();
  if (m_isSingle) LoadPresent(use);
  m_element = m_loaded->Element(m_present);
  return true;
}

bool TextRecords::NextChunk(Utf8Text::Use use) {
  m_loaded.reset();
  m_chunk.reset();
  try {
    m_chunk = m_splitter.Next();
  } catch (...) {
    m_end = std::current_exception();
    throw;
  }
  if (!m_chunk) return false;
  m_present = 0;
  m_isSingle = false;
  try {
    Load(use, std::nullopt);
  } catch (CQnException const&) {
    m_isSingle = true;  // the records in front of the fault are right
  }
  return true;
}

void TextRecords::LoadPresent(Utf8Text::Use use) {
  try {
    Load(use, m_present);
  } catch (CQnException const& failure) {
    // What is beyond a limit is a fault of this record only.
    bool const endsRead = failure.GetKind() != FailureKind_Limit || !Span().isWhole;
    if (endsRead) m_end = std::current_exception();
    throw;
  }
}

void TextRecords::Load(Utf8Text::Use use, std::optional<std::size_t> record) {
  m_loaded.reset();
  m_loaded = std::make_unique<LoadedChunk>(m_ctx, use, *m_chunk, record, m_file, !m_input.isConverted);
}

CXmlElement const* TextRecords::Element(Utf8Text::Use use) {
  if (m_element == nullptr || m_loaded->GetUse() == use) return m_element;
  Load(use, m_present);
  m_isSingle = true;
  m_element = m_loaded->Element(m_present);
  return m_element;
}

CFailurePlace TextRecords::Place() const {
  RecordSpan const& span = Span();
  std::string path = m_chunk->ancestors->path + "/" + span.name;
  if (span.number > 1) path += "[" + std::to_string(span.number) + "]";
  CFailurePlace place = RecordPlace::At(span.at, std::move(path));
  if (m_input.isConverted) place.SetOffset(-1);
  place.SetFile(m_file);
  return place;
}

void TextRecords::ThrowTooLarge() const {
  auto failure = OfKind(FailureKind_Limit,
                        CQnException(FormatString("The record exceeds the limit of %zu bytes", m_limits.mostRecord)));
  RecordPlace::Set(failure, Place());
  throw failure;
}

}  // namespace Quillon9
