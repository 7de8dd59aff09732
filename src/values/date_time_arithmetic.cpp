// The order of dates and times, and the addition of durations.

#include <cmath>
#include <limits>

#include "quillon9/base/exceptions.h"
#include "quillon9/values/date_time.h"
#include "values/calendar.h"

namespace Quillon9 {

namespace {

constexpr int kEqual = 0;
constexpr int kLess = 1;
constexpr int kGreater = 2;
constexpr int kIndeterminate = 3;

template <class Number>
int CompareNumbers(Number left, Number right) {
  if ((left < 0 && right > 0) || (left > 0 && right < 0)) return kIndeterminate;
  if (left < right) return kLess;
  return left > right ? kGreater : kEqual;
}

}  // namespace

int Compare(CDateTime const& left, CDateTime const& right) {
  int order = CompareNumbers(left.HasYear() ? left.Year() : -1, right.HasYear() ? right.Year() : -1);
  // The left month is used for the right side too: it never decides, and a left side without a month throws.
  if (order == kEqual) {
    order = CompareNumbers(left.HasMonth() ? left.m_month : -1, right.HasMonth() ? int{left.GetMonth()} : -1);
  }
  if (order == kEqual) order = CompareNumbers(left.HasDay() ? left.m_day : -1, right.HasDay() ? right.m_day : -1);
  if (order == kEqual) order = CompareNumbers(left.HasTime() ? left.m_hour : -1, right.HasTime() ? right.m_hour : -1);
  if (order == kEqual) {
    order = CompareNumbers(left.HasTime() ? left.m_minute : -1, right.HasTime() ? right.m_minute : -1);
  }
  if (order == kEqual) {
    order =
        CompareNumbers(left.HasTime() ? left.GetRealSecond() : -1.0, right.HasTime() ? right.GetRealSecond() : -1.0);
  }
  bool const isLong = left.m_rest.Find() != nullptr || right.m_rest.Find() != nullptr;
  if (order == kEqual && isLong && left.HasTime() && right.HasTime()) {
    int const rest = left.LongFraction().compare(right.LongFraction());
    order = rest < 0 ? kLess : rest > 0 ? kGreater : kEqual;
  }
  return order;
}

CDateTime CDateTime::GetNormalized() const {
  CDateTime copy(*this);
  if (!m_hasTimeZone) return copy;
  auto const hours = static_cast<std::uint32_t>(m_zoneHour < 0 ? -m_zoneHour : m_zoneHour);
  CDateTimeSpan const offset(hours, m_zoneMinute, 0);
  if (HasNegativeOffset()) {
    copy += offset;
  } else {
    copy -= offset;
  }
  copy.SetTimeZone(0, 0);
  return copy;
}

namespace {

CDateTime Moved(CDateTime value, std::int16_t zoneHour) {
  value.SetTimeZone(zoneHour, 0);
  return value.GetNormalized();
}

// The result that holds for `zoned` and `unzoned` in every zone that the latter may be in. `before` and `after` are the
// results that decide.
int CompareAcrossZones(CDateTime const& unzoned, CDateTime const& zoned, bool zonedIsLeft) {
  auto const compare = [&](CDateTime const& moved) {
    return zonedIsLeft ? Compare(zoned, moved) : Compare(moved, zoned);
  };
  int const first = zonedIsLeft ? kLess : kGreater;
  int const second = zonedIsLeft ? kGreater : kLess;
  try {
    CDateTime const earliest = Moved(unzoned, 14);
    if (compare(earliest) == first) return first;
    if (compare(Moved(earliest, -14)) == second) return second;
  } catch (CQnException const&) {
  }
  return kIndeterminate;
}

}  // namespace

int CDateTime::CompareTo(CDateTime const& other) const {
  CDateTime const left = m_hasTimeZone ? GetNormalized() : *this;
  CDateTime const right = other.m_hasTimeZone ? other.GetNormalized() : other;
  if (left.m_isUTC == right.m_isUTC) return Compare(left, right);
  return left.m_isUTC ? CompareAcrossZones(right, left, true) : CompareAcrossZones(left, right, false);
}

// ---- Arithmetic

int GetQuotient(long long a, int b) {
  float const quotient = std::floor(static_cast<float>(static_cast<double>(a) / b));
  bool const fits = quotient >= -2147483648.0F && quotient < 2147483648.0F;
  return fits ? static_cast<int>(quotient) : std::numeric_limits<int>::min();
}

long long GetModulo(long long a, int b) {
  auto const product = static_cast<unsigned long long>(static_cast<long long>(GetQuotient(a, b)) * b);
  return static_cast<long long>(static_cast<unsigned long long>(a) - product);
}

namespace {

// base + value or base - value in 64 bits, with wrap-around.
std::int64_t AddSigned(std::int64_t base, std::uint64_t value, bool negative) {
  auto const from = static_cast<std::uint64_t>(base);
  return static_cast<std::int64_t>(negative ? from - value : from + value);
}

// Reduces `field` below `modulus` and returns the carry.
template <class Field>
std::int64_t AddField(Field& field, std::uint64_t value, bool negative, std::int64_t carry, int modulus) {
  std::int64_t const sum = AddSigned(field + carry, value, negative);
  field = static_cast<Field>(GetModulo(sum, modulus));
  return GetQuotient(sum, modulus);
}

int LastDay(std::int64_t year, std::int64_t month) {
  if (month < 1 || month > 12) {
    throw CQnInvalidValueException(
        FormatString("Invalid Month [%lld] (1 <= month <= 12)", static_cast<long long>(month)));
  }
  return DaysInMonth(year, static_cast<int>(month));
}

struct Date {
  std::int64_t year;
  std::int64_t month;
  std::int64_t day;
};

/// Move \p date by \p days within its month, or to the first or last day of the next one, and return the days that
/// remain.
std::int64_t StepDays(Date& date, std::int64_t days) {
  if (days > 0) {
    int const last = LastDay(date.year, date.month);
    if (days + date.day > last) {
      days += date.day - 1 - last;
      date.day = 1;
      ++date.month;
      return days;
    }
  } else if (date.day - 1 < -days) {
    --date.month;
    days += date.day;
    date.day = LastDay(date.year, date.month == 0 ? 12 : date.month);
    return days;
  }
  date.day += days;
  return 0;
}

// After the first step the day is the first or the last of a month. The calendar repeats after 400 years, so whole
// cycles are skipped.
void AddDays(Date& date, std::int64_t days) {
  for (bool skipped = false; days != 0; skipped = true) {
    days = StepDays(date, days);
    if (date.month == 0) {
      date.month = 12;
      --date.year;
    } else if (date.month == 13) {
      date.month = 1;
      ++date.year;
    }
    if (skipped) continue;
    date.year += days / kDaysInCycle * kYearsInCycle;
    days %= kDaysInCycle;
  }
}

}  // namespace

void CDateTime::AddDateTimeSpan(CDateTimeSpan const& span) {
  if (span.m_rest.Find() != nullptr && !span.m_rest.Find()->fraction.empty()) span.ThrowTooNarrow("AddDateTimeSpan");
  bool const negative = span.IsNegative();
  bool const isLong = Year() != m_year;
  auto const setYear = [&](std::int64_t sum) {
    if (isLong) return StoreYear(sum);
    m_year = static_cast<std::int16_t>(sum);
  };
  std::int64_t const months = AddSigned(m_month - 1, span.GetMonths(), negative);
  std::int64_t const month = GetModulo(months, 12) + 1;
  std::int64_t const year = AddSigned(Year() + GetQuotient(months, 12), span.GetYears(), negative);
  std::int64_t carry = AddField(m_nanoSecond, span.GetNanoSeconds(), negative, 0, 1000);
  carry = AddField(m_microSecond, span.GetMicroSeconds(), negative, carry, 1000);
  carry = AddField(m_milliSecond, span.GetMilliSeconds(), negative, carry, 1000);
  carry = AddField(m_second, span.GetSeconds(), negative, carry, 60);
  carry = AddField(m_minute, span.GetMinutes(), negative, carry, 60);
  carry = AddField(m_hour, span.GetHours(), negative, carry, 24);
  m_month = static_cast<std::uint8_t>(month);
  setYear(year);
  std::int64_t const days = AddSigned(carry, span.GetDays(), negative);
  if (days == 0) return;
  Date date{year, month, m_day};
  AddDays(date, days);
  setYear(date.year);
  m_month = static_cast<std::uint8_t>(date.month);
  m_day = static_cast<std::uint8_t>(date.day);
}

CDateTime& CDateTime::operator+=(CDateTimeSpan const& span) {
  AddDateTimeSpan(span);
  return *this;
}

CDateTime& CDateTime::operator-=(CDateTimeSpan const& span) {
  AddDateTimeSpan(span.GetAsNegative());
  return *this;
}

CDateTime CDateTime::operator+(CDateTimeSpan const& span) const { return CDateTime(*this) += span; }

CDateTime CDateTime::operator-(CDateTimeSpan const& span) const { return CDateTime(*this) -= span; }

CDateTimeSpan CDateTime::operator-(CDateTime const&) const { return CDateTimeSpan(); }

}  // namespace Quillon9
