#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "code/file_plan.h"
#include "quillon9/quillon9.h"

namespace Quillon9Tool {

enum class DocumentKind { XmlText, FastInfoset };

struct ConvertOptions {
  std::string input;
  std::string output = "-";
  std::optional<DocumentKind> to;  ///< from --to or from the ending of the output
  Quillon9::CompressionType compression = Quillon9::CompressionType_None;
  bool format = true;
  std::optional<bool> declaration;
  bool suggestedEncodings = false;
  bool keepSpace = false;
  bool large = false;  ///< one child of the root after the other
  bool quiet = false;
};

struct TreeOptions {
  std::string input;
  bool keepSpace = false;
};

struct InspectOptions {
  std::string input;
  bool full = false;
};

struct RecordsOptions {
  std::string input = "-";
  std::vector<std::string> paths;
  std::map<std::string, std::string> prefixes;  ///< with their namespaces, for the paths
  bool count = false;
  std::optional<std::uint64_t> plan;  ///< how many ranges are asked for
  std::string range;                  ///< a word of such a plan; empty for the whole input
  std::optional<std::uint64_t> each;  ///< how many records a file gets
  std::string output;                 ///< with --each, a format for one number; empty for standard output
  std::optional<DocumentKind> to;
  Quillon9::CompressionType compression = Quillon9::CompressionType_None;
  bool format = true;
  std::optional<bool> declaration;
  bool keepGoing = false;
  bool needsRecord = false;  ///< an input without records is a failure
  bool quiet = false;
};

struct GenerateOptions {
  std::vector<std::string> schemas;
  std::string cppNamespace;  ///< Company::Orders
  std::string output = ".";
  std::map<std::string, Quillon9::ItemType> kinds;  ///< from --map
  std::map<std::string, std::string> names;         ///< from --rename
  std::map<std::string, std::string> namespaces;    ///< from --namespace-of
  std::vector<std::string> roots;                   ///< from --root; empty for all
  std::vector<std::string> catalogs;
  std::vector<std::string> includePaths;
  Quillon9Generator::Code::Split split = Quillon9Generator::Code::Split::None;
  std::string dependencyFile;    ///< empty for none
  std::string dependencyTarget;  ///< empty for the generated files
  bool classicValues = false;    ///< from --value-rules
  bool listOutputs = false;
  bool hasOutput = false;              ///< --output was given
  std::optional<std::string> report;   ///< the file for it; "-" for standard output
  std::optional<std::string> example;  ///< the document element; empty for the first one
  std::string documentation;           ///< the folder for its pages; empty for none

  /// Whether the classes are written; a report and pages do not need them.
  bool WritesClasses() const {
    return hasOutput || example || !dependencyFile.empty() || (!report && documentation.empty());
  }
};

/// Return what the arguments \p argv of a command ask for, argv[0] being its name; nothing if they ask for help.
/// \throws UsageError
std::optional<ConvertOptions> ParseConvertOptions(int argc, char** argv);
std::optional<RecordsOptions> ParseRecordsOptions(int argc, char** argv);
std::optional<TreeOptions> ParseTreeOptions(int argc, char** argv);
std::optional<GenerateOptions> ParseGenerateOptions(int argc, char** argv);
std::optional<InspectOptions> ParseInspectOptions(int argc, char** argv);

}  // namespace Quillon9Tool
