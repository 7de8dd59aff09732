#include <cstring>

#include "fastinfoset/infoset_parser.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

namespace {

// The first octets of items of the header.
constexpr std::uint32_t kNotation = 0xC0;  // top six bits
constexpr std::uint32_t kUnparsedEntity = 0xD0;
constexpr std::uint32_t kTopSevenBits = 0xFE;

constexpr std::uint32_t kHasSystemIdentifier = 0x02;
constexpr std::uint32_t kHasPublicIdentifier = 0x01;

/// Return how many of system and public identifier \p octet announces.
std::uint32_t CountIdentifiers(std::uint32_t octet) {
  return ((octet & kHasSystemIdentifier) != 0 ? 1U : 0U) + ((octet & kHasPublicIdentifier) != 0 ? 1U : 0U);
}

}  // namespace

bool InfosetParser::ReadHeader() {
  if (CheckHeader()) return true;
  for (char const* declaration : FI_DECLARATION_LIST) {
    if (CheckDeclaration(declaration)) return CheckHeader();
  }
  return false;
}

bool InfosetParser::CheckHeader() {
  if (!m_source.Has(sizeof fi::kHeader + 1)) return false;
  if (std::memcmp(m_source.GetPosition(), fi::kHeader, sizeof fi::kHeader) != 0) return false;
  m_source.Move(sizeof fi::kHeader);
  return true;
}

bool InfosetParser::CheckDeclaration(char const* text) {
  std::size_t const length = std::strlen(text);
  if (!m_source.Has(length + 1) || std::memcmp(m_source.GetPosition(), text, length) != 0) return false;
  m_source.Move(length);
  return true;
}

void InfosetParser::ReadOptionalData() {
  std::uint32_t const components = m_source.Octet();
  if ((components & fi::kAdditionalData) != 0) AdditionalData();
  if ((components & fi::kInitialVocabulary) != 0) InitialVocabulary();
  if ((components & fi::kNotations) != 0) Notations();
  if ((components & fi::kUnparsedEntities) != 0) UnparsedEntities();
  if ((components & fi::kCharacterEncodingScheme) != 0) SkipNonEmptyOctetString();
  if ((components & fi::kStandalone) != 0) m_source.Move(1);
  if ((components & fi::kVersion) != 0) PassOtherString();
}

/// Skip pairs of a URI and data, both of which are octet strings.
void InfosetParser::AdditionalData() {
  for (std::uint32_t left = m_source.LengthOfSequence(); left > 0; --left) {
    SkipNonEmptyOctetString();
    SkipNonEmptyOctetString();
  }
}

void InfosetParser::InitialVocabulary() {
  using Self = InfosetParser;
  std::uint32_t const first = m_source.Octet();
  std::uint32_t const second = m_source.Octet();
  if ((first & fi::kExternalVocabulary) != 0) SkipNonEmptyOctetString();
  SkipSequence(first & fi::kRestrictedAlphabets, &Self::SkipNonEmptyOctetString);
  SkipSequence(first & fi::kEncodingAlgorithms, &Self::SkipNonEmptyOctetString);
  SkipSequence(first & fi::kPrefixes, &Self::SkipNonEmptyOctetString);
  SkipSequence(first & fi::kNamespaceNames, &Self::SkipNonEmptyOctetString);
  SkipSequence(second & fi::kLocalNames, &Self::SkipNonEmptyOctetString);
  SkipSequence(second & fi::kOtherNCNames, &Self::SkipNonEmptyOctetString);
  SkipSequence(second & fi::kOtherURIs, &Self::SkipNonEmptyOctetString);
  SkipSequence(second & fi::kAttributeValues, &Self::SkipEncodedCharacterString);
  SkipSequence(second & fi::kContentCharacterChunks, &Self::SkipEncodedCharacterString);
  SkipSequence(second & fi::kOtherStrings, &Self::SkipEncodedCharacterString);
  SkipSequence(second & fi::kElementNameSurrogates, &Self::SkipNameSurrogate);
  SkipSequence(second & fi::kAttributeNameSurrogates, &Self::SkipNameSurrogate);
}

void InfosetParser::Notations() {
  std::uint32_t octet = m_source.Octet();
  for (; (octet & fi::kTopSixBits) == kNotation; octet = m_source.Octet()) NotationBit7(octet);
  if (octet != fi::kTerminator) ThrowFastInfosetFailure("Invalid Encoding of Notation type.");
}

void InfosetParser::UnparsedEntities() {
  std::uint32_t octet = m_source.Octet();
  for (; (octet & kTopSevenBits) == kUnparsedEntity; octet = m_source.Octet()) UnparsedEntityBit8(octet);
  if (octet != fi::kTerminator) ThrowFastInfosetFailure("Invalid Encoding of Unparsed Entity type.");
}

void InfosetParser::SkipSequence(std::uint32_t isPresent, void (InfosetParser::*skipItem)()) {
  if (isPresent == 0) return;
  for (std::uint32_t left = m_source.LengthOfSequence(); left > 0; --left) (this->*skipItem)();
}

void InfosetParser::SkipNonEmptyOctetString() {
  m_source.Skip(m_source.NonEmptyOctetStringBit2Length(m_source.Octet()));
}

void InfosetParser::SkipEncodedCharacterString() { m_source.Skip(HeadBit3(m_source.Octet()).m_length); }

void InfosetParser::SkipNameSurrogate() {
  std::uint32_t const parts = m_source.Octet();
  if ((parts & fi::kHasPrefix) != 0) m_source.Integer1To2pw20Bit2(m_source.Octet());
  if ((parts & fi::kHasNamespaceName) != 0) m_source.Integer1To2pw20Bit2(m_source.Octet());
  m_source.Integer1To2pw20Bit2(m_source.Octet());
}

void InfosetParser::SkipIdentifyingStringsOrIndices(std::uint32_t count) {
  for (; count > 0; --count) {
    std::uint32_t const octet = m_source.Octet();
    if ((octet & fi::kIndexBit1) != 0) {
      m_source.Integer1To2pw20Bit2(octet);
    } else {
      m_source.Skip(m_source.NonEmptyOctetStringBit2Length(octet));
    }
  }
}

void InfosetParser::SkipNonIdentifyingStringOrIndex() {
  std::uint32_t const octet = m_source.Octet();
  if ((octet & fi::kIndexBit1) != 0) {
    m_source.Integer0To2pw20Bit2(octet);
  } else {
    m_source.Skip(HeadBit3(octet).m_length);
  }
}

/// Skip the system and public identifier if the octet announces them, then processing instructions.
void InfosetParser::DocumentTypeDeclarationBit7(std::uint32_t octet) {
  CXmlDocument::CheckDocumentType();
  SkipIdentifyingStringsOrIndices(CountIdentifiers(octet));
  std::uint32_t child = m_source.Octet();
  for (; child == fi::kProcessingInstruction; child = m_source.Octet()) {
    PassOtherName();
    PassOtherString();
  }
  if (child != fi::kTerminator) ThrowFastInfosetFailure("Invalid Encoding of Document Type Declaration type.");
}

/// Skip the name, then the system and public identifier if the octet announces them.
void InfosetParser::NotationBit7(std::uint32_t octet) {
  PassOtherName();
  SkipIdentifyingStringsOrIndices(CountIdentifiers(octet));
}

/// Skip the name, the system identifier, the public identifier if the octet announces it, and the notation's name.
void InfosetParser::UnparsedEntityBit8(std::uint32_t octet) {
  PassOtherName();
  SkipIdentifyingStringsOrIndices(1 + (octet & kHasPublicIdentifier));
  PassOtherName();
}

/// Has the form of a notation.
void InfosetParser::UnexpandedEntityReferenceBit7(std::uint32_t octet) { NotationBit7(octet); }

}  // namespace Quillon9
