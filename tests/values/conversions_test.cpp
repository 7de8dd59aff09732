#include "quillon9/values/conversions.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

#include "support/expect_failure.h"
#include "support/scoped_locale.h"

namespace Quillon9 {
namespace {

using Rules = CWhitespaceUtils;
constexpr auto kNone = Rules::WhitespaceRule_None;
constexpr auto kCollapse = Rules::WhitespaceRule_Collapse;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Whitespace, Rules) {
  using namespace std::string_literals;
  struct Row {
    std::string text, preserved, replaced, collapsed;
  };
  Row const rows[] = {
      {"", "", "", ""},
      {"  a \t b  ", "  a \t b  ", "  a   b  ", "a b"},
      {"\r", "", "", ""},
      {"a\rb", "ab", "ab", "ab"},
      {"a\tb\r\nc", "a\tb\nc", "a b c", "a b c"},
      {" \n\t ", " \n\t ", "    ", ""},
      {"a b", "a b", "a b", "a b"},
      {"a\0b"s, "a\0b"s, "a\0b"s, "a"},
      {"a b\0c"s, "a b\0c"s, "a b", "a b"},
      {"a\r\0\r "s, "a\0 "s, "a", "a"},
  };
  for (Row const& row : rows) {
    std::string const* const expected[] = {&row.text, &row.preserved, &row.replaced, &row.collapsed};
    for (int rule = 0; rule < 4; ++rule) {
      auto const whitespaceRule = static_cast<Rules::WhitespaceRule>(rule);
      std::string scratch;
      EXPECT_EQ(*expected[rule], Rules::ApplyRule(whitespaceRule, row.text)) << row.text << rule;
      std::string const& applied = Rules::ApplyRule(whitespaceRule, row.text, scratch);
      EXPECT_EQ(*expected[rule], applied) << row.text << rule;
      EXPECT_EQ(*expected[rule] == row.text, &applied == &row.text) << "a needless copy " << row.text << rule;
    }
  }
  EXPECT_EQ("a\n", Rules::Preserve("a\r\nb", 3));
  auto const unknown = static_cast<Rules::WhitespaceRule>(4);
  EXPECT_FAILURE(CQnException, "Unknown WhitespaceRule", Rules::ApplyRule(unknown, "a"));
  EXPECT_FAILURE(CQnException, "Unknown WhitespaceRule", CConversions::i4FromString("1", unknown));
  EXPECT_FAILURE(CQnException, "Unknown WhitespaceRule", CConversions::r8FromString("1.5", unknown));
}

template <class Value>
struct NumberRow {
  std::string text;
  Value value;
};

TEST(Conversions, IntegersAreReadAsStrtolDoes) {
  std::string const withZero("12\0abc", 6);
  std::string const longFive = std::string(1000000, '0') + "5";
  NumberRow<std::int32_t> const i4Rows[] = {
      {"", 0},        {" \t\v\f\r\n+7", 7}, {"-2147483648", INT32_MIN}, {"2147483647", INT32_MAX}, {"-0", 0},
      {withZero, 12}, {longFive, 5}};
  for (auto const& row : i4Rows) EXPECT_EQ(row.value, CConversions::i4FromString(row.text, kNone)) << row.text;
  NumberRow<std::uint32_t> const ui4Rows[] = {
      {"4294967295", UINT32_MAX}, {"-1", UINT32_MAX}, {"-4294967295", 1}, {"", 0}, {"-0", 0}};
  for (auto const& row : ui4Rows) EXPECT_EQ(row.value, CConversions::ui4FromString(row.text, kNone)) << row.text;
  EXPECT_EQ(0, CConversions::i4FromString("   ", kCollapse));
  EXPECT_EQ(INT64_MIN, CConversions::i8FromString("-9223372036854775808", kNone));
  EXPECT_EQ(INT64_MAX, CConversions::i8FromString("9223372036854775807", kNone));
  EXPECT_EQ(UINT64_MAX, CConversions::ui8FromString("18446744073709551615", kNone));
  EXPECT_EQ(UINT64_MAX, CConversions::ui8FromString("-1", kNone));
  EXPECT_EQ(-32768, CConversions::i2FromString("-32768", kNone));
  EXPECT_EQ(-128, CConversions::i1FromString("-128", kNone));
  EXPECT_EQ(65535, CConversions::ui2FromString("65535", kNone));
  EXPECT_EQ(255, CConversions::ui1FromString("255", kNone));
}

#define EXPECT_BAD(kind, text, message) \
  EXPECT_FAILURE(CQnInvalidValueException, message, CConversions::kind##FromString(text, kCollapse))

TEST(Conversions, IntegerFailures) {
  EXPECT_BAD(i8, "9223372036854775808", "The value [9223372036854775808] is to large to fit in a i8");
  EXPECT_BAD(i8, "-9223372036854775809x", "The value [-9223372036854775809x] is to large to fit in a i8");
  EXPECT_BAD(i8, "1 2", "The value [1 2] can not be converted to a i8");
  EXPECT_BAD(i4, " 2147483648 ", "The value [2147483648] is to large to fit in a i4");
  EXPECT_BAD(i4, "12abc", "The value [12abc] can not be converted to a i4");
  EXPECT_BAD(i4, "+-1", "The value [+-1] can not be converted to a i4");
  EXPECT_BAD(i4, "-", "The value [-] can not be converted to a i4");
  EXPECT_FAILURE(CQnInvalidValueException, "The value [ ] can not be converted to a i4",
                 CConversions::i4FromString(" ", kNone));
  EXPECT_BAD(i2, " 32768 ", "The value [ 32768 ] is to large to fit in a i2");
  EXPECT_BAD(i1, "128", "The value [128] is to large to fit in a i1");
  EXPECT_BAD(i1, "abc", "The value [abc] can not be converted to a i4");
  EXPECT_BAD(ui8, "18446744073709551616", "The value [18446744073709551616] is to large to fit in a ui8");
  EXPECT_BAD(ui8, "1.0", "The value [1.0] can not be converted to a ui8");
  EXPECT_BAD(ui4, "-4294967296", "The value [-4294967296] is to large to fit in a ui4");
  EXPECT_BAD(ui4, "0x1", "The value [0x1] can not be converted to a ui4");
  EXPECT_BAD(ui2, "-1", "The value [-1] is to large to fit in a ui2");
  EXPECT_BAD(ui1, "256", "The value [256] is to large to fit in a ui1");
  EXPECT_BAD(ui1, "-1", "The value [-1] is to large to fit in a ui1");
}

TEST(Conversions, IntegersArePrinted) {
  using C = CConversions;
  EXPECT_EQ("-9223372036854775808 18446744073709551615", C::i8ToString(INT64_MIN) + " " + C::ui8ToString(UINT64_MAX));
  EXPECT_EQ("-2147483648 4294967295", C::i4ToString(INT32_MIN) + " " + C::ui4ToString(UINT32_MAX));
  EXPECT_EQ("-32768 65535", C::i2ToString(INT16_MIN) + " " + C::ui2ToString(UINT16_MAX));
  EXPECT_EQ("-128 65", C::i1ToString(INT8_MIN) + " " + C::ui1ToString(65));
}

TEST(Conversions, FloatingPointWords) {
  for (char const* text : {"", "NaN", "1.#QNAN", "-NAN", "nan"}) {
    EXPECT_TRUE(std::isnan(CConversions::r8FromString(text, kNone))) << text;
    EXPECT_TRUE(std::isnan(CConversions::r4FromString(text, kNone))) << text;
  }
  std::string const withZero("2.5\0x", 5);
  std::string const longOne = "1" + std::string(1000000, '0') + "e-1000000";
  NumberRow<double> const rows[] = {{"INF", kInfinity}, {"-INF", -kInfinity}, {"inf", kInfinity}, {"1e999", kInfinity},
                                    {"-1e-999", 0},     {" +1.5", 1.5},       {"0x1.8p1", 3},     {".5", 0.5},
                                    {"5e-324", 5e-324}, {withZero, 2.5},      {longOne, 1}};
  for (auto const& row : rows) EXPECT_EQ(row.value, CConversions::r8FromString(row.text, kNone)) << row.text;
  EXPECT_EQ(std::numeric_limits<float>::infinity(), CConversions::r4FromString("1e39", kNone));
  EXPECT_TRUE(std::signbit(CConversions::r8FromString("-0", kNone)));
  EXPECT_BAD(r8, "1.5x", "The value [1.5x] can not be converted to a r8");
  EXPECT_BAD(r8, "1,5", "The value [1,5] can not be converted to a r8");
  EXPECT_BAD(r8, " . ", "The value [.] can not be converted to a r8");
  EXPECT_BAD(r8, "1.#INF", "The value [1.#INF] can not be converted to a r8");
  EXPECT_BAD(r4, "abc", "The value [abc] can not be converted to a r4");

  EXPECT_EQ("INF", CConversions::r4ToString(std::numeric_limits<float>::infinity()));
  EXPECT_EQ("-INF", CConversions::r8ToString(-kInfinity, "%f"));
  EXPECT_EQ("NaN", CConversions::r4ToString(-std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ("1.5", CConversions::r4ToString(1.5f));
  EXPECT_EQ("0.1", CConversions::r8ToString(0.1));
  EXPECT_EQ("3.402823e+38", CConversions::r4ToString(FLT_MAX));
  EXPECT_EQ("1.797693134862316e+308", CConversions::r8ToString(DBL_MAX));
}

TEST(Conversions, FloatingPointFormats) {
  EXPECT_EQ("[1.50%]", CConversions::r8ToString(1.5, "[%.2f%%]"));
  EXPECT_EQ("+1.500e+00", CConversions::r4ToString(1.5f, "%+.3le"));
  EXPECT_EQ("plain", CConversions::r4ToString(1.5f, "plain"));
  EXPECT_EQ(std::string(31, '0'), CConversions::r4ToString(1.5f, "%040.1f"));
  EXPECT_EQ(std::string(47, '0'), CConversions::r8ToString(1.5, "%080.1f"));
  for (char const* format : {"%s", "%d", "%n", "%", "%.2", "%*f", "%Lf", "%f%f", "%f %"}) {
    EXPECT_FAILURE(CQnException, std::string("The format [") + format + "] does not print one floating-point number",
                   CConversions::r8ToString(1.5, format));
  }
}

TEST(Conversions, ShortestFormat) {
  std::string const format = kShortestFormat;  // a copy
  EXPECT_EQ("8.72", CConversions::r8ToString(8.72, format.c_str()));
  EXPECT_EQ("0.1", CConversions::r4ToString(0.1f, format.c_str()));
  EXPECT_EQ("1e+22", CConversions::r8ToString(1e22, kShortestFormat));
  EXPECT_EQ("-0", CConversions::r8ToString(-0.0, kShortestFormat));
  EXPECT_EQ("-INF", CConversions::r4ToString(-std::numeric_limits<float>::infinity(), kShortestFormat));
  EXPECT_EQ("NaN", CConversions::r8ToString(std::numeric_limits<double>::quiet_NaN(), kShortestFormat));
  EXPECT_EQ("12345678901234567890.125",
            CConversions::decimalToString(CDecimal("12345678901234567890.125"), kShortestFormat));
  EXPECT_EQ("PT0S", CConversions::durationToString(CDateTimeSpan(), kShortestFormat));
  EXPECT_EQ("P1D", CConversions::durationToString(CConversions::durationFromString("P1D", kNone), kShortestFormat));
  char const* const bytes[] = {"", "TQ==", "TWE=", "TWFu", "TWFuTQ=="};
  for (char const* text : bytes) {
    CBinaryData const value = CConversions::base64BinaryFromString(text, kNone);
    EXPECT_EQ(text, CConversions::base64BinaryToString(value, kShortestFormat));
  }

  std::mt19937_64 random(20240301);
  for (int i = 0; i < 100000; ++i) {
    std::uint64_t const bits = random();
    double wide = 0;
    float narrow = 0;
    std::memcpy(&wide, &bits, sizeof wide);
    std::memcpy(&narrow, &bits, sizeof narrow);
    if (std::isfinite(wide)) {
      std::string const text = CConversions::r8ToString(wide, kShortestFormat);
      EXPECT_EQ(wide, CConversions::r8FromString(text, kNone)) << text;
    }
    if (std::isfinite(narrow)) {
      std::string const text = CConversions::r4ToString(narrow, kShortestFormat);
      EXPECT_EQ(narrow, CConversions::r4FromString(text, kNone)) << text;
    }
  }
}

// Numbers of few digits are printed in a way of their own.
TEST(Conversions, ShortestTextOfFewDigits) {
  std::mt19937_64 random(20240302);
  for (int i = 0; i < 100000; ++i) {
    int const places = static_cast<int>(random() % 20) - 4;
    double const value = static_cast<double>(random() >> random() % 64) / std::pow(10.0, places);
    char room[64];
    std::string const expected(room, std::to_chars(room, room + sizeof room, value).ptr);
    EXPECT_EQ(expected, CConversions::r8ToString(value, kShortestFormat));
    EXPECT_EQ((value == 0 ? "" : "-") + expected, CConversions::r8ToString(value == 0 ? 0 : -value, kShortestFormat));
  }
}

// A float is read by way of a double, which makes another float of its shortest text here.
TEST(Conversions, ShortestTextThatReadsBack) {
  float const value = std::strtof("7.038531e-26", nullptr);
  std::string const text = CConversions::r4ToString(value, kShortestFormat);
  EXPECT_EQ(value, CConversions::r4FromString(text, kNone)) << text;
}

// The fast paths must be indistinguishable from libc, which runs in the "C" locale here.
TEST(Conversions, FloatingPointAgreesWithLibc) {
  Testing::ScopedLocale const point("C");
  std::mt19937_64 random(20240229);
  char expected[64];
  char text[64];
  for (int i = 0; i < 20000; ++i) {
    std::uint64_t const bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (i % 2 == 0) value = static_cast<double>(static_cast<std::int64_t>(bits >> (bits % 60))) / 1000;
    if (i % 3 == 0) value = std::ldexp(value, -static_cast<int>(bits % 40));  // among them halves of the last digit
    if (i % 5 == 0) value = std::nextafter(std::pow(10.0, static_cast<int>(bits % 32) - 8), value);
    if (!std::isfinite(value)) continue;
    std::snprintf(expected, sizeof expected, "%.16g", value);
    EXPECT_EQ(expected, CConversions::r8ToString(value));
    std::snprintf(text, sizeof text, "%.*e", static_cast<int>(bits % 25), value);
    EXPECT_EQ(std::strtod(text, nullptr), CConversions::r8FromString(text, kNone)) << text;
    std::snprintf(text, sizeof text, "%.*f", static_cast<int>(bits % 18), value);
    EXPECT_EQ(std::strtod(text, nullptr), CConversions::r8FromString(text, kNone)) << text;
    auto const narrow = static_cast<float>(value);
    if (!std::isfinite(narrow)) continue;
    std::snprintf(expected, sizeof expected, "%.7g", static_cast<double>(narrow));
    EXPECT_EQ(expected, CConversions::r4ToString(narrow));
  }
}

TEST(Conversions, NumbersKeepThePointInEveryLocale) {
  // Not newlocale(): libc leaks the search path that it is given for the tests' own locales.
  Testing::ScopedLocale const german("de_DE.UTF-8");
  if (!german.IsThere()) GTEST_SKIP() << "no locale with a decimal comma";
  std::string const printed = CConversions::r8ToString(1.5) + CConversions::r4ToString(1.5f, " %.2f");
  double const read = CConversions::r8FromString(" +1.5", kNone);
  EXPECT_STREQ(",", std::localeconv()->decimal_point);
  EXPECT_EQ("1.5 1.50", printed);
  EXPECT_EQ(1.5, read);
}

TEST(Conversions, BooleanCharStringAndBinary) {
  for (char const* text : {"TRUE", " true ", "1", "tRuE"}) {
    EXPECT_TRUE(CConversions::booleanFromString(text, kCollapse)) << text;
  }
  for (char const* text : {"False", "0"}) EXPECT_FALSE(CConversions::booleanFromString(text, kCollapse)) << text;
  for (char const* text : {" yes ", "", "10", "tru", "truex"}) {
    EXPECT_BAD(boolean, text,
               std::string("A Boolean Value read from an XML document was invalid [") + text +
                   "]. Valid values are 'true', 'false', '1', or '0'");
  }
  EXPECT_EQ("truefalse", CConversions::booleanToString(true) + CConversions::booleanToString(false));

  EXPECT_EQ('x', CConversions::charFromString(" x ", kCollapse));
  EXPECT_BAD(char, " ", "The value [] can not be a char as it is either empty of greater than 1 char long");
  EXPECT_BAD(char, " ab", "The value [ab] can not be a char as it is either empty of greater than 1 char long");
  EXPECT_EQ("x", CConversions::charToString('x'));
  EXPECT_EQ("", CConversions::charToString('\0'));

  EXPECT_EQ(" a b ", CConversions::stringFromString(" a\tb\r ", Rules::WhitespaceRule_Replace));
  EXPECT_EQ("0AFF", CConversions::hexBinaryToString(CConversions::hexBinaryFromString(" 0aff\n", kCollapse)));
  EXPECT_EQ("TWE=", CConversions::base64BinaryToString(CConversions::base64BinaryFromString("T W E", kNone)));
  EXPECT_FAILURE(CQnException, "Invalid char in hex string [x]", CConversions::hexBinaryFromString("0x", kNone));
}

}  // namespace
}  // namespace Quillon9
