// Reading dates and times from text, and printing them.

#include <charconv>
#include <cstring>
#include <iterator>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/date_time.h"
#include "values/number_text.h"

namespace Quillon9 {

namespace {

// Whether `text` starts with `count` digits; if so, sets `number` to their value.
template <class Number>
bool ReadDigits(char const* text, int count, Number& number) {
  int value = 0;
  for (int i = 0; i < count; ++i) {
    if (!IsDigit(text[i])) return false;
    value = value * 10 + (text[i] - '0');
  }
  number = static_cast<Number>(value);
  return true;
}

// Prints `value`, which has at most five digits, padded to at least `width` of them, and returns the end. Temporary
// strings would make printing dates much slower.
char* PutPadded(char* to, unsigned value, std::size_t width) {
  if (width == 2 && value < 100) {
    *to++ = static_cast<char>('0' + value / 10);
    *to++ = static_cast<char>('0' + value % 10);
    return to;
  }
  constexpr unsigned kLimits[] = {0, 10, 100, 1000, 10000};
  while (width < std::size(kLimits) && value >= kLimits[width]) ++width;
  for (std::size_t i = width; i-- != 0; value /= 10) to[i] = static_cast<char>('0' + value % 10);
  return to + width;
}

// The three groups up to the last one that is not zero, without its zeros at the end. One of them is not zero.
char* PutFraction(char* to, unsigned milli, unsigned micro, unsigned nano) {
  *to++ = '.';
  to = PutPadded(to, milli, 3);
  if (micro != 0 || nano != 0) to = PutPadded(to, micro, 3);
  if (nano != 0) to = PutPadded(to, nano, 3);
  while (to[-1] == '0') --to;
  return to;
}

}  // namespace

// ---- Small helpers

std::string PadZero(int value, unsigned char width) { return FormatString("%0*d", static_cast<int>(width), value); }

std::string TrimTrainingZeros(std::string text) {
  while (text.size() > 1 && text.back() == '0') text.pop_back();
  return text;
}

std::string ToFracString(unsigned short milli, unsigned short micro, unsigned short nano) {
  if (milli == 0 && micro == 0 && nano == 0) return "";
  char text[20];
  return std::string(text, PutFraction(text, milli, micro, nano));
}

// ---- Printing

std::string CDateTime::ToString(char const* format) const {
  bool const allZero = m_year == 0 && m_month == 0 && m_day == 0 && m_hour == 0 && m_minute == 0 && m_second == 0 &&
                       m_milliSecond == 0 && m_microSecond == 0 && m_nanoSecond == 0;
  if (m_type == dt_yearZero || (m_type != dt_time && allZero))
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Date Not Set"));
  if (format == nullptr || std::strcmp(format, "G") == 0) return "";
  if (std::strcmp(format, "s") != 0) return std::string("Unknown Format: ") + format;
  char text[64];  // all fields together have 61 characters at most, but for a long fraction
  char* end = text;
  if (HasYear()) {
    end = PutYear(end);
  } else if (m_type != dt_time && m_type <= dt_gMonthDay) {
    for (int dashes = HasMonth() ? 2 : 3; dashes != 0; --dashes) *end++ = '-';
  }
  if (HasMonth()) {
    if (HasYear()) *end++ = '-';
    end = PutPadded(end, m_month, 2);
  }
  if (HasDay()) {
    if (HasMonth()) *end++ = '-';
    end = PutPadded(end, m_day, 2);
  }
  if (m_type == dt_dateTime) *end++ = 'T';
  if (HasTime()) end = PutTime(end);
  std::string_view const fraction = LongFraction();
  if (!HasTime() || fraction.empty()) return std::string(text, PutZone(end));
  std::string result(text, end);
  result += fraction;
  return result.append(text, PutZone(text));
}

char* CDateTime::PutYear(char* to) const {
  std::int64_t const year = Year();
  if (year != m_year) return std::to_chars(to, to + 20, year).ptr;
  if (m_year < 0) *to++ = '-';
  return PutPadded(to, static_cast<unsigned>(m_year < 0 ? -m_year : m_year), 4);
}

char* CDateTime::PutTime(char* to) const {
  to = PutPadded(to, m_hour, 2);
  *to++ = ':';
  to = PutPadded(to, m_minute, 2);
  *to++ = ':';
  to = PutPadded(to, m_second, 2);
  if (!LongFraction().empty()) {
    *to++ = '.';
    for (std::uint16_t const group : {m_milliSecond, m_microSecond, m_nanoSecond}) to = PutPadded(to, group, 3);
    return to;
  }
  if (m_milliSecond == 0 && m_microSecond == 0 && m_nanoSecond == 0) return to;
  return PutFraction(to, m_milliSecond, m_microSecond, m_nanoSecond);
}

char* CDateTime::PutZone(char* to) const {
  if (!m_isUTC) return to;
  if (!m_hasTimeZone) {
    *to++ = 'Z';
    return to;
  }
  *to++ = HasNegativeOffset() ? '-' : '+';
  to = PutPadded(to, static_cast<unsigned>(m_zoneHour < 0 ? -m_zoneHour : m_zoneHour), 2);
  *to++ = ':';
  return PutPadded(to, m_zoneMinute, 2);
}

// ---- Reading

void CDateTime::SetZone(char const* text) {
  if (text == nullptr) return;
  if (*text == 'Z') {
    SetUTC();
  } else if (*text == '+' || *text == '-') {
    int hour = 0;
    int minute = 0;
    bool const valid =
        std::strlen(text) == 6 && ReadDigits(text + 1, 2, hour) && text[3] == ':' && ReadDigits(text + 4, 2, minute);
    if (!valid)
      throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid XSD Time Zone [%s]", text)));
    if (hour == 24) hour = 0;
    SetTimeZone(static_cast<std::int16_t>(*text == '-' ? -hour : hour), static_cast<std::uint8_t>(minute));
  }
}

void CDateTime::SetXSDTime(char const* text) {
  if (text == nullptr) throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid Time (Null String)"));
  if (*text == '\0') throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid XSD Time (Empty String)"));
  std::uint8_t hour = 0;
  std::uint8_t minute = 0;
  std::uint8_t second = 0;
  bool const valid = ReadDigits(text, 2, hour) && text[2] == ':' && ReadDigits(text + 3, 2, minute) && text[5] == ':' &&
                     ReadDigits(text + 6, 2, second) && hour <= 23 && minute <= 59 && second <= 59;
  if (!valid) {
    throw OfKind(FailureKind_BadValue,
                 CQnInvalidValueException(FormatString("Invalid XSD Time [%s] expected hh:mm:ss[.ff]", text)));
  }
  m_hour = hour;
  m_minute = minute;
  m_second = second;
  DropLongFraction();
  char const* at = text + 8;
  if (*at == '.') {
    static constexpr int weights[] = {100, 10, 1};
    std::uint16_t* const groups[] = {&m_milliSecond, &m_microSecond, &m_nanoSecond};
    ++at;
    for (std::size_t count = 0; IsDigit(*at); ++at, ++count) {
      if (count == 9) {
        throw OfKind(FailureKind_BadValue,
                     CQnInvalidValueException(FormatString("Invalid XSD Time [%s] Fraction part too long", text)));
      }
      std::uint16_t& group = *groups[count / 3];
      group = static_cast<std::uint16_t>(group + (*at - '0') * weights[count % 3]);
    }
  }
  SetZone(at);
  m_type = dt_time;
}

void CDateTime::SetXSDDate(char const* text) {
  if (text == nullptr) throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid Date (Null String)"));
  if (*text == '\0') throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid Date (Empty String)"));
  if (std::strchr(text, 'T') != nullptr)
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid Date ('T' not allowed)"));
  auto length = static_cast<long>(std::strlen(text));
  bool const hasColon = std::strchr(text, ':') != nullptr;
  bool const endsInZ = text[length - 1] == 'Z';
  if (endsInZ && hasColon)
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid Date (Bad Zone value)"));
  length -= endsInZ ? 1 : hasColon ? 6 : 0;
  bool const isShort = text[0] == '-' && text[1] == '-';
  bool const negative = !isShort && text[0] == '-';
  bool const valid = isShort ? ReadShortDate(text, length) : ReadFullDate(text + negative, length - negative, negative);
  if (!valid) {
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(
                                           "Invalid XSD Date [%s] expected CCYY-MM-DD[Z|[+|-]hh:mm]", text)));
  }
  if (endsInZ || hasColon) SetZone(text + length);
}

// "--MM", "---DD", "--MM--" (whose last two characters are ignored) and "--MM-DD", distinguished by their length.
bool CDateTime::ReadShortDate(char const* text, long length) {
  std::uint8_t month = 0;
  std::uint8_t day = 0;
  if (length == 5) {
    if (text[2] != '-' || !ReadDigits(text + 3, 2, day)) return false;
    m_type = dt_gDay;
  } else if (length == 4 || length == 6) {
    if (!ReadDigits(text + 2, 2, month)) return false;
    m_type = dt_gMonth;
  } else if (length == 7) {
    if (!ReadDigits(text + 2, 2, month) || text[4] != '-' || !ReadDigits(text + 5, 2, day)) return false;
    m_type = dt_gMonthDay;
  } else {
    return false;
  }
  if (m_type != dt_gDay) m_month = month;
  if (m_type != dt_gMonth) m_day = day;
  return true;
}

// "CCYY", "CCYY-MM" and "CCYY-MM-DD".
bool CDateTime::ReadFullDate(char const* text, long length, bool negative) {
  if (length != 4 && length != 7 && length != 10) return false;
  std::int16_t year = 0;
  std::uint8_t month = 0;
  std::uint8_t day = 0;
  if (!ReadDigits(text, 4, year)) return false;
  if (length >= 7 && (text[4] != '-' || !ReadDigits(text + 5, 2, month))) return false;
  if (length == 10 && (text[7] != '-' || !ReadDigits(text + 8, 2, day))) return false;
  m_year = static_cast<std::int16_t>(negative ? -year : year);
  if (m_rest.Find() != nullptr) m_rest.Make().year = 0;
  if (length >= 7) m_month = month;
  if (length == 10) m_day = day;
  m_type = length == 4 ? dt_gYear : length == 7 ? dt_gYearMonth : dt_date;
  return true;
}

void CDateTime::ParseXSDDate(char const* text) {
  Clear();
  SetXSDDate(text);
  Validate();
}

void CDateTime::ParseXSDTime(char const* text) {
  Clear();
  SetXSDTime(text);
  Validate();
}

void CDateTime::ParseXSDDateTime(char const* text) {
  if (text == nullptr) throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid DateTime (Null String)"));
  char const* const separator = std::strchr(text, 'T');
  if (separator == nullptr)
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("Invalid XSD DateTime [%s]", text)));
  Clear();
  SetXSDDate(std::string(text, separator).c_str());
  if (m_type != dt_date) {
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(
                                           "Invalid XSD DateTime [%s] expected CCYY-MM-DDThh:mm:ss[.ff]", text)));
  }
  SetXSDTime(separator + 1);
  m_type = dt_dateTime;
  Validate();
}

}  // namespace Quillon9
