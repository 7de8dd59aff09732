// The order of dates and times by the rules of XML Schema.

#include <algorithm>
#include <tuple>

#include "values/calendar.h"
#include "values/moment_access.h"
#include "values/schema_moments.h"

namespace Quillon9 {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kSecondsInCycle = kDaysInCycle * kSecondsPerDay;
constexpr std::int64_t kFarthestShift = kFarthestOffset * 60;

/// A point on one of the two time lines. Any year of 64 bits has its cycle.
struct Instant {
  std::int64_t cycle = 0;    ///< of 400 years
  std::int64_t seconds = 0;  ///< in the cycle
  std::uint64_t nanoseconds = 0;
  std::string_view fraction;  ///< the digits after the ninth, without zeros at the end: they compare like a text

  Instant MovedBy(std::int64_t change) const {
    Instant moved = *this;
    moved.seconds += change;
    std::int64_t const cycles = FlooredQuotient(moved.seconds, kSecondsInCycle);
    moved.cycle += cycles;
    moved.seconds -= cycles * kSecondsInCycle;
    return moved;
  }

  ValueOrder ComparedTo(Instant const& other) const {
    auto const key = [](Instant const& instant) {
      return std::tie(instant.cycle, instant.seconds, instant.nanoseconds, instant.fraction);
    };
    return key(*this) == key(other) ? ValueOrder_Equal : key(*this) < key(other) ? ValueOrder_Less : ValueOrder_Greater;
  }
};

/// Give the fields that the type does not have the same moment in all values. The year is a leap year, and the month is
/// long enough for every day.
void CompleteDate(MomentFields& fields) {
  constexpr int kYear = 1972;
  switch (fields.type) {
    case CDateTime::dt_dateTime:
    case CDateTime::dt_date: break;
    case CDateTime::dt_gYearMonth: fields.day = 1; break;
    case CDateTime::dt_gYear: fields.month = fields.day = 1; break;
    case CDateTime::dt_gMonthDay: fields.year = kYear; break;
    case CDateTime::dt_gMonth:
      fields.year = kYear;
      fields.day = 1;
      break;
    case CDateTime::dt_gDay:
      fields.year = kYear;
      fields.month = 12;
      break;
    case CDateTime::dt_time:
    case CDateTime::dt_yearZero:
      fields.year = kYear;
      fields.month = 12;
      fields.day = 31;
      break;
  }
  fields.month = std::clamp(fields.month, 1, 12);  // nothing has validated what a program sets
}

Instant InstantOf(CDateTime const& value) {
  MomentFields fields = MomentAccess::FieldsOf(value);
  CompleteDate(fields);
  std::int64_t const year = CalendarYear(fields.year);
  Instant instant;
  instant.cycle = FlooredQuotient(year, kYearsInCycle);
  auto const yearInCycle = static_cast<int>(year - instant.cycle * kYearsInCycle);
  std::int64_t const days = DaysFromCycle(yearInCycle, fields.month) + fields.day - 1;
  instant.seconds = days * kSecondsPerDay - fields.offset * 60;
  if (fields.type == CDateTime::dt_dateTime || fields.type == CDateTime::dt_time) {
    instant.seconds += (fields.hour * 60 + fields.minute) * 60 + fields.second;
    instant.nanoseconds = fields.nanoseconds;
    instant.fraction = fields.fraction;
  }
  return instant.MovedBy(0);
}

/// \p zoned against a value that may be in any zone.
ValueOrder CompareToUnzoned(Instant const& zoned, Instant const& other) {
  if (zoned.ComparedTo(other.MovedBy(-kFarthestShift)) == ValueOrder_Less) return ValueOrder_Less;
  if (zoned.ComparedTo(other.MovedBy(kFarthestShift)) == ValueOrder_Greater) return ValueOrder_Greater;
  return ValueOrder_Indeterminate;
}

}  // namespace

ValueOrder OrderOfMoments(CDateTime const& left, CDateTime const& right) {
  if (left.GetType() != right.GetType()) return ValueOrder_Indeterminate;
  Instant const a = InstantOf(left);
  Instant const b = InstantOf(right);
  if (left.IsUTC() == right.IsUTC()) return a.ComparedTo(b);
  if (left.IsUTC()) return CompareToUnzoned(a, b);
  ValueOrder const order = CompareToUnzoned(b, a);
  return order == ValueOrder_Less ? ValueOrder_Greater : order == ValueOrder_Greater ? ValueOrder_Less : order;
}

}  // namespace Quillon9
