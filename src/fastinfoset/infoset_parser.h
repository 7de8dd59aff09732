#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "fastinfoset/constants.h"
#include "fastinfoset/octet_source.h"
#include "quillon9/fwd.h"

namespace Quillon9 {

/// What is the same for all readers of Fast Infoset documents (Rec. ITU-T X.891), whatever they make of them: the header,
/// the order of the parts, and the parts that have no place in a tree, which are skipped by their lengths. There is one
/// operation for each construct of the standard. Numbers in their names say on which bit a construct begins; these
/// operations get that octet as argument.
///
/// What an operation throws is "Failed to parse FastInfoset. [reason]".
class InfosetParser {
 public:
  /// The offset of the next octet.
  std::size_t GetOffset() const { return m_source.GetOffset(); }

 protected:
  /// An encoded character string: the meaning of its octets and their position.
  struct EncodedString {
    enum class Kind : std::uint8_t { kUtf8, kUtf16, kRestrictedAlphabet, kEncodingAlgorithm };
    Kind m_kind;
    std::uint32_t m_index;  ///< of the alphabet or the algorithm
    std::uint8_t const* m_octets;
    std::uint64_t m_length;

    bool IsUtf8() const {
      return m_kind == Kind::kUtf8 || (m_kind == Kind::kEncodingAlgorithm && m_index == fi::kCdata);
    }
  };

  explicit InfosetParser(COctetSource const& source) : m_source(source) {}
  ~InfosetParser() = default;

  // The header, defined in infoset_header.cpp.
  bool ReadHeader();
  void ReadOptionalData();
  void DocumentTypeDeclarationBit7(std::uint32_t octet);
  void UnexpandedEntityReferenceBit7(std::uint32_t octet);
  void SkipIdentifyingStringsOrIndices(std::uint32_t count);
  void SkipNonIdentifyingStringOrIndex();

  /// Read the next part of a document. Returns false at its end.
  bool ReadChild();
  /// The octet in front of it has ended all elements and the document.
  void NoteDoubleTerminator() { m_isEnded = true; }

  /// An encoded character string without its octets, which follow.
  ///@{
  EncodedString HeadBit3(std::uint32_t octet) {
    EncodedString string{static_cast<EncodedString::Kind>(octet >> 4 & 0x03), 0, nullptr, 0};
    if ((octet & fi::kRestrictedAlphabetBit3) != 0) {  // set for an encoding algorithm, too
      std::uint32_t const next = m_source.Octet();
      string.m_index = ((octet & 0x0F) << 4 | next >> 4) + 1;
      octet = next;
    }
    string.m_length = m_source.NonEmptyOctetStringBit5Length(octet);
    return string;
  }
  EncodedString HeadBit5(std::uint32_t octet) {
    EncodedString string{static_cast<EncodedString::Kind>(octet >> 2 & 0x03), 0, nullptr, 0};
    if ((octet & fi::kRestrictedAlphabetBit5) != 0) {
      std::uint32_t const next = m_source.Octet();
      string.m_index = ((octet & 0x03) << 6 | next >> 2) + 1;
      octet = next;
    }
    string.m_length = m_source.NonEmptyOctetStringBit7Length(octet);
    return string;
  }
  ///@}

  /// Append the text of \p source, which is not in UTF-8. That of a restricted alphabet ends after \p most characters.
  /// \throws also what an encoding algorithm throws for its octets; CQnUtf16Exception for a string in UTF-16.
  static void AppendDecoded(EncodedString const& source, CFIVocabulary const& vocabulary, std::uint64_t most,
                            std::string& target);

  [[noreturn]] static void ThrowInvalidElement();
  [[noreturn]] static void ThrowPrefixWithoutNamespace();
  [[noreturn]] static void ThrowNestedTooDeep(std::uint32_t limit);

  COctetSource m_source;

 private:
  virtual void ElementBit2(std::uint32_t octet) = 0;
  virtual void Comment() = 0;
  virtual void ProcessingInstruction() = 0;
  /// Read the target or the content of a processing instruction, or the like, which is not kept.
  ///@{
  virtual void PassOtherName() = 0;
  virtual void PassOtherString() = 0;
  ///@}

  bool CheckHeader();
  bool CheckDeclaration(char const* text);
  void AdditionalData();
  void InitialVocabulary();
  void Notations();
  void UnparsedEntities();
  void SkipSequence(std::uint32_t isPresent, void (InfosetParser::*skipItem)());
  void SkipNonEmptyOctetString();
  void SkipEncodedCharacterString();
  void SkipNameSurrogate();
  void NotationBit7(std::uint32_t octet);
  void UnparsedEntityBit8(std::uint32_t octet);

  bool m_hasElement = false;
  bool m_isEnded = false;
};

}  // namespace Quillon9
