#include "quillon9/text/encoder.h"

#include <cstring>

#include "text/code_page.h"
#include "text/utf8_to_local.h"

namespace Quillon9 {

bool ASCII_ONLY = false;

void ASCIIOnly(bool asciiOnly) { ASCII_ONLY = asciiOnly; }

CQnUtf16Exception::CQnUtf16Exception(std::string const& message) : CQnException(message), std::logic_error(message) {}

CQnUtf16Exception::~CQnUtf16Exception() = default;

CQnException* CQnUtf16Exception::Clone() const { return new CQnUtf16Exception(*this); }

namespace {

std::size_t LengthOf(char const* text) { return text != nullptr ? std::strlen(text) : 0; }

std::size_t LengthOf(int length) { return length > 0 ? static_cast<std::size_t>(length) : 0; }

}  // namespace

std::string CEncoder::Utf8ToLocalCodePage(unsigned char const* text, int length) {
  std::string result;
  AppendUtf8ToLocalCodePage(result, reinterpret_cast<char const*>(text), LengthOf(length));
  return result;
}

std::string CEncoder::Utf8ToLocalCodePage(char const* text) {
  std::string result;
  AppendUtf8ToLocalCodePage(result, text, LengthOf(text));
  return result;
}

std::string CEncoder::Utf8ToLocalCodePage(unsigned char const* text, int length, wchar_t*, unsigned long, char*,
                                          unsigned long) {
  return Utf8ToLocalCodePage(text, length);
}

std::string CEncoder::Utf8ToLocalCodePage(char const* text, wchar_t*, unsigned long, char*, unsigned long) {
  return Utf8ToLocalCodePage(text);
}

void CEncoder::AppendUtf8ToLocalCodePage(std::string& target, char const* text, std::size_t length) {
  if (text == nullptr || length == 0) return;
  CUtf8ToLocal().Append(target, {text, length});
}

bool CEncoder::IsUtf8SameInLocalCodePage(char const* text, std::size_t length) {
  if (length == 0 || CodePage::IsPassedThrough()) return true;
  return CodePage::IsSameInUtf8(CodePage::Current(), text, length) && std::memchr(text, 0, length) == nullptr;
}

std::string CEncoder::Utf16ToLocalCodePage(unsigned char const*, int) {
  throw CQnUtf16Exception("Text in UTF-16 can not be converted");
}

std::string UnicodeToMultiByte(wchar_t const* text) {
  std::string result;
  if (text == nullptr) return result;
  CodePage::Writer writer(result, CodePage::Current());
  for (; *text != L'\0'; ++text) writer.Put(static_cast<std::uint32_t>(*text));
  writer.Finish();
  return result;
}

bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char const* text, unsigned long length) {
  return AsciiLength(text, length) != length;
}

bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(wchar_t const* text, int length) {
  return !CodePage::IsAscii(text, LengthOf(length));
}

}  // namespace Quillon9
