#include <filesystem>
#include <string>

#include "program.h"

namespace Quillon9::Testing {
namespace {

namespace fs = std::filesystem;

std::string Schema(std::string const& body) {
  return "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n" + body + "\n</xs:schema>\n";
}

class GenerateTest : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    Write("purchase_order.xsd",
          Schema("<xs:include schemaLocation='part.xsd'/><xs:element name='order' type='Part'/>"));
    Write("part.xsd", Schema("<xs:complexType name='Part'><xs:attribute name='x' type='xs:int'/></xs:complexType>"));
  }
  bool Exists(char const* name) const { return fs::exists(Folder() / name); }
};

TEST_F(GenerateTest, WritesFilesAndLeavesThoseThatStayTheSame) {
  EXPECT_EQ(Run("generate purchase_order.xsd").errors, "");
  EXPECT_NE(Read("purchaseorder.h").find("namespace PurchaseOrder {"), std::string::npos);
  EXPECT_NE(Read("purchaseorder.cpp").find("#include \"purchaseorder.h\""), std::string::npos);

  Outcome const outcome =
      Run("generate -n Company::Orders --output new/folder --dependency-file=o.d purchase_order.xsd");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output + outcome.errors, "");
  EXPECT_EQ(Read("o.d").substr(0, 69), "new/folder/orders.h new/folder/orders.cpp: \\\n  purchase_order.xsd \\\n ");
  EXPECT_NE(Read("o.d").find("  part.xsd\n"), std::string::npos) << Read("o.d");

  fs::path const header = Folder() / "new/folder/orders.h";
  auto const old = fs::last_write_time(header) - std::chrono::hours(1);
  fs::last_write_time(header, old);
  Run("generate -n Company::Orders -o new/folder --rename Part=Piece purchase_order.xsd", "", "rm new/folder/*.cpp");
  EXPECT_NE(fs::last_write_time(header), old);  // the name of a class is another one
  EXPECT_NE(Read("new/folder/orders.h").find("class CPiece"), std::string::npos);
  fs::last_write_time(header, old);
  Run("generate -n Company::Orders -o new/folder --rename Part=Piece purchase_order.xsd", "", "rm new/folder/*.cpp");
  EXPECT_EQ(fs::last_write_time(header), old);
  EXPECT_TRUE(Exists("new/folder/orders.cpp"));
}

TEST_F(GenerateTest, ListsOutputsAndNamesStaleFiles) {
  Outcome const list = Run("generate --list-outputs -o out -n Orders purchase_order.xsd");
  EXPECT_EQ(list.output, "out/orders.h\nout/orders.cpp\n");
  EXPECT_FALSE(Exists("out"));
  Run("generate -o out -n Old purchase_order.xsd");
  Write("out/mine.h", "// mine\n");
  Outcome const outcome =
      Run("generate -o out -n Orders --dependency-target=stamp --dependency-file d purchase_order.xsd");
  EXPECT_EQ(outcome.status, 0);
  std::string const warning = ": warning: an earlier run has written this file, which is not generated any more\n";
  EXPECT_EQ(outcome.errors, "out/old.cpp" + warning + "out/old.h" + warning);
  EXPECT_EQ(Read("d").substr(0, 7), "stamp: ");
}

TEST_F(GenerateTest, ReportAndPagesNeedNoClasses) {
  Outcome const outcome = Run("generate --report --documentation=doc purchase_order.xsd");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_NE(outcome.output.find("  CPart::GetX()  attribute x  xs:int  0..1  value  std::optional<std::int32_t>\n"),
            std::string::npos)
      << outcome.output;
  EXPECT_NE(Read("doc/no-namespace.html").find("<code>@x</code>"), std::string::npos);
  EXPECT_EQ(Files().size(), 3U);  // the schemas and the folder

  EXPECT_EQ(Run("generate --report=table.txt -o . purchase_order.xsd").output, "");
  EXPECT_EQ(Read("table.txt"), outcome.output);
  EXPECT_TRUE(Exists("purchaseorder.h"));
  EXPECT_EQ(Run("generate --report --list-outputs purchase_order.xsd").output, "purchaseorder.h\npurchaseorder.cpp\n");
}

TEST_F(GenerateTest, ExampleIsWrittenOnce) {
  EXPECT_EQ(Run("generate --example -o out purchase_order.xsd").errors, "");
  std::string const program = Read("out/main.cpp");
  EXPECT_NE(program.find("PurchaseOrder::ReadOrder(argv[1])"), std::string::npos);
  EXPECT_NE(Read("out/CMakeLists.txt").find("  main.cpp\n  purchaseorder.cpp)"), std::string::npos);
  EXPECT_EQ(Run("generate --example=order -o out purchase_order.xsd").errors, "");
  Write("out/main.cpp", "mine");
  EXPECT_EQ(Run("generate --example -o out purchase_order.xsd").errors,
            "out/main.cpp: warning: this file exists, and is not written again\n");
  EXPECT_EQ(Read("out/main.cpp"), "mine");

  for (std::string const ns : {"u", "v"}) {
    Write(ns + ".xsd", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='" + ns +
                           "'><xs:element name='order'/></xs:schema>");
  }
  EXPECT_EQ(Run("generate --example='{v}order' -n Two -o two u.xsd v.xsd").errors, "");
  EXPECT_NE(Read("two/main.cpp").find("Two::ReadOrderElement("), std::string::npos) << Read("two/main.cpp");
  Write("two.xsd", Schema("<xs:element name='a'/><xs:element name='b'/>"));
  EXPECT_EQ(Run("generate --example two.xsd").errors,
            "warning: the example reads \"a\", the first of 2 global elements; --example=ROOT chooses another\n");
  struct Row {
    char const* arguments;
    char const* error;
  };
  Row const rows[] = {
      {"--example=c two.xsd", "error: --example: no global element \"c\"\n"},
      {"--example='{urn:x}a' two.xsd", "error: --example: no global element \"{urn:x}a\"\n"},
      {"--example=order u.xsd v.xsd", "error: --example: \"order\" is in several namespaces; write {namespace}order\n"},
      {"--example part.xsd", "error: --example: the schemas declare no global element\n"},
      {"--example -n Main two.xsd",
       "none/main.cpp: error: this file is for generated classes; choose another --namespace\n"},
  };
  for (Row const& row : rows) {
    Outcome const outcome = Run(std::string("generate -o none ") + row.arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, row.error);
    EXPECT_FALSE(Exists("none"));
  }
}

TEST_F(GenerateTest, DividesTheClassesAmongFiles) {
  char const* const files = "out/orders.h\nout/orders/part.h\nout/orders.cpp\nout/orders_2.cpp\n";
  Outcome const list = Run("generate --split --list-outputs --dependency-file=d -o out -n Orders purchase_order.xsd");
  EXPECT_EQ(list.output, files);
  EXPECT_FALSE(Exists("out"));
  EXPECT_NE(Read("d").find("\npart.xsd:\n"), std::string::npos) << Read("d");
  EXPECT_EQ(Run("generate --split=type -o out -n Orders purchase_order.xsd").errors, "");
  EXPECT_NE(Read("out/orders/part.h").find("class CPart"), std::string::npos);

  std::string const warning = ": warning: an earlier run has written this file, which is not generated any more\n";
  EXPECT_EQ(Run("generate --split --rename Part=Piece -o out -n Orders purchase_order.xsd").errors,
            "out/orders/part.h" + warning);
  EXPECT_EQ(Run("generate -o out -n Orders purchase_order.xsd").errors,
            "out/orders/part.h" + warning + "out/orders/piece.h" + warning + "out/orders_2.cpp" + warning);
  EXPECT_EQ(Run("generate -o out -n Depots purchase_order.xsd").errors,
            "out/orders.cpp" + warning + "out/orders.h" + warning + "out/orders/part.h" + warning +
                "out/orders/piece.h" + warning + "out/orders_2.cpp" + warning);
}

TEST_F(GenerateTest, FaultsHaveTheFormOfACompilerAndNothingIsWritten) {
  Write("bad.xsd", Schema("<xs:element name='a' type='Missing'/>\n<xs:element name='b' type='xs:what'/>"));
  Outcome const bad = Run("generate -o out bad.xsd");
  EXPECT_EQ(bad.status, 1);
  EXPECT_NE(bad.errors.find("bad.xsd:2:"), std::string::npos) << bad.errors;
  EXPECT_NE(bad.errors.find("bad.xsd:3:"), std::string::npos) << bad.errors;
  EXPECT_EQ(bad.output, "");
  EXPECT_FALSE(Exists("out"));

  Write("file", "");
  struct Row {
    char const* arguments;
    char const* begin;
  };
  Row const rows[] = {
      {"-o file purchase_order.xsd", "file: error: "},
      {"-o file/under purchase_order.xsd", "file/under: error: Not a directory"},
      {"-n X -o . --dependency-file=none/d purchase_order.xsd", "none/d: error: No such file or directory"},
      {"nowhere.xsd", "nowhere.xsd: error: "},
      {"--map Unknown=string purchase_order.xsd", "error: "},
      {"--root part purchase_order.xsd", "error: no global element \"part\""},
      {"--namespace-of urn:x=X purchase_order.xsd", "error: no schema has the namespace \"urn:x\""},
  };
  for (Row const& row : rows) {
    Outcome const outcome = Run(std::string("generate ") + row.arguments);
    EXPECT_EQ(outcome.status, 1) << row.arguments;
    EXPECT_EQ(outcome.errors.substr(0, std::string(row.begin).size()), row.begin) << outcome.errors;
  }
}

TEST_F(GenerateTest, WrongOptionsAreStatus2) {
  struct Row {
    char const* arguments;
    char const* message;
  };
  Row const rows[] = {
      {"", "a schema is missing"},
      {"-n Quillon9 a.xsd", "--namespace Quillon9 cannot be a namespace of generated classes"},
      {"-n A::quillon9 a.xsd", "--namespace A::quillon9 cannot be a namespace of generated classes"},
      {"-n A::class a.xsd", "--namespace A::class cannot be a namespace of generated classes"},
      {"-n A:B a.xsd", "--namespace A:B cannot be a namespace of generated classes"},
      {"Quillon9.xsd", "give --namespace: none can be made from Quillon9.xsd"},
      {"--split=class a.xsd", "--split=class is neither type nor schema"},
      {"--map T a.xsd", "--map T has not the form TYPE=KIND"},
      {"--map T=float a.xsd", "--map T=float: there is no kind of value float"},
      {"--rename =X a.xsd", "--rename =X has not the form TYPE=NAME"},
      {"--namespace-of urn:x= a.xsd", "--namespace-of urn:x= has not the form URI=NAME"},
      {"--namespace-of =std a.xsd", "--namespace-of =std: std cannot be a namespace of generated classes"},
      {"--rename '{u=v}T=1x' a.xsd", "--rename {u=v}T=1x: 1x is not a name in C++"},
  };
  for (Row const& row : rows) {
    Outcome const outcome = Run(std::string("generate ") + row.arguments);
    EXPECT_EQ(outcome.status, 2) << row.arguments;
    EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find('\n')), std::string("quillon9: ") + row.message);
  }
}

}  // namespace
}  // namespace Quillon9::Testing
