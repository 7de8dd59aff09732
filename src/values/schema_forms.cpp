// The built-in types of XML Schema that are derived from xs:string, and those that name something.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "quillon9/values/schema_values.h"
#include "text/name_characters.h"
#include "text/utf8_scan.h"
#include "values/number_text.h"

namespace Quillon9 {

namespace {

constexpr auto kNone = std::string_view::npos;

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool IsNameStart(std::uint32_t c) {
  if (c >= 0x80) return NameCharacters::IsStart(c);
  return IsLetter(static_cast<char>(c)) || c == '_' || c == ':';
}

bool IsNamePart(std::uint32_t c) {
  if (c >= 0x80) return NameCharacters::IsPart(c);
  return IsNameStart(c) || IsDigit(static_cast<char>(c)) || c == '-' || c == '.';
}

/// XML 1.0, productions 5 and 7: Name, or Nmtoken, which may begin with any character of names.
bool IsNameOf(std::string_view text, bool (*isStart)(std::uint32_t)) {
  if (text.empty()) return false;
  auto const* at = reinterpret_cast<std::uint8_t const*>(text.data());
  auto const* const end = at + text.size();
  for (auto isRight = isStart; at != end; isRight = &IsNamePart) {
    std::size_t const length = SequenceLength(at, static_cast<std::size_t>(end - at));
    if (length == 0 || !isRight(DecodeSequence(at, length))) return false;
    at += length;
  }
  return true;
}

bool IsName(std::string_view text) { return IsNameOf(text, &IsNameStart); }

bool IsNCName(std::string_view text) { return text.find(':') == kNone && IsName(text); }

bool IsQName(std::string_view text) {
  std::size_t const colon = text.find(':');
  if (colon == kNone) return IsNCName(text);
  return IsNCName(text.substr(0, colon)) && IsNCName(text.substr(colon + 1));
}

/// A part of a language (RFC 3066): one to eight letters, in parts after the first also digits.
bool IsLanguagePart(std::string_view part, bool isFirst) {
  return !part.empty() && part.size() <= 8 &&
         std::all_of(part.begin(), part.end(), [=](char c) { return IsLetter(c) || (!isFirst && IsDigit(c)); });
}

bool IsLanguage(std::string_view text) {
  for (bool isFirst = true;; isFirst = false) {
    std::size_t const end = std::min(text.find('-'), text.size());
    if (!IsLanguagePart(text.substr(0, end), isFirst)) return false;
    if (end == text.size()) return true;
    text.remove_prefix(end + 1);
  }
}

/// A reference whose other characters are escaped before it is used (RFC 2396 and 2732; W3C XLink 1.0, 5.4), which
/// leaves two ways to go wrong: a percent sign that escapes nothing, and a second fragment.
bool IsUri(std::string_view text) {
  constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
  std::size_t const fragment = text.find('#');
  if (fragment != kNone && text.find('#', fragment + 1) != kNone) return false;
  for (std::size_t i = text.find('%'); i != kNone; i = text.find('%', i + 1)) {
    std::string_view const digits = text.substr(i + 1, 2);
    if (digits.size() != 2 || digits.find_first_not_of(kHexDigits) != kNone) return false;
  }
  return true;
}

}  // namespace

bool CSchemaValues::HasForm(std::string_view text, SchemaForm form) {
  switch (form) {
    case SchemaForm::Any: return true;
    case SchemaForm::Language: return IsLanguage(text);
    case SchemaForm::NMToken: return IsNameOf(text, &IsNamePart);
    case SchemaForm::Name: return IsName(text);
    case SchemaForm::NCName: return IsNCName(text);
    case SchemaForm::AnyURI: return IsUri(text);
    case SchemaForm::QName: return IsQName(text);
  }
  return false;
}

}  // namespace Quillon9
