#pragma once

#include "options.h"

namespace Quillon9Tool {

/// Carry out the command with these options.
/// \throws Failure for the input or the output; UsageError if standard output cannot take the result; Reported.
void Convert(ConvertOptions const& options);
void ReadRecords(RecordsOptions const& options);
void PrintTree(TreeOptions const& options);
void Inspect(InspectOptions const& options);
void Generate(GenerateOptions const& options);

}  // namespace Quillon9Tool
