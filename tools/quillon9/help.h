#pragma once

#include <string>

namespace Quillon9Tool {

/// The output of --help, for the program and for its commands.
extern char const kHelp[];
extern char const kConvertHelp[];
extern char const kRecordsHelp[];
extern char const kTreeHelp[];
extern char const kInspectHelp[];
extern char const kGenerateHelp[];

/// The output of --version.
std::string VersionText();

}  // namespace Quillon9Tool
