#include "records/utf8_input.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/markup_scan.h"
#include "xmlio/single_byte_encoding.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kLongestDeclaration = 1024;
constexpr char kNoCharacter = '\xFF';  // no text in UTF-8 has this byte, so the parser refuses it

std::string Utf8Of(std::uint32_t character) {
  auto const byte = [](std::uint32_t value) { return static_cast<char>(value); };
  auto const trail = [&](int shift) { return [=](std::uint32_t c) { return byte(0x80 | (c >> shift & 0x3F)); }; };
  if (character < 0x80) return {byte(character)};
  if (character < 0x800) return {byte(0xC0 | character >> 6), trail(0)(character)};
  if (character < 0x10000) return {byte(0xE0 | character >> 12), trail(6)(character), trail(0)(character)};
  return {byte(0xF0 | character >> 18), trail(12)(character), trail(6)(character), trail(0)(character)};
}

/// Converts blocks of octets, which need not end where a character does.
class ConvertingInput : public OctetInput {
 public:
  explicit ConvertingInput(std::unique_ptr<OctetInput> input) : m_input(std::move(input)) {}

  std::size_t Read(char* to, std::size_t size) override {
    while (m_given == m_text.size()) {
      m_text.clear();
      m_given = 0;
      std::array<char, 4096> block{};
      std::size_t const count = m_input->Read(block.data(), block.size());
      if (count != 0) {
        Convert({block.data(), count}, m_text);
      } else if (!EndsWithCharacter()) {
        m_text = kNoCharacter;
      } else {
        return 0;
      }
    }
    std::size_t const count = std::min(size, m_text.size() - m_given);
    std::copy_n(m_text.data() + m_given, count, to);
    m_given += count;
    return count;
  }

 private:
  virtual void Convert(std::string_view octets, std::string& text) = 0;
  /// Whether what has been converted ends where a character does. Where it does not, that is said once.
  virtual bool EndsWithCharacter() { return true; }

  std::unique_ptr<OctetInput> m_input;
  std::string m_text;
  std::size_t m_given = 0;
};

class SingleByteInput final : public ConvertingInput {
 public:
  SingleByteInput(std::unique_ptr<OctetInput> input, int const (&table)[256]) : ConvertingInput(std::move(input)) {
    for (std::size_t byte = 0; byte < m_texts.size(); ++byte) {
      m_texts[byte] = table[byte] < 0 ? std::string(1, kNoCharacter) : Utf8Of(static_cast<std::uint32_t>(table[byte]));
    }
  }

 private:
  void Convert(std::string_view octets, std::string& text) override {
    for (char const octet : octets) text += m_texts[static_cast<unsigned char>(octet)];
  }

  std::array<std::string, 256> m_texts;
};

class Utf16Input final : public ConvertingInput {
 public:
  Utf16Input(std::unique_ptr<OctetInput> input, bool isBigEndian)
      : ConvertingInput(std::move(input)), m_isBigEndian(isBigEndian) {}

 private:
  void Convert(std::string_view octets, std::string& text) override {
    for (char const octet : octets) {
      auto const byte = static_cast<unsigned char>(octet);
      m_hasHalf = !m_hasHalf;
      if (m_hasHalf) {
        m_half = byte;
      } else {
        AddUnit(m_isBigEndian ? m_half << 8U | byte : static_cast<std::uint32_t>(byte) << 8U | m_half, text);
      }
    }
  }

  bool EndsWithCharacter() override {
    bool const isHalf = std::exchange(m_hasHalf, false);
    return std::exchange(m_high, 0) == 0 && !isHalf;
  }

  void AddUnit(std::uint32_t unit, std::string& text) {
    bool const isHigh = unit >= 0xD800 && unit < 0xDC00;
    bool const isLow = unit >= 0xDC00 && unit < 0xE000;
    std::uint32_t const high = std::exchange(m_high, isHigh ? unit : 0);
    if (isHigh != (high != 0) && isHigh) return;
    if (isLow && high != 0) {
      text += Utf8Of(0x10000 + ((high - 0xD800) << 10U) + (unit - 0xDC00));
    } else if (isLow || high != 0) {
      text += kNoCharacter;
    } else {
      text += Utf8Of(unit);
    }
  }

  bool m_isBigEndian;
  bool m_hasHalf = false;
  std::uint32_t m_half = 0;
  std::uint32_t m_high = 0;  // the first half of a pair
};

/// The start of \p input up to the end of an XML declaration. Nothing more is read if there is none.
std::string const& PeekDeclaration(PeekedInput& input) {
  std::string const* start = &input.Peek(4);
  for (std::size_t size = 5; size <= kLongestDeclaration; ++size) {
    bool const canBeOne = start->compare(0, 5, "<?xml", std::min<std::size_t>(start->size(), 5)) == 0;
    if (!canBeOne || start->size() + 1 != size || start->find("?>") != std::string::npos) break;
    start = &input.Peek(size);
  }
  return *start;
}

/// The encoding that the XML declaration at the start of \p text names; empty for none.
std::string DeclaredEncoding(std::string_view text) {
  if (text.substr(0, 5) != "<?xml" || text.size() < 6 || !MarkupScan::Is(MarkupScan::kSpace, text[5])) return {};
  text = text.substr(0, text.find("?>"));
  std::size_t at = text.find("encoding");
  if (at == std::string_view::npos) return {};
  at = text.find_first_of("'\"", at);
  if (at == std::string_view::npos) return {};
  std::size_t const end = text.find(text[at], at + 1);
  if (end == std::string_view::npos) return {};
  return std::string(text.substr(at + 1, end - at - 1));
}

bool IsNamed(std::string_view name, std::string_view wanted) {
  return std::equal(name.begin(), name.end(), wanted.begin(), wanted.end(),
                    [](unsigned char a, unsigned char b) { return std::toupper(a) == std::toupper(b); });
}

/// \p start is the start of a text whose encoding is unknown. The parser finds out what is wrong with it.
[[noreturn]] void ThrowUnknown(std::string const& start) {
  CXmlDocument document;
  document.LoadXmlStream(reinterpret_cast<unsigned char const*>(start.data()), start.size());
  throw OfKind(FailureKind_Parse, CQnException(FormatString("%s at line %lu", "unknown encoding", 1UL)));
}

TextPosition StartAt(std::size_t offset) {
  TextPosition start;
  start.offset = offset;
  return start;
}

}  // namespace

Utf8Document OpenUtf8(std::unique_ptr<OctetInput> input) {
  auto opened = std::make_unique<PeekedInput>(std::move(input));
  std::string const start = opened->Peek(4);
  if (start.empty()) throw OfKind(FailureKind_Input, CQnException("XML Stream is empty!"));
  std::string_view const two = std::string_view(start).substr(0, 2);
  std::string_view constexpr kLittle("<\0", 2);
  std::string_view constexpr kBig("\0<", 2);
  char mark[3];
  if (two == "\xFE\xFF" || two == "\xFF\xFE" || two == kLittle || two == kBig) {
    bool const isBig = two == "\xFE\xFF" || two == kBig;
    std::size_t const markSize = two == kLittle || two == kBig ? 0 : 2;
    if (markSize != 0) opened->Read(mark, markSize);
    return {std::make_unique<Utf16Input>(std::move(opened), isBig), StartAt(markSize), true};
  }
  if (start.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    opened->Read(mark, 3);
    return {std::move(opened), StartAt(3), false};
  }
  std::string const& declaration = PeekDeclaration(*opened);
  std::string const encoding = DeclaredEncoding(declaration);
  if (encoding.empty() || IsNamed(encoding, "UTF-8")) return {std::move(opened), {}, false};
  int table[256];
  if (!FillSingleByteTable(encoding, table)) ThrowUnknown(declaration);
  return {std::make_unique<SingleByteInput>(std::move(opened), table), {}, true};
}

}  // namespace Quillon9
