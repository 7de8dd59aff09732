#include <gtest/gtest.h>

#include "expect_failure.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/variant.h"
#include "scoped_locale.h"

namespace Quillon9 {
namespace {

using Facets = CPrimitiveRestrictions;
using Helper = CXmlObjectHelper;

Facets Bounds(char const* minInclusive, char const* maxInclusive, char const* minExclusive, char const* maxExclusive) {
  return Facets("", -1, -1, minInclusive, maxInclusive, minExclusive, maxExclusive, -1);
}

Facets Lengths(int minLength, int maxLength, int length) {
  return Facets("", minLength, maxLength, "", "", "", "", length);
}

Facets Pattern(char const* pattern) { return Facets(pattern, -1, -1, "", "", "", "", -1); }

/// The failure of a check, the text of CheckRestriction for \p text as a value of the kind \p type; empty for none.
std::string Checked(ItemType type, std::string const& text, Facets const& facets) {
  QnVariant value;
  value.FromString(text, type, CWhitespaceUtils::WhitespaceRule_None);
  try {
    Helper::CheckRestriction("a", value, type, facets);
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
  return "";
}

constexpr ItemType kNumbers[] = {ItemType_i1,  ItemType_i2,  ItemType_i4,  ItemType_i8, ItemType_ui1,
                                 ItemType_ui2, ItemType_ui4, ItemType_ui8, ItemType_r4, ItemType_r8};

TEST(Facets, BoundsOfNumbers) {
  struct {
    Facets facets;
    bool below, equal, above;  // whether 4, 5 and 6 pass
  } const rows[] = {
      {Bounds("5", "", "", ""), false, true, true},   {Bounds("", "5", "", ""), true, true, false},
      {Bounds("", "", "5", ""), false, false, true},  {Bounds("", "", "", "5"), true, false, false},
      {Bounds("4", "6", "4", ""), false, true, true}, {Bounds(" 5\n", "", "", ""), false, true, true},
  };
  for (ItemType type : kNumbers) {
    std::string const tail = type == ItemType_r4 || type == ItemType_r8 ? ".000000]" : "]";
    for (auto const& row : rows) {
      EXPECT_EQ(row.below ? "" : "Invalid Value for a [4" + tail, Checked(type, "4", row.facets)) << type;
      EXPECT_EQ(row.equal ? "" : "Invalid Value for a [5" + tail, Checked(type, "5", row.facets)) << type;
      EXPECT_EQ(row.above ? "" : "Invalid Value for a [6" + tail, Checked(type, "6", row.facets)) << type;
    }
  }
}

TEST(Facets, ExtremesOfNumbers) {
  Facets const small = Bounds("", "1", "", "");
  // clang-format off
  struct { ItemType type; char const* value; Facets facets; char const* failure; } const rows[] = {
      {ItemType_ui4, "4294967295", small, "Invalid Value for a [-1]"},
      {ItemType_ui4, "4294967295", Bounds("1", "", "", ""), ""},
      {ItemType_ui8, "18446744073709551615", small, "Invalid Value for a [18446744073709551615]"},
      {ItemType_r4, "1.5", small, "Invalid Value for a [1.500000]"},
      {ItemType_r4, "0.1", Bounds("0.1", "0.1", "", ""), ""},  // the bound is a float too
      {ItemType_r8, "INF", small, "Invalid Value for a [inf]"},
      {ItemType_r8, "NaN", small, "Invalid Value for a [nan]"},
      {ItemType_r8, "NaN", Facets(), ""},
      {ItemType_r8, "1", Bounds("", "", "", "NaN"), "Invalid Value for a [1.000000]"},
      {ItemType_boolean, "1", Bounds("x", "x", "x", "x"), ""},
      {ItemType_i4, "5", Facets("x", 9, 0, "", "", "", "", 0), ""},  // facets of other kinds are ignored
      {ItemType_ui1, "5", Bounds("", "", "", "256"), "The value [256] is to large to fit in a ui1"},
      {ItemType_i4, "5", Bounds("6", "abc", "", ""), "Invalid Value for a [5]"},  // further bounds are not read
  };
  // clang-format on
  for (auto const& row : rows) EXPECT_EQ(row.failure, Checked(row.type, row.value, row.facets)) << row.value;
  EXPECT_FAILURE(CQnInvalidValueException, "The value [abc] can not be converted to a i4",
                 Helper::CheckRestrictionFori4("a", 5, Bounds("abc", "", "", "")));
}

TEST(Facets, LengthsAndPatternsOfStrings) {
  Facets const both("[a-z]*", 4, -1, "", "", "", "", -1);
  for (Facets const& good : {Lengths(3, 3, 3), Pattern("[a-c]{3}"), Pattern(R"(\i\c*)"), Bounds("x", "x", "x", "x")}) {
    EXPECT_EQ("", Checked(ItemType_string, "abc", good));
  }
  for (Facets const& bad : {Lengths(4, -1, -1), Lengths(-1, 2, -1), Lengths(-1, -1, 0), Pattern("ab"), both}) {
    EXPECT_EQ("Invalid Value for a [abc]", Checked(ItemType_string, "abc", bad));
  }
  EXPECT_EQ("", Checked(ItemType_string, "", Lengths(-1, -1, 0)));
  EXPECT_EQ("", Checked(ItemType_string, "\u20ac", Lengths(-1, -1, 3)));  // bytes
  EXPECT_FAILURE(CQnException, "Invalid Value for a [abc]",
                 Helper::CheckRestrictionForstring("a", "abc", Lengths(4, -1, -1)));
}

TEST(Facets, PatternIsInTheCodePageOfTheLocale) {
  {
    Testing::ScopedLocale const utf8("C.UTF-8");
    ASSERT_TRUE(utf8.IsThere());
    EXPECT_EQ("", Checked(ItemType_string, "\u00e4\u00f6", Pattern("[\u00e0-\u00ff]{2}")));
    EXPECT_NE("", Checked(ItemType_string, "\u20ac", Pattern("[\u00e0-\u00ff]")));
  }
  Testing::ScopedLocale const ascii("C");
  // No character above 127 exists here, so each such byte represents an unknown one, on both sides.
  EXPECT_EQ("", Checked(ItemType_string, "x?", Pattern("x[\xe4]")));
}

TEST(Facets, LengthsOfBinaryDataAreBytes) {
  for (ItemType type : {ItemType_hexBinary, ItemType_base64Binary}) {
    char const* const text = type == ItemType_hexBinary ? "4D616E" : "TWFu";
    EXPECT_EQ("", Checked(type, text, Lengths(3, 3, 3)));
    EXPECT_EQ("Invalid Value for a [4D616E]", Checked(type, text, Lengths(4, -1, -1)));
  }
  EXPECT_FAILURE(CQnException, "Invalid Value for a []",
                 Helper::CheckRestrictionForhexBinary("a", CBinaryData(), Lengths(1, -1, -1)));
}

TEST(Facets, KindsWithoutFacets) {
  QnVariant value;
  value.SetChar('x');
  EXPECT_FAILURE(CQnInvalidValueException, "unknown type [char]",
                 Helper::CheckRestriction("a", value, ItemType_char, Facets()));
  value.Clear();
  EXPECT_FAILURE(CQnException, "Invalid Type 0", Helper::CheckRestriction("a", value, ItemType_invalid, Facets()));
  value.SetI4(5);
  EXPECT_FAILURE(CQnException, "Invalid Type 5 to read as string",
                 Helper::CheckRestriction("a", value, ItemType_string, Facets()));
}

TEST(Facets, BoundsOfDatesMayCountMonths) {
  struct {
    ItemType type;
    char const* below;
    char const* bound;
    char const* above;
  } const cases[] = {
      {ItemType_date, "2001-01-15", "2001-03-10", "2001-05-05"},
      {ItemType_date, "2000-02-29", "2000-03-01", "2000-03-02"},
      {ItemType_date, "-0001-12-31", "0001-01-01", "0001-01-02"},
      {ItemType_date, "2001-01-01+14:00", "2001-01-01Z", "2001-01-01-01:00"},
      {ItemType_date, "1999-12-31", "2000-01-01Z", "2000-01-02"},  // by more than 14 hours
      {ItemType_datetime, "2000-12-31T23:59:59.999999999", "2001-01-01T00:00:00", "2001-01-01T00:00:00.000000001"},
      {ItemType_datetime, "2000-12-31T19:59:59-04:00", "2001-01-01T00:00:00Z", "2001-01-01T05:31:00+05:30"},
      {ItemType_time, "09:00:00", "10:00:00", "10:00:00.5"},
      {ItemType_yearMonth, "1999-12", "2000-02", "2000-03"},
      {ItemType_monthDay, "--02-29", "--03-01", "--04-01"},
  };
  for (auto const& each : cases) {
    Facets least = Bounds(each.bound, "", "", "");
    Facets most = Bounds("", "", "", each.bound);
    least.comparesMonths = most.comparesMonths = true;
    EXPECT_NE("", Checked(each.type, each.below, least)) << each.below;
    EXPECT_EQ("", Checked(each.type, each.bound, least)) << each.bound;
    EXPECT_EQ("", Checked(each.type, each.above, least)) << each.above;
    EXPECT_EQ("", Checked(each.type, each.below, most)) << each.below;
    EXPECT_NE("", Checked(each.type, each.bound, most)) << each.bound;
    EXPECT_NE("", Checked(each.type, each.above, most)) << each.above;
  }
}

}  // namespace
}  // namespace Quillon9
