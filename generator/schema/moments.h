#pragma once

#include <string_view>

#include "schema/values.h"

/// Dates, times and durations (https://www.w3.org/TR/xmlschema-2/#dateTime, #duration).
namespace Quillon9Generator::Schema {

/// Return whether the values of \p primitive are dates, times or parts of them.
bool HasMoments(BuiltIn primitive);
bool IsMoment(BuiltIn primitive, std::string_view text);
Order CompareMoments(BuiltIn primitive, std::string_view a, std::string_view b);

bool IsDuration(std::string_view text);
Order CompareDurations(std::string_view a, std::string_view b);

}  // namespace Quillon9Generator::Schema
