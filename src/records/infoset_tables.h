#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <deque>
#include <forward_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fastinfoset/reader_tables.h"

namespace Quillon9 {

/// Keeps the octets of strings at fixed places.
class OctetArena {
 public:
  std::string_view Keep(std::string_view octets) {
    if (octets.size() > m_left) Begin(octets.size());
    char* const kept = m_next;
    std::memcpy(kept, octets.data(), octets.size());
    m_next += octets.size();
    m_left -= octets.size();
    return {kept, octets.size()};
  }

 private:
  void Begin(std::size_t least) {
    constexpr std::size_t kBlock = 0x10000;
    m_left = least > kBlock ? least : kBlock;
    m_blocks.push_front(std::make_unique<char[]>(m_left));
    m_next = m_blocks.front().get();
  }

  std::forward_list<std::unique_ptr<char[]>> m_blocks;
  char* m_next = nullptr;
  std::size_t m_left = 0;
};

/// A string in a table: its octets with their head, as they are spelled in a document; without a head in a vocabulary.
struct InfosetString {
  char const* octets;
  std::uint32_t size;
  std::uint32_t copy = 0;

  std::string_view View() const { return {octets, size}; }
};

/// A qualified name in a table: the indices of its parts; 0 stands for an absent one.
struct InfosetName {
  std::uint32_t prefix;
  std::uint32_t namespaceName;
  std::uint32_t localName;
  std::uint32_t copy = 0;
};

/// A table of a document that is copied in parts, and the table that a reader of the present part has. Indices count
/// from 1. The first entries come from a vocabulary and are the same in both.
template <class Entry>
class InfosetTable {
 public:
  std::size_t GetSize() const { return m_entries.size(); }
  bool IsShared(std::uint32_t index) const { return index <= m_shared; }
  /// \throws CQnException as ThrowBeyondTable().
  Entry const& At(std::uint64_t index) const {
    if (index - 1 >= m_entries.size()) ThrowBeyondTable();
    return m_entries[index - 1];
  }
  /// Returns the index.
  std::uint32_t Add(Entry const& entry) {
    m_entries.push_back(entry);
    return static_cast<std::uint32_t>(m_entries.size());
  }
  void AddShared(Entry const& entry) { m_shared = Add(entry); }

  /// \name The copy
  /// @{
  /// The index that an entry of the document has there; 0 if it is not there.
  std::uint32_t InCopy(std::uint32_t index) const {
    if (index <= m_shared) return index;
    std::uint32_t const copy = m_entries[index - 1].copy;
    return copy < m_copied.size() && m_copied[copy] == index ? m_shared + copy + 1 : 0;
  }
  /// Add this entry, or one that is not in the table of the document if \p index is 0.
  void AddToCopy(std::uint32_t index) {
    if (index != 0) m_entries[index - 1].copy = static_cast<std::uint32_t>(m_copied.size());
    m_copied.push_back(index);
  }
  std::size_t GetCopySize() const { return m_shared + m_copied.size(); }
  /// Return to that size, which is at least the number of shared entries.
  void CutCopy(std::size_t size) { m_copied.resize(size - m_shared); }
  void BeginCopy() { m_copied.clear(); }
  /// @}

 private:
  std::deque<Entry> m_entries;
  std::uint32_t m_shared = 0;
  std::vector<std::uint32_t> m_copied;  // the indices in the document; an entry knows its place here
};

using InfosetStrings = InfosetTable<InfosetString>;
using InfosetNames = InfosetTable<InfosetName>;

}  // namespace Quillon9
