#pragma once

#include <atomic>
#include <cstdint>
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

/// A chunk as a document, of which one record after the other is looked at.
class LoadedChunk final : public PlaceFinder {
 public:
  /// Load all records of \p chunk, or only \p record. \p content becomes what that has taken, as the limits count it.
  /// \throws what CXmlDocument::LoadXmlStream() throws, with places in the whole document.
  LoadedChunk(CXmlSerializationContext const& ctx, Utf8Text::Use use, RecordChunk const& chunk,
              std::optional<std::size_t> record, std::string const& file, bool hasOffsets, std::uint64_t& content);

  /// The tree of \p record.
  CXmlElement const* Element(std::size_t record);
  std::vector<CXmlElement const*> Ancestors() const;
  Utf8Text::Use GetUse() const { return m_use; }

  CFailurePlace Find(FailurePoint const& point) override;
  bool HasPositionsOf(CXmlElement const* element) override { return m_places.HasPositionsOf(element); }

 private:
  bool IsThere(std::size_t record) const;
  CFailurePlace Corrected(CFailurePlace const& place) const;
  std::string CorrectedPath(std::string const& path, RecordSpan const& span) const;
  [[noreturn]] void ThrowCorrected(CQnException& failure) const;

  RecordChunk const& m_chunk;
  std::string m_single;  // the document of a single record
  std::optional<std::size_t> m_only;
  Utf8Text::Use m_use;
  std::string const& m_file;
  bool m_hasOffsets;
  CXmlDocument m_document;
  DocumentPlaces m_places;
  std::size_t m_next = 0;
  CXmlElement const* m_first = nullptr;
  CXmlElement const* m_cursor = nullptr;
};

/// What the batches of a document share. It outlives them.
struct TextRecordsContext {
  CXmlSerializationContext const& ctx;
  std::string const& file;
  RecordLimits limits;
  bool hasOffsets;                               ///< positions in the text are positions in the input
  bool canResume;                                ///< and the input is not compressed
  mutable std::atomic<std::uint64_t> excess{0};  ///< what loading has taken beyond a fair multiple of the records
};

/// Records of XML text. They are loaded together, or one by one if that fails.
class TextBatch final : public RecordBatch, private PlaceFinder {
 public:
  TextBatch(RecordChunk chunk, TextRecordsContext const& shared) : m_chunk(std::move(chunk)), m_shared(shared) {}

  std::size_t Size() const override { return m_chunk.records.size(); }
  std::size_t Selection(std::size_t record) const override { return m_chunk.records[record].selection; }
  CFailurePlace Place(std::size_t record) const override;
  std::string ResumePointOf(std::size_t record) const override;
  CXmlElement const* Load(std::size_t record, Utf8Text::Use use) override;
  std::vector<CXmlElement const*> Ancestors() const override { return m_loaded->Ancestors(); }
  bool IsAtEnd() const override { return m_isAtEnd; }
  PlaceFinder& Places() override { return *this; }

 private:
  CFailurePlace Find(FailurePoint const& point) override {
    return m_loaded != nullptr ? m_loaded->Find(point) : CFailurePlace();
  }
  bool HasPositionsOf(CXmlElement const* element) override {
    return m_loaded != nullptr && m_loaded->HasPositionsOf(element);
  }
  void RequireContent(std::size_t record);
  void Charge(std::optional<std::size_t> record, std::uint64_t content);
  void LoadAll(Utf8Text::Use use);
  void LoadOne(std::size_t record, Utf8Text::Use use);
  void Parse(Utf8Text::Use use, std::optional<std::size_t> record);

  RecordChunk m_chunk;
  TextRecordsContext const& m_shared;
  std::unique_ptr<LoadedChunk> m_loaded;
  std::unique_ptr<LoadedChunk> m_other;  // with its text held otherwise; not always there
  bool m_isSingle = false;               // the records are loaded one by one
  bool m_isAtEnd = false;
};

/// The records of XML text.
class TextRecords final : public RecordStream {
 public:
  /// \p ctx and \p file are borrowed, and outlive the batches. \p file is empty if the input is no file. \p canResume
  /// says whether the input is not compressed.
  TextRecords(Utf8Document document, std::vector<RecordPath> paths, RecordLimits const& limits,
              CXmlSerializationContext const& ctx, std::string const& file, bool canResume);
  ~TextRecords() override;

  std::unique_ptr<RecordBatch> Next(Utf8Text::Use use) override;

 private:
  Utf8Document m_input;
  TextRecordsContext m_shared;
  TextWindow m_window;
  RecordSplitter m_splitter;
};

}  // namespace Quillon9
