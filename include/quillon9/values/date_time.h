#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/export.h"
#include "quillon9/values/date_time_span.h"
#include "quillon9/values/rare_part.h"

namespace Quillon9 {

/// The years that a CDateTime may have.
///@{
constexpr int MIN_YEAR = -9999;
constexpr int MAX_YEAR = 9999;
///@}
/// The maximal length of each month, and the number of days before each month of a year that is not a leap year.
///@{
QUILLON9_API extern int const g_monthMax[12];
QUILLON9_API extern int const g_monthDayInYear[13];
///@}

/// Whether \p year is a leap year of the Gregorian calendar, extended backwards.
QUILLON9_API bool IsLeapYear(int year);
/// The quotient of \p a and \p b, rounded to single precision and then rounded down. Above about sixteen million it is
/// no longer exact; a result that no 32-bit integer holds, including that of a division by 0, is -2,147,483,648.
QUILLON9_API int GetQuotient(long long a, int b);
/// \p a minus the quotient times \p b: outside 0 to b - 1 where the quotient is not exact.
QUILLON9_API long long GetModulo(long long a, int b);
/// \p value in decimal, padded with zeros to \p width characters.
QUILLON9_API std::string PadZero(int value, unsigned char width);
/// \p text without its trailing zeros; its first character is always kept.
QUILLON9_API std::string TrimTrainingZeros(std::string text);
/// The fraction of a second as ".", then groups of three digits up to the last group that is not zero, whose trailing
/// zeros are dropped. Empty when all three are 0.
QUILLON9_API std::string ToFracString(unsigned short milli, unsigned short micro, unsigned short nano);

/// A value of one of the eight date and time types of XML Schema (W3C XML Schema Part 2, 3.2.7 to 3.2.14). The type
/// decides which fields are in use. A plain value; operations that throw CQnInvalidStateException do so for a type that
/// lacks the field they need.
///
/// It differs from XML Schema as follows: a year has exactly four digits, and the year 0 occurs only in arithmetic;
/// there is no 24:00:00 and no second 60; a zone may reach 23:59, and a zone of minus zero hours counts as positive;
/// adding a duration does not cut the day to the length of the month; months are not compared with each other (see
/// CompareTo()).
///
/// Reading by the rules of XML Schema (CSchemaValues) also makes values that the parsers of this class refuse: years of
/// up to eighteen digits, any number of fraction digits, and negative zones of less than an hour. ToString() prints
/// them whole. The getters of fields that are too narrow for such a value throw CQnInvalidValueException "The value
/// [%s] does not fit into %s()"; GetNanoSecond() returns the seventh to ninth digit whatever follows.
class QUILLON9_API CDateTime {
 public:
  /// The eight types, and one for a clear object.
  enum DTType : int {
    dt_yearZero = 0,  ///< nothing is set
    dt_dateTime = 1,
    dt_date = 2,
    dt_gYearMonth = 3,
    dt_gYear = 4,
    dt_time = 5,
    dt_gDay = 6,
    dt_gMonth = 7,
    dt_gMonthDay = 8,
  };

  CDateTime();
  /// All fields 0, with this type.
  CDateTime(DTType type);
  /// Set the named fields. A field out of its range leaves a clear object, of type 0.
  ///@{
  CDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day);
  CDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute,
            std::uint8_t second);
  CDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute,
            std::uint8_t second, std::uint16_t milli, std::uint16_t micro, std::uint16_t nano);
  ///@}
  /// Convert a time_t, in UTC but without a zone indicator; a time outside the years of this class leaves a clear
  /// object.
  CDateTime(long const& time);
  /// ParseXSDDateTime() of \p text.
  template <class = void>  // so that a literal 0 is a time, like every other number, instead of ambiguous
  CDateTime(char const* text) {
    ParseXSDDateTime(text);
  }
  /// Copies every field, the type and the zone.
  ///@{
  CDateTime(CDateTime const& other);
  CDateTime& operator=(CDateTime const& other);
  ///@}
  /// Set the dateTime of a time_t, in UTC but without a zone indicator.
  /// \throws CQnInvalidStateException when this object is of another type, unless it is clear; CQnInvalidValueException
  ///         as Validate() does for a year outside MIN_YEAR to MAX_YEAR, with the fields stored, and "Invalid Time
  ///         [%ld]" for a year that does not fit 16 bits.
  CDateTime& operator=(long const& time);
  virtual ~CDateTime();

  /// The present second, as converted from a time_t. Any thread.
  static CDateTime GetCurrentTime();

  // ---- Setting whole values: all fields, no zone. All but the last throw like the first.
  /// Set the named fields, all others to 0, and the type named by the operation; SetDateTime() without a type sets
  /// dt_dateTime, SetFracTime() dt_time.
  /// \throws CQnInvalidStateException "Failed to copy CDateTime. Invalid Date Type: %s, expected: %s." when this object
  ///         is of another type, unless it is clear; CQnInvalidValueException as Validate() does, with the fields
  ///         stored.
  ///@{
  void SetDateTime(DTType type, std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour,
                   std::uint8_t minute, std::uint8_t second, std::uint16_t milli, std::uint16_t micro,
                   std::uint16_t nano);
  void SetDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute,
                   std::uint8_t second);
  void SetDateTime(std::int16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute,
                   std::uint8_t second, std::uint16_t milli, std::uint16_t micro, std::uint16_t nano);
  void SetDate(std::int16_t year, std::uint8_t month, std::uint8_t day);
  void SetTime(std::uint8_t hour, std::uint8_t minute, std::uint8_t second);
  void SetTime(std::uint8_t hour, std::uint8_t minute, std::uint8_t second, std::uint16_t milli, std::uint16_t micro,
               std::uint16_t nano);
  void SetFracTime(std::uint16_t milli, std::uint16_t micro, std::uint16_t nano);
  void SetGDay(std::uint8_t day);
  void SetGMonth(std::uint8_t month);
  void SetGMonthDay(std::uint8_t month, std::uint8_t day);
  void SetGYear(std::int16_t year);
  void SetGYearMonth(std::int16_t year, std::uint8_t month);
  ///@}
  /// Copy every field of \p source, including its zone and the fields that \p target does not use, and set the type \p
  /// target. Nothing is validated.
  /// \throws CQnInvalidValueException when CheckConversion() refuses.
  void SetDateTime(CDateTime const& source, DTType target);
  /// Whether a value of type \p source has all fields that one of type \p target needs.
  /// \throws CQnInvalidValueException "Unknown date type %d." for a \p source above 8.
  static bool CheckConversion(DTType source, DTType target);
  /// Set all fields to 0 and the type to 0.
  void Clear();

  /// The fields, for a type that has them.
  /// \throws CQnInvalidStateException "Failed to %s. Invalid Date Type: %s." otherwise.
  ///@{
  std::int16_t GetYear() const;
  std::uint8_t GetMonth() const;
  std::uint8_t GetDay() const;
  std::uint8_t GetHour() const;
  std::uint8_t GetMinute() const;
  std::uint8_t GetSecond() const;
  std::uint16_t GetMilliSecond() const;
  std::uint16_t GetMicroSecond() const;
  std::uint16_t GetNanoSecond() const;
  ///@}
  /// The second with the first nine digits of its fraction.
  double GetRealSecond() const;
  /// GetYear() and SetYear() for any year.
  /// \throws CQnInvalidStateException as GetYear() does; SetLongYear() also CQnInvalidValueException "Invalid Year
  ///         [%lld] (more than %d digits)".
  ///@{
  std::int64_t GetLongYear() const;
  void SetLongYear(std::int64_t year);
  ///@}
  /// Set one field. The value is not validated: Validate() does that.
  /// \throws CQnInvalidStateException as the getter of the field does.
  ///@{
  void SetYear(std::int16_t year);
  void SetMonth(std::uint8_t month);
  void SetDay(std::uint8_t day);
  void SetHour(std::uint8_t hour);
  void SetMinute(std::uint8_t minute);
  void SetSecond(std::uint8_t second);
  void SetMilliSecond(std::uint16_t milli);
  void SetMicroSecond(std::uint16_t micro);
  void SetNanoSecond(std::uint16_t nano);
  ///@}
  /// The day of the year: 1 for the first of January; in January and February of a leap year one more than in a
  /// calendar. A month that was set to 13 continues after December.
  /// \throws CQnInvalidValueException for a month that was set to 0 or above 13.
  int GetDayOfYear() const;
  /// The day of the week, 1 for Sunday to 7, of GetTime() in the local time zone: early or late in a UTC day this
  /// differs from the day of the fields. Reads the zone from the environment, which no thread may change meanwhile.
  int GetDayOfWeek() const;
  /// The type, as a number and as text.
  ///@{
  DTType GetType() const { return m_type; }
  std::string GetTypeAsString() const { return GetTypeAsString(m_type); }
  ///@}
  /// "dateTime", "date" and so on; empty for an unknown number.
  static std::string GetTypeAsString(DTType type);

  // ---- Zone
  /// Whether there is a zone indicator, "Z" or an offset.
  bool IsUTC() const { return m_isUTC; }
  /// Whether there is an offset.
  bool HasTimeZone() const { return m_hasTimeZone; }
  /// Set the zone indicator "Z".
  void SetUTC();
  /// Set an offset. Its sign is that of \p hour.
  /// \throws CQnInvalidValueException "Invalid TimeZone [%d:%d]" unless they are -23 to 23 and 0 to 59.
  void SetTimeZone(std::int16_t hour, std::uint8_t minute);
  /// The two parts of the offset.
  /// \throws CQnInvalidStateException "TimeZone is not been used" without an offset.
  ///@{
  std::int16_t GetZoneHour() const;
  std::uint8_t GetZoneMinute() const;
  ///@}
  /// The whole offset in minutes, with its sign.
  /// \throws CQnInvalidStateException "TimeZone is not been used" without an offset.
  int GetZoneOffset() const;
  /// Set the zone from the text that follows a date or time: "Z" and anything after it, or "+hh:mm" or "-hh:mm", where
  /// hour 24 counts as 0; any other text changes nothing.
  /// \throws CQnInvalidValueException "Invalid XSD Time Zone [%s]"; as SetTimeZone().
  void SetZone(char const* text);
  /// A copy moved to the offset 0 by adding or subtracting the offset; for types without a month see AddDateTimeSpan().
  /// A value without an offset is copied unchanged.
  CDateTime GetNormalized() const;

  // ---- Text
  /// Parse any of the forms without "T": the text decides the type, whatever it was. "--05" may have any two characters
  /// after it. If a text contains ":", its last six characters are taken for the zone, which SetZone() may ignore. A
  /// gDay has no upper bound.
  /// \throws CQnInvalidValueException; fields read before the failure stay set, possibly with the type.
  void ParseXSDDate(char const* text);
  /// Parse "hh:mm:ss", a fraction of up to nine digits, and a zone. Text after them that is not a zone is ignored.
  /// \throws CQnInvalidValueException; fields read before the failure stay set.
  void ParseXSDTime(char const* text);
  /// Parse a date, "T" and a time, each with or without a zone.
  /// \throws CQnInvalidValueException; fields read before the failure stay set, possibly with the type.
  void ParseXSDDateTime(char const* text);
  /// ParseXSDDate() and ParseXSDTime() without Clear() before and Validate() after them: fields that the text does not
  /// name keep their values, and a fraction is added to the existing one.
  ///@{
  void SetXSDDate(char const* text);
  void SetXSDTime(char const* text);
  ///@}
  /// Check every field against the type: those in use for their range, all others for 0. The zone is not checked. The
  /// day of a dt_gDay has no upper bound.
  /// \throws CQnInvalidValueException with the field and its value.
  void Validate() const;
  /// The lexical form of the type for \p format "s"; empty for "G" and null; a text that names the format for any
  /// other.
  /// \throws CQnInvalidValueException "Date Not Set" for type 0, and when all fields of a type other than dt_time are
  ///         0.
  std::string ToString(char const* format) const;
  /// ToString("s").
  std::string ToString() const { return ToString("s"); }

  /// The seconds since 1970, computed from the fields moved to offset 0 and taken as local time, and from the local
  /// zone's difference. Reads the zone from the environment, which no thread may change meanwhile.
  /// \throws CQnInvalidValueException for a type other than dateTime and date.
  long GetTime() const;

  // ---- Order: 0 equal, 1 less, 2 greater, 3 indeterminate.
  /// Compare by XML Schema's partial order, which is indeterminate within 14 hours when only one side has a zone. In
  /// deviation from it the month of the left side is used for the right side too, so months never decide: 2001-01-15 is
  /// greater than 2001-03-10. Compare() compares values of different types, and GetNormalized() resolves zones, so a
  /// gYear with an offset lies a year before the same one without.
  /// \throws CQnInvalidStateException for a left side without a month against a right side with one, when both have a
  ///         zone or none; otherwise the result is 3.
  ///@{
  int CompareTo(CDateTime const& other) const;
  bool operator==(CDateTime const& other) const { return CompareTo(other) == 0; }
  bool operator!=(CDateTime const& other) const { return CompareTo(other) != 0; }
  bool operator<(CDateTime const& other) const { return CompareTo(other) == 1; }
  bool operator>(CDateTime const& other) const { return CompareTo(other) == 2; }
  bool operator<=(CDateTime const& other) const { return CompareTo(other) <= 1; }
  bool operator>=(CDateTime const& other) const {
    int const order = CompareTo(other);
    return order == 0 || order == 2;
  }
  ///@}

  // ---- Arithmetic (W3C XML Schema Part 2, appendix E, but the day is not cut: January 31 plus a month is February 31)
  /// Add \p span to the fields, whatever the type is; nothing is validated, and fields keep the low bits of values that
  /// do not fit. A value without a month counts as December of the year before, even when \p span is zero: a gYear of
  /// 2000 and P0D is 1999. The time taken does not depend on the length of \p span.
  /// \throws CQnInvalidValueException when rounding leaves the month outside 1 to 12 and the days of such a month are
  ///         needed; by then everything but the day has changed. The same holds for the operators.
  ///@{
  void AddDateTimeSpan(CDateTimeSpan const& span);
  CDateTime& operator+=(CDateTimeSpan const& span);
  ///@}
  /// Subtract the length of \p span: a negative one moves the value back too.
  CDateTime& operator-=(CDateTimeSpan const& span);
  /// A copy with \p span added or subtracted, as by the operators above.
  ///@{
  CDateTime operator+(CDateTimeSpan const& span) const;
  CDateTime operator-(CDateTimeSpan const& span) const;
  ///@}
  /// An all-zero span, whatever the two values are.
  CDateTimeSpan operator-(CDateTime const& other) const;

 private:
  void RequireTypeOf(DTType type) const;
  bool HasYear() const;
  bool HasMonth() const;
  bool HasDay() const;
  bool HasTime() const;
  void Require(bool allowed, char const* operation) const;
  void ValidateDay() const;
  void ValidateTime() const;
  bool ReadShortDate(char const* text, long length);
  bool ReadFullDate(char const* text, long length, bool negative);
  char* PutYear(char* to) const;
  char* PutTime(char* to) const;
  char* PutZone(char* to) const;

  /// What the other members cannot hold.
  struct Rest {
    std::int64_t year = 0;           // where m_year is too narrow; otherwise 0
    std::string fraction;            // the digits after the ninth, without zeros at the end
    bool hasNegativeOffset = false;  // of less than an hour, so that m_zoneHour is 0
  };
  std::int64_t Year() const {
    return m_rest.Find() != nullptr && m_rest.Find()->year != 0 ? m_rest.Find()->year : m_year;
  }
  void StoreYear(std::int64_t year);
  std::string_view LongFraction() const {
    return m_rest.Find() == nullptr ? std::string_view() : m_rest.Find()->fraction;
  }
  void DropLongFraction() {
    if (m_rest.Find() != nullptr) m_rest.Make().fraction.clear();
  }
  bool HasNegativeOffset() const;
  [[noreturn]] void ThrowTooNarrow(char const* operation) const;

  DTType m_type = dt_yearZero;
  std::uint8_t m_reserved = 0;
  std::int16_t m_year = 0;
  std::uint8_t m_month = 0;
  std::uint8_t m_day = 0;
  std::uint8_t m_hour = 0;
  std::uint8_t m_minute = 0;
  std::uint8_t m_second = 0;
  std::uint8_t m_zoneMinute = 0;
  std::uint16_t m_milliSecond = 0;
  std::uint16_t m_microSecond = 0;
  std::uint16_t m_nanoSecond = 0;
  bool m_isUTC = false;
  bool m_hasTimeZone = false;
  std::int16_t m_zoneHour = 0;
  detail::RarePart<Rest> m_rest;

  friend struct MomentAccess;
  friend QUILLON9_API int Compare(CDateTime const& left, CDateTime const& right);
};

/// Compare field by field, from the year to the second, as CompareTo() does once the zones are resolved. A field that a
/// type does not have counts as -1. Two fields of different signs are indeterminate; so is a field that only one side
/// has, unless it is 0 there or a negative year. Any thread.
/// \throws CQnInvalidStateException for a left side without a month against a right side with one.
QUILLON9_API int Compare(CDateTime const& left, CDateTime const& right);

}  // namespace Quillon9
