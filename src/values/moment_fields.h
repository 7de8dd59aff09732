#pragma once

#include <cstdint>
#include <string_view>

#include "quillon9/values/date_time.h"
#include "quillon9/values/item_type.h"

namespace Quillon9 {

/// The farthest offset of a zone in XML Schema, in minutes.
constexpr int kFarthestOffset = 14 * 60;

/// All of a CDateTime. A type uses some of the fields; the others may have any value.
/// The digits after the ninth are where they came from: in a value or in a text.
struct MomentFields {
  CDateTime::DTType type = CDateTime::dt_yearZero;
  std::int64_t year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  std::uint64_t nanoseconds = 0;
  std::string_view fraction;  ///< the digits after the ninth
  bool hasZone = false;
  bool hasOffset = false;  ///< the zone is a number of hours and minutes, instead of "Z"
  int offset = 0;          ///< in minutes
};

/// All of a CDateTimeSpan.
struct SpanFields {
  bool isNegative = false;
  std::uint64_t years = 0;
  std::uint64_t months = 0;
  std::uint64_t days = 0;
  std::uint64_t hours = 0;
  std::uint64_t minutes = 0;
  std::uint64_t seconds = 0;
  std::uint64_t nanoseconds = 0;
  std::string_view fraction;  ///< the digits after the ninth
};

/// The type of the dates and times of a kind, and the kind of a type. A kind that is none of them has the type of a
/// clear value.
///@{
CDateTime::DTType MomentTypeOf(ItemType kind);
ItemType KindOfMoment(CDateTime::DTType type);
///@}

/// Move a dateTime or a date, which is valid, to the next day or to the one before.
///@{
void MoveToNextDay(MomentFields& fields);
void MoveToDayBefore(MomentFields& fields);
///@}

}  // namespace Quillon9
