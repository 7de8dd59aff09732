#pragma once

#include <cstdint>
#include <string>

#include "quillon9/export.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/big_integer.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/date_time.h"
#include "quillon9/values/date_time_span.h"
#include "quillon9/values/decimal.h"

namespace Quillon9 {

/// A format beside those of printf, accepted wherever a format is: a `float` or `double` is printed by the shortest text
/// that reads back as the same value ("0.1", "1e+22"), a decimal as without a format. NaN, "INF" and "-INF" are printed
/// as always. A duration of zero is printed as "PT0S", and a single octet in base64 with both characters of its padding,
/// as W3C XML Schema Part 2 has them. A copy of this text means the same.
inline constexpr char const* kShortestFormat = "%shortest";

/// Converts primitive values to text and back, with a pair of functions for each ItemType. The lexical forms are close
/// to W3C XML Schema Part 2; where they differ, this documentation holds.
///
/// Every `...FromString` applies its whitespace rule first, and throws CQnException "Unknown WhitespaceRule" when the
/// rule is not an enumerator. Numbers have a decimal point and no grouping, whatever the process locale is. Static
/// functions without state: any thread may call them. A failed conversion changes nothing.
///
/// The integer parsers accept leading white space (space and the characters 9 to 13) and one sign, and read an empty
/// text as 0. A minus sign on an unsigned kind wraps round: "-1" is the largest ui4 or ui8. A zero byte ends a number;
/// the text after it is ignored.
class QUILLON9_API CConversions {
 public:
  /// How to treat white space before a text is converted.
  using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

  /// A copy.
  static std::string stringToString(std::string const& value);
  /// The text after \p rule has been applied.
  static std::string stringFromString(std::string const& text, WhitespaceRule rule);

  /// Print in base 10, with a minus sign where needed and no leading zeros.
  ///@{
  static std::string i8ToString(std::int64_t value);
  static std::string i4ToString(std::int32_t value);
  static std::string i2ToString(std::int16_t value);
  static std::string i1ToString(std::int8_t value);
  static std::string ui8ToString(std::uint64_t value);
  static std::string ui4ToString(std::uint32_t value);
  static std::string ui2ToString(std::uint16_t value);
  static std::string ui1ToString(std::uint8_t value);
  ///@}

  /// Parse a 64-bit integer in base 10.
  /// \throws CQnInvalidValueException "The value [%s] is to large to fit in a i8" (tested first), "The value [%s]
  ///         can not be converted to a i8" when characters are left over.
  static std::int64_t i8FromString(std::string const& text, WhitespaceRule rule);
  /// Parse a 32-bit integer in base 10.
  /// \throws CQnInvalidValueException as i8FromString() does, with "i4".
  static std::int32_t i4FromString(std::string const& text, WhitespaceRule rule);
  /// Parse with i4FromString() and check the range.
  /// \throws CQnInvalidValueException whatever i4FromString() throws, so with "i4"; then "The value [%s] is to large to
  ///         fit in a i2" below -32,768 and above 32,767.
  static std::int16_t i2FromString(std::string const& text, WhitespaceRule rule);
  /// Parse with i4FromString() and check the range.
  /// \throws CQnInvalidValueException whatever i4FromString() throws, so with "i4"; then "The value [%s] is to large to
  ///         fit in a i1" below -128 and above 127.
  static std::int8_t i1FromString(std::string const& text, WhitespaceRule rule);
  /// Parse an unsigned 64-bit integer in base 10.
  /// \throws CQnInvalidValueException as i8FromString() does, with "ui8".
  static std::uint64_t ui8FromString(std::string const& text, WhitespaceRule rule);
  /// Parse an unsigned 32-bit integer in base 10.
  /// \throws CQnInvalidValueException as i8FromString() does, with "ui4".
  static std::uint32_t ui4FromString(std::string const& text, WhitespaceRule rule);
  /// Parse with ui4FromString(), so that small negative numbers wrap round to large ones and do not fit.
  /// \throws CQnInvalidValueException whatever ui4FromString() throws, so with "ui4"; then "The value [%s] is to large
  ///         to fit in a ui2" above 65,535.
  static std::uint16_t ui2FromString(std::string const& text, WhitespaceRule rule);
  /// Parse with ui4FromString(), so that small negative numbers wrap round to large ones and do not fit.
  /// \throws CQnInvalidValueException whatever ui4FromString() throws, so with "ui4"; then "The value [%s] is to large
  ///         to fit in a ui1" above 255.
  static std::uint8_t ui1FromString(std::string const& text, WhitespaceRule rule);

  /// Print "NaN", "INF", "-INF" or the number: with the printf format \p format, cutting the result off after 31 bytes,
  /// by its shortest text for kShortestFormat, or with "%.7g" when \p format is null.
  /// \throws CQnException "The format [%s] does not print one floating-point number" when \p format has a conversion
  ///         other than a, e, f and g (upper-case too), or more than one.
  static std::string r4ToString(float value, char const* format = nullptr);
  /// Like r4ToString(), but with the result of \p format cut off after 47 bytes, and "%.16g" when it is null. Sixteen
  /// digits do not always restore the same double; kShortestFormat does.
  static std::string r8ToString(double value, char const* format = nullptr);

  /// Parse as r8FromString() does and round the result to a float, which can make it infinite or zero.
  /// \throws CQnInvalidValueException "The value [%s] can not be converted to a r4".
  static float r4FromString(std::string const& text, WhitespaceRule rule);
  /// Parse a floating-point number. An empty text, "NaN", "-NAN" and "1.#QNAN" are NaN, "INF" and "-INF" the
  /// infinities; any other text is read as by C's strtod, with its wider forms ("inf", "nan", hexadecimal floats,
  /// leading white space). A number out of range gives infinity or zero.
  /// \throws CQnInvalidValueException "The value [%s] can not be converted to a r8".
  static double r8FromString(std::string const& text, WhitespaceRule rule);

  /// "true" or "false".
  static std::string booleanToString(bool value);
  /// Parse "true", "false", "1" or "0" in any case.
  /// \throws CQnInvalidValueException "A Boolean Value read from an XML document was invalid [%s]. Valid values are
  ///         'true', 'false', '1', or '0'", with \p text unchanged.
  static bool booleanFromString(std::string const& text, WhitespaceRule rule);

  /// A text of this one byte; empty for the character 0.
  static std::string charToString(char value);
  /// The only byte of the text.
  /// \throws CQnInvalidValueException "The value [%s] can not be a char as it is either empty of greater than 1
  ///         char long".
  static char charFromString(std::string const& text, WhitespaceRule rule);

  /// CBinaryData::GetAsHexString().
  static std::string hexBinaryToString(CBinaryData const& value);
  /// CBinaryData::SetAsHexString().
  /// \throws CQnException "Invalid char in hex string [%c]".
  static CBinaryData hexBinaryFromString(std::string const& text, WhitespaceRule rule);

  /// CBinaryData::GetAsBase64(); for kShortestFormat as described there. No other \p format means anything.
  /// \throws CQnException for a value that is too long.
  static std::string base64BinaryToString(CBinaryData const& value, char const* format = nullptr);
  /// CBinaryData::SetAsBase64(): bad text gives a value of length 0, not an exception.
  static CBinaryData base64BinaryFromString(std::string const& text, WhitespaceRule rule);

  /// CBigInteger::ToString() and its constructor from text.
  /// \throws CQnInvalidValueException and CQnOverFlowException as CBigInteger::Parse() does.
  ///@{
  static std::string integerToString(CBigInteger const& value);
  static CBigInteger integerFromString(std::string const& text, WhitespaceRule rule);
  ///@}

  /// CDecimal::ToString(), or CDecimal::ToString(int) with a \p format, which is the text of a digit count (0 for a
  /// text without digits); kShortestFormat counts as no format.
  /// \throws CQnInvalidParamException "Invalid number of digits [%d]" for a negative count.
  static std::string decimalToString(CDecimal const& value, char const* format = nullptr);
  /// \throws CQnInvalidValueException and CQnOverFlowException as CDecimal::Parse() does.
  static CDecimal decimalFromString(std::string const& text, WhitespaceRule rule);

  /// Dates and times: CDateTime::ToString("s"), which prints the form of the value's own type, whichever function is
  /// called.
  /// \throws CQnInvalidValueException "Date Not Set".
  ///@{
  static std::string dateToString(CDateTime const& value);
  static std::string timeToString(CDateTime const& value);
  static std::string datetimeToString(CDateTime const& value);
  static std::string yearMonthToString(CDateTime const& value);
  static std::string monthDayToString(CDateTime const& value);
  ///@}
  /// CDateTime::ParseXSDDate(), ParseXSDTime() or ParseXSDDateTime(). The text decides the type of a date:
  /// dateFromString("2001") gives a year.
  /// \throws CQnInvalidValueException as these do.
  ///@{
  static CDateTime dateFromString(std::string const& text, WhitespaceRule rule);
  static CDateTime timeFromString(std::string const& text, WhitespaceRule rule);
  static CDateTime datetimeFromString(std::string const& text, WhitespaceRule rule);
  static CDateTime yearMonthFromString(std::string const& text, WhitespaceRule rule);
  static CDateTime monthDayFromString(std::string const& text, WhitespaceRule rule);
  ///@}

  /// Print "%u", "--%02u" and "---%02u".
  ///@{
  static std::string yearToString(std::uint16_t value);
  static std::string monthToString(std::uint8_t value);
  static std::string dayToString(std::uint8_t value);
  ///@}
  /// Return the field of a text that CDateTime::ParseXSDDate() accepts, in any form that has the field. A year is cut
  /// to 16 bits without sign: -1 is 65,535.
  /// \throws CQnInvalidValueException as ParseXSDDate() does; CQnInvalidStateException for a form without the field.
  ///@{
  static std::uint16_t yearFromString(std::string const& text, WhitespaceRule rule);
  static std::uint8_t monthFromString(std::string const& text, WhitespaceRule rule);
  static std::uint8_t dayFromString(std::string const& text, WhitespaceRule rule);
  ///@}

  /// CDateTimeSpan::ToString(), for kShortestFormat as described there, and CDateTimeSpan::ParseXSDDuration(). No other
  /// \p format means anything.
  /// \throws CQnInvalidValueException as CDateTimeSpan::ParseXSDDuration() does.
  ///@{
  static std::string durationToString(CDateTimeSpan const& value, char const* format = nullptr);
  static CDateTimeSpan durationFromString(std::string const& text, WhitespaceRule rule);
  ///@}
};

}  // namespace Quillon9
