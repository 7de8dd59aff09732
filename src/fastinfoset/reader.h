#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "fastinfoset/infoset_parser.h"
#include "fastinfoset/reader_tables.h"
#include "quillon9/fwd.h"
#include "quillon9/xmlio/document.h"
#include "text/utf8_to_local.h"
#include "xmlio/document_outline.h"

namespace Quillon9 {

/// Recognises a Fast Infoset document (Rec. ITU-T X.891) in a document's input and builds the document's tree from it.
/// A reader lives for one parse, on the stack of the load.
///
/// Constructs that have no place in the tree (all components of the header, the document type, unexpanded entity
/// references, and comments and processing instructions unless the document keeps them) are skipped by their lengths,
/// whatever they contain. A document's own initial vocabulary is among them, so an index can refer only to entries from
/// the context's vocabulary or from the document itself.
class CFastInfosetReader : private InfosetParser {
 public:
  /// Both arguments are kept by reference. \p document must not have a tree yet.
  CFastInfosetReader(CFastInfosetContext const& options, CXmlDocument& document);
  virtual ~CFastInfosetReader();
  CFastInfosetReader(CFastInfosetReader const&) = delete;
  CFastInfosetReader& operator=(CFastInfosetReader const&) = delete;

  /// Read the document, unless the input is in another format.
  /// \returns false, with the document unchanged, if the input does not begin with the header of version 1 and one more
  ///          octet, optionally preceded by one of the nine declarations of the encoding `finf`.
  /// \throws CQnException "Failed to parse FastInfoset. [reason]" for malformed input; what an encoding algorithm
  ///         throws for its octets; "The element nesting exceeds the limit of %u levels" beyond
  ///         CLimits::GetMaxElementDepth(); CQnUtf16Exception for a string in UTF-16. The elements read so far stay.
  bool Parse();
  /// Parse(), and add the elements to \p outline with the offset of the octet on which each begins and ends. Elements
  /// that are open at a failure stay so.
  /// \returns, \throws as Parse() does.
  bool ParseWithOutline(DocumentOutline& outline);
  using InfosetParser::GetOffset;
  /// After ParseWithOutline(): the name of an attribute as the document spells it.
  std::string GetSpelledAttribute(CXmlName const& name);

 private:
  // Comments, processing instructions and the like, defined in reader_markup.cpp.
  void ProcessingInstruction() override;
  void Comment() override;
  void PassOtherName() override { OtherName(); }
  void PassOtherString() override { OtherString(); }
  std::string OtherName();
  std::string OtherString();

  // Structure.
  void StartTables();
  void ElementBit2(std::uint32_t octet) override;
  bool ReadTextElement(CXmlElement& parent, CXmlName const& name);
  void StartElement(std::uint32_t octet);
  void ReadContent(CXmlElement* element, std::uint32_t octet);
  void ReadCharacterChunk(CXmlElement* element, std::uint32_t octet);
  void AppendText(CXmlElement* element, std::string_view text);
  void NamespaceAttributes();
  void NamespaceAttributeBit7(std::uint32_t octet);
  void Attributes(CXmlElement* element);
  void AtrributeBit2(CXmlElement* element, std::uint32_t octet);

  // The outline, defined in reader_outline.cpp.
  using Spellings = std::map<std::pair<std::string, std::string>, std::string>;
  void OutlineElement(std::uint32_t octet);
  void FollowStart(std::size_t open, std::size_t at);
  void FollowEnds(std::size_t& open, std::size_t at);
  void Learn(ReadNames const& table, std::size_t& known, Spellings& spellings);
  static std::string Spelled(Spellings const& spellings, CXmlName const& name);

  // Names and strings.
  CXmlName const* AttributeNameBit2(std::uint32_t octet);
  CXmlName const* ElementNameBit3(std::uint32_t octet);
  CXmlName const* NameInTable(ReadNames& table, std::uint32_t index);
  CXmlName const* SharedName(ReadName const& name);
  bool HasPrefixToNote(ReadName const& name, ReadNames const& table) const;
  void NotePrefix(ReadName const& name);
  CXmlName const* ReadQName(std::uint32_t octet, ReadNames& table);
  void SetNoted(ReadName& name, ReadNames const& table);
  std::uint32_t IdentifyingStringOrIndex(ReadStrings& table);
  std::string_view NonIdentifyingStringOrIndexBit1(ReadStrings& table);
  std::string_view AddToTable(std::string_view text, ReadStrings& table);
  std::string_view Local(std::string_view utf8);
  EncodedString EncodedCharacterStringBit3(std::uint32_t octet) { return WithOctets(HeadBit3(octet)); }
  EncodedString EncodedCharacterStringBit5(std::uint32_t octet) { return WithOctets(HeadBit5(octet)); }
  EncodedString WithOctets(EncodedString string) {
    string.m_octets = m_source.Move(string.m_length);
    return string;
  }
  void CheckLeastTextSize(EncodedString const& source) const;
  void Decode(EncodedString const& source, std::string& target) const;

  CFastInfosetContext const& m_options;
  CXmlDocument& m_document;
  CUtf8ToLocal const m_toLocal;
  ReadStrings m_prefixes;
  ReadStrings m_namespaces;
  ReadStrings m_localNames;
  ReadStrings m_chunks;
  ReadStrings m_attributeValues;
  ReadNames m_elementNames;
  ReadNames m_attributeNames;
  /// The names of elements without attributes that take one octet: an octet below the size of this table has the index of
  /// its entry, counted from 0. Null until the name in m_elementNames is noted.
  std::array<CXmlName const*, 0x20> m_firstNames{};
  /// Text that is not in the input as it is.
  std::string m_text;
  std::uint32_t m_maxDepth = 0;
  bool const m_keepsMarkup;
  ReadStrings m_otherNames;
  ReadStrings m_otherStrings;
  DocumentOutline* m_outline = nullptr;
  /// The spelling of names, by namespace and local name, and the number of entries of the table that it has.
  ///@{
  Spellings m_elementSpellings;
  std::size_t m_knownElements = 0;
  ///@}
};

}  // namespace Quillon9
