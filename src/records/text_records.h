#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "binding/document_places.h"
#include "quillon9/xmlio/document.h"
#include "records/record_splitter.h"
#include "records/record_stream.h"
#include "records/utf8_input.h"

namespace Quillon9 {

/// How a stream of records cuts a document.
struct RecordLimits {
  std::size_t chunkSize = 0x10000;
  std::size_t mostRecord = std::size_t{256} << 20;
};

/// A chunk as a document, of which one record after the other is looked at.
class LoadedChunk final : public PlaceFinder {
 public:
  /// Load all records of \p chunk, or only \p record.
  /// \throws what CXmlDocument::LoadXmlStream() throws, with places in the whole document.
  LoadedChunk(CXmlSerializationContext const& ctx, Utf8Text::Use use, RecordChunk const& chunk,
              std::optional<std::size_t> record, std::string const& file, bool hasOffsets);

  /// The tree of record \p record, which is behind the last one that was asked for.
  CXmlElement const* Element(std::size_t record);
  Utf8Text::Use GetUse() const { return m_use; }

  CFailurePlace Find(FailurePoint const& point) override;
  bool HasPositionsOf(CXmlElement const* element) override { return m_places.HasPositionsOf(element); }

 private:
  bool IsThere(std::size_t record) const;
  CFailurePlace Corrected(CFailurePlace const& place) const;
  std::string CorrectedPath(std::string const& path, RecordSpan const& span) const;
  [[noreturn]] void ThrowCorrected(CQnException& failure) const;

  RecordChunk const& m_chunk;
  std::optional<std::size_t> m_only;
  Utf8Text::Use m_use;
  std::string const& m_file;
  bool m_hasOffsets;
  CXmlDocument m_document;
  DocumentPlaces m_places;
  std::size_t m_next = 0;
  CXmlElement const* m_cursor = nullptr;
};

/// The records of XML text.
class TextRecords final : public RecordStream, private PlaceFinder {
 public:
  /// \p ctx and \p file are borrowed. \p file is empty if the input is no file.
  TextRecords(Utf8Document document, std::vector<RecordPath> paths, RecordLimits const& limits,
              CXmlSerializationContext const& ctx, std::string const& file);
  ~TextRecords() override;

  bool Next(Utf8Text::Use use) override;
  CXmlElement const* Element(Utf8Text::Use use) override;
  std::size_t Selection() const override { return Span().selection; }
  CFailurePlace Place() const override;
  PlaceFinder& Places() override { return *this; }

 private:
  CFailurePlace Find(FailurePoint const& point) override { return m_loaded->Find(point); }
  bool HasPositionsOf(CXmlElement const* element) override { return m_loaded->HasPositionsOf(element); }
  RecordSpan const& Span() const { return m_chunk->records[m_present]; }
  bool NextChunk(Utf8Text::Use use);
  void LoadPresent(Utf8Text::Use use);
  void Load(Utf8Text::Use use, std::optional<std::size_t> record);
  [[noreturn]] void ThrowTooLarge() const;

  CXmlSerializationContext const& m_ctx;
  std::string const& m_file;
  Utf8Document m_input;
  RecordLimits m_limits;
  TextWindow m_window;
  RecordSplitter m_splitter;
  std::optional<RecordChunk> m_chunk;
  std::unique_ptr<LoadedChunk> m_loaded;  // null where each record is loaded by itself, and failed
  CXmlElement const* m_element = nullptr;
  std::size_t m_present = 0;
  bool m_isSingle = false;   // the records of this chunk are loaded one by one
  std::exception_ptr m_end;  // why there are no more records
};

}  // namespace Quillon9
