#pragma once

#include "quillon9/values/date_time.h"

namespace Quillon9 {

/// Compare two values of one type as W3C XML Schema Part 2, 3.2.7.4 says, months included. The result is that of
/// CDateTime::CompareTo().
/// \throws nothing for two values of the same type.
int OrderOfDates(CDateTime const& left, CDateTime const& right);

}  // namespace Quillon9
