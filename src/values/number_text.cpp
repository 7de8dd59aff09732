#include "values/number_text.h"

#include <locale.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

#include "quillon9/base/exceptions.h"
#include "quillon9/values/conversions.h"
#include "values/powers_of_10.h"

namespace Quillon9 {

namespace {

// Created once and never freed, because numbers are read and printed until the process ends.
locale_t NumberLocale() {
  static locale_t const locale = [] {
    locale_t const made = newlocale(LC_ALL_MASK, "C", nullptr);
    if (made == nullptr) throw std::bad_alloc();
    return made;
  }();
  return locale;
}

// Switches the calling thread, and only that one, to the "C" locale.
class NumberLocaleScope {
 public:
  NumberLocaleScope() : m_previous(uselocale(NumberLocale())) {}
  ~NumberLocaleScope() { uselocale(m_previous); }
  NumberLocaleScope(NumberLocaleScope const&) = delete;
  NumberLocaleScope& operator=(NumberLocaleScope const&) = delete;

 private:
  locale_t m_previous;
};

bool IsCSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
struct SignedDigits {
  bool negative = false;
  std::uint64_t magnitude = 0;
  NumberStatus status = NumberStatus::Ok;
};

// Stops reading at a magnitude above `limit`, because the remaining digits cannot make it smaller.
SignedDigits ReadSignedDigits(std::string_view text, std::uint64_t positiveLimit, std::uint64_t negativeLimit) {
  SignedDigits result;
  char const* at = text.data();
  char const* const end = at + text.size();
  while (at != end && IsCSpace(*at)) ++at;
  if (at != end && (*at == '-' || *at == '+')) result.negative = *at++ == '-';
  std::uint64_t const limit = result.negative ? negativeLimit : positiveLimit;
  char const* const firstDigit = at;
  for (; at != end && IsDigit(*at); ++at) {
    auto const digit = static_cast<std::uint64_t>(*at - '0');
    if (result.magnitude > (limit - digit) / 10) {
      result.status = NumberStatus::OutOfRange;
      return result;
    }
    result.magnitude = result.magnitude * 10 + digit;
  }
  if (at == firstDigit) at = text.data();  // like strtol, which stays at the start when there are no digits
  if (at != end && *at != '\0') result.status = NumberStatus::Malformed;
  return result;
}

template <class Signed>
NumberStatus ParseSigned(std::string_view text, Signed& value) {
  constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<Signed>::max());
  SignedDigits const digits = ReadSignedDigits(text, kMax, kMax + 1);
  if (digits.status == NumberStatus::Ok) {
    value = static_cast<Signed>(digits.negative ? std::uint64_t{0} - digits.magnitude : digits.magnitude);
  }
  return digits.status;
}

template <class Unsigned>
NumberStatus ParseUnsigned(std::string_view text, Unsigned& value) {
  constexpr std::uint64_t kMax = std::numeric_limits<Unsigned>::max();
  SignedDigits const digits = ReadSignedDigits(text, kMax, kMax);
  if (digits.status == NumberStatus::Ok) {
    value = static_cast<Unsigned>(digits.negative ? std::uint64_t{0} - digits.magnitude : digits.magnitude);
  }
  return digits.status;
}

// from_chars accepts neither blanks, "+" nor hexadecimal floats, and gives no value for numbers out of range; when it
// accepts all of a text, its result is that of strtod.
bool ParsePlainDouble(std::string_view text, double& value) {
  char const* const begin = text.data();
  char const* const end = begin + text.size();
  char const* const first = begin != end && *begin == '-' ? begin + 1 : begin;
  if (first == end || (!IsDigit(*first) && *first != '.')) return false;
  double parsed = 0;
  auto const [stop, error] = std::from_chars(begin, end, parsed);
  if (error != std::errc() || stop != end) return false;
  value = parsed;
  return true;
}

// The address after the conversion that starts after a percent sign, or null when it does not print a double.
char const* EndOfDoubleConversion(char const* at) {
  if (at[0] == '1' && at[1] == '$') at += 2;  // the only argument, by its number
  at += std::strspn(at, "-+ #0'");
  while (IsDigit(*at)) ++at;
  if (*at == '.') ++at;
  while (IsDigit(*at)) ++at;
  if (*at == 'l') ++at;
  return *at != '\0' && std::strchr("aAeEfFgG", *at) != nullptr ? at + 1 : nullptr;
}

bool PrintsOneDouble(char const* format) {
  int conversions = 0;
  for (char const* at = std::strchr(format, '%'); at != nullptr; at = std::strchr(at, '%')) {
    if (at[1] == '%') {
      at += 2;
      continue;
    }
    at = EndOfDoubleConversion(at + 1);
    if (at == nullptr || ++conversions > 1) return false;
  }
  return true;
}

__extension__ using WideInteger = unsigned __int128;

/// The integer nearest to mantissa * 2^-shift * 10^places, which is below 2^64; the even one of two. \p shift is 1 to
/// 63.
std::uint64_t RoundScaled(std::uint64_t mantissa, int shift, int places) {
  WideInteger const exact = WideInteger{mantissa} * PowerOf10(places);
  auto const whole = static_cast<std::uint64_t>(exact >> shift);
  auto const rest = static_cast<std::uint64_t>(exact) & ((std::uint64_t{1} << shift) - 1);
  std::uint64_t const half = std::uint64_t{1} << (shift - 1);
  return whole + ((rest > half || (rest == half && whole % 2 != 0)) ? 1 : 0);
}

// Prints `value` * 10^-`places`, which must have no trailing zeros after the point, and returns the end.
char* PrintScaled(char* to, std::uint64_t value, int places) {
  std::uint64_t const unit = PowerOf10(places);
  to = std::to_chars(to, to + kMostPower + 1, value / unit).ptr;
  if (places == 0) return to;
  *to = '.';
  std::uint64_t fraction = value % unit;
  for (char* digit = to + places; digit != to; --digit, fraction /= 10) *digit = static_cast<char>('0' + fraction % 10);
  return to + places + 1;
}

constexpr double kExactPowersOf10[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                       1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// A magnitude as digits / 10^places, without zeros at the end of the fraction.
struct ScaledDouble {
  std::uint64_t digits = 0;
  int places = -1;  ///< below 0 for none
};

// Rounds the magnitude of a value that is at least 2^-10 and has at most `precision` digits before the point to as many
// digits, by exact integers, which is faster than to_chars() with a precision. Returns none for other values.
ScaledDouble ScaleCommonDouble(double value, int precision) {
  constexpr int kFractionBits = 52;
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  int const exponent = static_cast<int>(bits >> kFractionBits & 0x7FF) - 1023;
  if (exponent < -10 || exponent >= kFractionBits) return {};
  // The number of digits before the point minus one is the decimal logarithm, which is this value or one more.
  int const logarithm = exponent < 0 ? -((-exponent * 1233 + 4095) / 4096) : exponent * 1233 / 4096;
  int places = precision - 1 - logarithm;
  if (places < 1 || places > kMostPower) return {};
  std::uint64_t const hidden = std::uint64_t{1} << kFractionBits;
  std::uint64_t const mantissa = (bits & (hidden - 1)) | hidden;
  std::uint64_t digits = RoundScaled(mantissa, kFractionBits - exponent, places);
  if (digits >= PowerOf10(precision)) {
    digits = RoundScaled(mantissa, kFractionBits - exponent, --places);
  }
  for (; places > 8 && digits % 100000000 == 0; places -= 8) digits /= 100000000;
  for (; places > 0 && digits % 10 == 0; --places) digits /= 10;
  return {digits, places};
}

// Prints the magnitude of `value` with its sign and returns the end.
char* PrintSigned(char* to, double value, ScaledDouble const& magnitude) {
  if (value < 0) *to++ = '-';
  return PrintScaled(to, magnitude.digits, magnitude.places);
}

[[noreturn]] void ThrowBadFormat(char const* format) {
  throw CQnException(FormatString("The format [%s] does not print one floating-point number", format));
}

}  // namespace

NumberStatus ParseInteger(std::string_view text, std::int32_t& value) { return ParseSigned(text, value); }
NumberStatus ParseInteger(std::string_view text, std::uint32_t& value) { return ParseUnsigned(text, value); }
NumberStatus ParseInteger(std::string_view text, std::int64_t& value) { return ParseSigned(text, value); }
NumberStatus ParseInteger(std::string_view text, std::uint64_t& value) { return ParseUnsigned(text, value); }

static_assert(FLT_EVAL_METHOD == 0, "a quotient must be rounded once, to a double");

// Both operands of the single division are exact, so its result is the nearest double (IEEE 754).
bool ParseShortDouble(std::string_view text, double& value) {
  char const* at = text.data();
  char const* const end = at + text.size();
  constexpr std::ptrdiff_t kMost = 15;
  bool const isNegative = at != end && *at == '-';
  if (isNegative) ++at;
  if (end - at > kMost + 1) return false;
  std::uint64_t digits = 0;
  std::ptrdiff_t count = 0;
  char const* point = nullptr;
  for (; at != end; ++at) {
    if (IsDigit(*at)) {
      digits = digits * 10 + static_cast<std::uint64_t>(*at - '0');
      ++count;
    } else if (*at == '.' && point == nullptr) {
      point = at;
    } else {
      return false;
    }
  }
  if (count == 0 || count > kMost) return false;
  double const magnitude = static_cast<double>(digits) / kExactPowersOf10[point != nullptr ? end - point - 1 : 0];
  value = isNegative ? -magnitude : magnitude;
  return true;
}

NumberStatus ParseDouble(std::string_view text, double& value) {
  if (ParseShortDouble(text, value)) return NumberStatus::Ok;
  if (ParsePlainDouble(text, value)) return NumberStatus::Ok;
  char* stop = nullptr;
  double const parsed = strtod_l(text.data(), &stop, NumberLocale());
  if (*stop != '\0') return NumberStatus::Malformed;
  value = parsed;
  return NumberStatus::Ok;
}

char* PutGeneral(char (&room)[kGeneralRoom], double value, int precision) {
  ScaledDouble const scaled = ScaleCommonDouble(value, precision);
  if (scaled.places >= 0) return PrintSigned(room, value, scaled);
  return std::to_chars(room, room + sizeof room, value, std::chars_format::general, precision).ptr;
}

std::string GeneralText(double value, int precision) {
  char room[kGeneralRoom];
  return std::string(room, PutGeneral(room, value, precision));
}

bool IsShortestFormat(char const* format) {
  return format == kShortestFormat || (format != nullptr && std::strcmp(format, kShortestFormat) == 0);
}

// A float is read by way of a double. For a few shortest texts, such as 7.038531e-26, rounding twice gives the
// neighbouring float; nine digits are always near enough.
char* PutShortest(char (&room)[kGeneralRoom], float value) {
  char* const end = std::to_chars(room, room + sizeof room, value).ptr;
  double wide = 0;
  ParseDouble(std::string_view(room, static_cast<std::size_t>(end - room)), wide);
  if (static_cast<float>(wide) == value) return end;
  return std::to_chars(room, room + sizeof room, value, std::chars_format::scientific, 8).ptr;
}

// Fifteen digits tell apart all texts that have no more, so if they read back, no shorter text does. This is faster
// than to_chars(). The quotient is what reading gives: both operands are exact, so it is rounded once (IEEE 754). An
// exponent can be shorter only for integers.
char* PutShortest(char (&room)[kGeneralRoom], double value) {
  constexpr int kDigits = std::numeric_limits<double>::digits10;
  ScaledDouble const scaled = ScaleCommonDouble(value, kDigits);
  bool const isCommon = scaled.places > 0 || (scaled.places == 0 && std::fabs(value) < 1e5);
  if (isCommon && scaled.places <= kDigits &&
      static_cast<double>(scaled.digits) / kExactPowersOf10[scaled.places] == std::fabs(value)) {
    return PrintSigned(room, value, scaled);
  }
  return std::to_chars(room, room + sizeof room, value).ptr;
}

std::string FixedText(double value, int precision) {
  char buffer[std::numeric_limits<double>::max_exponent10 + 1016];
  auto const end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, precision);
  return std::string(buffer, end.ptr);
}

std::string FormattedText(char const* format, double value, std::size_t bufferSize) {
  if (!PrintsOneDouble(format)) ThrowBadFormat(format);
  char buffer[64];
  NumberLocaleScope const scope;
  if (std::snprintf(buffer, std::min(bufferSize, sizeof buffer), format, value) < 0) ThrowBadFormat(format);
  return buffer;
}

}  // namespace Quillon9
