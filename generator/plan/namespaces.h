#pragma once

#include "plan/make_plan.h"
#include "plan/plan.h"

namespace Quillon9Generator::Plan {

/// Distribute the classes, which are in order, the enumerations and the roots to C++ namespaces, by the XML namespaces
/// that stand in their place. An option for an XML namespace that \p set does not have is an error in \p diagnostics.
void AssignNamespaces(Schema::SchemaSet const& set, PlanOptions const& options, Plan& plan,
                      Schema::Diagnostics& diagnostics);

}  // namespace Quillon9Generator::Plan
