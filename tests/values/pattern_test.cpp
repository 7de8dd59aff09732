#include "quillon9/values/pattern.h"

#include <gtest/gtest.h>

#include <cstddef>

#include "expect_failure.h"
#include "scoped_locale.h"
#include "stack.h"

namespace Quillon9 {
namespace {

constexpr std::size_t kSmallStack = 256 * 1024;

std::string Repeated(char const* text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

TEST(Pattern, Matches) {
  Testing::ScopedLocale const utf8("C.UTF-8");
  ASSERT_TRUE(utf8.IsThere());
  std::string const zero("a\0b", 3);
  // clang-format off
  struct { char const* pattern; std::string value; bool matches; } const rows[] = {
      {R"(\i\c*)", ":a-b.c1", true}, {R"(\i\c*)", "1a", false}, {R"(\I)", "1", true}, {R"(\I)", "a", false},
      {R"(\c\C)", "- ", true}, {R"(\C)", "-", false},
      {R"(\\i)", R"(\i)", true}, {R"(\\\i)", R"(\a)", true}, {R"(\\\\i)", R"(\\i)", true},  // escaped backslashes
      {R"([\\c]+)", R"(c\c)", true},
      {R"(\p{IsBasicLatin}+)", "abc\x7f", true}, {R"(\p{IsBasicLatin}+)", "ab\u00e9", false},
      {R"(\p{IsLatin-1Supplement}+)", "\u00e9\u00ff", true}, {R"(\p{IsLatin-1Supplement}+)", "\u0100", false},
      {R"(\p{IsLatinExtended-A}+)", "\u0100\u017f", true}, {R"(\p{IsLatinExtended-A}+)", "\u0180", false},
      {"a+", "aaab", false}, {"a+", "baaa", false}, {"a|ab", "ab", false}, {"ab|a", "ab", true},  // one try for all
      {R"(a\Kb)", "ab", false}, {"a*", "", true}, {"", "", true}, {"", "a", false},
      {"(((((((((((a)))))))))))b", "ab", true}, {"[^a]", "\u20ac", true}, {"..", "\u20ac", false},
      {"a", zero, true}, {"ab", zero, false},  // text after a zero byte is ignored
      {R"([\w-.]+)", "a-.", true}, {R"([\w-.]+)", ",", false}, {R"([^]\d-z])", "-", false}, {R"(\d-\d)", "1-2", true},
      {R"([\p{L}-9]+)", "a-9", true}, {R"([\p{L}-9]+)", "5", false}, {"[[:digit:]-a]+", "1-a", true},
      {R"([\-]-a])", "--a]", true}, {R"(\y\M+)", "yMM", true}, {R"(\\y)", R"(\y)", true}, {R"([\k\R]+)", "kR", true},
      {R"(\R)", "\n", true}, {R"(\x4\F)", "\x04" "F", true}, {R"(\Q[\d-z\y\E])", R"([\d-z\y])", true},
      {R"(\Q[\d-z)", R"([\d-z)", true}};
  // clang-format on
  for (auto const& row : rows) {
    EXPECT_EQ(row.matches, TestRegEx(row.pattern, row.value)) << row.pattern << " on " << row.value;
  }
}

TEST(Pattern, ValueIsInTheCodePageOfTheLocale) {
  for (int i = 0; i < 2; ++i) {  // a remembered pattern must not depend on a locale
    {
      Testing::ScopedLocale const ascii("C");
      EXPECT_FALSE(TestRegEx(".", "\u00e9"));
      EXPECT_TRUE(TestRegEx("..", "\u00e9"));
    }
    Testing::ScopedLocale const utf8("C.UTF-8");
    EXPECT_TRUE(TestRegEx(".", "\u00e9"));
  }
}

TEST(Pattern, ThatIsNoneIsAFailure) {
  struct {
    char const *pattern, *first, *second;  // the message of each generation of PCRE
  } const rows[] = {
      {"(a", "missing ) at offset 2", "missing closing parenthesis at offset 2"},
      {"a)", "unmatched parentheses at offset 1", "unmatched closing parenthesis at offset 1"},
      {"a**", "nothing to repeat at offset 2", "quantifier does not follow a repeatable item at offset 2"},
      {"[a", "missing terminating ] for character class at offset 2", nullptr},
      {"a\\", "\\ at end of pattern at offset 2", nullptr},
      {R"(\p{IsLatinExtended-B})", "range out of order in character class at offset 9", nullptr},
      {"\xff", "invalid UTF-8 string at offset 0", "UTF-8 error: illegal byte (0xfe or 0xff) at offset 0"}};
  for (auto const& row : rows) {
    std::string const text = QN_PCRE_GENERATION == 1 || row.second == nullptr ? row.first : row.second;
    for (int i = 0; i < 2; ++i) {
      EXPECT_FAILURE(CQnException, "Invalid pattern [" + std::string(row.pattern) + "]: " + text,
                     TestRegEx(row.pattern, "a"));
    }
  }
}

TEST(Pattern, ManyPatternsAreKeptApart) {
  for (int i = 0; i < 200; ++i) {
    std::string const text = "a" + std::to_string(i);
    EXPECT_TRUE(TestRegEx(text + "b", text + "b"));
    EXPECT_FALSE(TestRegEx(text + "b", text));
  }
}

TEST(Pattern, LongValuesNeitherCrashNorHang) {
  Testing::RunWithStack(kSmallStack, [] {
    for (char const* pattern : {R"(\c+)", "(a|b)*", R"(\i\c*)", "((a|b)(a|b))*", "[a-z]+"}) {
      for (std::size_t length : {10000U, 1U << 20}) {
        std::string value(length, 'a');
        EXPECT_TRUE(TestRegEx(pattern, value)) << pattern << " on " << length;
        value.back() = ' ';
        EXPECT_FALSE(TestRegEx(pattern, value)) << pattern << " on " << length;
      }
    }
    EXPECT_TRUE(TestRegEx(Repeated("(", 200) + "a" + Repeated(")*", 200), "aa"));
    EXPECT_TRUE(TestRegEx("[a-z]+", std::string(10 << 20, 'a')));
    EXPECT_FALSE(TestRegEx(R"(\c+)", std::string(10 << 20, 'a')));  // would take too much memory
  });
}

TEST(Pattern, WorkIsBounded) {
  for (char const* pattern : {"(a+)+$", "(a|aa)+$", "(.*)*x", "(a|a|a)*c", "(a*)*(a*)*(a*)*x", "([a-c]*[a-b]*)*d"}) {
    for (std::size_t length : {30U, 3000U, 100000U}) {
      EXPECT_FALSE(TestRegEx(pattern, std::string(length, 'a') + "b")) << pattern << " on " << length;
    }
  }
}

// PCRE cannot compile a callout before an assertion to machine code, so its interpreter runs: that of the first
// generation on our stack.
TEST(Pattern, InterpreterStaysWithinItsMemory) {
  char const* const pattern = "(?:(?(?C1)(?=x)x|(a|b)))*";
  auto const matchAll = [pattern] {
    EXPECT_TRUE(TestRegEx(pattern, Repeated("abx", 10)));
    EXPECT_FALSE(TestRegEx(pattern, "abxc"));
    EXPECT_FALSE(TestRegEx(pattern, std::string(1 << 20, 'a')));  // too deep
  };
  matchAll();
  EXPECT_TRUE(TestRegEx(pattern, Repeated("abx", 100)));
  Testing::RunWithStack(kSmallStack, matchAll);
}

TEST(FindReplace, ReplacesUntilNoneIsLeft) {
  // clang-format off
  struct { char const *text, *search, *replacement, *result; } const rows[] = {
      {"", "a", "b", ""}, {"abcabc", "b", "xy", "axycaxyc"}, {"aaaa", "aa", "a", "a"}, {"aaabbbb", "ab", "", "b"},
      {"xaab", "ab", "b", "xb"}, {"aab", "ab", "bba", "bbbbaa"}, {"abc", "x", "xx", "abc"}};
  // clang-format on
  for (auto const& row : rows) {
    std::string text = row.text;
    FindReplace(text, row.search, row.replacement);
    EXPECT_EQ(row.result, text) << row.text << ": " << row.search << " to " << row.replacement;
  }
  std::wstring wide = L"a\u20acb\u20ac";
  FindReplace(wide, L"\u20ac", L"EUR");
  EXPECT_EQ(L"aEURbEUR", wide);
}

TEST(FindReplace, EndlessIsAFailure) {
  std::string text = "aXb";
  EXPECT_FAILURE(CQnException, "Cannot replace an empty text", FindReplace(text, "", "a"));
  EXPECT_FAILURE(CQnException, "Cannot replace a text by one that contains it", FindReplace(text, "X", "yXy"));
  EXPECT_EQ("aXb", text);
}

}  // namespace
}  // namespace Quillon9
