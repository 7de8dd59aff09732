// Sends the schemas of a folder laid out like the W3C XML Schema Test Suite through the schema floor of the generator,
// and counts which it accepts.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "code/write.h"
#include "plan/make_plan.h"
#include "schema/load.h"

namespace {

using namespace Quillon9Generator;

constexpr char const* kUsage =
    "Usage: xsts_schemas FOLDER [--every N] [--generate] [--messages]\n"
    "  FOLDER      the unpacked suite, with its tests.tsv\n"
    "  --every N   takes each Nth test only\n"
    "  --generate  makes the classes of the schemas that are accepted as well, which must succeed\n"
    "  --messages  prints what was found wrong in each schema\n"
    "Prints a line for each schema that is not treated as the suite wants it. The exit status is 0 if all valid "
    "schemas\n"
    "are accepted and at least nine in ten invalid ones refused, 1 if not, and 2 for wrong usage.\n";

/// A schema must be done with in this time and memory. Real ones take a fraction of it.
constexpr rlim_t kSeconds = 10;
constexpr rlim_t kOctets = rlim_t{1} << 30;

struct Options {
  std::string folder;
  std::size_t every = 1;
  bool generate = false;
  bool messages = false;
};

struct Test {
  std::string set, group;
  std::vector<std::string> schemas;
  bool valid = false;
};

/// How a child process ends.
enum class Verdict { Accepted, Refused, Failed };

std::vector<std::string> Split(std::string const& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
  return parts;
}

bool StartsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

std::vector<Test> ReadTests(Options const& options) {
  std::ifstream file(options.folder + "/tests.tsv");
  if (!file) throw std::runtime_error("cannot read " + options.folder + "/tests.tsv");
  std::string line;
  std::getline(file, line);
  std::vector<Test> tests;
  for (std::size_t number = 0; std::getline(file, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    std::vector<std::string> const row = Split(line, '\t');
    if (row.size() < 5 || row[3] != "-") continue;
    std::string const status = row.size() > 5 ? row[5] : "";
    if (StartsWith(status, "queried") || StartsWith(status, "disputed")) continue;
    if (number++ % options.every != 0) continue;
    tests.push_back({row[0], row[1], Split(row[2], ';'), row[4] == "valid"});
  }
  return tests;
}

void Limit(int resource, rlim_t most) {
  rlimit const limit{most, most};
  setrlimit(static_cast<__rlimit_resource_t>(resource), &limit);
}

void Write(int output, std::string_view text) {
  while (!text.empty()) {
    ssize_t const count = write(output, text.data(), text.size());
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

/// Load the schemas of \p test, make their classes if that is wanted, and write what was found wrong to \p output.
Verdict Load(Test const& test, bool generate, int output) {
  Schema::LoadOptions options;
  options.documents = test.schemas;
  Schema::Diagnostics diagnostics;
  Schema::SchemaSet const set = Schema::LoadSchemas(options, diagnostics);
  if (generate && !diagnostics.HasErrors()) {
    Plan::PlanOptions planOptions;
    planOptions.cppNamespace = "Bound";
    Plan::Plan const plan = Plan::MakePlan(set, planOptions, diagnostics);
    if (!diagnostics.HasErrors() && Code::Write(plan).empty()) return Verdict::Failed;
  }
  for (Schema::Diagnostic const& diagnostic : diagnostics.All()) {
    Write(output, "  " + Schema::Format(diagnostic) + "\n");
  }
  if (!diagnostics.HasErrors()) return Verdict::Accepted;
  bool const hasPlace = std::any_of(diagnostics.All().begin(), diagnostics.All().end(), [](auto const& diagnostic) {
    return diagnostic.severity == Schema::Diagnostic::Severity::Error && !diagnostic.file.empty();
  });
  return hasPlace ? Verdict::Refused : Verdict::Failed;  // an error must say where it is
}

/// A process of its own for one test, so that no test can spoil another.
class Child {
 public:
  Child(Test const& test, bool generate) : m_test(&test) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("cannot make a pipe");
    m_process = fork();
    if (m_process < 0) throw std::runtime_error("cannot start a process");
    if (m_process == 0) {
      close(ends[0]);
      Limit(RLIMIT_CPU, kSeconds);
      Limit(RLIMIT_AS, kOctets);
      Limit(RLIMIT_CORE, 0);
      Verdict verdict = Verdict::Failed;
      try {
        verdict = Load(test, generate, ends[1]);
      } catch (std::exception const& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
      }
      _exit(static_cast<int>(verdict));
    }
    close(ends[1]);
    m_input = ends[0];
  }

  /// Wait for the end of the process.
  Verdict Finish() {
    char buffer[4096];
    for (ssize_t count; (count = read(m_input, buffer, sizeof buffer)) > 0;) {
      m_messages.append(buffer, static_cast<std::size_t>(count));
    }
    close(m_input);
    int status = 0;
    waitpid(m_process, &status, 0);
    if (WIFSIGNALED(status)) m_messages += "  ended by signal " + std::to_string(WTERMSIG(status)) + "\n";
    return WIFEXITED(status) ? static_cast<Verdict>(WEXITSTATUS(status)) : Verdict::Failed;
  }

  Test const& GetTest() const { return *m_test; }
  std::string const& GetMessages() const { return m_messages; }

 private:
  Test const* m_test;
  pid_t m_process = -1;
  int m_input = -1;
  std::string m_messages;
};

struct Counts {
  int valid = 0, accepted = 0, invalid = 0, refused = 0, failed = 0;
};

void Judge(Child& child, bool messages, Counts& counts) {
  Verdict const verdict = child.Finish();
  Test const& test = child.GetTest();
  ++(test.valid ? counts.valid : counts.invalid);
  bool const isRight = verdict == (test.valid ? Verdict::Accepted : Verdict::Refused);
  if (isRight) ++(test.valid ? counts.accepted : counts.refused);
  if (verdict == Verdict::Failed) ++counts.failed;
  if (isRight && !messages) return;
  char const* const found = verdict == Verdict::Failed ? "failed" : test.valid ? "refused" : "accepted";
  std::string schemas;
  for (std::string const& schema : test.schemas) schemas += " " + schema;
  std::printf("%s, %s: %s %s%s\n", test.valid ? "valid" : "invalid", isRight ? "as wanted" : found, test.set.c_str(),
              test.group.c_str(), schemas.c_str());
  if (messages || test.valid || verdict == Verdict::Failed) std::fputs(child.GetMessages().c_str(), stdout);
}

Counts Run(std::vector<Test> const& tests, Options const& options) {
  Counts counts;
  std::deque<Child> running;
  std::size_t const most = std::max(2U, std::thread::hardware_concurrency());
  for (Test const& test : tests) {
    running.emplace_back(test, options.generate);
    if (running.size() < most) continue;
    Judge(running.front(), options.messages, counts);
    running.pop_front();
  }
  for (Child& child : running) Judge(child, options.messages, counts);
  return counts;
}

bool ReadOptions(int count, char** arguments, Options& options) {
  for (int i = 1; i < count; ++i) {
    std::string const argument = arguments[i];
    if (argument == "--messages") {
      options.messages = true;
    } else if (argument == "--generate") {
      options.generate = true;
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
    if (chdir(options.folder.c_str()) != 0) throw std::runtime_error("cannot enter " + options.folder);
    Counts const counts = Run(tests, options);
    if (counts.failed != 0) std::printf("%d failed\n", counts.failed);
    std::printf("accepted %d of %d valid, refused %d of %d invalid\n", counts.accepted, counts.valid, counts.refused,
                counts.invalid);
    bool const isEnough = counts.accepted == counts.valid && counts.refused * 10 >= counts.invalid * 9;
    return isEnough && counts.failed == 0 ? 0 : 1;
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 2;
  }
}
