#pragma once

#include "plan/plan.h"

namespace Quillon9Generator::Plan {

/// Keep of what elements and types block, and of how classes are derived, only what excludes a class somewhere. The
/// derived classes of each class are known.
void SettleBlocking(Plan& plan);

}  // namespace Quillon9Generator::Plan
