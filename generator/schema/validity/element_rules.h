#pragma once

#include "schema/components.h"
#include "schema/validity/context.h"

namespace Quillon9Generator::Schema {

/// Check one element declaration: its default or fixed value, and that its type allows it to stand for its head.
void CheckElement(ElementDeclaration const& element, ValidityContext& context);

}  // namespace Quillon9Generator::Schema
