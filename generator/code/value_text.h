#pragma once

#include <string>

#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// The C++ expression for the value whose lexical form in the schema is \p text, such as `5`, `"US"`, `EColour::Red`,
/// with \p enumerationName for the type of an enumerator.
std::string ValueText(Plan::ValueType const& type, std::string const& text, std::string const& enumerationName);

}  // namespace Quillon9Generator::Code
