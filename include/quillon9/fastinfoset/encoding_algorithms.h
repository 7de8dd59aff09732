#pragma once

#include <string>

#include "quillon9/export.h"
#include "quillon9/values/binary_data.h"

namespace Quillon9 {

/// Bytes that stand for text by one of the built-in encoding algorithms of Fast Infoset (Rec. ITU-T X.891, 10). The
/// text is what CConversions prints and parses; octets of a number come most significant first. By index:
///
///   1 hexadecimal, 2 base64, 3 short (16 bits), 4 int (32), 5 long (64), 6 boolean, 7 float, 8 double, 9 uuid,
///   10 cdata
class QUILLON9_API CFastInfosetBinaryData : public CBinaryData {
 public:
  /// As the constructors of CBinaryData.
  ///@{
  CFastInfosetBinaryData();
  CFastInfosetBinaryData(char const* text);
  CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool take);
  CFastInfosetBinaryData(CBinaryData const& other);
  ///@}
  ~CFastInfosetBinaryData() override;

  /// Replace the bytes by those that stand for \p text, which is one value, not a list. A uuid is plain hexadecimal
  /// text without hyphens, 32 digits for each uuid. Base64 text that is wrong gives no bytes.
  /// \throws CQnException "Unknown byte encoding." for an \p algorithm outside 1 to 10, "Invalid char in hex string
  ///         [%c]", "Invalid value for UUID byte encoding." for another number of digits (no text gives no bytes);
  ///         CQnInvalidValueException of the conversion that refuses the text. The value is empty then.
  void SetAsEncodedString(unsigned long algorithm, char const* text);

  /// The text of the bytes. Several numbers are separated by single spaces; the texts of booleans are run together
  /// within one octet, with a space between octets. A float is made of the first of its four octets alone, which stands
  /// for all of them. Without bytes the text is empty for any \p algorithm.
  /// \throws CQnException "Unknown byte encoding." for an \p algorithm outside 1 to 9; "Invalid value for SHORT byte
  ///         encoding.", or INT, LONG, FLOAT, DOUBLE or UUID, when the length is not a multiple of the element's.
  std::string GetAsString(unsigned long algorithm) const;
};

}  // namespace Quillon9
