#include "records/infoset_splitter.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/limits.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/fastinfoset/vocabulary.h"
#include "records/infoset_octets.h"
#include "records/record_place.h"
#include "text/utf8_to_local.h"
#include "xmlio/document_outline.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kMostNames = 1000;  // of children that are counted
constexpr std::uint32_t kBehindCharacterChunks = 0xC0;
constexpr std::uint32_t kFault = 0xD0;        // is nowhere right as the last octet of a document
constexpr std::size_t kPiece = 0x10000;       // octets of a string that are read at once
constexpr std::size_t kMostOpen = 0x1000000;  // octets of start tags that are repeated for each chunk

/// A copy for another thread, which may change it.
std::exception_ptr Copied(CQnException const& failure) {
  CQnException copy = failure;
  FailureAccess::SetDetail(copy, FailureAccess::NewDetail(FailureAccess::DetailOf(copy)));
  return std::make_exception_ptr(copy);
}

/// Whether \p start begins like Fast Infoset with this text in front of the header, as far as both go.
bool Agrees(std::string const& start, std::string expected) {
  expected.append(std::begin(fi::kHeader), std::end(fi::kHeader));
  return start.compare(0, expected.size(), expected, 0, start.size()) == 0;
}

}  // namespace

void PathStep::AppendTo(std::string& path) const {
  CUtf8ToLocal const toLocal;  // of both parts for themselves, as in a tree
  std::string const shown = toLocal(localName);
  path += '/';
  path += DocumentOutline::Shown(prefix.empty() ? shown : toLocal(prefix) + ':' + shown);
  if (number > 1) path += "[" + std::to_string(number) + "]";
}

// ---- InfosetChunk

std::size_t InfosetChunk::RecordAt(std::size_t at) const {
  std::size_t record = 0;
  while (record + 1 < records.size() && records[record + 1].start <= at) ++record;
  return record;
}

std::uint64_t InfosetChunk::OffsetOf(std::size_t record, std::size_t at) const {
  InfosetSpan const& span = records[record];
  if (at <= span.start) return span.offset;
  auto const inRecord = static_cast<std::uint32_t>(at - span.start);
  auto const first = shifts.begin() + static_cast<std::ptrdiff_t>(span.firstShift);
  auto const last = record + 1 < records.size()
                        ? shifts.begin() + static_cast<std::ptrdiff_t>(records[record + 1].firstShift)
                        : shifts.end();
  auto const next = std::upper_bound(first, last, inRecord,
                                     [](std::uint32_t place, Shift const& shift) { return place < shift.inChunk; });
  Shift const shift = next != first ? *std::prev(next) : Shift{0, 0};
  std::uint64_t inDocument = std::uint64_t{shift.inDocument} + (inRecord - shift.inChunk);
  if (next != last) inDocument = std::min<std::uint64_t>(inDocument, next->inDocument);
  return span.offset + inDocument;
}

std::string InfosetChunk::PathOf(InfosetSpan const& record) const {
  std::string path;
  for (PathStep const& step : ancestors) step.AppendTo(path);
  record.step.AppendTo(path);
  return path;
}

// ---- InfosetSplitter: structure

InfosetSplitter::InfosetSplitter(OctetInput& input, Wanted wanted, RecordLimits const& limits,
                                 CXmlSerializationContext const& ctx, std::string const& file)
    : InfosetParser(COctetSource(m_window)),
      m_window(input),
      m_wanted(std::move(wanted)),
      m_limits(limits),
      m_ctx(ctx),
      m_file(file),
      m_maxDepth(CLimits::GetMaxElementDepth()),
      m_copy(*ctx.GetFIContext()) {}

// Looks at no more octets than it needs, because an input may have to wait for them.
bool InfosetSplitter::Recognises(PeekedInput& input) {
  std::vector<std::string> declarations(std::begin(FI_DECLARATION_LIST), std::end(FI_DECLARATION_LIST));
  declarations.emplace_back();
  for (std::size_t size = 1; !declarations.empty(); ++size) {
    std::string const& start = input.Peek(size);
    if (start.size() < size) return false;
    auto const isLonger = [&](std::string const& each) { return size > each.size() + sizeof fi::kHeader; };
    auto const isOther = [&](std::string const& each) { return !Agrees(start, each); };
    declarations.erase(std::remove_if(declarations.begin(), declarations.end(), isOther), declarations.end());
    if (std::any_of(declarations.begin(), declarations.end(), isLonger)) return true;
  }
  return false;
}

std::optional<InfosetChunk> InfosetSplitter::Next() {
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
  m_isChunkDone = false;
  try {
    ReadHeaderOnce();
    if (m_next) StartRecord();
    // Records that are there are not kept waiting for an input that delivers the next octets later.
    while (!m_isChunkDone && !m_isPastEnd && (m_chunk.records.empty() || m_source.GetLeft() != 0) && Step()) {
    }
  } catch (CQnException& failure) {
    bool const isOfDocument = failure.GetKind() == FailureKind_Parse || failure.GetKind() == FailureKind_Limit;
    isOfDocument ? EndBroken(failure) : DropUnread();
    m_failure = std::current_exception();
  } catch (...) {
    DropUnread();
    m_failure = std::current_exception();
  }
  if (!m_chunk.records.empty()) return TakeChunk();
  if (m_failure != nullptr) std::rethrow_exception(m_failure);
  return std::nullopt;
}

void InfosetSplitter::ReadHeaderOnce() {
  if (std::exchange(m_hasHeader, true)) return;
  ReadHeader();
  ReadOptionalData();
}

// Go on by one part of the document; a record is one part.
bool InfosetSplitter::Step() {
  if (m_levels.empty()) return ReadChild();
  ReadContent(m_source.Octet());
  return true;
}

void InfosetSplitter::ReadContent(std::uint32_t octet) {
  if (octet < fi::kCharacterChunk) {
    StartElement(octet);
  } else if (octet < kBehindCharacterChunks) {
    ReadChunk(octet);
  } else if (octet == fi::kTerminator) {
    CloseElement();
  } else if (octet == fi::kDoubleTerminator) {
    CloseElement();
    if (GetDepth() == 0) return NoteDoubleTerminator();
    CloseElement();
  } else if (octet == fi::kProcessingInstruction) {
    ProcessingInstruction();
  } else if (octet == fi::kComment) {
    Comment();
  } else if ((octet & fi::kTopSixBits) == fi::kUnexpandedEntityReference) {
    UnexpandedEntityReferenceBit7(octet);
  } else {
    ThrowInvalidElement();
  }
}

void InfosetSplitter::StartElement(std::uint32_t octet) {
  bool const hasIndex = (octet & fi::kHasNamespaceAttributes) != fi::kHasNamespaceAttributes;  // nor a literal name
  if (hasIndex && m_open != 0 && GetDepth() < m_maxDepth) return StartIndexed(octet);
  m_start.offset = GetOffset() - 1;
  m_start.flags = octet & fi::kHasAttributes;
  m_start.hasDeclarations = (octet & fi::kLiteralElementName) == fi::kHasNamespaceAttributes;
  m_spare.clear();
  if (m_start.hasDeclarations) {
    ReadDeclarations();
    octet = m_source.Octet();
  }
  if (GetDepth() >= m_maxDepth) {
    if (m_open == 0) ThrowNestedTooDeep(m_maxDepth);
    CutTooDeep();
  }
  bool const isLiteral = (octet & fi::kLiteralElementName) == fi::kLiteralElementName;
  m_start.name =
      isLiteral ? ReadQName(octet, m_copy.elementNames) : InfosetQName{m_source.Integer1To2pw20Bit3(octet), {}, {}, {}};
  if (!isLiteral) m_copy.elementNames.At(m_start.name.index);
  if (m_open == 0) return StartOutside();
  WriteStart();
  ++m_open;
  if (m_start.flags != 0) ReadAttributes();
}

/// Start an element in a record, with a name of the table and without declarations: most of them.
void InfosetSplitter::StartIndexed(std::uint32_t octet) {
  InfosetQName name;
  name.index = m_source.Integer1To2pw20Bit3(octet);
  m_copy.elementNames.At(name.index);
  m_copy.ElementName(octet & fi::kHasAttributes, name);
  ++m_open;
  if ((octet & fi::kHasAttributes) != 0) ReadAttributes();
}

void InfosetSplitter::ReadDeclarations() {
  m_start.declarations.clear();
  std::uint32_t octet = m_source.Octet();
  for (; (octet & fi::kTopSixBits) == fi::kNamespaceAttribute; octet = m_source.Octet()) {
    InfosetText prefix;
    InfosetText namespaceName;
    if ((octet & fi::kHasPrefix) != 0) prefix = ReadIdentifyingString(m_copy.prefixes, false);
    if ((octet & fi::kHasNamespaceName) != 0) namespaceName = ReadIdentifyingString(m_copy.namespaces, false);
    m_start.declarations.emplace_back(prefix, namespaceName);
    if (m_start.declarations.size() * sizeof(m_start.declarations[0]) > kMostOpen) ThrowTooMuchOpen();
  }
  if (octet != fi::kTerminator) ThrowInvalidElement();
}

void InfosetSplitter::WriteStart() {
  std::uint32_t const leading = WriteDeclarations();
  m_copy.ElementName(leading, m_start.name);
}

/// Returns what belongs in front of the name.
std::uint32_t InfosetSplitter::WriteDeclarations() {
  if (!m_start.hasDeclarations) return m_start.flags;
  m_copy.Put(m_start.flags | fi::kHasNamespaceAttributes);
  for (auto const& [prefix, namespaceName] : m_start.declarations) {
    m_copy.Put(fi::kNamespaceAttribute | (prefix.IsThere() ? fi::kHasPrefix : 0) |
               (namespaceName.IsThere() ? fi::kHasNamespaceName : 0));
    if (prefix.IsThere()) m_copy.IdentifyingString(m_copy.prefixes, prefix);
    if (namespaceName.IsThere()) m_copy.IdentifyingString(m_copy.namespaces, namespaceName);
  }
  m_copy.Put(fi::kTerminator);
  return 0;
}

void InfosetSplitter::ReadAttributes() {
  for (;;) {
    m_spare.clear();
    if (m_open != 0) {
      NoteItem();
    } else if (m_copy.GetSize() > kMostOpen) {
      ThrowTooMuchOpen();
    }
    std::uint32_t const octet = m_source.Octet();
    if (octet == fi::kTerminator) return m_copy.Put(octet);
    if (octet == fi::kDoubleTerminator) {  // it ends the attributes and the element, not the parent
      m_copy.Put(fi::kTerminator);
      return CloseElement();
    }
    if (octet >= fi::kCharacterChunk) ThrowInvalidElement();
    if ((octet & fi::kLiteralAttributeName) == fi::kLiteralAttributeName) {
      m_copy.AttributeName(ReadQName(octet, m_copy.attributeNames));
    } else {
      InfosetQName const name{m_source.Integer1To2pw20Bit2(octet), {}, {}, {}};
      m_copy.attributeNames.At(name.index);
      m_copy.AttributeName(name);
    }
    ReadString(m_copy.values);
  }
}

void InfosetSplitter::ReadChunk(std::uint32_t octet) {
  if ((octet & fi::kIndexBit3) != 0) {
    std::uint32_t const index = m_source.Integer1To2pw20Bit4(octet);
    m_copy.chunks.At(index);
    return m_copy.Chunk(index);
  }
  if ((octet & fi::kAddToTableBit3) == 0 && m_open != 0 && CopyChunk(octet)) return;
  ReadLiteral(m_copy.chunks, fi::kAddToTableBit3, octet, HeadBit5(octet));
}

/// Copy a chunk of a record as it is: UTF-8 that enters no table and is there as a whole, as most text. Returns false,
/// with nothing read, for other chunks.
bool InfosetSplitter::CopyChunk(std::uint32_t octet) {
  constexpr std::uint32_t kOtherForms = 0x0C;  // of the characters
  bool const isLong = (octet & fi::kLength7Large.m_pattern) == fi::kLength7Large.m_pattern;
  if ((octet & kOtherForms) != 0 || isLong || m_source.GetLeft() == 0) return false;
  bool const isShort = (octet & fi::kLength7Medium.m_pattern) == 0;
  std::size_t const size = isShort ? (octet & 0x01) + 1 : 1 + *m_source.GetPosition() + fi::kLength7Medium.m_first;
  if (size > m_source.GetLeft()) return false;
  m_copy.Put(octet);
  m_copy.Put({reinterpret_cast<char const*>(m_source.Move(size)), size});
  return true;
}

void InfosetSplitter::CloseElement() {
  if (m_open == 0) return CloseLevel();
  m_copy.Put(fi::kTerminator);
  if (--m_open == 0) EndRecord();
}

// ---- Elements outside of records, and records

void InfosetSplitter::StartOutside() {
  InfosetQName const name = m_copy.Parts(m_copy.elementNames, m_start.name);
  ElementName const names{std::string(InfosetCopy::TextOf(m_copy.namespaces, name.namespaceName)),
                          std::string(InfosetCopy::TextOf(m_copy.localNames, name.localName))};
  Level level;
  level.step.prefix = InfosetCopy::TextOf(m_copy.prefixes, name.prefix);
  level.step.localName = names.local;
  level.step.number = CountChild(level.step.Spelled());
  for (std::size_t i = 0; i < m_wanted.paths.size(); ++i) {
    RecordPath::State const outside = m_levels.empty() ? RecordPath::kStart : m_levels.back().states[i];
    level.states.push_back(m_wanted.paths[i].Enter(outside, names));
  }
  std::optional<std::size_t> const selection = SelectionOf(level.states);
  if (!selection) return StartLevel(std::move(level));
  m_isPastEnd = m_start.offset >= m_limits.end;
  if (m_isPastEnd) return;
  m_next.emplace();
  m_next->offset = m_start.offset;
  m_next->step = std::move(level.step);
  m_next->selection = *selection;
  m_isChunkDone = !m_chunk.records.empty() && m_chunk.ancestors.size() != m_levels.size();
  if (!m_isChunkDone) StartRecord();
}

void InfosetSplitter::StartLevel(Level level) {
  std::size_t const depth = m_levels.size();
  std::string startTag;
  m_levels.push_back(std::move(level));
  m_copy.SpellTo(startTag);
  WriteStart();
  if (m_start.flags != 0) ReadAttributes();
  m_copy.Pause();
  if (m_levels.size() == depth) return;  // the end of its attributes was its own
  m_levelSize += startTag.size();
  if (m_levelSize > kMostOpen) ThrowTooMuchOpen();
  m_levels.back().startTag = std::move(startTag);
  m_levels.back().additions = m_copy.GetSpelled();
}

void InfosetSplitter::CloseLevel() {
  m_levelSize -= m_levels.back().startTag.size();
  m_levels.pop_back();
  if (!m_chunk.records.empty() && m_levels.size() < m_chunk.ancestors.size()) m_isChunkDone = true;
}

void InfosetSplitter::StartRecord() {
  m_record = *std::exchange(m_next, std::nullopt);
  if (m_chunk.records.empty()) WriteAncestors();
  m_record.start = m_chunk.octets.size();
  m_record.firstShift = m_chunk.shifts.size();
  m_copy.WriteTo(m_chunk.octets);
  m_mark = m_copy.GetMark();
  m_shift = 0;
  m_isTooDeep = false;
  WriteStart();
  m_open = 1;
  if (m_start.flags != 0) ReadAttributes();
  while (m_open > 0) {
    NoteItem();
    ReadContent(m_source.Octet());
  }
}

void InfosetSplitter::WriteAncestors() {
  m_chunk.ancestors = StepsOfLevels();
  m_chunk.octets.reserve(m_limits.batchSize);
  m_copy.Begin(m_chunk.octets);
  for (Level const& level : m_levels) m_copy.PutSpelled(m_chunk.octets, level.startTag, level.additions);
}

/// Note where the next item of the record is, and whether it still fits in the record.
void InfosetSplitter::NoteItem() {
  if (!m_copy.IsWriting()) return;
  std::uint64_t const inDocument = GetOffset() - m_record.offset;
  std::size_t const inChunk = m_chunk.octets.size() - m_record.start;
  bool const isTooLarge = inDocument > m_limits.mostRecord ||  // or its strings are, which others have spelled
                          inChunk > std::min<std::uint64_t>(m_limits.mostRecord + kMostOpen, UINT32_MAX);
  if (isTooLarge) return DropTooLarge();
  if (inDocument - inChunk == m_shift) return;
  m_shift = inDocument - inChunk;
  m_chunk.shifts.push_back({static_cast<std::uint32_t>(inChunk), static_cast<std::uint32_t>(inDocument)});
}

void InfosetSplitter::DropTooLarge() {
  DropRecord();
  m_record.isTooLarge = true;
}

/// Take what there is of the record out of the chunk.
void InfosetSplitter::DropRecord() {
  m_copy.Pause();
  m_copy.Return(m_chunk.octets, m_mark);
  m_chunk.shifts.resize(m_record.firstShift);
}

/// The same for a record that will not be read to its end.
void InfosetSplitter::DropUnread() {
  if (m_open != 0 && m_copy.IsWriting()) DropRecord();
}

/// Let the record end in an element that its reader refuses before it reads its name.
void InfosetSplitter::CutTooDeep() {
  if (!m_copy.IsWriting()) return;
  m_copy.Put(WriteDeclarations());
  m_copy.Pause();
  m_isTooDeep = true;
}

void InfosetSplitter::EndRecord() {
  constexpr std::size_t kMostRecords = 4096;
  NoteItem();
  m_copy.Pause();
  m_chunk.records.push_back(std::move(m_record));
  bool const isFull = m_chunk.octets.size() >= m_limits.batchSize + m_levelSize;
  if (isFull || m_isTooDeep || m_chunk.records.size() == kMostRecords) m_isChunkDone = true;
}

/// The document ends with \p failure. The part of a record in front of it may have another fault.
void InfosetSplitter::EndBroken(CQnException& failure) {
  std::uint64_t const offset = GetOffset();
  CFailurePlace place;
  place.SetOffset(static_cast<std::int64_t>(offset));
  std::string path;
  for (PathStep const& step : StepsOfLevels()) step.AppendTo(path);
  if (m_open != 0) m_record.step.AppendTo(path);
  place.SetPath(std::move(path));
  place.SetFile(m_file);
  RecordPlace::Set(failure, std::move(place));
  if (m_open == 0) return;
  if (m_copy.IsWriting()) m_record.end = InfosetSpan::End{Copied(failure), offset};
  m_copy.Pause();
  m_chunk.records.push_back(std::move(m_record));
}

InfosetChunk InfosetSplitter::TakeChunk() {
  if (m_chunk.records.back().end) {
    InfosetOctets::Put(m_chunk.octets, kFault);
  } else if (!m_isTooDeep) {
    m_chunk.octets.append(m_chunk.ancestors.size() + 1, static_cast<char>(fi::kTerminator));
  }
  return std::exchange(m_chunk, {});
}

std::optional<std::size_t> InfosetSplitter::SelectionOf(std::vector<RecordPath::State> const& states) const {
  if (m_wanted.depth == m_levels.size()) return 0;
  for (std::size_t i = 0; i < states.size(); ++i) {
    if (m_wanted.paths[i].IsRecord(states[i])) return i;
  }
  return std::nullopt;
}

std::uint64_t InfosetSplitter::CountChild(std::string const& name) {
  if (m_levels.empty()) return 1;
  auto& children = m_levels.back().children;
  auto const found = children.find(name);
  if (found != children.end()) return ++found->second;
  if (children.size() >= kMostNames) return 0;
  children.emplace(name, 1);
  return 1;
}

std::vector<PathStep> InfosetSplitter::StepsOfLevels() const {
  std::vector<PathStep> steps;
  for (Level const& level : m_levels) steps.push_back(level.step);
  return steps;
}

void InfosetSplitter::ThrowTooMuchOpen() {
  throw OfKind(FailureKind_Limit, CQnException(FormatString(
                                      "The start tags of the open elements exceed the limit of %zu bytes", kMostOpen)));
}

// ---- Names and strings

InfosetQName InfosetSplitter::ReadQName(std::uint32_t octet, InfosetNames& table) {
  bool const hasPrefix = (octet & fi::kHasPrefix) != 0;
  bool const hasNamespace = (octet & fi::kHasNamespaceName) != 0;
  if (hasPrefix && !hasNamespace) ThrowPrefixWithoutNamespace();
  bool const isAdded = table.GetSize() < CFIVocabulary::kMaxEntries;
  InfosetQName name;
  if (hasPrefix) name.prefix = ReadIdentifyingString(m_copy.prefixes, isAdded);
  if (hasNamespace) name.namespaceName = ReadIdentifyingString(m_copy.namespaces, isAdded);
  name.localName = ReadIdentifyingString(m_copy.localNames, isAdded);
  if (isAdded) name.index = m_copy.Add(table, {name.prefix.index, name.namespaceName.index, name.localName.index});
  return name;
}

/// Read a string, which enters its table unless no index could refer to it there and \p isStored is false.
InfosetText InfosetSplitter::ReadIdentifyingString(InfosetStrings& table, bool isStored) {
  std::uint32_t const octet = m_source.Octet();
  if ((octet & fi::kIndexBit1) != 0) {
    std::uint32_t const index = m_source.Integer1To2pw20Bit2(octet);
    table.At(index);
    return {index, {}};
  }
  std::uint64_t const length = m_source.NonEmptyOctetStringBit2Length(octet);
  m_text.clear();
  InfosetOctets::Length2(m_text, 0, length);
  ReadOctets(length, true);
  if (isStored || table.GetSize() < InfosetOctets::kMostIndex) return {m_copy.Add(table, m_text), {}};
  m_spare.push_front(m_text);
  return {0, m_spare.front()};
}

/// Read an attribute value or the like.
void InfosetSplitter::ReadString(InfosetStrings& table) {
  std::uint32_t const octet = m_source.Octet();
  if ((octet & fi::kIndexBit1) == 0) return ReadLiteral(table, fi::kAddToTableBit1, octet, HeadBit3(octet));
  std::uint32_t const index = m_source.Integer0To2pw20Bit2(octet);
  if (index == 0) return m_copy.Put(fi::kIndexBit1 | fi::kIndexZeroBit2);
  table.At(index);
  m_copy.Value(table, index);
}

/// Read a string whose first octet is \p octet. \p addBit is the bit there that has it enter the table.
void InfosetSplitter::ReadLiteral(InfosetStrings& table, std::uint32_t addBit, std::uint32_t octet,
                                  EncodedString const& head) {
  bool const isAdded = (octet & addBit) != 0 && table.GetSize() < CFIVocabulary::kMaxEntries;
  m_text.clear();
  WriteHead(addBit == fi::kAddToTableBit3, isAdded ? addBit : 0, head);
  std::size_t const start = m_text.size();
  ReadOctets(head.m_length, isAdded);
  if (m_open == 0 && !head.IsUtf8() && head.m_length <= kPiece) CheckString(head, start);
  std::uint32_t const index = isAdded ? m_copy.Add(table, m_text) : 0;
  m_copy.Literal(table, m_text, addBit, index);
  if (m_text.capacity() > 2 * kPiece) m_text = {};
}

void InfosetSplitter::WriteHead(bool isChunk, std::uint32_t addBit, EncodedString const& head) {
  bool const hasIndex = head.m_kind >= EncodedString::Kind::kRestrictedAlphabet;
  auto const kind = static_cast<std::uint32_t>(head.m_kind);
  std::uint32_t const index = head.m_index - 1;
  if (isChunk) {
    std::uint32_t const leading = fi::kCharacterChunk | addBit | kind << 2;
    if (hasIndex) InfosetOctets::Put(m_text, leading | (index >> 6 & 0x03));
    InfosetOctets::Length7(m_text, hasIndex ? index << 2 & 0xFC : leading, head.m_length);
  } else {
    std::uint32_t const leading = addBit | kind << 4;
    if (hasIndex) InfosetOctets::Put(m_text, leading | (index >> 4 & 0x0F));
    InfosetOctets::Length5(m_text, hasIndex ? index << 4 & 0xF0 : leading, head.m_length);
  }
}

/// Append \p count octets to m_text. Those of a long string are not there if nobody needs them.
void InfosetSplitter::ReadOctets(std::uint64_t count, bool isAdded) {
  if (count > kPiece) return ReadLongOctets(count, isAdded);
  m_text.append(reinterpret_cast<char const*>(m_source.Move(count)), count);
}

void InfosetSplitter::ReadLongOctets(std::uint64_t count, bool isAdded) {
  std::size_t const start = GetOffset();
  while (count > 0) {
    std::string_view const piece = m_source.Piece(count);
    if (piece.empty()) m_source.ThrowEndAt(start);
    count -= piece.size();
    bool const isTooLarge = m_open != 0 && GetOffset() - m_record.offset > m_limits.mostRecord;
    if (isTooLarge && m_copy.IsWriting()) DropTooLarge();
    if (isAdded) m_copy.CheckRoom(m_text.size() + piece.size());
    if (m_open == 0 && m_copy.IsWriting() && m_text.size() > kMostOpen) ThrowTooMuchOpen();
    if (isAdded || m_copy.IsWriting()) {
      m_text += piece;
    } else {
      m_text.clear();
    }
  }
}

/// Check what stands outside of records, and is decoded nowhere else. \p start is where its octets are in m_text.
void InfosetSplitter::CheckString(EncodedString head, std::size_t start) {
  head.m_octets = reinterpret_cast<std::uint8_t const*>(m_text.data() + start);
  std::string text;
  try {
    AppendDecoded(head, m_ctx.GetFIContext()->GetVocabulary(), kPiece, text);
  } catch (CQnException& failure) {
    GiveKind(failure, FailureKind_Parse);
    throw;
  }
}

// ---- Comments, processing instructions and the like

void InfosetSplitter::Comment() {
  if (!m_ctx.GetKeepUnknown()) return SkipNonIdentifyingStringOrIndex();
  m_copy.Put(fi::kComment);
  ReadString(m_copy.otherStrings);
}

void InfosetSplitter::ProcessingInstruction() {
  if (!m_ctx.GetKeepUnknown()) {
    SkipIdentifyingStringsOrIndices(1);
    return SkipNonIdentifyingStringOrIndex();
  }
  m_copy.Put(fi::kProcessingInstruction);
  m_copy.IdentifyingString(m_copy.otherNames, ReadIdentifyingString(m_copy.otherNames, false));
  ReadString(m_copy.otherStrings);
}

void InfosetSplitter::PassOtherName() {
  if (!m_ctx.GetKeepUnknown()) return SkipIdentifyingStringsOrIndices(1);
  ReadIdentifyingString(m_copy.otherNames, false);
}

void InfosetSplitter::PassOtherString() {
  if (!m_ctx.GetKeepUnknown()) return SkipNonIdentifyingStringOrIndex();
  ReadString(m_copy.otherStrings);  // it is in front of the elements, where nothing is written
}

}  // namespace Quillon9
