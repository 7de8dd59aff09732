// Printing dates and times by the rules of XML Schema.

#include <cstdlib>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "values/calendar.h"
#include "values/moment_access.h"
#include "values/moment_fields.h"
#include "values/schema_failures.h"
#include "values/schema_moments.h"

namespace Quillon9 {

namespace {

constexpr int kMinutesPerDay = 24 * 60;

bool HasValidMonth(MomentFields const& fields) { return fields.month >= 1 && fields.month <= 12; }
bool HasDayUpTo(MomentFields const& fields, int last) { return fields.day >= 1 && fields.day <= last; }

bool HasValidDate(MomentFields const& fields) {
  return fields.year != 0 && HasValidMonth(fields) &&
         HasDayUpTo(fields, DaysInMonth(CalendarYear(fields.year), fields.month));
}

bool HasValidTime(MomentFields const& fields) {
  constexpr std::uint64_t kSecond = 1000000000;
  return fields.hour <= 23 && fields.minute <= 59 && fields.second <= 59 && fields.nanoseconds < kSecond;
}

/// Whether the fields that the type uses are those of a value.
bool IsValid(MomentFields const& fields) {
  switch (fields.type) {
    case CDateTime::dt_dateTime: return HasValidDate(fields) && HasValidTime(fields);
    case CDateTime::dt_date: return HasValidDate(fields);
    case CDateTime::dt_time: return HasValidTime(fields);
    case CDateTime::dt_gYear: return fields.year != 0;
    case CDateTime::dt_gYearMonth: return fields.year != 0 && HasValidMonth(fields);
    case CDateTime::dt_gMonth: return HasValidMonth(fields);
    case CDateTime::dt_gMonthDay: return HasValidMonth(fields) && HasDayUpTo(fields, g_monthMax[fields.month - 1]);
    case CDateTime::dt_gDay: return HasDayUpTo(fields, 31);
    case CDateTime::dt_yearZero: return false;
  }
  return false;
}

/// Programs may set offsets of up to a day. The same moment is a day earlier or later at an offset that XML Schema
/// knows.
bool BringOffsetNear(MomentFields& fields) {
  if (std::abs(fields.offset) <= kFarthestOffset) return true;
  if (fields.type != CDateTime::dt_dateTime && fields.type != CDateTime::dt_date) return false;
  if (fields.offset > 0) {
    MoveToDayBefore(fields);
    fields.offset -= kMinutesPerDay;
  } else {
    MoveToNextDay(fields);
    fields.offset += kMinutesPerDay;
  }
  return true;
}

std::string NumberText(ItemType kind, char const* format, unsigned number, unsigned most) {
  if (number >= 1 && number <= most) return FormatString(format, number);
  SchemaFailures::ThrowNotValid(FormatString("%u", number), kind);
}

}  // namespace

std::string MomentText(CDateTime const& value) {
  MomentFields fields = MomentAccess::FieldsOf(value);
  int const offset = fields.offset;
  if (!IsValid(fields) || !BringOffsetNear(fields)) {
    SchemaFailures::ThrowNotValid(value.ToString(), KindOfMoment(fields.type));
  }
  if (fields.offset == offset && MomentAccess::HasFractionInOrder(value)) return value.ToString();
  CDateTime near;
  MomentAccess::SetFields(near, fields);
  return near.ToString();
}

std::string YearText(std::uint16_t year) { return NumberText(ItemType_year, "%04u", year, 65535); }
std::string MonthText(std::uint8_t month) { return NumberText(ItemType_month, "--%02u", month, 12); }
std::string DayText(std::uint8_t day) { return NumberText(ItemType_day, "---%02u", day, 31); }

}  // namespace Quillon9
