#include "quillon9/fastinfoset/vocabulary.h"

#include <algorithm>
#include <utility>

#include "base/byte_blocks.h"
#include "base/fast_paths.h"
#include "base/seeded_hash.h"
#include "base/text_copy.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kFirstSlots = 32;
constexpr std::size_t kFirstBlock = 1024;
constexpr std::size_t kLargestBlock = 64 * 1024;
constexpr unsigned kRecentBits = 7;
constexpr std::size_t kRecentPlaces = 2U << kRecentBits;  // two for each result of QuickHash()
constexpr char kKeySeparator = '\x01';

using SeededHash::kShort;

bool IsAt(char const* at, std::string_view part) { return IsSameText({at, part.size()}, part); }

// Hash only the length and the ends, where collisions do no harm: names that a document chooses to collide are still
// found in the map.
std::size_t QuickHash(std::string_view text) {
  return (ByteBlocks::LoadShort(text.data(), text.size(), 0) ^ text.size()) * SeededHash::kOdd >> (64 - kRecentBits);
}

bool IsKeyOf(std::string_view key, std::string_view prefix, std::string_view namespaceUri, std::string_view localName) {
  if (key.size() != localName.size() + namespaceUri.size() + prefix.size() + 2) return false;
  char const* const uri = key.data() + localName.size() + 1;
  char const* const prefixAt = uri + namespaceUri.size() + 1;
  return uri[-1] == kKeySeparator && prefixAt[-1] == kKeySeparator && IsAt(key.data(), localName) &&
         IsAt(uri, namespaceUri) && IsAt(prefixAt, prefix);
}

}  // namespace

// ---- CFIIndexMap

namespace {

constexpr std::uint64_t kPlaceBits = UINT32_MAX;

}  // namespace

/// A slot for \p text without its index and its place.
CFIIndexMap::Slot CFIIndexMap::MakeSlot(std::string_view text) {
  bool const isShort = text.size() <= kShort;
  return {isShort ? SeededHash::ShortWord(text) : SeededHash::OfLong(text) & ~kPlaceBits,
          static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), UINT32_MAX)), 0};
}

std::uint64_t CFIIndexMap::HashOf(Slot const& slot) {
  return slot.m_length > kShort ? slot.m_word >> 32 : SeededHash::OfShort(slot.m_word, slot.m_length);
}

/// The text of a slot with a long one.
std::string_view CFIIndexMap::TextAt(Slot const& slot) const {
  Place const& place = m_places[slot.m_word & kPlaceBits];
  std::string const& block = m_texts[place.m_block];
  // A text that is longer than the slot can say has a block to itself.
  std::size_t const length = slot.m_length < UINT32_MAX ? slot.m_length : block.size();
  return {block.data() + place.m_offset, length};
}

// Return the slot of `text`, or the free slot where it belongs. There is always a free one. Open addressing is faster
// than std::unordered_map for names, and a short text is identified by its slot alone, which saves cache misses.
std::size_t CFIIndexMap::SlotFor(std::string_view text, Slot const& wanted) const {
  bool const isShort = text.size() <= kShort;
  std::uint64_t const ignored = isShort ? 0 : kPlaceBits;
  std::size_t const mask = m_slots.size() - 1;
  for (std::size_t at = HashOf(wanted) & mask;; at = (at + 1) & mask) {
    Slot const& slot = m_slots[at];
    if (slot.m_index == 0) return at;
    if (slot.m_length != wanted.m_length || ((slot.m_word ^ wanted.m_word) & ~ignored) != 0) continue;
    if (isShort || IsSameText(TextAt(slot), text)) return at;
  }
}

unsigned long CFIIndexMap::Find(std::string_view text) const {
  return m_slots.empty() ? 0 : m_slots[SlotFor(text, MakeSlot(text))].m_index;
}

void CFIIndexMap::Insert(std::string_view text) {
  if ((m_size + 1) * 4 > m_slots.size() * 3) Grow();
  Slot wanted = MakeSlot(text);
  Slot& slot = m_slots[SlotFor(text, wanted)];
  if (slot.m_index != 0) return;
  if (text.size() > kShort) {
    m_places.push_back(Store(text));
    wanted.m_word |= m_places.size() - 1;
  }
  wanted.m_index = static_cast<std::uint32_t>(++m_size);
  slot = wanted;
}

/// Keep a copy of \p text.
CFIIndexMap::Place CFIIndexMap::Store(std::string_view text) {
  bool const fits = !m_texts.empty() && m_texts.back().capacity() - m_texts.back().size() >= text.size();
  if (!fits) {
    std::size_t const usual = m_texts.empty() ? kFirstBlock : std::min(2 * m_texts.back().capacity(), kLargestBlock);
    std::string block;
    block.reserve(std::max(usual, text.size()));
    m_texts.push_back(std::move(block));
  }
  std::string& block = m_texts.back();
  Place const place{static_cast<std::uint32_t>(m_texts.size() - 1), static_cast<std::uint32_t>(block.size())};
  block.append(text);
  return place;
}

void CFIIndexMap::MakeQNameKey(std::string_view prefix, std::string_view namespaceUri, std::string_view localName,
                               std::string& key) {
  key.resize(localName.size() + namespaceUri.size() + prefix.size() + 2);
  char* to = key.data();
  auto const put = [&to](std::string_view part) {
    CopyBlocks(to, part, [](std::uint64_t) { return false; });
    to += part.size();
  };
  put(localName);
  *to++ = kKeySeparator;
  put(namespaceUri);
  *to++ = kKeySeparator;
  put(prefix);
}

// Look among recent names first, without building the key or hashing the namespace. Short keys are not among them.
unsigned long CFIIndexMap::FindName(std::string_view prefix, std::string_view namespaceUri,
                                    std::string_view localName) {
  if (m_slots.empty()) return 0;
  if (m_recent.empty()) m_recent.resize(kRecentPlaces);
  // Each hash has two places, so that two names do not evict each other in turn.
  std::uint32_t* const recent = &m_recent[QuickHash(localName) * 2];
  for (std::uint32_t const number : {recent[0], recent[1]}) {
    if (!kRecentNames.IsOn() || number == 0) continue;
    Slot const& slot = m_slots[number - 1];
    if (!IsKeyOf(TextAt(slot), prefix, namespaceUri, localName)) continue;
    kRecentNames.Verify([&] {
      MakeQNameKey(prefix, namespaceUri, localName, m_key);
      return slot.m_index == Find(m_key);
    });
    return slot.m_index;
  }
  MakeQNameKey(prefix, namespaceUri, localName, m_key);
  std::size_t const at = SlotFor(m_key, MakeSlot(m_key));
  Slot const& slot = m_slots[at];
  if (slot.m_index != 0 && m_key.size() > kShort && at < UINT32_MAX) {
    recent[1] = std::exchange(recent[0], static_cast<std::uint32_t>(at + 1));
  }
  return slot.m_index;
}

void CFIIndexMap::Grow() {
  std::vector<Slot> larger(m_slots.empty() ? kFirstSlots : m_slots.size() * 2);
  std::size_t const mask = larger.size() - 1;
  for (Slot const& slot : m_slots) {
    if (slot.m_index == 0) continue;
    std::size_t at = HashOf(slot) & mask;
    while (larger[at].m_index != 0) at = (at + 1) & mask;
    larger[at] = slot;
  }
  m_slots.swap(larger);
  std::fill(m_recent.begin(), m_recent.end(), 0);
}

/// Whether emptying the map takes little time, and keeping its memory little memory.
bool CFIIndexMap::IsSmall() const {
  constexpr std::size_t kMostSlots = 512;
  constexpr std::size_t kMostText = 32 * 1024;
  std::size_t text = m_key.capacity();
  for (std::string const& block : m_texts) text += block.capacity();
  return m_slots.size() <= kMostSlots && text <= kMostText;
}

/// Empty the map and keep its memory, except for all blocks but the last.
void CFIIndexMap::Clear() {
  if (m_size == 0) return;
  m_size = 0;
  std::fill(m_slots.begin(), m_slots.end(), Slot());
  std::fill(m_recent.begin(), m_recent.end(), 0);
  m_places.clear();
  if (m_texts.empty()) return;
  std::swap(m_texts.front(), m_texts.back());
  m_texts.resize(1);
  m_texts.front().clear();
}

/// Remove all entries but the first \p size ones, and give the others new slots, because a search ends at a free one.
void CFIIndexMap::ShrinkTo(std::size_t size) {
  if (m_size <= size) return;
  std::vector<Slot> kept(m_slots.size());
  std::size_t const mask = kept.size() - 1;
  Slot const* lastLong = nullptr;  // the texts are in the order of the entries
  std::size_t longCount = 0;
  for (Slot const& slot : m_slots) {
    if (slot.m_index == 0 || slot.m_index > size) continue;
    if (slot.m_length > kShort) {
      ++longCount;
      if (lastLong == nullptr || slot.m_index > lastLong->m_index) lastLong = &slot;
    }
    std::size_t at = HashOf(slot) & mask;
    while (kept[at].m_index != 0) at = (at + 1) & mask;
    kept[at] = slot;
  }
  ForgetTextsAfter(lastLong, longCount);
  m_slots.swap(kept);
  m_size = size;
  std::fill(m_recent.begin(), m_recent.end(), 0);
}

/// \p last is the slot of the last text that is kept, of \p count; null for none.
void CFIIndexMap::ForgetTextsAfter(Slot const* last, std::size_t count) {
  if (last == nullptr) {
    m_texts.clear();
  } else {
    Place const& place = m_places[last->m_word & kPlaceBits];
    std::size_t const end = place.m_offset + TextAt(*last).size();
    m_texts.resize(place.m_block + std::size_t{1});
    m_texts.back().resize(end);
  }
  m_places.resize(count);
}

// ---- Tables

CFIVocabulary::CFIStringTable::CFIStringTable() = default;
CFIVocabulary::CFIStringTable::CFIStringTable(CFIStringTable const&) = default;
CFIVocabulary::CFIStringTable& CFIVocabulary::CFIStringTable::operator=(CFIStringTable const&) = default;
CFIVocabulary::CFIStringTable::~CFIStringTable() = default;

CFIVocabulary::CFIQNameTable::CFIQNameTable() = default;
CFIVocabulary::CFIQNameTable::CFIQNameTable(CFIQNameTable const&) = default;
CFIVocabulary::CFIQNameTable& CFIVocabulary::CFIQNameTable::operator=(CFIQNameTable const&) = default;
CFIVocabulary::CFIQNameTable::~CFIQNameTable() = default;

// ---- CFIVocabulary

CFIVocabulary::CFIVocabulary() {
  AddPrefixName(FI_DEFAULT_PREFIX);
  AddNamespaceName(FI_DEFAULT_NAMESPACE);
}

CFIVocabulary::CFIVocabulary(CFIVocabulary const& other) = default;
CFIVocabulary& CFIVocabulary::operator=(CFIVocabulary const& other) = default;
CFIVocabulary::~CFIVocabulary() = default;

std::vector<std::string> const& CFIVocabulary::GetRestrictedAlphabets() const {
  static auto const& alphabets =
      *new std::vector<std::string>{RESTRICTED_ALPHABET_VALUES_NUMERIC, RESTRICTED_ALPHABET_VALUES_DATE_TIME};
  return alphabets;
}

void CFIVocabulary::AddValueToMap(std::string_view value, CFIIndexMap& map) {
  if (map.size() < kMaxEntries) map.Insert(value);
}

void CFIVocabulary::AddValueToVector(std::string const& value, std::vector<std::string>& vector) {
  if (vector.size() < kMaxEntries) vector.push_back(value);
}

void CFIVocabulary::AddQNameToVector(unsigned long prefixIndex, unsigned long namespaceIndex, unsigned long localIndex,
                                     std::vector<CQNameParts>& vector) {
  if (vector.size() < kMaxEntries) vector.push_back({prefixIndex, namespaceIndex, localIndex});
}

void CFIVocabulary::AddToTable(std::string const& value, CFIIndexMap& map, CFIStringTable& table) {
  AddValueToMap(value, map);
  AddValueToVector(value, table.GetVector());
}

void CFIVocabulary::AddElementValue(std::string const& value) {
  AddToTable(value, m_characterChunkIndex, m_characterChunks);
}
void CFIVocabulary::AddAttributeValue(std::string const& value) {
  AddToTable(value, m_attributeValueIndex, m_attributeValues);
}
void CFIVocabulary::AddLocalName(std::string const& value) { AddToTable(value, m_localNameIndex, m_localNames); }
void CFIVocabulary::AddNamespaceName(std::string const& value) {
  AddToTable(value, m_namespaceNameIndex, m_namespaceNames);
}
void CFIVocabulary::AddPrefixName(std::string const& value) { AddToTable(value, m_prefixNameIndex, m_prefixNames); }

bool CFIVocabulary::FindIndex(CFIIndexMap const& map, std::string_view value, unsigned long& index) const {
  unsigned long const found = map.Find(value);
  if (found != 0) index = found;
  return found != 0;
}

bool CFIVocabulary::FindLocalNameIndex(std::string const& value, unsigned long& index) const {
  return FindIndex(m_localNameIndex, value, index);
}
bool CFIVocabulary::FindNamespaceNameIndex(std::string const& value, unsigned long& index) const {
  return FindIndex(m_namespaceNameIndex, value, index);
}
bool CFIVocabulary::FindPrefixNameIndex(std::string const& value, unsigned long& index) const {
  return FindIndex(m_prefixNameIndex, value, index);
}

unsigned long CFIVocabulary::FindOrAdd(std::string const& value, CFIIndexMap& map, CFIStringTable& table) {
  if (map.Find(value) == 0) AddToTable(value, map, table);
  return map.Find(value);
}

void CFIVocabulary::AddQName(std::string const& prefix, std::string const& namespaceUri, std::string const& localName,
                             CFIIndexMap& map, std::vector<CQNameParts>& vector) {
  std::string key;
  CFIIndexMap::MakeQNameKey(prefix, namespaceUri, localName, key);
  if (map.Find(key) != 0) return;
  CQNameParts parts;
  if (!prefix.empty()) parts.m_prefix = FindOrAdd(prefix, m_prefixNameIndex, m_prefixNames);
  if (!namespaceUri.empty()) parts.m_namespace = FindOrAdd(namespaceUri, m_namespaceNameIndex, m_namespaceNames);
  parts.m_localName = FindOrAdd(localName, m_localNameIndex, m_localNames);
  // A part that a full table did not accept cannot be referred to, and 0 would mean that the name lacks this part.
  bool const isComplete = (prefix.empty() || parts.m_prefix != 0) && (namespaceUri.empty() || parts.m_namespace != 0) &&
                          parts.m_localName != 0;
  if (!isComplete) return;
  AddValueToMap(key, map);
  AddQNameToVector(parts.m_prefix, parts.m_namespace, parts.m_localName, vector);
}

void CFIVocabulary::AddElement(std::string const& prefix, std::string const& namespaceUri,
                               std::string const& localName) {
  AddQName(prefix, namespaceUri, localName, m_elementNameIndex, m_elementNames.GetVector());
}
void CFIVocabulary::AddAttribute(std::string const& prefix, std::string const& namespaceUri,
                                 std::string const& localName) {
  AddQName(prefix, namespaceUri, localName, m_attributeNameIndex, m_attributeNames.GetVector());
}

}  // namespace Quillon9
