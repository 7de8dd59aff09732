#pragma once

#include <cstdint>
#include <string>

#include "quillon9/export.h"
#include "quillon9/values/rare_part.h"

namespace Quillon9 {

/// An xs:duration (W3C XML Schema Part 2, 3.2.6). The fields keep the numbers as written, without range check or
/// normalisation, under one sign for the whole. A plain value.
///
/// It differs from XML Schema as follows: an all-zero span prints "P", which no parser accepts; numbers wrap at 32
/// bits; of the seventh to ninth fraction digit only the last is kept, as nanoseconds. Comparison uses calendar days
/// and ignores months; see CompareTo().
///
/// Reading by the rules of XML Schema (CSchemaValues) also makes spans that ParseXSDDuration() cannot: with larger
/// numbers, up to 64 bits, and any number of fraction digits. ToString() prints them whole; GetNanoSeconds() returns
/// the seventh to ninth digit whatever follows.
class QUILLON9_API CDateTimeSpan {
 public:
  /// All zero, positive.
  CDateTimeSpan();
  /// Copies every field and the sign.
  CDateTimeSpan(CDateTimeSpan const& other);
  /// A positive span with these fields, the others 0. Nothing is checked or normalised.
  ///@{
  CDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                std::uint64_t minutes, std::uint64_t seconds, std::uint16_t milli, std::uint16_t micro,
                std::uint16_t nano);
  CDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                std::uint64_t minutes, std::uint64_t seconds);
  CDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds);
  ///@}
  /// Copies every field and the sign.
  CDateTimeSpan& operator=(CDateTimeSpan const& other);
  virtual ~CDateTimeSpan();

  /// Set every field, those not named to 0. The sign becomes positive. Nothing is checked.
  ///@{
  void SetDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                       std::uint64_t minutes, std::uint64_t seconds, std::uint16_t milli, std::uint16_t micro,
                       std::uint16_t nano);
  void SetDateTimeSpan(std::uint16_t years, std::uint32_t months, std::uint32_t days, std::uint32_t hours,
                       std::uint64_t minutes, std::uint64_t seconds);
  void SetDateTimeSpan(std::uint32_t hours, std::uint64_t minutes, std::uint64_t seconds);
  ///@}

  /// The fields as they were set: nothing is normalised. Each part of the fraction counts 0 to 999; setters check
  /// nothing.
  /// \throws CQnInvalidValueException "The value [%s] does not fit into %s()" for a number that was read by the rules
  ///         of XML Schema and is too large for its getter.
  ///@{
  std::uint16_t GetYears() const { return Narrow(m_years, &Rest::years, "GetYears"); }
  std::uint32_t GetMonths() const { return Narrow(m_months, &Rest::months, "GetMonths"); }
  std::uint32_t GetDays() const { return Narrow(m_days, &Rest::days, "GetDays"); }
  std::uint32_t GetHours() const { return Narrow(m_hours, &Rest::hours, "GetHours"); }
  std::uint64_t GetMinutes() const { return m_minutes; }
  std::uint64_t GetSeconds() const { return m_seconds; }
  std::uint16_t GetMilliSeconds() const { return m_milliSeconds; }
  std::uint16_t GetMicroSeconds() const { return m_microSeconds; }
  std::uint16_t GetNanoSeconds() const { return m_nanoSeconds; }
  void SetYears(std::uint16_t years) { Set(m_years, years, &Rest::years); }
  void SetMonths(std::uint32_t months) { Set(m_months, months, &Rest::months); }
  void SetDays(std::uint32_t days) { Set(m_days, days, &Rest::days); }
  void SetHours(std::uint32_t hours) { Set(m_hours, hours, &Rest::hours); }
  void SetMinutes(std::uint64_t minutes) { m_minutes = minutes; }
  void SetSeconds(std::uint64_t seconds) { m_seconds = seconds; }
  void SetMilliSeconds(std::uint16_t milli) { m_milliSeconds = milli; }
  void SetMicroSeconds(std::uint16_t micro) { m_microSeconds = micro; }
  void SetNanoSeconds(std::uint16_t nano) {
    m_nanoSeconds = nano;
    if (m_rest.Find() != nullptr) m_rest.Make().fraction.clear();
  }
  ///@}

  /// Whether the whole span is negative.
  bool IsNegative() const { return m_negative; }
  /// Invert the sign.
  void Negate() { m_negative = !m_negative; }
  /// A copy with the sign set: a negative span stays negative.
  CDateTimeSpan GetAsNegative() const;
  /// Set every field to 0 and the sign to positive.
  void Clear();

  /// Parse "[-]P[nY][nM][nD][T[nH][nM][nS.ff]]". A number may be absent, which gives 0, and wraps at 32 bits; years are
  /// cut to 16; minutes and seconds of 2,147,483,648 and more become very large, because their 32 bits are
  /// sign-extended. "Y" is accepted at any place, and after it every field may come once more, with the fractions added
  /// up; a number before "T" is ignored; a point may end the text in place of "S".
  /// \throws CQnInvalidValueException; the fields read before the failure stay set.
  void ParseXSDDuration(char const* text);
  /// The fields that are not zero, in the form above; "P" or "-P", which do not follow that form, when all are zero.
  std::string ToString() const;

  /// Compare as XML Schema prescribes, by adding both to 1696-09-01, 1697-02-01, 1903-03-01 and 1903-07-01: 0 equal, 1
  /// less, 2 greater, 3 when the four do not agree or a sum cannot be built. These are dates without a time, and
  /// CDateTime::CompareTo() compares only their years and days, which has consequences: PT1H equals PT2H, months mostly
  /// do not count, and a negative span is mostly greater than a positive one, since it ends on a later day of the month
  /// before. The bounds of durations compare by this order.
  ///@{
  int CompareTo(CDateTimeSpan const& other) const;
  bool operator==(CDateTimeSpan const& other) const { return CompareTo(other) == 0; }
  bool operator!=(CDateTimeSpan const& other) const { return CompareTo(other) != 0; }
  bool operator<(CDateTimeSpan const& other) const { return CompareTo(other) == 1; }
  bool operator>(CDateTimeSpan const& other) const { return CompareTo(other) == 2; }
  ///@}

 private:
  void ReadFraction(char const*& at, char const* text);

  /// What the other members cannot hold: the bits of the numbers above their width, and the digits of the fraction
  /// after the ninth, without zeros at the end.
  struct Rest {
    std::uint64_t years = 0;
    std::uint64_t months = 0;
    std::uint64_t days = 0;
    std::uint64_t hours = 0;
    std::string fraction;
  };
  template <class Field>
  Field Narrow(Field low, std::uint64_t Rest::*high, char const* getter) const {
    if (m_rest.Find() != nullptr && m_rest.Find()->*high != 0) ThrowTooNarrow(getter);
    return low;
  }
  template <class Field>
  std::uint64_t Whole(Field low, std::uint64_t Rest::*high) const {
    return m_rest.Find() == nullptr ? low : (m_rest.Find()->*high << (8 * sizeof low)) | low;
  }
  template <class Field>
  void Set(Field& field, Field value, std::uint64_t Rest::*high) {
    field = value;
    if (m_rest.Find() != nullptr) m_rest.Make().*high = 0;
  }
  std::string FractionText() const;
  [[noreturn]] void ThrowTooNarrow(char const* operation) const;

  std::uint16_t m_years = 0;
  std::uint32_t m_months = 0;
  std::uint32_t m_days = 0;
  std::uint32_t m_hours = 0;
  std::uint64_t m_minutes = 0;
  std::uint64_t m_seconds = 0;
  std::uint16_t m_milliSeconds = 0;
  std::uint16_t m_microSeconds = 0;
  std::uint16_t m_nanoSeconds = 0;
  bool m_negative = false;
  detail::RarePart<Rest> m_rest;

  friend class CDateTime;
  friend struct MomentAccess;
};

}  // namespace Quillon9
