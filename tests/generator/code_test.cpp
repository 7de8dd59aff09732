#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "code/text.h"
#include "code/value_text.h"
#include "code/write.h"
#include "expect_failure.h"
#include "golden/drawings.h"
#include "golden/fleets.h"
#include "golden/journals.h"
#include "golden/orders.h"
#include "plan/make_plan.h"
#include "schema/load.h"
#include "schema_files.h"

namespace Quillon9Generator::Testing {
namespace {

using Company::Drawings::CCircle;
using Company::Drawings::CDrawing;
using Company::Drawings::EColour;

std::string ReadFile(std::string const& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<Code::GeneratedFile> Generate(std::string const& schema, Plan::PlanOptions const& options) {
  Schema::Diagnostics diagnostics;
  Schema::SchemaSet const set = Schema::LoadSchemas({{schema}, {}, {}}, diagnostics);
  Plan::Plan const plan = Plan::MakePlan(set, options, diagnostics);
  EXPECT_TRUE(diagnostics.All().empty());
  return Code::Write(plan);
}

// The files are also compiled into this test. To accept a change: quillon9 generate -n NAMESPACE -o tests/generator/golden
// SCHEMA, for the journals with --namespace-of urn:people=Journals::People.
TEST(Code, WritesTheGoldenFiles) {
  struct Row {
    char const* schema;
    char const* cppNamespace;
  };
  Row const rows[] = {{QUILLON9_GOLDEN "/purchase_order.xsd", "Orders"},
                      {QUILLON9_GOLDEN "/drawing.xsd", "Company::Drawings"},
                      {QUILLON9_GOLDEN "/drones.xsd", "Fleets"},
                      {QUILLON9_GOLDEN "/journal.xsd", "Journals"},
                      {QUILLON9_GOLDEN "/station.xsd", "Stations"}};
  for (Row const& row : rows) {
    Plan::PlanOptions options;
    options.cppNamespace = row.cppNamespace;
    if (options.cppNamespace == "Journals") options.namespaces = {{"urn:people", "Journals::People"}};
    for (Code::GeneratedFile const& file : Generate(row.schema, options)) {
      EXPECT_EQ(file.content, ReadFile(std::string(QUILLON9_GOLDEN "/") + file.path)) << file.path;
    }
  }
}

char const kDrawing[] =
    "<drawing xmlns='urn:drawing' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' palette='dark'>"
    "<author born='1967'>Zo\xC3\xAB</author><background/>"
    "<shape xsi:type='Circle' id='a'><line>bl\xC3\xA4ulich \"?\?=\"</line><radius>0.1</radius></shape>"
    "<comment>two</comment>"
    "<shape xsi:type='Group' id='b'><member xsi:type='Circle' id='c'><radius>INF</radius></member></shape>"
    "<reviewed xsi:nil='true'/><palette>red</palette><palette>light-green</palette>"
    "<x:other xmlns:x='urn:x'>5</x:other></drawing>";

TEST(Code, ClassicValuesAreAskedForByAllClasses) {
  Plan::PlanOptions options;
  options.cppNamespace = "Stations";
  options.classicValues = true;
  std::size_t rows = 0;
  std::size_t classic = 0;
  for (Code::GeneratedFile const& file : Generate(QUILLON9_GOLDEN "/station.xsd", options)) {
    auto const count = [&](std::string const& part) {
      std::size_t found = 0;
      for (auto at = file.content.find(part); at != file.content.npos; at = file.content.find(part, at + 1)) ++found;
      return found;
    };
    rows += count("constexpr ClassRow ");
    classic += count("ValueRules_Classic");
  }
  EXPECT_GT(rows, 0u);
  EXPECT_EQ(classic, rows);
}

TEST(Code, GoldenClassesReadAndWriteWhatTheSchemaSays) {
  CSmartPtr<CDrawing> drawing = Company::Drawings::ReadDrawing(Quillon9::XmlText(kDrawing));
  EXPECT_EQ(drawing->GetChoice2(), CDrawing::EChoice2::Author);
  EXPECT_EQ(drawing->GetAuthor()->GetValue(), "Zo\xC3\xAB");
  EXPECT_EQ(drawing->GetBackground(), EColour::LightGreen);
  EXPECT_EQ(drawing->GetChoice().GetCount(), 3);
  EXPECT_EQ(drawing->GetChoice()[1].GetChoice(), CDrawing::CChoice::EChoice::Comment);
  EXPECT_EQ(dynamic_cast<CCircle&>(*drawing->GetChoice()[0].GetShape()).GetRadius(), 0.1);
  EXPECT_EQ(drawing->GetScale(), 1.0F);
  EXPECT_FALSE(drawing->HasScale());
  EXPECT_TRUE(drawing->GetReviewed().IsNil());
  EXPECT_EQ(drawing->GetPalette()[1], EColour::LightGreen);
  EXPECT_EQ(drawing->GetAny().GetCount(), 1);

  std::string const written = drawing->ToXml();
  EXPECT_EQ(Company::Drawings::ReadDrawing(Quillon9::XmlText(written))->ToXml(), written);
  EXPECT_EQ(written.find("scale"), written.npos) << written;
  EXPECT_EQ(Company::Drawings::ReadDrawing(drawing->ToFastInfosetStream())->ToXml(), written);

  drawing->SetCompany("Shapes");
  EXPECT_EQ(drawing->GetChoice2(), CDrawing::EChoice2::Company);
  EXPECT_EQ(drawing->GetAuthor(), nullptr);
  EXPECT_THROW(drawing->SetScale(0.0F), Quillon9::CQnException);
  EXPECT_THROW(drawing->SetVersion(Quillon9::CDecimal("2")), Quillon9::CQnInvalidValueException);
  EXPECT_THROW(Company::Drawings::ReadNote(Quillon9::XmlText(kDrawing)), Quillon9::CQnValidationException);
}

TEST(Code, GoldenOrderComesBack) {
  auto const order = Orders::ReadPurchaseOrder(Quillon9::XmlText(
      "<purchaseOrder><shipTo><name>A</name><street>B</street><city>C</city><state>D</state><zip>12345</zip></shipTo>"
      "<items><item partNum='123-AB'><productName>P</productName><quantity>2</quantity><USPrice>1.5</USPrice>"
      "<serial>1</serial><serial>2</serial></item></items></purchaseOrder>"));
  EXPECT_EQ(order->GetShipTo().GetCountry(), "US");
  EXPECT_EQ(order->GetBillTo(), nullptr);
  EXPECT_EQ(order->GetItems().GetItem()[0].GetSerial().GetCount(), 2);
  EXPECT_THROW(order->GetItems().GetItem()[0].SetQuantity(100), Quillon9::CQnException);
  std::string const written = order->ToXml();
  EXPECT_EQ(Orders::ReadPurchaseOrder(Quillon9::XmlText(written))->ToXml(), written);
}

/// A fleet with these elements in place of a name, the vehicles and what follows them.
std::string FleetOf(std::string const& name, std::string const& vehicles, std::string const& rest) {
  return "<fleet xmlns='urn:fleet' xmlns:d='urn:drones' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>" + name +
         vehicles + rest + "</fleet>";
}

TEST(Code, GoldenElementsStandInPlaceOfTheirHead) {
  auto const fleet = Fleets::ReadFleet(Quillon9::XmlText(FleetOf(
      "<nickname> blue  wheels </nickname>",
      "<van plate='1' seats='7'/><d:car><tractor/><d:range>5</d:range></d:car><car xsi:type='SportsCar' seats='2'/>"
      "<truck/><car xsi:nil='true'/>",
      "<memo plate='3'/><until>2024-02-01</until><tractor/><weight>7.5</weight><truck/>")));
  EXPECT_EQ(fleet->GetName().GetValue(), "blue wheels");
  EXPECT_EQ(fleet->GetName().GetElementName(), "nickname");
  std::string names;
  for (Fleets::CVehicle const& vehicle : fleet->GetVehicle()) {
    names += "{" + vehicle.GetTargetNamespace() + "}" + vehicle.GetElementName() + " ";
  }
  EXPECT_EQ(names, "{urn:fleet}van {urn:drones}car {urn:fleet}car {urn:fleet}truck {urn:fleet}car ");
  auto const& drone = dynamic_cast<Fleets::CDrone const&>(fleet->GetVehicle()[1]);
  EXPECT_EQ(drone.GetRange(), 5);
  EXPECT_EQ(drone.GetVehicle()->GetElementName(), "tractor");
  EXPECT_NE(dynamic_cast<Fleets::CSportsCar*>(&fleet->GetVehicle()[2]), nullptr);
  EXPECT_TRUE(dynamic_cast<Fleets::CCar&>(fleet->GetVehicle()[4]).IsNil());
  EXPECT_EQ(fleet->GetChoice(), Fleets::CFleet::EChoice::Remark);
  EXPECT_NE(dynamic_cast<Quillon9::CValueElement<Quillon9::CDecimal> const*>(fleet->GetSequence()[1].GetLimit()),
            nullptr);
  std::string const written = fleet->ToXml();
  EXPECT_NE(written.find("SportsCar"), written.npos) << written;
  EXPECT_EQ(written.find("xsi:type"), written.rfind("xsi:type")) << written;
  EXPECT_EQ(Fleets::ReadFleet(Quillon9::XmlText(written))->ToXml(), written);
}

TEST(Code, GoldenElementsAreMadeByTheirNames) {
  auto const fleet = Fleets::CreateFleet();
  fleet->GetName().SetValue("plain");
  fleet->GetVehicle().Add(Fleets::CreateVan()).SetSeats(3);
  fleet->GetVehicle().Add(Fleets::CreateCar());                 // the drone
  fleet->GetVehicle().Add(Fleets::CDrone::CreateInstance(""));  // the only element of its class
  fleet->GetVehicle().Add(Fleets::CTruck::CreateInstance("tractor"));
  fleet->GetVehicle()[3].SetVehicle(Fleets::CreateTruck());
  fleet->SetRemark(new Quillon9::CElement("remark", "urn:fleet", "##any", ""));
  auto& round = fleet->GetSequence().Add();
  round.SetLimit(Fleets::CreateWeight());
  EXPECT_EQ(round.GetTruck().GetElementName(), "truck");
  EXPECT_EQ(
      Fleets::ReadFleet(Quillon9::XmlText(fleet->ToXml()))->ToXml(),
      Fleets::ReadFleet(Quillon9::XmlText(FleetOf("<name>plain</name>",
                                                  "<van "
                                                  "seats='3'/><d:car><d:range>0</d:range></d:car><d:car><d:range>0</"
                                                  "d:range></d:car><tractor><truck/></tractor>",
                                                  "<remark/><weight>0</weight><truck/>")))
          ->ToXml());

  auto& vehicles = fleet->GetVehicle();
  EXPECT_FAILURE(CQnInvalidStateException, "The element [vehicle] is abstract", vehicles.Add());
  EXPECT_FAILURE(CQnInvalidParamException, "The element [] is not in the substitution group of [vehicle]",
                 vehicles.Add(Fleets::CCar::CreateInstance("")));
  EXPECT_FAILURE(CQnInvalidParamException, "The element [memo] is not in the substitution group of [vehicle]",
                 vehicles.Add(Fleets::CreateMemo()));
  EXPECT_FAILURE(CQnInvalidParamException, "An object of the type [Car] cannot be the element [tractor]",
                 vehicles.Add(Fleets::CCar::CreateInstance("tractor")));
  EXPECT_FAILURE(CQnInvalidParamException, "The element [memo] is not in the substitution group of [remark]",
                 fleet->SetRemark(new Quillon9::CElement("memo", "urn:fleet", "##any", "")));
}

TEST(Code, GoldenElementsAreToldApartByTheirClass) {
  auto const fleet = Fleets::ReadFleet(Quillon9::XmlText(FleetOf("<name/>", "<truck/><car/><car seats='2'/>", "")));
  // [substitution]
  for (Fleets::CVehicle& vehicle : fleet->GetVehicle()) {  // cars, vans and trucks, as they stand in the document
    if (auto* car = dynamic_cast<Fleets::CCar*>(&vehicle)) car->SetSeats(4);
  }
  fleet->GetVehicle().Add(Fleets::CreateVan()).SetSeats(3);  // <van seats="3"/>
  // [substitution]
  EXPECT_EQ(Fleets::ReadFleet(Quillon9::XmlText(fleet->ToXml()))->ToXml(),
            Fleets::ReadFleet(
                Quillon9::XmlText(FleetOf("<name/>", "<truck/><car seats='4'/><car seats='4'/><van seats='3'/>", "")))
                ->ToXml());
}

TEST(Code, GoldenElementsStandNowhereElse) {
  struct Row {
    char const* name;
    char const* vehicles;
    char const* rest;
    char const* failure;
  };
  Row const rows[] = {
      {"<name/>", "<van/>", "", ""},
      {"", "<van/>", "", "Failed to find a required element [name]"},
      {"<name/>", "<vehicle/>", "", "[vehicle]"},
      {"<name/>", "<d:van/>", "", "[vehicle]"},
      {"<name/>", "<van/><fleet/>", "", "[fleet]"},
      {"<name/>", "<van/>", "<weight>41</weight><truck/>", "Invalid Value for text [41]"},
      {"<name/>", "<van/>", "<weight>x</weight><truck/>", "The value [x] is not a valid"},
      {"<name/>", "<van/>", "<limit/><truck/>", "[limit]"},
      {"<name/>", "<van/>", "<weight>1</weight><car/>", "Failed to find a required element [truck]"},
      {"<name/>", "<van/>", "<axle>1</axle><axle>2</axle><axle>3</axle><axle>4</axle><brake/>", ""},
      {"<name/>", "<van/>", "<axle>1</axle><axle>2</axle><axle>3</axle>", "The Minimum number of [axle] elements"},
      {"<name/>", "<truck xsi:type='Car'/>", "", "The type [Car] of the element [truck] is not derived from [Truck]"},
  };
  for (Row const& row : rows) {
    std::string failure;
    try {
      Fleets::ReadFleet(Quillon9::XmlText(FleetOf(row.name, row.vehicles, row.rest)));
    } catch (Quillon9::CQnException const& thrown) {
      failure = thrown.GetFullMessage();
    }
    EXPECT_EQ(failure.empty(), *row.failure == '\0') << row.vehicles << row.rest << failure;
    EXPECT_NE(failure.find(row.failure), failure.npos) << failure;
  }
}

TEST(Code, GoldenClassesOfSeveralNamespacesWorkTogether) {
  auto const journal = Journals::ReadJournal(Quillon9::XmlText(
      "<journal xmlns='urn:journal' xmlns:p='urn:people' open='present'><p:person><p:name>A</p:name></p:person>"
      "<author><p:name>B</p:name><paper>x</paper></author>"
      "<p:editor status='away'><p:name>C</p:name><paper>y</paper><p:remark><line>z</line></p:remark></p:editor>"
      "<note><line>n</line></note><reply to='A'/></journal>"));
  EXPECT_EQ(journal->GetOpen(), Journals::People::EStatus::Present);
  EXPECT_EQ(journal->GetReply()->GetTo(), "A");
  auto const& editor = dynamic_cast<Journals::People::CEditor const&>(journal->GetPerson()[2]);
  EXPECT_EQ(editor.GetRemark()->GetLine(), "z");
  EXPECT_EQ(editor.GetPaper()[0], "y");
  std::string const written = journal->ToXml();
  EXPECT_EQ(Journals::ReadJournal(Quillon9::XmlText(written))->ToXml(), written);

  Quillon9::CXmlSource const person = Quillon9::XmlText("<person xmlns='urn:people'><name>A</name></person>");
  EXPECT_EQ(Journals::People::ReadPerson(person)->GetName(), "A");
  EXPECT_NE(dynamic_cast<Journals::People::CPerson*>(Journals::ReadRoot(person).Get()), nullptr);
}

TEST(Code, CommentsSayWhatNotationsStandFor) {
  SchemaFiles files;
  files.WriteSchema("a.xsd", "",
                    "<xs:notation name='plain' public='text/plain'/><xs:notation name='page' system='viewer'/>"
                    "<xs:complexType name='T'><xs:attribute name='form' type='F'/></xs:complexType>"
                    "<xs:simpleType name='F'><xs:restriction base='xs:NOTATION'><xs:enumeration value='plain'/>"
                    "<xs:enumeration value='page'/></xs:restriction></xs:simpleType>");
  Plan::PlanOptions options;
  options.cppNamespace = "N";
  Schema::Diagnostics diagnostics;
  std::string const header = Code::Write(Plan::MakePlan(files.Load({"a.xsd"}), options, diagnostics))[0].content;
  EXPECT_NE(header.find("/// One of the notations plain (text/plain), page (viewer).\n"), header.npos) << header;
}

TEST(Code, LiteralsAndCommentsHoldAnyText) {
  EXPECT_EQ(Code::Literal("a\"\\\n\x01?\?=\xC3\xA4"
                          "1"),
            R"("a\"\\\n\001?\?=\303\2441")");
  struct Row {
    char const* documentation;
    char const* comment;
  };
  Row const rows[] = {
      {"", ""},
      {" \n\t\n", ""},
      {"a\n  b\n\n\nc ", "/// a b\n///\n/// c\n"},
      {"a\\b @c \\", "/// a\\\\b \\@c &#92;\n"},
      {"x\xE2\x80\xAEy what?\?/", "/// xy what?? /\n"},
  };
  for (Row const& row : rows) {
    Code::Text text;
    text.Comment(row.documentation);
    EXPECT_EQ(text.Take(), row.comment);
  }
}

TEST(Code, DefaultsBecomeExpressionsOfTheirType) {
  struct Row {
    Quillon9::ItemType kind;
    char const* text;
    char const* expression;
  };
  std::string const collapse = ", Quillon9::CWhitespaceUtils::WhitespaceRule_Collapse)";
  Row const rows[] = {
      {Quillon9::ItemType_string, " a  b ", "\"a b\""},
      {Quillon9::ItemType_boolean, "1", "true"},
      {Quillon9::ItemType_i4, "+007", "7"},
      {Quillon9::ItemType_i8, "-9223372036854775807", "-9223372036854775807"},
      {Quillon9::ItemType_i8, "-9223372036854775808", "Quillon9::CConversions::i8FromString(\"-9223372036854775808\""},
      {Quillon9::ItemType_ui8, "18446744073709551615", "18446744073709551615U"},
      {Quillon9::ItemType_r4, "1", "1.0F"},
      {Quillon9::ItemType_r8, "1e-3", "1e-3"},
      {Quillon9::ItemType_r8, "-INF", "Quillon9::CConversions::r8FromString(\"-INF\""},
      {Quillon9::ItemType_decimal, " 1.50", "Quillon9::CDecimal(\"1.50\")"},
      {Quillon9::ItemType_date, "2001-02-03", "Quillon9::CConversions::dateFromString(\"2001-02-03\""},
  };
  for (Row const& row : rows) {
    Plan::ValueType type;
    type.kind = row.kind;
    std::string expected = row.expression;
    if (expected.find("FromString") != expected.npos) expected += collapse;
    EXPECT_EQ(Code::ValueText(type, row.text, ""), expected);
  }
}

TEST(Code, DependencyFileEscapesPaths) {
  EXPECT_EQ(Code::DependencyFile({"out/a b.h", "c.cpp"}, {"x#$.xsd", "y\\ z.xsd"}),
            "out/a\\ b.h c.cpp: \\\n  x\\#$$.xsd \\\n  y\\\\\\ z.xsd\n\nx\\#$$.xsd:\n\ny\\\\\\ z.xsd:\n");
}

}  // namespace
}  // namespace Quillon9Generator::Testing
