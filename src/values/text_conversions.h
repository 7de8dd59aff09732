#pragma once

#include <cstdint>
#include <string_view>

#include "quillon9/values/conversions.h"
#include "text/whitespace_view.h"

namespace Quillon9 {

/// The `...FromString` of CConversions for text held as string_view that is followed by a zero.
namespace TextConversions {

#define QN_VALUE_KIND(number, stem, Access, Held) \
  Held stem##FromText(std::string_view text, CWhitespaceUtils::WhitespaceRule rule);
#include "values/item_types.def"

}  // namespace TextConversions

}  // namespace Quillon9
