#pragma once

#include <cstdint>

#include "quillon9/values/date_time.h"

namespace Quillon9 {

/// The years that a CDateTime holds: those of eighteen digits.
///@{
constexpr int kMostYearDigits = 18;
constexpr std::int64_t kMostYear = 999999999999999999;
///@}

/// The Gregorian calendar in both directions, with a year 0.
///@{
constexpr std::int64_t kYearsInCycle = 400;
constexpr std::int64_t kDaysInCycle = 146097;

/// The year of this calendar for one as dates count them: the year -1 is followed by 1.
inline std::int64_t CalendarYear(std::int64_t year) { return year < 0 ? year + 1 : year; }

inline int DaysInMonth(std::int64_t calendarYear, int month) {
  if (month == 2 && !IsLeapYear(static_cast<int>(calendarYear % kYearsInCycle))) return 28;
  return g_monthMax[month - 1];
}

/// The days from the beginning of a cycle to the first day of a month. \p year is 0 to 399.
inline std::int64_t DaysFromCycle(int year, int month) {
  int const leapDays = (year + 3) / 4 - (year + 99) / 100 + (year + 399) / 400;
  return year * 365 + leapDays + g_monthDayInYear[month - 1] + (month > 2 && IsLeapYear(year) ? 1 : 0);
}

template <class Integer>
constexpr Integer FlooredQuotient(Integer a, Integer b) {
  return a / b - (a % b < 0 ? 1 : 0);
}
///@}

}  // namespace Quillon9
