#pragma once

#include "schema/diagnostics.h"
#include "schema/node.h"

namespace Quillon9Generator::Schema {

/// Return whether \p node belongs to the schema for a reader of XML Schema 1.0: its attributes vc:minVersion and
/// vc:maxVersion allow that version (XML Schema 1.1 Part 1, 4.2.2). \p diagnostics gets a warning for a node that does
/// not, and for conditions of other kinds, which are not evaluated.
bool IsForThisVersion(Node const& node, Diagnostics& diagnostics);

}  // namespace Quillon9Generator::Schema
