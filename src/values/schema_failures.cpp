#include "values/schema_failures.h"

#include <string>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"

namespace Quillon9 {

namespace {

char const* NameOf(ItemType type) {
  switch (type) {
    case ItemType_hexBinary: return "hexBinary";
    case ItemType_base64Binary: return "base64Binary";
    case ItemType_i1: return "byte";
    case ItemType_i2: return "short";
    case ItemType_i4: return "int";
    case ItemType_i8: return "long";
    case ItemType_ui1: return "unsignedByte";
    case ItemType_ui2: return "unsignedShort";
    case ItemType_ui4: return "unsignedInt";
    case ItemType_ui8: return "unsignedLong";
    case ItemType_r4: return "float";
    case ItemType_r8: return "double";
    case ItemType_duration: return "duration";
    case ItemType_yearMonth: return "gYearMonth";
    case ItemType_monthDay: return "gMonthDay";
    case ItemType_year: return "gYear";
    case ItemType_month: return "gMonth";
    case ItemType_day: return "gDay";
    case ItemType_date: return "date";
    case ItemType_datetime: return "dateTime";
    case ItemType_time: return "time";
    case ItemType_char: return "char";  // which only this library has
    case ItemType_string: return "string";
    case ItemType_boolean: return "boolean";
    case ItemType_decimal: return "decimal";
    case ItemType_integer: return "integer";
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  return "value";
}

[[noreturn]] void Throw(char const* format, std::string_view text, ItemType type) {
  std::string const shown(text);
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(format, shown.c_str(), NameOf(type))));
}

}  // namespace

void SchemaFailures::ThrowNotValid(std::string_view text, ItemType type) {
  Throw("The value [%s] is not a valid %s", text, type);
}

void SchemaFailures::ThrowTooLarge(std::string_view text, ItemType type) {
  Throw("The value [%s] is too large for a %s", text, type);
}

}  // namespace Quillon9
