#pragma once

#include <string_view>

#include "quillon9/values/item_type.h"

namespace Quillon9 {

/// What a conversion by the rules of XML Schema fails with. The functions show the text up to its first zero byte, and
/// the name of the type in XML Schema whose values the kind holds.
namespace SchemaFailures {

/// For a text outside of the lexical space of its type.
[[noreturn]] void ThrowNotValid(std::string_view text, ItemType type);
/// For a text of a value that the class of the kind cannot hold.
[[noreturn]] void ThrowTooLarge(std::string_view text, ItemType type);

}  // namespace SchemaFailures

}  // namespace Quillon9
