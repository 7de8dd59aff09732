#pragma once

#include <string>
#include <vector>

#include "code/file_plan.h"
#include "plan/plan.h"

/// The C++ text of a plan. Nothing is decided here: names, order and kinds are those of the plan.
namespace Quillon9Generator::Code {

struct GeneratedFile {
  std::string path;  ///< relative to the output folder
  std::string content;
};

/// The first lines, without a line feed, of all files that Write() may return for \p plan, however they are split. They
/// mark the files of earlier runs.
std::vector<std::string> FirstLines(Plan::Plan const& plan);

/// The one of those files that only exist because the classes are divided, where \p mainHeader includes them all.
std::string FirstLineOfPart(std::string const& mainHeader);

/// The names of the files that Write() returns, without their content.
std::vector<std::string> FileNames(FilePlan const& files);

/// The headers and sources of \p plan, divided as \p files says. The same plan gives the same octets.
std::vector<GeneratedFile> Write(Plan::Plan const& plan, FilePlan const& files);
/// The same with one header and one source for each namespace.
std::vector<GeneratedFile> Write(Plan::Plan const& plan);

/// A rule for make and ninja: the files \p targets depend on \p sources. Blanks and other special characters of the
/// paths are escaped. Each source gets an empty rule of its own, so that make does not stop when one is gone.
std::string DependencyFile(std::vector<std::string> const& targets, std::vector<std::string> const& sources);

}  // namespace Quillon9Generator::Code
