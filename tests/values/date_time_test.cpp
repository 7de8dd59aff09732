#include "quillon9/values/date_time.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <random>

#include "quillon9/base/exceptions.h"

namespace Quillon9 {
namespace {

using Parser = void (CDateTime::*)(char const*);

CDateTime Parsed(Parser parse, char const* text) {
  CDateTime value;
  (value.*parse)(text);
  return value;
}
CDateTime DateOf(char const* text) { return Parsed(&CDateTime::ParseXSDDate, text); }
CDateTime DateTimeOf(char const* text) { return CDateTime(text); }

/// The result of the parser for a text: its type and its printed form, or the failure.
std::string Outcome(Parser parse, char const* text) {
  try {
    CDateTime const value = Parsed(parse, text);
    return value.GetTypeAsString() + " " + value.ToString();
  } catch (CQnInvalidValueException const& failure) {
    return failure.GetFullMessage();
  }
}

struct Row {
  char const* text;
  char const* outcome;
};

TEST(DateTime, ParsesEveryFormOfADate) {
  constexpr char kMissing[] = "";
  Row const rows[] = {
      {"2001-02-28", "date 2001-02-28"},
      {"-0044-03-15Z", "date -0044-03-15Z"},
      {"2000-02-29+05:30", "date 2000-02-29+05:30"},
      {"2001-02-29", "Invalid Day [29] (1 <= day <= days in month"},
      {"--02-29", "gMonthDay --02-29"},
      {"--02-30", "Invalid Day [30] (1 <= day <= days in month)"},
      {"2000", "gYear 2000"},
      {"2000-05", "gYearMonth 2000-05"},
      {"2000-13", "Invalid Month [13] (1 <= month <= 12)"},
      {"--05", "gMonth --05"},
      {"--05--", "gMonth --05"},
      {"--05xx", "gMonth --05"},
      {"---32", "gDay ---32"},
      {"---00", "Invalid Day [0] (1 <= day <= 31)"},
      {"---07-03:00", "gDay ---07-03:00"},
      {"0000-01-01", "Invalid Year [0] (9999 <= year <= -9999 && year != 0)"},
      {"12001-01-01", "Invalid XSD Date [12001-01-01] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
      {"2001-01-01+05", "Invalid XSD Date [2001-01-01+05] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
      {"2001/01/01", "Invalid XSD Date [2001/01/01] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
      {"a:b", "Invalid XSD Date [a:b] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
      {"Z", "Invalid XSD Date [Z] expected CCYY-MM-DD[Z|[+|-]hh:mm]"},
      {"2001-01-01+05:00Z", "Invalid Date (Bad Zone value)"},
      {"2001-01-01T", "Invalid Date ('T' not allowed)"},
      {"2001-01-01+25:00", "Invalid TimeZone [25:0]"},
      {"2001-01-01+24:30", "date 2001-01-01+00:30"},
      {"2001-01-01-00:30", "date 2001-01-01+00:30"},
      {"2001-01-01x05:00", "date 2001-01-01"},
      {"2001-01-01+5:000", "Invalid XSD Time Zone [+5:000]"},
      {kMissing, "Invalid Date (Empty String)"},
      {nullptr, "Invalid Date (Null String)"},
  };
  for (Row const& row : rows) EXPECT_EQ(row.outcome, Outcome(&CDateTime::ParseXSDDate, row.text));
}

TEST(DateTime, RefusesWhatIsOnlyMarks) {
  for (char const* mark : {":", "-Z", "--:", "-", "--", "---", "----", "::", "+", "Z", "---Z", "+05:00", "2001-",
                           "-2001-01-", "2001-01-01-:", "2001-01-01+::::", "\xC3\xA9"}) {
    std::string const text = mark;
    EXPECT_EQ("Invalid XSD Date [" + text + "] expected CCYY-MM-DD[Z|[+|-]hh:mm]",
              Outcome(&CDateTime::ParseXSDDate, mark));
    EXPECT_EQ("Invalid XSD Time [" + text + "] expected hh:mm:ss[.ff]", Outcome(&CDateTime::ParseXSDTime, mark));
    EXPECT_EQ("Invalid XSD DateTime [" + text + "]", Outcome(&CDateTime::ParseXSDDateTime, mark));
  }
}

TEST(DateTime, ParsesTimes) {
  Row const rows[] = {
      {"12:34:56", "time 12:34:56"},
      {"00:00:00", "time 00:00:00"},
      {"12:00:00.5", "time 12:00:00.5"},
      {"12:00:00.005010", "time 12:00:00.00501"},
      {"12:00:00.000000001Z", "time 12:00:00.000000001Z"},
      {"12:00:00.100000", "time 12:00:00.1"},
      {"12:00:00.", "time 12:00:00"},
      {"12:00:00junk", "time 12:00:00"},
      {"12:00:00.5-11:59", "time 12:00:00.5-11:59"},
      {"24:00:00", "Invalid XSD Time [24:00:00] expected hh:mm:ss[.ff]"},
      {"12:00:60", "Invalid XSD Time [12:00:60] expected hh:mm:ss[.ff]"},
      {"12:00", "Invalid XSD Time [12:00] expected hh:mm:ss[.ff]"},
      {"12:00:00.1234567890", "Invalid XSD Time [12:00:00.1234567890] Fraction part too long"},
      {"", "Invalid XSD Time (Empty String)"},
      {nullptr, "Invalid Time (Null String)"},
  };
  for (Row const& row : rows) EXPECT_EQ(row.outcome, Outcome(&CDateTime::ParseXSDTime, row.text));
}

TEST(DateTime, ParsesDateTimes) {
  Row const rows[] = {
      {"2001-12-31T23:59:59.25-05:00", "dateTime 2001-12-31T23:59:59.25-05:00"},
      {"2001-12-31ZT00:00:00", "dateTime 2001-12-31T00:00:00Z"},
      {"2001-12T00:00:00", "Invalid XSD DateTime [2001-12T00:00:00] expected CCYY-MM-DDThh:mm:ss[.ff]"},
      {"2001-12-31", "Invalid XSD DateTime [2001-12-31]"},
      {"T00:00:00", "Invalid Date (Empty String)"},
      {"2001-12-31T", "Invalid XSD Time (Empty String)"},
      {nullptr, "Invalid DateTime (Null String)"},
  };
  for (Row const& row : rows) EXPECT_EQ(row.outcome, Outcome(&CDateTime::ParseXSDDateTime, row.text));
}

template <class Failure, class Action>
void ExpectText(char const* text, Action action) {
  try {
    action();
    ADD_FAILURE() << "no failure: " << text;
  } catch (Failure const& failure) {
    EXPECT_EQ(text, failure.GetFullMessage());
  }
}

TEST(DateTime, FieldsBelongToTypes) {
  CDateTime time(CDateTime::dt_time);
  ExpectText<CQnInvalidStateException>("Failed to GetYear. Invalid Date Type: time.", [&] { time.SetYear(1); });
  ExpectText<CQnInvalidStateException>("Failed to GetDayOfWeek. Invalid Date Type: time.",
                                       [&] { time.GetDayOfWeek(); });
  ExpectText<CQnInvalidValueException>(
      "Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: time.", [&] { time.GetTime(); });
  ExpectText<CQnInvalidStateException>("TimeZone is not been used", [&] { time.GetZoneHour(); });
  ExpectText<CQnInvalidStateException>("Failed to copy CDateTime. Invalid Date Type: date, expected: time.",
                                       [&] { time.SetDate(2001, 1, 1); });
  time.SetSecond(200);
  ExpectText<CQnInvalidValueException>("Invalid Second [200] (0 <= second <= 59)", [&] { time.Validate(); });
  EXPECT_EQ(CDateTime::dt_yearZero, CDateTime(2001, 13, 1).GetType());
  ExpectText<CQnInvalidValueException>("Date Not Set", [] { CDateTime(CDateTime::dt_date).ToString(); });
  EXPECT_EQ("00:00:00", CDateTime(CDateTime::dt_time).ToString());
  EXPECT_EQ("Unknown Format: d", DateOf("2001-01-01").ToString("d"));
  EXPECT_EQ("", DateOf("2001-01-01").ToString("G") + DateOf("2001-01-01").ToString(nullptr));

  CDateTime day;
  day.SetDateTime(DateTimeOf("2001-05-06T07:08:09Z"), CDateTime::dt_gMonthDay);
  EXPECT_EQ("--05-06Z", day.ToString());
  ExpectText<CQnInvalidValueException>(
      "Attempting to set a CDateTime of type date using an XmlDateTime of type gMonthDay. The source CDateTime does "
      "not "
      "contian enough data to allow the conversion.",
      [&] { CDateTime().SetDateTime(day, CDateTime::dt_date); });
  EXPECT_EQ(2, DateOf("2000-01-01").GetDayOfYear());
  EXPECT_EQ(60, DateOf("2000-03-01").GetDayOfYear());
  EXPECT_EQ(1, DateOf("2001-01-01").GetDayOfYear());
}

TEST(DateTime, Order) {
  struct {
    char const* left;
    char const* right;
    int order;
  } const rows[] = {
      {"2001-01-15", "2001-01-16", 1},
      {"2001-01-15", "2001-03-10", 2},  // months are not compared
      {"2001-01-01", "-0001-01-01", 3},
      {"2001-01-01Z", "2001-01-01", 3},
      {"2001-01-01Z", "2001-01-04", 1},
      {"2001-01-04", "2001-01-01Z", 2},
      {"2001-01-01+01:00", "2001-01-01-01:00", 1},
      {"2001-05-01+01:00", "2001-05-01-01:00", 2},  // day 30 of the month before against day 1
      {"2001", "2001-05-01", -1},
      {"2001-05-01", "2001", 3},
  };
  for (auto const& row : rows) {
    CDateTime const left = DateOf(row.left);
    CDateTime const right = DateOf(row.right);
    if (row.order == -1) {
      EXPECT_THROW(left.CompareTo(right), CQnInvalidStateException);
    } else {
      EXPECT_EQ(row.order, left.CompareTo(right)) << row.left << " " << row.right;
    }
  }
  EXPECT_EQ("2000-12-31T23:30:00+00:00", DateTimeOf("2001-01-01T00:00:00-00:30").GetNormalized().ToString());
  EXPECT_EQ("2001-01-01T05:00:00+00:00", DateTimeOf("2001-01-01T00:00:00-05:00").GetNormalized().ToString());
}

// ---- Arithmetic against a model: the day numbers of the proleptic Gregorian calendar.

std::int64_t DayNumber(std::int64_t year, unsigned month, unsigned day) {
  year -= month <= 2 ? 1 : 0;
  std::int64_t const era = (year >= 0 ? year : year - 399) / 400;
  auto const yearOfEra = static_cast<unsigned>(year - era * 400);
  unsigned const dayOfYear = (153 * (month + (month > 2 ? 0U - 3U : 9U)) + 2) / 5 + day - 1;
  return era * 146097 + static_cast<std::int64_t>(yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear);
}

TEST(DateTime, AddingDaysAndTimesAgreesWithTheCalendar) {
  std::mt19937_64 random(7);
  auto const below = [&](std::uint64_t bound) { return random() % bound; };
  for (int i = 0; i < 20000; ++i) {
    CDateTime value(static_cast<std::int16_t>(1 + below(9000)), static_cast<std::uint8_t>(1 + below(12)),
                    static_cast<std::uint8_t>(1 + below(28)), static_cast<std::uint8_t>(below(24)),
                    static_cast<std::uint8_t>(below(60)), static_cast<std::uint8_t>(below(60)));
    CDateTimeSpan span(0, 0, static_cast<std::uint32_t>(below(i % 2 == 0 ? 100 : 300000)),
                       static_cast<std::uint32_t>(below(1000)), below(100000), below(100000));
    if (below(2) == 0) span.Negate();
    auto const seconds = [](CDateTime const& date) {
      return DayNumber(date.GetYear(), date.GetMonth(), date.GetDay()) * 86400 + date.GetHour() * 3600 +
             date.GetMinute() * 60 + date.GetSecond();
    };
    auto const length = static_cast<std::int64_t>(std::uint64_t{span.GetDays()} * 86400 + span.GetHours() * 3600 +
                                                  span.GetMinutes() * 60 + span.GetSeconds());
    CDateTime const sum = value + span;
    ASSERT_EQ(seconds(value) + (span.IsNegative() ? -length : length), seconds(sum))
        << value.ToString() << " " << span.ToString() << " " << sum.ToString();
  }
}

TEST(DateTime, AddingDoesNotCutTheDay) {
  auto const plus = [](char const* date, char const* duration) {
    CDateTimeSpan span;
    span.ParseXSDDuration(duration);
    CDateTime const sum = DateOf(date) + span;
    return FormatString("%d-%d-%d", sum.GetYear(), sum.GetMonth(), sum.GetDay());
  };
  EXPECT_EQ("2001-2-31", plus("2001-01-31", "P1M"));
  EXPECT_EQ("2001-3-4", plus("2001-01-31", "P1M1D"));
  EXPECT_EQ("2001-2-28", plus("2001-03-01", "-P1D"));
  EXPECT_EQ("2000-2-29", plus("2000-03-01", "-P1D"));
  EXPECT_EQ("0-1-1", plus("-0001-12-31", "P1D"));
  EXPECT_EQ("2000-12-31", plus("2001-01-31", "-P1M"));
  EXPECT_EQ("28538-17-12", plus("2002-06-30", "-P433005589M18D")) << "no table is asked for the days of month 17";
  CDateTimeSpan span;
  span.ParseXSDDuration("-P1D");
  EXPECT_EQ("2001-03-01", (DateOf("2001-03-02") - span).ToString()) << "subtracting always goes back";
  EXPECT_EQ("P", (DateOf("2001-03-02") - DateOf("2001-03-01")).ToString());
  CDateTime longAgo(2001, 1, 1, 0, 0, 0);
  longAgo += CDateTimeSpan(0, 0, 1000000000);
  EXPECT_EQ(236, longAgo.GetSecond()) << "the quotient is rounded to single precision";
}

TEST(DateTime, LongSpansEndAtOnceAndNeverLeaveATable) {
  CDateTimeSpan span(0, 0, 0xFFFFFFFF, 0xFFFFFFFF, ~0ULL, ~0ULL);
  CDateTime value(2001, 1, 1, 0, 0, 0);
  for (int i = 0; i < 1000; ++i) value += span;
  span.SetMonths(0xFFFFFFFF);
  try {
    for (int i = 0; i < 1000; ++i) value += span;
  } catch (CQnInvalidValueException const& failure) {
    EXPECT_NE(std::string::npos, failure.GetMessage().find("Invalid Month"));
  }
}

TEST(DateTime, TimesOfTheSystem) {
  CDateTime const epoch(0L);
  EXPECT_EQ("1970-01-01T00:00:00", epoch.ToString());
  EXPECT_EQ("1869-12-31T23:59:59", CDateTime(-3155673601L).ToString());
  EXPECT_EQ("9999-12-31T23:59:59", CDateTime(253402300799L).ToString());
  for (long const beyond : {INT64_MAX, 67767976233532800L, 253402300800L, INT64_MIN, -67768040609740801L}) {
    EXPECT_EQ(CDateTime::dt_yearZero, CDateTime(beyond).GetType()) << beyond;
  }
  setenv("TZ", "UTC0", 1);
  tzset();
  for (char const* text : {"2001-02-03T04:05:06", "1850-07-08T09:10:11Z"}) {
    CDateTime const value(text);
    EXPECT_EQ(value.ToString().substr(0, 19), CDateTime(value.GetTime()).ToString());
  }
  EXPECT_EQ(5, DateOf("1970-01-01").GetDayOfWeek());
  EXPECT_EQ(DateTimeOf("2001-01-01T12:00:00Z").GetTime(), DateTimeOf("2001-01-01T13:00:00+01:00").GetTime());
}

}  // namespace
}  // namespace Quillon9
