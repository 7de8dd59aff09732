#include "records/resume_point.h"

#include <charconv>
#include <cstdio>
#include <string_view>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

constexpr char kVersion[] = "records1";
constexpr char kSeparator = ':';

/// The separator and what a shell or a file name could take for something else are written as in URLs (RFC 3986).
std::string Escaped(std::string_view text) {
  std::string escaped;
  for (char const c : text) {
    bool const isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                         c == '.' || c == '_' || c == '/';
    if (isPlain) {
      escaped += c;
    } else {
      char code[4];
      std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
      escaped += code;
    }
  }
  return escaped;
}

/// The parts of a text, one after the other.
class Parts {
 public:
  explicit Parts(std::string const& text) : m_text(text), m_rest(text) {}

  std::string Next() {
    if (m_isAtEnd) Throw();
    std::size_t const end = m_rest.find(kSeparator);
    std::string_view const part = m_rest.substr(0, end);
    m_isAtEnd = end == std::string_view::npos;
    if (!m_isAtEnd) m_rest.remove_prefix(end + 1);
    std::string text;
    for (std::size_t at = 0; at < part.size(); ++at) {
      if (part[at] != '%') {
        text += part[at];
      } else {
        std::string_view const code = part.substr(at + 1, 2);
        if (code.size() != 2) Throw();
        text += static_cast<char>(Number<unsigned char>(code, 16));
        at += 2;
      }
    }
    return text;
  }
  std::uint64_t NextNumber() { return Number<std::uint64_t>(Next(), 10); }
  bool IsAtEnd() const { return m_isAtEnd; }
  [[noreturn]] void Throw() const { ResumePoint::ThrowNoResumePoint(m_text); }

 private:
  template <class Integer>
  Integer Number(std::string_view text, int base) const {
    Integer number{};
    std::from_chars_result const result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) Throw();
    return number;
  }

  std::string const& m_text;
  std::string_view m_rest;
  bool m_isAtEnd = false;
};

}  // namespace

std::string ResumePoint::ToText() const {
  std::string text = kVersion;
  auto const add = [&text](std::string const& part) { text += kSeparator + Escaped(part); };
  for (std::uint64_t const value : {at.offset, at.line, at.column, number}) add(std::to_string(value));
  add(name);
  add(prolog);
  for (Element const& element : elements) {
    add(std::to_string(element.number));
    add(element.startTag);
  }
  return text;
}

void ResumePoint::ThrowNoResumePoint(std::string const& text) {
  throw CQnInvalidParamException(FormatString("The text [%s] does not describe the place of a record", text.c_str()));
}

ResumePoint ResumePoint::Of(std::string const& text) {
  Parts parts(text);
  if (parts.Next() != kVersion) parts.Throw();
  ResumePoint point;
  for (std::uint64_t* value : {&point.at.offset, &point.at.line, &point.at.column, &point.number}) {
    *value = parts.NextNumber();
  }
  point.name = parts.Next();
  point.prolog = parts.Next();
  while (!parts.IsAtEnd()) {
    Element element;
    element.number = parts.NextNumber();
    element.startTag = parts.Next();
    point.elements.push_back(std::move(element));
  }
  return point;
}

}  // namespace Quillon9
