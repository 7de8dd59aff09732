// The checks in CXmlObjectHelper of values against the facets of their schema.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/values/restrictions.h"
#include "quillon9/values/variant.h"
#include "text/lost_characters.h"
#include "text/utf8_text.h"
#include "values/date_order.h"
#include "values/number_text.h"
#include "values/pattern_matching.h"
#include "values/remembered_value.h"

namespace Quillon9 {

namespace {

[[noreturn]] void ThrowInvalidValue(char const* name, std::string const& shown) {
  throw OfKind(FailureKind_BrokenFacet, CQnException(FormatString("Invalid Value for %s [%s]", name, shown.c_str())));
}

// ---- Numbers. Each test states the condition that must hold, so that a NaN fails it.

template <auto parse>
auto ParseBound(std::string const& text) {
  return parse(text, CWhitespaceUtils::WhitespaceRule_Collapse);
}

/// The value of a bound, against which each written value is checked. A bound that does not parse is tried again, and
/// throws, each time.
template <auto parse>
using Bound = RememberedValue<ParseBound<parse>>;

template <auto parse, class Value>
bool IsWithinBounds(Value value, CPrimitiveRestrictions const& r) {
  auto const bound = [](std::string const& text) { return *Bound<parse>(text); };
  return (r.minInclusive.empty() || value >= bound(r.minInclusive)) &&
         (r.maxInclusive.empty() || bound(r.maxInclusive) >= value) &&
         (r.minExclusive.empty() || value > bound(r.minExclusive)) &&
         (r.maxExclusive.empty() || bound(r.maxExclusive) > value);
}

// Shows the value as "%d" prints it.
template <auto parse, class Value>
void CheckInteger(char const* name, Value value, CPrimitiveRestrictions const& r) {
  if (!IsWithinBounds<parse>(value, r)) ThrowInvalidValue(name, IntegerText(static_cast<std::int32_t>(value)));
}

template <auto parse, class Value>
void CheckLongInteger(char const* name, Value value, CPrimitiveRestrictions const& r) {
  if (!IsWithinBounds<parse>(value, r)) ThrowInvalidValue(name, IntegerText(value));
}

template <auto parse, class Value>
void CheckFloating(char const* name, Value value, CPrimitiveRestrictions const& r) {
  if (!IsWithinBounds<parse>(value, r)) ThrowInvalidValue(name, FixedText(static_cast<double>(value)));
}

// ---- Numbers of any length. The tests use the operators of the class.

template <auto parse, class Value>
void CheckBigNumber(char const* name, Value const& value, CPrimitiveRestrictions const& r) {
  bool const valid = (r.minInclusive.empty() || value >= *Bound<parse>(r.minInclusive)) &&
                     (r.maxInclusive.empty() || value <= *Bound<parse>(r.maxInclusive)) &&
                     (r.minExclusive.empty() || value > *Bound<parse>(r.minExclusive)) &&
                     (r.maxExclusive.empty() || value < *Bound<parse>(r.maxExclusive));
  if (!valid) ThrowInvalidValue(name, value.ToString());
}

// ---- Dates, times and durations, which are only partially ordered

int Order(CDateTimeSpan const& value, CDateTimeSpan const& bound, CPrimitiveRestrictions const&) {
  return static_cast<int>(value.CompareTo(bound));
}

int Order(CDateTime const& value, CDateTime const& bound, CPrimitiveRestrictions const& r) {
  bool const isExact = r.comparesMonths && value.GetType() == bound.GetType();
  return isExact ? OrderOfDates(value, bound) : value.CompareTo(bound);
}

template <auto parse, class Value>
bool IsWithinDateBounds(Value const& value, CPrimitiveRestrictions const& r) {
  enum { Equal, Less, Greater };  // the results of CompareTo(); any other result is indeterminate and violates no bound
  auto const compare = [&](std::string const& text) { return Order(value, *Bound<parse>(text), r); };
  if (!r.minInclusive.empty() && compare(r.minInclusive) == Less) return false;
  if (!r.maxInclusive.empty() && compare(r.maxInclusive) == Greater) return false;
  if (!r.minExclusive.empty()) {
    int const order = compare(r.minExclusive);
    if (order == Equal || order == Less) return false;
  }
  if (!r.maxExclusive.empty()) {
    int const order = compare(r.maxExclusive);
    if (order == Equal || order == Greater) return false;
  }
  return true;
}

template <auto parse, class Value>
void CheckDate(char const* name, Value const& value, CPrimitiveRestrictions const& r) {
  if (!IsWithinDateBounds<parse>(value, r)) ThrowInvalidValue(name, value.ToString());
}

// ---- Strings and binary data

bool IsAllowedLength(std::uint64_t length, CPrimitiveRestrictions const& r) {
  return (r.minLength < 0 || length >= static_cast<std::uint64_t>(r.minLength)) &&
         (r.maxLength < 0 || length <= static_cast<std::uint64_t>(r.maxLength)) &&
         (r.length < 0 || length == static_cast<std::uint64_t>(r.length));
}

// An ASCII pattern, the usual kind in schemas, means the same in any code page: SJIS, for which libc has a yen sign in
// place of the ASCII backslash, must not turn "\d" into another pattern.
bool KeepsPattern(std::string const& value, std::string const& pattern) {
  if (pattern.empty()) return true;
  bool const isUtf8 = std::all_of(pattern.begin(), pattern.end(), [](char c) { return c > 0; }) ||
                      CEncoder::IsUtf8SameInLocalCodePage(pattern.data(), pattern.size());
  if (isUtf8) return MatchesPattern(pattern, value);
  LostCharacters::Scope const unobserved(nullptr);  // the copy serves only the comparison
  CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(pattern.c_str());
  return MatchesPattern(std::string(reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength()), value);
}

void CheckText(char const* name, std::string const& value, CPrimitiveRestrictions const& r) {
  if (!IsAllowedLength(Utf8Text::LengthOf(value), r) || !KeepsPattern(value, r.pattern)) ThrowInvalidValue(name, value);
}

void CheckBinary(char const* name, CBinaryData const& value, CPrimitiveRestrictions const& r) {
  if (!IsAllowedLength(value.GetLength(), r)) ThrowInvalidValue(name, value.GetAsHexString());
}

}  // namespace

void CXmlObjectHelper::CheckRestrictionForui4(char const* name, std::uint32_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::ui4FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForui2(char const* name, std::uint16_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::ui2FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForui1(char const* name, std::uint8_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::ui1FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFori8(char const* name, std::int64_t value, CPrimitiveRestrictions const& r) {
  CheckLongInteger<CConversions::i8FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFori4(char const* name, std::int32_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::i4FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFori2(char const* name, std::int16_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::i2FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFori1(char const* name, std::int8_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::i1FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForui8(char const* name, std::uint64_t value, CPrimitiveRestrictions const& r) {
  CheckLongInteger<CConversions::ui8FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForr8(char const* name, double value, CPrimitiveRestrictions const& r) {
  CheckFloating<CConversions::r8FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForr4(char const* name, float value, CPrimitiveRestrictions const& r) {
  CheckFloating<CConversions::r4FromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForday(char const* name, std::uint8_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::dayFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFormonth(char const* name, std::uint8_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::monthFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForyear(char const* name, std::uint16_t value, CPrimitiveRestrictions const& r) {
  CheckInteger<CConversions::yearFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForinteger(char const* name, CBigInteger const& value,
                                                  CPrimitiveRestrictions const& r) {
  CheckBigNumber<CConversions::integerFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFordecimal(char const* name, CDecimal const& value,
                                                  CPrimitiveRestrictions const& r) {
  CheckBigNumber<CConversions::decimalFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFortime(char const* name, CDateTime const& value,
                                               CPrimitiveRestrictions const& r) {
  CheckDate<CConversions::timeFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFordatetime(char const* name, CDateTime const& value,
                                                   CPrimitiveRestrictions const& r) {
  CheckDate<CConversions::datetimeFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFordate(char const* name, CDateTime const& value,
                                               CPrimitiveRestrictions const& r) {
  CheckDate<CConversions::dateFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFormonthYear(char const* name, CDateTime const& value,
                                                    CPrimitiveRestrictions const& r) {
  CheckDate<CConversions::yearMonthFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionFormonthDay(char const* name, CDateTime const& value,
                                                   CPrimitiveRestrictions const& r) {
  CheckDate<CConversions::monthDayFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForyearMonth(char const* name, CDateTime const& value,
                                                    CPrimitiveRestrictions const& r) {
  CheckDate<CConversions::yearMonthFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForduration(char const* name, CDateTimeSpan const& value,
                                                   CPrimitiveRestrictions const& r) {
  CheckDate<CConversions::durationFromString>(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForboolean(char const*, bool, CPrimitiveRestrictions const&) {}

void CXmlObjectHelper::CheckRestrictionForstring(char const* name, std::string value, CPrimitiveRestrictions const& r) {
  CheckText(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForbase64Binary(char const* name, CBinaryData const& value,
                                                       CPrimitiveRestrictions const& r) {
  CheckBinary(name, value, r);
}

void CXmlObjectHelper::CheckRestrictionForhexBinary(char const* name, CBinaryData const& value,
                                                    CPrimitiveRestrictions const& r) {
  CheckBinary(name, value, r);
}

void CXmlObjectHelper::CheckRestriction(char const* name, QnVariant const& value, ItemType type,
                                        CPrimitiveRestrictions const& r) {
  // clang-format off
  switch (type) {
    case ItemType_hexBinary:    return CheckRestrictionForhexBinary(name, value.GetHexBinary(), r);
    case ItemType_base64Binary: return CheckRestrictionForbase64Binary(name, value.GetBase64Binary(), r);
    case ItemType_i1:           return CheckRestrictionFori1(name, value.GetI1(), r);
    case ItemType_i2:           return CheckRestrictionFori2(name, value.GetI2(), r);
    case ItemType_i4:           return CheckRestrictionFori4(name, value.GetI4(), r);
    case ItemType_i8:           return CheckRestrictionFori8(name, value.GetI8(), r);
    case ItemType_ui1:          return CheckRestrictionForui1(name, value.GetUI1(), r);
    case ItemType_ui2:          return CheckRestrictionForui2(name, value.GetUI2(), r);
    case ItemType_ui4:          return CheckRestrictionForui4(name, value.GetUI4(), r);
    case ItemType_ui8:          return CheckRestrictionForui8(name, value.GetUI8(), r);
    case ItemType_r4:           return CheckRestrictionForr4(name, value.GetR4(), r);
    case ItemType_r8:           return CheckRestrictionForr8(name, value.GetR8(), r);
    case ItemType_string:       return CheckText(name, value.GetString(), r);  // CheckRestrictionForstring would copy
    case ItemType_boolean:      return CheckRestrictionForboolean(name, value.GetBoolean(), r);
    case ItemType_duration:     return CheckRestrictionForduration(name, value.GetDuration(), r);
    case ItemType_yearMonth:    return CheckRestrictionForyearMonth(name, value.GetYearMonth(), r);
    case ItemType_monthDay:     return CheckRestrictionFormonthDay(name, value.GetMonthDay(), r);
    case ItemType_year:         return CheckRestrictionForyear(name, value.GetYear(), r);
    case ItemType_month:        return CheckRestrictionFormonth(name, value.GetMonth(), r);
    case ItemType_day:          return CheckRestrictionForday(name, value.GetDay(), r);
    case ItemType_date:         return CheckRestrictionFordate(name, value.GetDate(), r);
    case ItemType_datetime:     return CheckRestrictionFordatetime(name, value.GetDateTime(), r);
    case ItemType_time:         return CheckRestrictionFortime(name, value.GetTime(), r);
    case ItemType_decimal:      return CheckRestrictionFordecimal(name, value.GetDecimal(), r);
    case ItemType_integer:      return CheckRestrictionForinteger(name, value.GetInteger(), r);
    case ItemType_invalid: case ItemType_char: case ItemType_xmlObject: case ItemType_xmlCollection: break;
  }
  // clang-format on
  throw CQnInvalidValueException("unknown type [" + value.GetType() + "]");
}

}  // namespace Quillon9
