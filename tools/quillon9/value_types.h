#pragma once

#include <string>

#include "quillon9/quillon9.h"

namespace Quillon9Tool {

/// Return the type with which CFastInfosetContext::SetSuggestedValues() encodes the text \p value in the fewest octets,
/// among those that give exactly the same text back to any reader; ItemType_string if none makes it shorter.
Quillon9::ItemType ShortestType(std::string const& value);

}  // namespace Quillon9Tool
