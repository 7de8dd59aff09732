#include "quillon9/values/date_time_span.h"

#include <array>
#include <cstddef>
#include <iterator>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/date_time.h"
#include "values/number_text.h"

namespace Quillon9 {

CDateTimeSpan::CDateTimeSpan() = default;
CDateTimeSpan::CDateTimeSpan(CDateTimeSpan const& other) = default;
CDateTimeSpan& CDateTimeSpan::operator=(CDateTimeSpan const& other) = default;
CDateTimeSpan::~CDateTimeSpan() = default;

CDateTimeSpan::CDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                             std::uint64_t minutes, std::uint64_t seconds, std::uint16_t milli, std::uint16_t micro,
                             std::uint16_t nano) {
  SetDateTimeSpan(years, months, days, hours, minutes, seconds, milli, micro, nano);
}

CDateTimeSpan::CDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                             std::uint64_t minutes, std::uint64_t seconds) {
  SetDateTimeSpan(years, months, days, hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds) {
  SetDateTimeSpan(hours, minutes, seconds);
}

void CDateTimeSpan::SetDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                                    std::uint64_t minutes, std::uint64_t seconds, std::uint16_t milli,
                                    std::uint16_t micro, std::uint16_t nano) {
  Clear();
  m_years = years;
  m_months = months;
  m_days = days;
  m_hours = hours;
  m_minutes = minutes;
  m_seconds = seconds;
  m_milliSeconds = milli;
  m_microSeconds = micro;
  m_nanoSeconds = nano;
}

void CDateTimeSpan::SetDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                                    std::uint64_t minutes, std::uint64_t seconds) {
  SetDateTimeSpan(years, months, days, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds) {
  SetDateTimeSpan(0, 0, 0, hours, minutes, seconds);
}

CDateTimeSpan CDateTimeSpan::GetAsNegative() const {
  CDateTimeSpan copy(*this);
  copy.m_negative = true;
  return copy;
}

void CDateTimeSpan::ThrowTooNarrow(char const* operation) const {
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("The value [%s] does not fit into %s()",
                                                                           ToString().c_str(), operation)));
}

void CDateTimeSpan::Clear() {
  m_years = 0;
  m_months = m_days = m_hours = 0;
  m_minutes = m_seconds = 0;
  m_milliSeconds = m_microSeconds = m_nanoSeconds = 0;
  m_negative = false;
  m_rest.Drop();
}

// ---- Text

namespace {

[[noreturn]] void ThrowInvalidDuration(char const* text) {
  throw OfKind(FailureKind_BadValue,
               CQnInvalidValueException(
                   FormatString("Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]", text)));
}

// How far a text has been read, which decides what may follow.
enum State { Nothing, Years, Months, Days, TimePart, Hours, Minutes, Seconds, Finished };

// The 32 bits of a number, sign-extended.
std::uint64_t Extended(std::uint32_t number) {
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(static_cast<std::int32_t>(number)));
}

std::uint32_t ReadNumber(char const*& at) {
  std::uint32_t number = 0;
  for (; IsDigit(*at); ++at) number = number * 10 + static_cast<std::uint32_t>(*at - '0');
  return number;
}

}  // namespace

// Up to nine digits, added to the fields. Those from the seventh on carry no weight: the last one stays.
void CDateTimeSpan::ReadFraction(char const*& at, char const* text) {
  static constexpr int weights[] = {100, 10, 1};
  for (std::size_t count = 0; IsDigit(*at); ++at, ++count) {
    int const digit = *at - '0';
    if (count == 9) {
      throw OfKind(FailureKind_BadValue,
                   CQnInvalidValueException(FormatString("Invalid XSD Duration [%s] Fraction part too long", text)));
    }
    if (count < 6) {
      std::uint16_t& group = count < 3 ? m_milliSeconds : m_microSeconds;
      group = static_cast<std::uint16_t>(group + digit * weights[count % 3]);
    } else {
      m_nanoSeconds = static_cast<std::uint16_t>(digit);
    }
  }
}

void CDateTimeSpan::ParseXSDDuration(char const* text) {
  Clear();
  if (text == nullptr)
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid XSD Duration (Null String)"));
  if (*text == '\0')
    throw OfKind(FailureKind_BadValue, CQnInvalidValueException("Invalid XSD Duration (Empty String)"));
  char const* at = text;
  if (*at == '-') {
    m_negative = true;
    ++at;
  }
  if (*at++ != 'P' || *at == '\0') ThrowInvalidDuration(text);
  State state = Nothing;
  while (*at != '\0') {
    std::uint32_t const number = ReadNumber(at);
    char const designator = *at;
    if (designator != '\0') ++at;
    if (designator == 'Y') {
      m_years = static_cast<std::uint16_t>(number);
      state = Years;
    } else if (designator == 'M' && state < Months) {
      m_months = number;
      state = Months;
    } else if (designator == 'M' && (state == TimePart || state == Hours)) {
      m_minutes = Extended(number);
      state = Minutes;
    } else if (designator == 'D' && state <= Months) {
      m_days = number;
      state = Days;
    } else if (designator == 'T' && state <= Days) {
      state = TimePart;
    } else if (designator == 'H' && state == TimePart) {
      m_hours = number;
      state = Hours;
    } else if ((designator == 'S' || designator == '.') && state >= TimePart && state <= Minutes) {
      m_seconds = Extended(number);
      state = Seconds;
      if (designator == 'S' || *at == '\0') continue;
      ReadFraction(at, text);
      if (*at++ != 'S') ThrowInvalidDuration(text);
      state = Finished;
    } else {
      ThrowInvalidDuration(text);
    }
  }
  if (state == Nothing || state == TimePart) ThrowInvalidDuration(text);
}

std::string CDateTimeSpan::ToString() const {
  std::string text = m_negative ? "-P" : "P";
  auto const append = [&text](std::uint64_t number, char designator) {
    if (number != 0) (text += CConversions::ui8ToString(number)) += designator;
  };
  append(Whole(m_years, &Rest::years), 'Y');
  append(Whole(m_months, &Rest::months), 'M');
  append(Whole(m_days, &Rest::days), 'D');
  std::uint64_t const hours = Whole(m_hours, &Rest::hours);
  bool const hasSeconds =
      m_seconds != 0 || m_milliSeconds != 0 || m_microSeconds != 0 || m_nanoSeconds != 0 || m_rest.Find() != nullptr;
  std::string const fraction = hasSeconds ? FractionText() : std::string();
  if (hours == 0 && m_minutes == 0 && m_seconds == 0 && fraction.empty()) return text;
  text += 'T';
  append(hours, 'H');
  append(m_minutes, 'M');
  if (m_seconds != 0 || !fraction.empty()) text += CConversions::ui8ToString(m_seconds) + fraction + 'S';
  return text;
}

std::string CDateTimeSpan::FractionText() const {
  bool const isLong = m_rest.Find() != nullptr && !m_rest.Find()->fraction.empty();
  if (!isLong) return ToFracString(m_milliSeconds, m_microSeconds, m_nanoSeconds);
  return FormatString(".%03u%03u%03u", unsigned{m_milliSeconds}, unsigned{m_microSeconds}, unsigned{m_nanoSeconds}) +
         m_rest.Find()->fraction;
}

// ---- Order

namespace {

int CompareFrom(CDateTime const& date, CDateTimeSpan const& left, CDateTimeSpan const& right) {
  return (date + left).CompareTo(date + right);
}

CDateTime ReferenceDate(std::int16_t year, std::uint8_t month) {
  CDateTime date(year, month, 1);
  date.SetUTC();
  return date;
}

}  // namespace

int CDateTimeSpan::CompareTo(CDateTimeSpan const& other) const {
  static auto const& dates = *new std::array<CDateTime, 4>{ReferenceDate(1696, 9), ReferenceDate(1697, 2),
                                                           ReferenceDate(1903, 3), ReferenceDate(1903, 7)};
  constexpr int kIndeterminate = 3;
  try {
    int const first = CompareFrom(dates[0], *this, other);
    for (std::size_t i = 1; i < std::size(dates) && first != kIndeterminate; ++i) {
      if (CompareFrom(dates[i], *this, other) != first) return kIndeterminate;
    }
    return first;
  } catch (CQnException const&) {
    return kIndeterminate;
  }
}

}  // namespace Quillon9
