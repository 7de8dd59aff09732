#pragma once

#include <string>
#include <vector>

#include "code/write.h"

namespace Quillon9Generator::Code {

/// A program that reads a document of \p root, whose functions are in \p ns, and writes it again, and the CMake file that builds it: main.cpp and
/// CMakeLists.txt, for the folder of the generated files. \p files are the names of these, as of FileNames().
std::vector<GeneratedFile> Example(Plan::Plan const& plan, Plan::Namespace const& ns, Plan::Root const& root,
                                   std::vector<std::string> const& files);

}  // namespace Quillon9Generator::Code
