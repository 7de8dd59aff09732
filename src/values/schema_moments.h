#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/values/date_time.h"
#include "quillon9/values/date_time_span.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/schema_values.h"

/// Dates, times and durations as W3C XML Schema Part 2, second edition, has them: 3.2.6 to 3.2.14. White space around a
/// text is not part of any form: collapse it before.
///
/// All of these functions throw CQnInvalidValueException: "The value [%s] is not a valid %s" for a text or a value
/// without a place in the type, "The value [%s] is too large for a %s" for one that the class or the number cannot
/// hold.
namespace Quillon9 {

/// The value of \p text. \p kind is ItemType_datetime, _date, _time, _yearMonth, _monthDay, _year, _month or _day. The
/// last three are xs:gYear, xs:gMonth and xs:gDay with their zone and sign, which the numbers of these kinds lose.
void ParseMoment(CDateTime& value, ItemType kind, std::string_view text);

/// The values of xs:gYear, xs:gMonth and xs:gDay as numbers. A zone and a year below 1 or above 65535 are too large.
///@{
std::uint16_t ParseYear(std::string_view text);
std::uint8_t ParseMonth(std::string_view text);
std::uint8_t ParseDay(std::string_view text);
///@}

/// The value of a text of xs:duration.
void ParseDuration(CDateTimeSpan& value, std::string_view text);

/// Texts that the functions above read as the same value. Fields and zones are not normalised, but for what no text can
/// express otherwise.
///@{
std::string MomentText(CDateTime const& value);
std::string YearText(std::uint16_t year);
std::string MonthText(std::uint8_t month);
std::string DayText(std::uint8_t day);
std::string DurationText(CDateTimeSpan const& value);
///@}

/// The partial orders of 3.2.7.4 and 3.2.6.2. Nothing is rounded, and nothing fails. Values of different types of dates
/// and times are indeterminate.
///@{
ValueOrder OrderOfMoments(CDateTime const& left, CDateTime const& right);
ValueOrder OrderOfDurations(CDateTimeSpan const& left, CDateTimeSpan const& right);
///@}

}  // namespace Quillon9
