#include <gtest/gtest.h>

#include "code/example.h"
#include "code/report.h"
#include "code/text.h"
#include "plan_text.h"
#include "quillon9/version.h"

namespace Quillon9Generator::Testing {
namespace {

std::string Golden(std::string const& name) { return ReadText(QUILLON9_GOLDEN "/" + name); }

/// A plan with the set that it is made for.
struct Planned {
  Planned(std::string const& schema, std::string const& cppNamespace) {
    Schema::Diagnostics diagnostics;
    set = Schema::LoadSchemas({{schema}, {}, {}}, diagnostics);
    Plan::PlanOptions options;
    options.cppNamespace = cppNamespace;
    plan = Plan::MakePlan(set, options, diagnostics);
    EXPECT_FALSE(diagnostics.HasErrors());
  }

  Schema::SchemaSet set;
  Plan::Plan plan;
};

// To accept a change, in tests/generator/golden: quillon9 generate -n Company::Drawings --report=drawings.txt
// drawing.xsd, and so on.
TEST(Report, WritesTheGoldenTables) {
  for (auto const& [schema, cppNamespace, table] : {std::tuple("/drawing.xsd", "Company::Drawings", "drawings.txt"),
                                                    {"/fleet.xsd", "Fleets", "fleets.txt"},
                                                    {"/purchase_order.xsd", "Orders", "orders.txt"}}) {
    Planned const planned(std::string(QUILLON9_GOLDEN) + schema, cppNamespace);
    EXPECT_EQ(Replaced(Code::Report(planned.plan), QUILLON9_GOLDEN "/", ""), Golden(table));
  }
}

TEST(Report, ShowsTextsOnOneLine) {
  EXPECT_EQ(Code::VisibleText("a\tb\n\\ \xC2\x9Bx \xE2\x80\xAE \xC3\xA4"),
            "a\\011b\\012\\\\ \\302\\233x \\342\\200\\256 \xC3\xA4");
  EXPECT_EQ(Code::VisibleText("\xC2"), "\xC2");
}

// The program is also built and run by scripts/package-test. To accept a change, in tests/generator/golden: quillon9
// generate -n Orders --example=purchaseOrder -o example purchase_order.xsd, without the classes.
TEST(Example, WritesTheGoldenProgram) {
  Planned const planned(QUILLON9_GOLDEN "/purchase_order.xsd", "Orders");
  Plan::Namespace const& ns = planned.plan.namespaces.front();
  std::string const version = std::to_string(QUILLON9_VERSION_MAJOR) + "." + std::to_string(QUILLON9_VERSION_MINOR);
  for (Code::GeneratedFile const& file : Code::Example(
           planned.plan, ns, ns.roots.front(), Code::FileNames(Code::MakeFilePlan(planned.plan, Code::Split::None)))) {
    EXPECT_EQ(file.content, Replaced(Golden("example/" + file.path), "Quillon9 1.0", "Quillon9 " + version));
  }
}

TEST(Example, NamesAMemberThatTheElementHas) {
  struct Row {
    char const* schema;
    char const* comment;
  };
  Row const rows[] = {
      {"<element name='e' type='int'/>", "Work with the object here, for example with object->GetValue()."},
      {"<element name='e'/>", "Work with the object here."},
      {"<element name='e'><complexType/></element>", "Work with the object here."},
      {"<element name='e' type='t:D'/><complexType name='B'><attribute name='x-y'/></complexType><complexType name='D'>"
       "<complexContent><extension base='t:B'/></complexContent></complexType>",
       "Work with the object here, for example with object->GetXY()."},
  };
  for (Row const& row : rows) {
    SchemaFiles files;
    SchemaOf(row.schema, files);
    Planned const planned(files.Path("a.xsd"), "N::M");
    Plan::Namespace const& ns = planned.plan.namespaces.front();
    std::string const program = Code::Example(planned.plan, ns, ns.roots.front(), {})[0].content;
    EXPECT_NE(program.find(std::string("    // ") + row.comment + "\n"), program.npos) << program;
    EXPECT_NE(program.find("N::M::ReadE(argv[1])"), program.npos) << program;
  }
}

}  // namespace
}  // namespace Quillon9Generator::Testing
