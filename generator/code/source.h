#pragma once

#include "code/text.h"
#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// Append what the source of \p ns defines, after its first line.
void PrintSource(Text& text, Plan::Namespace const& ns);

}  // namespace Quillon9Generator::Code
