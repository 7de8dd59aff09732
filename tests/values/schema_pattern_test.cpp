#include "quillon9/values/schema_pattern.h"

#include <gtest/gtest.h>

#include <ctime>
#include <thread>

#include "base/address_sanitizer.h"  // QN_ADDRESS_SANITIZER
#include "expect_failure.h"
#include "quillon9/values/pattern.h"
#include "scoped_locale.h"
#include "stack.h"
#include "values/schema_pattern_access.h"

namespace Quillon9 {
namespace {

using Steps = std::vector<std::vector<std::string>>;

std::string Repeated(std::string const& text, int count) {
  std::string result;
  for (int i = 0; i < count; ++i) result += text;
  return result;
}

bool MatchesEachWay(CSchemaPattern const& pattern, std::string const& text, bool expected) {
  return pattern.Matches(text) == expected && SchemaPatternAccess::MatchesWithoutPcre(pattern, text) == expected;
}

// Whether all ways to ask give the expected answer: the steps each for themselves, and the text for a table.
bool MatchesAll(Steps const& steps, std::string const& text, bool expected) {
  std::string const combined = CSchemaPattern::Combine(steps);
  if (TestRegEx(combined, text) != expected) return false;
  if (steps.size() == 1 && steps[0].size() == 1 && !MatchesEachWay(CSchemaPattern(steps[0][0]), text, expected)) {
    return false;
  }
  return MatchesEachWay(SchemaPatternAccess::FromRestriction(combined), text, expected);
}

TEST(SchemaPattern, Matches) {
  Testing::ScopedLocale const utf8("C.UTF-8");
  // clang-format off
  struct { Steps steps; std::vector<char const*> matching, others; } const rows[] = {
      {{{"a|ab"}}, {"a", "ab"}, {"abb", ""}},
      {{{"(ab)?(abc)?"}}, {"abc", "ab", "ababc", ""}, {"abca"}},
      {{{"a", "b+"}}, {"a", "bb"}, {"ab"}},
      {{{"[a-z]+"}, {".{3}", "x.*"}}, {"abc", "xy"}, {"ab", "AB1", "x1"}},
      {{{"[a-z]+"}, {"[a-z]+"}, {"a|ab"}, {"ab?"}}, {"a", "ab"}, {"abb"}},
      {{{"a"}, {"b?a|a"}}, {"a"}, {"ba", ""}},  // PCRE2 expects two characters of the value, unless told otherwise
      {{{""}}, {""}, {"a"}}, {{{"|a"}}, {"", "a"}, {"b"}}, {{{"(|a)+b"}}, {"b", "aab"}, {"a"}},
      {{{"a{0}b{2,2}c{1,}"}}, {"bbc", "bbccc"}, {"abbc", "bb"}},
      {{{"a{007}"}}, {"aaaaaaa"}, {"aaaaaa"}}, {{{"(a{2}){2}"}}, {"aaaa"}, {"aaa", "aa"}},
      {{{"(a?b?){2}"}}, {"", "abab", "bb"}, {"bbb"}},
      {{{"^a$|\\^\\.\\-"}}, {"^a$", "^.-"}, {"a"}}, {{{"a-b,\"x\""}}, {"a-b,\"x\""}, {"ab"}},
      {{{"\\d\\D"}}, {"1a", "\u0663-"}, {"11"}}, {{{"\\d{2}"}}, {"11", "\u0663\u0664"}, {"1", "\u0663"}},
      {{{"\\w\\W"}}, {"\u00e4 ", "+!"}, {"!a", "_a"}},
      {{{"\\s\\S"}}, {" a", "\t."}, {"  ", "\u00a0a"}},
      {{{"\\i\\c*"}}, {"a:b-1", "\u00e4.\u0416", "_"}, {"1a", "a b"}}, {{{"\\I\\C"}}, {"1 ", "-!"}, {"a ", "1a"}},
      {{{"[\\i-[:]][\\c-[:]]*"}}, {"ab", "a-b"}, {"a:b", ":a", ""}},
      {{{"[a-z-[aeiou-[e]]]+"}}, {"bed"}, {"bad"}}, {{{"[^a-c-[x-z]]+"}}, {"dw-"}, {"dx", "a"}},
      {{{"[^a-c\\d]+"}}, {"xyz"}, {"xa", "x1"}}, {{{"[\\D\\p{L}]"}}, {"\u0416", "a", "-"}, {"1"}},
      {{{"[\\-+.\\[\\]^-]+"}}, {"-+.[]^"}, {",", "\\"}}, {{{"[a-]x"}}, {"ax", "-x"}, {"bx"}},
      {{{"\\p{Lu}\\P{Lu}\\p{IsCyrillic}\\P{IsBasicLatin}"}}, {"A1\u0416\u00e4"}, {"A1ab", "aA\u0416\u00e4"}},
      {{{"[\\p{IsGreek}\\P{L}]+"}}, {"\u03b1" "1"}, {"a"}},
      {{{"\\p{IsSpecials}\\P{IsSpecials}"}}, {"\uFFFCa", "\uFEFF\uFF00"}, {"a\uFFFC", "\uFEFF\uFEFF"}},
      {{{"a.b"}}, {"a.b", "a\u20acb", "a\U00010348b"}, {"a\nb", "a\rb"}},
      {{{"\\\\i\\/"}}, {"\\i/"}, {"bi/"}}, {{{"\\n\\r\\t"}}, {"\n\r\t"}, {"nrt"}},
      {{{"[\u00e4-\u00f6\u20ac]"}}, {"\u00e4", "\u00f0", "\u20ac"}, {"a", "\u00e3"}}};
  // clang-format on
  for (auto const& row : rows) {
    for (char const* text : row.matching) EXPECT_TRUE(MatchesAll(row.steps, text, true)) << row.steps[0][0] << text;
    for (char const* text : row.others) EXPECT_TRUE(MatchesAll(row.steps, text, false)) << row.steps[0][0] << text;
  }
  for (char const* text : {"a\xff", "a\xed\xa0\x80", "a\xc3"}) {
    EXPECT_TRUE(MatchesEachWay(CSchemaPattern("a.*"), text, false));  // not UTF-8
  }
  std::string const zero("a\0b", 3);
  EXPECT_TRUE(CSchemaPattern("a[^a-z]b").Matches(zero));
  EXPECT_FALSE(CSchemaPattern("a").Matches(zero));
}

TEST(SchemaPattern, TextForATableIsOneThatTheLibraryReadsWithoutPcre) {
  EXPECT_EQ("[A-Z]{3}-\\.", CSchemaPattern::Combine({{"[A-Z]{3,3}-\\."}}));
  EXPECT_EQ("", CSchemaPattern::Combine({}));
}

TEST(SchemaPattern, FaultIsNamed) {
  struct {
    char const *pattern, *reason;
    int offset;
  } const rows[] = {{"(a", "\")\" is missing", 2},
                    {"a)", "a \")\" without \"(\"", 1},
                    {"[a", "a \"]\" is missing", 2},
                    {"[]", "a class is empty", 1},
                    {"*a", "unexpected \"*\"", 0},
                    {"a**", "unexpected \"*\"", 2},
                    {"[a-]b-]", "unexpected \"]\"", 6},
                    {"a{2,1}", "the counts in \"{}\" are in the wrong order", 6},
                    {"a{", "a number is missing in \"{}\"", 2},
                    {"a{1", "\"}\" is missing", 3},
                    {"\\q", "there is no \"\\q\"", 2},
                    {"\\x{41}", "there is no \"\\x\"", 2},
                    {"(?:a)", "unexpected \"?\"", 1},
                    {"a\\", "nothing stands after \"\\\"", 2},
                    {"\\p{IsNothing}", "there is no block \"IsNothing\"", 3},
                    {"\\p{Lx}", "there is no category \"Lx\"", 3},
                    {"\\p{L Lu}", "there is no category \"L Lu\"", 3},
                    {"\\p{L", "\"\\p\" needs a name in \"{}\"", 3},
                    {"[z-a]", "the characters of a range are in the wrong order", 4},
                    {"[a-\\d]", "a set of characters cannot be the end of a range", 5},
                    {"[a--z]", "\"-\" cannot be the end of a range", 3},
                    {"[a-c-e]", "a \"-\" in a class must be its first or last character", 5},
                    {"[a[b]]", "unexpected \"[\" in a class", 2},
                    {"[a-z-[b]", "\"]\" is missing", 8},
                    {"a\xff", "it is not UTF-8", 1}};
  for (auto const& row : rows) {
    std::string const text = std::string(": ") + row.reason + " at offset " + std::to_string(row.offset);
    EXPECT_FAILURE(CQnException, "Invalid pattern [" + std::string(row.pattern) + "]" + text,
                   CSchemaPattern(row.pattern));
    CSchemaPattern::Faults const faults = CSchemaPattern::Check(row.pattern);
    EXPECT_EQ(row.reason, faults.error);
    EXPECT_EQ(row.offset, faults.offset);
  }
  EXPECT_EQ("it is nested more than 100 levels deep", CSchemaPattern::Check(std::string(100'000, '(')).error);
  EXPECT_EQ("it is nested more than 100 levels deep", CSchemaPattern::Check(Repeated("[a-", 100'000)).error);
}

TEST(SchemaPattern, WhatMostProcessorsTakeIsAWarning) {
  EXPECT_EQ("\"\\/\" needs no \"\\\"", CSchemaPattern::Check("a\\/b").warning);
  EXPECT_EQ("a \"-\" in a class must be its first or last character", CSchemaPattern::Check("[\\w-.]").warning);
  EXPECT_EQ("", CSchemaPattern::Check("[\\w.-]\\-[\\w--[a]]").warning);
  EXPECT_TRUE(CSchemaPattern("[\\w-.]+").Matches("a-."));
}

// Expressions that are nested as deep as they may be need no more. Instrumented functions have frames that are several
// times as large.
#ifdef QN_ADDRESS_SANITIZER
constexpr std::size_t kSmallStack = 2 * 1024 * 1024;
#else
constexpr std::size_t kSmallStack = 256 * 1024;
#endif

// PCRE refuses the first ones, and gives up on the others.
TEST(SchemaPattern, WorkIsBoundedAndTheAnswerIsRight) {
  struct {
    std::string pattern, text;
    bool matches;
  } const rows[] = {{"x{1,1000000}", std::string(100'000, 'x'), true},
                    {"x{0,70000}", std::string(70'001, 'x'), false},
                    {"(a?){1000000}", std::string(10'000, 'a'), true},
                    {"a{99999999999999999999,}", "a", false},
                    {"(x{1,1000}){1,1000}", std::string(1000, 'x') + "y", false},
                    {"([\\p{Lu}\\d-[5]]{2}){2,70000}", Repeated("A1\u0416\u0416", 1000), true},
                    {Repeated("(", 100) + "a" + Repeated(")*", 100), "aaa", true},
                    {"(a*)*b", std::string(10'000, 'a'), false},
                    {"(a|aa)+", std::string(10'000, 'a') + "c", false},
                    {"(a|aa)+c", std::string(10'000, 'a') + "c", true},
                    {"(a((a((a(a*x)?)*y)?)*z)?)*", std::string(100, 'a'), true},
                    {"(.*,){11}P", Repeated("1,", 20) + "x", false}};
  Testing::RunWithStack(kSmallStack, [&rows] {
    for (auto const& row : rows) {
      CSchemaPattern const pattern(row.pattern);
      EXPECT_EQ(row.matches, pattern.Matches(row.text)) << row.pattern;
      EXPECT_EQ(row.matches, SchemaPatternAccess::MatchesWithoutPcre(pattern, row.text)) << row.pattern;
    }
  });
  EXPECT_FAILURE(CQnException, "The value is too long to be matched",
                 CSchemaPattern("(ab|a|b{1,2}){70000}").Matches(Repeated("ab", 70'000)));
}

TEST(SchemaPattern, LongExpressionTakesTimeInProportion) {
  std::string const pattern = Repeated("a|", 50'000) + "b";
  std::clock_t const start = std::clock();
  EXPECT_TRUE(CSchemaPattern(pattern).Matches("b"));
  EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
}

TEST(SchemaPattern, MatchesInSeveralThreadsAtOnce) {
  CSchemaPattern const pattern("(ab|cd)+");
  std::string const text = Repeated("abcd", 1000);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int j = 0; j < 100; ++j)
        EXPECT_TRUE(pattern.Matches(text) && pattern.Matches("ab") && !pattern.Matches("a"));
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace Quillon9
