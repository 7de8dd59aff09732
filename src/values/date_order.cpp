#include "values/date_order.h"

#include <algorithm>
#include <cstdint>
#include <tuple>

#include "values/moment_access.h"
#include "values/schema_moments.h"

namespace Quillon9 {

namespace {

enum { kEqual, kLess, kGreater, kIndeterminate };

using Instant = std::tuple<std::int64_t, int, int, int>;  // seconds and fractions of them

std::int64_t DaysBefore(std::int64_t year, int anyMonth) {
  int const month = std::clamp(anyMonth, 1, 12);  // nothing validates a month that a program sets
  bool const isAfterFebruary = month > 2;
  std::int64_t const before = year - 1 + 400 * 25;  // not negative
  return before * 365 + before / 4 - before / 100 + before / 400 + g_monthDayInYear[month - 1] +
         (isAfterFebruary && IsLeapYear(static_cast<int>(year)) ? 1 : 0);
}

/// A value as a moment in UTC. Fields that its type does not have are those of one moment for all values.
Instant InstantOf(CDateTime const& value) {
  CDateTime::DTType const type = value.GetType();
  bool const hasDate = type == CDateTime::dt_dateTime || type == CDateTime::dt_date;
  bool const hasTime = type == CDateTime::dt_dateTime || type == CDateTime::dt_time;
  int const year = hasDate || type == CDateTime::dt_gYearMonth ? value.GetYear() : 2000;
  int const month = type == CDateTime::dt_time ? 1 : value.GetMonth();
  int const day = hasDate || type == CDateTime::dt_gMonthDay ? value.GetDay() : 1;
  std::int64_t seconds = (DaysBefore(year, month) + day) * 86400;
  if (hasTime) seconds += (value.GetHour() * 60 + value.GetMinute()) * 60 + value.GetSecond();
  if (value.HasTimeZone()) {
    int const hours = value.GetZoneHour();
    seconds -= (hours * 60 + (hours < 0 ? -value.GetZoneMinute() : value.GetZoneMinute())) * 60;
  }
  if (!hasTime) return {seconds, 0, 0, 0};
  return {seconds, value.GetMilliSecond(), value.GetMicroSecond(), value.GetNanoSecond()};
}

int Order(Instant const& left, Instant const& right) {
  return left == right ? kEqual : left < right ? kLess : kGreater;
}

}  // namespace

int OrderOfDates(CDateTime const& left, CDateTime const& right) {
  if (MomentAccess::IsLong(left) || MomentAccess::IsLong(right)) return OrderOfMoments(left, right);
  constexpr std::int64_t kFarthestZone = 14 * 60 * 60;
  Instant const a = InstantOf(left);
  Instant const b = InstantOf(right);
  if (left.IsUTC() == right.IsUTC()) return Order(a, b);
  Instant earlier = a;
  Instant later = a;
  std::get<0>(earlier) -= kFarthestZone;
  std::get<0>(later) += kFarthestZone;
  int const order = Order(later, b);
  return order == kLess || Order(earlier, b) == kGreater ? order : kIndeterminate;
}

}  // namespace Quillon9
