#pragma once

#include <string>

#include "schema/components.h"

namespace Quillon9Generator::Plan {

/// The documentation of \p element, followed by its keys, references to keys and unique values in words: the classes do
/// not check them.
std::string DocumentationWithConstraints(Schema::ElementDeclaration const& element);

}  // namespace Quillon9Generator::Plan
