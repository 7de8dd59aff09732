#include "quillon9/values/schema_values.h"

#include <algorithm>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/values/conversions.h"
#include "values/number_text.h"
#include "values/schema_conversions.h"
#include "values/schema_failures.h"
#include "values/schema_moments.h"
#include "values/schema_order.h"
#include "values/variant_access.h"

namespace Quillon9 {

namespace {

using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

[[noreturn]] void ThrowNoValue(ItemType type) {
  throw CQnException(FormatString("Invalid Type %d to convert to string", static_cast<int>(type)));
}

std::string_view Trimmed(std::string_view text) {
  bool const isTrimmed = !text.empty() && text.front() > ' ' && text.back() > ' ';
  if (isTrimmed) return text;
  while (!text.empty() && CWhitespaceUtils::IsWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && CWhitespaceUtils::IsWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

char CharFromText(std::string_view text, WhitespaceRule rule) {
  QnVariant normalized;
  SchemaConversions::SetNormalized(normalized, text, rule);
  std::string const& character = normalized.GetString();
  if (character.size() != 1) SchemaFailures::ThrowNotValid(character, ItemType_char);
  return character[0];
}

std::string CharText(char value) {
  if (value == '\0') SchemaFailures::ThrowNotValid("", ItemType_char);
  return std::string(1, value);
}

CDateTime MomentFromText(std::string_view text, ItemType type) {
  CDateTime value;
  ParseMoment(value, type, text);
  return value;
}

CDateTimeSpan DurationFromText(std::string_view text) {
  CDateTimeSpan value;
  ParseDuration(value, text);
  return value;
}

}  // namespace

// Hold the text under the facet whiteSpace (4.3.6). The classic rules drop carriage returns, but do the same for all
// other texts.
void SchemaConversions::SetNormalized(QnVariant& value, std::string_view text, WhitespaceRule rule) {
  bool const hasReturn = text.find('\r') != std::string_view::npos;
  if (!hasReturn) return VariantAccess::FromText(value, text, ItemType_string, rule);
  std::string replaced(text);
  if (rule == CWhitespaceUtils::WhitespaceRule_Preserve) rule = CWhitespaceUtils::WhitespaceRule_None;
  if (rule != CWhitespaceUtils::WhitespaceRule_None) std::replace(replaced.begin(), replaced.end(), '\r', ' ');
  VariantAccess::FromText(value, replaced, ItemType_string, rule);
}

// clang-format off
void SchemaConversions::ConvertOther(QnVariant& value, std::string_view text, ItemType type, WhitespaceRule rule) {
  if (type == ItemType_char) return value.SetChar(CharFromText(text, rule));
  text = Trimmed(text);
  switch (type) {
    case ItemType_hexBinary:    return value.SetHexBinary(HexBinaryFromText(text));
    case ItemType_base64Binary: return value.SetBase64Binary(Base64BinaryFromText(text));
    case ItemType_i1:           return value.SetI1(IntegerFromText<std::int8_t>(text, type));
    case ItemType_i2:           return value.SetI2(IntegerFromText<std::int16_t>(text, type));
    case ItemType_i4:           return value.SetI4(IntegerFromText<std::int32_t>(text, type));
    case ItemType_i8:           return value.SetI8(IntegerFromText<std::int64_t>(text, type));
    case ItemType_ui1:          return value.SetUI1(IntegerFromText<std::uint8_t>(text, type));
    case ItemType_ui2:          return value.SetUI2(IntegerFromText<std::uint16_t>(text, type));
    case ItemType_ui4:          return value.SetUI4(IntegerFromText<std::uint32_t>(text, type));
    case ItemType_ui8:          return value.SetUI8(IntegerFromText<std::uint64_t>(text, type));
    case ItemType_r4:           return value.SetR4(FloatFromText(text));
    case ItemType_r8:           return value.SetR8(DoubleFromText(text));
    case ItemType_duration:     return value.SetDuration(DurationFromText(text));
    case ItemType_yearMonth:    return value.SetYearMonth(MomentFromText(text, type));
    case ItemType_monthDay:     return value.SetMonthDay(MomentFromText(text, type));
    case ItemType_year:         return value.SetYear(ParseYear(text));
    case ItemType_month:        return value.SetMonth(ParseMonth(text));
    case ItemType_day:          return value.SetDay(ParseDay(text));
    case ItemType_date:         return value.SetDate(MomentFromText(text, type));
    case ItemType_datetime:     return value.SetDateTime(MomentFromText(text, type));
    case ItemType_time:         return value.SetTime(MomentFromText(text, type));
    case ItemType_boolean:      return value.SetBoolean(BooleanFromText(text));
    case ItemType_decimal:      return value.SetDecimal(DecimalFromText(text));
    case ItemType_integer:      return value.SetInteger(IntegerFromText(text));
    case ItemType_string: case ItemType_char:
    case ItemType_invalid: case ItemType_xmlObject: case ItemType_xmlCollection: break;
  }
  ThrowNoValue(type);
}

std::string CSchemaValues::ToText(QnVariant const& value) {
  using namespace SchemaConversions;
  switch (value.GetItemType()) {
    case ItemType_hexBinary:    return value.GetHexBinary().GetAsHexString();
    case ItemType_base64Binary: return CConversions::base64BinaryToString(value.GetBase64Binary(), kShortestFormat);
    case ItemType_i1:           return IntegerText(static_cast<int>(value.GetI1()));
    case ItemType_i2:           return IntegerText(value.GetI2());
    case ItemType_i4:           return IntegerText(value.GetI4());
    case ItemType_i8:           return IntegerText(value.GetI8());
    case ItemType_ui1:          return IntegerText(static_cast<unsigned>(value.GetUI1()));
    case ItemType_ui2:          return IntegerText(value.GetUI2());
    case ItemType_ui4:          return IntegerText(value.GetUI4());
    case ItemType_ui8:          return IntegerText(value.GetUI8());
    case ItemType_r4:           return FloatText(value.GetR4());
    case ItemType_r8:           return FloatText(value.GetR8());
    case ItemType_duration:     return DurationText(value.GetDuration());
    case ItemType_yearMonth:    return MomentText(value.GetYearMonth());
    case ItemType_monthDay:     return MomentText(value.GetMonthDay());
    case ItemType_year:         return YearText(value.GetYear());
    case ItemType_month:        return MonthText(value.GetMonth());
    case ItemType_day:          return DayText(value.GetDay());
    case ItemType_date:         return MomentText(value.GetDate());
    case ItemType_datetime:     return MomentText(value.GetDateTime());
    case ItemType_time:         return MomentText(value.GetTime());
    case ItemType_char:         return CharText(value.GetChar());
    case ItemType_string:       return value.GetString();
    case ItemType_boolean:      return CConversions::booleanToString(value.GetBoolean());
    case ItemType_decimal:      return DecimalText(value.GetDecimal());
    case ItemType_integer:      return value.GetInteger().ToString();
    case ItemType_invalid: case ItemType_xmlObject: case ItemType_xmlCollection: break;
  }
  ThrowNoValue(value.GetItemType());
}

ValueOrder CSchemaValues::Compare(QnVariant const& left, QnVariant const& right) {
  ItemType const type = left.GetItemType();
  if (type == right.GetItemType()) {
    switch (type) {
#define QN_VALUE_KIND(number, stem, Access, Held) \
      case ItemType_##stem: return SchemaOrder::Of(left.Get##Access(), right.Get##Access());
#include "values/item_types.def"
      case ItemType_invalid: case ItemType_xmlObject: case ItemType_xmlCollection: break;
    }
  }
  throw CQnInvalidParamException("Values of different kinds have no order");
}
// clang-format on

QnVariant CSchemaValues::FromText(std::string_view text, ItemType type, WhitespaceRule rule) {
  QnVariant value;
  SchemaConversions::Convert(value, text, type, rule);
  return value;
}

ValueOrder CSchemaValues::Compare(CDateTime const& left, CDateTime const& right) { return OrderOfMoments(left, right); }

ValueOrder CSchemaValues::Compare(CDateTimeSpan const& left, CDateTimeSpan const& right) {
  return OrderOfDurations(left, right);
}

bool SchemaConversions::BooleanFromText(std::string_view text) {
  if (text == "true" || text == "1") return true;
  if (text == "false" || text == "0") return false;
  SchemaFailures::ThrowNotValid(text, ItemType_boolean);
}

}  // namespace Quillon9
