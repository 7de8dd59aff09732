#pragma once

#include <string>

#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// What became of the components of a schema in \p plan, as a table of plain text for people, `diff` and `grep`: the
/// functions for global elements, the enumerations with their texts, and the classes with their members. Each
/// line has the full name of what it describes. The same plan gives the same octets.
std::string Report(Plan::Plan const& plan);

}  // namespace Quillon9Generator::Code
