#pragma once

#include <string_view>

namespace Quillon9 {

/// \p text, or an empty text for null. Arguments of public operations may be null.
inline char const* OrEmpty(char const* text) { return text != nullptr ? text : ""; }

inline bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

}  // namespace Quillon9
