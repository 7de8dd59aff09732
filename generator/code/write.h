#pragma once

#include <string>
#include <vector>

#include "plan/plan.h"

/// The C++ text of a plan. Nothing is decided here: names, order and kinds are those of the plan.
namespace Quillon9Generator::Code {

struct CodeOptions {
  /// The first line of each file, which also marks the files of earlier runs: see FirstLine().
  std::string firstLine;
};

struct GeneratedFile {
  std::string path;  ///< relative to the output folder
  std::string content;
};

/// The beginning of FirstLine(), the same for all schemas.
extern char const kMark[];

/// The first line for files that are made from \p schemaFiles, without a line feed.
std::string FirstLine(std::vector<std::string> const& schemaFiles);

/// The names of the files that Write() returns, without their content.
std::vector<std::string> FileNames(Plan::Plan const& plan);

/// A header and a source for all namespaces of \p plan, named after the first. The same plan gives the same octets.
std::vector<GeneratedFile> Write(Plan::Plan const& plan, CodeOptions const& options);

/// A rule for make and ninja: the files \p targets depend on \p sources. Blanks and other special characters of the
/// paths are escaped. Each source gets an empty rule of its own, so that make does not stop when one is gone.
std::string DependencyFile(std::vector<std::string> const& targets, std::vector<std::string> const& sources);

}  // namespace Quillon9Generator::Code
