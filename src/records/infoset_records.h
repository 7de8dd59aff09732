#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "binding/document_places.h"
#include "quillon9/xmlio/document.h"
#include "records/infoset_splitter.h"
#include "records/octet_input.h"
#include "records/record_place.h"
#include "records/record_stream.h"

namespace Quillon9 {

/// Records of Fast Infoset. They are loaded together, or one by one if that fails.
class InfosetBatch final : public RecordBatch, private PlaceFinder {
 public:
  /// \p ctx and \p file are borrowed.
  InfosetBatch(InfosetChunk chunk, RecordLimits const& limits, CXmlSerializationContext const& ctx,
               std::string const& file);
  ~InfosetBatch() override;

  std::size_t Size() const override { return m_chunk.records.size(); }
  std::size_t Selection(std::size_t record) const override { return m_chunk.records[record].selection; }
  CFailurePlace Place(std::size_t record) const override;
  std::string ResumePointOf(std::size_t) const override { RecordPlace::ThrowNotResumable(); }
  CXmlElement const* Load(std::size_t record, Utf8Text::Use use) override;
  std::vector<CXmlElement const*> Ancestors() const override;
  bool IsAtEnd() const override { return m_isAtEnd; }
  PlaceFinder& Places() override { return *this; }

 private:
  struct Tree;
  struct Single;

  CFailurePlace Find(FailurePoint const& point) override;
  bool HasPositionsOf(CXmlElement const* element) override;
  void LoadAll(Utf8Text::Use use);
  void LoadSingle(std::size_t record, Utf8Text::Use use);
  void FindSingle(std::size_t record);
  void Parse(InfosetChunk const& chunk, std::size_t firstRecord, Utf8Text::Use use);
  void GoToFirst();
  void GoTo(std::size_t record);
  CFailurePlace PlaceAt(std::int64_t offset, std::string const& path) const;
  std::string CorrectedPath(std::string const& path, InfosetSpan const& span) const;
  [[noreturn]] void ThrowCorrected(CQnException& failure, std::size_t record) const;

  InfosetChunk m_chunk;
  RecordLimits m_limits;
  CXmlSerializationContext const& m_ctx;
  std::string const& m_file;
  std::unique_ptr<Tree> m_tree;
  std::unique_ptr<Tree> m_other;     // with its text held otherwise; not always there
  std::unique_ptr<Single> m_single;  // once the records are loaded one by one
  bool m_isAtEnd = false;
};

/// The records of a Fast Infoset document.
class InfosetRecords final : public RecordStream {
 public:
  /// \p ctx and \p file are borrowed, and outlive the batches. \p file is empty if the input is no file.
  InfosetRecords(std::unique_ptr<OctetInput> input, std::vector<RecordPath> paths, RecordLimits const& limits,
                 CXmlSerializationContext const& ctx, std::string const& file);
  ~InfosetRecords() override;

  std::unique_ptr<RecordBatch> Next(Utf8Text::Use use) override;

 private:
  std::unique_ptr<OctetInput> m_input;
  RecordLimits m_limits;
  CXmlSerializationContext const& m_ctx;
  std::string const& m_file;
  InfosetSplitter m_splitter;
};

}  // namespace Quillon9
