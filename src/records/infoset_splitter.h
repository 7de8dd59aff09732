#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <forward_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fastinfoset/infoset_parser.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "records/infoset_copy.h"
#include "records/octet_window.h"
#include "records/record_path.h"
#include "records/record_stream.h"

namespace Quillon9 {

/// An element in a path.
struct PathStep {
  std::string prefix;  ///< in UTF-8
  std::string localName;
  std::uint64_t number = 0;  ///< among its siblings of this name, from 1; 0 if unknown

  std::string Spelled() const { return prefix.empty() ? localName : prefix + ':' + localName; }
  /// Append it in the encoding of text in memory.
  void AppendTo(std::string& path) const;
};

/// One record of a chunk.
struct InfosetSpan {
  /// Why the document ends in the record.
  struct End {
    std::exception_ptr failure;  ///< a CQnException
    std::uint64_t offset;        ///< in the document
  };

  std::size_t start = 0;       ///< in the octets of the chunk
  std::size_t firstShift = 0;  ///< of the chunk
  std::uint64_t offset = 0;    ///< in the document
  PathStep step;
  std::size_t selection = 0;  ///< which of the paths it matches
  bool isTooLarge = false;    ///< it was passed over, so that its octets are not here
  std::optional<End> end;     ///< it is not whole
};

/// Records that are children of one element, as a Fast Infoset document: the elements around them, and the records. Its
/// tables begin with it, so that it can be loaded in any thread, with text that is held in any way.
struct InfosetChunk {
  /// From an item on, the octets of the chunk and those of the document are so far apart.
  struct Shift {
    std::uint32_t inChunk;     ///< from the start of the record on
    std::uint32_t inDocument;  ///< the same place there, from the start of the record on
  };

  std::string octets;
  std::vector<PathStep> ancestors;  ///< of the records
  std::vector<InfosetSpan> records;
  std::vector<Shift> shifts;

  /// The record that has the octet at \p at.
  std::size_t RecordAt(std::size_t at) const;
  /// Where in the document that octet of the chunk is.
  std::uint64_t OffsetOf(std::size_t record, std::size_t at) const;
  /// Where a record is in the tree of the whole document.
  std::string PathOf(InfosetSpan const& record) const;
};

/// Divides a Fast Infoset document into chunks of records. Its memory is that of a chunk, and of the tables of the
/// document. What is not part of a record is checked and passed over, except for encoded strings of more than 64 KiB.
class InfosetSplitter : private InfosetParser {
 public:
  /// What of the document is a record: what the paths select, or what is below that number of elements.
  struct Wanted {
    std::vector<RecordPath> paths;
    std::optional<std::size_t> depth;
  };

  /// \p input, \p ctx and \p file, which is empty if the input is no file, are borrowed.
  InfosetSplitter(OctetInput& input, Wanted wanted, RecordLimits const& limits, CXmlSerializationContext const& ctx,
                  std::string const& file);

  /// The next records; nothing at the end of the document.
  /// \throws what CXmlDocument::LoadXmlStream() throws for the document, what InfosetCopy::Add() throws, and CQnException
  ///         "The start tags of the open elements exceed the limit of %zu bytes", after the records in front of the
  ///         fault have been returned, and then at every call.
  std::optional<InfosetChunk> Next();

  /// Whether \p input, which is at its start, is Fast Infoset.
  static bool Recognises(PeekedInput& input);

 private:
  struct Level {
    std::string startTag;  // spelled out
    InfosetCopy::Additions additions;
    PathStep step;
    std::vector<RecordPath::State> states;                       // one for each path
    std::map<std::string, std::uint64_t, std::less<>> children;  // how many of each name there have been
  };
  /// The first part of an element.
  struct Start {
    std::uint64_t offset = 0;
    std::uint32_t flags = 0;  // whether attributes follow
    bool hasDeclarations = false;
    std::vector<std::pair<InfosetText, InfosetText>> declarations;  // prefixes and namespaces
    InfosetQName name;
  };

  // Structure.
  void ReadHeaderOnce();
  bool Step();
  void ElementBit2(std::uint32_t octet) override { StartElement(octet); }
  void ReadContent(std::uint32_t octet);
  void StartElement(std::uint32_t octet);
  void StartIndexed(std::uint32_t octet);
  void ReadDeclarations();
  void WriteStart();
  std::uint32_t WriteDeclarations();
  void ReadAttributes();
  void ReadChunk(std::uint32_t octet);
  bool CopyChunk(std::uint32_t octet);
  void CloseElement();

  // Elements outside of records, and records.
  void StartOutside();
  void StartLevel(Level level);
  void CloseLevel();
  void StartRecord();
  void WriteAncestors();
  void NoteItem();
  void DropTooLarge();
  void DropRecord();
  void DropUnread();
  void CutTooDeep();
  void EndRecord();
  void EndBroken(CQnException& failure);
  InfosetChunk TakeChunk();
  std::optional<std::size_t> SelectionOf(std::vector<RecordPath::State> const& states) const;
  std::uint64_t CountChild(std::string const& name);
  std::vector<PathStep> StepsOfLevels() const;
  [[noreturn]] static void ThrowTooMuchOpen();
  std::size_t GetDepth() const { return m_levels.size() + m_open; }

  // Names and strings.
  InfosetQName ReadQName(std::uint32_t octet, InfosetNames& table);
  InfosetText ReadIdentifyingString(InfosetStrings& table, bool isStored);
  void ReadString(InfosetStrings& table);
  void ReadLiteral(InfosetStrings& table, std::uint32_t addBit, std::uint32_t octet, EncodedString const& head);
  void WriteHead(bool isChunk, std::uint32_t addBit, EncodedString const& head);
  void ReadOctets(std::uint64_t count, bool isAdded);
  void ReadLongOctets(std::uint64_t count, bool isAdded);
  void CheckString(EncodedString head, std::size_t start);

  // Comments, processing instructions and the like.
  void Comment() override;
  void ProcessingInstruction() override;
  void PassOtherName() override;
  void PassOtherString() override;

  OctetWindow m_window;
  Wanted m_wanted;
  RecordLimits m_limits;
  CXmlSerializationContext const& m_ctx;
  std::string const& m_file;
  std::uint32_t m_maxDepth;
  InfosetCopy m_copy;
  std::vector<Level> m_levels;
  std::size_t m_levelSize = 0;  // of their start tags
  Start m_start;
  std::forward_list<std::string> m_spare;  // strings of m_start that are in no table
  std::string m_text;                      // the string that is being read, with its head

  InfosetChunk m_chunk;
  InfosetSpan m_record;        // the one that is being read
  InfosetCopy::Mark m_mark{};  // its start
  std::uint64_t m_shift = 0;   // of the last item, as a difference that may wrap
  std::size_t m_open = 0;      // elements of it
  bool m_isTooDeep = false;    // its octets end there
  bool m_isChunkDone = false;
  std::optional<InfosetSpan> m_next;  // a record that has been begun, but belongs to the next chunk
  bool m_isPastEnd = false;           // of what is wanted
  bool m_hasHeader = false;
  std::exception_ptr m_failure;
};

}  // namespace Quillon9
