#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/pattern.h"
#include "values/schema_pattern_access.h"

namespace {

using namespace Quillon9;
using Fuzzing::Require;

enum Options : unsigned { kQuoted = 1, kReplaced = 2 };

/// A pattern for exactly this text, which is ASCII.
std::string Quoted(std::string const& text) {
  std::string pattern;
  for (char const c : text) {
    bool const isWord = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    if (!isWord) pattern += '\\';
    pattern += c;
  }
  return pattern;
}

bool IsPrintable(std::string const& text) {
  for (char const c : text) {
    if (c < ' ' || c > '~') return false;
  }
  return true;
}

/// Requires an answer, and the same answer from the remembered pattern.
void Match(std::string const& pattern, std::string const& value) {
  bool matches = false;
  try {
    matches = TestRegEx(pattern, value);
  } catch (CQnException const&) {
    return;
  }
  Require(TestRegEx(pattern, value) == matches, "a second try gives the same answer");
}

/// Requires that the expression of a schema means the same to PCRE and without it, and in a table.
void MatchAsInSchema(std::string const& pattern, std::string const& value) {
  try {
    CSchemaPattern const compiled(pattern);
    CSchemaPattern const table = SchemaPatternAccess::FromRestriction(CSchemaPattern::Combine({{pattern}}));
    bool const matches = SchemaPatternAccess::MatchesWithoutPcre(compiled, value);
    Require(compiled.Matches(value) == matches, "PCRE gives the same answer", pattern, value);
    Require(table.Matches(value) == matches, "PCRE gives the same answer for a table", pattern, value);
    Require(SchemaPatternAccess::MatchesWithoutPcre(table, value) == matches, "a table means the same", pattern, value);
  } catch (CQnException const&) {
  }
}

void Replace(std::string text, std::string const& search, std::string const& replacement) {
  std::string const before = text;
  try {
    FindReplace(text, search, replacement);
  } catch (CQnException const&) {
    Fuzzing::RequireEqual(text, before, "a failure leaves the text");
    return;
  }
  Require(text.find(search) == std::string::npos, "nothing is left to replace", text, search);
}

}  // namespace

/// Three lines after the options: a pattern, a value, a replacement.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::Input input(data, size);
  unsigned const options = input.Options();
  std::string const pattern = input.Field('\n');
  std::string const value = input.Field('\n');
  if ((options & kReplaced) != 0) {
    std::string const replacement = input.Field('\n');
    // Repeatedly replacing "ab" by "bba" lengthens a text exponentially.
    if (value.size() <= 12 && replacement.size() <= 3) Replace(value, pattern, replacement);
    return 0;
  }
  Match(pattern, value);
  MatchAsInSchema(pattern, value);
  if ((options & kQuoted) != 0 && IsPrintable(value)) {
    Require(TestRegEx(Quoted(value), value), "a quoted text matches itself", value);
    Require(!TestRegEx(Quoted(value) + "x", value), "and nothing longer does", value);
  }
  return 0;
}
