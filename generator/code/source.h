#pragma once

#include "code/text.h"
#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// Append what the source of \p plan defines, after its first line.
void PrintSource(Text& text, Plan::Plan const& plan);

}  // namespace Quillon9Generator::Code
