#include "quillon9/values/date_time_span.h"

#include <gtest/gtest.h>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {
namespace {

CDateTimeSpan Span(char const* text) {
  CDateTimeSpan span;
  span.ParseXSDDuration(text);
  return span;
}

TEST(DateTimeSpan, ParsesAndPrints) {
  struct {
    char const* text;
    char const* printed;  // null for the general failure
  } const rows[] = {
      {"P1Y2M3DT4H5M6.789S", "P1Y2M3DT4H5M6.789S"},
      {"-P1D", "-P1D"},
      {"PT1.", "PT1S"},
      {"PT1.S", "PT1S"},
      {"P0Y", "P"},
      {"PT0.005S", "PT0.005S"},
      {"P1Y1Y", "P1Y"},
      {"P1M2Y", "P2Y1M"},
      {"PT1S3Y", "P3YT1S"},
      {"PY", "P"},
      {"P4294967297D", "P1D"},  // wraps at 32 bits
      {"PT2147483648S", "PT18446744071562067968S"},
      {"PT0.123456789S", "PT0.123456009S"},  // of the last three digits only the last stays
      {"P", nullptr},
      {"-P", nullptr},
      {"PT", nullptr},
      {"P1", nullptr},
      {"PT1", nullptr},
      {"PT1.5", nullptr},
      {"P1D2M", nullptr},
      {"PT2H1H", nullptr},
      {"P1S", nullptr},
      {"1Y", nullptr},
      {"P1Yx", nullptr},
  };
  for (auto const& row : rows) {
    try {
      EXPECT_EQ(row.printed != nullptr ? row.printed : "a failure", Span(row.text).ToString()) << row.text;
    } catch (CQnInvalidValueException const& failure) {
      EXPECT_EQ(nullptr, row.printed) << row.text;
      EXPECT_EQ(std::string("Invalid XSD Duration [") + row.text + "] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]",
                failure.GetFullMessage());
    }
  }
  EXPECT_THROW(Span(""), CQnInvalidValueException);
  EXPECT_THROW(Span(nullptr), CQnInvalidValueException);
  try {
    Span("PT1.1234567890S");
    ADD_FAILURE();
  } catch (CQnInvalidValueException const& failure) {
    EXPECT_EQ("Invalid XSD Duration [PT1.1234567890S] Fraction part too long", failure.GetFullMessage());
  }
}

TEST(DateTimeSpan, Order) {
  struct {
    char const* left;
    char const* right;
    int order;
  } const rows[] = {
      {"P1D", "P2D", 1},  {"P2D", "P1D", 2}, {"PT24H", "P1D", 0},
      {"P30D", "P1M", 3}, {"P1M", "P2M", 0}, {"-P1D", "P1D", 2},
  };
  for (auto const& row : rows) EXPECT_EQ(row.order, Span(row.left).CompareTo(Span(row.right))) << row.left << row.right;
  EXPECT_TRUE(Span("-P1D").GetAsNegative().IsNegative());
}

}  // namespace
}  // namespace Quillon9
