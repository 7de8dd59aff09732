#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <system_error>
#include <type_traits>

#include "quillon9/base/exceptions.h"
#include "values/decimal_access.h"
#include "values/number_text.h"
#include "values/powers_of_10.h"
#include "values/schema_conversions.h"
#include "values/schema_failures.h"

namespace Quillon9 {

namespace {

using SchemaFailures::ThrowNotValid;
using SchemaFailures::ThrowTooLarge;

/// Whether there was a sign, which is removed, and whether it was a minus.
bool TakeSign(std::string_view& text, bool& isNegative) {
  isNegative = !text.empty() && text.front() == '-';
  if (!isNegative && (text.empty() || text.front() != '+')) return false;
  text.remove_prefix(1);
  return true;
}

/// Removes the digits at the start of \p text, and returns them.
std::string_view TakeDigits(std::string_view& text) {
  std::size_t count = 0;
  while (count < text.size() && IsDigit(text[count])) ++count;
  std::string_view const digits = text.substr(0, count);
  text.remove_prefix(count);
  return digits;
}

std::string_view WithoutLeadingZeros(std::string_view digits) {
  while (!digits.empty() && digits.front() == '0') digits.remove_prefix(1);
  return digits;
}

/// The parts of xs:decimal (3.2.3.1), without digits that do not count.
struct DecimalForm {
  bool isNegative = false;
  std::string_view whole;
  std::string_view fraction;

  bool IsZero() const { return whole.empty() && fraction.empty(); }
};

/// Removes a decimal number at the start of \p text. False if there is none.
bool TakeDecimal(std::string_view& text, DecimalForm& form) {
  TakeSign(text, form.isNegative);
  form.whole = TakeDigits(text);
  bool hasDigits = !form.whole.empty();
  if (!text.empty() && text.front() == '.') {
    text.remove_prefix(1);
    form.fraction = TakeDigits(text);
    hasDigits |= !form.fraction.empty();
  }
  form.whole = WithoutLeadingZeros(form.whole);
  while (!form.fraction.empty() && form.fraction.back() == '0') form.fraction.remove_suffix(1);
  return hasDigits;
}

// ---- Integers

/// False for a number above \p limit.
bool ReadMagnitude(std::string_view digits, std::uint64_t limit, std::uint64_t& magnitude) {
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  magnitude = 0;
  for (char const c : WithoutLeadingZeros(digits)) {
    auto const digit = static_cast<std::uint64_t>(c - '0');
    if (magnitude > kMost / 10 || magnitude * 10 > kMost - digit) return false;
    magnitude = magnitude * 10 + digit;
  }
  return magnitude <= limit;
}

template <class Integer>
bool ReadInteger(std::string_view text, Integer& value) {
  using Limits = std::numeric_limits<Integer>;
  using Wide = std::conditional_t<std::is_signed_v<Integer>, std::int64_t, std::uint64_t>;
  Wide number = 0;
  if (ParseShortInteger(text, number)) {
    value = static_cast<Integer>(number);
    return number >= Limits::min() && number <= Limits::max();
  }
  bool isNegative = false;
  TakeSign(text, isNegative);
  std::string_view const digits = TakeDigits(text);
  std::uint64_t limit = static_cast<std::uint64_t>(Limits::max());
  if (isNegative) limit = std::is_signed_v<Integer> ? limit + 1 : 0;
  std::uint64_t magnitude = 0;
  if (digits.empty() || !text.empty() || !ReadMagnitude(digits, limit, magnitude)) return false;
  value = static_cast<Integer>(isNegative ? std::uint64_t{0} - magnitude : magnitude);
  return true;
}

}  // namespace

template <class Integer>
Integer SchemaConversions::IntegerFromText(std::string_view text, ItemType type) {
  Integer value = 0;
  if (!ReadInteger(text, value)) ThrowNotValid(text, type);
  return value;
}

template std::int8_t SchemaConversions::IntegerFromText(std::string_view, ItemType);
template std::int16_t SchemaConversions::IntegerFromText(std::string_view, ItemType);
template std::int32_t SchemaConversions::IntegerFromText(std::string_view, ItemType);
template std::int64_t SchemaConversions::IntegerFromText(std::string_view, ItemType);
template std::uint8_t SchemaConversions::IntegerFromText(std::string_view, ItemType);
template std::uint16_t SchemaConversions::IntegerFromText(std::string_view, ItemType);
template std::uint32_t SchemaConversions::IntegerFromText(std::string_view, ItemType);
template std::uint64_t SchemaConversions::IntegerFromText(std::string_view, ItemType);

// ---- Integers and decimals of any length. Their classes know two zeros, XML Schema knows one.

namespace {

// More digits than this are rounded when a text is parsed.
constexpr std::size_t kMostParsed = CDecimal::m_maxDivider;
// What the classes have room for, to either side of the point.
constexpr std::size_t kMostWhole = 500000;
constexpr std::size_t kMostFraction = 100000;

CBigInteger BigInteger(bool isNegative, std::string_view digits) {
  if (digits.empty()) return CBigInteger();
  std::string text(isNegative ? "-" : "");
  return CBigInteger(text.append(digits).c_str());
}

std::uint64_t AppendDigits(std::uint64_t number, std::string_view digits) {
  for (char const c : digits) number = number * 10 + static_cast<std::uint64_t>(c - '0');
  return number;
}

/// The short form of a decimal.
struct ShortDecimal {
  bool isNegative = false;
  std::uint64_t units = 0;
  std::int32_t divider = 1;

  CDecimal Get() const { return DecimalAccess::Make(isNegative, units, divider); }
};

ShortDecimal ShortDecimalOf(DecimalForm const& form) {
  std::string_view const fraction =
      form.fraction.empty() ? "0" : form.fraction;  // the short form has one digit or more
  std::uint64_t const units = AppendDigits(AppendDigits(0, form.whole), fraction);
  return {form.isNegative, units, static_cast<std::int32_t>(fraction.size())};
}

CDecimal ParsedDecimal(DecimalForm const& form) {
  std::string text(form.isNegative ? "-" : "");
  text.append(form.whole).append(".").append(form.fraction);
  return CDecimal(text.c_str());
}

/// The form of most texts: digits, perhaps with a point among or before them, perhaps after a minus, and few enough for
/// the short form. False for any other text, and for zero.
bool ReadPlainDecimal(std::string_view text, ShortDecimal& value) {
  value.isNegative = !text.empty() && text.front() == '-';
  if (value.isNegative) text.remove_prefix(1);
  if (text.empty() || text.size() >= kMostPower || !IsDigit(text.back())) return false;
  std::size_t fraction = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (IsDigit(text[i])) {
      value.units = value.units * 10 + static_cast<std::uint64_t>(text[i] - '0');
    } else if (text[i] == '.' && fraction == 0) {
      fraction = text.size() - i - 1;
    } else {
      return false;
    }
  }
  if (fraction == 0) value.units *= 10;
  for (; fraction > 1 && value.units % 10 == 0; --fraction) value.units /= 10;
  value.divider = static_cast<std::int32_t>(std::max<std::size_t>(fraction, 1));
  return value.units != 0;
}

CDecimal DecimalOf(DecimalForm const& form) {
  if (form.IsZero()) return CDecimal();
  if (form.whole.size() + form.fraction.size() < kMostPower) return ShortDecimalOf(form).Get();
  if (form.fraction.size() <= kMostParsed) return ParsedDecimal(form);
  CBigInteger whole = BigInteger(form.isNegative, form.whole);
  if (form.whole.empty() && form.isNegative) whole.Negate();
  CBigInteger const fraction = BigInteger(form.isNegative, WithoutLeadingZeros(form.fraction));
  return CDecimal(whole, fraction, static_cast<int>(form.fraction.size()));
}

CDecimal AnyDecimal(std::string_view text) {
  std::string_view rest = text;
  DecimalForm form;
  if (!TakeDecimal(rest, form) || !rest.empty()) ThrowNotValid(text, ItemType_decimal);
  if (form.whole.size() > kMostWhole || form.fraction.size() > kMostFraction) ThrowTooLarge(text, ItemType_decimal);
  return DecimalOf(form);
}

}  // namespace

CBigInteger SchemaConversions::IntegerFromText(std::string_view text) {
  std::int32_t number = 0;
  if (ParseShortInteger(text, number)) return CBigInteger(number);
  std::string_view rest = text;
  bool isNegative = false;
  TakeSign(rest, isNegative);
  std::string_view const digits = TakeDigits(rest);
  if (digits.empty() || !rest.empty()) ThrowNotValid(text, ItemType_integer);
  return BigInteger(isNegative, WithoutLeadingZeros(digits));
}

CDecimal SchemaConversions::DecimalFromText(std::string_view text) {
  ShortDecimal plain;
  return ReadPlainDecimal(text, plain) ? plain.Get() : AnyDecimal(text);
}

std::string SchemaConversions::DecimalText(CDecimal const& value) {
  // A sum is in normal form, even where its operands are not.
  return DecimalAccess::IsShort(value) ? value.ToString() : (value + CDecimal()).ToString();
}

// ---- Floating-point numbers

namespace {

template <class Floating>
bool IsSpecialValue(std::string_view text, Floating& value) {
  using Limits = std::numeric_limits<Floating>;
  if (text == "INF") {
    value = Limits::infinity();
  } else if (text == "-INF") {
    value = -Limits::infinity();
  } else if (text == "NaN") {
    value = Limits::quiet_NaN();
  } else {
    return false;
  }
  return true;
}

/// The exponent after a mantissa, which stops growing where every number is 0 or infinite. False for any other text.
bool ReadExponent(std::string_view text, std::int64_t& exponent) {
  exponent = 0;
  if (text.empty()) return true;
  if (text.front() != 'e' && text.front() != 'E') return false;
  text.remove_prefix(1);
  bool isNegative = false;
  TakeSign(text, isNegative);
  std::string_view const digits = TakeDigits(text);
  if (digits.empty() || !text.empty()) return false;
  constexpr std::int64_t kHuge = std::int64_t{1} << 48;
  for (char const c : digits) {
    if (exponent < kHuge) exponent = exponent * 10 + (c - '0');
  }
  if (isNegative) exponent = -exponent;
  return true;
}

/// The power of ten of the first digit that counts, which the mantissa has, plus one.
std::int64_t PowerOfFirstDigit(DecimalForm const& mantissa) {
  if (!mantissa.whole.empty()) return static_cast<std::int64_t>(mantissa.whole.size());
  return -static_cast<std::int64_t>(mantissa.fraction.size() - WithoutLeadingZeros(mantissa.fraction).size());
}

/// For all numbers but those with a plus sign and those out of range.
template <class Floating>
bool ReadPlain(std::string_view text, Floating& value) {
  std::size_t const first = !text.empty() && text.front() == '-' ? 1 : 0;
  if (first == text.size() || (!IsDigit(text[first]) && text[first] != '.')) return false;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

template <class Floating>
Floating ReadFloating(std::string_view text, ItemType type) {
  Floating value = 0;
  if (ReadPlain(text, value) || IsSpecialValue(text, value)) return value;
  std::string_view rest = text;
  DecimalForm mantissa;
  std::int64_t exponent = 0;
  if (!TakeDecimal(rest, mantissa) || !ReadExponent(rest, exponent)) ThrowNotValid(text, type);
  if (text.front() == '+' && ReadPlain(text.substr(1), value)) return value;
  bool const isLarge = !mantissa.IsZero() && PowerOfFirstDigit(mantissa) + exponent > 0;
  value = isLarge ? std::numeric_limits<Floating>::infinity() : Floating{0};
  return mantissa.isNegative ? -value : value;
}

template <class Floating>
std::string TextOfFloating(Floating value, char* (*put)(char (&)[kGeneralRoom], Floating)) {
  if (value != value) return "NaN";
  if (value < std::numeric_limits<Floating>::lowest()) return "-INF";
  if (value > std::numeric_limits<Floating>::max()) return "INF";
  char room[kGeneralRoom];
  return std::string(room, put(room, value));
}

}  // namespace

// A number and the double nearest to it lie on the same side of each number half way between two floats, which are
// doubles. Only a double that is itself half way does not tell to which float its text is nearer.
float SchemaConversions::FloatFromText(std::string_view text) {
  constexpr std::uint64_t kDroppedBits = (std::uint64_t{1} << 29) - 1;
  double value = 0;
  if (ParseShortDouble(text, value)) {  // which accepts no text of a subnormal or infinite float
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    if ((bits & kDroppedBits) != kDroppedBits / 2 + 1) return static_cast<float>(value);
  }
  return ReadFloating<float>(text, ItemType_r4);
}

double SchemaConversions::DoubleFromText(std::string_view text) {
  double value = 0;
  if (ParseShortDouble(text, value)) return value;
  return ReadFloating<double>(text, ItemType_r8);
}

std::string SchemaConversions::FloatText(float value) {
  return TextOfFloating<float>(value, [](char(&room)[kGeneralRoom], float number) {
    return std::to_chars(room, room + sizeof room, number).ptr;
  });
}

std::string SchemaConversions::FloatText(double value) { return TextOfFloating<double>(value, &PutShortest); }

}  // namespace Quillon9
