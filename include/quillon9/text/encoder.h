#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/text/unicode.h"

namespace Quillon9 {

/// The switch that ASCIIOnly(bool) sets; initially false. A plain value: set it before threads run.
QUILLON9_API extern bool ASCII_ONLY;

/// Choose, for the whole process, whether text passes through unconverted (true), so that all strings hold UTF-8 as it
/// arrived, whatever the locale, or is converted between UTF-8 and the encoding of the locale (false, the default).
QUILLON9_API void ASCIIOnly(bool asciiOnly);

/// Reports text in UTF-16 where the library has no conversion for it. Also a std::logic_error, for callers who expect
/// that class.
class QUILLON9_API CQnUtf16Exception : public CQnException, public std::logic_error {
 public:
  /// Holds \p message and has no inner exception.
  explicit CQnUtf16Exception(std::string const& message);
  /// Copies the text and shares the inner chain.
  ///@{
  CQnUtf16Exception(CQnUtf16Exception const& other) = default;
  CQnUtf16Exception& operator=(CQnUtf16Exception const& other) = default;
  ///@}
  ~CQnUtf16Exception() override;
  CQnException* Clone() const override;
};

/// Converts between UTF-8, wide characters and the local code page, which is the multibyte encoding of the current
/// locale: that of the calling thread if it has one (uselocale), else that of the process. Each call looks the locale
/// up; the library never sets it. During a read or write under TextEncoding_UTF8, the local code page of its thread is
/// UTF-8, ASCIIOnly(bool) has no effect, and the conversions from the local code page refuse ill-formed text with
/// CQnInvalidValueException "The text is not well-formed UTF-8 after [%s]".
///
/// No character is a failure. Each character that the local code page cannot express becomes one `?`, and so does each
/// byte that has no meaning in it; input that is not well-formed UTF-8 ends the text. Results contain the text up to
/// the first U+0000. Arguments are borrowed for the call; a null text counts as empty, and a negative length as 0. Any
/// thread.
class QUILLON9_API CEncoder {
 public:
  /// Convert \p length bytes of UTF-8 to the local code page, up to the first ill-formed or unfinished sequence. With
  /// ASCIIOnly(true), return the bytes unchanged, zeros included.
  static std::string Utf8ToLocalCodePage(unsigned char const* text, int length);
  /// Convert the UTF-8 before the zero that ends \p text.
  static std::string Utf8ToLocalCodePage(char const* text);
  /// The same, for callers that have scratch memory at hand. The conversion does not use it, so any values will do.
  ///@{
  static std::string Utf8ToLocalCodePage(unsigned char const* text, int length, wchar_t* wideBuffer,
                                         unsigned long wideCapacity, char* narrowBuffer, unsigned long narrowCapacity);
  static std::string Utf8ToLocalCodePage(char const* text, wchar_t* wideBuffer, unsigned long wideCapacity,
                                         char* narrowBuffer, unsigned long narrowCapacity);
  ///@}
  /// Append the converted text to \p target, so that a text that arrives in runs is copied only once.
  static void AppendUtf8ToLocalCodePage(std::string& target, char const* text, std::size_t length);
  /// Whether the conversion of \p text gives exactly these bytes, so that a caller can avoid a copy. False may also
  /// mean that only the conversion itself can decide.
  static bool IsUtf8SameInLocalCodePage(char const* text, std::size_t length);

  /// Refuse \p text: there is no conversion from UTF-16.
  /// \throws CQnUtf16Exception "Text in UTF-16 can not be converted", always.
  static std::string Utf16ToLocalCodePage(unsigned char const* text, int length);

  /// Convert \p text from the local code page to UTF-8. With ASCIIOnly(true), return its bytes unchanged; otherwise an
  /// empty text gives a value without a buffer.
  /// \throws CQnException "The data is too long [%zu bytes]" above 4,294,967,295 bytes.
  static CBinaryData LocalCodePageToUtf8Binary(char const* text);
  /// Convert \p text from the local code page to wide characters: four bytes each, in machine order, without a
  /// terminator. ASCIIOnly(bool) has no effect.
  /// \throws CQnException "The data is too long [%zu bytes]" above 4,294,967,295 bytes.
  static CBinaryData LocalCodePageToUnicodeBinary(char const* text);
  /// Convert wide text to UTF-8. An empty text gives a value without a buffer. A surrogate anywhere makes the result
  /// empty; a value above 0x10FFFF becomes U+FFFD.
  /// \throws CQnException "The data is too long [%zu bytes]" above 4,294,967,295 bytes.
  static CBinaryData UnicodeToUtf8Binary(wchar_t const* text);
};

/// Convert wide text to the local code page, with one `?` for each character that it cannot express. A null \p text
/// counts as empty. Any thread.
QUILLON9_API std::string UnicodeToMultiByte(wchar_t const* text);

/// Whether any of the \p length bytes is 0x80 or above.
QUILLON9_API bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char const* text, unsigned long length);
/// Whether any of the \p length characters is 0x80 or above.
QUILLON9_API bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(wchar_t const* text, int length);

}  // namespace Quillon9
