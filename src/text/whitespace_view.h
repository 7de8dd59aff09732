#pragma once

#include <string>
#include <string_view>

#include "quillon9/text/whitespace.h"

namespace Quillon9 {

/// CWhitespaceUtils::ApplyRule() for text held as string_view. The result views either \p text or \p scratch; it is
/// followed by a zero byte if \p text is.
std::string_view ApplyWhitespaceRule(CWhitespaceUtils::WhitespaceRule rule, std::string_view text,
                                     std::string& scratch);

}  // namespace Quillon9
