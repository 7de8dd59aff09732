#include "quillon9/fastinfoset/encoding_algorithms.h"

#include <gtest/gtest.h>

#include "expect_failure.h"
#include "octets.h"

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
  // These do not come back as they went.
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
}

TEST(EncodingAlgorithms, TextMayLieInTheOldBytes) {
  CFastInfosetBinaryData data(CBinaryData("3132"));
  data[4] = 0;
  data.SetAsEncodedString(1, reinterpret_cast<char const*>(data.GetData()));
  EXPECT_EQ("12", Bytes(data));
}

}  // namespace
}  // namespace Quillon9
