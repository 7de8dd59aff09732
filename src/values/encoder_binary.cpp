// The conversions of CEncoder that return binary values.

#include <cstddef>
#include <cstring>
#include <cwchar>
#include <memory>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "quillon9/text/unicode.h"
#include "quillon9/values/binary_data.h"
#include "text/code_page.h"
#include "text/utf8_text.h"
#include "values/local_to_utf8.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kLargestBinary = 0xFFFFFFFFU;

using Buffer = std::unique_ptr<unsigned char[]>;

Buffer Allocate(std::size_t size) {
  if (size > kLargestBinary)
    throw OfKind(FailureKind_BadValue, CQnException(FormatString("The data is too long [%zu bytes]", size)));
  return Buffer(new unsigned char[size]);
}

CBinaryData Adopt(Buffer buffer, std::size_t length) { return CBinaryData(buffer.release(), length, true); }

CBinaryData CopyOf(char const* text, std::size_t length) {
  Buffer buffer = Allocate(length);
  if (length > 0) std::memcpy(buffer.get(), text, length);
  return Adopt(std::move(buffer), length);
}

}  // namespace

CBinaryData CEncoder::LocalCodePageToUtf8Binary(char const* text) {
  std::size_t const length = text != nullptr ? std::strlen(text) : 0;
  if (CodePage::IsPassedThrough()) return CopyOf(text, length);
  if (length == 0) return CBinaryData();
  CodePage::Charset const charset = CodePage::Current();
  if (CodePage::IsSameInUtf8(charset, text, length)) return CopyOf(text, length);
  Utf8Text::Check({text, length});
  std::unique_ptr<wchar_t[]> const wide(new wchar_t[length + 1]);
  wide[CodePage::Decode(charset, text, length, wide.get())] = L'\0';
  return UnicodeToUtf8Binary(wide.get());
}

CBinaryData LocalCodePageToUtf8Binary(std::vector<std::string_view> const& blocks) {
  std::size_t size = 0;
  for (std::string_view const block : blocks) size += block.size();
  Buffer joined = Allocate(size + 1);
  char* const text = reinterpret_cast<char*>(joined.get());
  char* end = text;
  for (std::string_view const block : blocks) end += block.copy(end, block.size());
  *end = '\0';
  std::size_t const length = std::strlen(text);
  bool const isSame =
      CodePage::IsPassedThrough() || (length != 0 && CodePage::IsSameInUtf8(CodePage::Current(), text, length));
  return isSame ? Adopt(std::move(joined), length) : CEncoder::LocalCodePageToUtf8Binary(text);
}

CBinaryData CEncoder::LocalCodePageToUnicodeBinary(char const* text) {
  std::size_t const length = text != nullptr ? std::strlen(text) : 0;
  CodePage::Charset const charset = CodePage::Current();
  if (CodePage::IsSameInUtf8(charset, text, length)) {
    std::size_t const count = UTF8ToUnicode(CodePage::Bytes(text), length, nullptr, 0);
    Buffer buffer = Allocate(count * sizeof(wchar_t));
    UTF8ToUnicode(CodePage::Bytes(text), length, reinterpret_cast<wchar_t*>(buffer.get()), count);
    return Adopt(std::move(buffer), count * sizeof(wchar_t));
  }
  Utf8Text::Check({text, length});
  std::unique_ptr<wchar_t[]> const wide(new wchar_t[length + 1]);
  std::size_t const size = CodePage::Decode(charset, text, length, wide.get()) * sizeof(wchar_t);
  return CopyOf(reinterpret_cast<char const*>(wide.get()), size);
}

CBinaryData CEncoder::UnicodeToUtf8Binary(wchar_t const* text) {
  std::size_t const length = text != nullptr ? std::wcslen(text) : 0;
  if (length == 0) return CBinaryData();
  std::size_t const size = CodePage::IsAscii(text, length) ? length : UnicodeToUTF8(text, length, nullptr, 0);
  Buffer buffer = Allocate(size);
  std::size_t const written = UnicodeToUTF8(text, length, buffer.get(), size);
  return Adopt(std::move(buffer), written);
}

}  // namespace Quillon9
