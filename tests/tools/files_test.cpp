// Tests what the program does to the files that it writes. The library's tests cover how they are replaced.

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>

#include "program.h"

namespace Quillon9::Testing {
namespace {

class FilesTest : public ProgramTest {
 protected:
  std::string PathOf(std::string const& name) const { return (Folder() / name).string(); }
  void WriteLarge(std::string const& name) const { Write(name, "<a>" + std::string(20000000, 'x') + "</a>"); }
};

TEST_F(FilesTest, InPlaceKeepsOwnerGroupAndMode) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can make files of other users";
  Write("a.xml", "<a/>");
  ASSERT_EQ(0, ::chown(PathOf("a.xml").c_str(), 1001, 2001));
  ASSERT_EQ(0, ::chmod(PathOf("a.xml").c_str(), 0640));
  EXPECT_EQ(0, Run("convert a.xml a.xml").status);
  struct stat status {};
  ASSERT_EQ(0, ::stat(PathOf("a.xml").c_str(), &status));
  EXPECT_NE("<a/>", Read("a.xml"));
  EXPECT_EQ(1001U, status.st_uid);
  EXPECT_EQ(2001U, status.st_gid);
  EXPECT_EQ(0640U, status.st_mode & 07777);
}

TEST_F(FilesTest, LongestNamesWork) {
  std::string const name = std::string(251, 'n') + ".xml";
  EXPECT_EQ("", Run("convert --to=xml - " + name, "<a/>").errors);
  EXPECT_EQ("", Run("convert " + name + ' ' + name).errors);
  EXPECT_EQ(1U, Files().size());
}

TEST_F(FilesTest, MessagesShowNamesWithoutControlCharacters) {
  struct {
    char const* arguments;
    char const* message;
  } const rows[] = {
      {"tree \"$(printf 'a\\033[2J\\nb\\\\')\"", "quillon9: a\\u{1B}[2J\\nb\\\\: No such file or directory\n"},
      {"convert -t xml - \"$(printf 'no/\\302\\233')\"", "quillon9: no/\\u{9B}: No such file or directory\n"},
      {"tree a b \"$(printf '\\033c')\"", "quillon9: there is one file too many: b\n"},
      {"\"$(printf '\\033c')\"", "quillon9: there is no command \\u{1B}c\n"},
      {"convert -q - \"$(printf '\\007')\"",
       "quillon9: the ending of \\u{7} is neither .xml nor .finf: give --to=xml or --to=finf\n"},
  };
  for (auto const& row : rows) {
    std::string const errors = Run(row.arguments, "<a/>").errors;
    EXPECT_EQ(row.message, errors.substr(0, errors.find('\n') + 1)) << row.arguments;
  }
}

TEST_F(FilesTest, FileThatBecomesTooLongIsAFailureAndLeavesTheOldOne) {
  WriteLarge("a.xml");
  Write("b.xml", "old");
  Outcome const outcome = Run("convert a.xml b.xml", "", "ulimit -f 1000");
  EXPECT_EQ(1, outcome.status);
  EXPECT_EQ("quillon9: b.xml: File too large\n", outcome.errors);
  EXPECT_EQ("old", Read("b.xml"));
  EXPECT_EQ(2U, Files().size());
}

TEST_F(FilesTest, SignalsLeaveNoTemporaryFile) {
  WriteLarge("a.xml");
  Write("b.xml", "old");
  for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
    int const watch = ::inotify_init1(IN_CLOEXEC);
    ASSERT_NE(-1, ::inotify_add_watch(watch, Folder().c_str(), IN_CREATE));
    pid_t const program = ::fork();
    ASSERT_NE(-1, program);
    if (program == 0) {
      ::execl(QUILLON9_PROGRAM, "quillon9", "convert", PathOf("a.xml").c_str(), PathOf("b.xml").c_str(), nullptr);
      ::_exit(127);
    }
    pollfd created{watch, POLLIN, 0};
    EXPECT_EQ(1, ::poll(&created, 1, 60000));
    ::kill(program, signal);
    int status = 0;
    ::waitpid(program, &status, 0);
    ::close(watch);
    // If the disk is fast enough, the program has already finished.
    bool const hasEnded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    EXPECT_TRUE(hasEnded || (WIFSIGNALED(status) && WTERMSIG(status) == signal)) << status;
    EXPECT_EQ(hasEnded, Read("b.xml").size() > 20000000) << signal;
    EXPECT_EQ(2U, Files().size()) << signal;
    Write("b.xml", "old");
  }
}

}  // namespace
}  // namespace Quillon9::Testing
