#include "quillon9/values/conversions.h"

#include <strings.h>

#include <cstdlib>
#include <limits>
#include <optional>

#include "base/failure_detail.h"
#include "base/text_copy.h"
#include "quillon9/base/exceptions.h"
#include "values/number_text.h"
#include "values/text_conversions.h"

namespace Quillon9 {

#define QN_VALUE_KIND(number, stem, Access, Held)                                     \
  Held CConversions::stem##FromString(std::string const& text, WhitespaceRule rule) { \
    return TextConversions::stem##FromText(text, rule);                               \
  }
#include "values/item_types.def"

namespace {

using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

constexpr std::size_t kR4BufferSize = 32;
constexpr std::size_t kR8BufferSize = 48;

// `format` contains one "%s", which is replaced by `text` up to its first zero byte.
[[noreturn]] void ThrowInvalidValue(char const* format, std::string_view text) {
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString(format, text.data())));
}

// No rule changes a number that consists only of digits, a sign and a point, so applying the rule can be skipped.
bool IsRule(WhitespaceRule rule) {
  return rule >= CWhitespaceUtils::WhitespaceRule_None && rule <= CWhitespaceUtils::WhitespaceRule_Collapse;
}

template <class Integer>
Integer ParseWideInteger(std::string_view text, WhitespaceRule rule, char const* tooLarge, char const* malformed) {
  Integer value = 0;
  if (IsRule(rule) && ParseShortInteger(text, value)) return value;
  std::string scratch;
  std::string_view const number = ApplyWhitespaceRule(rule, text, scratch);
  NumberStatus const status = ParseInteger(number, value);
  if (status == NumberStatus::OutOfRange) ThrowInvalidValue(tooLarge, number);
  if (status == NumberStatus::Malformed) ThrowInvalidValue(malformed, number);
  return value;
}

// `wide` is the number that `text`, as passed by the caller, represents.
template <class Narrow, class Wide>
Narrow NarrowInteger(Wide wide, std::string_view text, char const* tooLarge) {
  using Limits = std::numeric_limits<Narrow>;
  if (wide < Limits::min() || wide > Limits::max()) ThrowInvalidValue(tooLarge, text);
  return static_cast<Narrow>(wide);
}

// The words for NaN and infinity.
bool IsFloatingWord(std::string_view text, double& value) {
  if (text.empty() || text == "NaN" || text == "1.#QNAN" || text == "-NAN") {
    value = std::numeric_limits<double>::quiet_NaN();
  } else if (text == "INF" || text == "-INF") {
    value = std::numeric_limits<double>::infinity() * (text[0] == '-' ? -1 : 1);
  } else {
    return false;
  }
  return true;
}

double ParseFloating(std::string_view text, WhitespaceRule rule, char const* malformed) {
  double value = 0;
  if (IsRule(rule) && ParseShortDouble(text, value)) return value;
  std::string scratch;
  std::string_view const number = ApplyWhitespaceRule(rule, text, scratch);
  bool const endsInDigit = !number.empty() && number.back() >= '0' && number.back() <= '9';
  if (!endsInDigit && IsFloatingWord(number, value)) return value;
  if (ParseDouble(number, value) != NumberStatus::Ok) ThrowInvalidValue(malformed, number);
  return value;
}

template <class Floating>
std::string FloatingText(Floating value, char const* format, std::size_t bufferSize, int precision) {
  if (value != value) return "NaN";
  if (value < std::numeric_limits<Floating>::lowest()) return "-INF";
  if (value > std::numeric_limits<Floating>::max()) return "INF";
  if (IsShortestFormat(format)) {
    char room[kGeneralRoom];
    return std::string(room, PutShortest(room, value));
  }
  double const wide = value;
  return format != nullptr ? FormattedText(format, wide, bufferSize) : GeneralText(wide, precision);
}

bool IsSameWord(std::string_view text, std::string_view word) {
  if (text == word) return true;
  return text.size() == word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0;
}

// The usual spellings, which no rule changes; an unknown rule still fails.
std::optional<bool> PlainBoolean(std::string_view text, WhitespaceRule rule) {
  if (static_cast<unsigned>(rule) > CWhitespaceUtils::WhitespaceRule_Collapse) return std::nullopt;
  if (IsSameText(text, "true")) return true;
  if (IsSameText(text, "false")) return false;
  return std::nullopt;
}

}  // namespace

// ---- Text

std::string CConversions::stringToString(std::string const& value) { return value; }

std::string TextConversions::stringFromText(std::string_view text, WhitespaceRule rule) {
  std::string scratch;
  std::string_view const result = ApplyWhitespaceRule(rule, text, scratch);
  return result.data() == text.data() ? std::string(text) : scratch;
}

// ---- Integers

std::string CConversions::i8ToString(std::int64_t value) { return IntegerText(value); }
std::string CConversions::i4ToString(std::int32_t value) { return IntegerText(value); }
std::string CConversions::i2ToString(std::int16_t value) { return IntegerText(value); }
std::string CConversions::i1ToString(std::int8_t value) { return IntegerText(static_cast<int>(value)); }
std::string CConversions::ui8ToString(std::uint64_t value) { return IntegerText(value); }
std::string CConversions::ui4ToString(std::uint32_t value) { return IntegerText(value); }
std::string CConversions::ui2ToString(std::uint16_t value) { return IntegerText(value); }
std::string CConversions::ui1ToString(std::uint8_t value) { return IntegerText(static_cast<unsigned>(value)); }

std::int64_t TextConversions::i8FromText(std::string_view text, WhitespaceRule rule) {
  return ParseWideInteger<std::int64_t>(text, rule, "The value [%s] is to large to fit in a i8",
                                        "The value [%s] can not be converted to a i8");
}

std::int32_t TextConversions::i4FromText(std::string_view text, WhitespaceRule rule) {
  return ParseWideInteger<std::int32_t>(text, rule, "The value [%s] is to large to fit in a i4",
                                        "The value [%s] can not be converted to a i4");
}

std::int16_t TextConversions::i2FromText(std::string_view text, WhitespaceRule rule) {
  return NarrowInteger<std::int16_t>(i4FromText(text, rule), text, "The value [%s] is to large to fit in a i2");
}

std::int8_t TextConversions::i1FromText(std::string_view text, WhitespaceRule rule) {
  return NarrowInteger<std::int8_t>(i4FromText(text, rule), text, "The value [%s] is to large to fit in a i1");
}

std::uint64_t TextConversions::ui8FromText(std::string_view text, WhitespaceRule rule) {
  return ParseWideInteger<std::uint64_t>(text, rule, "The value [%s] is to large to fit in a ui8",
                                         "The value [%s] can not be converted to a ui8");
}

std::uint32_t TextConversions::ui4FromText(std::string_view text, WhitespaceRule rule) {
  return ParseWideInteger<std::uint32_t>(text, rule, "The value [%s] is to large to fit in a ui4",
                                         "The value [%s] can not be converted to a ui4");
}

std::uint16_t TextConversions::ui2FromText(std::string_view text, WhitespaceRule rule) {
  return NarrowInteger<std::uint16_t>(ui4FromText(text, rule), text, "The value [%s] is to large to fit in a ui2");
}

std::uint8_t TextConversions::ui1FromText(std::string_view text, WhitespaceRule rule) {
  return NarrowInteger<std::uint8_t>(ui4FromText(text, rule), text, "The value [%s] is to large to fit in a ui1");
}

// ---- Floating-point numbers

std::string CConversions::r4ToString(float value, char const* format) {
  return FloatingText(value, format, kR4BufferSize, 7);
}

std::string CConversions::r8ToString(double value, char const* format) {
  return FloatingText(value, format, kR8BufferSize, 16);
}

float TextConversions::r4FromText(std::string_view text, WhitespaceRule rule) {
  static_assert(std::numeric_limits<float>::is_iec559, "rounding a double to a float must saturate to infinity");
  return static_cast<float>(ParseFloating(text, rule, "The value [%s] can not be converted to a r4"));
}

double TextConversions::r8FromText(std::string_view text, WhitespaceRule rule) {
  return ParseFloating(text, rule, "The value [%s] can not be converted to a r8");
}

// ---- Boolean, character, binary

std::string CConversions::booleanToString(bool value) { return value ? "true" : "false"; }

bool TextConversions::booleanFromText(std::string_view text, WhitespaceRule rule) {
  if (auto const plain = PlainBoolean(text, rule)) return *plain;
  std::string scratch;
  std::string_view const word = ApplyWhitespaceRule(rule, text, scratch);
  if (IsSameWord(word, "true") || IsSameWord(word, "1")) return true;
  if (IsSameWord(word, "false") || IsSameWord(word, "0")) return false;
  ThrowInvalidValue(
      "A Boolean Value read from an XML document was invalid [%s]. Valid values are 'true', 'false', '1', or '0'",
      text);
}

std::string CConversions::charToString(char value) { return value != '\0' ? std::string(1, value) : std::string(); }

char TextConversions::charFromText(std::string_view text, WhitespaceRule rule) {
  std::string scratch;
  std::string_view const character = ApplyWhitespaceRule(rule, text, scratch);
  if (character.size() == 1) return character[0];
  ThrowInvalidValue("The value [%s] can not be a char as it is either empty of greater than 1 char long", character);
}

std::string CConversions::hexBinaryToString(CBinaryData const& value) { return value.GetAsHexString(); }

CBinaryData TextConversions::hexBinaryFromText(std::string_view text, WhitespaceRule rule) {
  std::string scratch;
  CBinaryData value;
  value.SetAsHexString(ApplyWhitespaceRule(rule, text, scratch).data());
  return value;
}

std::string CConversions::base64BinaryToString(CBinaryData const& value, char const* format) {
  std::string text = value.GetAsBase64();
  if (!text.empty() && text.back() == '\0' && IsShortestFormat(format)) text.back() = '=';  // of a single octet
  return text;
}

CBinaryData TextConversions::base64BinaryFromText(std::string_view text, WhitespaceRule rule) {
  std::string scratch;
  CBinaryData value;
  value.SetAsBase64(ApplyWhitespaceRule(rule, text, scratch).data());
  return value;
}

// ---- Integers and decimals of any length

std::string CConversions::integerToString(CBigInteger const& value) { return value.ToString(); }

CBigInteger TextConversions::integerFromText(std::string_view text, WhitespaceRule rule) {
  std::string scratch;
  return CBigInteger(ApplyWhitespaceRule(rule, text, scratch).data());
}

std::string CConversions::decimalToString(CDecimal const& value, char const* format) {
  if (format == nullptr || IsShortestFormat(format)) return value.ToString();
  long const digits = std::strtol(format, nullptr, 10);  // 0 for a text without digits
  constexpr int kMost = std::numeric_limits<int>::max();
  return value.ToString(digits > kMost ? kMost : digits < -kMost ? -kMost : static_cast<int>(digits));
}

CDecimal TextConversions::decimalFromText(std::string_view text, WhitespaceRule rule) {
  std::string scratch;
  return CDecimal(ApplyWhitespaceRule(rule, text, scratch).data());
}

// ---- Dates and times

namespace {

using DateParser = void (CDateTime::*)(char const*);

CDateTime ParseDate(std::string_view text, WhitespaceRule rule, CDateTime::DTType type, DateParser parse) {
  std::string scratch;
  CDateTime value(type);
  (value.*parse)(ApplyWhitespaceRule(rule, text, scratch).data());
  return value;
}

// The prefix and at least two digits.
std::string DateFieldText(char const* prefix, unsigned value) {
  std::string const digits = IntegerText(value);
  return std::string(prefix) + (digits.size() < 2 ? "0" : "") + digits;
}

}  // namespace

std::string CConversions::dateToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::timeToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::datetimeToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::yearMonthToString(CDateTime const& value) { return value.ToString("s"); }
std::string CConversions::monthDayToString(CDateTime const& value) { return value.ToString("s"); }

CDateTime TextConversions::dateFromText(std::string_view text, WhitespaceRule rule) {
  return ParseDate(text, rule, CDateTime::dt_date, &CDateTime::ParseXSDDate);
}

CDateTime TextConversions::timeFromText(std::string_view text, WhitespaceRule rule) {
  return ParseDate(text, rule, CDateTime::dt_time, &CDateTime::ParseXSDTime);
}

CDateTime TextConversions::datetimeFromText(std::string_view text, WhitespaceRule rule) {
  return ParseDate(text, rule, CDateTime::dt_dateTime, &CDateTime::ParseXSDDateTime);
}

CDateTime TextConversions::yearMonthFromText(std::string_view text, WhitespaceRule rule) {
  return ParseDate(text, rule, CDateTime::dt_gYearMonth, &CDateTime::ParseXSDDate);
}

CDateTime TextConversions::monthDayFromText(std::string_view text, WhitespaceRule rule) {
  return ParseDate(text, rule, CDateTime::dt_gMonthDay, &CDateTime::ParseXSDDate);
}

std::string CConversions::yearToString(std::uint16_t value) { return IntegerText(static_cast<std::uint32_t>(value)); }
std::string CConversions::monthToString(std::uint8_t value) { return DateFieldText("--", value); }
std::string CConversions::dayToString(std::uint8_t value) { return DateFieldText("---", value); }

std::uint16_t TextConversions::yearFromText(std::string_view text, WhitespaceRule rule) {
  return static_cast<std::uint16_t>(ParseDate(text, rule, CDateTime::dt_gYear, &CDateTime::ParseXSDDate).GetYear());
}

std::uint8_t TextConversions::monthFromText(std::string_view text, WhitespaceRule rule) {
  return ParseDate(text, rule, CDateTime::dt_gMonth, &CDateTime::ParseXSDDate).GetMonth();
}

std::uint8_t TextConversions::dayFromText(std::string_view text, WhitespaceRule rule) {
  return ParseDate(text, rule, CDateTime::dt_gDay, &CDateTime::ParseXSDDate).GetDay();
}

std::string CConversions::durationToString(CDateTimeSpan const& value, char const* format) {
  std::string text = value.ToString();
  if (text.back() == 'P' && IsShortestFormat(format)) text += "T0S";
  return text;
}

CDateTimeSpan TextConversions::durationFromText(std::string_view text, WhitespaceRule rule) {
  std::string scratch;
  CDateTimeSpan value;
  value.ParseXSDDuration(ApplyWhitespaceRule(rule, text, scratch).data());
  return value;
}

}  // namespace Quillon9
