#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "quillon9/text/whitespace.h"
#include "values/schema_conversions.h"
#include "values/schema_failures.h"

namespace Quillon9 {

namespace {

using SchemaFailures::ThrowNotValid;
using SchemaFailures::ThrowTooLarge;

using DigitTable = std::array<signed char, 256>;

/// The value of each character of \p alphabet, -1 for any other byte.
constexpr DigitTable MakeTable(std::string_view alphabet) {
  DigitTable table{};
  for (auto& entry : table) entry = -1;
  for (std::size_t i = 0; i < alphabet.size(); ++i) {
    table[static_cast<unsigned char>(alphabet[i])] = static_cast<signed char>(i);
  }
  return table;
}

constexpr DigitTable MakeHexTable() {
  DigitTable table = MakeTable("0123456789ABCDEF");
  for (unsigned char c = 'a'; c <= 'f'; ++c) table[c] = static_cast<signed char>(c - 'a' + 10);
  return table;
}

constexpr DigitTable kHexTable = MakeHexTable();
constexpr DigitTable kBase64Table = MakeTable("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");

int Digit(DigitTable const& table, char c) { return table[static_cast<unsigned char>(c)]; }

/// A buffer that becomes a value.
class Octets {
 public:
  Octets(std::size_t most, std::string_view text, ItemType type) {
    if (most > UINT32_MAX) ThrowTooLarge(text, type);
    m_bytes.reset(new unsigned char[most + 1]);  // not filled with zeros, unlike make_unique
    m_end = m_bytes.get();
  }
  void Put(int octet) { *m_end++ = static_cast<unsigned char>(octet); }
  CBinaryData Take() {
    auto const length = static_cast<unsigned long>(m_end - m_bytes.get());
    return CBinaryData(m_bytes.release(), length, true);
  }

 private:
  std::unique_ptr<unsigned char[]> m_bytes;
  unsigned char* m_end = nullptr;
};

/// The characters of base64 text without the white space between them.
class Base64Reader {
 public:
  explicit Base64Reader(std::string_view text) : m_at(text.data()), m_end(text.data() + text.size()) {}

  /// Decode groups of four characters without white space, as many as there are.
  void ReadWholeGroups(Octets& octets) {
    for (; m_end - m_at >= 4; m_at += 4) {
      int const a = Value(m_at[0]), b = Value(m_at[1]), c = Value(m_at[2]), d = Value(m_at[3]);
      if ((a | b | c | d) < 0) return;
      PutGroup(octets, a, b, c, d);
    }
  }

  /// Decode the next group. False for the last one, and for a character out of place.
  bool ReadGroup(Octets& octets) {
    int const a = Next(), b = Next(), c = Next(), d = Next();
    if ((a | b | c | d) >= 0) {
      PutGroup(octets, a, b, c, d);
      return true;
    }
    // Padding ends the text. Bits that fill no octet are zero.
    bool const isCanonical = c == kPadding ? (b & 15) == 0 : c >= 0 && (c & 3) == 0;
    m_isWrong = (a | b) < 0 || d != kPadding || !isCanonical || !IsAtEnd();
    if (m_isWrong) return false;
    octets.Put(a << 2 | b >> 4);
    if (c >= 0) octets.Put((b & 15) << 4 | c >> 2);
    return false;
  }

  bool IsAtEnd() {
    while (m_at != m_end && CWhitespaceUtils::IsWhiteSpace(*m_at)) ++m_at;
    return m_at == m_end;
  }
  bool IsWrong() const { return m_isWrong; }

 private:
  static constexpr int kNone = -1;
  static constexpr int kPadding = -2;

  static int Value(char c) { return Digit(kBase64Table, c); }
  int Next() {
    if (IsAtEnd()) return kNone;
    char const c = *m_at++;
    return c == '=' ? kPadding : Value(c);
  }
  static void PutGroup(Octets& octets, int a, int b, int c, int d) {
    octets.Put(a << 2 | b >> 4);
    octets.Put((b & 15) << 4 | c >> 2);
    octets.Put((c & 3) << 6 | d);
  }

  char const* m_at;
  char const* m_end;
  bool m_isWrong = false;
};

}  // namespace

CBinaryData SchemaConversions::HexBinaryFromText(std::string_view text) {
  if (text.size() % 2 != 0) ThrowNotValid(text, ItemType_hexBinary);
  Octets octets(text.size() / 2, text, ItemType_hexBinary);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    int const high = Digit(kHexTable, text[i]), low = Digit(kHexTable, text[i + 1]);
    if ((high | low) < 0) ThrowNotValid(text, ItemType_hexBinary);
    octets.Put(high << 4 | low);
  }
  return octets.Take();
}

CBinaryData SchemaConversions::Base64BinaryFromText(std::string_view text) {
  Octets octets(text.size() / 4 * 3, text, ItemType_base64Binary);
  Base64Reader reader(text);
  do {
    reader.ReadWholeGroups(octets);
  } while (!reader.IsAtEnd() && reader.ReadGroup(octets));
  if (reader.IsWrong() || !reader.IsAtEnd()) ThrowNotValid(text, ItemType_base64Binary);
  return octets.Take();
}

}  // namespace Quillon9
