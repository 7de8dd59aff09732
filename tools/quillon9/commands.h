#pragma once

#include "options.h"

namespace Quillon9Tool {

/// Do what the options ask for.
/// \throws Failure for the input or the output; UsageError when standard output cannot take the result.
void Convert(ConvertOptions const& options);
void PrintTree(TreeOptions const& options);
void Inspect(InspectOptions const& options);

}  // namespace Quillon9Tool
