#include "quillon9/values/base64.h"

#include <array>
#include <climits>
#include <cstring>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

char const CBase64::m_sBase64Alphabet[65] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
unsigned int const CBase64::m_nMask[9] = {0, 1, 3, 7, 15, 31, 63, 127, 255};

namespace {

constexpr int kMaxEncodeLength = (INT_MAX - 1) / 2;
constexpr signed char kInvalid = -2;
constexpr signed char kSkip = -1;

// The meaning of a byte of the text: 0 to 63, kSkip or kInvalid. The upper half repeats the lower one.
constexpr std::array<signed char, 256> MakeDecodeTable() {
  std::array<signed char, 256> table{};
  for (std::size_t i = 0; i < 128; ++i) {
    char const c = static_cast<char>(i);
    int value = kInvalid;
    if (c >= 'A' && c <= 'Z') value = c - 'A';
    if (c >= 'a' && c <= 'z') value = c - 'a' + 26;
    if (c >= '0' && c <= '9') value = c - '0' + 52;
    if (c == '+') value = 62;
    if (c == '/') value = 63;
    if (c == '=' || c == ' ' || c == '\t' || c == '\r' || c == '\n') value = kSkip;
    table[i] = table[i + 128] = static_cast<signed char>(value);
  }
  return table;
}
constexpr std::array<signed char, 256> kDecodeTable = MakeDecodeTable();

// Decodes groups of four characters of the alphabet, up to the first group that has another character.
unsigned char const* DecodeWholeGroups(unsigned char const* at, unsigned char const* end, unsigned char* out,
                                       int& position) {
  for (; end - at >= 4; at += 4) {
    int const a = kDecodeTable[at[0]], b = kDecodeTable[at[1]], c = kDecodeTable[at[2]], d = kDecodeTable[at[3]];
    if ((a | b | c | d) < 0) break;
    out[position++] = static_cast<unsigned char>(a << 2 | b >> 4);
    out[position++] = static_cast<unsigned char>((b & 15) << 4 | c >> 2);
    out[position++] = static_cast<unsigned char>((c & 3) << 6 | d);
  }
  return at;
}

void CheckBitCount(int bitCount) {
  if (bitCount < 0 || bitCount > 8) throw CQnException(FormatString("Invalid bit count [%d]", bitCount));
}

}  // namespace

CBase64::CBase64() = default;
CBase64::~CBase64() = default;

void CBase64::Start(unsigned char const* input, int length) {
  m_input = input;
  m_inputLength = length;
  m_bitsHeld = 0;
  m_bitStore = 0;
}

std::string CBase64::Encode(unsigned char const* data, int length) {
  if (data == nullptr || length <= 0) return std::string();
  if (length > kMaxEncodeLength) {
    throw CQnException(FormatString("The data is too long for base64 [%d bytes]", length));
  }
  std::string text((static_cast<std::size_t>(length) + 2) / 3 * 4, '=');
  char* out = text.data();
  int const wholeGroups = length / 3 * 3;
  for (unsigned char const* at = data; at != data + wholeGroups; at += 3) {
    *out++ = m_sBase64Alphabet[at[0] >> 2];
    *out++ = m_sBase64Alphabet[(at[0] & 3) << 4 | at[1] >> 4];
    *out++ = m_sBase64Alphabet[(at[1] & 15) << 2 | at[2] >> 6];
    *out++ = m_sBase64Alphabet[at[2] & 63];
  }
  Start(data, length);
  int position = wholeGroups;
  int bitsRead = 0;
  for (int bits = Read(6, &bitsRead, position); bitsRead > 0; bits = Read(6, &bitsRead, position)) {
    *out++ = m_sBase64Alphabet[bits];
  }
  Start(nullptr, 0);
  if (length == 1) text.back() = '\0';  // a single byte has its own form: one "=" and a zero
  return text;
}

int CBase64::Decode(char const* text, unsigned char* out) {
  if (text == nullptr || out == nullptr) return 0;
  std::size_t const length = std::strlen(text);
  if (length / 4 >= INT_MAX / 3) throw OfKind(FailureKind_BadValue, CQnException("The base64 text is too long"));
  Start(nullptr, 0);
  int position = 0;
  auto const* at = reinterpret_cast<unsigned char const*>(text);
  unsigned char const* const end = at + length;
  while (at != end) {
    if (m_bitsHeld == 0) at = DecodeWholeGroups(at, end, out, position);
    if (at == end) break;
    int const value = kDecodeTable[*at++];
    if (value == kInvalid) {
      position = 0;
      break;
    }
    if (value != kSkip) Write(static_cast<unsigned int>(value), 6, out, position);
  }
  if (length != 0) std::memset(out + position, 0, length + 1 - static_cast<std::size_t>(position));
  return position;
}

int CBase64::Read(int bitCount, int* bitsRead, int& position) {
  CheckBitCount(bitCount);
  if (m_bitsHeld < bitCount && position < m_inputLength) {
    m_bitStore = m_bitStore << 8 | m_input[position++];
    m_bitsHeld += 8;
  }
  *bitsRead = m_bitsHeld < bitCount ? m_bitsHeld : bitCount;
  m_bitsHeld -= *bitsRead;
  return static_cast<int>((m_bitStore >> m_bitsHeld & m_nMask[*bitsRead]) << (bitCount - *bitsRead));
}

void CBase64::Write(unsigned int value, int bitCount, unsigned char* out, int& position) {
  CheckBitCount(bitCount);
  m_bitStore = m_bitStore << bitCount | (value & m_nMask[bitCount]);
  m_bitsHeld += bitCount;
  if (m_bitsHeld < 8) return;
  m_bitsHeld -= 8;
  out[position++] = static_cast<unsigned char>(m_bitStore >> m_bitsHeld & m_nMask[8]);
}

}  // namespace Quillon9
