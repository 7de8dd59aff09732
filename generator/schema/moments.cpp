#include "schema/moments.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

namespace Quillon9Generator::Schema {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
/// Numbers in years and durations are cut off here, so that no calculation overflows.
constexpr std::int64_t kMost = 1000000000;
constexpr std::int64_t kNanosecondsPerSecond = 1000000000;

/// A point of time, or a time span, in seconds and a part of a second that is cut off after nine digits.
struct Seconds {
  std::int64_t whole = 0;
  std::int64_t nanoseconds = 0;

  Order ComparedTo(Seconds other) const {
    if (whole != other.whole) return whole < other.whole ? Order::Less : Order::Greater;
    if (nanoseconds != other.nanoseconds) return nanoseconds < other.nanoseconds ? Order::Less : Order::Greater;
    return Order::Equal;
  }
};

struct Moment {
  std::int64_t year = 1972;
  int month = 12;
  int day = 31;
  int hour = 0;
  int minute = 0;
  Seconds second;
  std::optional<int> zone;  // in minutes
};

bool IsDigit(std::string_view text) { return !text.empty() && text.front() >= '0' && text.front() <= '9'; }

/// Reads the parts of one text from front to back.
class Reader {
 public:
  explicit Reader(std::string_view text) : m_rest(text) {}

  bool IsAtEnd() const { return m_rest.empty(); }

  bool Skip(char c) {
    if (m_rest.empty() || m_rest.front() != c) return false;
    m_rest.remove_prefix(1);
    return true;
  }

  /// Take two digits for a number in this range.
  bool Two(int& number, int least, int most) {
    if (m_rest.size() < 2 || !IsDigit(m_rest) || !IsDigit(m_rest.substr(1))) return false;
    number = (m_rest[0] - '0') * 10 + (m_rest[1] - '0');
    m_rest.remove_prefix(2);
    return number >= least && number <= most;
  }

  /// Take all digits that follow. Return how many there are.
  std::size_t Number(std::int64_t& number) {
    number = 0;
    std::size_t count = 0;
    for (; IsDigit(m_rest); ++count, m_rest.remove_prefix(1)) {
      number = std::min(kMost, number * 10 + (m_rest.front() - '0'));
    }
    return count;
  }

  bool Year(std::int64_t& year) {
    bool const negative = Skip('-');
    bool const startsWithZero = m_rest.substr(0, 1) == "0";
    std::size_t const digits = Number(year);
    if (digits < 4 || (digits > 4 && startsWithZero) || year == 0) return false;
    if (negative) year = 1 - year;  // there is no year 0
    return true;
  }

  bool Fraction(std::int64_t& nanoseconds) {
    nanoseconds = 0;
    if (!Skip('.')) return true;
    if (!IsDigit(m_rest)) return false;
    for (std::int64_t unit = kNanosecondsPerSecond / 10; IsDigit(m_rest); unit /= 10, m_rest.remove_prefix(1)) {
      nanoseconds += unit * (m_rest.front() - '0');
    }
    return true;
  }

  /// Take a number and the sign of its unit, or nothing. Only seconds may have a fraction.
  bool Unit(char sign, std::int64_t& number, std::int64_t& nanoseconds) {
    std::string_view const before = m_rest;
    if (Number(number) != 0 && (sign != 'S' || Fraction(nanoseconds)) && Skip(sign)) return true;
    m_rest = before;
    return false;
  }

  bool Zone(std::optional<int>& zone) {
    if (Skip('Z')) zone = 0;
    if (m_rest.empty()) return true;
    bool const negative = m_rest.front() == '-';
    if (!negative && m_rest.front() != '+') return false;
    m_rest.remove_prefix(1);
    int hours = 0;
    int minutes = 0;
    if (zone || !Two(hours, 0, 14) || !Skip(':') || !Two(minutes, 0, 59) || (hours == 14 && minutes != 0)) return false;
    zone = (negative ? -1 : 1) * (hours * 60 + minutes);
    return m_rest.empty();
  }

 private:
  std::string_view m_rest;
};

bool IsLeap(std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int DaysIn(std::int64_t year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && IsLeap(year) ? 29 : kDays[month - 1];
}

/// Return the number of the day in the Gregorian calendar, counted from any fixed day on.
std::int64_t DayNumber(std::int64_t year, int month, int day) {
  std::int64_t const before = year - 1;
  auto const floored = [](std::int64_t a, std::int64_t b) { return a >= 0 ? a / b : -((b - 1 - a) / b); };
  std::int64_t number = before * 365 + floored(before, 4) - floored(before, 100) + floored(before, 400);
  for (int each = 1; each < month; ++each) number += DaysIn(year, each);
  return number + day;
}

bool ReadTime(Reader& reader, Moment& moment) {
  int second = 0;
  if (!reader.Two(moment.hour, 0, 24) || !reader.Skip(':') || !reader.Two(moment.minute, 0, 59) || !reader.Skip(':') ||
      !reader.Two(second, 0, 59) || !reader.Fraction(moment.second.nanoseconds)) {
    return false;
  }
  moment.second.whole = second;
  return moment.hour != 24 || (moment.minute == 0 && second == 0 && moment.second.nanoseconds == 0);
}

bool ReadDate(Reader& reader, Moment& moment) {
  return reader.Year(moment.year) && reader.Skip('-') && reader.Two(moment.month, 1, 12) && reader.Skip('-') &&
         reader.Two(moment.day, 1, 31) && moment.day <= DaysIn(moment.year, moment.month);
}

bool ReadParts(BuiltIn primitive, Reader& reader, Moment& moment) {
  switch (primitive) {
    case BuiltIn::DateTime: return ReadDate(reader, moment) && reader.Skip('T') && ReadTime(reader, moment);
    case BuiltIn::Time: return ReadTime(reader, moment);
    case BuiltIn::Date: return ReadDate(reader, moment);
    case BuiltIn::GYearMonth:
      moment.day = 1;
      return reader.Year(moment.year) && reader.Skip('-') && reader.Two(moment.month, 1, 12);
    case BuiltIn::GYear: moment.month = moment.day = 1; return reader.Year(moment.year);
    case BuiltIn::GMonthDay:
      return reader.Skip('-') && reader.Skip('-') && reader.Two(moment.month, 1, 12) && reader.Skip('-') &&
             reader.Two(moment.day, 1, 31) && moment.day <= DaysIn(moment.year, moment.month);
    case BuiltIn::GDay:
      return reader.Skip('-') && reader.Skip('-') && reader.Skip('-') && reader.Two(moment.day, 1, 31);
    case BuiltIn::GMonth:
      moment.day = 1;
      return reader.Skip('-') && reader.Skip('-') && reader.Two(moment.month, 1, 12);
    default: return false;
  }
}

std::optional<Moment> ReadMoment(BuiltIn primitive, std::string_view text) {
  Reader reader(text);
  Moment moment;
  if (!ReadParts(primitive, reader, moment) || !reader.Zone(moment.zone)) return std::nullopt;
  return moment;
}

Seconds PositionOf(Moment const& moment, int zone) {
  std::int64_t const day = DayNumber(moment.year, moment.month, moment.day);
  std::int64_t const minutes = moment.hour * 60 + moment.minute - zone;
  return {day * kSecondsPerDay + minutes * 60 + moment.second.whole, moment.second.nanoseconds};
}

/// Compare a moment with a time zone with one without, which may be meant in any.
Order CompareWithUnzoned(Moment const& zoned, Moment const& other) {
  constexpr int kMostMinutes = 14 * 60;
  Seconds const position = PositionOf(zoned, *zoned.zone);
  if (position.ComparedTo(PositionOf(other, kMostMinutes)) == Order::Less) return Order::Less;
  if (position.ComparedTo(PositionOf(other, -kMostMinutes)) == Order::Greater) return Order::Greater;
  return Order::Incomparable;
}

struct Duration {
  std::int64_t months = 0;
  Seconds seconds;
};

std::optional<Duration> ReadDuration(std::string_view text) {
  struct Unit {
    char sign;
    std::int64_t months, seconds;
  };
  static constexpr Unit kDateUnits[] = {{'Y', 12, 0}, {'M', 1, 0}, {'D', 0, kSecondsPerDay}};
  static constexpr Unit kTimeUnits[] = {{'H', 0, 3600}, {'M', 0, 60}, {'S', 0, 1}};
  Reader reader(text);
  std::int64_t const sign = reader.Skip('-') ? -1 : 1;
  if (!reader.Skip('P')) return std::nullopt;
  Duration result;
  bool hasAny = false;
  auto const read = [&](Unit const(&units)[3]) {
    for (Unit const& unit : units) {
      std::int64_t number = 0;
      std::int64_t nanoseconds = 0;
      if (!reader.Unit(unit.sign, number, nanoseconds)) continue;
      hasAny = true;
      result.months += sign * number * unit.months;
      result.seconds.whole += sign * number * unit.seconds;
      result.seconds.nanoseconds += sign * nanoseconds;
    }
  };
  read(kDateUnits);
  if (reader.Skip('T')) {
    hasAny = false;
    read(kTimeUnits);
  }
  if (!hasAny || !reader.IsAtEnd()) return std::nullopt;
  return result;
}

/// Return where \p duration leads from the first day of a month.
Seconds EndOf(Duration const& duration, int year, int month) {
  std::int64_t const months = year * 12 + month - 1 + duration.months;
  std::int64_t const endYear = months >= 0 ? months / 12 : -((11 - months) / 12);
  std::int64_t const days = DayNumber(endYear, static_cast<int>(months - endYear * 12) + 1, 1);
  Seconds end{days * kSecondsPerDay + duration.seconds.whole, duration.seconds.nanoseconds};
  if (end.nanoseconds < 0) {
    --end.whole;
    end.nanoseconds += kNanosecondsPerSecond;
  }
  return end;
}

}  // namespace

bool HasMoments(BuiltIn primitive) {
  switch (primitive) {
    case BuiltIn::DateTime:
    case BuiltIn::Time:
    case BuiltIn::Date:
    case BuiltIn::GYearMonth:
    case BuiltIn::GYear:
    case BuiltIn::GMonthDay:
    case BuiltIn::GDay:
    case BuiltIn::GMonth: return true;
    default: return false;
  }
}

bool IsMoment(BuiltIn primitive, std::string_view text) { return ReadMoment(primitive, text).has_value(); }

Order CompareMoments(BuiltIn primitive, std::string_view a, std::string_view b) {
  std::optional<Moment> const first = ReadMoment(primitive, a);
  std::optional<Moment> const second = ReadMoment(primitive, b);
  if (!first || !second) return Order::Incomparable;
  if (first->zone.has_value() == second->zone.has_value()) {
    return PositionOf(*first, first->zone.value_or(0)).ComparedTo(PositionOf(*second, second->zone.value_or(0)));
  }
  if (first->zone) return CompareWithUnzoned(*first, *second);
  Order const order = CompareWithUnzoned(*second, *first);
  return order == Order::Less ? Order::Greater : order == Order::Greater ? Order::Less : order;
}

bool IsDuration(std::string_view text) { return ReadDuration(text).has_value(); }

Order CompareDurations(std::string_view a, std::string_view b) {
  std::optional<Duration> const first = ReadDuration(a);
  std::optional<Duration> const second = ReadDuration(b);
  if (!first || !second) return Order::Incomparable;
  // The starts that give each possible order of months and days.
  constexpr int kStarts[][2] = {{1696, 9}, {1697, 2}, {1903, 3}, {1903, 7}};
  std::optional<Order> result;
  for (auto const& [year, month] : kStarts) {
    Order const order = EndOf(*first, year, month).ComparedTo(EndOf(*second, year, month));
    if (result && *result != order) return Order::Incomparable;
    result = order;
  }
  return *result;
}

}  // namespace Quillon9Generator::Schema
