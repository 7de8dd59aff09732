#pragma once

#include "schema/diagnostics.h"
#include "schema/grammar_rules.h"
#include "schema/node.h"

namespace Quillon9Generator::Schema {

/// Check which attributes and children of one element of a schema document exclude or need one another
/// (https://www.w3.org/TR/xmlschema-1/#outcome-src).
void CheckRepresentation(Node const& node, Form form, Diagnostics& diagnostics);

}  // namespace Quillon9Generator::Schema
