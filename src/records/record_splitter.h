#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "records/markup.h"
#include "records/record_path.h"
#include "records/record_skeleton.h"
#include "records/text_window.h"

namespace Quillon9 {

/// What stands around a record.
struct RecordAncestors {
  std::string startTags;  ///< with the document type declaration in front of them, as they are in the document
  std::string endTags;
  std::string path;  ///< with the numbers of the elements among their siblings of the same name
  std::size_t depth = 0;
};

/// One record of a chunk.
struct RecordSpan {
  std::size_t start = 0;      ///< in the text of the chunk
  TextPosition at;            ///< in the document
  std::string name;           ///< as its tag spells it
  std::uint64_t number = 0;   ///< among its siblings of this name, from 1; 0 if unknown
  std::size_t selection = 0;  ///< which of the paths it matches
  bool isWhole = true;        ///< its end tag is there
  bool isTooLarge = false;    ///< it was skipped
};

/// Records that are children of one element, as a document: the tags around them, the records, and the end tags.
struct RecordChunk {
  std::shared_ptr<RecordAncestors const> ancestors;
  std::string text;  ///< without the end tags
  std::vector<RecordSpan> records;

  /// The text of one of the records.
  std::string_view TextOf(std::size_t record) const;
  /// A document with all records, or with \p record only.
  ///@{
  std::string Document() const { return text + ancestors->endTags; }
  std::string Document(std::size_t record) const;
  ///@}
};

/// Divides a document into chunks of records. What is not part of a record is checked and passed over.
class RecordSplitter {
 public:
  /// \p window begins at the start of the document, and is borrowed. A record of more than \p mostRecord bytes is too
  /// large.
  RecordSplitter(TextWindow& window, std::vector<RecordPath> paths, std::size_t chunkSize, std::size_t mostRecord);

  /// The next records; nothing at the end of the document. After a failure there are no more.
  /// \throws what RecordSkeleton throws, after the records in front of the fault have been returned.
  std::optional<RecordChunk> Next();

 private:
  struct Level {
    std::string startTag;
    std::string name;  // as spelled
    std::uint64_t number = 0;
    std::map<std::string, std::uint64_t, std::less<>> children;  // how many of each name there have been
  };

  void Step(RecordChunk& chunk);
  void PassText(std::size_t end);
  void PassMarkup(Markup const& markup);
  void StartElement(RecordChunk& chunk, Markup const& tag);
  void AddRecord(RecordChunk& chunk, Markup const& tag, RecordSpan span);
  void SkipRest(std::size_t at);
  std::optional<std::size_t> SelectionOfInnermost() const;
  std::uint64_t CountChild(std::string const& name);
  RecordAncestors const& Ancestors(RecordChunk& chunk);
  void Drop(std::size_t count) { m_window.Drop(count); }

  TextWindow& m_window;
  std::vector<RecordPath> m_paths;
  std::size_t m_chunkSize;
  std::size_t m_mostRecord;
  RecordSkeleton m_skeleton;
  std::string m_documentType;
  std::vector<Level> m_levels;
  std::shared_ptr<RecordAncestors const> m_ancestors;  // null after a change of the levels
  bool m_isChunkDone = false;
  bool m_isAtEnd = false;
  std::exception_ptr m_failure;
};

}  // namespace Quillon9
