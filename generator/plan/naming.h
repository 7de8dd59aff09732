#pragma once

#include "plan/plan.h"

namespace Quillon9Generator::Plan {

/// Give everything in \p plan its name in C++, unique in its scope, from the names of the schema that stand in their
/// place. The classes are in order.
void GiveNames(Plan& plan);

}  // namespace Quillon9Generator::Plan
