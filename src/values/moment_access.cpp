#include "values/moment_access.h"

namespace Quillon9 {

namespace {

std::string_view WithoutZerosAtEnd(std::string_view digits) {
  return digits.substr(0, digits.find_last_not_of('0') + 1);  // npos + 1 is 0
}

std::uint16_t Group(std::uint64_t nanoseconds, std::uint64_t unit) {
  return static_cast<std::uint16_t>(nanoseconds / unit % 1000);
}

std::uint64_t Nanoseconds(std::uint64_t milli, std::uint64_t micro, std::uint64_t nano) {
  return milli * 1000000 + micro * 1000 + nano;
}

}  // namespace

MomentFields MomentAccess::FieldsOf(CDateTime const& value) {
  MomentFields fields;
  fields.type = value.m_type;
  fields.year = value.Year();
  fields.month = value.m_month;
  fields.day = value.m_day;
  fields.hour = value.m_hour;
  fields.minute = value.m_minute;
  fields.second = value.m_second;
  fields.nanoseconds = Nanoseconds(value.m_milliSecond, value.m_microSecond, value.m_nanoSecond);
  fields.fraction = value.LongFraction();
  fields.hasZone = value.m_isUTC;
  fields.hasOffset = value.m_hasTimeZone;
  if (fields.hasOffset) fields.offset = value.GetZoneOffset();
  return fields;
}

void MomentAccess::SetFields(CDateTime& value, MomentFields const& fields) {
  value.m_rest.Drop();
  value.m_type = fields.type;
  value.StoreYear(fields.year);
  value.m_month = static_cast<std::uint8_t>(fields.month);
  value.m_day = static_cast<std::uint8_t>(fields.day);
  value.m_hour = static_cast<std::uint8_t>(fields.hour);
  value.m_minute = static_cast<std::uint8_t>(fields.minute);
  value.m_second = static_cast<std::uint8_t>(fields.second);
  value.m_milliSecond = value.m_microSecond = value.m_nanoSecond = 0;
  if (fields.nanoseconds != 0) {  // the divisions would take longer than all else here
    value.m_milliSecond = Group(fields.nanoseconds, 1000000);
    value.m_microSecond = Group(fields.nanoseconds, 1000);
    value.m_nanoSecond = Group(fields.nanoseconds, 1);
  }
  std::string_view const fraction = WithoutZerosAtEnd(fields.fraction);
  if (!fraction.empty()) value.m_rest.Make().fraction = fraction;
  value.m_isUTC = fields.hasZone;
  value.m_hasTimeZone = fields.hasOffset;
  value.m_zoneHour = static_cast<std::int16_t>(fields.offset / 60);
  value.m_zoneMinute = static_cast<std::uint8_t>((fields.offset < 0 ? -fields.offset : fields.offset) % 60);
  if (fields.offset < 0 && value.m_zoneHour == 0) value.m_rest.Make().hasNegativeOffset = true;
}

SpanFields MomentAccess::FieldsOf(CDateTimeSpan const& value) {
  using Rest = CDateTimeSpan::Rest;
  SpanFields fields;
  fields.isNegative = value.m_negative;
  fields.years = value.Whole(value.m_years, &Rest::years);
  fields.months = value.Whole(value.m_months, &Rest::months);
  fields.days = value.Whole(value.m_days, &Rest::days);
  fields.hours = value.Whole(value.m_hours, &Rest::hours);
  fields.minutes = value.m_minutes;
  fields.seconds = value.m_seconds;
  fields.nanoseconds = Nanoseconds(value.m_milliSeconds, value.m_microSeconds, value.m_nanoSeconds);
  if (value.m_rest.Find() != nullptr) fields.fraction = value.m_rest.Find()->fraction;
  return fields;
}

void MomentAccess::SetFields(CDateTimeSpan& value, SpanFields const& fields) {
  using Rest = CDateTimeSpan::Rest;
  value.Clear();
  auto const set = [&value](auto& field, std::uint64_t number, std::uint64_t Rest::*high) {
    field = static_cast<std::decay_t<decltype(field)>>(number);
    if (number != field) value.m_rest.Make().*high = number >> (8 * sizeof field);
  };
  value.m_negative = fields.isNegative;
  set(value.m_years, fields.years, &Rest::years);
  set(value.m_months, fields.months, &Rest::months);
  set(value.m_days, fields.days, &Rest::days);
  set(value.m_hours, fields.hours, &Rest::hours);
  value.m_minutes = fields.minutes;
  value.m_seconds = fields.seconds;
  value.m_milliSeconds = Group(fields.nanoseconds, 1000000);
  value.m_microSeconds = Group(fields.nanoseconds, 1000);
  value.m_nanoSeconds = Group(fields.nanoseconds, 1);
  std::string_view const fraction = WithoutZerosAtEnd(fields.fraction);
  if (!fraction.empty()) value.m_rest.Make().fraction = fraction;
}

}  // namespace Quillon9
