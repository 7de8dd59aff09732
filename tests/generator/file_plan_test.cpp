#include "code/file_plan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "code/write.h"
#include "plan/make_plan.h"
#include "schema_files.h"

namespace Quillon9Generator::Testing {
namespace {

using Code::Split;

Plan::Plan PlanOf(Schema::SchemaSet const& set) {
  Plan::PlanOptions options;
  options.cppNamespace = "Company::Fleet";
  if (set.targetNamespaces.size() > 1) options.namespaces = {{"urn:people", "People"}};
  Schema::Diagnostics diagnostics;
  Plan::Plan plan = Plan::MakePlan(set, options, diagnostics);
  EXPECT_TRUE(diagnostics.All().empty());
  return plan;
}

/// A line for each file: what it defines, declares before that, and includes.
std::string Print(Code::FilePlan const& files) {
  std::string text;
  for (auto const& header : files.headers) {
    text += header->path + ":";
    for (Plan::Class const* cls : header->classes) text += ' ' + cls->cppName;
    for (Code::NamespacePart const& part : header->parts) {
      for (Plan::Enumeration const* each : part.enumerations) text += ' ' + each->cppName;
      for (Plan::Root const* root : part.roots) text += " Read" + root->cppName;
    }
    for (Plan::Class const* cls : header->declared) text += " <" + cls->cppName;
    for (Code::HeaderFile const* included : header->includes) text += " +" + included->path;
    text += '\n';
  }
  for (Code::SourceFile const& source : files.sources) {
    text += source.path + ":";
    for (Code::HeaderFile const* header : source.headers) text += ' ' + header->path;
    for (Code::HeaderFile const* included : source.includes) text += " +" + included->path;
    text += '\n';
  }
  return text;
}

// A vehicle has a driver, who has vehicles; each schema has a type that is derived from one of the other.
class FilePlanTest : public testing::Test {
 protected:
  void SetUp() override {
    m_files.WriteSchema("vehicles.xsd", "",
                        "<xs:include schemaLocation='parts/drivers.xsd'/>"
                        "<xs:import namespace='urn:people' schemaLocation='people.xsd'/>"
                        "<xs:complexType name='Vehicle'><xs:sequence><xs:element name='driver' type='Driver'/>"
                        "</xs:sequence><xs:attribute name='paint' type='Colour'/></xs:complexType>"
                        "<xs:complexType name='Owner'><xs:complexContent><xs:extension base='Driver'/>"
                        "</xs:complexContent></xs:complexType>"
                        "<xs:element name='vehicle' type='Vehicle'/><xs:element name='memo' type='xs:string'/>");
    m_files.WriteSchema("parts/drivers.xsd", "",
                        "<xs:import namespace='urn:people' schemaLocation='../people.xsd'/>"
                        "<xs:simpleType name='Colour'><xs:restriction base='xs:string'><xs:enumeration value='red'/>"
                        "</xs:restriction></xs:simpleType>"
                        "<xs:complexType name='Driver'><xs:sequence>"
                        "<xs:element name='vehicle' type='Vehicle' maxOccurs='unbounded'/></xs:sequence>"
                        "<xs:attribute name='name' type='p:Name' xmlns:p='urn:people'/></xs:complexType>"
                        "<xs:complexType name='colour'><xs:complexContent><xs:extension base='Vehicle'/>"
                        "</xs:complexContent></xs:complexType>");
    m_files.WriteSchema("people.xsd", "urn:people",
                        "<xs:simpleType name='Name'><xs:restriction base='xs:string'><xs:enumeration value='Max'/>"
                        "</xs:restriction></xs:simpleType>");
  }
  std::string Printed(Split split) {
    Schema::SchemaSet const set = m_files.Load({"vehicles.xsd"});
    Plan::Plan const plan = PlanOf(set);
    return Print(Code::MakeFilePlan(plan, split));
  }

  SchemaFiles m_files;
};

TEST_F(FilePlanTest, HeadersIncludeOnlyWhatMustBeComplete) {
  struct Row {
    Split split;
    char const* files;
  };
  Row const rows[] = {
      {Split::None,
       "fleet.h: CVehicle CDriver COwner CColour EColour ReadVehicle ReadMemo EName <CDriver\n"
       "fleet.cpp: fleet.h +fleet.h\n"},
      {Split::ByType,
       "fleet.h: ReadMemo +fleet/colour.h +fleet/colour2.h +fleet/driver.h +fleet/owner.h +fleet/vehicle.h "
       "+people.h\n"
       "people.h: +people/name.h\n"
       "fleet/vehicle.h: CVehicle ReadVehicle <CDriver +fleet/colour2.h\n"
       "fleet/driver.h: CDriver <CVehicle +people/name.h\n"
       "fleet/owner.h: COwner +fleet/driver.h\n"
       "fleet/colour.h: CColour +fleet/vehicle.h\n"
       "fleet/colour2.h: EColour\n"
       "people/name.h: EName\n"
       "fleet.cpp: fleet.h people.h +fleet.h\n"
       "fleet_2.cpp: fleet/vehicle.h fleet/driver.h fleet/owner.h fleet/colour.h fleet/colour2.h people/name.h "
       "+fleet/colour.h +fleet/colour2.h +fleet/driver.h +fleet/owner.h +fleet/vehicle.h +people/name.h\n"},
      // Those of the two schemas would include each other.
      {Split::BySchema,
       "fleet.h: ReadMemo +fleet/vehicles.h +people.h\n"
       "people.h: +people/people.h\n"
       "fleet/vehicles.h: CVehicle CDriver COwner CColour EColour ReadVehicle <CDriver +people/people.h\n"
       "people/people.h: EName\n"
       "fleet.cpp: fleet.h people.h +fleet.h\n"
       "fleet_2.cpp: fleet/vehicles.h people/people.h +fleet/vehicles.h +people/people.h\n"},
  };
  for (Row const& row : rows) EXPECT_EQ(Printed(row.split), row.files);
}

TEST(FilePlan, NamesOfHeadersAreShortAndUniqueAndEachNamespaceHasItsOwn) {
  SchemaFiles files;
  std::string const a(200, 'a');
  files.WriteSchema("shared.xsd", "",
                    "<xs:complexType name='" + a + "b'/><xs:complexType name='" + a + std::string(200, 'c') + "'/>");
  std::string const include = "<xs:include schemaLocation='shared.xsd'/>";
  files.WriteSchema("people.xsd", "urn:people", include);
  files.WriteSchema("a.xsd", "urn:a", include + "<xs:import namespace='urn:people' schemaLocation='people.xsd'/>");
  Schema::SchemaSet const set = files.Load({"a.xsd"});
  Plan::Plan const plan = PlanOf(set);
  std::vector<std::string> const sources = {"fleet.cpp", "fleet_2.cpp"};
  auto const expect = [&](Split split, std::vector<std::string> names) {
    names.insert(names.begin(), {"fleet.h", "people.h"});
    names.insert(names.end(), sources.begin(), sources.end());
    EXPECT_EQ(Code::FileNames(Code::MakeFilePlan(plan, split)), names);
  };
  expect(Split::ByType, {"fleet/" + a + ".h", "fleet/" + a + "2.h", "people/" + a + ".h", "people/" + a + "2.h"});
  expect(Split::BySchema, {"fleet/shared.h", "people/shared.h"});
}

TEST(FilePlan, SourcesHaveLikeSizes) {
  SchemaFiles files;
  std::string types;
  for (int i = 0; i < 600; ++i) {
    std::string const name = "T" + std::to_string(i);
    std::string const other = "T" + std::to_string(i * 7 % 600);
    types += "<xs:complexType name='" + name + "'><xs:sequence><xs:element name='a' type='" + other +
             "' maxOccurs='9'/><xs:element name='b' type='xs:int'/></xs:sequence></xs:complexType>";
    types += "<xs:element name='e" + std::to_string(i) + "' type='" + name + "'/>";
  }
  files.WriteSchema("a.xsd", "", types);
  Schema::SchemaSet const set = files.Load({"a.xsd"});
  Plan::Plan const plan = PlanOf(set);
  Code::FilePlan const split = Code::MakeFilePlan(plan, Split::ByType);
  std::size_t least = plan.classes.size();
  std::size_t most = 0;
  std::size_t all = 0;
  for (Code::SourceFile const& source : split.sources) {
    if (source.isMain) continue;
    least = std::min(least, source.headers.size());
    most = std::max(most, source.headers.size());
    all += source.headers.size();
  }
  EXPECT_GE(split.sources.size(), 3U);
  EXPECT_EQ(all, plan.classes.size());
  EXPECT_LE(most - least, 1U);
}

}  // namespace
}  // namespace Quillon9Generator::Testing
