#pragma once

// The meaning of the octets of a Fast Infoset document (Rec. ITU-T X.891, clause 12 and annex C), as far as the reader
// and the writer share it. Bits are counted as in the standard: the first is the most significant.

#include <cstdint>

#include "quillon9/fastinfoset/declaration.h"

namespace Quillon9 {

/// The declarations that may precede the header; the first has the value FInfoDecl_NoVersion.
inline constexpr char const* FI_DECLARATION_LIST[] = {
    "<?xml encoding='finf'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
};

namespace fi {

/// Identification and version number.
inline constexpr unsigned char kHeader[] = {0xE0, 0x00, 0x00, 0x01};

// The optional components of a document.
inline constexpr unsigned kAdditionalData = 0x40;
inline constexpr unsigned kInitialVocabulary = 0x20;
inline constexpr unsigned kNotations = 0x10;
inline constexpr unsigned kUnparsedEntities = 0x08;
inline constexpr unsigned kCharacterEncodingScheme = 0x04;
inline constexpr unsigned kStandalone = 0x02;
inline constexpr unsigned kVersion = 0x01;

// Components of an initial vocabulary in the first octet.
inline constexpr unsigned kExternalVocabulary = 0x10;
inline constexpr unsigned kRestrictedAlphabets = 0x08;
inline constexpr unsigned kEncodingAlgorithms = 0x04;
inline constexpr unsigned kPrefixes = 0x02;
inline constexpr unsigned kNamespaceNames = 0x01;
// Those in the second octet.
inline constexpr unsigned kLocalNames = 0x80;
inline constexpr unsigned kOtherNCNames = 0x40;
inline constexpr unsigned kOtherURIs = 0x20;
inline constexpr unsigned kAttributeValues = 0x10;
inline constexpr unsigned kContentCharacterChunks = 0x08;
inline constexpr unsigned kOtherStrings = 0x04;
inline constexpr unsigned kElementNameSurrogates = 0x02;
inline constexpr unsigned kAttributeNameSurrogates = 0x01;

// The first octet of a child, an attribute or a namespace attribute. An octet below 0x80 begins an element or, in a
// list of attributes, an attribute.
inline constexpr unsigned kTerminator = 0xF0;
inline constexpr unsigned kDoubleTerminator = 0xFF;
inline constexpr unsigned kProcessingInstruction = 0xE1;
inline constexpr unsigned kComment = 0xE2;
inline constexpr unsigned kCharacterChunk = 0x80;
inline constexpr unsigned kDocumentTypeDeclaration = 0xC4;    ///< top six bits
inline constexpr unsigned kUnexpandedEntityReference = 0xC8;  ///< top six bits
inline constexpr unsigned kNamespaceAttribute = 0xCC;         ///< top six bits
inline constexpr unsigned kTopSixBits = 0xFC;

// In an element's first octet: attributes follow; namespace attributes follow (under the mask of a literal name).
inline constexpr unsigned kHasAttributes = 0x40;
inline constexpr unsigned kHasNamespaceAttributes = 0x38;
// A qualified name in full, from the third bit for elements and the second for attributes, and its optional parts.
inline constexpr unsigned kLiteralElementName = 0x3C;
inline constexpr unsigned kLiteralAttributeName = 0x78;
inline constexpr unsigned kHasPrefix = 0x02;
inline constexpr unsigned kHasNamespaceName = 0x01;

/// On the first bit: an index follows instead of a string.
inline constexpr unsigned kIndexBit1 = 0x80;
inline constexpr unsigned kIndexBit3 = 0x20;
// On the second and the fourth bit: the string enters its table.
inline constexpr unsigned kAddToTableBit1 = 0x40;
inline constexpr unsigned kAddToTableBit3 = 0x10;

// The discriminant of an encoded character string, from the third bit (attribute values) and the fifth (chunks). UTF-8
// is 0.
inline constexpr unsigned kUtf16Bit3 = 0x10;
inline constexpr unsigned kRestrictedAlphabetBit3 = 0x20;
inline constexpr unsigned kEncodingAlgorithmBit3 = 0x30;
inline constexpr unsigned kUtf16Bit5 = 0x04;
inline constexpr unsigned kRestrictedAlphabetBit5 = 0x08;
inline constexpr unsigned kEncodingAlgorithmBit5 = 0x0C;

/// The forms of an integer or length: the pattern of the first octet and the first value of the form. The one-octet
/// form has no pattern and begins at 1. The stored number is the value minus the first value of its form, most
/// significant bits first; the first octet holds as many bits as it has free.
struct Form {
  unsigned m_pattern;
  std::uint32_t m_first;
};
inline constexpr Form kInteger2Medium = {0x40, 65};    ///< 5 bits and one octet
inline constexpr Form kInteger2Large = {0x60, 8257};   ///< 4 bits and two octets
inline constexpr Form kInteger3Medium = {0x20, 33};    ///< 3 bits and one octet
inline constexpr Form kInteger3Large = {0x28, 2081};   ///< 3 bits and two octets
inline constexpr Form kInteger3Huge = {0x30, 526369};  ///< three octets, only 4 bits of the first
inline constexpr Form kInteger4Medium = {0x10, 17};    ///< 2 bits and one octet
inline constexpr Form kInteger4Large = {0x14, 1041};   ///< 2 bits and two octets
inline constexpr Form kInteger4Huge = {0x18, 263185};  ///< three octets, only 4 bits of the first
inline constexpr Form kLength2Medium = {0x40, 65};     ///< one octet
inline constexpr Form kLength2Large = {0x60, 321};     ///< four octets
inline constexpr Form kLength5Medium = {0x08, 9};      ///< one octet
inline constexpr Form kLength5Large = {0x0C, 265};     ///< four octets
inline constexpr Form kLength7Medium = {0x02, 3};      ///< one octet
inline constexpr Form kLength7Large = {0x03, 259};     ///< four octets

/// Attribute values have an index 0, which is the empty string: seven bits set.
inline constexpr unsigned kIndexZeroBit2 = 0x7F;

/// The encoding algorithms, by index.
enum Algorithm : unsigned long {
  kHexadecimal = 1,
  kBase64 = 2,
  kShort = 3,
  kInt = 4,
  kLong = 5,
  kBoolean = 6,
  kFloat = 7,
  kDouble = 8,
  kUuid = 9,
  kCdata = 10,
};

}  // namespace fi

}  // namespace Quillon9
