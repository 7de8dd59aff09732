#pragma once

#include <string>

namespace Quillon9Tool {

/// What --help prints, of the program and of its commands.
extern char const kHelp[];
extern char const kConvertHelp[];
extern char const kTreeHelp[];
extern char const kInspectHelp[];

/// What --version prints.
std::string VersionText();

}  // namespace Quillon9Tool
