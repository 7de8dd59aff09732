#pragma once

#include <cstring>
#include <string>
#include <type_traits>

#include "quillon9/values/big_integer.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/schema_values.h"
#include "values/decimal_access.h"
#include "values/schema_moments.h"

namespace Quillon9 {

/// How two values lie to each other in their type (W3C XML Schema Part 2, 3.2), for each class of values of QnVariant.
namespace SchemaOrder {

inline ValueOrder EqualOrNone(bool isEqual) { return isEqual ? ValueOrder_Equal : ValueOrder_Indeterminate; }

inline ValueOrder FromNumber(int order) {
  return order == 0 ? ValueOrder_Equal : order < 0 ? ValueOrder_Less : ValueOrder_Greater;
}

/// For numbers. NaN is the only value that does not equal itself.
template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
ValueOrder Of(Number left, Number right) {
  if (left < right) return ValueOrder_Less;
  if (left > right) return ValueOrder_Greater;
  if constexpr (std::is_floating_point_v<Number>) {
    if (left != right) return EqualOrNone(left != left && right != right);
  }
  return ValueOrder_Equal;
}
inline ValueOrder Of(bool left, bool right) { return EqualOrNone(left == right); }
inline ValueOrder Of(char left, char right) { return EqualOrNone(left == right); }

inline ValueOrder Of(std::string const& left, std::string const& right) { return EqualOrNone(left == right); }

/// Without regard to what CBinaryData tells apart: no value, and a value without octets.
inline ValueOrder Of(CBinaryData const& left, CBinaryData const& right) {
  std::size_t const length = left.GetLength();
  if (length != right.GetLength()) return ValueOrder_Indeterminate;
  return EqualOrNone(length == 0 || std::memcmp(left.GetData(), right.GetData(), length) == 0);
}

/// There is one zero, although the class orders two.
inline ValueOrder Of(CBigInteger const& left, CBigInteger const& right) {
  if (left > right) return left == right ? ValueOrder_Equal : ValueOrder_Greater;
  return left == right ? ValueOrder_Equal : ValueOrder_Less;
}
inline ValueOrder Of(CDecimal const& left, CDecimal const& right) {
  return FromNumber(DecimalAccess::Compare(left, right));
}

inline ValueOrder Of(CDateTime const& left, CDateTime const& right) { return OrderOfMoments(left, right); }
inline ValueOrder Of(CDateTimeSpan const& left, CDateTimeSpan const& right) { return OrderOfDurations(left, right); }

/// Whether a value is certainly below another one, or below or equal to it.
///@{
template <class Value>
bool IsBelow(Value const& left, Value const& right) {
  if constexpr (std::is_arithmetic_v<Value>) return left < right;
  return Of(left, right) == ValueOrder_Less;
}
template <class Value>
bool IsAtMost(Value const& left, Value const& right) {
  if constexpr (std::is_integral_v<Value>) return left <= right;
  ValueOrder const order = Of(left, right);
  return order == ValueOrder_Less || order == ValueOrder_Equal;
}
///@}

}  // namespace SchemaOrder

}  // namespace Quillon9
