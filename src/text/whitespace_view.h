#pragma once

#include <string>
#include <string_view>

#include "quillon9/text/whitespace.h"

namespace Quillon9 {

/// CWhitespaceUtils::ApplyRule() for text that is held as a view. The result views either \p text or \p scratch; a zero
/// byte follows it where one follows \p text.
std::string_view ApplyWhitespaceRule(CWhitespaceUtils::WhitespaceRule rule, std::string_view text,
                                     std::string& scratch);

}  // namespace Quillon9
