#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "infoset_octets.h"

namespace Quillon9Tool {

/// The tables of a Fast Infoset document (Rec. ITU-T X.891, 8), in the order of its initial vocabulary.
enum class Table : std::uint8_t {
  RestrictedAlphabets,
  EncodingAlgorithms,
  Prefixes,
  NamespaceNames,
  LocalNames,
  OtherNcNames,
  OtherUris,
  AttributeValues,
  Texts,
  OtherStrings,
  ElementNames,
  AttributeNames,
  None,
};
inline constexpr std::size_t kTables = static_cast<std::size_t>(Table::None);

/// How the octets of a string are encoded.
enum class Encoding : std::uint8_t { Utf8, Utf16, Alphabet, Algorithm };

/// A string as encoded in the document.
struct EncodedString {
  Encoding encoding = Encoding::Utf8;
  std::uint32_t number = 0;  ///< of the alphabet or the algorithm
  std::string_view octets;
};

/// The kind of a part of a document.
enum class What : std::uint8_t {
  Declaration,
  Header,
  Components,
  ItemCount,
  AdditionalDataId,
  AdditionalData,
  VocabularyComponents,
  ExternalVocabulary,
  VocabularyEntry,
  Notation,
  UnparsedEntity,
  EncodingScheme,
  Standalone,
  Version,
  Element,
  ElementName,
  NamespaceAttribute,
  Attribute,
  Prefix,
  NamespaceName,
  LocalName,
  AttributeValue,
  Text,
  Comment,
  ProcessingInstruction,
  DocumentType,
  EntityReference,
  Target,
  Name,
  NotationName,
  SystemId,
  PublicId,
  String,
  EndOfList,
  EndOfAttributes,
  EndOfAttributesAndElement,
  EndOfElement,
  EndOfTwoElements,
  EndOfElementAndDocument,
  EndOfDocument,
  AfterDocument,
};

/// The category in which the octets of a part are counted.
enum class Group : std::uint8_t {
  Header,
  Vocabulary,
  Marks,
  NamesInFull,
  NamesByIndex,
  ValuesInFull,
  ValuesByIndex,
  TextInFull,
  TextByIndex,
  Other,
};
inline constexpr std::size_t kGroups = static_cast<std::size_t>(Group::Other) + 1;

/// Adjacent octets of a document that belong together. Each octet is in exactly one part.
struct Part {
  What what;
  Group group;
  std::size_t offset = 0;
  std::size_t size = 0;
  std::size_t level = 0;                ///< how many constructs enclose it
  std::uint32_t octet = 0;              ///< of a part that begins a construct: the first one, with its flags
  std::uint64_t count = 0;              ///< of an ItemCount
  std::optional<EncodedString> string;  ///< if spelled out here
  Table table = Table::None;            ///< for a string or item, or for the entry that the index refers to
  bool isIndex = false;                 ///< refers to a table instead of being spelled out
  std::uint32_t index = 0;              ///< the index it refers to
  std::uint32_t entry = 0;              ///< its index in the table; 0 if it enters none
  Table nameTable = Table::None;        ///< the table that the name ending with this part enters
  std::uint32_t nameEntry = 0;          ///< and its index
  std::ptrdiff_t saved = 0;             ///< octets saved compared with spelling it out
};

/// Splits a Fast Infoset document (Rec. ITU-T X.891) into parts, from the first octet to the last, and builds its
/// tables. It takes constant stack and, apart from the tables, constant memory for any document.
class InfosetParser {
 public:
  using Sink = std::function<void(Part const&)>;

  struct StringEntry {
    EncodedString string;
    std::size_t cost;  ///< octets that it takes spelled out
  };
  /// A name as indices; 0 stands for an absent part.
  struct NameEntry {
    std::uint32_t prefix = 0;
    std::uint32_t namespaceName = 0;
    std::uint32_t localName = 0;
    std::size_t cost = 0;
  };

  /// \p octets are borrowed and \p sink is kept; it gets the parts in their order.
  InfosetParser(std::string_view octets, Sink sink);

  /// Return whether \p octets begin like a Fast Infoset document.
  static bool Recognises(std::string_view octets);
  /// \throws InfosetError if they are malformed; the parts before GetPosition() have already gone to the sink.
  void Parse();
  /// Return the offset of the part that is being read.
  std::size_t GetPosition() const { return m_partBegin; }

  /// Return the known entries of a table; the first one has the index FirstIndex().
  std::vector<StringEntry> const& GetStrings(Table table) const { return m_strings[static_cast<std::size_t>(table)]; }
  std::vector<NameEntry> const& GetNames(Table table) const {
    return table == Table::ElementNames ? m_elementNames : m_attributeNames;
  }
  static std::uint32_t FirstIndex(Table table);
  /// Return the entry at \p index, or null if it is not in the document.
  StringEntry const* FindString(Table table, std::uint32_t index) const;
  NameEntry const* FindName(Table table, std::uint32_t index) const;
  /// Whether the document begins with its own vocabulary, and the URI of an external one. With an external vocabulary,
  /// the contents of the tables are not known.
  bool HasVocabulary() const { return m_hasVocabulary; }
  std::optional<std::string_view> GetExternalVocabulary() const { return m_externalVocabulary; }

 private:
  // The header.
  void Header();
  void AdditionalData();
  void InitialVocabulary();
  void VocabularyItem(Table table);
  void NameSurrogate(Table table);
  void Notations();
  void UnparsedEntities();

  // The parts of a document and its elements.
  void Content();
  void Child(std::uint32_t octet);
  bool End(bool isDouble);
  void StartElement(std::uint32_t octet);
  void NamespaceAttributes();
  void Attributes();
  void Text(std::uint32_t octet);
  void Comment();
  void ProcessingInstruction();
  void DocumentType(std::uint32_t octet);
  void ExternalIds(std::uint32_t octet, std::size_t level);

  // Names and strings.
  void QName(Part part, std::uint32_t isLiteral, Number indexForm);
  std::uint32_t Identifying(Part part);
  std::uint32_t ReadIdentifying(Part& part);
  void NonIdentifying(Part part);
  EncodedString EncodedBit3(std::uint32_t octet);
  EncodedString EncodedBit5(std::uint32_t octet);
  EncodedString Counted();

  void Emit(Part part);
  void EmitMark(What what, Group group, std::size_t level, std::uint32_t octet = 0);
  void SetIndex(Part& part, std::uint64_t index) const;
  void Enter(Part& part);
  void EnterName(Part& part, Table table, NameEntry name);
  std::size_t CostOf(Table table, std::uint32_t index) const;

  InfosetOctets m_octets;
  Sink m_sink;
  std::array<std::vector<StringEntry>, kTables> m_strings;
  std::vector<NameEntry> m_elementNames;
  std::vector<NameEntry> m_attributeNames;
  std::optional<std::string_view> m_externalVocabulary;
  bool m_hasVocabulary = false;
  bool m_hasElement = false;
  std::size_t m_openElements = 0;
  std::size_t m_partBegin = 0;
};

}  // namespace Quillon9Tool
