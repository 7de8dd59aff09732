#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "code/example.h"
#include "code/report.h"
#include "code/write.h"
#include "commands.h"
#include "failure.h"
#include "files.h"
#include "pages/pages.h"
#include "plan/make_plan.h"
#include "schema/load.h"

namespace Quillon9Tool {

namespace Code = Quillon9Generator::Code;
namespace Pages = Quillon9Generator::Pages;
namespace Plan = Quillon9Generator::Plan;
namespace Schema = Quillon9Generator::Schema;
namespace fs = std::filesystem;

using Schema::Diagnostic;

namespace {

void Print(Diagnostic const& diagnostic) {
  Diagnostic shown = diagnostic;
  shown.file = Escaped(shown.file);
  std::fprintf(stderr, "%s\n", Schema::Format(shown).c_str());
}

/// Print all that was found, file by file from top to bottom.
/// \throws Reported if there is an error.
void Report(Schema::Diagnostics const& diagnostics) {
  std::vector<Diagnostic> sorted = diagnostics.All();
  std::stable_sort(sorted.begin(), sorted.end(), [](Diagnostic const& a, Diagnostic const& b) {
    return std::tie(a.file, a.line, a.column) < std::tie(b.file, b.line, b.column);
  });
  for (Diagnostic const& each : sorted) Print(each);
  if (diagnostics.HasErrors()) throw Reported();
}

[[noreturn]] void Fail(std::string const& file, std::string const& reason) {
  Print({Diagnostic::Severity::Error, file, 0, 0, reason});
  throw Reported();
}

/// The path of \p name in the folder \p folder, as short as the user gave it.
std::string PathIn(std::string const& folder, std::string const& name) {
  return folder == "." ? name : (fs::path(folder) / name).string();
}

bool HasContent(std::string const& path, std::string const& content) {
  std::error_code error;
  if (fs::file_size(path, error) != content.size() || error) return false;
  std::ifstream file(path, std::ios::binary);
  std::string existing(content.size(), '\0');
  return file.read(existing.data(), static_cast<std::streamsize>(existing.size())) && existing == content;
}

/// Write \p content unless the file has it already, so that nothing that depends on it is built again.
void Update(std::string const& path, std::string const& content) {
  if (HasContent(path, content)) return;
  try {
    WriteDerivedOutput(path, content);
  } catch (Failure const& failure) {
    Fail(path, failure.Reason());
  }
}

void CreateFolder(std::string const& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) Fail(folder, error.message());
  if (!fs::is_directory(folder)) Fail(folder, "it is not a folder");
}

/// Whether the first line of the file \p path is one of \p lines.
bool BeginsWithOneOf(std::string const& path, std::vector<std::string> const& lines) {
  std::ifstream file(path, std::ios::binary);
  std::string first;
  return std::getline(file, first) && std::find(lines.begin(), lines.end(), first) != lines.end();
}

/// The headers and sources in \p folder that begin with one of \p firstLines, as paths below \p output.
std::vector<std::string> GeneratedFilesIn(std::string const& output, std::string const& folder,
                                          std::vector<std::string> const& firstLines) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(fs::path(output) / folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::string const extension = entry->path().extension().string();
    if ((extension != ".h" && extension != ".cpp") || !entry->is_regular_file()) continue;
    if (BeginsWithOneOf(entry->path().string(), firstLines)) {
      names.push_back((fs::path(folder) / entry->path().filename()).string());
    }
  }
  return names;
}

/// The files that runs for the same schemas have written to \p output, with other options, too. Then their namespaces
/// and folders may have had other names.
std::vector<std::string> GeneratedFiles(std::string const& output, Plan::Plan const& plan) {
  std::vector<std::string> firstLines = Code::FirstLines(plan);
  for (std::string const& name : GeneratedFilesIn(output, "", firstLines)) {
    firstLines.push_back(Code::FirstLineOfPart(fs::path(name).replace_extension(".h").string()));
  }
  std::vector<std::string> found = GeneratedFilesIn(output, "", firstLines);
  std::error_code error;
  for (fs::directory_iterator entry(output, error), end; !error && entry != end; entry.increment(error)) {
    std::vector<std::string> const parts = GeneratedFilesIn(output, entry->path().filename().string(), firstLines);
    found.insert(found.end(), parts.begin(), parts.end());
  }
  std::sort(found.begin(), found.end());
  return found;
}

/// Warn of files that an earlier run for the same schemas has left in \p output and that are not among \p written.
void WarnOfStaleFiles(std::string const& output, Plan::Plan const& plan, std::vector<std::string> const& written) {
  std::set<std::string> const current(written.begin(), written.end());
  for (std::string const& name : GeneratedFiles(output, plan)) {
    if (current.count(name) != 0) continue;
    Print({Diagnostic::Severity::Warning, PathIn(output, name), 0, 0,
           "an earlier run has written this file, which is not generated any more"});
  }
}

Plan::Plan MakePlan(GenerateOptions const& options, Schema::SchemaSet const& set, Schema::Diagnostics& diagnostics) {
  Plan::PlanOptions planOptions;
  planOptions.cppNamespace = options.cppNamespace;
  planOptions.kinds = options.kinds;
  planOptions.names = options.names;
  planOptions.namespaces = options.namespaces;
  planOptions.roots = options.roots;
  planOptions.classicValues = options.classicValues;
  return Plan::MakePlan(set, planOptions, diagnostics);
}

void CreateFolders(std::string const& output, std::vector<std::string> const& names) {
  CreateFolder(output);
  std::set<std::string> folders;
  for (std::string const& name : names) folders.insert(fs::path(name).parent_path().string());
  folders.erase("");
  for (std::string const& folder : folders) CreateFolder(PathIn(output, folder));
}

void WriteDependencies(GenerateOptions const& options, std::vector<std::string> const& targets,
                       Schema::SchemaSet const& set) {
  if (options.dependencyFile.empty()) return;
  std::vector<std::string> sources = options.catalogs;
  for (std::string const* file : set.files) sources.push_back(*file);
  bool const hasTarget = !options.dependencyTarget.empty();
  Update(options.dependencyFile,
         Code::DependencyFile(hasTarget ? std::vector<std::string>{options.dependencyTarget} : targets, sources));
}

void WriteFiles(GenerateOptions const& options, Plan::Plan const& plan, Code::FilePlan const& files) {
  std::vector<std::string> const names = Code::FileNames(files);
  CreateFolders(options.output, names);
  for (Code::GeneratedFile const& file : Code::Write(plan, files)) {
    Update(PathIn(options.output, file.path), file.content);
  }
  WarnOfStaleFiles(options.output, plan, names);
}

/// A document element and the namespace whose functions read it.
struct DocumentElement {
  Plan::Namespace const* ns = nullptr;
  Plan::Root const* root = nullptr;
};

/// The document elements called \p wanted, of all namespaces if that has none; all for an empty name.
std::vector<DocumentElement> DocumentElements(Plan::Plan const& plan, std::string const& wanted) {
  std::vector<DocumentElement> exact, all;
  for (Plan::Namespace const& ns : plan.namespaces) {
    for (Plan::Root const& root : ns.roots) {
      std::string const fullName = root.name.ns.empty() ? root.name.local : "{" + root.name.ns + "}" + root.name.local;
      if (!root.isDocument) continue;
      if (fullName == wanted) exact.push_back({&ns, &root});
      if (wanted.empty() || root.name.local == wanted) all.push_back({&ns, &root});
    }
  }
  return exact.empty() ? all : exact;
}

/// The document element for the example; none without --example.
DocumentElement ChooseDocumentElement(GenerateOptions const& options, Plan::Plan const& plan,
                                      std::vector<std::string> const& files) {
  if (!options.example) return {};
  if (std::find(files.begin(), files.end(), "main.cpp") != files.end()) {
    Fail(PathIn(options.output, "main.cpp"), "this file is for generated classes; choose another --namespace");
  }
  std::string const& wanted = *options.example;
  std::vector<DocumentElement> const found = DocumentElements(plan, wanted);
  if (found.empty()) {
    Fail("", wanted.empty() ? "--example: the schemas declare no global element"
                            : "--example: no global element \"" + wanted + "\"");
  }
  if (found.size() > 1 && !wanted.empty()) {
    Fail("", "--example: \"" + wanted + "\" is in several namespaces; write {namespace}" + wanted);
  }
  if (found.size() > 1) {
    Print({Diagnostic::Severity::Warning, "", 0, 0,
           "the example reads \"" + found.front().root->name.local + "\", the first of " +
               std::to_string(found.size()) + " global elements; --example=ROOT chooses another"});
  }
  return found.front();
}

/// Write the files of the example that do not exist: a user may have changed those that do.
void WriteExample(GenerateOptions const& options, Plan::Plan const& plan, DocumentElement const& element,
                  std::vector<std::string> const& files) {
  for (Code::GeneratedFile const& file : Code::Example(plan, *element.ns, *element.root, files)) {
    std::string const path = PathIn(options.output, file.path);
    std::error_code error;
    if (fs::symlink_status(path, error).type() == fs::file_type::not_found) {
      Update(path, file.content);
    } else if (!HasContent(path, file.content)) {
      Print({Diagnostic::Severity::Warning, path, 0, 0, "this file exists, and is not written again"});
    }
  }
}

void WritePages(std::string const& folder, Schema::SchemaSet const& set) {
  CreateFolder(folder);
  for (Pages::Page const& page : Pages::Write(set)) Update(PathIn(folder, page.path), page.content);
}

void Output(std::string const& path, std::string const& text) {
  if (path != "-") return Update(path, text);
  Console console;
  console.Write(text);
  console.Finish();
}

}  // namespace

void Generate(GenerateOptions const& options) {
  Schema::Diagnostics diagnostics;
  Schema::SchemaSet const set =
      Schema::LoadSchemas({options.schemas, options.catalogs, options.includePaths}, diagnostics);
  if (diagnostics.HasErrors()) Report(diagnostics);
  Plan::Plan const plan = MakePlan(options, set, diagnostics);
  Report(diagnostics);
  Code::FilePlan const files = Code::MakeFilePlan(plan, options.split);
  std::vector<std::string> const names = Code::FileNames(files);
  std::vector<std::string> paths;
  for (std::string const& name : names) paths.push_back(PathIn(options.output, name));
  if (options.listOutputs) {
    WriteDependencies(options, paths, set);
    std::string lines;
    for (std::string const& path : paths) lines += path + '\n';
    return Output("-", lines);
  }
  DocumentElement const element = ChooseDocumentElement(options, plan, names);
  if (options.WritesClasses()) {
    WriteFiles(options, plan, files);
    WriteDependencies(options, paths, set);
  }
  if (options.example) WriteExample(options, plan, element, names);
  if (!options.documentation.empty()) WritePages(options.documentation, set);
  if (options.report) Output(*options.report, Code::Report(plan));
}

}  // namespace Quillon9Tool
