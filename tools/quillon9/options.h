#pragma once

#include <optional>
#include <string>

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

/// Return what the arguments \p argv of a command ask for, argv[0] being its name; nothing if they ask for help.
/// \throws UsageError
std::optional<ConvertOptions> ParseConvertOptions(int argc, char** argv);
std::optional<TreeOptions> ParseTreeOptions(int argc, char** argv);
std::optional<InspectOptions> ParseInspectOptions(int argc, char** argv);

}  // namespace Quillon9Tool
