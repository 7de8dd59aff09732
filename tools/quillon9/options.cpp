#include "options.h"

#include <getopt.h>

#include <string_view>
#include <utility>
#include <vector>

#include "base/text_arguments.h"
#include "cpp_names.h"
#include "failure.h"
#include "plan/make_plan.h"

namespace Quillon9Tool {

using Quillon9::CompressionType;
using Quillon9::CompressionType_GZip;
using Quillon9::CompressionType_None;
using Quillon9::CompressionType_ZLib;
using Quillon9::StartsWith;
using Quillon9Generator::Code::Split;

namespace {

// Options without a short form.
enum LongOnly {
  kFormat = 0x100,
  kNoFormat,
  kDeclaration,
  kNoDeclaration,
  kSuggestedEncodings,
  kKeepSpace,
  kFull,
  kMap,
  kRename,
  kNamespaceOf,
  kRoot,
  kSplit,
  kValueRules,
  kDependencyFile,
  kDependencyTarget,
  kListOutputs,
  kReport,
  kExample,
  kDocumentation
};

constexpr option kHelp = {"help", no_argument, nullptr, 'h'};
constexpr option kEnd = {nullptr, 0, nullptr, 0};

constexpr option kConvertOptions[] = {{"to", required_argument, nullptr, 't'},
                                      {"compress", required_argument, nullptr, 'z'},
                                      {"format", no_argument, nullptr, kFormat},
                                      {"no-format", no_argument, nullptr, kNoFormat},
                                      {"declaration", no_argument, nullptr, kDeclaration},
                                      {"no-declaration", no_argument, nullptr, kNoDeclaration},
                                      {"suggested-encodings", no_argument, nullptr, kSuggestedEncodings},
                                      {"keep-space", no_argument, nullptr, kKeepSpace},
                                      {"quiet", no_argument, nullptr, 'q'},
                                      kHelp,
                                      kEnd};
constexpr option kTreeOptions[] = {{"keep-space", no_argument, nullptr, kKeepSpace}, kHelp, kEnd};
constexpr option kInspectOptions[] = {{"full", no_argument, nullptr, kFull}, kHelp, kEnd};

constexpr option kGenerateOptions[] = {{"namespace", required_argument, nullptr, 'n'},
                                       {"output", required_argument, nullptr, 'o'},
                                       {"map", required_argument, nullptr, kMap},
                                       {"rename", required_argument, nullptr, kRename},
                                       {"namespace-of", required_argument, nullptr, kNamespaceOf},
                                       {"root", required_argument, nullptr, kRoot},
                                       {"catalog", required_argument, nullptr, 'c'},
                                       {"include-path", required_argument, nullptr, 'I'},
                                       {"split", optional_argument, nullptr, kSplit},
                                       {"value-rules", required_argument, nullptr, kValueRules},
                                       {"dependency-file", required_argument, nullptr, kDependencyFile},
                                       {"dependency-target", required_argument, nullptr, kDependencyTarget},
                                       {"list-outputs", no_argument, nullptr, kListOutputs},
                                       {"report", optional_argument, nullptr, kReport},
                                       {"example", optional_argument, nullptr, kExample},
                                       {"documentation", required_argument, nullptr, kDocumentation},
                                       kHelp,
                                       kEnd};

/// getopt_long() identifies a long option that it refuses either not at all or by its value.
[[noreturn]] void ThrowRefused(int result, char** argv, std::string_view letters) {
  bool const isMissingValue = result == ':';
  std::string const last = argv[optind - 1];
  bool const isKnown = optopt == 0 || optopt >= kFormat || letters.find(static_cast<char>(optopt)) != letters.npos;
  bool const isLong = isMissingValue ? StartsWith(last, "--") : isKnown;
  std::string const name = isLong ? last : std::string{'-', static_cast<char>(optopt)};
  throw UsageError(isMissingValue ? "the option " + name + " needs a value" : "there is no option " + name);
}

/// Pass each option to \p take, with its letter or number and its value. \returns the other arguments, or nothing if
/// help is requested.
template <class Take>
std::optional<std::vector<std::string>> ReadOptions(int argc, char** argv, char const* letters, option const* table,
                                                    Take take) {
  opterr = 0;
  for (int result; (result = getopt_long(argc, argv, letters, table, nullptr)) != -1;) {
    if (result == 'h') return std::nullopt;
    if (result == '?' || result == ':') ThrowRefused(result, argv, letters);
    take(result, optarg != nullptr ? std::string(optarg) : std::string());
  }
  return std::vector<std::string>(argv + optind, argv + argc);
}

std::string TakeOnlyOperand(std::vector<std::string> const& operands) {
  if (operands.empty()) throw UsageError("an input file is missing");
  if (operands.size() > 1) throw UsageError("there is one file too many: " + operands[1]);
  return operands[0];
}

DocumentKind KindCalled(std::string const& name) {
  if (name == "xml") return DocumentKind::XmlText;
  if (name == "finf") return DocumentKind::FastInfoset;
  throw UsageError("--to=" + name + " is neither xml nor finf");
}

CompressionType CompressionCalled(std::string const& name) {
  if (name == "none") return CompressionType_None;
  if (name == "gzip") return CompressionType_GZip;
  if (name == "zlib") return CompressionType_ZLib;
  throw UsageError("--compress=" + name + " is none of none, gzip and zlib");
}

/// Remove \p ending from \p name and return whether it was there.
bool TakeEnding(std::string_view& name, std::string_view ending) {
  if (name.size() <= ending.size() || name.substr(name.size() - ending.size()) != ending) return false;
  name.remove_suffix(ending.size());
  return true;
}

/// Fill in from the name of the output what no option specified.
void TakeEndings(ConvertOptions& options, std::optional<CompressionType> compression) {
  if (options.output == "-") {
    options.compression = compression.value_or(CompressionType_None);
    return;
  }
  std::string_view name = options.output;
  CompressionType byEnding = CompressionType_None;
  if (TakeEnding(name, ".gz")) {
    byEnding = CompressionType_GZip;
  } else if (TakeEnding(name, ".z")) {
    byEnding = CompressionType_ZLib;
  }
  options.compression = compression.value_or(byEnding);
  if (options.to) return;
  if (TakeEnding(name, ".xml")) {
    options.to = DocumentKind::XmlText;
  } else if (TakeEnding(name, ".finf")) {
    options.to = DocumentKind::FastInfoset;
  } else {
    throw UsageError("the ending of " + options.output + " is neither .xml nor .finf: give --to=xml or --to=finf");
  }
}

/// The two sides of the last `=` in \p value; a namespace may contain others. \p form shows what the sides are.
std::pair<std::string, std::string> Sides(char const* name, char const* form, std::string const& value) {
  std::size_t const equals = value.rfind('=');
  if (equals == value.npos || equals + 1 == value.size()) {
    throw UsageError(std::string(name) + " " + value + " has not the form " + form);
  }
  return {value.substr(0, equals), value.substr(equals + 1)};
}

/// The same where the left side must have a name.
std::pair<std::string, std::string> SidesOfType(char const* name, char const* form, std::string const& value) {
  auto sides = Sides(name, form, value);
  if (sides.first.empty()) throw UsageError(std::string(name) + " " + value + " has not the form " + form);
  return sides;
}

void AddKind(GenerateOptions& options, std::string const& value) {
  auto const [type, kind] = SidesOfType("--map", "TYPE=KIND", value);
  std::optional<Quillon9::ItemType> const number = Quillon9Generator::Plan::KindFromName(kind);
  if (!number) throw UsageError("--map " + value + ": there is no kind of value " + kind);
  options.kinds[type] = *number;
}

void AddName(GenerateOptions& options, std::string const& value) {
  auto const [type, name] = SidesOfType("--rename", "TYPE=NAME", value);
  if (!IsCppName(name)) throw UsageError("--rename " + value + ": " + name + " is not a name in C++");
  options.names[type] = name;
}

void AddNamespace(GenerateOptions& options, std::string const& value) {
  auto const [uri, name] = Sides("--namespace-of", "URI=NAME", value);
  if (!IsCppNamespace(name)) {
    throw UsageError("--namespace-of " + value + ": " + name + " cannot be a namespace of generated classes");
  }
  options.namespaces[uri] = name;
}

Split SplitCalled(std::string const& name) {
  if (name.empty() || name == "type") return Split::ByType;
  if (name == "schema") return Split::BySchema;
  throw UsageError("--split=" + name + " is neither type nor schema");
}

/// Whether "classic" rules of values are asked for; the other ones are "schema".
bool IsClassic(std::string const& rules) {
  if (rules == "classic" || rules == "schema") return rules == "classic";
  throw UsageError("--value-rules=" + rules + " is neither schema nor classic");
}

}  // namespace

std::optional<GenerateOptions> ParseGenerateOptions(int argc, char** argv) {
  GenerateOptions options;
  auto const take = [&](int option, std::string const& value) {
    if (option == 'n') options.cppNamespace = value;
    if (option == 'o') options.output = value.empty() ? "." : value;
    if (option == 'o') options.hasOutput = true;
    if (option == 'c') options.catalogs.push_back(value);
    if (option == 'I') options.includePaths.push_back(value);
    if (option == kMap) AddKind(options, value);
    if (option == kRename) AddName(options, value);
    if (option == kNamespaceOf) AddNamespace(options, value);
    if (option == kRoot) options.roots.push_back(value);
    if (option == kSplit) options.split = SplitCalled(value);
    if (option == kDependencyFile) options.dependencyFile = value;
    if (option == kDependencyTarget) options.dependencyTarget = value;
    if (option == kValueRules) options.classicValues = IsClassic(value);
    if (option == kListOutputs) options.listOutputs = true;
    if (option == kReport) options.report = value.empty() ? "-" : value;
    if (option == kExample) options.example = value;
    if (option == kDocumentation) options.documentation = value.empty() ? "." : value;
  };
  auto const operands = ReadOptions(argc, argv, ":n:o:c:I:h", kGenerateOptions, take);
  if (!operands) return std::nullopt;
  if (operands->empty()) throw UsageError("a schema is missing");
  options.schemas = *operands;
  if (options.cppNamespace.empty()) options.cppNamespace = NamespaceFor(options.schemas.front());
  if (!IsCppNamespace(options.cppNamespace)) {
    throw UsageError("--namespace " + options.cppNamespace + " cannot be a namespace of generated classes");
  }
  return options;
}

std::optional<ConvertOptions> ParseConvertOptions(int argc, char** argv) {
  ConvertOptions options;
  std::optional<CompressionType> compression;
  auto const operands = ReadOptions(argc, argv, ":t:z:qh", kConvertOptions, [&](int option, std::string const& value) {
    if (option == 't') options.to = KindCalled(value);
    if (option == 'z') compression = CompressionCalled(value);
    if (option == kFormat || option == kNoFormat) options.format = option == kFormat;
    if (option == kDeclaration || option == kNoDeclaration) options.declaration = option == kDeclaration;
    if (option == kSuggestedEncodings) options.suggestedEncodings = true;
    if (option == kKeepSpace) options.keepSpace = true;
    if (option == 'q') options.quiet = true;
  });
  if (!operands) return std::nullopt;
  if (operands->size() == 2) {
    options.input = (*operands)[0];
    options.output = (*operands)[1];
  } else {
    if (operands->size() > 2) throw UsageError("there is one file too many: " + (*operands)[2]);
    options.input = TakeOnlyOperand(*operands);
  }
  TakeEndings(options, compression);
  return options;
}

std::optional<TreeOptions> ParseTreeOptions(int argc, char** argv) {
  TreeOptions options;
  auto const operands =
      ReadOptions(argc, argv, ":h", kTreeOptions, [&](int, std::string const&) { options.keepSpace = true; });
  if (!operands) return std::nullopt;
  options.input = TakeOnlyOperand(*operands);
  return options;
}

std::optional<InspectOptions> ParseInspectOptions(int argc, char** argv) {
  InspectOptions options;
  auto const operands =
      ReadOptions(argc, argv, ":h", kInspectOptions, [&](int, std::string const&) { options.full = true; });
  if (!operands) return std::nullopt;
  options.input = TakeOnlyOperand(*operands);
  return options;
}

}  // namespace Quillon9Tool
