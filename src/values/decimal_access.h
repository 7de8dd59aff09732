#pragma once

#include "quillon9/values/decimal.h"

namespace Quillon9 {

/// The only friend of CDecimal: what the rules of XML Schema need and the operators of the class decide otherwise.
struct DecimalAccess {
  /// Whether the value is in its short form, which is normal.
  static bool IsShort(CDecimal const& value) { return value.m_parts == nullptr; }

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
