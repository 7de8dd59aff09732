#include "plan_text.h"

namespace Quillon9Generator::Testing {
namespace {

struct SelectionCase {
  char const* name;
  std::vector<std::string> roots;
  char const* schema;
  char const* plan;
};

class Selection : public testing::TestWithParam<SelectionCase> {};

TEST_P(Selection, KeepsWhatTheRootsReach) {
  Plan::PlanOptions options;
  options.roots = GetParam().roots;
  EXPECT_EQ(PlanText(GetParam().schema, options), GetParam().plan);
}

constexpr char kFleet[] = R"(
<element name='fleet'><complexType><sequence><element ref='t:vehicle'/></sequence></complexType></element>
<element name='vehicle' type='t:Vehicle' abstract='true'/>
<element name='car' type='t:Car' substitutionGroup='t:vehicle'/>
<element name='hull' type='t:Vehicle'/>
<complexType name='Vehicle'/>
<complexType name='Car'><complexContent><extension base='t:Vehicle'/></complexContent></complexType>
<complexType name='Plane'><complexContent><extension base='t:Vehicle'/></complexContent></complexType>)";

SelectionCase const kCases[] = {
    {"TypesOfMembersBasesAndDerivedOnes",
     {"order"},
     R"(
<element name='order' type='t:Order'/>
<element name='list'><complexType><sequence><element ref='t:order'/></sequence></complexType></element>
<simpleType name='Colour'><restriction base='token'><enumeration value='red'/></restriction></simpleType>
<simpleType name='Unused'><restriction base='token'><enumeration value='x'/></restriction></simpleType>
<complexType name='Base'/>
<complexType name='OfBase'><complexContent><extension base='t:Base'/></complexContent></complexType>
<group name='g'><sequence><element name='item' type='t:Item'/></sequence></group>
<complexType name='Order'><complexContent><extension base='t:Base'><sequence><group ref='t:g'/>
  <any namespace='##targetNamespace'/></sequence><attribute name='c' type='t:Colour'/></extension></complexContent>
</complexType>
<complexType name='Item'/>
<complexType name='SpecialItem'><complexContent><extension base='t:Item'><sequence>
  <element name='order' type='t:Order' minOccurs='0'/></sequence></extension></complexContent></complexType>)",
     R"(
enum EColour of Colour: Red="red"
class CBase of Base
class COrder of Order : CBase element order
  0 Item m_item: object item CItem mandatory
  1 Any m_any: any mandatory allows "urn:t"
  2 C m_c: value @c? EColour
class CItem of Item element item
class CSpecialItem of SpecialItem : CItem
  0 Order m_order: object order? COrder
root Order order COrder
)"},
    {"ElementsOfAGroupAreMadeButNotRead", {"{urn:t}fleet"}, kFleet, R"(
class CVehicle of Vehicle
class CCar of Car : CVehicle element car
class CFleet element fleet
  0 Vehicle m_vehicle: object vehicle CVehicle of car CCar mandatory
root Fleet fleet CFleet
made Car car CCar
)"},
    {"AnAbstractRootStandsForItsGroup", {"vehicle"}, kFleet, R"(
class CVehicle of Vehicle
class CCar of Car : CVehicle element car
root Car car CCar
)"},
    {"WrongRootsAreNamed",
     {"fleets", "{urn:x}fleet", "vehicle"},
     "<element name='fleet'/><element name='vehicle' abstract='true'/>",
     R"(
error: no global element "fleets" to begin with
error: no global element "{urn:x}fleet" to begin with
error: the element "vehicle" is abstract, and no other may stand in its place
)"},
};

INSTANTIATE_TEST_SUITE_P(Plan, Selection, testing::ValuesIn(kCases),
                         [](auto const& tested) { return std::string(tested.param.name); });

TEST(SelectionOfNamespaces, WantsNamespacesThatAreThere) {
  SchemaFiles files;
  files.WriteSchema("a.xsd", "urn:a", "<xs:import namespace='urn:b' schemaLocation='b.xsd'/><xs:element name='x'/>");
  files.WriteSchema("b.xsd", "urn:b", "<xs:element name='x'/>");
  Plan::PlanOptions options;
  options.cppNamespace = "N";
  options.namespaces = {{"urn:b", "N::CB"}, {"", "M"}};
  options.roots = {"x"};
  Schema::Diagnostics diagnostics;
  MakePlan(files.Load({"a.xsd"}), options, diagnostics);
  ASSERT_EQ(diagnostics.All().size(), 2U);
  EXPECT_EQ(Format(diagnostics.All()[0]),
            "error: \"x\" may be any of the elements {urn:a}x, {urn:b}x; name it with its namespace");
  EXPECT_EQ(Format(diagnostics.All()[1]), "error: no schema has the namespace \"\", which shall become M");
}

}  // namespace
}  // namespace Quillon9Generator::Testing
