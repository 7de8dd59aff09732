#pragma once

#include "schema/components.h"
#include "schema/diagnostics.h"
#include "schema/node.h"
#include "schema/simple_values.h"

namespace Quillon9Generator::Schema {

/// Return the bit of a facet in Facets::fixed.
unsigned FacetBit(Tag facet);

/// Check the facets in \p restriction, which \p type has taken over already: their values, how they go together, and
/// how they restrict the base (https://www.w3.org/TR/xmlschema-2/#rf-facets).
void CheckFacets(SimpleType const& type, Node const& restriction, ValueRules& values, Diagnostics& diagnostics);

}  // namespace Quillon9Generator::Schema
