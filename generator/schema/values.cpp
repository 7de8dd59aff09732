#include "schema/values.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/values/schema_values.h"
#include "schema/lexical.h"
#include "schema/moments.h"

namespace Quillon9Generator::Schema {

namespace {

using Quillon9::CSchemaValues;
using Quillon9::ItemType;
using Quillon9::QnVariant;

/// The kind in which the library has the values of a primitive type that is more than a text, apart from dates, times
/// and durations; none for the others.
std::optional<ItemType> KindOf(BuiltIn primitive) {
  switch (primitive) {
    case BuiltIn::Boolean: return Quillon9::ItemType_boolean;
    case BuiltIn::Decimal: return Quillon9::ItemType_decimal;
    case BuiltIn::Float: return Quillon9::ItemType_r4;
    case BuiltIn::Double: return Quillon9::ItemType_r8;
    case BuiltIn::HexBinary: return Quillon9::ItemType_hexBinary;
    case BuiltIn::Base64Binary: return Quillon9::ItemType_base64Binary;
    default: return std::nullopt;
  }
}

/// The value of \p text; none if it is not in the lexical space.
QnVariant Read(std::string_view text, ItemType kind) {
  try {
    return CSchemaValues::FromText(text, kind, Quillon9::CWhitespaceUtils::WhitespaceRule_Collapse);
  } catch (Quillon9::CQnInvalidValueException const&) {
    return QnVariant();
  }
}

Order Compare(QnVariant const& a, QnVariant const& b) {
  if (!a.IsValid() || !b.IsValid()) return Order::Incomparable;
  switch (CSchemaValues::Compare(a, b)) {
    case Quillon9::ValueOrder_Equal: return Order::Equal;
    case Quillon9::ValueOrder_Less: return Order::Less;
    case Quillon9::ValueOrder_Greater: return Order::Greater;
    case Quillon9::ValueOrder_Indeterminate: break;
  }
  return Order::Incomparable;
}

}  // namespace

BuiltIn PrimitiveOf(SimpleType const& type) {
  if (type.variety != Variety::Atomic) return BuiltIn::AnySimpleType;
  SimpleType const* each = &type;
  while (each->base != nullptr && each->base->builtIn != BuiltIn::AnySimpleType) each = each->base;
  return each->builtIn;
}

bool IsValueOf(BuiltIn primitive, std::string_view text) {
  if (std::optional<ItemType> const kind = KindOf(primitive)) return Read(text, *kind).IsValid();
  switch (primitive) {
    case BuiltIn::AnyURI: return IsUri(text);
    case BuiltIn::QName:
    case BuiltIn::Notation: return IsQName(text);
    case BuiltIn::Duration: return IsDuration(text);
    default: return !HasMoments(primitive) || IsMoment(primitive, text);
  }
}

Order Compare(BuiltIn primitive, std::string_view a, std::string_view b) {
  if (std::optional<ItemType> const kind = KindOf(primitive)) return Compare(Read(a, *kind), Read(b, *kind));
  if (HasMoments(primitive)) return CompareMoments(primitive, a, b);
  if (primitive == BuiltIn::Duration) return CompareDurations(a, b);
  return a == b ? Order::Equal : Order::Incomparable;
}

long LengthOf(BuiltIn primitive, std::string_view value) {
  if (primitive == BuiltIn::HexBinary || primitive == BuiltIn::Base64Binary) {
    return static_cast<long>(Read(value, *KindOf(primitive)).GetHexBinary().GetLength());
  }
  // Each character has one octet that does not continue another.
  return std::count_if(value.begin(), value.end(), [](char c) { return (c & 0xC0) != 0x80; });
}

DigitCount DigitsOf(std::string_view decimal) {
  QnVariant const value = Read(decimal, Quillon9::ItemType_decimal);
  if (!value.IsValid()) return {};
  std::string const text =
      CSchemaValues::ToText(value);  // without zeros that do not count, but for one before the point
  std::size_t const point = std::min(text.find('.'), text.size());
  std::size_t const first = std::min(text.find_first_of("123456789"), point);
  std::size_t const fraction = text.size() - std::min(point + 1, text.size());
  return {std::max(1L, static_cast<long>(point - first + fraction)), static_cast<long>(fraction)};
}

}  // namespace Quillon9Generator::Schema
