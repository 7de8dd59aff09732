#include "values/schema_moments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {
namespace {

CDateTime Moment(ItemType kind, std::string const& text) {
  CDateTime value;
  ParseMoment(value, kind, text);
  return value;
}

CDateTimeSpan Duration(std::string const& text) {
  CDateTimeSpan value;
  ParseDuration(value, text);
  return value;
}

template <class Action>
std::string TextOrFailure(Action action) {
  try {
    return action();
  } catch (CQnInvalidValueException const& failure) {
    return failure.GetFullMessage();
  }
}

std::string Reprinted(ItemType kind, std::string const& text) {
  return TextOrFailure(
      [&] { return kind == ItemType_duration ? DurationText(Duration(text)) : MomentText(Moment(kind, text)); });
}

TEST(SchemaMoments, TextsThatStayWhatTheyAre) {
  std::pair<ItemType, std::vector<char const*>> const rows[] = {
      {ItemType_datetime,
       {"2026-11-22T10:00:00Z", "0001-01-01T00:00:00", "-0001-12-31T23:59:59", "12026-01-01T00:00:00+14:00",
        "999999999999999999-12-31T23:59:59.1", "2000-01-01T00:00:00.000000000000000000001-14:00",
        "2000-01-01T00:00:00-00:30", "2000-01-01T00:00:00+00:00"}},
      {ItemType_date, {"2000-02-29", "1900-02-28+13:59", "-0005-02-29", "-0001-02-29Z", "70000-02-29"}},
      {ItemType_time, {"00:00:00", "23:59:59.999999999Z", "12:00:00.05-05:30"}},
      {ItemType_yearMonth, {"2000-12", "-12000-01Z"}},
      {ItemType_monthDay, {"--02-29", "--12-31-14:00"}},
      {ItemType_year, {"1999", "-0044", "65536+01:00", "-999999999999999999"}},
      {ItemType_month, {"--01", "--12Z"}},
      {ItemType_day, {"---01", "---31+00:01"}},
      {ItemType_duration,
       {"P1Y2M3DT4H5M6.789S", "-P1D", "PT0.000000000000000001S", "PT36H", "P12M", "P70000Y5000000000M",
        "P18446744073709551615DT18446744073709551615H18446744073709551615M18446744073709551615S"}},
  };
  for (auto const& [kind, texts] : rows) {
    for (char const* text : texts) EXPECT_EQ(text, Reprinted(kind, text));
  }
}

TEST(SchemaMoments, TextsWithAShorterForm) {
  struct {
    ItemType kind;
    char const* text;
    char const* printed;
  } const rows[] = {
      {ItemType_datetime, "1999-12-31T24:00:00Z", "2000-01-01T00:00:00Z"},
      {ItemType_datetime, "-0001-12-31T24:00:00.000", "0001-01-01T00:00:00"},
      {ItemType_datetime, "2000-02-28T24:00:00", "2000-02-29T00:00:00"},
      {ItemType_datetime, "2000-01-01T00:00:00.1000000000000", "2000-01-01T00:00:00.1"},
      {ItemType_datetime, "2000-01-01T00:00:00.0-00:00", "2000-01-01T00:00:00+00:00"},
      {ItemType_time, "24:00:00", "00:00:00"},
      {ItemType_duration, "P0Y", "PT0S"},
      {ItemType_duration, "-PT0.00S", "PT0S"},
      {ItemType_duration, "P00000000000000000000000001Y0M", "P1Y"},
  };
  for (auto const& row : rows) EXPECT_EQ(row.printed, Reprinted(row.kind, row.text)) << row.text;
}

TEST(SchemaMoments, TextsThatAreNoValues) {
  std::pair<ItemType, std::vector<char const*>> const rows[] = {
      {ItemType_datetime,
       {"",
        "2000-01-01",
        "2000-01-01 00:00:00",
        "0000-01-01T00:00:00",
        "02000-01-01T00:00:00",
        "200-01-01T00:00:00",
        "+2000-01-01T00:00:00",
        "2000-1-01T00:00:00",
        "2000-13-01T00:00:00",
        "2000-01-01T24:00:01",
        "2000-01-01T24:00:00.00000000000001",
        "2000-01-01T25:00:00",
        "2000-01-01T00:60:00",
        "2000-01-01T00:00:60",
        "2000-01-01T00:00",
        "2000-01-01T00:00:00.",
        "2000-01-01T00:00:00.Z",
        "2000-01-01T00:00:00z",
        "2000-01-01T00:00:00+14:01",
        "2000-01-01T00:00:00+15:00",
        "2000-01-01T00:00:00+01:60",
        "2000-01-01T00:00:00+1:00",
        "2000-01-01T00:00:00+01",
        "2000-01-01T00:00:00ZZ",
        "2000-01-01ZT00:00:00",
        "9999999999999999999-02-30T00:00:00"}},
      {ItemType_date, {"2001-02-29", "1900-02-29", "-0004-02-29", "2000-04-31", "2000-01-00", "2000", "70001-02-29"}},
      {ItemType_time, {"1:00:00", "12:00", "12:00:00x", "-12:00:00"}},
      {ItemType_yearMonth, {"2000-00", "2000-01-01", "2000"}},
      {ItemType_monthDay, {"--02-30", "--2-29", "02-29", "--04-31", "---02-29"}},
      {ItemType_year, {"0000", "-0000", "99", "00001", "2000-01"}},
      {ItemType_month, {"--00", "--13", "--05--", "---05", "5"}},
      {ItemType_day, {"---00", "---32", "--01", "---1"}},
      {ItemType_duration, {"",      "P",     "-P",     "PT",    "P1YT",  "+P1Y",  "P-1Y",
                           "P1",    "PT1",   "P1S",    "PT1D",  "P1D1M", "P1Y1Y", "PT1.S",
                           "PT.5S", "P1.5Y", "PT1.5M", "PT1.5", "P1Y ",  "p1Y",   "P99999999999999999999"}},
  };
  char const* const names[] = {"dateTime", "date",   "time", "gYearMonth", "gMonthDay",
                               "gYear",    "gMonth", "gDay", "duration"};
  char const* const* name = names;
  for (auto const& [kind, texts] : rows) {
    for (char const* text : texts) {
      EXPECT_EQ(std::string("The value [") + text + "] is not a valid " + *name, Reprinted(kind, text));
    }
    ++name;
  }
}

TEST(SchemaMoments, ValuesThatAreTooLarge) {
  std::pair<ItemType, char const*> const rows[] = {
      {ItemType_datetime, "1000000000000000000-01-01T00:00:00"},
      {ItemType_datetime, "999999999999999999-12-31T24:00:00"},
      {ItemType_datetime, "-40000000000000000000-02-28T00:00:00"},
  };
  for (auto const& [kind, text] : rows) {
    EXPECT_EQ(std::string("The value [") + text + "] is too large for a dateTime", Reprinted(kind, text));
  }
  EXPECT_EQ("The value [PT18446744073709551616S] is too large for a duration",
            Reprinted(ItemType_duration, "PT18446744073709551616S"));
}

TEST(SchemaMoments, YearsMonthsAndDaysAsNumbers) {
  EXPECT_EQ(65535, ParseYear("65535"));
  EXPECT_EQ(12, ParseMonth("--12"));
  EXPECT_EQ(31, ParseDay("---31"));
  for (char const* text : {"65536", "-0001", "2000Z"}) {
    EXPECT_EQ(std::string("The value [") + text + "] is too large for a gYear",
              TextOrFailure([&] { return std::to_string(ParseYear(text)); }));
  }
  EXPECT_THROW(ParseMonth("--01Z"), CQnInvalidValueException);
  EXPECT_THROW(ParseDay("---01+01:00"), CQnInvalidValueException);
  EXPECT_EQ("0044", YearText(44));
  EXPECT_EQ("40000", YearText(40000));
  EXPECT_EQ("--05", MonthText(5));
  EXPECT_EQ("---31", DayText(31));
  EXPECT_EQ("The value [0] is not a valid gYear", TextOrFailure([] { return YearText(0); }));
  EXPECT_EQ("The value [13] is not a valid gMonth", TextOrFailure([] { return MonthText(13); }));
  EXPECT_EQ("The value [32] is not a valid gDay", TextOrFailure([] { return DayText(32); }));
}

TEST(SchemaMoments, ValuesThatProgramsSet) {
  CDateTime moment(2000, 3, 1, 12, 0, 0);
  moment.SetTimeZone(23, 30);
  EXPECT_EQ("2000-02-29T12:00:00-00:30", MomentText(moment));
  EXPECT_EQ(ValueOrder_Equal, OrderOfMoments(moment, Moment(ItemType_datetime, MomentText(moment))));
  moment.SetTimeZone(-14, 1);
  EXPECT_EQ("2000-03-02T12:00:00+09:59", MomentText(moment));
  moment.SetNanoSecond(1001);
  moment.SetUTC();
  EXPECT_EQ("2000-03-01T12:00:00.000001001Z", MomentText(moment));
  moment.SetMilliSecond(1000);
  EXPECT_THROW(MomentText(moment), CQnInvalidValueException);
  CDateTime month(CDateTime::dt_gYearMonth);
  EXPECT_EQ("Date Not Set", TextOrFailure([&] { return MomentText(month); }));
  month.SetYear(2000);
  month.SetMonth(13);
  EXPECT_EQ("The value [2000-13] is not a valid gYearMonth", TextOrFailure([&] { return MomentText(month); }));
  CDateTimeSpan const span(0, 0, 0, 0, 0, 1, 1500, 0, 1000);
  EXPECT_EQ("PT2.500001S", DurationText(span));
  EXPECT_EQ(ValueOrder_Equal, OrderOfDurations(span, Duration("PT2.500001S")));
}

// What only these texts can set is in the printed form, in the results of operators and in the getters that have room.
TEST(SchemaMoments, LongValuesInTheClassesOfValues) {
  CDateTime moment = Moment(ItemType_datetime, "40000-12-31T23:45:00.1234567891-00:30");
  EXPECT_EQ("40000-12-31T23:45:00.1234567891-00:30", CDateTime(moment).ToString());
  EXPECT_EQ(40000, moment.GetLongYear());
  EXPECT_EQ(-30, moment.GetZoneOffset());
  EXPECT_EQ(789, moment.GetNanoSecond());
  std::string const does = "The value [" + moment.ToString() + "] does not fit into ";
  EXPECT_EQ(does + "GetYear()", TextOrFailure([&] { return std::to_string(moment.GetYear()); }));
  EXPECT_EQ(does + "GetZoneHour()", TextOrFailure([&] { return std::to_string(moment.GetZoneHour()); }));
  EXPECT_EQ(does + "GetTime()", TextOrFailure([&] { return std::to_string(moment.GetTime()); }));
  EXPECT_THROW(moment.Validate(), CQnInvalidValueException);
  EXPECT_EQ("40001-01-01T00:15:00.1234567891+00:00", moment.GetNormalized().ToString());
  EXPECT_TRUE(moment != Moment(ItemType_datetime, "40000-12-31T23:45:00.123456789-00:30"));
  EXPECT_TRUE(moment > Moment(ItemType_datetime, "39999-12-31T23:45:00-00:30"));
  EXPECT_EQ("32767-12-31T23:45:00.1234567891-00:30", (moment - CDateTimeSpan(7233, 0, 0, 0, 0, 0)).ToString());
  moment.SetNanoSecond(1);
  moment.SetYear(2000);
  moment.SetTimeZone(0, 30);
  EXPECT_EQ("2000-12-31T23:45:00.123456001+00:30", moment.ToString());
  moment.SetLongYear(-70000);
  EXPECT_EQ(-70000, moment.GetLongYear());
  moment.ParseXSDDateTime("2000-01-01T00:00:00Z");
  EXPECT_EQ("2000-01-01T00:00:00Z", moment.ToString());
  EXPECT_THROW(moment.SetLongYear(1000000000000000000), CQnInvalidValueException);

  CDateTimeSpan span = Duration("-P70000Y1M5000000000DT1.0000000001S");
  EXPECT_EQ("The value [-P70000Y1M5000000000DT1.0000000001S] does not fit into GetYears()",
            TextOrFailure([&] { return std::to_string(span.GetYears()); }));
  EXPECT_EQ(1U, span.GetMonths());
  span.SetYears(1);
  span.SetDays(2);
  EXPECT_THROW(moment += span, CQnInvalidValueException);
  span.SetNanoSeconds(3);
  EXPECT_EQ("-P1Y1M2DT1.000000003S", CDateTimeSpan(span).ToString());
}

TEST(SchemaMoments, OrderIsPartial) {
  struct {
    ItemType kind;
    char const* left;
    char const* right;
    ValueOrder order;
  } const rows[] = {
      {ItemType_datetime, "2000-01-15T00:00:00", "2000-02-15T00:00:00", ValueOrder_Less},
      {ItemType_datetime, "2000-01-15T12:00:00", "2000-01-16T12:00:00Z", ValueOrder_Less},
      {ItemType_datetime, "2000-01-01T12:00:00", "1999-12-31T23:00:00Z", ValueOrder_Indeterminate},
      {ItemType_datetime, "2000-01-16T12:00:00", "2000-01-16T12:00:00Z", ValueOrder_Indeterminate},
      {ItemType_datetime, "2000-01-16T00:00:00", "2000-01-16T12:00:00Z", ValueOrder_Indeterminate},
      {ItemType_datetime, "2000-01-01T14:00:00", "2000-01-01T00:00:00Z", ValueOrder_Indeterminate},
      {ItemType_datetime, "2000-01-01T14:00:00.0000000000001", "2000-01-01T00:00:00Z", ValueOrder_Greater},
      {ItemType_datetime, "-0001-12-31T23:00:00-01:00", "0001-01-01T00:00:00Z", ValueOrder_Equal},
      {ItemType_datetime, "999999999999999999-01-01T00:00:00", "-999999999999999999-01-01T00:00:00",
       ValueOrder_Greater},
      {ItemType_date, "2000-01-01+13:00", "1999-12-31-11:00", ValueOrder_Equal},
      {ItemType_time, "24:00:00Z", "00:00:00Z", ValueOrder_Equal},
      {ItemType_year, "2000+01:00", "2000Z", ValueOrder_Less},
      {ItemType_monthDay, "--02-29", "--03-01", ValueOrder_Less},
      {ItemType_day, "---31-14:00", "---31+14:00", ValueOrder_Greater},
      {ItemType_duration, "P1M", "P30D", ValueOrder_Indeterminate},
      {ItemType_duration, "P1M", "P32D", ValueOrder_Less},
      {ItemType_duration, "P1Y", "P12M", ValueOrder_Equal},
      {ItemType_duration, "P5M", "P153D", ValueOrder_Indeterminate},
      {ItemType_duration, "P5M", "P154D", ValueOrder_Less},
      {ItemType_duration, "-P1M", "-P27D", ValueOrder_Less},
      {ItemType_duration, "PT1H", "PT2H", ValueOrder_Less},
      {ItemType_duration, "-PT0.0000000002S", "-PT0.0000000001S", ValueOrder_Less},
      {ItemType_duration, "-PT0.0000000001S", "PT0S", ValueOrder_Less},
      {ItemType_duration, "-PT0S", "PT0S", ValueOrder_Equal},
      {ItemType_duration, "P18446744073709551615Y", "-P18446744073709551615D", ValueOrder_Greater},
      {ItemType_duration, "P18446744073709551615D", "PT18446744073709551615H", ValueOrder_Greater},
  };
  auto const order = [](ItemType kind, char const* left, char const* right) {
    return kind == ItemType_duration ? OrderOfDurations(Duration(left), Duration(right))
                                     : OrderOfMoments(Moment(kind, left), Moment(kind, right));
  };
  for (auto const& row : rows) {
    ValueOrder const reversed = row.order == ValueOrder_Less      ? ValueOrder_Greater
                                : row.order == ValueOrder_Greater ? ValueOrder_Less
                                                                  : row.order;
    EXPECT_EQ(row.order, order(row.kind, row.left, row.right)) << row.left << " " << row.right;
    EXPECT_EQ(reversed, order(row.kind, row.right, row.left)) << row.right << " " << row.left;
  }
  EXPECT_EQ(ValueOrder_Indeterminate,
            OrderOfMoments(Moment(ItemType_year, "2000"), Moment(ItemType_yearMonth, "2000-01")));
}

// ---- The order of random values against the plainest form of the rules

/// The days from a fixed one on, counted year by year and month by month. The year before 1 is -1.
long CountDays(long year, int month, int day) {
  auto const isLeap = [](long y) { return y % 4 == 0 && (y % 100 != 0 || y % 400 == 0); };
  long const calendarYear = year < 0 ? year + 1 : year;
  long days = day;
  for (long y = -3000; y < calendarYear; ++y) days += isLeap(y) ? 366 : 365;
  for (int m = 1; m < month; ++m) days += m == 2 ? (isLeap(calendarYear) ? 29 : 28) : g_monthMax[m - 1];
  return days;
}

int Compared(long left, long right) { return left == right ? 0 : left < right ? 1 : 2; }

TEST(SchemaMoments, RandomOrders) {
  std::mt19937 random(20);
  auto const below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  struct Model {
    std::string text;
    long seconds;
    bool hasZone;
  };
  auto const any = [&] {
    int const year = below(2) == 0 ? 1999 + below(2) : below(5000) - 2500;
    int const month = below(2) == 0 ? 1 : 1 + below(12);
    int const day = below(2) == 0 ? 1 : 1 + below(28);
    int const hour = below(24);
    int const offset = below(1681) - 840;
    Model model{"", 0, below(3) != 0};
    char const sign = offset < 0 ? '-' : '+';
    long const known = year == 0 ? 1 : year;
    model.text = FormatString("%s%04ld-%02d-%02dT%02d:00:01", known < 0 ? "-" : "", std::labs(known), month, day, hour);
    model.seconds = (CountDays(known, month, day) * 24 + hour) * 3600 + 1;
    if (!model.hasZone) return model;
    model.text += FormatString("%c%02d:%02d", sign, std::abs(offset) / 60, std::abs(offset) % 60);
    model.seconds -= offset * 60;
    return model;
  };
  for (int i = 0; i < 3000; ++i) {
    Model const a = any();
    Model const b = any();
    int expected = Compared(a.seconds, b.seconds);
    if (a.hasZone != b.hasZone && std::labs(a.seconds - b.seconds) <= 14 * 3600) expected = ValueOrder_Indeterminate;
    EXPECT_EQ(expected, OrderOfMoments(Moment(ItemType_datetime, a.text), Moment(ItemType_datetime, b.text)))
        << a.text << " " << b.text;
  }
  for (int i = 0; i < 3000; ++i) {
    int const months = below(200) - 100;
    int const days = months * 30 + months / 2 + below(9) - 4;
    std::vector<int> orders;
    for (auto const& [year, month] : {std::pair{1696, 9}, {1697, 2}, {1903, 3}, {1903, 7}}) {
      int const end = year * 12 + month - 1 + months;
      orders.push_back(Compared(CountDays(end / 12, end % 12 + 1, 1), CountDays(year, month, 1) + days));
    }
    bool const agree = std::equal(orders.begin() + 1, orders.end(), orders.begin());
    auto const text = [](int number, char unit) {
      return FormatString("%sP%d%c", number < 0 ? "-" : "", std::abs(number), unit);
    };
    EXPECT_EQ(agree ? orders[0] : ValueOrder_Indeterminate,
              OrderOfDurations(Duration(text(months, 'M')), Duration(text(days, 'D'))))
        << months << " " << days;
  }
}

}  // namespace
}  // namespace Quillon9
