#include "xmlio/character_reference.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "quillon9/text/unicode.h"

namespace Quillon9 {

namespace {

constexpr unsigned long kLastCharacter = 0x10FFFF;
/// Longer references, which have leading zeros, are left to the parser.
constexpr std::size_t kLongest = 16;

/// Whether a document may have the character \p code (XML 1.0, W3C, section 2.2).
bool IsAllowed(unsigned long code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code <= 0xD7FF || (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= kLastCharacter);
}

/// The value of a digit, or \p base if it is none.
unsigned ValueOf(char digit, unsigned base) {
  unsigned value = base;
  if (digit >= '0' && digit <= '9') value = static_cast<unsigned>(digit - '0');
  if (digit >= 'a' && digit <= 'f') value = static_cast<unsigned>(digit - 'a') + 10;
  if (digit >= 'A' && digit <= 'F') value = static_cast<unsigned>(digit - 'A') + 10;
  return std::min(value, base);
}

}  // namespace

char const* CharacterReference::Read(char const* at, char const* end) {
  std::size_t const size = std::min(static_cast<std::size_t>(end - at), kLongest);
  auto const* const semicolon = static_cast<char const*>(std::memchr(at, ';', size));
  if (semicolon == nullptr) return nullptr;
  std::string_view const name(at + 1, static_cast<std::size_t>(semicolon - at - 1));
  bool const isSet = name.substr(0, 2) == "#x"  ? SetNumber(name.substr(2), 16)
                     : name.substr(0, 1) == "#" ? SetNumber(name.substr(1), 10)
                                                : SetEntity(name);
  return isSet ? semicolon + 1 : nullptr;
}

bool CharacterReference::SetEntity(std::string_view name) {
  if (name == "amp") return SetCharacter('&');
  if (name == "lt") return SetCharacter('<');
  if (name == "gt") return SetCharacter('>');
  if (name == "quot") return SetCharacter('"');
  return name == "apos" && SetCharacter('\'');
}

bool CharacterReference::SetNumber(std::string_view digits, unsigned base) {
  unsigned long code = 0;
  for (char const digit : digits) {
    unsigned const value = ValueOf(digit, base);
    if (value == base || code > kLastCharacter) return false;
    code = code * base + value;
  }
  return !digits.empty() && SetCharacter(code);
}

bool CharacterReference::SetCharacter(unsigned long code) {
  if (!IsAllowed(code)) return false;
  auto const character = static_cast<std::uint32_t>(code);
  auto* const bytes = reinterpret_cast<std::uint8_t*>(m_bytes);
  m_size = ConvertUTF32toUTF8(&character, &character + 1, bytes, bytes + sizeof m_bytes);
  return true;
}

}  // namespace Quillon9
