#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>

#include "code/report.h"
#include "code/write.h"
#include "fuzzing.h"
#include "pages/pages.h"
#include "plan/make_plan.h"
#include "plan/value_types.h"
#include "schema/load.h"

namespace {

using namespace Quillon9Generator;

/// Inputs are of some kilobytes, and what is written for them is bounded.
constexpr std::uint32_t kMaxContent = 1 << 22;

/// The files of one input. "---" and a name begin each but the first, whose name is a.xsd: "---b.xsd".
class MemoryFiles : public Schema::Files {
 public:
  explicit MemoryFiles(std::string const& input) {
    std::string name = "a.xsd";
    std::size_t begin = 0;
    for (std::size_t end = input.find("\n---"); end != std::string::npos; end = input.find("\n---", begin)) {
      m_texts.emplace(name, input.substr(begin, end - begin));
      std::size_t const line = std::min(input.find('\n', end + 4), input.size());
      name = input.substr(end + 4, line - end - 4);
      begin = std::min(line + 1, input.size());
    }
    m_texts.emplace(name, input.substr(begin));
  }

  Status Find(std::string const& path) const override {
    auto const found = m_texts.find(path);
    if (found == m_texts.end()) return {ENOENT, false, {}};
    return {0, false, {0, static_cast<unsigned long>(std::distance(m_texts.begin(), found))}};
  }

  void Load(Quillon9::CXmlDocument& document, std::string const& path) const override {
    auto const found = m_texts.find(path);
    if (found == m_texts.end()) throw Quillon9::CQnException("no such file");
    auto const* const octets = reinterpret_cast<unsigned char const*>(found->second.data());
    document.LoadXmlStream(octets, static_cast<unsigned long>(found->second.size()));
  }

 private:
  std::map<std::string, std::string> m_texts;
};

/// The classes, and the report on them.
std::string Described(Schema::SchemaSet const& set, Plan::PlanOptions const& options,
                      Schema::Diagnostics& diagnostics) {
  Plan::Plan const plan = Plan::MakePlan(set, options, diagnostics);
  if (diagnostics.HasErrors()) return {};
  std::string text = Code::Report(plan);
  for (Code::Split const split : {Code::Split::None, Code::Split::BySchema, Code::Split::ByType}) {
    Code::FilePlan const files = Code::MakeFilePlan(plan, split);
    for (Code::GeneratedFile const& file : Code::Write(plan, files)) text += file.content;
  }
  return text;
}

/// Only what the last element reaches, with the last namespace apart.
Plan::PlanOptions PartOf(Schema::SchemaSet const& set, Plan::PlanOptions options) {
  if (!set.targetNamespaces.empty()) options.namespaces[set.targetNamespaces.back()] = "Fuzzed::Part";
  if (!set.elements.empty()) options.roots = {Plan::KeyOf(set.elements.back()->name)};
  return options;
}

std::string Generate(MemoryFiles const& files) {
  Schema::Diagnostics diagnostics;
  Schema::LoadOptions options{{"a.xsd"}, {}, {"."}};
  if (files.IsFile("catalog.xml")) options.catalogs.emplace_back("catalog.xml");
  Schema::SchemaSet const set = Schema::LoadSchemas(options, files, diagnostics);
  std::string text;
  if (!diagnostics.HasErrors()) {
    Plan::PlanOptions planOptions;
    planOptions.cppNamespace = "Fuzzed";
    text = Described(set, planOptions, diagnostics);
    text += Described(set, PartOf(set, planOptions), diagnostics);
    for (Pages::Page const& page : Pages::Write(set)) text += page.content;
  }
  for (Schema::Diagnostic const& diagnostic : diagnostics.All()) text += Schema::Format(diagnostic) + '\n';
  Fuzzing::Require(!text.empty(), "an input is an error or gives files");
  return text;
}

}  // namespace

/// A set of schema documents becomes the same classes, or the same errors, each time.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  Fuzzing::LimitContent(kMaxContent);
  MemoryFiles const files(std::string(reinterpret_cast<char const*>(data), size));
  std::string const text = Generate(files);
  Fuzzing::RequireEqual(Generate(files), text, "the same input gives the same octets");
  return 0;
}
