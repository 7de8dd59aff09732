#include "text/code_page.h"

#include <langinfo.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>

#include "text/lost_characters.h"

namespace Quillon9::CodePage {

// Lists only the code pages that certainly match ASCII: some that resemble it have other characters at 0x5C and 0x7E,
// and some hold a character back until the next one is known.
Charset Current() {
  if (Utf8Text::IsInUse()) return Charset::kUtf8;
  char const* const name = nl_langinfo(CODESET);
  if (std::strcmp(name, "UTF-8") == 0) return Charset::kUtf8;
  if (std::strncmp(name, "ISO-8859-", 9) == 0) return Charset::kAscii;
  constexpr char const* kKnown[] = {"ANSI_X3.4-1968", "ASCII",  "CP1251", "KOI8-R", "KOI8-U", "EUC-JP",
                                    "EUC-KR",         "EUC-TW", "GB2312", "GBK",    "GB18030"};
  bool const isKnown = std::any_of(std::begin(kKnown), std::end(kKnown),
                                   [=](char const* known) { return std::strcmp(name, known) == 0; });
  return isKnown ? Charset::kAscii : Charset::kOther;
}

bool IsAscii(wchar_t const* text, std::size_t length) {
  return std::all_of(text, text + length, [](wchar_t c) { return static_cast<std::uint32_t>(c) < 0x80; });
}

bool IsSameInUtf8(Charset charset, char const* text, std::size_t length) {
  if (charset == Charset::kUtf8) return LegalUtf8Length(Bytes(text), length) == length;
  return charset == Charset::kAscii && IsAscii(text, length);
}

void Writer::Put(std::uint32_t character) {
  if (character < 0x80 && m_charset != Charset::kOther) {
    m_target += static_cast<char>(character);
    return;
  }
  if (Utf8Text::IsInUse()) return PutUtf8(static_cast<wchar_t>(character));
  char bytes[MB_LEN_MAX];
  std::size_t const length = std::wcrtomb(bytes, static_cast<wchar_t>(character), &m_state);
  if (length != static_cast<std::size_t>(-1)) {
    m_target.append(bytes, length);
  } else {
    m_target += '?';
    m_state = {};
    LostCharacters::Report({character, false});
  }
}

void Writer::PutUtf8(wchar_t character) {
  std::uint8_t bytes[4];
  std::size_t const length = UnicodeToUTF8(&character, 1, bytes, sizeof bytes);
  m_target.append(reinterpret_cast<char const*>(bytes), length);
  if (length != 0) return;
  m_target += '?';
  LostCharacters::Report({static_cast<std::uint32_t>(character), false});
}

void Writer::Finish() {
  char bytes[MB_LEN_MAX];
  std::size_t const length = std::wcrtomb(bytes, L'\0', &m_state);
  if (length != static_cast<std::size_t>(-1)) m_target.append(bytes, length - 1);
}

void AppendFromUtf8(std::string& target, Charset charset, char const* text, std::size_t length) {
  Writer writer(target, charset);
  for (std::size_t at = 0; at < length && text[at] != '\0';) {
    std::size_t const sequence = SequenceLength(Bytes(text) + at, length - at);
    if (sequence == 0) break;
    writer.Put(DecodeSequence(Bytes(text) + at, sequence));
    at += sequence;
  }
  writer.Finish();
}

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
      LostCharacters::Report({Bytes(text)[at], true});
    }
    at += isValid ? std::max(taken, std::size_t{1}) : 1;
  }
  return count;
}

}  // namespace Quillon9::CodePage
