#include "infoset_strings.h"

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "quillon9/quillon9.h"
#include "utf8.h"

namespace Quillon9Tool {

using Quillon9::CBinaryData;
using Quillon9::CConversions;
using Quillon9::CFastInfosetBinaryData;
using Quillon9::CQnException;

namespace {

constexpr char const* kAlgorithms[] = {"",        "hexadecimal", "base64", "short", "int",  "long",
                                       "boolean", "float",       "double", "uuid",  "cdata"};
constexpr std::uint32_t kCdataAlgorithm = 10;
constexpr std::size_t kFloatSize = 4;
/// The standard has the exponent in upper case.
constexpr std::string_view kNumericAlphabet = "0123456789-+.E ";

std::uint32_t OctetAt(std::string_view octets, std::size_t at) { return static_cast<unsigned char>(octets[at]); }

std::string Hex(std::string_view octets) {
  return CBinaryData::GetAsHexString(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
}

std::string FromUtf16(std::string_view octets) {
  std::string text;
  for (std::size_t at = 0; at + 1 < octets.size(); at += 2) {
    char32_t unit = OctetAt(octets, at) << 8 | OctetAt(octets, at + 1);
    if ((unit & 0xFC00) == 0xD800 && at + 3 < octets.size() && (OctetAt(octets, at + 2) & 0xFC) == 0xDC) {
      char32_t const low = (OctetAt(octets, at + 2) << 8 | OctetAt(octets, at + 3)) & 0x3FF;
      unit = 0x10000 + ((unit & 0x3FF) << 10 | low);
      at += 2;
    }
    AppendUtf8(text, (unit & 0xFFFFF800) == 0xD800 ? 0xFFFD : unit);
  }
  return text;
}

/// Return the characters of a restricted alphabet.
std::vector<std::string_view> CharactersOf(std::string_view alphabet) {
  std::vector<std::string_view> characters;
  while (!alphabet.empty()) {
    std::size_t const size = Utf8Size(alphabet);
    characters.push_back(alphabet.substr(0, size == 0 ? 1 : size));
    alphabet.remove_prefix(characters.back().size());
  }
  return characters;
}

/// Values of equal width follow each other across octet boundaries; set bits fill the rest.
std::string FromAlphabet(std::string_view octets, std::string_view alphabet) {
  std::vector<std::string_view> const characters = CharactersOf(alphabet);
  std::uint32_t width = 2;
  while (characters.size() >= std::size_t{1} << width) ++width;
  std::uint64_t const all = (std::uint64_t{1} << width) - 1;
  std::string text;
  std::uint64_t bits = 0;
  std::uint32_t bitsLeft = 0;
  for (std::size_t at = 0; at < octets.size(); ++at) {
    bits = bits << 8 | OctetAt(octets, at);
    for (bitsLeft += 8; bitsLeft >= width;) {
      bitsLeft -= width;
      std::uint64_t const value = bits >> bitsLeft & all;
      if (value < characters.size()) {
        text += characters[static_cast<std::size_t>(value)];
      } else if (value != all) {
        AppendUtf8(text, 0xFFFD);
      }
    }
  }
  return text;
}

std::string FromFloats(std::string_view octets) {
  std::string text;
  for (std::size_t at = 0; at + kFloatSize <= octets.size(); at += kFloatSize) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kFloatSize; ++i) bits = bits << 8 | OctetAt(octets, at + i);
    float value;
    std::memcpy(&value, &bits, sizeof value);
    if (at != 0) text += ' ';
    text += CConversions::r4ToString(value);
  }
  return text;
}

std::string FromAlgorithm(std::string_view octets, std::uint32_t algorithm) {
  if (algorithm == kCdataAlgorithm) return std::string(octets);
  if (algorithm == kFloatAlgorithm && octets.size() % kFloatSize == 0) return FromFloats(octets);
  try {
    CBinaryData data;
    data.SetBuffer(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
    return CFastInfosetBinaryData(data).GetAsString(algorithm);
  } catch (CQnException const&) {  // a private algorithm, or octets that do not fit this one
    return Hex(octets);
  }
}

std::string FromAlphabet(std::string_view octets, std::uint32_t index, InfosetParser const& parser) {
  if (index == 1) return FromAlphabet(octets, kNumericAlphabet);
  if (index == 2) return FromAlphabet(octets, Quillon9::RESTRICTED_ALPHABET_VALUES_DATE_TIME);
  auto const* const own = parser.FindString(Table::RestrictedAlphabets, index);
  return own != nullptr ? FromAlphabet(octets, own->string.octets) : Hex(octets);
}

}  // namespace

std::string Decoded(EncodedString const& string, InfosetParser const& parser, std::size_t mostOctets) {
  std::string_view const octets = string.octets.substr(0, mostOctets);
  switch (string.encoding) {
    case Encoding::Utf8: break;
    case Encoding::Utf16: return FromUtf16(octets);
    case Encoding::Alphabet: return FromAlphabet(octets, string.number, parser);
    case Encoding::Algorithm: return FromAlgorithm(octets, string.number);
  }
  return std::string(octets);
}

std::string EncodingName(EncodedString const& string) {
  switch (string.encoding) {
    case Encoding::Utf8: break;
    case Encoding::Utf16: return "UTF-16";
    case Encoding::Alphabet:
      if (string.number == 1) return "numeric alphabet";
      if (string.number == 2) return "date and time alphabet";
      return "alphabet " + std::to_string(string.number);
    case Encoding::Algorithm:
      return string.number <= kCdataAlgorithm ? kAlgorithms[string.number]
                                              : "algorithm " + std::to_string(string.number);
  }
  return {};
}

std::string NameText(InfosetParser const& parser, Table table, std::uint32_t index) {
  auto const* const name = parser.FindName(table, index);
  if (name == nullptr) return {};
  std::string text;
  if (auto const* const prefix = parser.FindString(Table::Prefixes, name->prefix)) {
    text.append(prefix->string.octets).append(1, ':');
  }
  if (auto const* const local = parser.FindString(Table::LocalNames, name->localName)) text += local->string.octets;
  return text;
}

}  // namespace Quillon9Tool
