#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/text/unicode.h"

namespace Quillon9 {

/// The switch that ASCIIOnly(bool) stores; false at start. A plain value: set it before threads run.
QUILLON9_API extern bool ASCII_ONLY;

/// Pass text through unconverted (true), so that all strings hold UTF-8 as it arrived, whatever the locale, or
/// convert between UTF-8 and the encoding of the locale (false, the default). For the whole process.
QUILLON9_API void ASCIIOnly(bool asciiOnly);

/// Text in UTF-16 where the library has no conversion for it. A std::logic_error too, for callers who expect that
/// class.
class QUILLON9_API CQnUtf16Exception : public CQnException, public std::logic_error {
 public:
  /// With this text, no inner exception.
  explicit CQnUtf16Exception(std::string const& message);
  /// Copies the text and clones the inner chain.
  ///@{
  CQnUtf16Exception(CQnUtf16Exception const& other) = default;
  CQnUtf16Exception& operator=(CQnUtf16Exception const& other) = default;
  ///@}
  ~CQnUtf16Exception() override;
  CQnException* Clone() const override;
};

/// Conversions between UTF-8, wide characters and the local code page, which is the multibyte encoding of the
/// current locale: of the calling thread if it has one (uselocale), else of the process. It is asked for in each
/// call; the library never sets it.
///
/// Characters are never a failure. What the local code page cannot express becomes one `?`, and so does each byte
/// that has no meaning in it; what is not well-formed UTF-8 ends the text. Results are made of text up to the
/// first U+0000. Arguments are borrowed for the call, a null text is an empty one, a negative length is 0. Any
/// thread.
class QUILLON9_API CEncoder {
 public:
  /// Convert \p length bytes of UTF-8 to the local code page: up to the first ill-formed or unfinished sequence.
  /// With ASCIIOnly(true) the bytes as they are, zeros included.
  static std::string Utf8ToLocalCodePage(unsigned char const* text, int length);
  /// The same up to the zero that ends \p text.
  static std::string Utf8ToLocalCodePage(char const* text);
  /// The same for callers that have scratch memory at hand. The conversion needs none, so any values will do.
  ///@{
  static std::string Utf8ToLocalCodePage(unsigned char const* text, int length, wchar_t* wideBuffer,
                                         unsigned long wideCapacity, char* narrowBuffer, unsigned long narrowCapacity);
  static std::string Utf8ToLocalCodePage(char const* text, wchar_t* wideBuffer, unsigned long wideCapacity,
                                         char* narrowBuffer, unsigned long narrowCapacity);
  ///@}
  /// The same, put behind what \p target holds, so that a text that arrives in runs is copied once only.
  static void AppendUtf8ToLocalCodePage(std::string& target, char const* text, std::size_t length);
  /// Whether the conversion of \p text gives these very bytes, so that a caller can do without a copy. False may
  /// also mean that only the conversion itself can tell.
  static bool IsUtf8SameInLocalCodePage(char const* text, std::size_t length);

  /// Refuse \p text: there is no conversion from UTF-16.
  /// \throws CQnUtf16Exception "Text in UTF-16 can not be converted", always.
  static std::string Utf16ToLocalCodePage(unsigned char const* text, int length);

  /// Convert \p text from the local code page to UTF-8. With ASCIIOnly(true) its bytes as they are; otherwise an
  /// empty text gives a value without a buffer.
  /// \throws CQnException "The data is too long [%zu bytes]" above 4,294,967,295 bytes.
  static CBinaryData LocalCodePageToUtf8Binary(char const* text);
  /// Convert \p text from the local code page to wide characters: four bytes each, in machine order, without a
  /// terminator. ASCIIOnly(bool) has no effect.
  /// \throws CQnException "The data is too long [%zu bytes]" above 4,294,967,295 bytes.
  static CBinaryData LocalCodePageToUnicodeBinary(char const* text);
  /// Convert wide text to UTF-8. An empty text gives a value without a buffer. A surrogate anywhere makes the
  /// result empty; what is above 0x10FFFF becomes U+FFFD.
  /// \throws CQnException "The data is too long [%zu bytes]" above 4,294,967,295 bytes.
  static CBinaryData UnicodeToUtf8Binary(wchar_t const* text);
};

/// Convert wide text to the local code page, with one `?` for each character that it cannot express. A null \p
/// text is an empty one. Any thread.
QUILLON9_API std::string UnicodeToMultiByte(wchar_t const* text);

/// Whether any of the \p length bytes is 0x80 or above.
QUILLON9_API bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char const* text, unsigned long length);
/// Whether any of the \p length characters is 0x80 or above.
QUILLON9_API bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(wchar_t const* text, int length);

}  // namespace Quillon9
