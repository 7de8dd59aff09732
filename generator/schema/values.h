#pragma once

#include <string_view>

#include "schema/components.h"

/// Values of the primitive types in their lexical forms (https://www.w3.org/TR/xmlschema-2/#built-in-primitive-datatypes).
namespace Quillon9Generator::Schema {

enum class Order { Less, Equal, Greater, Incomparable };

/// Return the primitive type that \p type is derived from; AnySimpleType for lists and unions.
BuiltIn PrimitiveOf(SimpleType const& type);

/// Return whether \p text, whose white space is normalized, has the lexical form of values of a primitive type.
bool IsValueOf(BuiltIn primitive, std::string_view text);

/// Compare two values of a primitive type. Values of types without an order are only equal or incomparable.
Order Compare(BuiltIn primitive, std::string_view a, std::string_view b);

/// Return the length of a value, in the unit of its primitive type: octets or characters.
long LengthOf(BuiltIn primitive, std::string_view value);

/// The digits of a decimal number that count.
struct DigitCount {
  long total = 0;
  long fraction = 0;
};
DigitCount DigitsOf(std::string_view decimal);

}  // namespace Quillon9Generator::Schema
