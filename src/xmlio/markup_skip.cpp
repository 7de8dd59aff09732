#include "xmlio/markup_skip.h"

#include <strings.h>

#include <string_view>

#include "xmlio/markup_scan.h"

namespace Quillon9::MarkupSkip {

namespace {

using MarkupScan::Is;
using MarkupScan::StartsWith;

constexpr std::string_view kDeclarationStart = "<?xml";

bool IsSameIgnoringCase(std::string_view left, std::string_view right) {
  return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

/// Return the end of the name at \p at.
char const* NameEnd(char const* at, char const* end) {
  while (at != end && Is(MarkupScan::kNamePart, *at)) ++at;
  return at;
}

/// Return the end of the white space at \p at.
char const* SpaceEnd(char const* at, char const* end) {
  while (at != end && Is(MarkupScan::kSpace, *at)) ++at;
  return at;
}

/// Return the end of the white space at \p at; null if there is none or \p at is null.
char const* Separated(char const* at, char const* end) {
  if (at == nullptr || at == end || !Is(MarkupScan::kSpace, *at)) return nullptr;
  return SpaceEnd(at, end);
}

bool IsQuote(char const* at, char const* end) { return at != end && (*at == '"' || *at == '\''); }

/// Whether \p byte may be part of a public identifier. Line ends may be as well, but are rare.
bool IsInPublicId(char byte) {
  return Is(MarkupScan::kPlainPart, byte) || std::string_view(" '()+,/:=?;!*#@$%").find(byte) != std::string_view::npos;
}

/// Return the end of the text in quotation marks at \p at; null if it is none or \p at is null.
char const* Literal(char const* at, char const* end, bool isPublicId) {
  if (at == nullptr || !IsQuote(at, end)) return nullptr;
  char const quote = *at++;
  while (at != nullptr && at != end && *at != quote) {
    if (isPublicId && !IsInPublicId(*at)) return nullptr;
    at = MarkupScan::SkipCharacter(at, end);
  }
  return at != nullptr && at != end ? at + 1 : nullptr;
}

/// Return the end of the external identifier at \p at (XML 1.0, W3C, section 4.2.2); null if it is none.
char const* ExternalId(char const* at, char const* end) {
  constexpr std::string_view kPublic = "PUBLIC";
  constexpr std::string_view kSystem = "SYSTEM";
  bool const isPublic = StartsWith(at, end, kPublic);
  if (!isPublic && !StartsWith(at, end, kSystem)) return nullptr;
  at = Separated(at + kPublic.size(), end);
  if (isPublic) at = Separated(Literal(at, end, true), end);
  return Literal(at, end, false);
}

/// Reads the XML declaration (XML 1.0, W3C, section 2.8) from behind its first five characters on.
class Declared {
 public:
  Declared(char const* at, char const* end) : m_at(at), m_end(end) {}

  /// Whether this is a declaration of version 1.0 in UTF-8.
  bool Read() {
    if (!Attribute("version") || m_value != "1.0") return false;
    if (Attribute("encoding") && !IsSameIgnoringCase(m_value, "utf-8")) return false;
    if (Attribute("standalone") && m_value != "yes" && m_value != "no") return false;
    m_at = SpaceEnd(m_at, m_end);
    return StartsWith(m_at, m_end, "?>");
  }
  char const* End() const { return m_at + 2; }

 private:
  /// Pass over the attribute \p name with white space in front of it and return true; false if it is not there.
  bool Attribute(std::string_view name) {
    char const* at = SpaceEnd(m_at, m_end);
    if (at == m_at || !StartsWith(at, m_end, name)) return false;
    at = SpaceEnd(at + name.size(), m_end);
    if (at == m_end || *at != '=') return false;
    at = SpaceEnd(at + 1, m_end);
    if (!IsQuote(at, m_end)) return false;
    char const* const start = at + 1;
    for (char const quote = *at++; *at != quote; ++at) {
      if (at + 1 == m_end) return false;
    }
    m_value = {start, static_cast<std::size_t>(at - start)};
    m_at = at + 1;
    return true;
  }

  char const* m_at;
  char const* m_end;
  std::string_view m_value;
};

}  // namespace

char const* Comment(char const* at, char const* end) {
  while (at != nullptr && at != end) {
    if (StartsWith(at, end, "--")) return StartsWith(at, end, "-->") ? at + 3 : nullptr;
    at = MarkupScan::SkipCharacter(at, end);
  }
  return nullptr;
}

char const* Instruction(char const* at, char const* end) {
  char const* const targetEnd = NameEnd(at, end);
  std::string_view const target(at, static_cast<std::size_t>(targetEnd - at));
  if (MarkupScan::FindColon(target) != 0 || IsSameIgnoringCase(target, "xml")) return nullptr;
  at = targetEnd;
  if (StartsWith(at, end, "?>")) return at + 2;
  if (at == end || !Is(MarkupScan::kSpace, *at)) return nullptr;
  while (at != nullptr && at != end) {
    if (StartsWith(at, end, "?>")) return at + 2;
    at = MarkupScan::SkipCharacter(at, end);
  }
  return nullptr;
}

char const* DocumentType(char const* at, char const* end) {
  char const* const name = Separated(at, end);
  if (name == nullptr) return nullptr;
  char const* const nameEnd = NameEnd(name, end);
  if (MarkupScan::FindColon({name, static_cast<std::size_t>(nameEnd - name)}) != 0) return nullptr;
  at = SpaceEnd(nameEnd, end);
  if (at != nameEnd && !StartsWith(at, end, ">")) at = ExternalId(at, end);
  if (at == nullptr) return nullptr;
  at = SpaceEnd(at, end);
  return StartsWith(at, end, ">") ? at + 1 : nullptr;
}

char const* Miscellaneous(char const* at, char const* end) {
  for (;;) {
    at = SpaceEnd(at, end);
    if (StartsWith(at, end, "<!--")) {
      at = Comment(at + 4, end);
    } else if (StartsWith(at, end, "<?")) {
      at = Instruction(at + 2, end);
    } else {
      return at;
    }
    if (at == nullptr) return nullptr;
  }
}

char const* Declaration(char const* at, char const* end) {
  if (StartsWith(at, end, "\xEF\xBB\xBF")) at += 3;
  if (!StartsWith(at, end, kDeclarationStart)) return at;
  char const* const after = at + kDeclarationStart.size();
  if (NameEnd(after, end) != after) return at;  // an instruction, such as <?xml-stylesheet?>
  Declared declared(after, end);
  return declared.Read() ? declared.End() : nullptr;
}

}  // namespace Quillon9::MarkupSkip
