#pragma once

#include <string>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// Return whether \p wildcard allows names of the namespace, which is empty for none.
bool Allows(Wildcard const& wildcard, std::string const& ns);
/// Return whether \p wide allows each namespace that \p narrow allows.
bool IsSubset(Wildcard const& narrow, Wildcard const& wide);
/// Return whether some namespace is allowed by both.
bool Overlap(Wildcard const& first, Wildcard const& second);
/// Return whether what \p narrow allows is validated at least as strictly as by \p wide.
bool IsAsStrict(Wildcard const& narrow, Wildcard const& wide);

}  // namespace Quillon9Generator::Schema
