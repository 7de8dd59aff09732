#pragma once

#include <string>

#include "quillon9/export.h"
#include "quillon9/values/binary_data.h"

namespace Quillon9 {

/// Bytes that represent text under one of the built-in encoding algorithms of Fast Infoset (Rec. ITU-T X.891, 10). The
/// text has the form that CConversions prints and parses. Numbers are stored with the most significant octet first. The
/// algorithms by index:
///
///   1 hexadecimal, 2 base64, 3 short (16 bits), 4 int (32), 5 long (64), 6 boolean, 7 float, 8 double, 9 uuid,
///   10 cdata
class QUILLON9_API CFastInfosetBinaryData : public CBinaryData {
 public:
  /// The same as the constructors of CBinaryData.
  ///@{
  CFastInfosetBinaryData();
  CFastInfosetBinaryData(char const* text);
  CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool take);
  CFastInfosetBinaryData(CBinaryData const& other);
  ///@}
  ~CFastInfosetBinaryData() override;

  /// Replace the bytes with the encoding of \p text, which is one value, not a list. A uuid is plain hexadecimal text
  /// without hyphens, 32 digits for each uuid. Malformed base64 text gives no bytes.
  /// \throws CQnException "Unknown byte encoding." for an \p algorithm outside 1 to 10; "Invalid char in hex string
  ///         [%c]"; "Invalid value for UUID byte encoding." for a number of digits that is not a multiple of 32 (an
  ///         empty text gives no bytes); CQnInvalidValueException from the conversion that refuses the text. The value
  ///         is empty afterwards.
  void SetAsEncodedString(unsigned long algorithm, char const* text);

  /// Return the text that the bytes represent. Single spaces separate several numbers. The texts of booleans are run
  /// together within one octet, with a space between octets. A float is decoded from the first of its four octets only,
  /// which stands for all of them. Without bytes, the text is empty for any \p algorithm.
  /// \throws CQnException "Unknown byte encoding." for an \p algorithm outside 1 to 9; "Invalid value for SHORT byte
  ///         encoding.", or INT, LONG, FLOAT, DOUBLE or UUID, when the length is not a multiple of the element's.
  std::string GetAsString(unsigned long algorithm) const;
};

}  // namespace Quillon9
