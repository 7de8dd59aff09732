// Compares the two ways in which the library matches expressions of XML Schema on random expressions and texts.

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "fuzzing.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/pattern.h"
#include "values/schema_pattern_access.h"

namespace {

using namespace Quillon9;
using Fuzzing::Require;

class Cases {
 public:
  explicit Cases(unsigned seed) : m_random(seed) {}

  std::string Pattern(int level) {
    std::string text = Branch(level);
    while (OneIn(4)) text += "|" + Branch(level);
    return text;
  }
  std::string Text() {
    std::string text;
    for (unsigned i = Below(OneIn(8) ? 40 : 8); i > 0; --i) text += Character();
    return text;
  }
  bool OneIn(unsigned n) { return Below(n) == 0; }

 private:
  unsigned Below(unsigned n) { return static_cast<unsigned>(m_random() % n); }
  template <std::size_t count>
  char const* OneOf(char const* const (&texts)[count]) {
    return texts[Below(count)];
  }

  // Few characters, so that many texts match.
  char const* Character() {
    static constexpr char const* kCharacters[] = {"a", "a", "a", "b", "b", "b", "c", "1", "-", "\u00e4", "\n"};
    return OneOf(kCharacters);
  }
  std::string Branch(int level) {
    std::string text;
    for (unsigned i = Below(4); i > 0; --i) text += Atom(level) + Quantifier();
    return text;
  }
  std::string Atom(int level) {
    static constexpr char const* kEscapes[] = {".",
                                               "\\w",
                                               "\\W",
                                               "\\d",
                                               "\\D",
                                               "\\i",
                                               "\\c",
                                               "\\C",
                                               "\\s",
                                               "\\S",
                                               "\\p{L}",
                                               "\\P{Ll}",
                                               "\\p{IsBasicLatin}",
                                               "\\P{IsBasicLatin}"};
    if (level > 0 && OneIn(3)) return "(" + Pattern(level - 1) + ")";
    if (OneIn(6)) return OneOf(kEscapes);
    return OneIn(5) ? Class(2) : Character();
  }
  std::string Class(int level) {
    static constexpr char const* kParts[] = {"a",   "b",   "1",       "\u00e4", "\\-", "a-b", "b-c", "0-9",
                                             "\\d", "\\D", "\\p{Lu}", "\\P{L}", "\\s", "\\S", "\\i"};
    std::string text = OneIn(4) ? "[^" : "[";
    do text += OneOf(kParts);
    while (OneIn(2));
    if (level > 0 && OneIn(4)) text += "-" + Class(level - 1);
    return text + "]";
  }
  std::string Quantifier() {
    static constexpr char const* kQuantifiers[] = {"?", "*", "+", "{2}", "{0,2}", "{1,3}", "{2,}", "{0}", "{3,70000}"};
    return OneIn(2) ? OneOf(kQuantifiers) : "";
  }

  std::mt19937 m_random;
};

void Compare(CSchemaPattern const& pattern, std::string const& text, bool expected, std::string const& written) {
  Require(pattern.Matches(text) == expected, "PCRE gives the same answer", written, text);
}

void TryCase(Cases& cases) {
  std::string const first = cases.Pattern(3);
  std::string const second = cases.OneIn(4) ? cases.Pattern(2) : first;
  CSchemaPattern const pattern(first);
  CSchemaPattern const other(second);
  std::string const combined = CSchemaPattern::Combine({{first}, {second}});
  CSchemaPattern const table = SchemaPatternAccess::FromRestriction(combined);
  for (int i = 0; i < 8; ++i) {
    std::string const text = cases.Text();
    bool const matches = SchemaPatternAccess::MatchesWithoutPcre(pattern, text);
    bool const both = matches && SchemaPatternAccess::MatchesWithoutPcre(other, text);
    Compare(pattern, text, matches, first);
    Compare(table, text, both, combined);
    Require(SchemaPatternAccess::MatchesWithoutPcre(table, text) == both, "a table means the same", combined, text);
  }
}

}  // namespace

int main(int argc, char** argv) {
  unsigned const count = argc > 1 ? static_cast<unsigned>(std::atoi(argv[1])) : 2000;
  unsigned const seed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
  Cases cases(seed);
  for (unsigned i = 0; i < count; ++i) TryCase(cases);
  std::printf("%u expressions, 8 texts each\n", count);
  return 0;
}
