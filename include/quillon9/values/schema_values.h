#pragma once

#include <string>
#include <string_view>

#include "quillon9/export.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/date_time.h"
#include "quillon9/values/date_time_span.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/schema_form.h"
#include "quillon9/values/variant.h"

namespace Quillon9 {

/// How one value lies to another. The numbers are those of CDateTime::CompareTo().
enum ValueOrder : int {
  ValueOrder_Equal = 0,         ///< the same value
  ValueOrder_Less = 1,          ///< the left value is below the right one
  ValueOrder_Greater = 2,       ///< the left value is above the right one
  ValueOrder_Indeterminate = 3  ///< neither: different values of types without an order, or values that it leaves open
};

/// Values as W3C XML Schema Part 2, second edition (https://www.w3.org/TR/xmlschema-2/) has them: what reading and
/// writing use under ValueRules_XmlSchema. Static functions without state: any thread may call them.
class QUILLON9_API CSchemaValues {
 public:
  /// The value of \p text, which is UTF-8 or in the local code page like all text of the library, under the lexical form
  /// of its type. The rule is applied to strings only; the white space of all other kinds is collapsed, as their types
  /// demand.
  /// \throws CQnInvalidValueException "The value [%s] is not a valid %s", with the name of the type in XML Schema, for a
  ///         text that is not in the lexical space; "The value [%s] is too large for a %s" for a value that the class of
  ///         the kind cannot hold. CQnException "Invalid Type %d to convert to string" for a kind that is no value.
  static QnVariant FromText(std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);

  /// A text that FromText() reads as the same value, for numbers and dates the canonical one where XML Schema has one
  /// and it is not longer.
  /// \throws CQnInvalidValueException for a value that no text of its type stands for, such as a date without a day.
  static std::string ToText(QnVariant const& value);

  /// Compare two values of one kind. Strings, binary data and booleans are equal or indeterminate; NaN equals NaN and
  /// is indeterminate with every other number. Dates and times are compared by the partial order of section 3.2.7.4,
  /// durations by that of 3.2.6.2.
  /// \throws CQnInvalidParamException "Values of different kinds have no order".
  ///@{
  static ValueOrder Compare(QnVariant const& left, QnVariant const& right);
  static ValueOrder Compare(CDateTime const& left, CDateTime const& right);
  static ValueOrder Compare(CDateTimeSpan const& left, CDateTimeSpan const& right);
  ///@}

  /// Whether \p text, in UTF-8 and with its white space normalised, is a value of the types with this form.
  static bool HasForm(std::string_view text, SchemaForm form);
};

}  // namespace Quillon9
