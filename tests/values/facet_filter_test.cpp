#include "values/facet_filter.h"

#include <gtest/gtest.h>

#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/values/pattern.h"
#include "scoped_locale.h"
#include "values/fixed_pattern.h"

namespace Quillon9 {
namespace {

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

// Patterns that CFixedPattern accepts match as in the regular expression engine.
TEST(FixedPattern, GivesTheEnginesAnswers) {
  struct Case {
    char const* pattern;
    bool isFixed;
  } const cases[] = {{"[A-Z]{3}", true},
                     {"\\d{3}-[A-Z]{2}", true},
                     {"a", true},
                     {"", true},
                     {"[a-cx_ ]\\.\\-:{2}", true},
                     {"#1, b{01}", true},
                     {"[A-z]{2}", true},
                     {"a{64}", true},
                     {"a{65}", false},
                     {"a{0}", false},
                     {"a{1,2}", false},
                     {"a{", false},
                     {"a{}", false},
                     {"{2}", false},
                     {"a{2}{2}", false},
                     {"a{2}?", false},
                     {"a?", false},
                     {"a+", false},
                     {"a*", false},
                     {"a|ab", false},
                     {"(a)", false},
                     {".", false},
                     {"^a$", false},
                     {"[^a]", false},
                     {"[a-]", false},
                     {"[-a]", false},
                     {"[b-a]", false},
                     {"[a-b-c]", false},
                     {"[]a]", false},
                     {"[a", false},
                     {"[]", false},
                     {"[[:alpha:]]", false},
                     {"[.a.]", false},
                     {"[\\d]", false},
                     {"[\\p{Nd}]{3}-[A-Z]{2}", true},
                     {"[_\\p{Nd}a-f]{2}", true},
                     {"[\\p{Nd}-a]", false},
                     {"[\\p{Nd}", false},
                     {"\\p{Nd}", false},
                     {"\\D", false},
                     {"\\i\\c*", false},
                     {"\\\\", false},
                     {"\\", false},
                     {"a]", false},
                     {"\xC3\xA4", false}};
  std::string const values[] = {"",
                                "a",
                                "aa",
                                "ABC",
                                "ABCD",
                                "AbC",
                                "123-AB",
                                "123-Ab",
                                "x.-::",
                                "_.-::",
                                "#1, b",
                                "\\_",
                                "[Z",
                                std::string(64, 'a'),
                                std::string("AB\0", 3),
                                "\xC3\xA4",
                                "A\xC3\xA4"};
  for (Case const& each : cases) {
    auto const pattern = CFixedPattern::Parse(each.pattern);
    ASSERT_EQ(each.isFixed, pattern.has_value()) << each.pattern;
    if (!pattern) continue;
    for (std::string const& value : values) {
      if (value.find('\0') != std::string::npos) {
        EXPECT_FALSE(pattern->Matches(value));
      } else {
        EXPECT_EQ(TestRegEx(each.pattern, value), pattern->Matches(value)) << each.pattern << ' ' << value;
      }
    }
  }
}

bool Keeps(QnVariant const& value, ItemType type, CPrimitiveRestrictions const& facets) {
  try {
    CXmlObjectHelper::CheckRestriction("n", value, type, facets);
    return true;
  } catch (CQnException const&) {
    return false;
  }
}

// A filter may leave a value to the check, but it must itself accept values of its kind that satisfy common facets.
TEST(FacetFilter, LetsPassWhatTheCheckLetsPass) {
  struct Case {
    ItemType type;
    CPrimitiveRestrictions facets;
    bool isKnown;
    std::initializer_list<char const*> values;
  } const cases[] = {
      {ItemType_i4, {"", -1, -1, "1", " 9 ", "", "", -1}, true, {"0", "1", "9", "10"}},
      {ItemType_ui1, {"", -1, -1, "", "", "1", "9", -1}, true, {"1", "2", "8", "9"}},
      {ItemType_i8, {"", 9, 9, "1", "x", "", "", 9}, false, {"0", "1", "9"}},
      {ItemType_r8, {"", -1, -1, "0.5", "", "", "", -1}, true, {"0.25", "0.5", "NaN", "1e300"}},
      {ItemType_r4, {"", -1, -1, "NaN", "", "", "", -1}, true, {"1", "NaN"}},
      {ItemType_decimal, {"", -1, -1, "-0", "", "", "10", -1}, true, {"-0.01", "0", "9.99", "10.0"}},
      {ItemType_integer, {"", -1, -1, "", "99999999999999999999", "", "", -1}, true, {"5", "100000000000000000000"}},
      {ItemType_date, {"", -1, -1, "", "", "", "", -1}, true, {"2001-02-03"}},
      {ItemType_date, {"", -1, -1, "2001-01-01", "", "", "", -1}, false, {"2001-02-03", "2000-02-03"}},
      {ItemType_month, {"", -1, -1, "--03", "", "", "", -1}, true, {"--02", "--03"}},
      {ItemType_boolean, {"x", 9, 9, "x", "x", "x", "x", 9}, true, {"true"}},
      {ItemType_base64Binary, {"x", -1, -1, "x", "", "", "", -1}, true, {"QUJD"}},
      {ItemType_base64Binary, {"", -1, 2, "", "", "", "", -1}, false, {"QUI=", "QUJD"}},
      {ItemType_string, {"", 2, 3, "x", "", "", "", -1}, true, {"a", "ab", "abc", "abcd"}},
      {ItemType_string, {"", -1, -1, "", "", "", "", 0}, true, {"", "a"}},
      {ItemType_string, {"[A-Z]{2}", -1, -1, "", "", "", "", 2}, true, {"AB", "A", "ab", "A\xC3\xA4"}},
      {ItemType_string, {"[A-Z]*", -1, -1, "", "", "", "", -1}, false, {"AB", "ab"}},
      {ItemType_char, {"", -1, -1, "", "", "", "", -1}, false, {"a"}}};
  for (Case const& each : cases) {
    auto const filter = CFacetFilter::Make(each.type, each.facets);
    EXPECT_EQ(each.isKnown, filter != nullptr) << each.type;
    for (char const* const text : each.values) {
      QnVariant value;
      value.FromString(text, each.type, kCollapse);
      EXPECT_EQ(each.isKnown && Keeps(value, each.type, each.facets), filter != nullptr && filter->Passes(value))
          << each.type << ' ' << text;
    }
    if (filter == nullptr) continue;
    EXPECT_FALSE(filter->Passes(QnVariant()));
    QnVariant other;
    other.SetChar('a');
    EXPECT_FALSE(filter->Passes(other));
  }
}

// Where ASCII bytes may represent other characters, the check converts the value.
TEST(FacetFilter, LeavesPatternsToTheCheckInCodePagesUnlikeAscii) {
  auto const filter = CFacetFilter::Make(ItemType_string, {"[A-Z]{2}", -1, -1, "", "", "", "", -1});
  QnVariant value;
  value.SetString("AB");
  EXPECT_TRUE(filter->Passes(value));
  Testing::ScopedLocale const locale("ja_JP.SJIS");
  if (!locale.IsThere()) GTEST_SKIP() << "no locale ja_JP.SJIS";
  EXPECT_FALSE(filter->Passes(value));
}

}  // namespace
}  // namespace Quillon9
