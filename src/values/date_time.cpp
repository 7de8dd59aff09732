#include "quillon9/values/date_time.h"

#include <cstring>
#include <ctime>
#include <iterator>
#include <limits>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "values/calendar.h"

namespace Quillon9 {

int const g_monthMax[12] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
int const g_monthDayInYear[13] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

// ---- Making values

CDateTime::CDateTime() = default;
CDateTime::CDateTime(DTType type) : m_type(type) {}
CDateTime::CDateTime(CDateTime const& other) = default;
CDateTime& CDateTime::operator=(CDateTime const& other) = default;
CDateTime::~CDateTime() = default;

namespace {

// The constructors from fields report nothing: a field out of range leaves a clear object.
template <class Set>
void SetOrClear(CDateTime& value, Set set) {
  try {
    set();
  } catch (CQnException const&) {
    value.Clear();
  }
}

}  // namespace

CDateTime::CDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day) {
  SetOrClear(*this, [&] { SetDate(year, month, day); });
}

CDateTime::CDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute,
                     std::uint8_t second) {
  SetOrClear(*this, [&] { SetDateTime(year, month, day, hour, minute, second); });
}

CDateTime::CDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute,
                     std::uint8_t second, std::uint16_t milli, std::uint16_t micro, std::uint16_t nano) {
  SetOrClear(*this, [&] { SetDateTime(year, month, day, hour, minute, second, milli, micro, nano); });
}

CDateTime::CDateTime(long const& time) {
  SetOrClear(*this, [&] { *this = time; });
}

CDateTime& CDateTime::operator=(long const& time) {
  std::time_t const seconds = time;
  std::tm fields{};
  bool const isKnown = gmtime_r(&seconds, &fields) != nullptr;
  long const year = fields.tm_year + 1900L;
  if (!isKnown || year > std::numeric_limits<std::int16_t>::max() || year < std::numeric_limits<std::int16_t>::min()) {
    RequireTypeOf(dt_dateTime);
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid Time [%ld]", time)));
  }
  SetDateTime(static_cast<std::int16_t>(year), static_cast<std::uint8_t>(fields.tm_mon + 1),
              static_cast<std::uint8_t>(fields.tm_mday), static_cast<std::uint8_t>(fields.tm_hour),
              static_cast<std::uint8_t>(fields.tm_min), static_cast<std::uint8_t>(fields.tm_sec));
  return *this;
}

CDateTime CDateTime::GetCurrentTime() { return CDateTime(static_cast<long>(std::time(nullptr))); }

// A value that is already set keeps its type.
void CDateTime::RequireTypeOf(DTType type) const {
  if (m_type == dt_yearZero || m_type == type) return;
  throw CQnInvalidStateException(FormatString("Failed to copy CDateTime. Invalid Date Type: %s, expected: %s.",
                                              GetTypeAsString(type).c_str(), GetTypeAsString().c_str()));
}

void CDateTime::SetDateTime(DTType type, std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour,
                            std::uint8_t minute, std::uint8_t second, std::uint16_t milli, std::uint16_t micro,
                            std::uint16_t nano) {
  RequireTypeOf(type);
  Clear();
  m_type = type;
  m_year = year;
  m_month = month;
  m_day = day;
  m_hour = hour;
  m_minute = minute;
  m_second = second;
  m_milliSecond = milli;
  m_microSecond = micro;
  m_nanoSecond = nano;
  Validate();
}

void CDateTime::SetDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour,
                            std::uint8_t minute, std::uint8_t second) {
  SetDateTime(dt_dateTime, year, month, day, hour, minute, second, 0, 0, 0);
}

void CDateTime::SetDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour,
                            std::uint8_t minute, std::uint8_t second, std::uint16_t milli, std::uint16_t micro,
                            std::uint16_t nano) {
  SetDateTime(dt_dateTime, year, month, day, hour, minute, second, milli, micro, nano);
}

void CDateTime::SetDate(std::int16_t year, std::uint8_t month, std::uint8_t day) {
  SetDateTime(dt_date, year, month, day, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetTime(std::uint8_t hour, std::uint8_t minute, std::uint8_t second) {
  SetDateTime(dt_time, 0, 0, 0, hour, minute, second, 0, 0, 0);
}

void CDateTime::SetTime(std::uint8_t hour, std::uint8_t minute, std::uint8_t second, std::uint16_t milli,
                        std::uint16_t micro, std::uint16_t nano) {
  SetDateTime(dt_time, 0, 0, 0, hour, minute, second, milli, micro, nano);
}

void CDateTime::SetFracTime(std::uint16_t milli, std::uint16_t micro, std::uint16_t nano) {
  SetDateTime(dt_time, 0, 0, 0, 0, 0, 0, milli, micro, nano);
}

void CDateTime::SetGDay(std::uint8_t day) { SetDateTime(dt_gDay, 0, 0, day, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGMonth(std::uint8_t month) { SetDateTime(dt_gMonth, 0, month, 0, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGMonthDay(std::uint8_t month, std::uint8_t day) {
  SetDateTime(dt_gMonthDay, 0, month, day, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetGYear(std::int16_t year) { SetDateTime(dt_gYear, year, 0, 0, 0, 0, 0, 0, 0, 0); }

void CDateTime::SetGYearMonth(std::int16_t year, std::uint8_t month) {
  SetDateTime(dt_gYearMonth, year, month, 0, 0, 0, 0, 0, 0, 0);
}

void CDateTime::SetDateTime(CDateTime const& source, DTType target) {
  if (!CheckConversion(source.m_type, target)) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(FormatString(
                     "Attempting to set a CDateTime of type %s using an XmlDateTime of type %s. The source CDateTime "
                     "does not contian "
                     "enough data to allow the conversion.",
                     GetTypeAsString(target).c_str(), source.GetTypeAsString().c_str())));
  }
  *this = source;
  m_type = target;
}

bool CDateTime::CheckConversion(DTType source, DTType target) {
  if (source == target || target == dt_yearZero) return true;
  switch (source) {
    case dt_dateTime: return true;
    case dt_date:
      return target == dt_gYearMonth || target == dt_gYear || target == dt_gDay || target == dt_gMonth ||
             target == dt_gMonthDay;
    case dt_gYearMonth: return target == dt_gYear || target == dt_gMonth;
    case dt_gMonthDay: return target == dt_gDay || target == dt_gMonth;
    case dt_yearZero:
    case dt_gYear:
    case dt_time:
    case dt_gDay:
    case dt_gMonth: return false;
  }
  throw OfKind(FailureKind_BadValue,
               CQnInvalidValueException(FormatString("Unknown date type %d.", static_cast<int>(source))));
}

void CDateTime::Clear() {
  m_type = dt_yearZero;
  m_reserved = 0;
  m_year = 0;
  m_month = m_day = m_hour = m_minute = m_second = 0;
  m_milliSecond = m_microSecond = m_nanoSecond = 0;
  m_isUTC = m_hasTimeZone = false;
  m_zoneHour = 0;
  m_zoneMinute = 0;
  m_rest.Drop();
}

std::string CDateTime::GetTypeAsString(DTType type) {
  switch (type) {
    case dt_yearZero: return "yearZero";
    case dt_dateTime: return "dateTime";
    case dt_date: return "date";
    case dt_gYearMonth: return "gYearMonth";
    case dt_gYear: return "gYear";
    case dt_time: return "time";
    case dt_gDay: return "gDay";
    case dt_gMonth: return "gMonth";
    case dt_gMonthDay: return "gMonthDay";
  }
  return "";
}

// ---- Fields

bool CDateTime::HasYear() const {
  return m_type == dt_dateTime || m_type == dt_date || m_type == dt_gYearMonth || m_type == dt_gYear;
}

bool CDateTime::HasMonth() const {
  return m_type == dt_dateTime || m_type == dt_date || m_type == dt_gYearMonth || m_type == dt_gMonth ||
         m_type == dt_gMonthDay;
}

bool CDateTime::HasDay() const {
  return m_type == dt_dateTime || m_type == dt_date || m_type == dt_gDay || m_type == dt_gMonthDay;
}

bool CDateTime::HasTime() const { return m_type == dt_dateTime || m_type == dt_time; }

void CDateTime::Require(bool allowed, char const* operation) const {
  if (allowed) return;
  throw CQnInvalidStateException(
      FormatString("Failed to %s. Invalid Date Type: %s.", operation, GetTypeAsString().c_str()));
}

// A setter throws the failure text of its getter.
#define QN_DATE_FIELD(Type, Name, member, condition) \
  Type CDateTime::Get##Name() const {                \
    Require(condition, "Get" #Name);                 \
    return member;                                   \
  }                                                  \
  void CDateTime::Set##Name(Type value) {            \
    Require(condition, "Get" #Name);                 \
    member = value;                                  \
  }

QN_DATE_FIELD(std::uint8_t, Month, m_month, HasMonth())
QN_DATE_FIELD(std::uint8_t, Day, m_day, HasDay())
QN_DATE_FIELD(std::uint8_t, Hour, m_hour, HasTime())
QN_DATE_FIELD(std::uint8_t, Minute, m_minute, HasTime())
QN_DATE_FIELD(std::uint8_t, Second, m_second, HasTime())
QN_DATE_FIELD(std::uint16_t, MilliSecond, m_milliSecond, HasTime())
QN_DATE_FIELD(std::uint16_t, MicroSecond, m_microSecond, HasTime())

#undef QN_DATE_FIELD

std::int16_t CDateTime::GetYear() const {
  Require(HasYear(), "GetYear");
  if (Year() != m_year) ThrowTooNarrow("GetYear");
  return m_year;
}

void CDateTime::SetYear(std::int16_t year) {
  Require(HasYear(), "GetYear");
  StoreYear(year);
}

std::int64_t CDateTime::GetLongYear() const {
  Require(HasYear(), "GetYear");
  return Year();
}

void CDateTime::SetLongYear(std::int64_t year) {
  Require(HasYear(), "GetYear");
  StoreYear(year);
}

std::uint16_t CDateTime::GetNanoSecond() const {
  Require(HasTime(), "GetNanoSecond");
  return m_nanoSecond;
}

void CDateTime::SetNanoSecond(std::uint16_t nano) {
  Require(HasTime(), "GetNanoSecond");
  m_nanoSecond = nano;
  DropLongFraction();
}

double CDateTime::GetRealSecond() const {
  Require(HasTime(), "GetRealSecond");
  return m_second + m_milliSecond / 1000.0 + m_microSecond / 1000000.0 + m_nanoSecond / 1000000000.0;
}

// ---- What few values have

void CDateTime::StoreYear(std::int64_t year) {
  if (year < -kMostYear || year > kMostYear) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(FormatString("Invalid Year [%lld] (more than %d digits)",
                                                       static_cast<long long>(year), kMostYearDigits)));
  }
  using Short = std::numeric_limits<std::int16_t>;
  bool const isLong = year < Short::min() || year > Short::max();
  m_year = isLong ? Short::max() : static_cast<std::int16_t>(year);
  if (isLong || m_rest.Find() != nullptr) m_rest.Make().year = isLong ? year : 0;
}

bool CDateTime::HasNegativeOffset() const {
  return m_zoneHour < 0 || (m_rest.Find() != nullptr && m_rest.Find()->hasNegativeOffset);
}

void CDateTime::ThrowTooNarrow(char const* operation) const {
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("The value [%s] does not fit into %s()",
                                                                           ToString().c_str(), operation)));
}

int CDateTime::GetDayOfYear() const {
  Require(m_type == dt_dateTime || m_type == dt_date, "GetDayOfYear");
  if (m_month < 1 || m_month > std::size(g_monthDayInYear)) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(FormatString("Invalid Month [%d] (1 <= month <= 12)", m_month)));
  }
  bool const isLeapYear = IsLeapYear(static_cast<int>(Year() % kYearsInCycle));
  return g_monthDayInYear[m_month - 1] + m_day + (isLeapYear && m_month <= 2 ? 1 : 0);
}

int CDateTime::GetDayOfWeek() const {
  Require(m_type == dt_dateTime || m_type == dt_date, "GetDayOfWeek");
  std::time_t const time = GetTime();
  std::tm fields{};
  localtime_r(&time, &fields);
  return fields.tm_wday + 1;
}

long CDateTime::GetTime() const {
  if (m_type != dt_dateTime && m_type != dt_date) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(
                     FormatString("Failed to GetTime, Date Status must be dateTime or date. Invalid Date Type: %s.",
                                  GetTypeAsString().c_str())));
  }
  CDateTime const normal = GetNormalized();
  if (normal.Year() != normal.m_year) ThrowTooNarrow("GetTime");
  std::tm fields{};
  fields.tm_year = normal.m_year - 1900;
  fields.tm_mon = normal.m_month - 1;
  fields.tm_mday = normal.m_day;
  if (m_type == dt_dateTime) {
    fields.tm_hour = normal.m_hour;
    fields.tm_min = normal.m_minute;
    fields.tm_sec = normal.m_second;
  }
  std::time_t const time = std::mktime(&fields);
  std::tm universal{};
  std::tm local{};
  gmtime_r(&time, &universal);
  localtime_r(&time, &local);
  return time + static_cast<long>(std::difftime(std::mktime(&local), std::mktime(&universal)));
}

// ---- Zone

void CDateTime::SetUTC() {
  SetTimeZone(0, 0);
  m_hasTimeZone = false;
}

void CDateTime::SetTimeZone(std::int16_t hour, std::uint8_t minute) {
  if (hour < -23 || hour > 23 || minute > 59) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(FormatString("Invalid TimeZone [%d:%d]", hour, minute)));
  }
  m_isUTC = true;
  m_hasTimeZone = true;
  m_zoneHour = hour;
  m_zoneMinute = minute;
  if (m_rest.Find() != nullptr) m_rest.Make().hasNegativeOffset = false;
}

std::int16_t CDateTime::GetZoneHour() const {
  if (!m_hasTimeZone) throw CQnInvalidStateException("TimeZone is not been used");
  if (m_zoneHour == 0 && HasNegativeOffset()) ThrowTooNarrow("GetZoneHour");
  return m_zoneHour;
}

std::uint8_t CDateTime::GetZoneMinute() const {
  if (!m_hasTimeZone) throw CQnInvalidStateException("TimeZone is not been used");
  return m_zoneMinute;
}

int CDateTime::GetZoneOffset() const {
  if (!m_hasTimeZone) throw CQnInvalidStateException("TimeZone is not been used");
  return m_zoneHour * 60 + (HasNegativeOffset() ? -m_zoneMinute : m_zoneMinute);
}

// ---- Validation

namespace {

[[noreturn]] void ThrowInvalid(char const* format, int value) {
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(format, value)));
}

}  // namespace

void CDateTime::Validate() const {
  if (m_type == dt_yearZero) throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid Year Zero"));
  if (HasMonth() ? m_month < 1 || m_month > 12 : m_month != 0) {
    if (HasMonth()) ThrowInvalid("Invalid Month [%d] (1 <= month <= 12)", m_month);
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid Month [%d] for type %s", m_month,
                                                                             GetTypeAsString().c_str())));
  }
  if (HasYear() && (Year() == 0 || Year() < MIN_YEAR || Year() > MAX_YEAR)) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(FormatString("Invalid Year [%lld] (%d <= year <= %d && year != 0)",
                                                       static_cast<long long>(Year()), MAX_YEAR, MIN_YEAR)));
  }
  if (!HasYear() && m_year != 0) {
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid Year [%d] for type %s", m_year,
                                                                             GetTypeAsString().c_str())));
  }
  ValidateDay();
  ValidateTime();
}

void CDateTime::ValidateDay() const {
  if (m_type == dt_dateTime || m_type == dt_date) {
    bool const noSuchLeapDay = m_month == 2 && m_day == 29 && !IsLeapYear(m_year);
    if (m_day == 0 || m_day > g_monthMax[m_month - 1] || noSuchLeapDay) {
      ThrowInvalid("Invalid Day [%d] (1 <= day <= days in month", m_day);
    }
  } else if (m_type == dt_gMonthDay) {
    if (m_day == 0 || m_day > g_monthMax[m_month - 1]) {
      ThrowInvalid("Invalid Day [%d] (1 <= day <= days in month)", m_day);
    }
  } else if (m_type == dt_gDay) {
    if (m_day == 0) ThrowInvalid("Invalid Day [%d] (1 <= day <= 31)", m_day);
  } else if (m_day != 0) {
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid Day [%d] for type %s", m_day,
                                                                             GetTypeAsString().c_str())));
  }
}

void CDateTime::ValidateTime() const {
  bool const isZero = m_hour == 0 && m_minute == 0 && m_second == 0;
  bool const isWithin = m_hour <= 23 && m_minute <= 59 && m_second <= 59;
  bool const hasFraction = m_milliSecond != 0 || m_microSecond != 0 || m_nanoSecond != 0;
  if (!hasFraction && (HasTime() ? isWithin : isZero)) return;  // true of nearly all values
  struct {
    int value;
    int greatest;
    char const* name;
    char const* range;
  } const fields[] = {
      {m_hour, 23, "Hour", "hour <= 23"},
      {m_minute, 59, "Minute", "minute <= 59"},
      {m_second, 59, "Second", "second <= 59"},
      {m_milliSecond, 999, "Milli-Second", "milli <= 999"},
      {m_microSecond, 999, "Micro-Second", "micro <= 999"},
      {m_nanoSecond, 999, "Nano-Second", "nano <= 999"},
  };
  for (auto const& field : fields) {
    if (HasTime()) {
      if (field.value <= field.greatest) continue;
      throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid %s [%d] (0 <= %s)", field.name,
                                                                               field.value, field.range)));
    }
    if (field.value == 0) continue;
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid %s [%d] for type %s", field.name,
                                                                             field.value, GetTypeAsString().c_str())));
  }
}

}  // namespace Quillon9
