#pragma once

#include "schema/diagnostics.h"
#include "schema/node.h"

namespace Quillon9Generator::Schema {

/// Check which elements and attributes stand in each element of a schema document, in which order, and the values of
/// attributes as far as they do not depend on references. Afterwards, the other parts may ignore what they do not know.
void CheckGrammar(Node const& schema, Diagnostics& diagnostics);

}  // namespace Quillon9Generator::Schema
