#pragma once

#include <string>
#include <string_view>

#include "quillon9/values/schema_values.h"
#include "quillon9/values/variant.h"
#include "values/rules_in_use.h"
#include "values/schema_conversions.h"
#include "values/variant_access.h"

namespace Quillon9 {

/// Conversions by the rules in use.
struct RuledValues {
  /// The value of a text that is followed by a zero.
  static void FromText(QnVariant& value, std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
    if (RulesInUse::AreSchema()) {
      SchemaConversions::Convert(value, text, type, rule);
    } else {
      VariantAccess::FromText(value, text, type, rule);
    }
  }

  /// The value of a text that need not be followed by a zero.
  static void FromPart(QnVariant& value, std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
    if (RulesInUse::AreSchema()) {
      SchemaConversions::Convert(value, text, type, rule);
    } else {
      value.FromString(std::string(text), type, rule);
    }
  }

  /// \p format counts under the classic rules only.
  static std::string ToText(QnVariant const& value, char const* format) {
    return RulesInUse::AreSchema() ? CSchemaValues::ToText(value) : value.ToString(format);
  }
};

}  // namespace Quillon9
