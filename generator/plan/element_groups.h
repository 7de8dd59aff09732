#pragma once

#include "plan/plan.h"

namespace Quillon9Generator::Plan {

/// Whether \p element is in the substitution group of \p head, itself excepted.
bool StandsFor(Schema::ElementDeclaration const& element, Schema::ElementDeclaration const& head);

/// Decide what holds the elements of \p group and sort them. The group has its elements and the class of the type of its
/// head, null for none; all classes have their bases.
void FinishGroup(ElementGroup& group);

}  // namespace Quillon9Generator::Plan
