#include "infoset_parser.h"

#include <string>
#include <utility>

namespace Quillon9Tool {

namespace {

constexpr std::string_view kHeader("\xE0\x00\x00\x01", 4);
constexpr std::string_view kDeclarationStart = "<?xml ";
constexpr std::string_view kDeclarationEnd = "?>";
constexpr std::size_t kLongestDeclaration = 64;

constexpr std::uint32_t kTerminator = 0xF0;
constexpr std::uint32_t kDoubleTerminator = 0xFF;
constexpr std::uint32_t kProcessingInstruction = 0xE1;
constexpr std::uint32_t kComment = 0xE2;
constexpr std::uint32_t kText = 0x80;
constexpr std::uint32_t kBehindText = 0xC0;
// For constructs that begin with the top six bits; the others are flags.
constexpr std::uint32_t kTopSixBits = 0xFC;
constexpr std::uint32_t kNotation = 0xC0;
constexpr std::uint32_t kDocumentType = 0xC4;
constexpr std::uint32_t kEntityReference = 0xC8;
constexpr std::uint32_t kNamespaceAttribute = 0xCC;
constexpr std::uint32_t kUnparsedEntity = 0xD0;
constexpr std::uint32_t kTopSevenBits = 0xFE;

constexpr std::uint32_t kHasAttributes = 0x40;
constexpr std::uint32_t kElementNameBits = 0x3C;
constexpr std::uint32_t kNamespaceAttributesFirst = 0x38;
constexpr std::uint32_t kAttributeNameBits = 0x78;
constexpr std::uint32_t kFirstFlag = 0x02;  // a prefix, or a system identifier
constexpr std::uint32_t kSecondFlag = 0x01;
constexpr std::uint32_t kEmptyString = 0xFF;
constexpr std::uint32_t kHasExternalVocabulary = 0x1000;

/// Return the octets of a declaration with the encoding `finf` in front of the header; nothing if there is none.
std::size_t DeclarationSize(std::string_view octets) {
  octets = octets.substr(0, kLongestDeclaration);
  if (octets.substr(0, kDeclarationStart.size()) != kDeclarationStart) return 0;
  std::size_t const end = octets.find(kDeclarationEnd);
  if (end == std::string_view::npos || octets.substr(0, end).find("encoding='finf'") == std::string_view::npos)
    return 0;
  return end + kDeclarationEnd.size();
}

Part MakePart(What what, Group group, std::size_t level, Table table = Table::None) {
  Part part{};
  part.what = what;
  part.group = group;
  part.level = level;
  part.table = table;
  return part;
}

/// Return the group of a part of strings and names, which depends on whether it is an index.
Group ByIndex(Group group) {
  switch (group) {
    case Group::NamesInFull: return Group::NamesByIndex;
    case Group::ValuesInFull: return Group::ValuesByIndex;
    case Group::TextInFull: return Group::TextByIndex;
    case Group::Header:
    case Group::Vocabulary:
    case Group::Marks:
    case Group::NamesByIndex:
    case Group::ValuesByIndex:
    case Group::TextByIndex:
    case Group::Other: break;
  }
  return group;
}

}  // namespace

InfosetParser::InfosetParser(std::string_view octets, Sink sink) : m_octets(octets), m_sink(std::move(sink)) {
  auto const builtIn = [this](Table table, std::string_view text) {
    m_strings[static_cast<std::size_t>(table)].push_back(
        {{Encoding::Utf8, 0, text}, InfosetOctets::SizeWithLength2(text.size())});
  };
  builtIn(Table::Prefixes, "xml");
  builtIn(Table::NamespaceNames, "http://www.w3.org/XML/1998/namespace");
}

bool InfosetParser::Recognises(std::string_view octets) {
  return octets.substr(DeclarationSize(octets), kHeader.size()) == kHeader;
}

void InfosetParser::Parse() {
  Header();
  Content();
  if (m_octets.GetLeft() == 0) return;
  m_octets.Take(m_octets.GetLeft());
  EmitMark(What::AfterDocument, Group::Other, 0);
}

// ---- The header

void InfosetParser::Header() {
  if (std::size_t const size = DeclarationSize(m_octets.GetRest()); size != 0) {
    Part part = MakePart(What::Declaration, Group::Header, 0);
    part.string = EncodedString{Encoding::Utf8, 0, m_octets.Take(size)};
    Emit(part);
  }
  if (m_octets.GetRest().substr(0, kHeader.size()) != kHeader)
    throw InfosetError("this is no Fast Infoset of version 1");
  m_octets.Take(kHeader.size());
  EmitMark(What::Header, Group::Header, 0);
  std::uint32_t const components = m_octets.Next();
  EmitMark(What::Components, Group::Header, 0, components);
  if ((components & 0x40) != 0) AdditionalData();
  if ((components & 0x20) != 0) InitialVocabulary();
  if ((components & 0x10) != 0) Notations();
  if ((components & 0x08) != 0) UnparsedEntities();
  if ((components & 0x04) != 0) {
    Part part = MakePart(What::EncodingScheme, Group::Header, 1);
    part.string = Counted();
    Emit(part);
  }
  if ((components & 0x02) != 0) EmitMark(What::Standalone, Group::Header, 1, m_octets.Next());
  if ((components & 0x01) != 0) NonIdentifying(MakePart(What::Version, Group::Header, 1, Table::OtherStrings));
}

void InfosetParser::AdditionalData() {
  Part part = MakePart(What::ItemCount, Group::Header, 1);
  part.count = m_octets.Read(Number::Items, m_octets.Next());
  Emit(part);
  for (std::uint64_t left = part.count; left > 0; --left) {
    for (What const what : {What::AdditionalDataId, What::AdditionalData}) {
      Part item = MakePart(what, Group::Header, 2);
      item.string = Counted();
      Emit(item);
    }
  }
}

void InfosetParser::InitialVocabulary() {
  m_hasVocabulary = true;
  std::uint32_t const first = m_octets.Next();
  std::uint32_t const components = first << 8 | m_octets.Next();
  EmitMark(What::VocabularyComponents, Group::Vocabulary, 1, components);
  if ((components & kHasExternalVocabulary) != 0) {
    Part part = MakePart(What::ExternalVocabulary, Group::Vocabulary, 2);
    part.string = Counted();
    m_externalVocabulary = part.string->octets;
    Emit(part);
  }
  std::uint32_t bit = kHasExternalVocabulary;
  for (std::size_t table = 0; table < kTables; ++table) {
    bit >>= 1;
    if ((components & bit) == 0) continue;
    Part part = MakePart(What::ItemCount, Group::Vocabulary, 2, static_cast<Table>(table));
    part.count = m_octets.Read(Number::Items, m_octets.Next());
    Emit(part);
    for (std::uint64_t left = part.count; left > 0; --left) VocabularyItem(part.table);
  }
}

void InfosetParser::VocabularyItem(Table table) {
  if (table == Table::ElementNames || table == Table::AttributeNames) return NameSurrogate(table);
  Part part = MakePart(What::VocabularyEntry, Group::Vocabulary, 3, table);
  bool const isEncoded = table == Table::AttributeValues || table == Table::Texts || table == Table::OtherStrings;
  part.string = isEncoded ? EncodedBit3(m_octets.Next()) : Counted();
  Enter(part);
  Emit(part);
}

void InfosetParser::NameSurrogate(Table table) {
  std::uint32_t const flags = m_octets.Next();
  auto const index = [this](Table strings) {
    Part part{};
    part.table = strings;
    SetIndex(part, m_octets.Read(Number::Index2, m_octets.Next()));
    return part.index;
  };
  NameEntry name;
  if ((flags & kFirstFlag) != 0) name.prefix = index(Table::Prefixes);
  if ((flags & kSecondFlag) != 0) name.namespaceName = index(Table::NamespaceNames);
  name.localName = index(Table::LocalNames);
  Part part = MakePart(What::VocabularyEntry, Group::Vocabulary, 3);
  EnterName(part, table, name);
  Emit(part);
}

void InfosetParser::Notations() {
  std::uint32_t octet = m_octets.Next();
  for (; (octet & kTopSixBits) == kNotation; octet = m_octets.Next()) {
    EmitMark(What::Notation, Group::Other, 1, octet);
    Identifying(MakePart(What::Name, Group::Other, 2, Table::OtherNcNames));
    ExternalIds(octet, 2);
  }
  if (octet != kTerminator) throw InfosetError("this is neither a notation nor the end of them");
  EmitMark(What::EndOfList, Group::Other, 1);
}

void InfosetParser::UnparsedEntities() {
  std::uint32_t octet = m_octets.Next();
  for (; (octet & kTopSevenBits) == kUnparsedEntity; octet = m_octets.Next()) {
    EmitMark(What::UnparsedEntity, Group::Other, 1, octet);
    Identifying(MakePart(What::Name, Group::Other, 2, Table::OtherNcNames));
    ExternalIds(octet | kFirstFlag, 2);
    Identifying(MakePart(What::NotationName, Group::Other, 2, Table::OtherNcNames));
  }
  if (octet != kTerminator) throw InfosetError("this is neither an unparsed entity nor the end of them");
  EmitMark(What::EndOfList, Group::Other, 1);
}

// ---- What a document and its elements are made of

// One loop for the document and all elements, because the document determines the depth of the nesting.
void InfosetParser::Content() {
  for (;;) {
    bool const mayEnd = m_hasElement && m_openElements == 0;
    if (mayEnd && m_octets.GetLeft() == 0) return;  // readers tolerate a missing last terminator
    std::uint32_t const octet = m_octets.Next();
    if (octet != kTerminator && octet != kDoubleTerminator) {
      Child(octet);
    } else if (End(octet == kDoubleTerminator)) {
      break;
    }
  }
  if (!m_hasElement) throw InfosetError("the document has no element");
}

void InfosetParser::Child(std::uint32_t octet) {
  bool const isInside = m_openElements > 0;
  if (octet < kText) {
    if (!isInside && m_hasElement) throw InfosetError("the document has a second document element");
    StartElement(octet);
  } else if (octet < kBehindText && isInside) {
    Text(octet);
  } else if (octet == kProcessingInstruction) {
    ProcessingInstruction();
  } else if (octet == kComment) {
    Comment();
  } else if ((octet & kTopSixBits) == kDocumentType && !m_hasElement) {
    DocumentType(octet);
  } else if ((octet & kTopSixBits) == kEntityReference && isInside) {
    EmitMark(What::EntityReference, Group::Other, m_openElements, octet);
    Identifying(MakePart(What::Name, Group::Other, m_openElements + 1, Table::OtherNcNames));
    ExternalIds(octet, m_openElements + 1);
  } else {
    throw InfosetError("this begins nothing that may stand here");
  }
}

/// Return whether the document ends, too.
bool InfosetParser::End(bool isDouble) {
  if (m_openElements == 0) {
    EmitMark(What::EndOfDocument, Group::Marks, 0);
    return true;
  }
  --m_openElements;
  if (!isDouble) {
    EmitMark(What::EndOfElement, Group::Marks, m_openElements);
    return false;
  }
  if (m_openElements == 0) {
    EmitMark(What::EndOfElementAndDocument, Group::Marks, 0);
    return true;
  }
  --m_openElements;
  EmitMark(What::EndOfTwoElements, Group::Marks, m_openElements);
  return false;
}

void InfosetParser::StartElement(std::uint32_t octet) {
  m_hasElement = true;
  bool const hasAttributes = (octet & kHasAttributes) != 0;
  Part name = MakePart(What::Element, Group::NamesInFull, m_openElements++, Table::ElementNames);
  if ((octet & kElementNameBits) == kNamespaceAttributesFirst) {
    EmitMark(What::Element, Group::Marks, name.level, octet);
    NamespaceAttributes();
    octet = m_octets.Next();
    name.what = What::ElementName;
    ++name.level;
  }
  name.octet = octet;
  QName(name, kElementNameBits, Number::Index3);
  if (hasAttributes) Attributes();
}

void InfosetParser::NamespaceAttributes() {
  std::uint32_t octet = m_octets.Next();
  for (; (octet & kTopSixBits) == kNamespaceAttribute; octet = m_octets.Next()) {
    EmitMark(What::NamespaceAttribute, Group::Marks, m_openElements, octet);
    std::size_t const level = m_openElements + 1;
    if ((octet & kFirstFlag) != 0) Identifying(MakePart(What::Prefix, Group::NamesInFull, level, Table::Prefixes));
    if ((octet & kSecondFlag) != 0) {
      Identifying(MakePart(What::NamespaceName, Group::NamesInFull, level, Table::NamespaceNames));
    }
  }
  if (octet != kTerminator) throw InfosetError("this is neither a namespace attribute nor the end of them");
  EmitMark(What::EndOfList, Group::Marks, m_openElements);
}

void InfosetParser::Attributes() {
  std::uint32_t octet = m_octets.Next();
  for (; octet < kText; octet = m_octets.Next()) {
    Part name = MakePart(What::Attribute, Group::NamesInFull, m_openElements, Table::AttributeNames);
    name.octet = octet;
    QName(name, kAttributeNameBits, Number::Index2);
    NonIdentifying(MakePart(What::AttributeValue, Group::ValuesInFull, m_openElements + 1, Table::AttributeValues));
  }
  if (octet == kTerminator) {
    EmitMark(What::EndOfAttributes, Group::Marks, m_openElements);
  } else if (octet == kDoubleTerminator) {
    EmitMark(What::EndOfAttributesAndElement, Group::Marks, --m_openElements);
  } else {
    throw InfosetError("this is neither an attribute nor the end of them");
  }
}

void InfosetParser::Text(std::uint32_t octet) {
  Part part = MakePart(What::Text, Group::TextInFull, m_openElements, Table::Texts);
  if ((octet & 0x20) != 0) {
    SetIndex(part, m_octets.Read(Number::Index4, octet));
  } else {
    part.string = EncodedBit5(octet);
    if ((octet & 0x10) != 0) Enter(part);
  }
  Emit(part);
}

void InfosetParser::Comment() {
  EmitMark(What::Comment, Group::Other, m_openElements);
  NonIdentifying(MakePart(What::String, Group::Other, m_openElements + 1, Table::OtherStrings));
}

void InfosetParser::ProcessingInstruction() {
  EmitMark(What::ProcessingInstruction, Group::Other, m_openElements);
  Identifying(MakePart(What::Target, Group::Other, m_openElements + 1, Table::OtherNcNames));
  NonIdentifying(MakePart(What::String, Group::Other, m_openElements + 1, Table::OtherStrings));
}

void InfosetParser::DocumentType(std::uint32_t octet) {
  EmitMark(What::DocumentType, Group::Other, 0, octet);
  ExternalIds(octet, 1);
  std::uint32_t child = m_octets.Next();
  for (; child == kProcessingInstruction; child = m_octets.Next()) ProcessingInstruction();
  if (child != kTerminator) throw InfosetError("this is not the end of the document type declaration");
  EmitMark(What::EndOfList, Group::Other, 0);
}

/// Read the identifiers that the flags of \p octet announce.
void InfosetParser::ExternalIds(std::uint32_t octet, std::size_t level) {
  if ((octet & kFirstFlag) != 0) Identifying(MakePart(What::SystemId, Group::Other, level, Table::OtherUris));
  if ((octet & kSecondFlag) != 0) Identifying(MakePart(What::PublicId, Group::Other, level, Table::OtherUris));
}

// ---- Names and strings

/// Read the name that begins in the octet of \p part; it is spelled out if all bits \p isLiteral are set.
void InfosetParser::QName(Part part, std::uint32_t isLiteral, Number indexForm) {
  if ((part.octet & isLiteral) != isLiteral) {
    SetIndex(part, m_octets.Read(indexForm, part.octet));
    return Emit(part);
  }
  EmitMark(part.what, Group::Marks, part.level, part.octet);
  bool const hasPrefix = (part.octet & kFirstFlag) != 0;
  bool const hasNamespace = (part.octet & kSecondFlag) != 0;
  if (hasPrefix && !hasNamespace) throw InfosetError("the name has a prefix, but no namespace");
  std::size_t const level = part.level + 1;
  NameEntry name;
  if (hasPrefix) name.prefix = Identifying(MakePart(What::Prefix, part.group, level, Table::Prefixes));
  if (hasNamespace) {
    name.namespaceName = Identifying(MakePart(What::NamespaceName, part.group, level, Table::NamespaceNames));
  }
  Part last = MakePart(What::LocalName, part.group, level, Table::LocalNames);
  name.localName = ReadIdentifying(last);
  EnterName(last, part.table, name);
  Emit(last);
}

/// Return the index of the string in its table.
std::uint32_t InfosetParser::Identifying(Part part) {
  std::uint32_t const index = ReadIdentifying(part);
  Emit(part);
  return index;
}

std::uint32_t InfosetParser::ReadIdentifying(Part& part) {
  std::uint32_t const octet = m_octets.Next();
  if ((octet & 0x80) != 0) {
    SetIndex(part, m_octets.Read(Number::Index2, octet));
    return part.index;
  }
  part.string = EncodedString{Encoding::Utf8, 0, m_octets.Take(m_octets.Read(Number::Length2, octet))};
  Enter(part);
  return part.entry;
}

void InfosetParser::NonIdentifying(Part part) {
  std::uint32_t const octet = m_octets.Next();
  if (octet == kEmptyString) {
    SetIndex(part, 0);
  } else if ((octet & 0x80) != 0) {
    SetIndex(part, m_octets.Read(Number::Index2, octet));
  } else {
    part.string = EncodedBit3(octet);
    if ((octet & 0x40) != 0) Enter(part);
  }
  Emit(part);
}

EncodedString InfosetParser::EncodedBit3(std::uint32_t octet) {
  EncodedString string;
  string.encoding = static_cast<Encoding>(octet >> 4 & 0x03);
  if ((octet & 0x20) != 0) {
    std::uint32_t const next = m_octets.Next();
    string.number = ((octet & 0x0F) << 4 | next >> 4) + 1;
    octet = next;
  }
  string.octets = m_octets.Take(m_octets.Read(Number::Length5, octet));
  return string;
}

EncodedString InfosetParser::EncodedBit5(std::uint32_t octet) {
  EncodedString string;
  string.encoding = static_cast<Encoding>(octet >> 2 & 0x03);
  if ((octet & 0x08) != 0) {
    std::uint32_t const next = m_octets.Next();
    string.number = ((octet & 0x03) << 6 | next >> 2) + 1;
    octet = next;
  }
  string.octets = m_octets.Take(m_octets.Read(Number::Length7, octet));
  return string;
}

EncodedString InfosetParser::Counted() {
  return {Encoding::Utf8, 0, m_octets.Take(m_octets.Read(Number::Length2, m_octets.Next()))};
}

// ---- Parts and tables

void InfosetParser::Emit(Part part) {
  part.offset = m_partBegin;
  part.size = m_octets.GetPosition() - m_partBegin;
  m_partBegin = m_octets.GetPosition();
  if (part.isIndex) {
    part.group = ByIndex(part.group);
    std::size_t const cost = CostOf(part.table, part.index);
    if (cost != 0) part.saved = static_cast<std::ptrdiff_t>(cost) - static_cast<std::ptrdiff_t>(part.size);
  }
  m_sink(part);
}

void InfosetParser::EmitMark(What what, Group group, std::size_t level, std::uint32_t octet) {
  Part part = MakePart(what, group, level);
  part.octet = octet;
  Emit(part);
}

void InfosetParser::SetIndex(Part& part, std::uint64_t index) const {
  part.isIndex = true;
  part.index = static_cast<std::uint32_t>(index);
  bool const isName = part.table == Table::ElementNames || part.table == Table::AttributeNames;
  bool const isKnown = isName ? FindName(part.table, part.index) != nullptr
                              : index == 0 || FindString(part.table, part.index) != nullptr;
  if (!isKnown && !m_externalVocabulary) {
    throw InfosetError("the index " + std::to_string(index) + " is beyond its table");
  }
}

/// Put the string of \p part into its table.
void InfosetParser::Enter(Part& part) {
  if (m_externalVocabulary) return;  // only that vocabulary determines the index
  auto& strings = m_strings[static_cast<std::size_t>(part.table)];
  part.entry = FirstIndex(part.table) + static_cast<std::uint32_t>(strings.size());
  strings.push_back({*part.string, m_octets.GetPosition() - m_partBegin});
}

void InfosetParser::EnterName(Part& part, Table table, NameEntry name) {
  if (m_externalVocabulary) return;
  auto& names = table == Table::ElementNames ? m_elementNames : m_attributeNames;
  name.cost = 1 + CostOf(Table::Prefixes, name.prefix) + CostOf(Table::NamespaceNames, name.namespaceName) +
              CostOf(Table::LocalNames, name.localName);
  names.push_back(name);
  part.nameTable = table;
  part.nameEntry = static_cast<std::uint32_t>(names.size());
}

/// Return how many octets the entry takes spelled out, 0 if that is not known.
std::size_t InfosetParser::CostOf(Table table, std::uint32_t index) const {
  if (table == Table::ElementNames || table == Table::AttributeNames) {
    NameEntry const* const name = FindName(table, index);
    return name != nullptr ? name->cost : 0;
  }
  StringEntry const* const string = FindString(table, index);
  return string != nullptr ? string->cost : 0;
}

std::uint32_t InfosetParser::FirstIndex(Table table) {
  if (table == Table::RestrictedAlphabets) return 16;  // lower indices are built in or reserved
  return table == Table::EncodingAlgorithms ? 32 : 1;
}

InfosetParser::StringEntry const* InfosetParser::FindString(Table table, std::uint32_t index) const {
  if (m_externalVocabulary) return nullptr;
  auto const& strings = GetStrings(table);
  std::uint32_t const first = FirstIndex(table);
  return index >= first && index - first < strings.size() ? &strings[index - first] : nullptr;
}

InfosetParser::NameEntry const* InfosetParser::FindName(Table table, std::uint32_t index) const {
  if (m_externalVocabulary) return nullptr;
  auto const& names = GetNames(table);
  return index >= 1 && index <= names.size() ? &names[index - 1] : nullptr;
}

}  // namespace Quillon9Tool
