// Reading dates and times by the rules of XML Schema.

#include "values/schema_moments.h"

#include <limits>

#include "values/calendar.h"
#include "values/moment_access.h"
#include "values/moment_fields.h"
#include "values/moment_scan.h"
#include "values/schema_failures.h"

namespace Quillon9 {

namespace {

/// What a text can be.
enum class Outcome { Valid, Invalid, TooLarge };

class MomentReader {
 public:
  MomentReader(std::string_view text, MomentFields& fields) : m_scan(text), m_fields(fields) {}

  Outcome Read() {
    if (!ReadParts() || !ReadZone() || !m_scan.IsAtEnd()) return Outcome::Invalid;
    if (m_fields.hour == 24) EndDay();
    return m_isTooLarge ? Outcome::TooLarge : Outcome::Valid;
  }

 private:
  bool ReadParts() {
    switch (m_fields.type) {
      case CDateTime::dt_dateTime: return ReadDate() && m_scan.Take('T') && ReadTime();
      case CDateTime::dt_date: return ReadDate();
      case CDateTime::dt_time: return ReadTime();
      case CDateTime::dt_gYear: return ReadYear();
      case CDateTime::dt_gYearMonth: return ReadYear() && m_scan.Take('-') && ReadMonth();
      case CDateTime::dt_gMonth: return TakeDashes(2) && ReadMonth();
      case CDateTime::dt_gMonthDay:
        return TakeDashes(2) && ReadMonth() && m_scan.Take('-') && ReadDay(g_monthMax[m_fields.month - 1]);
      case CDateTime::dt_gDay: return TakeDashes(3) && ReadDay(31);
      case CDateTime::dt_yearZero: return false;
    }
    return false;
  }

  bool TakeDashes(int count) {
    for (; count != 0; --count) {
      if (!m_scan.Take('-')) return false;
    }
    return true;
  }

  bool ReadDate() {
    if (!ReadYear() || !m_scan.Take('-') || !ReadMonth() || !m_scan.Take('-')) return false;
    return ReadDay(DaysInMonth(CalendarYear(m_fields.year), m_fields.month));
  }

  bool ReadYear() {
    bool const isNegative = m_scan.Take('-');
    std::string_view digits = m_scan.TakeDigits();
    if (digits.size() < 4 || (digits.size() > 4 && digits[0] == '0')) return false;
    std::int64_t year = 0;
    if (digits.size() > kMostYearDigits) {  // one with the same last digits has the same leap days
      m_isTooLarge = true;
      digits.remove_prefix(digits.size() - 4);
      year = 1;
    }
    for (char const digit : digits) year = year * 10 + (digit - '0');
    m_fields.year = isNegative ? -year : year;
    return year != 0;
  }

  bool ReadMonth() { return m_scan.TakeTwo(m_fields.month, 1, 12); }
  bool ReadDay(int last) { return m_scan.TakeTwo(m_fields.day, 1, last); }

  bool ReadTime() {
    if (!m_scan.TakeTwo(m_fields.hour, 0, 24) || !m_scan.Take(':') || !m_scan.TakeTwo(m_fields.minute, 0, 59) ||
        !m_scan.Take(':') || !m_scan.TakeTwo(m_fields.second, 0, 59) ||
        !m_scan.TakeFraction(m_fields.nanoseconds, m_fields.fraction)) {
      return false;
    }
    return m_fields.hour != 24 || IsFullHour();
  }

  bool IsFullHour() const {
    return m_fields.minute == 0 && m_fields.second == 0 && m_fields.nanoseconds == 0 &&
           m_fields.fraction.find_first_not_of('0') == std::string_view::npos;
  }

  bool ReadZone() {
    if (m_scan.IsAtEnd()) return true;
    m_fields.hasZone = true;
    if (m_scan.Take('Z')) return true;
    m_fields.hasOffset = true;
    bool const isNegative = m_scan.Take('-');
    int hours = 0;
    int minutes = 0;
    if ((!isNegative && !m_scan.Take('+')) || !m_scan.TakeTwo(hours, 0, 14) || !m_scan.Take(':') ||
        !m_scan.TakeTwo(minutes, 0, 59)) {
      return false;
    }
    int const offset = hours * 60 + minutes;
    m_fields.offset = isNegative ? -offset : offset;
    return offset <= kFarthestOffset;
  }

  /// 24:00:00 is the beginning of the next day.
  void EndDay() {
    m_fields.hour = 0;
    if (m_fields.type == CDateTime::dt_dateTime) MoveToNextDay(m_fields);
    if (m_fields.year > kMostYear) m_isTooLarge = true;
  }

  MomentScan m_scan;
  MomentFields& m_fields;
  bool m_isTooLarge = false;
};

MomentFields ReadMoment(ItemType kind, std::string_view text) {
  MomentFields fields;
  fields.type = MomentTypeOf(kind);
  Outcome const outcome = MomentReader(text, fields).Read();
  if (outcome == Outcome::Invalid) SchemaFailures::ThrowNotValid(text, kind);
  if (outcome == Outcome::TooLarge) SchemaFailures::ThrowTooLarge(text, kind);
  return fields;
}

MomentFields ReadWithoutZone(ItemType kind, std::string_view text) {
  MomentFields const fields = ReadMoment(kind, text);
  if (fields.hasZone) SchemaFailures::ThrowTooLarge(text, kind);
  return fields;
}

}  // namespace

void ParseMoment(CDateTime& value, ItemType kind, std::string_view text) {
  MomentAccess::SetFields(value, ReadMoment(kind, text));
}

std::uint16_t ParseYear(std::string_view text) {
  std::int64_t const year = ReadWithoutZone(ItemType_year, text).year;
  constexpr std::int64_t kMost = std::numeric_limits<std::uint16_t>::max();
  if (year < 1 || year > kMost) SchemaFailures::ThrowTooLarge(text, ItemType_year);
  return static_cast<std::uint16_t>(year);
}

std::uint8_t ParseMonth(std::string_view text) {
  return static_cast<std::uint8_t>(ReadWithoutZone(ItemType_month, text).month);
}

std::uint8_t ParseDay(std::string_view text) {
  return static_cast<std::uint8_t>(ReadWithoutZone(ItemType_day, text).day);
}

}  // namespace Quillon9
