#include "quillon9/fastinfoset/encoding_algorithms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "expect_failure.h"
#include "octets.h"
#include "quillon9/values/conversions.h"

namespace Quillon9 {
namespace {

using namespace Testing;

std::string Encoded(unsigned long algorithm, char const* text) {
  CFastInfosetBinaryData data;
  data.SetAsEncodedString(algorithm, text);
  return Hex(Bytes(data));
}

std::string Text(unsigned long algorithm, std::string const& notation) {
  std::string octets = Octets(notation);
  return CFastInfosetBinaryData(reinterpret_cast<unsigned char*>(octets.data()), octets.size(), false)
      .GetAsString(algorithm);
}

struct Row {
  unsigned long algorithm;
  char const* text;
  char const* octets;
};

TEST(EncodingAlgorithms, OneValueBothWays) {
  constexpr Row kRows[] = {
      {1, "00AF", "00AF"},
      {2, "/wA=", "FF00"},
      {3, "-2", "FFFE"},
      {3, "32767", "7FFF"},
      {4, "-2147483648", "80000000"},
      {4, "16909060", "01020304"},
      {5, "-2", "FFFFFFFFFFFFFFFE"},
      {5, "72623859790382856", "0102030405060708"},
      {6, "true", "38"},
      {6, "false", "30"},
      {8, "-1.5", "BFF8000000000000"},
      {8, "INF", "7FF0000000000000"},
      {9, "00112233445566778899AABBCCDDEEFF", "00112233445566778899AABBCCDDEEFF"},
  };
  for (Row const& row : kRows) {
    EXPECT_EQ(row.octets, Encoded(row.algorithm, row.text)) << row.algorithm;
    EXPECT_EQ(row.text, Text(row.algorithm, row.octets)) << row.algorithm;
  }
  // These values do not survive the round trip.
  EXPECT_EQ("38", Encoded(6, "1"));
  EXPECT_EQ("ABCD", Encoded(1, "abcd"));
  EXPECT_EQ("", Encoded(2, "?"));
  EXPECT_EQ("3F800000", Encoded(7, "1"));
  EXPECT_EQ("0.7470588", Text(7, "3F 80 00 00"));
  EXPECT_EQ("782079", Encoded(10, "x y"));
}

TEST(EncodingAlgorithms, ListsOfOctets) {
  constexpr Row kRows[] = {
      {3, "1 -2", "00 01 FF FE"},
      {4, "1 2 3", "00000001 00000002 00000003"},
      {5, "1 2", "0000000000000001 0000000000000002"},
      {7, "0 -0.0003542432", "00 FF FF FF B9 00 00 00"},
      {8, "0 1", "0000000000000000 3FF0000000000000"},
      {9, "00000000000000000000000000000001 FF000000000000000000000000000000",
       "00000000000000000000000000000001 FF000000000000000000000000000000"},
      {6, "truefalsetruefalse", "0A"},  // no separator within an octet
      {6, "truefalse", "2B"},
      {6, "", "4F"},
      {6, "falsefalsefalsetrue truefalsefalsefalsefalsefalsefalsefalse true", "71 80 FF"},
      {6, "", ""},
      {99, "", ""},
  };
  for (Row const& row : kRows) EXPECT_EQ(row.text, Text(row.algorithm, row.octets)) << row.algorithm;
}

TEST(EncodingAlgorithms, Failures) {
  constexpr struct {
    unsigned long algorithm;
    char const* octets;
    char const* message;
  } kRows[] = {
      {0, "00", "Unknown byte encoding."},
      {10, "00", "Unknown byte encoding."},
      {11, "00", "Unknown byte encoding."},
      {3, "000000", "Invalid value for SHORT byte encoding."},
      {4, "0000000000", "Invalid value for INT byte encoding."},
      {5, "000000000000000000000000", "Invalid value for LONG byte encoding."},
      {7, "0000", "Invalid value for FLOAT byte encoding."},
      {8, "00000000", "Invalid value for DOUBLE byte encoding."},
      {9, "0000000000000000", "Invalid value for UUID byte encoding."},
  };
  for (auto const& row : kRows) EXPECT_FAILURE(CQnException, row.message, Text(row.algorithm, row.octets));

  CFastInfosetBinaryData data("old");
  EXPECT_FAILURE(CQnException, "Unknown byte encoding.", data.SetAsEncodedString(11, "x"));
  EXPECT_EQ(0U, data.GetLength());
  EXPECT_FAILURE(CQnInvalidValueException, "The value [32768] is to large to fit in a i2",
                 data.SetAsEncodedString(3, "32768"));
  EXPECT_FAILURE(CQnInvalidValueException, "The value [ 1 2] can not be converted to a i4",
                 data.SetAsEncodedString(4, " 1 2"));
  EXPECT_FAILURE(CQnException, "Invalid char in hex string [-]", data.SetAsEncodedString(9, "00-1"));
  for (char const* text : {"00", "00112233445566778899AABBCCDDEE", "00112233445566778899AABBCCDDEEFF00"}) {
    EXPECT_FAILURE(CQnException, "Invalid value for UUID byte encoding.", data.SetAsEncodedString(9, text));
  }
  EXPECT_EQ(0U, data.GetLength());
}

/// Return the value of a text in a canonical spelling.
std::string Normalized(unsigned long algorithm, std::string const& text) {
  constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
  switch (algorithm) {
    case 1:
    case 9: return CConversions::hexBinaryToString(CConversions::hexBinaryFromString(text, kNone));
    case 2: return CConversions::base64BinaryToString(CConversions::base64BinaryFromString(text, kNone));
    case 6: return CConversions::booleanToString(CConversions::booleanFromString(text, kNone));
    case 8: return CConversions::r8ToString(CConversions::r8FromString(text, kNone));
    default: return CConversions::i8ToString(CConversions::i8FromString(text, kNone));
  }
}

// The algorithm may refuse a text, but whatever it writes must be read as the same value.
TEST(EncodingAlgorithms, WhatIsWrittenIsReadAsTheSameValue) {
  std::vector<std::string> texts = {"",
                                    " ",
                                    "0",
                                    "-0",
                                    "+7",
                                    "007",
                                    " 1",
                                    "1 ",
                                    "1 2",
                                    "\t1",
                                    "true",
                                    "TRUE",
                                    "False",
                                    "1.5",
                                    "-1.5e300",
                                    "4.9e-324",
                                    "0x1p3",
                                    "nan",
                                    "NaN",
                                    "-INF",
                                    "inf",
                                    "TWFu",
                                    "TW Fu\n",
                                    "TQ==",
                                    "TQ",
                                    "T",
                                    "?",
                                    "aB",
                                    "abc",
                                    "00 11",
                                    "32767",
                                    "32768",
                                    "-32769",
                                    "2147483648",
                                    "9223372036854775807",
                                    "9223372036854775808",
                                    "1e400",
                                    "00112233-4455-6677-8899-aabbccddeeff",
                                    "{00112233445566778899aabbccddeeff}"};
  for (std::size_t digits : {2U, 30U, 31U, 32U, 33U, 34U, 62U, 64U, 66U, 96U}) {
    texts.push_back(std::string(digits, 'a'));
    texts.push_back(std::string(digits - 1, '7') + 'F');
  }
  std::mt19937 random(7);
  for (int i = 0; i < 2000; ++i) {
    std::string text(random() % 36, '\0');
    std::string_view const letters = i % 2 == 0 ? "0123456789abcdefABCDEF" : "0123456789+-. eE=/TrueFalseINF";
    for (char& letter : text) letter = letters[random() % letters.size()];
    texts.push_back(text);
  }
  int written[11] = {};
  for (std::string const& text : texts) {
    for (unsigned long const algorithm : {1UL, 2UL, 3UL, 4UL, 5UL, 6UL, 8UL, 9UL}) {  // a float is not read back
      CFastInfosetBinaryData data;
      try {
        data.SetAsEncodedString(algorithm, text.c_str());
      } catch (CQnException const&) {
        continue;
      }
      if (data.GetLength() == 0) continue;  // a writer refuses that
      ++written[algorithm];
      std::string read;
      EXPECT_NO_THROW(read = data.GetAsString(algorithm)) << algorithm << " [" << text << "]";
      if (algorithm == 9) read.erase(std::remove(read.begin(), read.end(), ' '), read.end());  // several uuids
      EXPECT_EQ(Normalized(algorithm, text), read) << algorithm << " [" << text << "]";
    }
  }
  for (std::size_t const algorithm : {1U, 2U, 3U, 4U, 5U, 6U, 8U, 9U}) EXPECT_LT(1, written[algorithm]) << algorithm;
}

TEST(EncodingAlgorithms, TextMayLieInTheOldBytes) {
  CFastInfosetBinaryData data(CBinaryData("3132"));
  data[4] = 0;
  data.SetAsEncodedString(1, reinterpret_cast<char const*>(data.GetData()));
  EXPECT_EQ("12", Bytes(data));
}

}  // namespace
}  // namespace Quillon9
