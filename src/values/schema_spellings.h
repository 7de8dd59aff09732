#pragma once

#include <functional>
#include <string>

#include "quillon9/values/item_type.h"

namespace Quillon9 {

/// Other texts of the value that \p text, from CSchemaValues::ToText(), stands for: with up to eighteen zeros in front of
/// a number and after its point, floating-point numbers with and without an exponent, "1" for "true", lower-case
/// hexadecimal digits, fractions of zero seconds, and "Z" for "+00:00". A pattern may demand one of them, as that of an
/// amount demands two digits after the point.
/// \returns the first one that \p accepts returns true for; \p text itself without one.
std::string FirstSpelling(std::string const& text, ItemType type,
                          std::function<bool(std::string const&)> const& accepts);

}  // namespace Quillon9
