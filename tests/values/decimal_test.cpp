#include "quillon9/values/decimal.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <random>
#include <string>
#include <utility>

#include "support/expect_failure.h"

namespace Quillon9 {
namespace {

std::string Zeros(std::size_t count) { return std::string(count, '0'); }

struct TextRow {
  std::string text;
  std::string printed;
};

TEST(Decimal, ParseAndPrint) {
  std::string const nines(40, '9');
  TextRow const rows[] = {
      {"1.10", "1.1"},
      {"1.000", "1"},
      {"0.050", "0.05"},
      {"-0.5", "-0.5"},
      {"", "0"},
      {"-", "0"},
      {".", "0"},
      {"+.5", "0.5"},
      {"5.", "5"},
      {"007.5", "7.5"},
      {"1 2", "12"},
      {"1-2", "-12"},
      {"- 1+2 .\t3 4 ", "12.34"},
      {"1e3", "1000"},
      {"1e-3", "0.001"},
      {"1E+2", "100"},
      {"1e 3", "1000"},
      {"1e+ -3", "0.001"},
      {"1.5e", "1.5"},
      {"e5", "0"},
      {"-12.5e1", "-125"},
      {"-5e-2", "-0.05"},
      {"1.7e0000000000000000000000000000000000000000000000001", "17"},
      {"0." + Zeros(29) + "49", "0." + Zeros(29) + "5"},
      {"0." + Zeros(30) + "5", "0"},
      {"0." + Zeros(30) + "50000000001", "0." + Zeros(29) + "1"},
      {"-0." + Zeros(30) + "51", "-0." + Zeros(29) + "1"},
      {"0.1" + Zeros(29) + "1", "0.1" + Zeros(29)},
      {"0." + nines, "0.1" + Zeros(30)},
      {"0." + nines + "e0", "0.10"},
      {"5e-31", "0"},
      {"51e-32", "0." + Zeros(29) + "1"},
      {"509e-33", "0"},
      {Zeros(2000) + "1." + std::string(2000, '3'), "1." + std::string(30, '3')},
      {std::string(1200, '7') + ".5", std::string(1200, '7') + ".5"},
  };
  for (TextRow const& row : rows) EXPECT_EQ(row.printed, CDecimal(row.text.c_str()).ToString()) << row.text;
}

TEST(Decimal, ParseFailuresLeaveTheValue) {
  struct Row {
    char const* text;
    int position;
  };
  Row const rows[] = {{"1.2.3", 3}, {"12a", 2}, {"1e3 ", 3}, {"1e3-", 3}, {"1.-2", 2}, {"NaN", 0}, {"1e5.0", 3}};
  CDecimal value("1.5");
  for (Row const& row : rows) {
    EXPECT_FAILURE(CQnInvalidValueException,
                   FormatString("The string representing a Decimal, contained an invalid char at position %d [%s]",
                                row.position, row.text),
                   (value.Parse(row.text), 0));
  }
  EXPECT_FAILURE(CQnInvalidValueException,
                 "The string representing a Decimal, contained an invalid char at position 1 [-inf\n]",
                 CDecimal(-std::numeric_limits<double>::infinity()));
  EXPECT_FAILURE(CQnInvalidParamException, "The text of a Decimal is null", (value.Parse(nullptr), 0));
  EXPECT_EQ("1.5", value.ToString());
}

TEST(Decimal, ExponentsAndLengthsAreBounded) {
  EXPECT_EQ("1" + Zeros(100000), CDecimal("1e100000").ToString());
  EXPECT_EQ(100000, static_cast<int>(CBigInteger("1e100000").ToString().size()) - 1);
  std::string const digits = std::string(100001, '1');
  TextRow const fine[] = {{"1e-100000", "0"},
                          {"1e-4294967297", "0"},
                          {"-1e-99999999999999999999999999999999999999", "0"},
                          {digits + "e-100000", "1." + std::string(30, '1')},
                          {"1" + Zeros(100000) + "e-100032", "0"}};
  for (TextRow const& row : fine) EXPECT_EQ(row.printed, CDecimal(row.text.c_str()).ToString()) << row.text.size();

  std::string const tooLarge = "The exponent of a Decimal exceeds the limit of 100000 [";
  for (char const* text : {"1e100001", "1E+999999999", "1e4294967297", "1e18446744073709551617"}) {
    EXPECT_FAILURE(CQnOverFlowException, tooLarge + text + "]", CDecimal(text));
    EXPECT_FAILURE(CQnOverFlowException, tooLarge + text + "]", CBigInteger(text));
  }
  EXPECT_FAILURE(CQnOverFlowException, tooLarge + std::string(64, '1') + "...]",
                 CDecimal((digits + "e-100001").c_str()));

  std::string const most(500000, '1');
  EXPECT_EQ(most, CDecimal(most.c_str()).ToString());
  for (char const* before : {"1", "0."}) {
    std::string const text = before + most + (before[0] == '0' ? "0" : "");
    EXPECT_FAILURE(CQnOverFlowException,
                   "The digits of a Decimal exceed the limit of 500000 [" + text.substr(0, 64) + "...]",
                   CDecimal(text.c_str()));
  }
}

TEST(Decimal, Arithmetic) {
  using D = CDecimal;
  TextRow const rows[] = {
      {(D("1") / 3).ToString(), "0.333333333333333333333333333333"},
      {(D("2") / 3).ToString(), "0.666666666666666666666666666667"},
      {(D("-7") / D("0.5")).ToString(), "-14"},
      {(D("1.5") + D("1.5")).ToString(), "3"},
      {(D("0.1") + D("0.2")).ToString(), "0.3"},
      {(D("1") + D("-0.5")).ToString(), "0.5"},
      {(D("-1") + D("0.75")).ToString(), "-0.25"},
      {(D("-1") - D(-3)).ToString(), "2"},
      {(D("-1") - (D("-3.5") + D("0.5"))).ToString(), "2"},
      {(D("0.5") - D("0.5")).ToString(), "0"},
      {(D("-1.5") * D("0.02")).ToString(), "-0.03"},
      {(D("1e-20") * D("5e-11")).ToString(), "0"},
      {(D("1e-20") * D("5.1e-11")).ToString(), "0." + Zeros(29) + "1"},
      {(D(1, 999, 3) + D(CBigInteger(0), CBigInteger(12345), 3)).ToString(), "14.344"},
      {D(0.1).ToString(), "0.1"},
      {D(-2.5e-14).ToString(), "0"},
      {D(1e22).ToString(), "1" + Zeros(22)},
      {D(CBigInteger(-4), CBigInteger(-5), 3).ToString(), "-4.005"},
  };
  for (TextRow const& row : rows) EXPECT_EQ(row.printed, row.text);
  D value("-0.5");
  EXPECT_EQ("0.5", (++value).ToString());
  EXPECT_EQ("0.5", (value++).ToString());
  EXPECT_EQ("0.5", (--value).ToString());
  EXPECT_EQ("0.5", (value--).ToString());
  EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator/.", value /= D("0.0"));
  EXPECT_EQ("-0.5", value.ToString());
  value += value;
  value *= value;
  EXPECT_EQ("1", value.ToString());
}

TEST(Decimal, Order) {
  char const* const ascending[] = {"-10.5", "-1.25", "-1.2", "-1.05", "-0.5", "-0.05", "-0", "0",
                                   "0.05",  "0.5",   "1.05", "1.2",   "1.25", "1.3",   "10"};
  std::size_t const count = sizeof ascending / sizeof *ascending;
  for (std::size_t i = 0; i < count; ++i) {
    for (std::size_t j = 0; j < count; ++j) {
      CDecimal const a(ascending[i]);
      CDecimal const b(ascending[j]);
      bool const isZeros = (i == 6 || i == 7) && (j == 6 || j == 7);
      EXPECT_EQ(i == j || isZeros, a == b) << ascending[i] << " " << ascending[j];
      EXPECT_EQ(i < j, a < b) << ascending[i] << " " << ascending[j];
      EXPECT_EQ(i > j, a > b) << ascending[i] << " " << ascending[j];
      EXPECT_EQ(i <= j, a <= b) << ascending[i] << " " << ascending[j];
      EXPECT_EQ(i >= j, a >= b) << ascending[i] << " " << ascending[j];
    }
  }
  // -1 is the same value however it was made.
  for (CDecimal const& value : {CDecimal("-1.00"), CDecimal(-1), CDecimal("-1.5") + CDecimal("0.5"), CDecimal("-10e-1"),
                                CDecimal(CBigInteger(-1))}) {
    EXPECT_TRUE(value <= CDecimal("-1") && value >= CDecimal("-1")) << value.ToString();
  }
}

TEST(Decimal, Rounding) {
  struct Row {
    char const* text;
    int divider;
    char const* printed;
  };
  Row const rows[] = {{"0.999", 2, "0.100"}, {"1.996", 2, "1.100"}, {"-0.996", 2, "-0.100"}, {"0.125", 2, "0.12"},
                      {"0.126", 2, "0.13"},  {"-1.26", 1, "-1.3"},  {"-0.06", 1, "-0.1"},    {"1.5", 0, "1"},
                      {"1.51", 0, "2"},      {"-1.6", 0, "-2"},     {"0.04", 1, "0"},        {"1.5", 4, "1.5000"}};
  for (Row const& row : rows) {
    CDecimal value(row.text);
    value.ChangeFractionalDivider(row.divider);
    EXPECT_EQ(row.printed, value.ToString()) << row.text;
  }
  CDecimal value("0.999");
  value.ChangeFractionalDivider(2);
  EXPECT_NE(CDecimal(1), value);
  EXPECT_EQ("1", (value + 0).ToString());
  value.Rationalise();
  EXPECT_EQ("0.10", value.ToString());
  EXPECT_EQ(0, value.ToLong());

  CDecimal none("-0");
  EXPECT_LT(none + none, CDecimal());
  none.ChangeFractionalDivider(0);
  EXPECT_LT(none, CDecimal());
  EXPECT_LT(none + none, CDecimal());
  for (char const* text : {"-0.4", "-0.00", "-0.000000000000000000000"}) {
    CDecimal zero(text);
    EXPECT_TRUE(zero + zero < CDecimal() && (zero == none) == (zero.ToString() == "0")) << text;
    zero.ChangeFractionalDivider(0);
    EXPECT_TRUE(zero + zero < CDecimal() && zero <= none && zero >= none) << text;
  }

  CDecimal other("2.125");
  EXPECT_EQ(3, CDecimal::Normalize(value, other));
  EXPECT_EQ("0.1000", value.ToString());
  for (int const divider : {-1, 100001, std::numeric_limits<int>::max()}) {
    std::string const message = "The divider of a Decimal is out of range [" + std::to_string(divider) + "]";
    EXPECT_FAILURE(CQnInvalidParamException, message, (other.ChangeFractionalDivider(divider), 0));
    EXPECT_FAILURE(CQnInvalidParamException, message, CDecimal(1, 1, divider));
  }
}

// The limits that each value just keeps.
TEST(Decimal, CountsDigitsAsFacetsDo) {
  struct Case {
    char const* text;
    int total, fraction;
  } const cases[] = {{"0", 0, 0},
                     {"-0.00", 0, 0},
                     {"7", 1, 0},
                     {"007.50", 2, 1},
                     {"-123.456", 6, 3},
                     {"0.05", 2, 2},
                     {"1200", 4, 0},
                     {"999999999999999999", 18, 0},
                     {"1234567890123456789.000", 19, 0},
                     {"0.000000000000000000000000000001", 30, 30},
                     {"123456789012345678901234567890.12", 32, 2}};
  for (Case const& each : cases) {
    CDecimal const value(each.text);
    EXPECT_TRUE(value.HasAtMostDigits(each.total, each.fraction)) << each.text;
    EXPECT_TRUE(value.HasAtMostDigits(100, 100)) << each.text;
    EXPECT_FALSE(value.HasAtMostDigits(each.total - 1, each.fraction)) << each.text;
    EXPECT_FALSE(value.HasAtMostDigits(each.total, each.fraction - 1)) << each.text;
  }
}

TEST(Decimal, PrintWithDigits) {
  struct Row {
    char const* text;
    int digits;
    char const* printed;
  };
  Row const rows[] = {{"1.234", 1, "1.7"},       {"1.234", 9, "1.734"}, {"1.5", 2, "2.0"},   {"1.2", 0, "1."},
                      {"-1.25", 1, "-1.7"},      {"-0", 3, "-0.5"},     {"0", 3, "0.5"},     {"-0.75", 2, "-1.25"},
                      {"99.9995", 3, "100.499"}, {"0.505", 3, "1.005"}, {"0.505", 2, "1.00"}};
  for (Row const& row : rows) EXPECT_EQ(row.printed, CDecimal(row.text).ToString(row.digits)) << row.text;
  EXPECT_EQ("1.7", CDecimal("1.2").ToString(std::numeric_limits<int>::max()));
  EXPECT_FAILURE(CQnInvalidParamException, "Invalid number of digits [-1]", CDecimal("1.2").ToString(-1));
}

TEST(Decimal, ToNumbers) {
  EXPECT_EQ(-1.05, CDecimal("-1.05").ToDouble());
  EXPECT_EQ(1.7e308, CDecimal("1.7e308").ToDouble());
  EXPECT_EQ(-1.7e308, CDecimal("-1.7e308").ToDouble());
  for (char const* text : {"1.8e308", "-1.8e308", "1e400"}) {
    EXPECT_FAILURE(CQnOverFlowException, "The Decimal value if to large to fit into a Double",
                   CDecimal(text).ToDouble());
  }
  EXPECT_EQ(2147483647, CDecimal("2147483647.5").ToLong());
  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), CDecimal("-2147483648.5").ToLong());
  EXPECT_EQ(2, CDecimal("1.51").ToLong());
  for (char const* text : {"2147483647.51", "-2147483648.51", "1e30"}) {
    EXPECT_FAILURE(CQnOverFlowException, "The Decimal value if to large to fit into a LONG", CDecimal(text).ToLong());
  }
  EXPECT_EQ(std::numeric_limits<std::int64_t>::max(), CDecimal("9223372036854775807.99").ToLongLong());
  EXPECT_EQ(-1, CDecimal("-1.99").ToLongLong());
  EXPECT_FAILURE(CQnOverFlowException, "The Decimal value if to large to fit into a LONGLONG",
                 CDecimal("9223372036854775808").ToLongLong());
  EXPECT_EQ("-2 1", CDecimal("-1.6").ToBigInteger().ToString() + " " + CBigInteger(CDecimal("1.5")).ToString());
}

// The same number in the form for numbers of any length.
CDecimal MakeLong(CDecimal value) {
  value.ChangeFractionalDivider(40);
  value.Rationalise();
  return value;
}

// All visible results of operations on two values.
std::string Describe(CDecimal const& a, CDecimal const& b) {
  std::string text = a.ToString() + " " + a.ToString(3) + " " + (a + b).ToString() + " " + (a - b).ToString() + " " +
                     (a * b).ToString() + (a == b ? " ==" : "") + (a < b ? " <" : "") + (a <= b ? " <=" : "") +
                     (a > b ? " >" : "") + (a >= b ? " >=" : "") + (a + b < CDecimal() ? " below" : "");
  for (int const divider : {0, 1, 7, 19}) {
    CDecimal changed(a);
    changed.ChangeFractionalDivider(divider);
    text += " " + changed.ToString() + (changed < CDecimal() ? " below" : "");
  }
  return text;
}

TEST(Decimal, TheFormOfAValueIsNotSeen) {
  static_assert(sizeof(CDecimal) <= 32);
  char const* const texts[] = {"0",
                               "-0",
                               "-0.00",
                               "1.000",
                               "0.5",
                               "-0.5",
                               "9.99",
                               "-7.00",
                               "0.0000000000000000001",
                               "-0.9999999999999999999",
                               "999999999999999999.9",
                               "-9999999999999999999",
                               "1844674407370955161.5",
                               "1844674407370955161.6",
                               "18446744073709551615.5",
                               "-99999999999999999999.25",
                               "0.12345678901234567890123"};
  for (char const* left : texts) {
    for (char const* right : texts) {
      CDecimal const a(left);
      CDecimal const b(right);
      std::string const expected = Describe(MakeLong(a), MakeLong(b));
      EXPECT_EQ(expected, Describe(a, b)) << left << " " << right;
      EXPECT_EQ(expected, Describe(a, MakeLong(b))) << left << " " << right;
      EXPECT_EQ(expected, Describe(MakeLong(a), b)) << left << " " << right;

      CDecimal assigned(a);
      CDecimal const taken(std::move(assigned));
      assigned = b;
      EXPECT_EQ(expected, Describe(taken, assigned)) << left << " " << right;
    }
  }
}

// Values of up to six fraction digits against whole numbers of millionths.
TEST(Decimal, AgreesWithFixedPoint) {
  std::mt19937_64 random(2718);
  auto const fromMillionths = [](std::int64_t units) { return CDecimal(std::to_string(units).c_str()) / 1000000; };
  auto const toMillionths = [](CDecimal value) { return (value *= 1000000).ToLongLong(); };
  for (int i = 0; i < 5000; ++i) {
    std::int64_t const a = static_cast<std::int64_t>(random() % 2000000001) - 1000000000;
    std::int64_t const b = (static_cast<std::int64_t>(random() % 20001) - 10000) * (i % 3 == 0 ? 10000 : 1);
    CDecimal const bigA = fromMillionths(a);
    CDecimal const bigB = fromMillionths(b);
    EXPECT_EQ(a + b, toMillionths(bigA + bigB));
    EXPECT_EQ(a - b, toMillionths(bigA - bigB));
    EXPECT_EQ(a * b / 1000000, toMillionths(bigA * bigB));
    if (b != 0) {
      EXPECT_EQ(a / b, (bigA / bigB).ToLongLong());
    }
    EXPECT_EQ(a < b, bigA < bigB);
    EXPECT_EQ(bigA, CDecimal(bigA.ToString().c_str()));
  }
}

TEST(Decimal, LongTextsAreFast) {
  auto const start = std::chrono::steady_clock::now();
  std::string const most(500000, '7');
  std::string text = "0." + most;
  EXPECT_EQ("0." + std::string(29, '7') + "8", CDecimal(text.c_str()).ToString());
  text = most + "." + most + "e-99999";
  EXPECT_EQ(std::string(400001, '7') + "." + std::string(29, '7') + "8", CDecimal(text.c_str()).ToString());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace Quillon9
