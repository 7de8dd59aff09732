#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "program.h"

namespace Quillon9::Testing {
namespace {

std::string const kLog =
    "<l:log xmlns:l='urn:l' xmlns:t='urn:t' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' v='1&lt;'>head\n"
    "<l:day d='Mon'><l:e id='1' xsi:type='t:x'><!-- c --><l:n>\xC3\xA9 12:30</l:n></l:e><l:e id='2'/></l:day>"
    "<l:day d='Mon'><l:e id='3'><x xmlns='urn:x'>t:q<y/></x></l:e>\n<l:e id='4'><z/></l:e></l:day></l:log>";

class RecordsTest : public ProgramTest {};

TEST_F(RecordsTest, PrintsRecordsThatStandAlone) {
  struct {
    char const* options;
    char const* output;
  } const rows[] = {
      {"--path=//e --no-format",
       "<l:e xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:l=\"urn:l\" xmlns:t=\"urn:t\" id=\"1\" "
       "xsi:type=\"t:x\"><!-- c --><l:n>\xC3\xA9 12:30</l:n></l:e>\n"
       "<l:e xmlns:l=\"urn:l\" id=\"2\"/>\n"
       "<l:e xmlns=\"urn:x\" xmlns:l=\"urn:l\" xmlns:t=\"urn:t\" id=\"3\"><x>t:q<y/></x></l:e>\n"
       "<l:e xmlns:l=\"urn:l\" id=\"4\"><z/></l:e>\n"},
      {"-p //{urn:x}y -p //z", "<y xmlns=\"urn:x\"/>\n<z/>\n"},
      {"-p /p:log/p:day/p:e/z --prefix p=urn:l", "<z/>\n"},
      {"-p /*/*/*/n", "<l:n xmlns:l=\"urn:l\">\xC3\xA9 12:30</l:n>\n"},
      {"-p //e --count", "4\n"},
      {"-p //nothing --count --quiet", "0\n"},
      {"--plan=1 -p //nothing --quiet log.xml", ""},
  };
  Write("log.xml", kLog);
  for (auto const& row : rows) {
    for (char const* const input : {" <log.xml", " - <log.xml", " log.xml"}) {
      bool const namesFile = std::string(row.options).find("log.xml") != std::string::npos;
      Outcome const outcome = Run("records " + std::string(row.options) + (namesFile ? "" : input));
      EXPECT_EQ(outcome.output, row.output) << row.options;
      EXPECT_EQ(outcome.errors, "") << row.options;
      EXPECT_EQ(outcome.status, 0) << row.options;
    }
  }
  EXPECT_EQ(Run("records -p //nothing", kLog).errors,
            "quillon9: standard input: remark: No element matches the path [//nothing]\n");
}

TEST_F(RecordsTest, SplitsADocumentWithTheElementsAroundIts) {
  Outcome const outcome = Run("records -p //e --each=3 -o 'part-%02d.xml' --no-format --no-declaration", kLog);
  EXPECT_EQ(outcome.errors, "");
  std::string const root =
      "<l:log xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xmlns:l=\"urn:l\" xmlns:t=\"urn:t\" "
      "v=\"1&lt;\"><l:day d=\"Mon\">";
  EXPECT_EQ(Read("part-01.xml"), root +
                                     "<l:e id=\"1\" xsi:type=\"t:x\"><!-- c --><l:n>\xC3\xA9 12:30</l:n></l:e>"
                                     "<l:e id=\"2\"/></l:day><l:day d=\"Mon\"><l:e id=\"3\"><AA:x "
                                     "xmlns:AA=\"urn:x\">t:q<AA:y/></AA:x></l:e></l:day></l:log>");
  EXPECT_EQ(Read("part-02.xml"), root + "<l:e id=\"4\"><z/></l:e></l:day></l:log>");
  EXPECT_EQ(Files().size(), 2U);
  EXPECT_EQ(Run("records -p //e -o all.finf.gz", kLog).errors, "");
  EXPECT_EQ(Run("records -p //day --count all.finf.gz").output, "2\n");
  EXPECT_EQ(Run("records -p //n -p //z all.finf.gz").output, Run("records -p //n -p //z", kLog).output);
}

TEST_F(RecordsTest, ElementsWithoutNamespaceAreNotPutInADefaultNamespace) {
  std::string const text = "<l xmlns='u'><r>1</r><r xmlns=''>2</r><r>3</r></l>";
  Write("in.xml", text);
  std::string const form = " --no-format --no-declaration ";
  EXPECT_EQ(Run("records -p //r -o all.xml in.xml" + form).errors, "");
  EXPECT_EQ(Read("all.xml"), "<AA:l xmlns:AA=\"u\"><AA:r>1</AA:r><r>2</r><AA:r>3</AA:r></AA:l>");
  EXPECT_EQ(Run("records -p //r -o 'part%d' --each=5" + form, text).errors, "");
  EXPECT_EQ(Read("part1"), "<l xmlns=\"u\"><r>1</r></l>");
  EXPECT_EQ(Read("part2"), "<AA:l xmlns:AA=\"u\"><r>2</r><AA:r>3</AA:r></AA:l>");
  EXPECT_EQ(Run("; cat in.xml | " QUILLON9_PROGRAM " records -p //r -o pipe.xml 2>../err").errors,
            "quillon9: pipe.xml: an element without a namespace is within a default namespace\n")
      << "a pipe cannot be read again";
}

TEST_F(RecordsTest, RangesOfAPlanGiveTheWholeDocument) {
  std::string text = "<list k='v'>";
  for (unsigned i = 0; i < 500; ++i)
    text += "<r n='" + std::to_string(i) + "'>" + std::string(i % 7 * 10, 'x') + "</r>\n";
  Write("in.xml", text + "</list>");
  std::string const whole = Run("records -p //r in.xml").output;
  for (int const parts : {1, 2, 7, 5000}) {
    Outcome const plan = Run("records -p //r in.xml --plan=" + std::to_string(parts));
    EXPECT_EQ(plan.errors, "");
    std::istringstream words(plan.output);
    std::string all;
    int count = 0;
    for (std::string word; std::getline(words, word); ++count) {
      if (parts < 10) all += Run("records -p //r in.xml --range='" + word + "'").output;
    }
    EXPECT_EQ(count, parts < 10 ? parts : 500);
    EXPECT_EQ(all, parts < 10 ? whole : "");
  }
}

TEST_F(RecordsTest, BadRecordsAreReported) {
  std::string deep;
  for (int i = 0; i < 1100; ++i) deep = "<d>" + deep + "</d>";
  std::string const start = "<l><r>1</r>\n<r>2</r>";
  struct {
    std::string input;
    char const* options;
    char const* output;
    char const* error;
  } const rows[] = {
      {start + "<r>" + deep + "</r><r>4</r></l>", "-p //r", "<r>1</r>\n<r>2</r>\n", "exceeds the limit"},
      {start + "<r>" + deep + "</r><r>4</r></l>", "-k -p //r", "<r>1</r>\n<r>2</r>\n<r>4</r>\n", "exceeds the limit"},
      {start + "<r>", "-k -p //r", "<r>1</r>\n<r>2</r>\n",
       "quillon9: standard input: no element found at line 2 (after 2 records)\nstandard input:2:"},
      {start + "</x>", "-p //r", "<r>1</r>\n<r>2</r>\n", "mismatched tag at line 2 (after 2 records)\n"},
      {"", "-p //r", "", "XML Stream is empty!"},
  };
  for (auto const& row : rows) {
    Outcome const outcome = Run(std::string("records ") + row.options, row.input);
    EXPECT_EQ(outcome.status, 1) << row.options;
    EXPECT_EQ(outcome.output, row.output) << row.options;
    EXPECT_NE(outcome.errors.find(row.error), std::string::npos) << outcome.errors;
  }
  EXPECT_EQ(Run("records -p //r --each=2 -o 'p%d.xml'", start + "<r>").status, 1);
  EXPECT_EQ(Files(), std::vector<std::string>{"p1.xml"}) << "only what is complete";
  EXPECT_EQ(Run("records -p //r nowhere.xml").errors, "quillon9: nowhere.xml: No such file or directory\n");
  EXPECT_EQ(Run("records -p //r >/dev/full", start + "</l>").errors,
            "quillon9: standard output: No space left on device\n");
}

TEST_F(RecordsTest, WrongUsageIsStatus2) {
  struct {
    char const* arguments;
    char const* message;
  } const rows[] = {
      {"", "a path is missing: give one such as --path=/orders/order"},
      {"-p r", "The path [r] is not a path of elements: it must begin with \"/\""},
      {"-p //r --count -o x", "--count, --plan and --output exclude each other"},
      {"-p //r --plan=2", "--plan needs a file"},
      {"-p //r --plan=2x a", "--plan=2x is not a number from 1 to 1000000"},
      {"-p //r --range=1,2 a.xml", "--range=1,2 is not a word of --plan"},
      {"-p //r --range=1 a.xml", "--range=1 is not a word of --plan"},
      {"-p //r --each=2", "--each needs --output"},
      {"-p //r --each=2 -o x", "--output=x needs one place for a number, such as %05d"},
      {"-p //r --each=2 -o %d%s", "--output=%d%s: %s is neither the place of a number, such as %05d, nor %%"},
      {"-p //r --prefix p a", "--prefix p has not the form PREFIX=URI"},
  };
  Write("a.xml", "<a/>");
  for (auto const& row : rows) {
    Outcome const outcome = Run(std::string("records ") + row.arguments, "<a/>");
    EXPECT_EQ(outcome.status, 2) << row.arguments;
    EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find('\n')), std::string("quillon9: ") + row.message);
  }
}

TEST_F(RecordsTest, ConvertsChildByChild) {
  std::string const text = "<a xmlns='u' x='1'>\n<b>1</b><c><d>2</d></c></a>";
  EXPECT_EQ(Run("convert --large - a.finf.gz", text).errors, "");
  EXPECT_EQ(Run("convert --large --to=xml a.finf.gz").output, Run("convert --quiet --to=xml -", text).output);
  EXPECT_EQ(Run("convert --large --keep-space --to=xml -", text).status, 2);
  EXPECT_EQ(Run("convert --large --to=xml -", "<a/>").errors,
            "quillon9: standard input: the document element has no elements, so it must be converted as a whole\n");
}

TEST_F(RecordsTest, ConvertsAFileThatIsTooLongForATreeChildByChild) {
  Write("in.xml", "<a>\n<b/></c>");
  std::filesystem::resize_file(Folder() / "in.xml", std::uintmax_t{5} << 30);  // mostly a hole
  EXPECT_EQ(Run("convert in.xml out.finf").errors,
            "quillon9: in.xml: warning: what is between the children of the document element is left out, as with "
            "--large\nquillon9: in.xml: mismatched tag at line 2 (after 1 record)\n"
            "in.xml:2:7: error: /a: mismatched tag at line 2\n");
  EXPECT_EQ(Files().size(), 1U);
}

/// Runs the program with a terminal as its standard error.
TEST_F(RecordsTest, ShowsProgressOnATerminal) {
  for (bool const isQuiet : {false, true}) {
    int terminal = -1;
    int input[2];
    ASSERT_EQ(0, ::pipe(input));
    pid_t const program = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    ASSERT_NE(-1, program);
    if (program == 0) {
      ::dup2(input[0], STDIN_FILENO);
      ::close(input[1]);
      ::execl(QUILLON9_PROGRAM, "quillon9", "records", "-p//r", "--count", isQuiet ? "-q" : "-k", nullptr);
      ::_exit(127);
    }
    ::close(input[0]);
    ASSERT_EQ(3, ::write(input[1], "<l>", 3));
    ::usleep(300000);
    ASSERT_EQ(4, ::write(input[1], "</l>", 4));
    ::close(input[1]);
    std::string shown;
    char block[1000];
    for (ssize_t count; (count = ::read(terminal, block, sizeof block)) > 0;) {
      shown.append(block, static_cast<std::size_t>(count));
    }
    int status = 0;
    ::waitpid(program, &status, 0);
    ::close(terminal);
    EXPECT_EQ(0, status);
    EXPECT_NE(shown.find("0\r\n"), std::string::npos) << shown;
    EXPECT_EQ(!isQuiet, shown.find(" MB/s\x1B[K") != std::string::npos) << shown;
  }
}

TEST_F(RecordsTest, AnInterruptLeavesNoUnfinishedFile) {
  int input[2];
  ASSERT_EQ(0, ::pipe(input));
  pid_t const program = ::fork();
  ASSERT_NE(-1, program);
  if (program == 0) {
    ::dup2(input[0], STDIN_FILENO);
    ::close(input[1]);
    std::string const output = "-o" + (Folder() / "all.xml").string();
    ::execl(QUILLON9_PROGRAM, "quillon9", "records", "-p//r", output.c_str(), nullptr);
    ::_exit(127);
  }
  ::close(input[0]);
  ASSERT_EQ(10, ::write(input[1], "<l><r/><r>", 10));
  for (int i = 0; i < 1000 && Files().empty(); ++i) ::usleep(10000);
  EXPECT_EQ(Files().size(), 1U);
  ::kill(program, SIGINT);
  int status = 0;
  ::waitpid(program, &status, 0);
  ::close(input[1]);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT) << status;
  EXPECT_EQ(Files().size(), 0U);
}

}  // namespace
}  // namespace Quillon9::Testing
