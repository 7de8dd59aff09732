#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "octets.h"
#include "program.h"

namespace Quillon9::Testing {
namespace {

namespace fs = std::filesystem;

class ConvertTest : public ProgramTest {
 protected:
  /// Return \p xml converted to unformatted text without declaration.
  std::string Plain(std::string const& xml, std::string const& options = "") {
    return Run("convert --quiet --to=xml --no-format --no-declaration " + options + " -", xml).output;
  }
};

TEST_F(ConvertTest, ExamplesComeBackFromEveryForm) {
  std::size_t documents = 0;
  for (auto const& entry : fs::recursive_directory_iterator(QUILLON9_EXAMPLES)) {
    if (entry.path().extension() != ".xml") continue;
    if (entry.file_size() < 1000) continue;  // compression does not make it shorter
    ++documents;
    std::string const source = "'" + entry.path().string() + "'";
    std::string const expected = Run("convert --to=xml " + source).output;
    std::string const tree = Run("tree " + source).output;
    EXPECT_GT(expected.size(), 100U) << source;
    for (char const* const name : {"a.finf", "a.finf.gz", "a.finf.z", "a.xml", "a.xml.gz"}) {
      for (std::string const options : {"", "--suggested-encodings --declaration "}) {
        Outcome const there = Run("convert " + options + source + ' ' + name);
        EXPECT_EQ(there.status, 0) << there.errors;
        EXPECT_EQ(there.errors, "");
        EXPECT_EQ(Run(std::string("convert --to=xml ") + name).output, expected) << name << options;
        EXPECT_EQ(Run(std::string("tree ") + name).output, tree) << name << options;
      }
    }
  }
  EXPECT_GE(documents, 2U);
}

TEST_F(ConvertTest, EndingsAndOptionsTellTheForm) {
  std::string const xml = "<a>" + std::string(200, 'x') + "</a>";
  Write("in.xml", xml);
  Write("in.finf", Run("convert in.xml").output);
  std::string const finf("\xE0\x00\x00\x01", 4);
  struct Row {
    char const* arguments;
    std::string start;
  };
  Row const rows[] = {
      {"in.xml out.finf", finf},
      {"in.finf out.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>xx"},
      {"in.xml out.finf.gz", "\x1F\x8B"},
      {"in.xml out.xml.z", "\x78\x01"},
      {"-z none in.xml out.xml.z", "<?xml"},
      {"--compress=zlib in.xml out.xml.gz", "\x78\x01"},
      {"--to=xml in.finf out.bin.gz", "\x1F\x8B"},
      {"--to=finf in.finf out.xml", finf},
      {"--declaration in.xml out.finf", "<?xml version='1.0' encoding='finf'?>" + finf},
      {"--no-declaration in.finf out.xml", "<a>xx"},
  };
  for (Row const& row : rows) {
    std::string const arguments = row.arguments;
    Outcome const outcome = Run("convert " + arguments);
    EXPECT_EQ(outcome.status, 0) << arguments << outcome.errors;
    std::string const written = Read(arguments.substr(arguments.rfind(' ') + 1));
    EXPECT_EQ(Hex(written.substr(0, row.start.size())), Hex(row.start)) << arguments;
  }
  EXPECT_EQ(Run("convert -", xml).output, Read("in.finf"));
  EXPECT_EQ(Run("convert - -", Read("in.finf")).output, Run("convert --to=xml in.xml -").output);
}

TEST_F(ConvertTest, AllNamespacesAreDeclaredOnTheRoot) {
  struct Row {
    char const* input;
    char const* output;
  };
  Row const rows[] = {
      {"<a xmlns='u:1' xmlns:p='u:2'><p:b p:c='1'/></a>", "<a xmlns=\"u:1\" xmlns:p=\"u:2\"><p:b p:c=\"1\"/></a>"},
      {"<a><p:b xmlns:p='u:1'><p:c/></p:b></a>", "<a xmlns:p=\"u:1\"><p:b><p:c/></p:b></a>"},
      {"<a xmlns:xs='u:types' t='xs:int'/>", "<a xmlns:xs=\"u:types\" t=\"xs:int\"/>"},
      {"<a xmlns='u:1'><b xmlns='u:2'/></a>", "<a xmlns=\"u:1\" xmlns:AA=\"u:2\"><AA:b/></a>"},
      {"<a xmlns='u:1'><b xmlns=''/></a>", "<AA:a xmlns:AA=\"u:1\"><b/></AA:a>"},
      {"<p:a xmlns:p='u:1'><b xmlns='u:2'/></p:a>", "<p:a xmlns=\"u:2\" xmlns:p=\"u:1\"><b/></p:a>"},
      {"<p:a xmlns:p='u:1'><p:b xmlns:p='u:2'/></p:a>", "<AA:a xmlns:AA=\"u:1\" xmlns:p=\"u:2\"><p:b/></AA:a>"},
      {"<a xmlns:AA='u:1'><b xmlns='u:2'/></a>", "<a xmlns:AA=\"u:1\" xmlns:AB=\"u:2\"><AB:b/></a>"},
      {"<a xmlns='u:&amp;&lt;&quot;'/>", "<a xmlns=\"u:&amp;&lt;&quot;\"/>"},
      {"<a xml:lang='de'/>", "<a xml:lang=\"de\"/>"},
  };
  for (Row const& row : rows) {
    EXPECT_EQ(Plain(row.input), std::string(row.output) + '\n');
    EXPECT_EQ(Plain(Run("convert --quiet -", row.input).output), std::string(row.output) + '\n') << "by Fast Infoset";
  }
}

TEST_F(ConvertTest, TextKeepsItsPlaceAndBlanksBetweenElementsGo) {
  EXPECT_EQ(Plain("<a> <b> </b>\n</a>"), "<a><b> </b></a>\n");
  EXPECT_EQ(Plain("<a> <b> </b>\n</a>", "--keep-space"), "<a> \n<b> </b></a>\n");
  EXPECT_EQ(Plain("<a>1<b/> <c>2<d/></c>\n3<e/></a>"), "<a>1<b/> <c>2<d/></c>\n3<e/></a>\n");
  EXPECT_EQ(Plain("<a>&lt;![CDATA[&lt;/a></a>"), "<a>&lt;![CDATA[&lt;/a&gt;</a>\n");
  EXPECT_EQ(Run("convert --to=xml --no-declaration -", "<a><b>1</b></a>").output, "<a>\n\t<b>1</b>\n</a>\n");
  std::string const mixed = "<a>\n\t<p>1<b><c/></b>2<!---->3<d/></p>\n\t<e>\n\t\t<f/>\n\t</e>\n</a>\n";
  std::string const written = "<a>\n\t<p>1<b><c/></b>23<d/></p>\n\t<e>\n\t\t<f/>\n\t</e>\n</a>\n";
  EXPECT_EQ(Run("convert -q --to=xml --no-declaration -", mixed).output, written) << "formatted around mixed content";
  std::string const infoset = Run("convert -q -", mixed).output;
  EXPECT_EQ(Run("convert -q --to=xml --no-declaration -", infoset).output, written);
}

TEST_F(ConvertTest, WarnsOfWhatIsLost) {
  struct Row {
    std::string input;
    std::vector<std::string> warnings;
  };
  std::string const bigEndian("\0<\0a\0>\0<\0!\0-\0-\x12\x34\0-\0-\0>\0<\0/\0a\0>", 30);
  Row const rows[] = {
      {"<?xml version='1.0'?><a><![CDATA[<!-- <?x?> -->]]> </a>", {}},
      {"<!-- <?x?> --><a><!----></a>", {"2 comments are left out"}},
      {"\xFE\xFF" + bigEndian, {"1 comment is left out"}},
      {"<?xml-model x?><a><?x <!-- ?></a>", {"2 processing instructions are left out"}},
      {"<!DOCTYPE a><a/>", {"1 document type declaration is left out"}},
      {"<a>1<b/></a>", {}},
      {"<a b='&#13;'/>", {"1 attribute value with tabs or carriage returns, which are lost"}},
      {"<a xmlns:p='u' xmlns:q='u'/>", {"the prefix q is left out: its namespace has another one"}},
  };
  for (Row const& row : rows) {
    std::string expected;
    for (std::string const& text : row.warnings) expected += "quillon9: standard input: warning: " + text + '\n';
    Outcome const outcome = Run("convert --to=xml -", row.input);
    EXPECT_EQ(outcome.status, 0) << row.input;
    EXPECT_EQ(outcome.errors, expected) << row.input;
    EXPECT_EQ(Run("convert -q --to=xml -", row.input).errors, "") << row.input;
  }
  // Comment, processing instruction, float.
  std::string const infoset = Octets("E0000001 00 E200'c' E100'p'FF 3C00'a' 8C1A013F800000 FF");
  EXPECT_EQ(Run("convert -", infoset).errors,
            "quillon9: standard input: warning: 1 comment is left out\n"
            "quillon9: standard input: warning: 1 processing instruction is left out\n"
            "quillon9: standard input: warning: 1 value is encoded as float and comes out as another number\n");
}

TEST_F(ConvertTest, SuggestedEncodingsAreThoseThatGiveTheTextBack) {
  struct Row {
    char const* text;
    char const* shown;
  };
  Row const rows[] = {
      {"12345", "(short) "},
      {"-2000000000", "(int) "},
      {"12345678901234567", "(long) "},
      {"true", "(boolean) "},
      {"189.90", "(numeric alphabet) "},
      {"2024-03-18", "(date and time alphabet) "},
      {"0012345", "(numeric alphabet) "},
      {"1E5", ""},
      {"1.5e10", ""},
      {"12", ""},
      {"TRUE", ""},
      {"DEADBEEF", ""},
  };
  for (Row const& row : rows) {
    std::string const text = row.text;
    std::string const infoset = Run("convert --suggested-encodings -", "<a>" + text + "</a>").output;
    std::string const line = "  text " + std::string(row.shown) + '"' + text + '"';
    EXPECT_NE(Run("inspect -", infoset).output.find(line), std::string::npos) << text;
    EXPECT_EQ(Plain(infoset), "<a>" + text + "</a>\n");
  }
}

TEST_F(ConvertTest, VocabularyOfTheDocumentItselfIsUsed) {
  // Prefix p, namespace u:v, local names r and q, attribute value v, text t; element name p:r, attribute name q.
  std::string const infoset =
      Octets("E0000001 20 039B 0000'p' 0002'u:v' 0100'r'00'q' 0000'v' 0000't' 0003818180 000081 40 00 80 F0 A0 FF");
  EXPECT_EQ(Plain(infoset), "<p:r xmlns:p=\"u:v\" q=\"v\">t</p:r>\n");
}

TEST_F(ConvertTest, OutputIsReplacedAsAWholeOrNotAtAll) {
  Write("good.xml", "<a/>");
  Write("bad.xml", "<a>");
  Write("out.xml", "old");
  fs::permissions(Folder() / "out.xml", fs::perms(0640));
  fs::create_symlink("out.xml", Folder() / "link.xml");
  EXPECT_EQ(Run("convert bad.xml out.xml").status, 1);
  EXPECT_EQ(Read("out.xml"), "old");
  EXPECT_EQ(Run("convert --no-declaration good.xml link.xml").status, 0);
  EXPECT_EQ(Read("out.xml"), "<a/>\n");
  EXPECT_TRUE(fs::is_symlink(Folder() / "link.xml"));
  EXPECT_EQ(fs::status(Folder() / "out.xml").permissions(), fs::perms(0640));
  EXPECT_EQ(Run("convert --no-declaration out.xml out.xml").status, 0) << "onto itself";
  EXPECT_EQ(Run("convert --no-declaration good.xml new.xml").status, 0);
  EXPECT_EQ(fs::status(Folder() / "new.xml").permissions(), fs::status(Folder() / "good.xml").permissions());
  EXPECT_EQ(Files().size(), 5U) << "a temporary file is left";
  EXPECT_EQ(Run("convert --to=xml good.xml /dev/null").status, 0);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(ConvertTest, DepthAndDecompressionEndInAMessage) {
  std::string deep;
  for (int i = 0; i < 1001; ++i) deep += "<a>";
  EXPECT_EQ(Run("convert -", deep).errors,
            "quillon9: standard input: The element nesting exceeds the limit of 1000 levels\n");
  std::string infoset = Octets("E0000001 00 3C00'a'") + std::string(1000000, '\0');
  EXPECT_EQ(Run("inspect - >/dev/null", infoset).status, 1);
  EXPECT_EQ(
      Run("tree -", infoset).errors,
      "quillon9: standard input: Failed to parse FastInfoset. The element nesting exceeds the limit of 1000 levels\n");
}

}  // namespace
}  // namespace Quillon9::Testing
