#include "quillon9/text/whitespace.h"

#include <algorithm>
#include <cstring>

#include "base/byte_blocks.h"
#include "quillon9/base/exceptions.h"
#include "text/whitespace_view.h"

namespace Quillon9 {

namespace {

// Characters that become a space: carriage returns are dropped instead.
bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\n'; }

bool IsPreserved(std::string_view text) { return text.find('\r') == std::string_view::npos; }

bool IsReplaced(std::string_view text) {
  bool hasSpace = false;
  bool hasZero = false;
  for (char const c : text) {
    if (c == '\t' || c == '\n' || c == '\r') return false;
    hasSpace |= c == ' ';
    hasZero |= c == '\0';
  }
  return !(hasSpace && hasZero);
}

bool HasBlankOrControl(std::string_view text) {
  using namespace ByteBlocks;
  return Any(text, '0', [](std::uint64_t block) { return Below(block, ' ' + 1); });
}

bool IsCollapsed(std::string_view text) {
  if (!HasBlankOrControl(text)) return true;
  char last = ' ';
  for (char const c : text) {
    if (c == '\t' || c == '\n' || c == '\r' || c == '\0' || (c == ' ' && last == ' ')) return false;
    last = c;
  }
  return last != ' ' || text.empty();
}

void CutAtZero(std::string& text) { text.resize(std::strlen(text.c_str())); }

std::string WithoutReturns(char const* text, std::size_t length) {
  std::string result(text, length);
  result.erase(std::remove(result.begin(), result.end(), '\r'), result.end());
  return result;
}

std::string Replaced(std::string_view text) {
  std::string result = WithoutReturns(text.data(), text.size());
  std::replace_if(result.begin(), result.end(), IsBlank, ' ');
  CutAtZero(result);
  return result;
}

std::string Collapsed(std::string_view text) {
  std::string result(text.size(), '\0');
  char* out = result.data();
  bool blankWritten = true;
  for (char const c : text) {
    if (c == '\r') continue;
    bool const blank = IsBlank(c);
    if (!(blank && blankWritten)) *out++ = blank ? ' ' : c;
    blankWritten = blank;
  }
  if (out != result.data() && out[-1] == ' ') --out;
  result.resize(static_cast<std::size_t>(out - result.data()));
  CutAtZero(result);
  return result;
}

[[noreturn]] void ThrowUnknownRule() { throw CQnException("Unknown WhitespaceRule"); }

}  // namespace

std::string CWhitespaceUtils::Preserve(char const* text, int length) {
  if (text == nullptr || length <= 0) return std::string();
  return WithoutReturns(text, static_cast<std::size_t>(length));
}

std::string CWhitespaceUtils::Preserve(std::string const& text) {
  return IsPreserved(text) ? text : WithoutReturns(text.data(), text.size());
}

std::string CWhitespaceUtils::Replace(std::string const& text) { return IsReplaced(text) ? text : Replaced(text); }

std::string CWhitespaceUtils::Collapse(std::string const& text) { return IsCollapsed(text) ? text : Collapsed(text); }

std::string CWhitespaceUtils::ApplyRule(WhitespaceRule rule, std::string const& text) {
  switch (rule) {
    case WhitespaceRule_None: return text;
    case WhitespaceRule_Preserve: return Preserve(text);
    case WhitespaceRule_Replace: return Replace(text);
    case WhitespaceRule_Collapse: return Collapse(text);
  }
  ThrowUnknownRule();
}

std::string const& CWhitespaceUtils::ApplyRule(WhitespaceRule rule, std::string const& text, std::string& scratch) {
  return ApplyWhitespaceRule(rule, text, scratch).data() == text.data() ? text : scratch;
}

std::string_view ApplyWhitespaceRule(CWhitespaceUtils::WhitespaceRule rule, std::string_view text,
                                     std::string& scratch) {
  switch (rule) {
    case CWhitespaceUtils::WhitespaceRule_None: return text;
    case CWhitespaceUtils::WhitespaceRule_Preserve:
      return IsPreserved(text) ? text : scratch = WithoutReturns(text.data(), text.size());
    case CWhitespaceUtils::WhitespaceRule_Replace: return IsReplaced(text) ? text : scratch = Replaced(text);
    case CWhitespaceUtils::WhitespaceRule_Collapse: return IsCollapsed(text) ? text : scratch = Collapsed(text);
  }
  ThrowUnknownRule();
}

}  // namespace Quillon9
