#pragma once

#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "quillon9/fastinfoset/vocabulary.h"
#include "quillon9/xmlio/element.h"

namespace Quillon9 {

/// Fail because an index refers to no entry.
/// \throws CQnException "Failed to parse FastInfoset. Invalid Index beyond its table."
[[noreturn]] void ThrowBeyondTable();

/// A table of one document that is read. Its first entries may come from a vocabulary.
template <class Entry>
class ReadTable {
 public:
  std::size_t GetSize() const { return m_entries.size(); }
  /// The entry with this index, which counts from 1.
  /// \throws CQnException as ThrowBeyondTable().
  ///@{
  Entry& At(std::uint64_t index) {
    if (index - 1 >= m_entries.size()) ThrowBeyondTable();
    return m_entries[index - 1];
  }
  Entry const& At(std::uint64_t index) const { return const_cast<ReadTable&>(*this).At(index); }
  ///@}
  /// The position of \p entry, counted from 0; that behind the table for another entry.
  std::size_t IndexOf(Entry const& entry) const {
    std::less<> const isBelow;
    bool const isInside = !isBelow(&entry, m_entries.data()) && isBelow(&entry, m_entries.data() + m_entries.size());
    return isInside ? static_cast<std::size_t>(&entry - m_entries.data()) : m_entries.size();
  }
  void Reserve(std::size_t count) { m_entries.reserve(count); }
  Entry& Add(Entry const& entry) {
    if (m_entries.capacity() == 0) m_entries.reserve(kFirstEntries);
    return m_entries.emplace_back(entry);
  }

 private:
  static constexpr std::size_t kFirstEntries = 16;

  std::vector<Entry> m_entries;
};

/// A text in a table, which refers to its bytes elsewhere.
class ReadText {
 public:
  /// \p isPlain is whether \p text is known to be ASCII without zeros and carriage returns.
  ReadText(std::string_view text, bool isPlain) : m_text(text.data()), m_sizeAndKind(text.size() << 1 | isPlain) {}

  std::string_view GetView() const { return {m_text, m_sizeAndKind >> 1}; }
  bool IsPlain() const { return (m_sizeAndKind & 1) != 0; }

 private:
  char const* m_text;
  std::size_t m_sizeAndKind;
};

/// A table of strings. Most of them are parts of the input, so that an entry takes 16 bytes.
class ReadStrings : public ReadTable<ReadText> {
 public:
  /// Begin with \p strings, which are borrowed.
  void Begin(std::vector<std::string> const& strings) {
    Reserve(strings.size());
    for (std::string const& string : strings) AddBorrowed(string);
  }
  void AddBorrowed(std::string_view text, bool isPlain = false) { Add({text, isPlain}); }
  /// Add a text that is nowhere else, and return where it is from now on.
  std::string_view AddOwned(std::string text) {
    std::string const& owned = m_owned.emplace_front(std::move(text));
    AddBorrowed(owned);
    return owned;
  }

 private:
  std::forward_list<std::string> m_owned;
};

/// A qualified name in a table.
struct ReadName {
  explicit ReadName(CFIVocabulary::CQNameParts const& parts)
      : prefix(Index(parts.m_prefix)), namespaceName(Index(parts.m_namespace)), localName(Index(parts.m_localName)) {}
  ReadName(std::uint32_t itsPrefix, std::uint32_t itsNamespace, std::uint32_t itsLocalName)
      : prefix(itsPrefix), namespaceName(itsNamespace), localName(itsLocalName) {}

  CXmlName const* shared = nullptr;  ///< the name in the tree; null until the document has used this entry
  /// The indices of its parts; 0 stands for an absent one.
  ///@{
  std::uint32_t prefix;
  std::uint32_t namespaceName;
  std::uint32_t localName;
  ///@}
  bool isNoted = false;  ///< \p shared is set, and the document knows the prefix as far as it has to

 private:
  /// No table has so many entries that this makes an index valid.
  static std::uint32_t Index(unsigned long index) {
    return index < UINT32_MAX ? static_cast<std::uint32_t>(index) : UINT32_MAX;
  }
};

/// A table of names.
class ReadNames : public ReadTable<ReadName> {
 public:
  void Begin(std::vector<CFIVocabulary::CQNameParts> const& names) {
    Reserve(names.size());
    for (CFIVocabulary::CQNameParts const& parts : names) Add(ReadName(parts));
  }
};

}  // namespace Quillon9
