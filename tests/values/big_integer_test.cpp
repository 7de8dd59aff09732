#include "quillon9/values/big_integer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "quillon9/values/decimal.h"
#include "support/expect_failure.h"

namespace Quillon9 {
namespace {

using Big = CBigInteger;
using Digits = std::vector<char>;

__extension__ typedef __int128 Int128;

std::string Text(Int128 value) {
  if (value < 0) return "-" + Text(-value);
  std::string const last(1, static_cast<char>('0' + static_cast<int>(value % 10)));
  return value < 10 ? last : Text(value / 10) + last;
}

// Digits that cause long carries and borrows, such as runs of 0 and 9.
std::string RandomDigits(std::mt19937_64& random, std::size_t size) {
  std::string text(1, static_cast<char>('1' + random() % 9));
  while (text.size() < size) {
    std::uint64_t const kind = random() % 4;
    for (std::uint64_t left = random() % 60 + 1; left != 0 && text.size() < size; --left) {
      text += kind == 0 ? '0' : kind == 1 ? '9' : static_cast<char>('0' + random() % 10);
    }
  }
  return text;
}

Big RandomNumber(std::mt19937_64& random, std::size_t size) {
  return Big(((random() % 2 != 0 ? "-" : "") + RandomDigits(random, size)).c_str());
}

bool IsNegativeZero(Big const& value) { return value == Big(0) && value < Big(0); }

TEST(BigInteger, Parse) {
  struct Row {
    char const* text;
    char const* printed;
  };
  Row const rows[] = {
      {"", "0"},        {"   ", "0"},  {"007", "7"},   {"+7", "7"},    {"12-3", "3"},   {"1 2", "2"},
      {"5\t", "0"},     {"\t-5", "5"}, {" -5 ", "-5"}, {"- 5", "-5"},  {"--5", "-5"},   {"+-5", "5"},
      {"-", "0"},       {"1.5", "1"},  {"1.6", "2"},   {"-1.6", "-2"}, {"1E3", "1000"}, {"2147483648\n", "0"},
      {"-0.6\t", "-1"}, {".", "0"},
  };
  for (Row const& row : rows) EXPECT_EQ(row.printed, Big(row.text).ToString()) << row.text;
  EXPECT_TRUE(IsNegativeZero("-0"));
  EXPECT_TRUE(IsNegativeZero("-"));
  EXPECT_FALSE(IsNegativeZero("   "));
  EXPECT_EQ(309U, Big("1.7E+308").ToString().size());

  Big value(7);
  EXPECT_FAILURE(CQnInvalidValueException,
                 "The string representing a Decimal, contained an invalid char at position 0 [abc]",
                 (value.Parse("abc"), 0));
  EXPECT_FAILURE(CQnInvalidParamException, "The text of a BigInteger is null", (value.Parse(nullptr), 0));
  EXPECT_EQ("7", value.ToString());
}

TEST(BigInteger, NumbersAndBack) {
  int const ints[] = {0, 1, -1, 9, 10, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
  for (int const value : ints) {
    EXPECT_EQ(std::to_string(value), Big(value).ToString());
    EXPECT_EQ(value, static_cast<int>(Big(std::to_string(value).c_str())));
  }
  for (char const* text : {"2147483648", "-2147483649", "99999999999"}) {
    EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Value out of bound of int.", static_cast<int>(Big(text)));
  }
  struct Row {
    double value;
    char const* printed;
  };
  Row const rows[] = {{0.5, "0"},
                      {1.5, "1"},
                      {-2.5, "-2"},
                      {2.51, "3"},
                      {-0.1, "0"},
                      {9007199254740993.0, "9007199254740992"},
                      {1e18, "1000000000000000000"}};
  for (Row const& row : rows) EXPECT_EQ(row.printed, Big(row.value).ToString()) << row.value;
  EXPECT_TRUE(IsNegativeZero(-0.1));
  EXPECT_EQ(301U, Big(1e300).ToString().size());
  EXPECT_FAILURE(CQnInvalidValueException, "The value [inf] can not be converted to a BigInteger",
                 Big(-std::numeric_limits<double>::infinity()));
  EXPECT_EQ("-2147483648 9223372036854775807", Big::MIN_LONG.ToString() + " " + Big::MAX_LONGLONG.ToString());
  EXPECT_EQ(Big::MAX_DOUBLE.GetNegative(), Big::MIN_DOUBLE);
  EXPECT_EQ("17" + std::string(307, '0'), Big::MAX_DOUBLE.ToString());
}

TEST(BigInteger, SignsOfZero) {
  EXPECT_EQ(Big("-0"), Big("0"));
  EXPECT_LT(Big("-0"), Big("0"));
  EXPECT_FALSE(Big("-0") >= Big("0"));
  EXPECT_FALSE(IsNegativeZero(Big(-5) + Big(5)));
  EXPECT_TRUE(IsNegativeZero(Big("-0") + Big("-0")));
  EXPECT_TRUE(IsNegativeZero(Big(-5) * Big(0)));
  EXPECT_TRUE(IsNegativeZero(Big(1) / Big(-2)));
  EXPECT_FALSE(IsNegativeZero(Big(0) / Big(-2)));
  EXPECT_TRUE(IsNegativeZero(Big(-4) % Big(2)));
  EXPECT_FALSE(IsNegativeZero(Big("-0") % Big(2)));
  Big value(0);
  EXPECT_EQ(&value, &-value);
  EXPECT_TRUE(IsNegativeZero(value));
}

// Each operator refuses other divisors.
TEST(BigInteger, Divisors) {
  Big value(7);
  EXPECT_EQ("-3", (value / -2).ToString());
  EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator/.", value / Big("-0"));
  EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator/.", Big(0) / Big(0));
  for (char const* divisor : {"-2", "0", "-0"}) {
    EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator /=.", value /= Big(divisor));
    EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator%.", value % Big(divisor));
    EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator%=.", value %= Big(divisor));
  }
  EXPECT_EQ("7", value.ToString());
  Big zero(0);
  EXPECT_EQ("000", (zero /= zero).ToString() + (zero % zero).ToString() + (zero %= zero).ToString());
  EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator%.", zero % Big(-2));
  EXPECT_EQ("-1", (Big(-7) % 2).ToString());
}

TEST(BigInteger, SquareRoot) {
  struct Row {
    char const* text;
    char const* root;
  };
  Row const rows[] = {{"1", "1"}, {"3", "1"}, {"16", "4"}, {"17", "4"}, {"24", "4"}, {"99", "9"}, {"100", "10"}};
  for (Row const& row : rows) EXPECT_EQ(row.root, Big(row.text).SquareRoot().ToString()) << row.text;
  EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in operator/.", Big(0).SquareRoot());
  for (char const* text : {"-0", "-4"}) {
    EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Negative Number in function SquareRoot().",
                   Big(text).SquareRoot());
  }
}

TEST(BigInteger, AgreesWithTheProcessor) {
  std::mt19937_64 random(4321);
  for (int i = 0; i < 20000; ++i) {
    auto const a = static_cast<std::int64_t>(random()) >> (random() % 64);
    auto const b = static_cast<std::int64_t>(random()) >> (random() % 64);
    Big const bigA(Text(a).c_str());
    Big const bigB(Text(b).c_str());
    EXPECT_EQ(Text(Int128{a} + b), (bigA + bigB).ToString());
    EXPECT_EQ(Text(Int128{a} - b), (bigA - bigB).ToString());
    EXPECT_EQ(Text(Int128{a} * b), (bigA * bigB).ToString());
    if (b != 0) {
      EXPECT_EQ(Text(Int128{a} / b), (bigA / bigB).ToString());
    }
    if (b > 0) {
      EXPECT_EQ(Text(Int128{a} % b), (bigA % bigB).ToString());
    }
    EXPECT_EQ(a < b, bigA < bigB) << a << " " << b;
    EXPECT_EQ(a >= b, bigA >= bigB) << a << " " << b;
    EXPECT_EQ(a == b, bigA == bigB) << a << " " << b;
  }
}

// Lengths on both sides of the thresholds between methods, and results right next to a round number.
TEST(BigInteger, LongNumbersKeepTheLawsOfArithmetic) {
  std::mt19937_64 random(99);
  std::size_t const sizes[] = {1, 17, 18, 19, 36, 37, 54, 300, 320, 880, 1800, 4000};
  for (std::size_t const sizeA : sizes) {
    for (std::size_t const sizeB : sizes) {
      Big const a = RandomNumber(random, sizeA);
      Big const b = RandomNumber(random, sizeB);
      Big const c = RandomNumber(random, sizes[random() % 12]);
      EXPECT_EQ(a, (a + b) - b);
      EXPECT_EQ(a * b + a * c, a * (b + c));
      EXPECT_EQ((a + b) * (a - b), a * a - b * b);
      Big const divisor = b.GetAbs();
      Big const rest = a % divisor;
      EXPECT_EQ(a, a / divisor * divisor + rest);
      EXPECT_LT(rest.GetAbs(), divisor);
      EXPECT_EQ(b, (a * b) / a);
      EXPECT_EQ(divisor - 1, (a.GetAbs() * divisor - 1) / a.GetAbs());
      Big const nines = Big::Pow10(static_cast<unsigned int>(sizeB)) - 1;
      EXPECT_EQ(nines, ((nines + 1) * a.GetAbs() - 1) / a.GetAbs());
      Big const square = a * a;
      EXPECT_EQ(a.GetAbs(), square.SquareRoot());
      EXPECT_EQ(a.GetAbs(), (square + a.GetAbs() * 2).SquareRoot());
      if (square != 1) {
        EXPECT_EQ(a.GetAbs() - 1, (square - 1).SquareRoot());
      }
    }
  }
}

std::string Describe(Big const& a, Big const& b) {
  std::string text = a.ToString() + (a == b ? " ==" : "") + (a < b ? " <" : "") + (a > b ? " >" : "");
  for (Big const& value : {a + b, a - b, b - a, a * b, a.GetNegative(), a.GetAbs()}) text += " " + value.ToString();
  if (b != 0) text += " " + (a / b).ToString() + " " + (a % b.GetAbs()).ToString();
  if (a > 0) text += " " + a.SquareRoot().ToString();
  return text + " " + CDecimal(a).ToString() + " " + (CDecimal(a, 25, 3) + b).ToString();
}

TEST(BigInteger, ZerosOfAnExponentAreLikeOthers) {
  std::mt19937_64 random(31);
  auto const make = [](std::string const& digits, std::size_t zeros, bool isShort) {
    return Big((digits + (isShort ? "e" + std::to_string(zeros) : std::string(zeros, '0'))).c_str());
  };
  for (int i = 0; i < 300; ++i) {
    std::string const a = RandomNumber(random, random() % 30 + 1).ToString();
    std::string const b = i % 5 == 0 ? a + "00" : i % 7 == 0 ? "0" : RandomNumber(random, random() % 30 + 1).ToString();
    std::size_t const zerosA = random() % 25 + 2;
    std::size_t const zerosB = i % 5 == 0 ? zerosA - 2 : random() % 25;
    std::string const expected = Describe(make(a, zerosA, false), make(b, zerosB, false));
    EXPECT_EQ(expected, Describe(make(a, zerosA, true), make(b, zerosB, true)));
    EXPECT_EQ(expected, Describe(make(a, zerosA, true), make(b, zerosB, false)));
    EXPECT_EQ(expected, Describe(make(a, zerosA, false), make(b, zerosB, true)));
  }
  EXPECT_EQ(2000000000, static_cast<int>(Big("2e9")));
  EXPECT_EQ("0", Big("0e99999").ToString());
  for (char const* text : {"3e9", "1e99999"}) {
    EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Value out of bound of int.", static_cast<int>(Big(text)));
  }
  Big const most = Big::Pow10(std::numeric_limits<unsigned int>::max());
  EXPECT_LT(most, most * 10);
  EXPECT_EQ(most * Big::Pow10(2), most * 10 * 10);
}

// Far above the time of the fast methods, and far below that of digit-by-digit ones.
TEST(BigInteger, LongNumbersAreFast) {
  auto const start = std::chrono::steady_clock::now();
  std::mt19937_64 random(7);
  std::string const million = RandomDigits(random, 1000000);
  EXPECT_EQ(million, Big(million.c_str()).ToString());
  Big const a = RandomNumber(random, 10000).GetAbs();
  Big const b = RandomNumber(random, 5000).GetAbs();
  for (int i = 0; i < 10; ++i) EXPECT_EQ(a, a / b * b + a % b);
  Big const root = a.SquareRoot();
  EXPECT_TRUE(root * root <= a && a < (root + 1) * (root + 1));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// At this length, a division of quadratic cost would exceed the bound by far.
TEST(BigInteger, DivisionTakesAFewTimesAsLongAsMultiplication) {
  std::mt19937_64 random(8);
  Big const a = RandomNumber(random, 200000).GetAbs();
  Big const b = RandomNumber(random, 200000).GetAbs();
  std::clock_t const start = std::clock();
  Big const product = a * b;
  std::clock_t const middle = std::clock();
  EXPECT_EQ(a, product / b);
  EXPECT_LT(std::clock() - middle, 10 * (middle - start));
}

TEST(BigInteger, DigitHelpers) {
  Digits digits;
  Big::Build("12x0340", digits);
  EXPECT_EQ((Digits{0, 4, 3}), digits);
  Big::Build("12x", digits);
  EXPECT_EQ(Digits{0}, digits);
  Big::Build(0U, digits);
  EXPECT_EQ(Digits{0}, digits);
  Big::BuildDWORDLONG(18446744073709551615U, digits);
  EXPECT_EQ(20U, digits.size());
  Big::BuildDouble(12.5, digits);
  EXPECT_EQ((Digits{2, 1}), digits);
  Big::Pow10(2, digits);
  EXPECT_EQ((Digits{0, 0, 1}), digits);
  Big::Subtract(digits, {9, 9}, digits);
  EXPECT_EQ(Digits{1}, digits);
  EXPECT_FAILURE(CQnInvalidParamException, "The subtrahend is above the minuend",
                 (Big::Subtract(digits, {0, 1}, digits), 0));
  Big::Add({9, 9, 0}, {1}, digits);
  EXPECT_EQ((Digits{0, 0, 1}), digits);
  Big::Multiply({5, 2}, 4, digits);
  EXPECT_EQ((Digits{0, 0, 1}), digits);
  Big::Multiply({5, 2}, 0, digits);
  EXPECT_EQ(Digits{0}, digits);
  EXPECT_FAILURE(CQnInvalidParamException, "Invalid decimal digit [10]",
                 (Big::Multiply(Digits{10}, Digits{1}, digits), 0));
  Digits rest;
  Big::Divide({7, 1}, {5}, digits, rest);
  EXPECT_EQ((Digits{3}), digits);
  EXPECT_EQ((Digits{2}), rest);
  EXPECT_FAILURE(CQnInvalidValueException, "ERROR: Overflow in Divide.", (Big::Divide({1}, {0}, digits, rest), 0));
  Big::ShiftLeft(digits, 2);
  EXPECT_EQ((Digits{0, 0, 3}), digits);
  EXPECT_EQ(2, Big::Position(digits));
  EXPECT_EQ(-1, Big::Position({0, 0}));
  EXPECT_EQ(-1, Big::Compare({9}, {0, 0}));
  EXPECT_EQ(1, Big::Compare({0, 2}, {9, 1}));
  digits = {0, 0};
  Big::Clean(digits);
  EXPECT_EQ(Digits{0}, digits);
}

}  // namespace
}  // namespace Quillon9
