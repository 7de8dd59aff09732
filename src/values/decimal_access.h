#pragma once

#include <cstdint>

#include "quillon9/values/decimal.h"

namespace Quillon9 {

/// The only friend of CDecimal: what the rules of XML Schema need and the operators of the class decide otherwise.
struct DecimalAccess {
  /// Whether the value is in its short form, which is normal.
  static bool IsShort(CDecimal const& value) { return value.m_parts == nullptr; }

  /// \p units / 10^\p divider, with a minus sign if \p isNegative. \p divider is 1 to kMostPower, and there is no zero at
  /// the end of the fraction, but for the only digit.
  static CDecimal Make(bool isNegative, std::uint64_t units, std::int32_t divider) {
    CDecimal value;
    value.SetShort(isNegative ? -1 : 1, units, divider);
    return value;
  }

  /// Below 0, 0 or above 0 as the number \p left is below, equal to or above \p right. Zeros are equal whatever their
  /// signs, and a fraction that has been rounded up to one counts as one.
  static int Compare(CDecimal const& left, CDecimal const& right) {
    if (!left.IsShortWith(right)) return CompareLong(left, right);
    return left.m_units == 0 && right.m_units == 0 ? 0 : left.OrderShort(right);
  }

 private:
  static int CompareLong(CDecimal const& left, CDecimal const& right);
};

}  // namespace Quillon9
