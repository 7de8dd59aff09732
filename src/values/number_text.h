#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace Quillon9 {

/// Whether \p c is an ASCII digit.
inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// The outcome of reading a number.
enum class NumberStatus {
  Ok,
  OutOfRange,  ///< the number does not fit; the text after it was not examined
  Malformed,   ///< characters are left over
};

/// Read a base 10 integer as strtol, strtoul, strtoll and strtoull do where a long has 32 bits, whatever its width
/// here: leading white space (that of the "C" locale) and one sign are accepted, a minus sign on an unsigned kind wraps
/// round, and a text without digits is 0. A zero byte ends the text. \p value is set only for NumberStatus::Ok.
NumberStatus ParseInteger(std::string_view text, std::int32_t& value);
NumberStatus ParseInteger(std::string_view text, std::uint32_t& value);
NumberStatus ParseInteger(std::string_view text, std::int64_t& value);
NumberStatus ParseInteger(std::string_view text, std::uint64_t& value);

/// ParseInteger() for up to nine digits, which may have a minus sign in front if the kind is signed. False for any
/// other text.
template <class Integer>
bool ParseShortInteger(std::string_view text, Integer& value) {
  bool const isNegative = std::is_signed_v<Integer> && !text.empty() && text[0] == '-';
  if (isNegative) text.remove_prefix(1);
  if (text.empty() || text.size() > 9) return false;
  std::int32_t number = 0;
  for (char const c : text) {
    if (!IsDigit(c)) return false;
    number = number * 10 + (c - '0');
  }
  value = static_cast<Integer>(isNegative ? -number : number);
  return true;
}

/// A faster ParseDouble() for up to 15 digits, optionally with a minus sign and a point. False for any other text.
bool ParseShortDouble(std::string_view text, double& value);

/// Read a floating-point number as strtod does in the "C" locale, with all its forms. A zero byte ends the text, and a
/// text without digits is 0; a text other than a plain number must be followed by a zero. A number out of range is not
/// a failure: it gives infinity, zero or a subnormal number.
/// \p value is set only for NumberStatus::Ok.
NumberStatus ParseDouble(std::string_view text, double& value);

/// Print as "%d", "%u", "%lld" or "%llu" does.
template <class Integer>
std::string IntegerText(Integer value) {
  char buffer[24];
  return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

/// Print as "%.*g" does in the "C" locale; \p precision is 1 to 17.
std::string GeneralText(double value, int precision);

/// Print the same text into \p room. Returns the end of the text.
constexpr std::size_t kGeneralRoom = 64;
char* PutGeneral(char (&room)[kGeneralRoom], double value, int precision);

/// Whether \p format is kShortestFormat or a copy of it; false for null.
bool IsShortestFormat(char const* format);

/// Print the shortest text that reads back as the same finite value into \p room. Returns the end of the text.
char* PutShortest(char (&room)[kGeneralRoom], float value);
char* PutShortest(char (&room)[kGeneralRoom], double value);

/// Print as "%.*f" does in the "C" locale, so a \p precision of 6 prints like "%f"; \p precision is 0 to 1000.
std::string FixedText(double value, int precision = 6);

/// Print \p value with the printf format \p format in the "C" locale into a buffer of \p bufferSize bytes (at most 64),
/// including its terminating zero byte; text that does not fit is cut off.
/// \throws CQnException "The format [%s] does not print one floating-point number" when \p format would read anything
///         but one double (printf would then read arguments that do not exist) or libc refuses it.
std::string FormattedText(char const* format, double value, std::size_t bufferSize);

}  // namespace Quillon9
