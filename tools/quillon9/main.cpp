// The program quillon9: generates classes from schemas, converts documents between XML text and Fast Infoset, takes them
// apart, and shows what is in them.

#include <langinfo.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <optional>
#include <string>

#include "commands.h"
#include "failure.h"
#include "files.h"
#include "help.h"
#include "options.h"
#include "utf8.h"

namespace Quillon9Tool {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

/// The text of a document tree is in the code page of the process locale, and characters that it cannot express become
/// "?". So the program runs in a UTF-8 locale, even if its environment has none; if the system has none, text passes
/// through unchanged.
void ChooseLocale() {
  std::setlocale(LC_CTYPE, "");
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
  if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) Quillon9::ASCIIOnly(true);
}

void PrintText(std::string const& text) {
  Console console;
  console.Write(text);
  console.Finish();
}

/// Run the command with \p options, or print its help if there are none.
template <class Options>
void RunCommand(std::optional<Options> const& options, void (*command)(Options const&), char const* help) {
  options ? command(*options) : PrintText(help);
}

void Run(int argc, char** argv) {
  if (argc < 2) throw UsageError("a command is missing");
  std::string const command = argv[1];
  if (command == "--help" || command == "-h") return PrintText(kHelp);
  if (command == "--version" || command == "-V") return PrintText(VersionText());
  --argc;
  ++argv;
  if (command == "convert") return RunCommand(ParseConvertOptions(argc, argv), &Convert, kConvertHelp);
  if (command == "records") return RunCommand(ParseRecordsOptions(argc, argv), &ReadRecords, kRecordsHelp);
  if (command == "tree") return RunCommand(ParseTreeOptions(argc, argv), &PrintTree, kTreeHelp);
  if (command == "inspect") return RunCommand(ParseInspectOptions(argc, argv), &Inspect, kInspectHelp);
  if (command == "generate") return RunCommand(ParseGenerateOptions(argc, argv), &Generate, kGenerateHelp);
  throw UsageError("there is no command " + command);
}

}  // namespace

}  // namespace Quillon9Tool

int main(int argc, char** argv) {
  using namespace Quillon9Tool;
  ChooseLocale();
  std::signal(SIGXFSZ, SIG_IGN);  // a file that becomes too long is then a failure with a message
  try {
    Run(argc, argv);
    CloseStandardOutput();
    return 0;
  } catch (UsageError const& error) {
    std::fprintf(stderr, "quillon9: %s\nquillon9 --help lists the commands.\n", Escaped(error.what()).c_str());
    return kWrongUsage;
  } catch (Reported const&) {
    return kFailed;
  } catch (Failure const& failure) {
    std::fprintf(stderr, "quillon9: %s\n", failure.what());
    if (!failure.Report().empty()) std::fprintf(stderr, "%s\n", failure.Report().c_str());
  } catch (std::exception const& failure) {
    std::fprintf(stderr, "quillon9: %s\n", failure.what());
  } catch (Quillon9::CQnException const& failure) {
    std::fprintf(stderr, "quillon9: %s\n", failure.GetFullMessage().c_str());
  }
  return kFailed;
}
