#pragma once

#include <optional>
#include <vector>

#include "schema/components.h"
#include "schema/diagnostics.h"
#include "schema/validity/context.h"

namespace Quillon9Generator::Schema {

/// The attributes of a type or of an attribute group.
struct AttributesView {
  std::vector<AttributeUse> const& uses;
  std::optional<Wildcard> const& wildcard;
};

/// Check that the attributes \p narrow restrict those of \p wide
/// (https://www.w3.org/TR/xmlschema-1/#derivation-ok-restriction, clauses 2 to 4).
void CheckAttributeRestriction(AttributesView narrow, AttributesView wide, Place const& place,
                               Diagnostics& diagnostics);

/// Check the values and types of attributes, which do not depend on those of a base.
void CheckAttributes(std::vector<AttributeUse> const& uses, Place const& place, ValidityContext& context);

}  // namespace Quillon9Generator::Schema
