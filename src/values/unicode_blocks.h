#pragma once

#include <string_view>

#include "values/character_ranges.h"

namespace Quillon9 {

/// The characters of a block of Unicode by the name that "\p{Is...}" uses, without "Is". The blocks are those of W3C
/// XML Schema Part 2, appendix F.1.1. Empty if there is none of this name.
CharacterRanges UnicodeBlock(std::string_view name);

}  // namespace Quillon9
