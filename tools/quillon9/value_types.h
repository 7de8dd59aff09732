#pragma once

#include <string>

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// The type under which CFastInfosetContext::SetSuggestedValues() makes the text \p value shortest, of those that give
/// the very same text back to any reader; ItemType_string when none makes it shorter.
Quillon9::ItemType ShortestType(std::string const& value);

}  // namespace Quillon9Tool
