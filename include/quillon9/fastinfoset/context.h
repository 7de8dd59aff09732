#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "quillon9/export.h"
#include "quillon9/fastinfoset/vocabulary.h"

namespace Quillon9 {

/// The Fast Infoset options (Rec. ITU-T X.891) of a CXmlSerializationContext: how strings are encoded, how long a
/// string may be and still enter a table, and the vocabulary that both ends have agreed on. Copies are deep. Readers
/// and writers never change these options, and each has a vocabulary of its own, so threads may share an object that no
/// thread changes.
class QUILLON9_API CFastInfosetContext {
 public:
  /// How the values of one ItemType are encoded.
  struct EncodedCharacterString {
    unsigned long m_kind = 0;   ///< 0 default string encoding, 1 restricted alphabet, 2 encoding algorithm
    unsigned long m_index = 0;  ///< of the alphabet (1 or 2) or of the algorithm (1 to 10); unused for kind 0
  };

  CFastInfosetContext();
  /// Copy every option, including the vocabulary.
  ///@{
  CFastInfosetContext(CFastInfosetContext const& other);
  CFastInfosetContext& operator=(CFastInfosetContext const& other);
  ///@}
  ~CFastInfosetContext();

  /// The encoding for kind 0: 0 for UTF-8 (the default), or 1 for UTF-16BE, which writers refuse.
  ///@{
  unsigned char GetDefaultStringEncoding() const { return m_defaultStringEncoding; }
  void SetDefaultStringEncoding(unsigned char encoding) { m_defaultStringEncoding = encoding; }
  ///@}

  /// How values of the ItemType \p type are written; kind 0 by default. Readers ignore it.
  /// \throws CQnException "The item type [%lu] is out of range" for a \p type above ItemType_xmlCollection.
  EncodedCharacterString GetEncoding(unsigned long type) const {
    if (type >= kItemTypes) ThrowOutOfRange(type);
    return m_encodings[type];
  }
  /// The index is checked only when a value is written.
  /// \throws CQnException as GetEncoding().
  void SetEncoding(unsigned long type, EncodedCharacterString encoding);

  /// Attribute values shorter than this number of bytes enter a table when they are first written, and are written as
  /// an index from then on. 6 by default.
  ///@{
  unsigned long GetAttributeMaxAddLength() const { return m_attributeMaxAddLength; }
  void SetAttributeMaxAddLength(unsigned long bytes) { m_attributeMaxAddLength = bytes; }
  ///@}
  /// The same for the content of elements.
  ///@{
  unsigned long GetElementMaxAddLength() const { return m_elementMaxAddLength; }
  void SetElementMaxAddLength(unsigned long bytes) { m_elementMaxAddLength = bytes; }
  ///@}

  /// Begin each document with GetVocabulary(), which the other end must have as well, and write its URI (true), or
  /// begin with the built-in entries only (false, the default).
  ///@{
  bool GetUseGeneratedVocabulary() const { return m_useGeneratedVocabulary; }
  void SetUseGeneratedVocabulary(bool use) { m_useGeneratedVocabulary = use; }
  ///@}
  /// The agreed vocabulary. Fill it before it is used.
  ///@{
  CFIVocabulary& GetVocabulary() { return m_vocabulary; }
  CFIVocabulary const& GetVocabulary() const { return m_vocabulary; }
  ///@}
  /// The URI that stands for the vocabulary in a document. If it is empty, QUILLON_URI is written. Readers skip it.
  ///@{
  std::string const& GetExternalVocabularyURI() const { return m_externalVocabularyURI; }
  void SetExternalVocabularyURI(std::string const& uri) { m_externalVocabularyURI = uri; }
  ///@}

  /// Write numbers, booleans and binary values with encoding algorithms, and dates, durations, decimals and integers in
  /// restricted alphabets. The output is short, but some values can no longer be written or read: a value with a
  /// character outside its alphabet is refused (any duration, and a date and time with `.` or `+`), so is a ui8 above
  /// the largest i8, and a float does not read back as the value that was written. Under ValueRules_XmlSchema, a value
  /// for which that holds, or that would read back as another text, is written as text, and a float is not changed.
  void SetSuggestedValues();

 private:
  static constexpr std::size_t kItemTypes = 29;

  [[noreturn]] static void ThrowOutOfRange(unsigned long type);

  unsigned char m_defaultStringEncoding = 0;
  std::array<EncodedCharacterString, kItemTypes> m_encodings{};
  unsigned long m_attributeMaxAddLength = 6;
  unsigned long m_elementMaxAddLength = 6;
  bool m_useGeneratedVocabulary = false;
  CFIVocabulary m_vocabulary;
  std::string m_externalVocabularyURI;
};

}  // namespace Quillon9
