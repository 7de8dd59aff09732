// Values under both rules: those of CConversions and CXmlObjectHelper, and those of XML Schema. The tables are those of
// docs/values.md.

#include "quillon9/values/schema_values.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "expect_failure.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/object_helper.h"
#include "support/scoped_locale.h"
#include "text/utf8_text.h"
#include "values/schema_facets.h"

namespace Quillon9 {
namespace {

using namespace std::string_literals;

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;
constexpr auto kReplace = CWhitespaceUtils::WhitespaceRule_Replace;
constexpr auto kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;

QnVariant Parsed(std::string const& text, ItemType type) { return CSchemaValues::FromText(text, type, kCollapse); }

/// "invalid" and "too large" stand for the two failures that reading by the rules of XML Schema has.
std::string Reread(std::string const& text, ItemType type) {
  try {
    return CSchemaValues::ToText(Parsed(text, type));
  } catch (CQnInvalidValueException const& failure) {
    std::string const message = failure.GetFullMessage();
    if (message.find("] is not a valid ") != std::string::npos) return "invalid";
    return message.find("] is too large for a ") != std::string::npos ? "too large" : message;
  }
}

std::string RereadClassically(std::string const& text, ItemType type) {
  try {
    QnVariant value;
    value.FromString(text, type, kCollapse);
    return value.ToString();
  } catch (CQnException const&) {
    return "invalid";
  }
}

TEST(ValueRules, TextsOfBothRules) {
  struct Row {
    ItemType type;
    std::string text, classic, schema;
  };
  Row const rows[] = {
      {ItemType_i4, "", "0", "invalid"},
      {ItemType_i4, " +007\t", "7", "7"},
      {ItemType_i4, "1\r2", "12", "invalid"},
      {ItemType_i4, "2147483648", "invalid", "invalid"},
      {ItemType_i4, "-0002147483648", "-2147483648", "-2147483648"},
      {ItemType_i4, "1.0", "invalid", "invalid"},
      {ItemType_i1, "128", "invalid", "invalid"},
      {ItemType_i8, "-9223372036854775808", "-9223372036854775808", "-9223372036854775808"},
      {ItemType_ui4, "-1", "4294967295", "invalid"},
      {ItemType_ui8, "-1", "18446744073709551615", "invalid"},
      {ItemType_ui8, "18446744073709551616", "invalid", "invalid"},
      {ItemType_ui1, "-0", "0", "0"},
      {ItemType_integer, "", "0", "invalid"},
      {ItemType_integer, "-", "0", "invalid"},
      {ItemType_integer, "12-3", "3", "invalid"},
      {ItemType_integer, "1.6", "2", "invalid"},
      {ItemType_integer, "1E3", "1000", "invalid"},
      {ItemType_integer, "+0" + std::string(40, '9'), std::string(40, '9'), std::string(40, '9')},
      {ItemType_decimal, "", "0", "invalid"},
      {ItemType_decimal, ".", "0", "invalid"},
      {ItemType_decimal, "1-2", "-12", "invalid"},
      {ItemType_decimal, "1 2", "12", "invalid"},
      {ItemType_decimal, "1e2", "100", "invalid"},
      {ItemType_decimal, "+.50", "0.5", "0.5"},
      {ItemType_decimal, "-00.00", "0", "0"},
      {ItemType_decimal, "5.", "5", "5"},
      {ItemType_decimal, "-0.1234567890123456789012345678904", "-0.123456789012345678901234567890",
       "-0.1234567890123456789012345678904"},
      {ItemType_decimal, "0." + std::string(31, '9'), "0.1" + std::string(30, '0'), "0." + std::string(31, '9')},
      {ItemType_decimal, "12.0000000000000000000000000000000000000034", "12",
       "12.0000000000000000000000000000000000000034"},
      {ItemType_decimal, std::string(500001, '7'), "invalid", "too large"},
      {ItemType_decimal, "0." + std::string(100001, '7'), "0." + std::string(29, '7') + "8", "too large"},
      {ItemType_r8, "", "NaN", "invalid"},
      {ItemType_r8, "inf", "INF", "invalid"},
      {ItemType_r8, "+INF", "INF", "invalid"},
      {ItemType_r8, "nan", "NaN", "invalid"},
      {ItemType_r8, "1.#QNAN", "NaN", "invalid"},
      {ItemType_r8, "0x10", "16", "invalid"},
      {ItemType_r8, "-INF", "-INF", "-INF"},
      {ItemType_r8, "NaN", "NaN", "NaN"},
      {ItemType_r8, "8.72", "8.720000000000001", "8.72"},
      {ItemType_r8, "-0", "-0", "-0"},
      {ItemType_r8, "+1.E+2", "100", "100"},
      {ItemType_r8, "-1e400", "-INF", "-INF"},
      {ItemType_r8, "-1e-400", "-0", "-0"},
      {ItemType_r8, "1e", "invalid", "invalid"},
      {ItemType_r8, "1d", "invalid", "invalid"},
      {ItemType_r4, "0.30000001", "0.3", "0.3"},
      {ItemType_r4, "0.30000004", "0.3", "0.30000004"},
      {ItemType_r4, "7.038531e-26", "7.038531e-26", "7.038531e-26"},
      {ItemType_r4, "3.5e38", "INF", "INF"},
      {ItemType_boolean, "TRUE", "true", "invalid"},
      {ItemType_boolean, " 1\n", "true", "true"},
      {ItemType_boolean, "", "invalid", "invalid"},
      {ItemType_char, "a", "a", "a"},
      {ItemType_char, "ab", "invalid", "invalid"},
      {ItemType_string, " a\r\n b", "a b", "a b"},
      {ItemType_string, "a\rb", "ab", "a b"},
      {ItemType_hexBinary, " 0aFF ", "0AFF", "0AFF"},
      {ItemType_hexBinary, "0aF", "invalid", "invalid"},
      {ItemType_hexBinary, "0g", "invalid", "invalid"},
      {ItemType_hexBinary, "", "", ""},
      {ItemType_base64Binary, "TQ==", "TQ=\0"s, "TQ=="},
      {ItemType_base64Binary, "TQ= =", "TQ=\0"s, "TQ=="},
      {ItemType_base64Binary, "TQ=", "TQ=\0"s, "invalid"},
      {ItemType_base64Binary, "TQ", "TQ=\0"s, "invalid"},
      {ItemType_base64Binary, "TR==", "TQ=\0"s, "invalid"},
      {ItemType_base64Binary, "TWF=", "TWE=", "invalid"},
      {ItemType_base64Binary, "T WF\n u", "TWFu", "TWFu"},
      {ItemType_base64Binary, "TWFu=", "TWFu", "invalid"},
      {ItemType_base64Binary, "T*Fu", "", "invalid"},
      {ItemType_base64Binary, "TWFuT", "TWFu", "invalid"},
      {ItemType_base64Binary, "TQ==TQ==", "TQTQ", "invalid"},
      {ItemType_base64Binary, "", "", ""},
      {ItemType_datetime, "12000-01-01T00:00:00Z", "invalid", "12000-01-01T00:00:00Z"},
      {ItemType_datetime, "2000-12-31T24:00:00", "invalid", "2001-01-01T00:00:00"},
      {ItemType_datetime, "2000-01-01T00:00:00.1234567891", "invalid", "2000-01-01T00:00:00.1234567891"},
      {ItemType_date, "2001", "2001", "invalid"},
      {ItemType_date, "0000-01-01", "invalid", "invalid"},
      {ItemType_time, "12:00:00-00:30", "12:00:00+00:30", "12:00:00-00:30"},
      {ItemType_time, "12:00:00+24:59", "12:00:00+00:59", "invalid"},
      {ItemType_time, "12:00:00x", "12:00:00", "invalid"},
      {ItemType_time, "12:00:00Zx", "12:00:00Z", "invalid"},
      {ItemType_month, "--05xx", "--05", "invalid"},
      {ItemType_day, "---45", "---45", "invalid"},
      {ItemType_year, "2000Z", "2000", "too large"},
      {ItemType_duration, "P0D", "P", "PT0S"},
      {ItemType_duration, "PT1.", "PT1S", "invalid"},
      {ItemType_duration, "P4294967297D", "P1D", "P4294967297D"},
      {ItemType_duration, "PT0.000000789S", "PT0.000000009S", "PT0.000000789S"},
      {ItemType_duration, "PT0.0000000001S", "invalid", "PT0.0000000001S"},
  };
  for (Row const& row : rows) {
    EXPECT_EQ(row.classic, RereadClassically(row.text, row.type)) << row.text.substr(0, 60) << " of " << row.type;
    EXPECT_EQ(row.schema, Reread(row.text, row.type)) << row.text.substr(0, 60) << " of " << row.type;
  }
}

TEST(ValueRules, FailuresOfXmlSchema) {
  EXPECT_FAILURE(CQnInvalidValueException, "The value [12-3] is not a valid integer",
                 Parsed(" 12-3", ItemType_integer));
  EXPECT_FAILURE(CQnInvalidValueException, "The value [256] is not a valid unsignedByte", Parsed("256", ItemType_ui1));
  std::string const longest = "0." + std::string(100001, '1');
  EXPECT_FAILURE(CQnInvalidValueException, "The value [" + longest + "] is too large for a decimal",
                 Parsed(longest, ItemType_decimal));
  EXPECT_FAILURE(CQnException, "Invalid Type 27 to convert to string", Parsed("1", ItemType_xmlObject));
  EXPECT_FAILURE(CQnException, "Invalid Type 0 to convert to string", CSchemaValues::ToText(QnVariant()));
  EXPECT_FAILURE(CQnException, "Unknown WhitespaceRule",
                 CSchemaValues::FromText("a", ItemType_string, static_cast<CWhitespaceUtils::WhitespaceRule>(4)));
  EXPECT_FAILURE(CQnInvalidParamException, "Values of different kinds have no order",
                 CSchemaValues::Compare(Parsed("1", ItemType_i4), Parsed("1", ItemType_i8)));
  EXPECT_FAILURE(CQnInvalidParamException, "Values of different kinds have no order",
                 CSchemaValues::Compare(QnVariant(), QnVariant()));
  QnVariant zero;
  zero.SetChar('\0');
  EXPECT_FAILURE(CQnInvalidValueException, "The value [] is not a valid char", CSchemaValues::ToText(zero));
}

TEST(ValueRules, WhiteSpaceOfStrings) {
  struct Row {
    CWhitespaceUtils::WhitespaceRule rule;
    char const* expected;
  };
  for (Row const& row :
       {Row{kNone, " a\r\n\tb "}, Row{kPreserve, " a\r\n\tb "}, Row{kReplace, " a   b "}, Row{kCollapse, "a b"}}) {
    EXPECT_EQ(row.expected, CSchemaValues::FromText(" a\r\n\tb ", ItemType_string, row.rule).GetString()) << row.rule;
  }
}

TEST(ValueRules, OrderOfXmlSchema) {
  struct Row {
    ItemType type;
    char const* left;
    char const* right;
    ValueOrder order;
  };
  Row const rows[] = {
      {ItemType_i1, "-1", "1", ValueOrder_Less},
      {ItemType_ui8, "18446744073709551615", "1", ValueOrder_Greater},
      {ItemType_integer, "-0", "0", ValueOrder_Equal},
      {ItemType_integer, "-10", "-9", ValueOrder_Less},
      {ItemType_decimal, "1.50", "1.5", ValueOrder_Equal},
      {ItemType_decimal, "-0.0", "0", ValueOrder_Equal},
      {ItemType_decimal, "0.30000000000000000000000000000000001", "0.3", ValueOrder_Greater},
      {ItemType_r8, "NaN", "NaN", ValueOrder_Equal},
      {ItemType_r8, "NaN", "1", ValueOrder_Indeterminate},
      {ItemType_r4, "INF", "NaN", ValueOrder_Indeterminate},
      {ItemType_r4, "-INF", "-3e38", ValueOrder_Less},
      {ItemType_r8, "-0", "0", ValueOrder_Equal},
      {ItemType_boolean, "true", "1", ValueOrder_Equal},
      {ItemType_boolean, "true", "false", ValueOrder_Indeterminate},
      {ItemType_char, "a", "b", ValueOrder_Indeterminate},
      {ItemType_string, "a", "b", ValueOrder_Indeterminate},
      {ItemType_string, "a", "a", ValueOrder_Equal},
      {ItemType_hexBinary, "0a", "0A", ValueOrder_Equal},
      {ItemType_base64Binary, "TQ==", "TQ = =", ValueOrder_Equal},
      {ItemType_base64Binary, "TQ==", "TWE=", ValueOrder_Indeterminate},
  };
  for (Row const& row : rows) {
    EXPECT_EQ(row.order, CSchemaValues::Compare(Parsed(row.left, row.type), Parsed(row.right, row.type)))
        << row.left << " to " << row.right;
  }
  QnVariant empty, none;
  empty.SetHexBinary(CBinaryData(""));
  none.SetHexBinary(CBinaryData());
  EXPECT_EQ(ValueOrder_Equal, CSchemaValues::Compare(empty, none));

  // A fraction that the class has rounded up to one counts as one, and one of another sign is subtracted.
  QnVariant rounded, mixed;
  rounded.SetDecimal(CDecimal(("0." + std::string(31, '9')).c_str()));
  EXPECT_EQ("1", CSchemaValues::ToText(rounded));
  EXPECT_EQ(ValueOrder_Equal, CSchemaValues::Compare(rounded, Parsed("1", ItemType_decimal)));
  mixed.SetDecimal(CDecimal(CBigInteger(-2), CBigInteger(5), 1));
  EXPECT_EQ("-1.5", CSchemaValues::ToText(mixed));
  EXPECT_EQ(ValueOrder_Greater, CSchemaValues::Compare(mixed, Parsed("-1.6", ItemType_decimal)));
}

TEST(ValueRules, FormsOfNames) {
  struct Row {
    SchemaForm form;
    std::vector<std::string> right, wrong;
  };
  Row const rows[] = {
      {SchemaForm::Any, {"", "\xFF"}, {}},
      {SchemaForm::Language, {"en", "de-CH-1996", "i-klingon"}, {"", "e1", "en-", "abcdefghi", "en--us", "en_US"}},
      {SchemaForm::NMToken, {"-1", "a:b", "\xC2\xB7"}, {"", "a b", "a,b", "\xFF"}},
      {SchemaForm::Name, {":a", "_1", "\xC3\xA4"}, {"", "1a", "-", "\xC2\xB7", "\xC3", "a\xC3\x97"}},
      {SchemaForm::NCName, {"a-b.c"}, {"a:b", "", ".a"}},
      {SchemaForm::QName, {"a:b", "a"}, {"a:", ":a", "a:b:c", "a:1", ""}},
      {SchemaForm::AnyURI, {"", "a#b", "%41", "\xC3\xA4 {}"}, {"a#b#c", "%4", "%", "%zz"}},
  };
  for (Row const& row : rows) {
    for (std::string const& text : row.right) EXPECT_TRUE(CSchemaValues::HasForm(text, row.form)) << text;
    for (std::string const& text : row.wrong) EXPECT_FALSE(CSchemaValues::HasForm(text, row.form)) << text;
  }
}

// ---- Facets

enum class Facet { Pattern, MinLength, MaxLength, MinInclusive, MaxInclusive, MinExclusive, MaxExclusive, Length };

CPrimitiveRestrictions Restrictions(Facet facet, std::string const& value) {
  auto const text = [&](Facet each) { return each == facet ? value : ""; };
  auto const number = [&](Facet each) { return each == facet ? std::atoi(value.c_str()) : -1; };
  return CPrimitiveRestrictions(text(Facet::Pattern), number(Facet::MinLength), number(Facet::MaxLength),
                                text(Facet::MinInclusive), text(Facet::MaxInclusive), text(Facet::MinExclusive),
                                text(Facet::MaxExclusive), number(Facet::Length));
}

template <class Check>
bool Passes(Check check) {
  try {
    check();
    return true;
  } catch (CQnException const& failure) {
    EXPECT_EQ(0U, failure.GetFullMessage().find("Invalid Value for a [")) << failure.GetFullMessage();
    return false;
  }
}

TEST(ValueRules, FacetsOfBothRules) {
  struct Row {
    ItemType type;
    Facet facet;
    char const* limit;
    char const* text;
    bool classic, schema;
  };
  Row const rows[] = {
      {ItemType_i4, Facet::MinInclusive, "5", "5", true, true},
      {ItemType_ui1, Facet::MaxExclusive, "5", "5", false, false},
      {ItemType_i8, Facet::MinExclusive, "-5", "-5", false, false},
      {ItemType_integer, Facet::MinInclusive, "0", "-0", false, true},
      {ItemType_decimal, Facet::MinInclusive, "0", "-0.0", false, true},
      {ItemType_decimal, Facet::MaxExclusive, "1.50", "1.5", false, false},
      {ItemType_r8, Facet::MinInclusive, "NaN", "NaN", false, true},
      {ItemType_r8, Facet::MinInclusive, "0", "NaN", false, false},
      {ItemType_r8, Facet::MaxInclusive, "INF", "NaN", false, false},
      {ItemType_r4, Facet::MinInclusive, "0.1", "0.1", true, true},
      {ItemType_r4, Facet::MinExclusive, "-INF", "-INF", false, false},
      {ItemType_string, Facet::MaxLength, "1", "\xC3\xA4", false, true},
      {ItemType_string, Facet::MinLength, "2", "\xC3\xA4", true, false},
      {ItemType_string, Facet::Length, "1", "\xF0\x9F\x98\x80", false, true},
      {ItemType_string, Facet::MaxLength, "3", "abcd", false, false},
      {ItemType_string, Facet::MaxInclusive, "a", "b", true, true},
      {ItemType_hexBinary, Facet::Length, "2", "0A0b", true, true},
      {ItemType_hexBinary, Facet::MinLength, "3", "0A0b", false, false},
      {ItemType_base64Binary, Facet::MaxLength, "2", "TWFu", false, false},
      {ItemType_date, Facet::MaxInclusive, "2001-03-10", "2001-01-15", false, true},
      {ItemType_date, Facet::MinInclusive, "-0005-01-01", "2001-01-15", true, true},
      {ItemType_datetime, Facet::MinInclusive, "2000-01-01T12:00:00Z", "2000-01-01T12:00:00", true, false},
      {ItemType_datetime, Facet::MinInclusive, "2000-01-01T12:00:00Z", "2000-01-02T02:00:00", true, false},
      {ItemType_year, Facet::MaxExclusive, "2001", "2001", false, false},
      {ItemType_duration, Facet::MaxInclusive, "PT1H", "PT2H", true, false},
      {ItemType_duration, Facet::MaxInclusive, "P1D", "-P1D", false, true},
      {ItemType_duration, Facet::MaxInclusive, "P30D", "P1M", true, false},
      {ItemType_boolean, Facet::Pattern, "1|0", "true", true, false},
      {ItemType_i4, Facet::Pattern, "\\d{3}", "007", true, true},
      {ItemType_i4, Facet::Pattern, "\\d{3}", "7", true, false},
      {ItemType_string, Facet::Pattern, "a|ab", "ab", false, true},
      {ItemType_string, Facet::Pattern, "[A-Z]{2}", "AB", true, true},
      {ItemType_string, Facet::Pattern, "[A-Z]{2}", "ABC", false, false},
      {ItemType_string, Facet::Pattern, "\\d", "\xD9\xA3", false, true},
      {ItemType_string, Facet::Pattern, "[a-z-[c]]", "b", false, true},
      {ItemType_string, Facet::Pattern, "(*NO_START_OPT)(?=(?:a)\\z)(?:(?:(?![c])[a-z])+)\\z", "a", true, true},
  };
  Utf8Text::Scope const utf8(Utf8Text::Use::kYes);
  for (Row const& row : rows) {
    CPrimitiveRestrictions const restrictions = Restrictions(row.facet, row.limit);
    QnVariant classic;
    classic.FromString(row.text, row.type, kCollapse);
    EXPECT_EQ(row.classic, Passes([&] { CXmlObjectHelper::CheckRestriction("a", classic, row.type, restrictions); }))
        << row.limit << ' ' << row.text;
    SchemaFacets const facets(row.type, restrictions);
    EXPECT_EQ(row.schema, Passes([&] { facets.Check("a", Parsed(row.text, row.type), row.text); }))
        << row.limit << ' ' << row.text;
  }
}

TEST(SchemaFacets, DigitsAndForms) {
  struct Row {
    ItemType type;
    SchemaFacets::Others others;
    char const* text;
    bool keeps;
  };
  Row const rows[] = {
      {ItemType_decimal, {3, -1, SchemaForm::Any}, "-00.1230", true},
      {ItemType_decimal, {3, -1, SchemaForm::Any}, "1.234", false},
      {ItemType_decimal, {-1, 2, SchemaForm::Any}, "1.2300", true},
      {ItemType_decimal, {-1, 2, SchemaForm::Any}, "1.23000000000000000000000000000000001", false},
      {ItemType_i4, {3, 0, SchemaForm::Any}, "-999", true},
      {ItemType_i4, {3, 0, SchemaForm::Any}, "1000", false},
      {ItemType_integer, {21, 0, SchemaForm::Any}, "-999999999999999999999", true},
      {ItemType_integer, {20, 0, SchemaForm::Any}, "-999999999999999999999", false},
      {ItemType_string, {-1, -1, SchemaForm::NCName}, "a", true},
      {ItemType_string, {-1, -1, SchemaForm::NCName}, "a:b", false},
  };
  for (Row const& row : rows) {
    SchemaFacets const facets(row.type, CPrimitiveRestrictions(), row.others);
    EXPECT_EQ(row.keeps, Passes([&] { facets.Check("a", Parsed(row.text, row.type)); })) << row.text;
  }
  // Lengths of qualified names have no meaning.
  SchemaFacets const name(ItemType_string, Restrictions(Facet::MaxLength, "1"), {-1, -1, SchemaForm::QName});
  name.Check("a", Parsed("a:b", ItemType_string));
}

TEST(SchemaFacets, TextsThatAPatternDemands) {
  struct Row {
    ItemType type;
    char const *pattern, *text, *printed;
  };
  Row const rows[] = {
      {ItemType_boolean, "0|1", "true", "1"},
      {ItemType_boolean, "0|false", "0", "false"},
      {ItemType_i4, "[0-9]{5}", "00042", "00042"},
      {ItemType_integer, "-?[0-9]{5}", "-42", "-00042"},
      {ItemType_decimal, "[0-9]+\\.[0-9]{2}", "1.50", "1.50"},
      {ItemType_decimal, "[0-9]+\\.[0-9]{2}", "7", "7.00"},
      {ItemType_decimal, "-[0-9]{3}\\.[0-9]{2}", "-7", "-007.00"},
      {ItemType_decimal, "[0-9]{2}", "1.5", "1.5"},
      {ItemType_r8, "[0-9]\\.[0-9]{3}", "1.5", "1.500"},
      {ItemType_r8, "[0-9]*", "INF", "INF"},
      {ItemType_r8, "-?[0-9.]+", "-0.00001234", "-0.00001234"},
      {ItemType_r8, "[0-9]{6}", "100000", "100000"},
      {ItemType_r4, "0*[0-9]+\\.[0-9]{2}", "1.5e10", "15000000000.00"},
      {ItemType_r8, "-[0-9]\\.[0-9]E-?[0-9]+", "-5e-22", "-5.0E-22"},
      {ItemType_r8, "[0-9.]+E[0-9]", "0", "0.0E0"},
      {ItemType_r8, "[0-9]e[0-9]+", "1e300", "1e300"},
      {ItemType_r8, "[0-9]\\.[0-9]*E2", "123.456", "1.23456E2"},
      {ItemType_hexBinary, "[0-9a-f]*", "0A", "0a"},
      {ItemType_datetime, ".*\\.[0-9]{3}Z", "2000-01-01T00:00:00Z", "2000-01-01T00:00:00.000Z"},
      {ItemType_datetime, ".*\\.[0-9]{3}Z", "2000-01-01T00:00:00.5+00:00", "2000-01-01T00:00:00.500Z"},
      {ItemType_date, ".*[0-9]", "2000-01-01Z", "2000-01-01+00:00"},
      {ItemType_time, ".*\\.[0-9]{3}", "12:00:00", "12:00:00.000"},
  };
  for (Row const& row : rows) {
    SchemaFacets const facets(row.type, Restrictions(Facet::Pattern, row.pattern));
    QnVariant const value = Parsed(row.text, row.type);
    EXPECT_EQ(row.printed, facets.TextOf(value)) << row.text;
    EXPECT_EQ(ValueOrder_Equal, CSchemaValues::Compare(value, Parsed(facets.TextOf(value), row.type))) << row.text;
  }
  SchemaFacets const two(ItemType_decimal, Restrictions(Facet::Pattern, "[0-9]+\\.[0-9]{2}"));
  two.Check("a", Parsed("1.5", ItemType_decimal));
  EXPECT_FALSE(Passes([&] { two.Check("a", Parsed("1.505", ItemType_decimal)); }));
}

TEST(SchemaFacets, PatternsOfSeveralSteps) {
  SchemaFacets const facets(ItemType_string,
                            Restrictions(Facet::Pattern, CSchemaPattern::Combine({{"a.*"}, {".", ".b"}})));
  EXPECT_TRUE(Passes([&] { facets.Check("a", Parsed("ab", ItemType_string)); }));
  EXPECT_FALSE(Passes([&] { facets.Check("a", Parsed("bb", ItemType_string)); }));
}

TEST(SchemaFacets, TextsOfAnotherCodePage) {
  Testing::ScopedLocale const locale("de_DE.ISO-8859-1");
  if (!locale.IsThere()) GTEST_SKIP() << "no such locale";
  QnVariant value;
  value.SetString("\xE4");
  SchemaFacets(ItemType_string, Restrictions(Facet::Length, "1"), {-1, -1, SchemaForm::NCName}).Check("a", value);
  SchemaFacets(ItemType_string, Restrictions(Facet::Pattern, "[\xE4\xF6]")).Check("a", value);
  EXPECT_FALSE(
      Passes([&] { SchemaFacets(ItemType_string, Restrictions(Facet::Pattern, "[\xF6]")).Check("a", value); }));

  // The two bytes are one character in one code page, and end in a backslash in the other.
  SchemaFacets const madeHere(ItemType_string, Restrictions(Facet::Pattern, "\x83\\"));
  value.SetString("\x83\\");
  EXPECT_THROW(madeHere.Check("a", value), CQnException);
  Testing::ScopedLocale const japanese("ja_JP.SJIS");
  if (japanese.IsThere()) madeHere.Check("a", value);
}

TEST(SchemaFacets, WhatDoesNotParseFailsAtEachCheck) {
  SchemaFacets const bound(ItemType_i4, Restrictions(Facet::MinInclusive, "five"));
  SchemaFacets const pattern(ItemType_string, Restrictions(Facet::Pattern, "("));
  for (int i = 0; i < 2; ++i) {
    EXPECT_FAILURE(CQnInvalidValueException, "The value [five] is not a valid int",
                   (bound.Check("a", Parsed("7", ItemType_i4)), 0));
    EXPECT_THROW(pattern.Check("a", Parsed("b", ItemType_string)), CQnException);
  }
}

TEST(SchemaFacets, ValuesOfAnotherKindCountByTheirText) {
  SchemaFacets const facets(ItemType_i4, Restrictions(Facet::MaxInclusive, "7"));
  facets.Check("a", Parsed("7", ItemType_string));
  EXPECT_FAILURE(CQnException, "Invalid Value for a [8]", (facets.Check("a", Parsed("8", ItemType_string)), 0));
  EXPECT_FAILURE(CQnInvalidValueException, "The value [x] is not a valid int",
                 (facets.Check("a", Parsed("x", ItemType_string)), 0));
  EXPECT_FALSE(facets.UsesText());
  EXPECT_TRUE(SchemaFacets(ItemType_i4, Restrictions(Facet::Pattern, "7")).UsesText());
}

// ---- Random texts against the grammars as XML Schema prints them. More: QN_MODEL_STEPS=1000000 QN_MODEL_SEED=2.

unsigned long Environment(char const* name, unsigned long otherwise) {
  char const* const text = std::getenv(name);
  return text != nullptr ? std::strtoul(text, nullptr, 10) : otherwise;
}

struct RandomTexts {
  std::mt19937_64 random{Environment("QN_MODEL_SEED", 1)};
  unsigned long steps = Environment("QN_MODEL_STEPS", 4000);

  std::size_t Below(std::size_t limit) { return random() % limit; }
  std::string Of(std::string const& alphabet, std::size_t most) {
    std::string text(Below(most + 1), ' ');
    for (char& c : text) c = alphabet[Below(alphabet.size())];
    return text;
  }
};

TEST(ValueRulesModel, LexicalForms) {
  struct Grammar {
    ItemType type;
    char const* alphabet;
    char const* form;
  };
  Grammar const grammars[] = {
      {ItemType_boolean, "10true", "true|false|1|0"},
      {ItemType_i4, "+-0123", "[+-]?[0-9]+"},
      {ItemType_ui4, "+-0123", "\\+?[0-9]+|-0+"},
      {ItemType_integer, "+-019. eE", "[+-]?[0-9]+"},
      {ItemType_decimal, "+-.0129", "[+-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)"},
      {ItemType_r8, "+-.019eEINFa", "[+-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][+-]?[0-9]+)?|-?INF|NaN"},
      {ItemType_r4, "+-.019eE", "[+-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eE][+-]?[0-9]+)?|-?INF|NaN"},
      {ItemType_hexBinary, "0aFg", "([0-9a-fA-F]{2})*"},
      {ItemType_base64Binary, "AAgwEzQ/= ",
       "((([A-Za-z0-9+/] ?){4})*(([A-Za-z0-9+/] ?){3}[A-Za-z0-9+/]|([A-Za-z0-9+/] ?){2}[AEIMQUYcgkosw048] ?=|"
       "[A-Za-z0-9+/] ?[AQgw] ?= ?=))?"},
  };
  RandomTexts texts;
  for (Grammar const& grammar : grammars) {
    std::regex const form(grammar.form);
    for (unsigned long i = 0; i < texts.steps; ++i) {
      std::string const text = texts.Of(grammar.alphabet, 9);
      bool const isBase64 = grammar.type == ItemType_base64Binary;  // the only form with white space inside
      std::string const normal = isBase64 ? CWhitespaceUtils::Collapse(text) : text;
      bool const isTrimmed = text.empty() || (text.front() != ' ' && text.back() != ' ');
      if (!isBase64 && !isTrimmed) continue;
      ASSERT_EQ(std::regex_match(normal, form), Reread(text, grammar.type) != "invalid") << text << grammar.type;
    }
  }
}

// The C library rounds correctly.
TEST(ValueRulesModel, FloatingPointNumbersAreTheNearest) {
  // Rounding to a double first would give the float beside it.
  EXPECT_EQ(std::strtof("7.038531e-26", nullptr), Parsed("7.038531e-26", ItemType_r4).GetR4());
  RandomTexts texts;
  for (unsigned long i = 0; i < texts.steps; ++i) {
    std::string text = texts.Of("0123456789", 20) + "5";
    if (texts.Below(2) != 0) text.insert(texts.Below(text.size()), ".");
    if (texts.Below(2) != 0) text += "e" + std::to_string(static_cast<int>(texts.Below(110)) - 60);
    double const wide = Parsed(text, ItemType_r8).GetR8();
    float const narrow = Parsed(text, ItemType_r4).GetR4();
    ASSERT_EQ(std::strtod(text.c_str(), nullptr), wide) << text;
    ASSERT_EQ(std::strtof(text.c_str(), nullptr), narrow) << text;
    ASSERT_EQ(wide, Parsed(Reread(text, ItemType_r8), ItemType_r8).GetR8()) << text;
    ASSERT_EQ(narrow, Parsed(Reread(text, ItemType_r4), ItemType_r4).GetR4()) << text;
  }
}

/// A decimal as its sign and its digits, in a form that the order of texts orders.
struct PlainDecimal {
  bool isNegative;
  std::string digits;

  explicit PlainDecimal(std::string const& text) : isNegative(text[0] == '-') {
    constexpr std::size_t kWidth = 60;
    std::string const number = text.substr(text[0] == '-' || text[0] == '+' ? 1 : 0);
    std::size_t const point = std::min(number.find('.'), number.size());
    std::string fraction = number.substr(std::min(point + 1, number.size()));
    fraction.resize(kWidth, '0');
    digits = std::string(kWidth - point, '0') + number.substr(0, point) + fraction;
    if (digits.find_first_not_of('0') == std::string::npos) isNegative = false;
  }
  ValueOrder To(PlainDecimal const& other) const {
    if (isNegative != other.isNegative) return isNegative ? ValueOrder_Less : ValueOrder_Greater;
    int const order = isNegative ? other.digits.compare(digits) : digits.compare(other.digits);
    return order == 0 ? ValueOrder_Equal : order < 0 ? ValueOrder_Less : ValueOrder_Greater;
  }
};

TEST(ValueRulesModel, DecimalsKeepEveryDigitAndTheirOrder) {
  RandomTexts texts;
  auto const next = [&] {
    std::string const sign[] = {"", "-", "+"};
    std::string const digits = texts.Below(2) != 0 ? "01" : "0129";
    return sign[texts.Below(3)] + texts.Of(digits, texts.Below(2) != 0 ? 2 : 40) + "0." + texts.Of(digits, 45);
  };
  for (unsigned long i = 0; i < texts.steps; ++i) {
    std::string const left = next();
    std::string const right = texts.Below(4) != 0 ? next() : left + "00";
    PlainDecimal const leftModel(left), rightModel(right);
    QnVariant const a = Parsed(left, ItemType_decimal);
    QnVariant const b = Parsed(right, ItemType_decimal);
    ASSERT_EQ(leftModel.To(rightModel), CSchemaValues::Compare(a, b)) << left << ' ' << right;
    PlainDecimal const printed(CSchemaValues::ToText(a));
    ASSERT_EQ(ValueOrder_Equal, leftModel.To(printed)) << left;
    SchemaFacets const bound(ItemType_decimal, Restrictions(Facet::MinInclusive, right));
    ASSERT_EQ(leftModel.To(rightModel) != ValueOrder_Less, Passes([&] { bound.Check("a", a); })) << left << right;
  }
}

TEST(ValueRulesModel, BinaryDataComesBack) {
  RandomTexts texts;
  for (unsigned long i = 0; i < texts.steps; ++i) {
    std::string const octets = texts.Of("\x01\x7F\x80\xFF abc", 30);
    auto const* const data = reinterpret_cast<unsigned char const*>(octets.data());
    for (ItemType const type : {ItemType_hexBinary, ItemType_base64Binary}) {
      QnVariant value;
      value.SetHexBinary(CBinaryData(const_cast<unsigned char*>(data), octets.size(), false));
      if (type == ItemType_base64Binary) value.SetBase64Binary(value.GetHexBinary());
      std::string text = CSchemaValues::ToText(value);
      for (std::size_t at = text.size(); type == ItemType_base64Binary && at > 0; at -= std::min<std::size_t>(at, 5)) {
        text.insert(at, texts.Of(" \n", 2));
      }
      QnVariant const read = CSchemaValues::FromText(text, type, kNone);
      ASSERT_EQ(ValueOrder_Equal, CSchemaValues::Compare(value, read)) << text;
      ASSERT_EQ(octets.size(), read.GetBase64Binary().GetLength()) << text;
    }
  }
}

}  // namespace
}  // namespace Quillon9
