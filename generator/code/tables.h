#pragma once

#include <string>
#include <vector>

#include "code/constants.h"
#include "code/text.h"
#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// Append the rows of the tables of \p cls. \returns the name of its CClassRow.
std::string PrintRows(Text& text, Plan::Class const& cls, Constants& constants);

/// Append the rows of the global elements \p roots. \returns the name of their array.
std::string PrintRoots(Text& text, std::vector<Plan::Root const*> const& roots, Constants& constants);

}  // namespace Quillon9Generator::Code
