#include "quillon9/xmlio/encoder.h"

#include <langinfo.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <memory>
#include <utility>

#include "xmlio/byte_blocks.h"
#include "xmlio/local_to_utf8.h"
#include "xmlio/text_copy.h"
#include "xmlio/utf8_scan.h"
#include "xmlio/utf8_to_local.h"

namespace Quillon9 {

bool ASCII_ONLY = false;

void ASCIIOnly(bool asciiOnly) { ASCII_ONLY = asciiOnly; }

CQnUtf16Exception::CQnUtf16Exception(std::string const& message) : CQnException(message), std::logic_error(message) {}

CQnUtf16Exception::~CQnUtf16Exception() = default;

CQnException* CQnUtf16Exception::Clone() const { return new CQnUtf16Exception(*this); }

namespace {

constexpr std::size_t kLargestBinary = 0xFFFFFFFFU;

enum class Charset {
  kUtf8,   ///< libc and this library agree on every well-formed sequence, so it is copied
  kAscii,  ///< bytes below 0x80 are ASCII wherever a character begins, and there are no shift states
  kOther,  ///< everything goes through libc
};

// Some code pages that look like ASCII have other characters at 0x5C and 0x7E, and some hold a character back
// until the next one is known, so these are the ones that are sure.
Charset GetLocaleCharset() {
  char const* const name = nl_langinfo(CODESET);
  if (std::strcmp(name, "UTF-8") == 0) return Charset::kUtf8;
  if (std::strncmp(name, "ISO-8859-", 9) == 0) return Charset::kAscii;
  constexpr char const* kKnown[] = {"ANSI_X3.4-1968", "ASCII",  "CP1251", "KOI8-R", "KOI8-U", "EUC-JP",
                                    "EUC-KR",         "EUC-TW", "GB2312", "GBK",    "GB18030"};
  bool const isKnown = std::any_of(std::begin(kKnown), std::end(kKnown),
                                   [=](char const* known) { return std::strcmp(name, known) == 0; });
  return isKnown ? Charset::kAscii : Charset::kOther;
}

std::uint8_t const* Bytes(char const* text) { return reinterpret_cast<std::uint8_t const*>(text); }

std::size_t LengthOf(char const* text) { return text != nullptr ? std::strlen(text) : 0; }

std::size_t LengthOf(int length) { return length > 0 ? static_cast<std::size_t>(length) : 0; }

bool IsAscii(char const* text, std::size_t length) { return AsciiLength(Bytes(text), length) == length; }

bool IsAscii(wchar_t const* text, std::size_t length) {
  return std::all_of(text, text + length, [](wchar_t c) { return static_cast<std::uint32_t>(c) < 0x80; });
}

/// Whether the local code page and UTF-8 have the same bytes for \p text.
bool IsSameInUtf8(Charset charset, char const* text, std::size_t length) {
  if (charset == Charset::kUtf8) return LegalUtf8Length(Bytes(text), length) == length;
  return charset == Charset::kAscii && IsAscii(text, length);
}

/// Appends characters to a string in the local code page.
class LocalWriter {
 public:
  LocalWriter(std::string& target, Charset charset) : m_target(target), m_charset(charset) {}

  void Put(std::uint32_t character) {
    if (character < 0x80 && m_charset != Charset::kOther) {
      m_target += static_cast<char>(character);
      return;
    }
    char bytes[MB_LEN_MAX];
    std::size_t const length = std::wcrtomb(bytes, static_cast<wchar_t>(character), &m_state);
    if (length != static_cast<std::size_t>(-1)) {
      m_target.append(bytes, length);
    } else {
      m_target += '?';
      m_state = {};
    }
  }

  /// Writes what the code page may still hold back.
  void Finish() {
    char bytes[MB_LEN_MAX];
    std::size_t const length = std::wcrtomb(bytes, L'\0', &m_state);
    if (length != static_cast<std::size_t>(-1)) m_target.append(bytes, length - 1);
  }

 private:
  std::string& m_target;
  Charset m_charset;
  std::mbstate_t m_state{};
};

void AppendConverted(std::string& target, Charset charset, std::uint8_t const* text, std::size_t length) {
  LocalWriter writer(target, charset);
  for (std::size_t at = 0; at < length && text[at] != 0;) {
    std::size_t const sequence = SequenceLength(text + at, length - at);
    if (sequence == 0) break;
    writer.Put(DecodeSequence(text + at, sequence));
    at += sequence;
  }
  writer.Finish();
}

/// Decodes \p text from the local code page to \p target, which has room for \p length characters, and returns how
/// many there are.
std::size_t Decode(Charset charset, char const* text, std::size_t length, wchar_t* target) {
  std::mbstate_t state{};
  std::size_t count = 0;
  for (std::size_t at = 0; at < length; ++count) {
    if (Bytes(text)[at] < 0x80 && charset != Charset::kOther) {
      target[count] = text[at++];
      continue;
    }
    std::size_t const taken = std::mbrtowc(&target[count], text + at, length - at, &state);
    bool const isValid = taken < static_cast<std::size_t>(-2);
    if (!isValid) {
      target[count] = L'?';
      state = {};
    }
    at += isValid ? std::max(taken, std::size_t{1}) : 1;
  }
  return count;
}

using Buffer = std::unique_ptr<unsigned char[]>;

Buffer Allocate(std::size_t size) {
  if (size > kLargestBinary) throw CQnException(FormatString("The data is too long [%zu bytes]", size));
  return Buffer(new unsigned char[size]);
}

CBinaryData Adopt(Buffer buffer, std::size_t length) { return CBinaryData(buffer.release(), length, true); }

CBinaryData CopyOf(char const* text, std::size_t length) {
  Buffer buffer = Allocate(length);
  if (length > 0) std::memcpy(buffer.get(), text, length);
  return Adopt(std::move(buffer), length);
}

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

namespace {

// ASCII without zeros and carriage returns.
bool IsPlain(std::string_view text) { return !ByteBlocks::Any(text, ' ', FindUnplain); }

}  // namespace

CUtf8ToLocal::CUtf8ToLocal() : m_kind(Find()) {}

CUtf8ToLocal::Kind CUtf8ToLocal::Find() {
  if (ASCII_ONLY) return Kind::kSame;
  switch (GetLocaleCharset()) {
    case Charset::kUtf8: return Kind::kUtf8;
    case Charset::kAscii: return Kind::kAscii;
    case Charset::kOther: break;
  }
  return Kind::kOther;
}

bool CUtf8ToLocal::IsSameExcludingCR(std::string_view utf8) const {
  if (m_kind == Kind::kOther) return false;
  if (IsPlain(utf8)) return true;
  bool const isSame = m_kind == Kind::kSame ||
                      (m_kind == Kind::kUtf8 && LegalUtf8Length(Bytes(utf8.data()), utf8.size()) == utf8.size());
  return isSame && utf8.find_first_of(std::string_view("\r\0", 2)) == std::string_view::npos;
}

void CUtf8ToLocal::AppendUnplain(CXmlElement& target, std::string_view utf8) const {
  if (IsSameExcludingCR(utf8)) return target.AppendText(utf8);
  std::string local;
  AppendExcludingCR(local, utf8);
  target.AppendText(local);
}

void CUtf8ToLocal::AppendExcludingCR(std::string& target, std::string_view utf8) const {
  std::size_t const start = target.size();
  Append(target, utf8);
  std::size_t const firstCR = target.find('\r', start);
  if (firstCR == std::string::npos) return;
  auto const from = target.begin() + static_cast<std::ptrdiff_t>(firstCR);
  target.erase(std::remove(from, target.end(), '\r'), target.end());
}

void CUtf8ToLocal::Append(std::string& target, std::string_view utf8) const {
  if (utf8.empty()) return;
  char const* const text = utf8.data();
  if (m_kind == Kind::kSame) {
    target.append(utf8);
  } else if (m_kind == Kind::kUtf8) {
    // What is ill-formed ends the text on the long way too, so the sound part before it can be copied all the
    // same.
    target.append(text, strnlen(text, LegalUtf8Length(Bytes(text), utf8.size())));
  } else if (m_kind == Kind::kAscii && IsAscii(text, utf8.size())) {
    target.append(text, strnlen(text, utf8.size()));
  } else {
    AppendConverted(target, m_kind == Kind::kAscii ? Charset::kAscii : Charset::kOther, Bytes(text), utf8.size());
  }
}

bool CEncoder::IsUtf8SameInLocalCodePage(char const* text, std::size_t length) {
  if (length == 0 || ASCII_ONLY) return true;
  return IsSameInUtf8(GetLocaleCharset(), text, length) && std::memchr(text, 0, length) == nullptr;
}

std::string CEncoder::Utf16ToLocalCodePage(unsigned char const*, int) {
  throw CQnUtf16Exception("Text in UTF-16 can not be converted");
}

CBinaryData CEncoder::LocalCodePageToUtf8Binary(char const* text) {
  std::size_t const length = LengthOf(text);
  if (ASCII_ONLY) return CopyOf(text, length);
  if (length == 0) return CBinaryData();
  Charset const charset = GetLocaleCharset();
  if (IsSameInUtf8(charset, text, length)) return CopyOf(text, length);
  std::unique_ptr<wchar_t[]> const wide(new wchar_t[length + 1]);
  wide[Decode(charset, text, length, wide.get())] = L'\0';
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
  bool const isSame = ASCII_ONLY || (length != 0 && IsSameInUtf8(GetLocaleCharset(), text, length));
  return isSame ? Adopt(std::move(joined), length) : CEncoder::LocalCodePageToUtf8Binary(text);
}

CBinaryData CEncoder::LocalCodePageToUnicodeBinary(char const* text) {
  std::size_t const length = LengthOf(text);
  Charset const charset = GetLocaleCharset();
  if (IsSameInUtf8(charset, text, length)) {
    std::size_t const count = UTF8ToUnicode(Bytes(text), length, nullptr, 0);
    Buffer buffer = Allocate(count * sizeof(wchar_t));
    UTF8ToUnicode(Bytes(text), length, reinterpret_cast<wchar_t*>(buffer.get()), count);
    return Adopt(std::move(buffer), count * sizeof(wchar_t));
  }
  std::unique_ptr<wchar_t[]> const wide(new wchar_t[length + 1]);
  std::size_t const size = Decode(charset, text, length, wide.get()) * sizeof(wchar_t);
  return CopyOf(reinterpret_cast<char const*>(wide.get()), size);
}

CBinaryData CEncoder::UnicodeToUtf8Binary(wchar_t const* text) {
  std::size_t const length = text != nullptr ? std::wcslen(text) : 0;
  if (length == 0) return CBinaryData();
  std::size_t const size = IsAscii(text, length) ? length : UnicodeToUTF8(text, length, nullptr, 0);
  Buffer buffer = Allocate(size);
  std::size_t const written = UnicodeToUTF8(text, length, buffer.get(), size);
  return Adopt(std::move(buffer), written);
}

std::string UnicodeToMultiByte(wchar_t const* text) {
  std::string result;
  if (text == nullptr) return result;
  LocalWriter writer(result, GetLocaleCharset());
  for (; *text != L'\0'; ++text) writer.Put(static_cast<std::uint32_t>(*text));
  writer.Finish();
  return result;
}

bool DoesUTF8StrContainAnyCharsLargerThanOneByte(unsigned char const* text, unsigned long length) {
  return AsciiLength(text, length) != length;
}

bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(wchar_t const* text, int length) {
  return !IsAscii(text, LengthOf(length));
}

}  // namespace Quillon9
