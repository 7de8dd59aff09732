#pragma once

#include <string>

#include "quillon9/values/variant.h"

namespace Quillon9Data {

/// What QnVariant::ToString() gives, but for a string without a copy. \p scratch may hold the text; the result lives as
/// long as both.
inline std::string const& PrintedText(Quillon9::QnVariant const& value, char const* format, std::string& scratch) {
  if (value.GetItemType() == Quillon9::ItemType_string) return value.GetString();
  return scratch = value.ToString(format);
}

}  // namespace Quillon9Data
