#include "program.h"

#include <string>

namespace Quillon9::Testing {
namespace {

std::string const kSeeHelp = "quillon9 --help lists the commands.\n";

TEST_F(ProgramTest, WrongUsageIsStatus2) {
  struct Row {
    char const* arguments;
    char const* message;
  };
  Row const rows[] = {
      {"", "a command is missing"},
      {"transform", "there is no command transform"},
      {"convert", "an input file is missing"},
      {"convert a b c", "there is one file too many: c"},
      {"tree a b", "there is one file too many: b"},
      {"convert --to", "the option --to needs a value"},
      {"convert -z", "the option -z needs a value"},
      {"convert --pretty a", "there is no option --pretty"},
      {"convert -qx a", "there is no option -x"},
      {"convert --quiet=yes a", "there is no option --quiet=yes"},
      {"inspect --keep-space a", "there is no option --keep-space"},
      {"convert --to=json a", "--to=json is neither xml nor finf"},
      {"convert --compress=xz a", "--compress=xz is none of none, gzip and zlib"},
      {"convert a b.gpx", "the ending of b.gpx is neither .xml nor .finf: give --to=xml or --to=finf"},
      {"convert a .gz", "the ending of .gz is neither .xml nor .finf: give --to=xml or --to=finf"},
  };
  for (Row const& row : rows) {
    Outcome const outcome = Run(row.arguments);
    EXPECT_EQ(outcome.status, 2) << row.arguments;
    EXPECT_EQ(outcome.errors, std::string("quillon9: ") + row.message + '\n' + kSeeHelp) << row.arguments;
    EXPECT_EQ(outcome.output, "") << row.arguments;
  }
}

TEST_F(ProgramTest, WhatCannotBeReadOrWrittenIsStatus1UnderItsName) {
  Write("good.xml", "<a/>");
  Write("cut.xml", "<a>\n <b/>\n <b>");
  Write("empty.xml", "");
  Write("cut.gz", "\x1F\x8B\x08");
  Write("cut.finf", std::string("\xE0\x00\x00\x01\x00\x3C\x00", 7));
  Write("control.finf", std::string("\xE0\x00\x00\x01\x00\x3C\x00\x61\x80\x01\xFF", 11));
  Write("name.finf", std::string("\xE0\x00\x00\x01\x00\x3C\x01\x61\x20\xFF", 10));
  Write("external.finf", std::string("\xE0\x00\x00\x01\x20\x10\x00\x02u:x\x00\xFF", 13));
  struct Row {
    char const* arguments;
    char const* message;
    char const* report = "";
  };
  Row const rows[] = {
      {"tree nowhere.xml", "nowhere.xml: No such file or directory"},
      {"tree .", ".: Is a directory"},
      {"tree cut.xml", "cut.xml: no element found at line 3",
       "cut.xml:3:5: error: /a/b[2]: no element found at line 3\n"},
      {"convert cut.xml b.finf", "cut.xml: no element found at line 3",
       "cut.xml:3:5: error: /a/b[2]: no element found at line 3\n"},
      {"tree - <../in", "standard input: the input is empty"},
      {"convert empty.xml b.finf", "empty.xml: the input is empty"},
      {"tree cut.gz", "cut.gz: its gzip data are damaged or incomplete"},
      {"tree cut.finf", "cut.finf: Failed to parse FastInfoset. Unexpected End of File.",
       "cut.finf:@7: error: Failed to parse FastInfoset. Unexpected End of File.\n"},
      {"inspect cut.finf >/dev/null", "cut.finf: at octet 6 (6): the document ends in the middle"},
      {"inspect good.xml", "good.xml: this is no Fast Infoset document"},
      {"convert external.finf b.xml", "external.finf: it cannot be read without the vocabulary \"u:x\""},
      {"convert control.finf b.xml",
       "control.finf: XML text cannot express it: not well-formed (invalid token) at line 2"},
      {"convert --to=finf name.finf", "name.finf: the name \"a \" is none in XML"},
      {"convert good.xml nowhere/b.finf", "nowhere/b.finf: No such file or directory"},
      {"convert good.xml b.finf.gz",
       "b.finf.gz: it does not become shorter when it is compressed: Failed to compress data. [Error Code: 0]"},
      {"convert good.xml - >/dev/full", "standard output: No space left on device"},
      {"tree good.xml >/dev/full", "standard output: No space left on device"},
      {"convert --to=xml good.xml /dev/full", "/dev/full: No space left on device"},
  };
  for (Row const& row : rows) {
    Outcome const outcome = Run(row.arguments);
    EXPECT_EQ(outcome.status, 1) << row.arguments;
    EXPECT_EQ(outcome.errors, std::string("quillon9: ") + row.message + '\n' + row.report) << row.arguments;
    EXPECT_EQ(outcome.output, "") << row.arguments;
  }
}

TEST_F(ProgramTest, HelpAndVersionGoToStandardOutput) {
  for (char const* const arguments :
       {"--help", "-h", "convert --help", "convert a b c -h", "tree -h", "inspect -h", "generate -h"}) {
    Outcome const outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 0) << arguments;
    EXPECT_EQ(outcome.output.compare(0, 15, "usage: quillon9"), 0) << outcome.output;
    EXPECT_EQ(outcome.errors, "") << arguments;
  }
  EXPECT_EQ(Run("--version").output, "quillon9 " QUILLON9_PROGRAM_VERSION "\n");
}

TEST_F(ProgramTest, TreeShowsNamesTextsAndAttributes) {
  Outcome const outcome = Run("tree -",
                              "<a xmlns='u:1' xmlns:p='u:2'>\n<p:b p:x='' y='&quot;&#9;\xC2\x9B\xE2\x80\xAE'/>"
                              "<c>1\n2\\</c> </a>");
  EXPECT_EQ(outcome.output,
            "a\n"
            "  xmlns = \"u:1\"\n"
            "  xmlns:p = \"u:2\"\n"
            "  p:b\n"
            "    @p:x = \"\"\n"
            "    @y = \"\\\"\\t\\u{9B}\\u{202E}\"\n"
            "  c = \"1\\n2\\\\\"\n");
  EXPECT_EQ(Run("tree --keep-space -", "<a>\n<b/></a>").output, "a = \"\\n\"\n  b\n");
}

}  // namespace
}  // namespace Quillon9::Testing
