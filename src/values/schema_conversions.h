#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "quillon9/text/whitespace.h"
#include "quillon9/values/big_integer.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/decimal.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/variant.h"

namespace Quillon9 {

/// The values of numbers, truth values and binary data in their lexical forms (W3C XML Schema Part 2, 3.2 and 3.3).
/// White space around a text is not part of any form: it has been removed. Dates, times and durations are in
/// schema_moments.h.
///
/// Each function that reads fails as CSchemaValues::FromText() does.
namespace SchemaConversions {

/// CSchemaValues::FromText(), into \p value: for strings, and for values of other kinds.
///@{
void SetNormalized(QnVariant& value, std::string_view text, CWhitespaceUtils::WhitespaceRule rule);
void ConvertOther(QnVariant& value, std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);
///@}

/// CSchemaValues::FromText(), into \p value.
inline void Convert(QnVariant& value, std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
  if (type == ItemType_string) return SetNormalized(value, text, rule);
  ConvertOther(value, text, type, rule);
}

/// \p type names the type in a failure.
template <class Integer>
Integer IntegerFromText(std::string_view text, ItemType type);
CBigInteger IntegerFromText(std::string_view text);
CDecimal DecimalFromText(std::string_view text);

/// The number nearest to the one that the text stands for, the even one of two.
///@{
float FloatFromText(std::string_view text);
double DoubleFromText(std::string_view text);
///@}

/// The shortest text that reads back as the same value.
///@{
std::string FloatText(float value);
std::string FloatText(double value);
///@}
std::string DecimalText(CDecimal const& value);

bool BooleanFromText(std::string_view text);

CBinaryData HexBinaryFromText(std::string_view text);
/// White space may stand anywhere in base64 text, however much of it.
CBinaryData Base64BinaryFromText(std::string_view text);

}  // namespace SchemaConversions

}  // namespace Quillon9
