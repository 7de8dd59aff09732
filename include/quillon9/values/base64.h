#pragma once

#include <string>

#include "quillon9/export.h"

namespace Quillon9 {

/// Encodes and decodes base64 (RFC 4648, section 4, standard alphabet). An object holds the state of one conversion: it
/// belongs to one thread at a time, and can be used for one conversion after another.
class QUILLON9_API CBase64 {
 public:
  CBase64();
  /// Copies the state of the conversion.
  ///@{
  CBase64(CBase64 const&) = default;
  CBase64& operator=(CBase64 const&) = default;
  ///@}
  virtual ~CBase64();

  /// The base64 text of \p length bytes, padded with "=", without line breaks. Empty when \p data is null or
  /// \p length is not above 0. A single byte gives two characters of the alphabet, one "=" and a zero character.
  /// \throws CQnException "The data is too long for base64 [%d bytes]" when \p length is above 1,073,741,823.
  std::string Encode(unsigned char const* data, int length);

  /// Decode \p text, which ends at its zero byte, into \p out, which must have room for strlen(text) + 1 bytes.
  /// \returns the number of bytes decoded; the bytes of \p out after them are zero. White space and "=" are skipped
  /// anywhere, padding is optional, bits that do not fill a byte are dropped, and a byte above 127 counts as its low
  /// seven bits. Any other character gives 0, as do null arguments and an empty text.
  /// \throws CQnException "The base64 text is too long" when an int cannot hold the number of bytes.
  int Decode(char const* text, unsigned char* out);

  /// Take the next \p bitCount bits, most significant first, of the bytes that Encode() is working on.
  /// \param bitCount 0 to 8.
  /// \param bitsRead receives how many of the bits came from the input; the others, the low ones, are zero.
  /// \param position index of the next input byte, advanced as bytes are used up.
  /// \returns the bits as a number. Outside of Encode() there is no input.
  /// \throws CQnException "Invalid bit count [%d]".
  int Read(int bitCount, int* bitsRead, int& position);

  /// Add the low \p bitCount bits of \p value, most significant first, to the pending bits. When these fill a byte,
  /// store it in \p out at \p position and advance \p position.
  /// \param bitCount 0 to 8.
  /// \throws CQnException "Invalid bit count [%d]".
  void Write(unsigned int value, int bitCount, unsigned char* out, int& position);

 private:
  void Start(unsigned char const* input, int length);

  static char const m_sBase64Alphabet[65];
  static unsigned int const m_nMask[9];

  int m_inputLength = 0;
  int m_bitsHeld = 0;
  unsigned int m_bitStore = 0;
  unsigned char const* m_input = nullptr;
};

}  // namespace Quillon9
