#pragma once

#include <string_view>

#include "quillon9/values/variant.h"

namespace Quillon9 {

/// The only friend of the variant: what reading does so often that it must not make a string of each text.
struct VariantAccess {
  /// QnVariant::FromString() for a text that is followed by a zero.
  static void FromText(QnVariant& value, std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
    value.FromText(text, type, rule);
  }
};

}  // namespace Quillon9
