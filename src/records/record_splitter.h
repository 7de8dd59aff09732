#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "records/markup.h"
#include "records/record_path.h"
#include "records/record_skeleton.h"
#include "records/resume_point.h"
#include "records/text_window.h"

namespace Quillon9 {

/// What stands around a record.
struct RecordAncestors {
  std::string prolog;  ///< as in ResumePoint
  std::vector<ResumePoint::Element> elements;
  std::string startTags;  ///< the prolog and the start tags of the elements
  std::string endTags;
  std::string path;
};

/// One record of a chunk.
struct RecordSpan {
  std::size_t start = 0;      ///< in the text of the chunk
  TextPosition at;            ///< in the document
  std::string name;           ///< as its tag spells it
  std::uint64_t number = 0;   ///< among its siblings of this name, from 1; 0 if unknown
  std::size_t selection = 0;  ///< which of the paths it matches
  bool isWhole = true;        ///< its end tag is there
  bool isTooLarge = false;    ///< it was passed over, so that its text is not here
};

/// Records that are children of one element, as a document: the tags around them, the records, and the end tags.
struct RecordChunk {
  std::shared_ptr<RecordAncestors const> ancestors;
  std::string text;
  std::size_t recordsEnd = 0;  ///< in the text
  std::vector<RecordSpan> records;

  /// The text of one of the records.
  std::string_view TextOf(std::size_t record) const;
  /// A document with one of the records.
  std::string Document(std::size_t record) const;
  /// Where a record is in the tree of the whole document.
  std::string PathOf(RecordSpan const& record) const;
  /// For a read that begins with this record.
  ResumePoint PointOf(RecordSpan const& record) const;
};

/// Divides a document into chunks of records. What is not part of a record is checked and passed over.
class RecordSplitter {
 public:
  /// \p window begins at the start of the document, and is borrowed. Records that do not fit in it are too large.
  /// Records are put together until they have \p chunkSize bytes.
  RecordSplitter(TextWindow& window, std::vector<RecordPath> paths, std::size_t chunkSize);

  /// Begin at \p point, where the window begins. Nothing has been read.
  /// \throws what RecordSkeleton throws for tags that are not those of a document; as ResumePoint::ThrowNoResumePoint() for
  ///         others that do not open one element each.
  void Resume(ResumePoint const& point);
  /// End in front of the first record that begins at \p offset of the document or after it, and leave the rest unread.
  void SetEnd(std::uint64_t offset) { m_end = offset; }

  /// The next records; nothing at the end of the document.
  /// \throws what RecordSkeleton and the window throw, after the records in front of the fault have been returned, and
  ///         then at every call; CQnException "The markup exceeds the limit of %zu bytes" for a tag, comment or the like
  ///         outside of records that does not fit in the window; "The start tags of the open elements exceed the limit
  ///         of %zu bytes".
  std::optional<RecordChunk> Next();

 private:
  struct Level {
    std::string startTag;
    std::string name;  // as spelled
    std::uint64_t number = 0;
    std::vector<RecordPath::State> states;                       // one for each path
    std::map<std::string, std::uint64_t, std::less<>> children;  // how many of each name there have been
  };

  /// The record at the start of the window.
  struct OpenedRecord {
    Markup tag;
    RecordSpan span;
  };

  void GoOn(RecordChunk& chunk);
  void Step(RecordChunk& chunk);
  void PassRest();
  void PassText(std::size_t end);
  void PassMarkup(Markup const& markup);
  void StartElement(RecordChunk& chunk, Markup const& tag);
  void StartLevel(Markup const& tag, Level level);
  std::string Prolog() const;
  void AddRecord(RecordChunk& chunk);
  std::vector<RecordPath::State> StatesOfInnermost() const;
  std::optional<std::size_t> SelectionOf(std::vector<RecordPath::State> const& states) const;
  std::uint64_t CountChild(std::string const& name);
  std::string PathOfLevels() const;
  std::shared_ptr<RecordAncestors const> const& Ancestors();
  [[noreturn]] void ThrowLimitExceeded(char const* message, std::size_t limit) const;

  TextWindow& m_window;
  std::vector<RecordPath> m_paths;
  std::size_t m_chunkSize;
  std::uint64_t m_end = std::numeric_limits<std::uint64_t>::max();
  RecordSkeleton m_skeleton;
  std::string m_documentType;
  std::vector<Level> m_levels;
  std::size_t m_resumedLevels = 0;                     // of these, those that were open where the read began
  std::size_t m_openSize = 0;                          // of their start tags
  std::size_t m_nameCount = 0;                         // of their counted children
  std::shared_ptr<RecordAncestors const> m_ancestors;  // null after a change of the levels
  std::optional<OpenedRecord> m_opened;
  bool m_isChunkDone = false;
  bool m_isAtEnd = false;
  std::exception_ptr m_failure;
};

}  // namespace Quillon9
