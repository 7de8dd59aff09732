// Durations by the rules of XML Schema: reading and printing them, and their order.

#include <charconv>
#include <limits>
#include <optional>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "values/calendar.h"
#include "values/moment_access.h"
#include "values/moment_scan.h"
#include "values/schema_failures.h"
#include "values/schema_moments.h"

namespace Quillon9 {

// ---- Reading

namespace {

constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;

class DurationReader {
 public:
  DurationReader(std::string_view text, SpanFields& fields) : m_scan(text), m_fields(fields) {}

  bool Read() {
    m_fields.isNegative = m_scan.Take('-');
    if (!m_scan.Take('P')) return false;
    ReadNumber();
    TakeUnit('Y', m_fields.years);
    TakeUnit('M', m_fields.months);
    TakeUnit('D', m_fields.days);
    if (m_hasNumber) return false;
    if (m_scan.Take('T')) {
      m_hasUnit = false;
      ReadNumber();
      TakeUnit('H', m_fields.hours);
      TakeUnit('M', m_fields.minutes);
      if (m_hasNumber && !m_scan.TakeFraction(m_fields.nanoseconds, m_fields.fraction)) return false;
      TakeUnit('S', m_fields.seconds);
    }
    return m_hasUnit && !m_hasNumber && m_scan.IsAtEnd();
  }

  /// Whether a number that was read has more than 64 bits.
  bool IsTooLarge() const { return m_isTooLarge; }

 private:
  void ReadNumber() {
    std::string_view const digits = m_scan.TakeDigits();
    m_hasNumber = !digits.empty();
    m_number = 0;
    if (digits.size() <= static_cast<std::size_t>(std::numeric_limits<std::uint64_t>::digits10)) {
      for (char const digit : digits) m_number = m_number * 10 + static_cast<unsigned>(digit - '0');
    } else if (std::from_chars(digits.data(), digits.data() + digits.size(), m_number).ec != std::errc()) {
      m_isTooLarge = true;
    }
  }

  /// Take the sign of a unit after its number, and the number of the next unit.
  void TakeUnit(char sign, std::uint64_t& field) {
    if (!m_hasNumber || !m_scan.Take(sign)) return;
    field = m_number;
    m_hasUnit = true;
    ReadNumber();
  }

  MomentScan m_scan;
  SpanFields& m_fields;
  std::uint64_t m_number = 0;
  bool m_hasNumber = false;
  bool m_hasUnit = false;
  bool m_isTooLarge = false;
};

}  // namespace

void ParseDuration(CDateTimeSpan& value, std::string_view text) {
  SpanFields fields;
  DurationReader reader(text, fields);
  if (!reader.Read()) SchemaFailures::ThrowNotValid(text, ItemType_duration);
  if (reader.IsTooLarge()) SchemaFailures::ThrowTooLarge(text, ItemType_duration);
  MomentAccess::SetFields(value, fields);
}

// ---- Printing

std::string DurationText(CDateTimeSpan const& value) {
  SpanFields fields = MomentAccess::FieldsOf(value);
  std::string text = value.ToString();
  if (text.back() == 'P') return "PT0S";
  if (fields.nanoseconds == 0) return text;
  std::uint64_t const carry = fields.nanoseconds / kNanosecondsPerSecond;  // nothing validates what a program sets
  if (fields.seconds > std::numeric_limits<std::uint64_t>::max() - carry) {
    SchemaFailures::ThrowTooLarge(text, ItemType_duration);
  }
  fields.seconds += carry;
  fields.nanoseconds %= kNanosecondsPerSecond;
  CDateTimeSpan inOrder;
  MomentAccess::SetFields(inOrder, fields);
  return inOrder.ToString();
}

// ---- Order

namespace {

// Twelve times a number of 64 bits has 68 bits, and a number of days of 64 bits has 81 bits as seconds.
__extension__ typedef __int128 WideInteger;

/// The two parts of a duration that the calendar does not turn into one another. The fraction of a second counts in the
/// direction of the sign.
struct Length {
  WideInteger months = 0;
  WideInteger seconds = 0;
  std::uint64_t nanoseconds = 0;
  std::string_view fraction;
  bool isNegative = false;

  bool HasFraction() const { return nanoseconds != 0 || !fraction.empty(); }
  int ComparedFraction(Length const& other) const {
    if (nanoseconds != other.nanoseconds) return nanoseconds < other.nanoseconds ? -1 : 1;
    return fraction.compare(other.fraction);
  }
};

Length LengthOf(CDateTimeSpan const& value) {
  SpanFields const fields = MomentAccess::FieldsOf(value);
  WideInteger const sign = fields.isNegative ? -1 : 1;
  Length length;
  length.months = sign * (WideInteger{fields.years} * 12 + fields.months);
  length.seconds = sign * (((WideInteger{fields.days} * 24 + fields.hours) * 60 + fields.minutes) * 60 +
                           fields.seconds + fields.nanoseconds / kNanosecondsPerSecond);
  length.nanoseconds = fields.nanoseconds % kNanosecondsPerSecond;
  length.fraction = fields.fraction;
  length.isNegative = fields.isNegative;
  return length;
}

/// The whole second to which \p length leads from the first day of a month.
WideInteger EndOf(Length const& length, int year, int month) {
  WideInteger const months = WideInteger{year} * 12 + month - 1 + length.months;
  WideInteger const endYear = FlooredQuotient<WideInteger>(months, 12);
  WideInteger const cycle = FlooredQuotient<WideInteger>(endYear, kYearsInCycle);
  WideInteger const days = cycle * kDaysInCycle + DaysFromCycle(static_cast<int>(endYear - cycle * kYearsInCycle),
                                                                static_cast<int>(months - endYear * 12) + 1);
  return days * 86400 + length.seconds;
}

ValueOrder OrderOf(int comparison) {
  return comparison == 0 ? ValueOrder_Equal : comparison < 0 ? ValueOrder_Less : ValueOrder_Greater;
}

/// Compare the fractions of two durations that lead to the same whole second. If their signs differ, this second is
/// where they start, and the fractions lie on different sides of it.
ValueOrder OrderOfFractions(Length const& left, Length const& right) {
  bool const isSameSide = left.isNegative == right.isNegative;
  int const comparison = isSameSide ? left.ComparedFraction(right) : left.HasFraction() || right.HasFraction() ? 1 : 0;
  return OrderOf(left.isNegative ? -comparison : comparison);
}

}  // namespace

ValueOrder OrderOfDurations(CDateTimeSpan const& left, CDateTimeSpan const& right) {
  // From these months on, spans of months have all lengths in days that they can have.
  constexpr int kStarts[][2] = {{1696, 9}, {1697, 2}, {1903, 3}, {1903, 7}};
  Length const a = LengthOf(left);
  Length const b = LengthOf(right);
  std::optional<ValueOrder> result;
  for (auto const& [year, month] : kStarts) {
    WideInteger const endOfA = EndOf(a, year, month);
    WideInteger const endOfB = EndOf(b, year, month);
    ValueOrder const order = endOfA == endOfB ? OrderOfFractions(a, b) : OrderOf(endOfA < endOfB ? -1 : 1);
    if (result.value_or(order) != order) return ValueOrder_Indeterminate;
    result = order;
  }
  return *result;
}

}  // namespace Quillon9
