#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/values/conversions.h"

namespace Quillon9 {

/// CWhitespaceUtils::ApplyRule() for a text that is no string. Like \p text, the result has a zero behind it.
std::string_view ApplyWhitespaceRule(CWhitespaceUtils::WhitespaceRule rule, std::string_view text,
                                     std::string& scratch);

/// The `...FromString` of CConversions for a text that is no string and has a zero behind it.
namespace TextConversions {

#define QN_VALUE_KIND(number, stem, Access, Held) \
  Held stem##FromText(std::string_view text, CWhitespaceUtils::WhitespaceRule rule);
#include "values/item_types.def"

}  // namespace TextConversions

}  // namespace Quillon9
