#include "quillon9/values/pattern.h"

#include <climits>
#include <cstddef>
#include <string_view>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/binary_data.h"
#include "text/lost_characters.h"
#include "values/pattern_engine.h"
#include "values/pattern_matching.h"
#include "values/remembered_value.h"

namespace Quillon9 {

namespace {

// ---- FindReplace

constexpr std::size_t kMaxReplacedBytes = std::size_t{1} << 30;

template <class Text>
bool EndsWith(Text const& text, Text const& end) {
  return text.back() == end.back() && text.size() >= end.size() &&
         text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// A replacement can form a new occurrence together with the text before and after it. So the replacement is put back in
// front of the unread text, and the text read earlier is searched again from the cut.
template <class Text>
void ReplaceAll(Text& text, Text const& search, Text const& replacement) {
  if (search.empty()) throw CQnException("Cannot replace an empty text");
  if (text.find(search) == Text::npos) return;
  if (replacement.find(search) != Text::npos) {
    throw CQnException("Cannot replace a text by one that contains it");
  }
  Text done;
  Text pending(text.rbegin(), text.rend());  // reversed, so that reading takes from its end
  while (!pending.empty()) {
    done += pending.back();
    pending.pop_back();
    if (!EndsWith(done, search)) continue;
    done.resize(done.size() - search.size());
    if (done.size() + pending.size() + replacement.size() > kMaxReplacedBytes / sizeof(search[0])) {
      throw CQnException("The text grows too long by replacing");
    }
    pending.append(replacement.rbegin(), replacement.rend());
  }
  text = std::move(done);
}

// ---- Translation

struct Substitution {
  char const* search;
  char const* replacement;
};

std::string Translate(std::string pattern) {
  // The order matters: an escaped backslash must not be read as the start of an escape, so it is replaced first. The
  // engine reads the octal numbers.
  static constexpr Substitution substitutions[] = {
      {R"(\\)", "\x01"},
      {R"(\i)", R"(([^\W\d]|:))"},
      {R"(\I)", R"(([\W\d]))"},
      {R"(\c)", R"((\w|\.|-|:))"},
      {R"(\C)", R"(([^\w\.\-\:]))"},
      {R"(\p{IsBasicLatin})", R"([\000-\177])"},
      {R"(\p{IsLatin-1Supplement})", R"([\200-\377])"},
      {R"(\p{IsLatinExtended-A})", R"([\400-\577])"},
      {R"(\p{IsLatinExtended-B})", R"([\600-\1117])"},
      {"\x01", R"(\\)"},
  };
  for (Substitution const& each : substitutions) FindReplace(pattern, each.search, each.replacement);
  return pattern;
}

// ---- Compiled patterns

CompiledPattern Compile(std::string const& pattern) { return CompiledPattern(pattern, Translate(pattern)); }

bool Matches(CompiledPattern& pattern, std::string_view subject) {
  subject = subject.substr(0, subject.find('\0'));
  if (subject.size() > INT_MAX) ThrowTooLongToMatch();
  return pattern.Matches(subject.data(), static_cast<int>(subject.size()));
}

bool MatchesLocal(CompiledPattern& pattern, std::string const& value) {
  if (CEncoder::IsUtf8SameInLocalCodePage(value.data(), value.size())) return Matches(pattern, value);
  LostCharacters::Scope const unobserved(nullptr);  // the copy serves only the comparison
  CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(value.c_str());
  if (utf8.GetLength() == 0) return Matches(pattern, "");
  return Matches(pattern, {reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength()});
}

}  // namespace

bool MatchesPattern(std::string const& utf8Pattern, std::string const& value) {
  RememberedValue<Compile> const compiled(utf8Pattern);  // compiling takes much longer than matching a short value
  bool const matches = MatchesLocal(*compiled, value);
  kRememberedValue.Verify([&] {
    CompiledPattern fresh = Compile(utf8Pattern);
    return matches == MatchesLocal(fresh, value);
  });
  return matches;
}

void ThrowTooLongToMatch() {
  throw OfKind(FailureKind_BrokenFacet, CQnException("The value is too long to be matched"));
}

bool TestRegEx(std::string pattern, std::string value) { return MatchesPattern(pattern, value); }

void FindReplace(std::string& text, std::string const& search, std::string const& replacement) {
  ReplaceAll(text, search, replacement);
}

void FindReplace(std::wstring& text, std::wstring const& search, std::wstring const& replacement) {
  ReplaceAll(text, search, replacement);
}

}  // namespace Quillon9
