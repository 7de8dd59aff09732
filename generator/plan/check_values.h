#pragma once

#include <string>

#include "plan/plan.h"
#include "schema/diagnostics.h"

namespace Quillon9Generator::Plan {

/// Check that each default and fixed value of \p plan is a value of its type. One that is not is an error; one that the
/// library cannot hold is dropped with a warning. Warns of values that are kept as text, but mean more than that.
void CheckValues(Plan& plan, Schema::Diagnostics& diagnostics);

/// Whether the library reads \p text as a value of the kind.
bool IsReadable(Quillon9::ItemType kind, std::string const& text);

}  // namespace Quillon9Generator::Plan
