#include "options.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>
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

constexpr std::uint64_t kMostRanges = 1000000;

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
  kDocumentation,
  kLarge,
  kPrefix,
  kCount,
  kPlan,
  kRange,
  kEach,
  kKeepGoing
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
                                      {"large", no_argument, nullptr, kLarge},
                                      {"quiet", no_argument, nullptr, 'q'},
                                      kHelp,
                                      kEnd};
constexpr option kRecordsOptions[] = {{"path", required_argument, nullptr, 'p'},
                                      {"prefix", required_argument, nullptr, kPrefix},
                                      {"count", no_argument, nullptr, kCount},
                                      {"plan", required_argument, nullptr, kPlan},
                                      {"range", required_argument, nullptr, kRange},
                                      {"each", required_argument, nullptr, kEach},
                                      {"output", required_argument, nullptr, 'o'},
                                      {"to", required_argument, nullptr, 't'},
                                      {"compress", required_argument, nullptr, 'z'},
                                      {"format", no_argument, nullptr, kFormat},
                                      {"no-format", no_argument, nullptr, kNoFormat},
                                      {"declaration", no_argument, nullptr, kDeclaration},
                                      {"no-declaration", no_argument, nullptr, kNoDeclaration},
                                      {"keep-going", no_argument, nullptr, 'k'},
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

/// Fill in from the name of the output what no option specified. It has at least one character.
template <class Options>
void TakeEndings(Options& options, std::optional<CompressionType> compression) {
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
  }
}

/// A whole number from 1 to \p most.
std::uint64_t NumberOf(std::string const& name, std::string const& value, std::uint64_t most) {
  std::uint64_t number = 0;
  auto const result = std::from_chars(value.data(), value.data() + value.size(), number);
  bool const isNumber = result.ec == std::errc() && result.ptr == value.data() + value.size();
  if (isNumber && number != 0 && number <= most) return number;
  throw UsageError(name + "=" + value + " is not a number from 1 to " + std::to_string(most));
}

/// Return \p pattern, in which one `%d`, also with digits such as `%05d`, stands for the number of a file, and `%%` for
/// a percent sign, as a format for an unsigned long long.
std::string FormatOfNames(std::string const& pattern) {
  std::string format;
  int numbers = 0;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    format += pattern[at];
    if (pattern[at] != '%') continue;
    std::size_t const end = std::min(pattern.find_first_not_of("0123456789", at + 1), pattern.size());
    std::string const digits = pattern.substr(at + 1, end - at - 1);
    char const kind = end < pattern.size() ? pattern[end] : '\0';
    bool const isPercent = kind == '%' && digits.empty();
    if (!isPercent && (kind != 'd' || digits.size() > 3)) {
      throw UsageError("--output=" + pattern + ": %" + digits + (kind != '\0' ? std::string(1, kind) : "") +
                       " is neither the place of a number, such as %05d, nor %%");
    }
    format += isPercent ? "%" : digits + "llu";
    if (!isPercent) ++numbers;
    at = end;
  }
  if (numbers != 1) throw UsageError("--output=" + pattern + " needs one place for a number, such as %05d");
  return format;
}

void CheckCombination(RecordsOptions const& options) {
  if (options.paths.empty()) throw UsageError("a path is missing: give one such as --path=/orders/order");
  int const tasks = (options.count ? 1 : 0) + (options.plan ? 1 : 0) + (options.output.empty() ? 0 : 1);
  if (tasks > 1) throw UsageError("--count, --plan and --output exclude each other");
  if (options.plan && !options.range.empty()) throw UsageError("--plan and --range exclude each other");
  if (options.plan && options.input == "-") throw UsageError("--plan needs a file");
  if (!options.range.empty() && options.input == "-") throw UsageError("--range needs a file");
  if (options.each && options.output.empty()) throw UsageError("--each needs --output");
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

std::pair<std::string, std::string> BoundPrefix(std::string const& value) {
  std::size_t const equals = value.find('=');
  if (equals == value.npos || equals == 0 || equals + 1 == value.size()) {
    throw UsageError("--prefix " + value + " has not the form PREFIX=URI");
  }
  return {value.substr(0, equals), value.substr(equals + 1)};
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
    if (option == kLarge) options.large = true;
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
  if (options.large && (options.keepSpace || options.suggestedEncodings)) {
    throw UsageError("--large excludes --keep-space and --suggested-encodings");
  }
  if (options.large && options.output == "-" && !options.to) throw UsageError("--large needs --to=xml or --to=finf");
  if (options.output != "-" && !options.to) {
    throw UsageError("the ending of " + options.output + " is neither .xml nor .finf: give --to=xml or --to=finf");
  }
  return options;
}

std::optional<RecordsOptions> ParseRecordsOptions(int argc, char** argv) {
  RecordsOptions options;
  std::optional<CompressionType> compression;
  auto const take = [&](int option, std::string const& value) {
    if (option == 'p') options.paths.push_back(value);
    if (option == kPrefix) options.prefixes.insert(BoundPrefix(value));
    if (option == kCount) options.count = true;
    if (option == kPlan) options.plan = NumberOf("--plan", value, kMostRanges);
    if (option == kRange) options.range = value;
    if (option == kEach) options.each = NumberOf("--each", value, std::numeric_limits<std::uint64_t>::max());
    if (option == 'o') options.output = value;
    if (option == 't') options.to = KindCalled(value);
    if (option == 'z') compression = CompressionCalled(value);
    if (option == kFormat || option == kNoFormat) options.format = option == kFormat;
    if (option == kDeclaration || option == kNoDeclaration) options.declaration = option == kDeclaration;
    if (option == 'k') options.keepGoing = true;
    if (option == 'q') options.quiet = true;
  };
  auto const operands = ReadOptions(argc, argv, ":p:o:t:z:kqh", kRecordsOptions, take);
  if (!operands) return std::nullopt;
  if (!operands->empty()) options.input = TakeOnlyOperand(*operands);
  CheckCombination(options);
  TakeEndings(options, compression);
  if (options.each) options.output = FormatOfNames(options.output);
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
