// Judges the documents of a folder laid out like the W3C XML Schema Test Suite as generated classes judge their values
// under the rules of XML Schema, and counts where the suite agrees.
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/xmlio/document.h"
#include "schema/load.h"
#include "schemas/instance_check.h"
#include "text/utf8_text.h"
#include "values/rules_in_use.h"

namespace {

using namespace Quillon9Generator;
using namespace SchemaTests;

constexpr char const* kUsage =
    "Usage: xsts_values FOLDER [--sets NAME,NAME...] [--every N]\n"
    "  FOLDER   the unpacked suite, with its tests.tsv\n"
    "  --sets   the sets whose documents are judged, in place of those that concern values\n"
    "  --every  takes each Nth test only\n"
    "Prints a line for each document that is not judged as the suite wants it. The exit status is 0 if 99.5 % of them\n"
    "are judged right, 1 if not, and 2 for wrong usage.\n";

struct Options {
  std::string folder;
  std::vector<std::string> sets = {"NIST", "DataTypes_w3c", "Regex_w3c", "SimpleType_w3c", "SType"};
  std::size_t every = 1;
};

struct Test {
  std::string set, group, schemas, instance;
  bool valid = false;
};

struct Count {
  std::size_t right = 0, all = 0;
};

std::vector<std::string> Split(std::string const& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

bool IsInDispute(std::string const& status) { return StartsWith(status, "queried") || StartsWith(status, "disputed"); }

std::vector<Test> ReadTests(Options const& options) {
  std::ifstream file(options.folder + "/tests.tsv");
  if (!file) throw std::runtime_error("cannot read " + options.folder + "/tests.tsv");
  std::string line;
  std::getline(file, line);
  std::vector<Test> tests;
  for (std::size_t number = 0; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::vector<std::string> const row = Split(line, '\t');
    if (row.size() < 5 || row[3] == "-" || (row.size() > 5 && IsInDispute(row[5]))) continue;
    if (std::find(options.sets.begin(), options.sets.end(), row[0]) == options.sets.end()) continue;
    if (number++ % options.every == 0) tests.push_back({row[0], row[1], row[2], row[3], row[4] == "valid"});
  }
  return tests;
}

/// The schemas that a document names, as the suite lists them: beside the document, separated by semicolons.
std::string SchemasNamedIn(Quillon9::CXmlElement const& root, std::string const& instance) {
  constexpr char const* kInstanceNamespace = "http://www.w3.org/2001/XMLSchema-instance";
  std::string const folder = instance.substr(0, instance.find_last_of('/') + 1);
  std::string schemas;
  bool isLocation = false;
  for (std::string const& each : Split(root.GetAttribute("schemaLocation", kInstanceNamespace), ' ')) {
    if (each.empty()) continue;
    if (isLocation) schemas += folder + each + ";";
    isLocation = !isLocation;
  }
  std::string const& other = root.GetAttribute("noNamespaceSchemaLocation", kInstanceNamespace);
  return other.empty() ? schemas : schemas + folder + other;
}

class UnusableSchema : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A schema that is complete, and what its documents are checked with.
struct LoadedSchema {
  Schema::SchemaSet const set;
  InstanceCheck check;

  LoadedSchema(std::string const& schemas, Quillon9::CXmlSerializationContext const& context)
      : set(Load(schemas)), check(set, context) {}

  static Schema::SchemaSet Load(std::string const& schemas) {
    Schema::LoadOptions options;
    options.documents = Split(schemas, ';');
    Schema::Diagnostics diagnostics;
    Schema::SchemaSet loaded = Schema::LoadSchemas(options, diagnostics);
    if (!diagnostics.HasErrors()) return loaded;
    throw UnusableSchema("the schema has errors: " + Schema::Format(diagnostics.All().front()));
  }
};

class Judge {
 public:
  Judge() { m_context.SetValueRules(Quillon9::ValueRules_XmlSchema); }

  /// Print a line if the verdict is not that of the suite.
  bool IsRight(Test const& test) {
    std::string const found = Find(test);
    if (found.empty()) return true;
    std::printf("%s %s %s: %s\n", test.set.c_str(), test.group.c_str(), test.instance.c_str(), found.c_str());
    return false;
  }

 private:
  /// Return how the verdict differs from that of the suite; an empty text if it does not.
  std::string Find(Test const& test) try {
    std::string const fault = FaultOf(test);
    if (fault.empty() == test.valid) return {};
    return test.valid ? "valid, refused: " + fault : "invalid, accepted";
  } catch (UnusableSchema const& failure) {
    return (test.valid ? "valid, not judged: " : "invalid, not judged: ") + std::string(failure.what());
  }

  /// Return why the document is not valid; an empty text if it is.
  std::string FaultOf(Test const& test) try {
    Quillon9::RulesInUse::Scope const rules(Quillon9::ValueRules_XmlSchema);
    Quillon9::Utf8Text::Scope const texts(Quillon9::Utf8Text::Use::kCountingCharacters);
    Quillon9::CXmlDocument document(m_context);
    document.Load(test.instance.c_str());
    Quillon9::CXmlElement const& root = *document.GetDocumentElement();
    Use(test.schemas.empty() ? SchemasNamedIn(root, test.instance) : test.schemas);
    m_schema->check.Check(root);
    return {};
  } catch (Quillon9::CQnException const& failure) {
    return failure.GetMessage();
  } catch (Invalid const& failure) {
    return failure.what();
  }

  void Use(std::string const& schemas) {
    if (m_schema != nullptr && m_schemas == schemas) return;
    m_schema = std::make_unique<LoadedSchema>(schemas, m_context);
    m_schemas = schemas;
  }

  Quillon9::CXmlSerializationContext m_context;
  std::string m_schemas;
  std::unique_ptr<LoadedSchema> m_schema;  // of the last test: the tests of one schema stand together
};

Count Run(std::vector<Test> const& tests) {
  std::map<std::string, Count> counts;
  Judge judge;
  for (Test const& test : tests) {
    Count& count = counts[test.set];
    ++count.all;
    if (judge.IsRight(test)) ++count.right;
  }
  Count total;
  for (auto const& [set, count] : counts) {
    std::printf("%s: right %zu of %zu\n", set.c_str(), count.right, count.all);
    total.right += count.right;
    total.all += count.all;
  }
  return total;
}

bool ReadOptions(int count, char** arguments, Options& options) {
  for (int i = 1; i < count; ++i) {
    std::string const argument = arguments[i];
    if (argument == "--sets" && i + 1 < count) {
      options.sets = Split(arguments[++i], ',');
    } else if (argument == "--every" && i + 1 < count) {
      options.every = std::strtoul(arguments[++i], nullptr, 10);
    } else if (options.folder.empty() && !StartsWith(argument, "-")) {
      options.folder = argument;
    } else {
      return false;
    }
  }
  return !options.folder.empty() && options.every != 0;
}

}  // namespace

int main(int count, char** arguments) {
  Options options;
  if (!ReadOptions(count, arguments, options)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  try {
    std::vector<Test> const tests = ReadTests(options);
    if (tests.empty()) throw std::runtime_error("there are no documents to judge in " + options.folder);
    if (chdir(options.folder.c_str()) != 0) throw std::runtime_error("cannot enter " + options.folder);
    Count const total = Run(tests);
    std::printf("right %zu of %zu\n", total.right, total.all);
    return total.right * 1000 >= total.all * 995 ? 0 : 1;
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 2;
  }
}
