#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/fwd.h"
#include "records/infoset_octets.h"
#include "records/infoset_tables.h"

namespace Quillon9 {

/// An identifying string as an item of the document has it: an entry of a table, or, with index 0, its octets with their
/// head. Neither if it is absent.
struct InfosetText {
  std::uint32_t index = 0;
  std::string_view octets;

  bool IsThere() const { return index != 0 || !octets.empty(); }
};

/// A qualified name in the same way. Its parts are set if the index is 0.
struct InfosetQName {
  std::uint32_t index = 0;
  InfosetText prefix;
  InfosetText namespaceName;
  InfosetText localName;
};

/// The tables of a document, and parts of it that are written as documents with tables of their own: what a part
/// repeats from in front of it is spelled out where it is first needed.
class InfosetCopy {
 public:
  /// How many entries of each table a spelled start tag adds.
  struct Additions {
    std::size_t prefixes = 0;
    std::size_t namespaces = 0;
    std::size_t localNames = 0;
    std::size_t elementNames = 0;
    std::size_t attributeNames = 0;
  };
  /// A place in the copy to which it can return.
  struct Mark {
    std::size_t size;
    std::array<std::size_t, 9> tables;
  };

  /// Begin with the tables that readers under \p options begin with. They are borrowed.
  explicit InfosetCopy(CFastInfosetContext const& options);

  /// \name The document
  /// @{
  InfosetStrings prefixes;
  InfosetStrings namespaces;
  InfosetStrings localNames;
  InfosetStrings chunks;
  InfosetStrings values;
  InfosetStrings otherNames;
  InfosetStrings otherStrings;
  InfosetNames elementNames;
  InfosetNames attributeNames;

  /// Add a string to its table, and return the index.
  /// \throws CQnException "The tables of the document exceed the limit of %llu bytes" beyond
  ///         CLimits::GetMaxContentSize().
  std::uint32_t Add(InfosetStrings& table, std::string_view octets);
  std::uint32_t Add(InfosetNames& table, InfosetName const& name);
  /// The same, before the octets are there.
  void CheckRoom(std::uint64_t octets) const;
  /// The text of an identifying string; empty if it is absent.
  static std::string_view TextOf(InfosetStrings const& table, InfosetText const& text);
  /// The parts of a name.
  InfosetQName Parts(InfosetNames const& table, InfosetQName const& name) const;
  /// @}

  /// \name The copy
  /// @{
  /// What is written from now on goes to the end of \p to, with the tables as they are.
  void WriteTo(std::string& to) { m_to = &to; }
  /// What is written goes there, with all strings spelled out, so that it can be put into any copy.
  void SpellTo(std::string& to);
  /// Nothing is written from now on.
  void Pause() {
    m_to = nullptr;
    m_isSpelling = false;
  }
  bool IsWriting() const { return m_to != nullptr; }
  /// How large it is where something is written.
  std::size_t GetSize() const { return m_to->size(); }
  /// What has been added since SpellTo().
  Additions const& GetSpelled() const { return m_spelled; }
  /// Begin a document at \p to with new tables.
  void Begin(std::string& to);
  /// Append what was spelled.
  void PutSpelled(std::string& to, std::string const& spelled, Additions const& additions);
  Mark GetMark() const;
  /// Drop what was written to \p to since then.
  void Return(std::string& to, Mark const& mark);

  // Parts of the document. They do nothing unless something is written.
  void Put(std::uint32_t octet) {
    if (m_to != nullptr) InfosetOctets::Put(*m_to, octet);
  }
  void Put(std::string_view octets) {
    if (m_to != nullptr) m_to->append(octets);
  }
  void ElementName(std::uint32_t leading, InfosetQName const& name);
  void AttributeName(InfosetQName const& name);
  void IdentifyingString(InfosetStrings& table, InfosetText const& text);
  /// An entry of the table of chunks, values or other strings.
  void Chunk(std::uint32_t index);
  void Value(InfosetStrings& table, std::uint32_t index);
  /// A string that is spelled in the document. \p addBit is the bit that says that it enters the table, and set in its
  /// octets if \p index is not 0.
  void Literal(InfosetStrings& table, std::string_view octets, std::uint32_t addBit, std::uint32_t index);
  /// @}

 private:
  std::uint32_t Known(InfosetStrings const& table, std::uint32_t index) const;
  void Name(InfosetNames& table, std::uint32_t leading, InfosetQName const& name);
  void CountSpelled(void const* table);

  OctetArena m_arena;
  std::uint64_t m_size = 0;
  std::uint64_t m_mostSize;
  std::string* m_to = nullptr;
  bool m_isSpelling = false;
  Additions m_spelled;
};

}  // namespace Quillon9
