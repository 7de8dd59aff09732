#pragma once

#include "schema/components.h"
#include "schema/diagnostics.h"
#include "schema/storage.h"

namespace Quillon9Generator::Schema {

/// Check the constraints on components (https://www.w3.org/TR/xmlschema-1/#outcome-cos) that can only be seen when all
/// are there. The components have no other faults.
void CheckComponents(Storage const& storage, Diagnostics& diagnostics);

}  // namespace Quillon9Generator::Schema
