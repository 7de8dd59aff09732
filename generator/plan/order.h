#pragma once

#include "plan/plan.h"

namespace Quillon9Generator::Plan {

/// Put the classes into an order in which C++ can define them, a base before what derives from it, and number the
/// properties. A nested class whose base can only be defined after the class around it leaves that one.
void OrderClasses(Plan& plan);

}  // namespace Quillon9Generator::Plan
