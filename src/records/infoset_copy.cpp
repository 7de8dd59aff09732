#include "records/infoset_copy.h"

#include <algorithm>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/fastinfoset/vocabulary.h"

namespace Quillon9 {

namespace {

namespace to = InfosetOctets;

void AddShared(InfosetStrings& table, std::string_view text) {
  table.AddShared({text.data(), static_cast<std::uint32_t>(text.size())});
}

void AddShared(InfosetStrings& table, CFIVocabulary::CFIStringTable const& strings) {
  for (std::string const& each : strings) AddShared(table, each);
}

void AddShared(InfosetNames& table, CFIVocabulary::CFIQNameTable const& names) {
  for (CFIVocabulary::CQNameParts const& each : names) {
    ReadName const name(each);
    table.AddShared({name.prefix, name.namespaceName, name.localName});
  }
}

}  // namespace

InfosetCopy::InfosetCopy(CFastInfosetContext const& options)
    : m_mostSize(std::min<std::uint64_t>(CLimits::GetMaxContentSize(), UINT32_MAX)) {
  if (!options.GetUseGeneratedVocabulary()) {
    AddShared(prefixes, FI_DEFAULT_PREFIX);
    AddShared(namespaces, FI_DEFAULT_NAMESPACE);
    return;
  }
  CFIVocabulary const& vocabulary = options.GetVocabulary();
  AddShared(prefixes, vocabulary.GetPrefixNamesTable());
  AddShared(namespaces, vocabulary.GetNamespaceNamesTable());
  AddShared(localNames, vocabulary.GetLocalNamesTable());
  AddShared(chunks, vocabulary.GetCharacterChunksTable());
  AddShared(values, vocabulary.GetAttributeValuesTable());
  AddShared(elementNames, vocabulary.GetElementNamesTable());
  AddShared(attributeNames, vocabulary.GetAttributeNamesTable());
}

// ---- The document

std::uint32_t InfosetCopy::Add(InfosetStrings& table, std::string_view octets) {
  CheckRoom(octets.size());
  std::string_view const kept = m_arena.Keep(octets);
  m_size += octets.size() + sizeof(InfosetString);
  return table.Add({kept.data(), static_cast<std::uint32_t>(kept.size())});
}

std::uint32_t InfosetCopy::Add(InfosetNames& table, InfosetName const& name) {
  CheckRoom(0);
  m_size += sizeof(InfosetName);
  return table.Add(name);
}

void InfosetCopy::CheckRoom(std::uint64_t octets) const {
  if (m_size + octets + sizeof(InfosetString) <= m_mostSize) return;
  throw OfKind(FailureKind_Limit, CQnException(FormatString("The tables of the document exceed the limit of %llu bytes",
                                                            static_cast<unsigned long long>(m_mostSize))));
}

std::string_view InfosetCopy::TextOf(InfosetStrings const& table, InfosetText const& text) {
  if (!text.IsThere()) return {};
  std::string_view const octets = text.index != 0 ? table.At(text.index).View() : text.octets;
  bool const hasHead = text.index == 0 || !table.IsShared(text.index);
  std::size_t const start = hasHead ? to::SizeOfLength2(static_cast<unsigned char>(octets[0])) : 0;
  return octets.substr(start);
}

InfosetQName InfosetCopy::Parts(InfosetNames const& table, InfosetQName const& name) const {
  if (name.index == 0) return name;
  InfosetName const& entry = table.At(name.index);
  return {name.index, {entry.prefix, {}}, {entry.namespaceName, {}}, {entry.localName, {}}};
}

// ---- The copy

void InfosetCopy::SpellTo(std::string& to) {
  m_to = &to;
  m_isSpelling = true;
  m_spelled = {};
}

void InfosetCopy::Begin(std::string& to) {
  for (InfosetStrings* table : {&prefixes, &namespaces, &localNames, &chunks, &values, &otherNames, &otherStrings}) {
    table->BeginCopy();
  }
  elementNames.BeginCopy();
  attributeNames.BeginCopy();
  for (unsigned const octet : fi::kHeader) to::Put(to, octet);
  to::Put(to, 0);
}

void InfosetCopy::PutSpelled(std::string& to, std::string const& spelled, Additions const& additions) {
  auto const add = [](auto& table, std::size_t count, std::size_t most) {
    for (; count > 0 && table.GetCopySize() < most; --count) table.AddToCopy(0);
  };
  to += spelled;
  add(prefixes, additions.prefixes, UINT32_MAX);
  add(namespaces, additions.namespaces, UINT32_MAX);
  add(localNames, additions.localNames, UINT32_MAX);
  add(elementNames, additions.elementNames, CFIVocabulary::kMaxEntries);
  add(attributeNames, additions.attributeNames, CFIVocabulary::kMaxEntries);
}

InfosetCopy::Mark InfosetCopy::GetMark() const {
  return {m_to->size(),
          {prefixes.GetCopySize(), namespaces.GetCopySize(), localNames.GetCopySize(), chunks.GetCopySize(),
           values.GetCopySize(), otherNames.GetCopySize(), otherStrings.GetCopySize(), elementNames.GetCopySize(),
           attributeNames.GetCopySize()}};
}

void InfosetCopy::Return(std::string& to, Mark const& mark) {
  to.resize(mark.size);
  prefixes.CutCopy(mark.tables[0]);
  namespaces.CutCopy(mark.tables[1]);
  localNames.CutCopy(mark.tables[2]);
  chunks.CutCopy(mark.tables[3]);
  values.CutCopy(mark.tables[4]);
  otherNames.CutCopy(mark.tables[5]);
  otherStrings.CutCopy(mark.tables[6]);
  elementNames.CutCopy(mark.tables[7]);
  attributeNames.CutCopy(mark.tables[8]);
}

void InfosetCopy::ElementName(std::uint32_t leading, InfosetQName const& name) {
  if (m_to == nullptr) return;
  if (std::uint32_t const known = m_isSpelling && !elementNames.IsShared(name.index) ? 0 : name.index) {
    if (std::uint32_t const index = elementNames.InCopy(known)) return to::Integer3(*m_to, leading, index);
  }
  Name(elementNames, leading | fi::kLiteralElementName, name);
}

void InfosetCopy::AttributeName(InfosetQName const& name) {
  if (m_to == nullptr) return;
  if (std::uint32_t const known = m_isSpelling && !attributeNames.IsShared(name.index) ? 0 : name.index) {
    if (std::uint32_t const index = attributeNames.InCopy(known)) return to::Integer2(*m_to, 0, index);
  }
  Name(attributeNames, fi::kLiteralAttributeName, name);
}

void InfosetCopy::Name(InfosetNames& table, std::uint32_t leading, InfosetQName const& name) {
  InfosetQName const parts = Parts(table, name);
  if (parts.prefix.IsThere()) leading |= fi::kHasPrefix;
  if (parts.namespaceName.IsThere()) leading |= fi::kHasNamespaceName;
  to::Put(*m_to, leading);
  if (parts.prefix.IsThere()) IdentifyingString(prefixes, parts.prefix);
  if (parts.namespaceName.IsThere()) IdentifyingString(namespaces, parts.namespaceName);
  IdentifyingString(localNames, parts.localName);
  if (m_isSpelling) {
    ++(&table == &elementNames ? m_spelled.elementNames : m_spelled.attributeNames);
  } else if (table.GetCopySize() < CFIVocabulary::kMaxEntries) {
    table.AddToCopy(name.index);
  }
}

/// The index in the copy; 0 if the string has to be spelled.
std::uint32_t InfosetCopy::Known(InfosetStrings const& table, std::uint32_t index) const {
  if (index == 0) return 0;
  std::uint32_t const known = m_isSpelling && !table.IsShared(index) ? 0 : table.InCopy(index);
  return known <= to::kMostIndex ? known : 0;
}

void InfosetCopy::IdentifyingString(InfosetStrings& table, InfosetText const& text) {
  if (m_to == nullptr) return;
  if (std::uint32_t const index = Known(table, text.index)) return to::Integer2(*m_to, fi::kIndexBit1, index);
  *m_to += text.index != 0 ? table.At(text.index).View() : text.octets;
  if (!m_isSpelling) return table.AddToCopy(text.index);
  CountSpelled(&table);
}

void InfosetCopy::CountSpelled(void const* table) {
  if (table == &prefixes) ++m_spelled.prefixes;
  if (table == &namespaces) ++m_spelled.namespaces;
  if (table == &localNames) ++m_spelled.localNames;
}

void InfosetCopy::Chunk(std::uint32_t index) {
  if (m_to == nullptr) return;
  if (std::uint32_t const known = Known(chunks, index)) {
    return to::Integer4(*m_to, fi::kCharacterChunk | fi::kIndexBit3, known);
  }
  Literal(chunks, chunks.At(index).View(), fi::kAddToTableBit3, index);
}

void InfosetCopy::Value(InfosetStrings& table, std::uint32_t index) {
  if (m_to == nullptr) return;
  if (std::uint32_t const known = Known(table, index)) return to::Integer2(*m_to, fi::kIndexBit1, known);
  Literal(table, table.At(index).View(), fi::kAddToTableBit1, index);
}

void InfosetCopy::Literal(InfosetStrings& table, std::string_view octets, std::uint32_t addBit, std::uint32_t index) {
  if (m_to == nullptr) return;
  std::size_t const start = m_to->size();
  *m_to += octets;
  if (index == 0) return;
  if (!m_isSpelling && table.GetCopySize() < CFIVocabulary::kMaxEntries) return table.AddToCopy(index);
  (*m_to)[start] = static_cast<char>(static_cast<unsigned char>((*m_to)[start]) & ~addBit);
}

}  // namespace Quillon9
