#include "values/moment_fields.h"

#include "values/calendar.h"

namespace Quillon9 {

namespace {

constexpr struct {
  ItemType kind;
  CDateTime::DTType type;
} kKinds[] = {
    {ItemType_datetime, CDateTime::dt_dateTime}, {ItemType_date, CDateTime::dt_date},
    {ItemType_time, CDateTime::dt_time},         {ItemType_yearMonth, CDateTime::dt_gYearMonth},
    {ItemType_year, CDateTime::dt_gYear},        {ItemType_monthDay, CDateTime::dt_gMonthDay},
    {ItemType_month, CDateTime::dt_gMonth},      {ItemType_day, CDateTime::dt_gDay},
};

int DaysIn(MomentFields const& fields) { return DaysInMonth(CalendarYear(fields.year), fields.month); }

}  // namespace

CDateTime::DTType MomentTypeOf(ItemType kind) {
  for (auto const& row : kKinds) {
    if (row.kind == kind) return row.type;
  }
  return CDateTime::dt_yearZero;
}

ItemType KindOfMoment(CDateTime::DTType type) {
  for (auto const& row : kKinds) {
    if (row.type == type) return row.kind;
  }
  return ItemType_invalid;
}

void MoveToNextDay(MomentFields& fields) {
  if (++fields.day <= DaysIn(fields)) return;
  fields.day = 1;
  if (++fields.month <= 12) return;
  fields.month = 1;
  fields.year = fields.year == -1 ? 1 : fields.year + 1;
}

void MoveToDayBefore(MomentFields& fields) {
  if (--fields.day != 0) return;
  if (--fields.month == 0) {
    fields.month = 12;
    fields.year = fields.year == 1 ? -1 : fields.year - 1;
  }
  fields.day = DaysIn(fields);
}

}  // namespace Quillon9
