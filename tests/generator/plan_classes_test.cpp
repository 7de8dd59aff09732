#include "plan_text.h"

namespace Quillon9Generator::Testing {
namespace {

class Classes : public testing::TestWithParam<PlanCase> {};

TEST_P(Classes, AreAsPlanned) { EXPECT_EQ(PlanText(GetParam().schema), GetParam().plan); }

constexpr PlanCase kCases[] = {
    {"ABaseStandsBeforeWhatDerives",
     R"(
<complexType name='C'><complexContent><extension base='t:B'>
  <sequence><element name='c' type='t:A'/></sequence><attribute name='x' use='required'/>
</extension></complexContent></complexType>
<complexType name='B'><complexContent><extension base='t:A'/></complexContent></complexType>
<complexType name='A' abstract='true'>
  <sequence><element name='a' type='t:C' minOccurs='0'/></sequence><attribute name='y'/></complexType>)",
     R"(
class CA of A abstract element c
  0 A m_a: object a? CC
  1 Y m_y: value @y? string preserve
class CB of B : CA
class CC of C : CB element a
  2 C m_c: object c CA mandatory
  3 X m_x: value @x string preserve mandatory
)"},
    {"AnonymousTypesAreNested",
     R"(
<element name='order'><complexType><sequence>
  <element name='item' maxOccurs='9'><complexType>
    <sequence><element name='item' minOccurs='0'><complexType/></element></sequence>
    <attribute name='colour'><simpleType><restriction base='token'><enumeration value='red'/></restriction>
    </simpleType></attribute></complexType></element>
</sequence></complexType></element>)",
     R"(
class COrder element order
  class COrder::CItem element item
    enum COrder::CItem::EColour: Red="red"
    class COrder::CItem::CItem2 element item
    0 Item m_item: object item? COrder::CItem::CItem2
    1 Colour m_colour: value @colour? COrder::CItem::EColour
  0 Item m_item: objects item{1,9} COrder::CItem
root Order order COrder
)"},
    {"ANestedClassLeavesTheClassThatItsBaseNeeds",
     R"(
<complexType name='Node'><sequence><element name='child' minOccurs='0'>
  <complexType><complexContent><extension base='t:Leaf'/></complexContent></complexType></element></sequence>
</complexType>
<complexType name='Leaf'><complexContent><extension base='t:Node'/></complexContent></complexType>)",
     R"(
class CNode of Node
  0 Child m_child: object child? CNodeChild
class CLeaf of Leaf : CNode
class CNodeChild : CLeaf element child
)"},
    {"TypesInGroupsAreShared",
     R"(
<group name='person'><sequence><element name='name'><complexType/></element>
  <element name='sex'><simpleType><restriction base='string'><enumeration value='f'/></restriction></simpleType>
</element></sequence></group>
<attributeGroup name='g'><attribute name='unit'>
  <simpleType><restriction base='NMTOKEN'><enumeration value='m'/></restriction></simpleType></attribute>
</attributeGroup>
<complexType name='A'><group ref='t:person'/><attributeGroup ref='t:g'/></complexType>
<complexType name='B'><group ref='t:person' maxOccurs='unbounded'/><attributeGroup ref='t:g'/></complexType>)",
     R"(
enum EPersonSex: F="f"
enum EUnit: M="m"
class CA of A
  0 Name m_name: object name CPersonName mandatory
  1 Sex m_sex: value sex EPersonSex preserve mandatory
  2 Unit m_unit: value @unit? EUnit
class CB of B
  class CB::CPerson round
    0 Name m_name: object name CPersonName mandatory
    1 Sex m_sex: value sex EPersonSex preserve mandatory
  0 Person m_person: rounds{1,} CB::CPerson
  1 Unit m_unit: value @unit? EUnit
class CPersonName element name
)"},
    {"ARestrictionHasTheMembersOfItsBase",
     R"(
<complexType name='A'><sequence><element name='a' type='int' minOccurs='0'/>
  <element name='b' type='t:A' minOccurs='0'/><any namespace='##other' processContents='lax' minOccurs='0'/>
</sequence><attribute name='x'/><anyAttribute namespace='##any'/></complexType>
<complexType name='B'><complexContent><restriction base='t:A'><sequence><element name='b' type='t:B'/></sequence>
  <attribute name='x' use='prohibited'/></restriction></complexContent></complexType>
<complexType name='C'><complexContent><restriction base='t:A'><sequence/><attribute name='z' type='int'/>
</restriction></complexContent></complexType>)",
     R"(
class CA of A element b
  0 A m_a: value a? i4
  1 B m_b: object b? CA
  2 Any m_any: any? allows "##other" not "urn:t"
  3 X m_x: value @x? string preserve
  4 AnyAttribute m_anyAttribute: anyattributes @{0,} allows "##any"
class CB of B : CA replaces-elements replaces-attributes element b
  restates 1 B m_b: object b CB
class CC of C : CA replaces-elements replaces-attributes
  restates 3 X m_x: value @x? string preserve
  5 Z m_z: value @z? i4
)"},
    {"ARestrictionRestatesMembers",
     R"(
<complexType name='A' abstract='true'><choice minOccurs='0'><element name='a' type='string'/>
  <element name='b' type='int' default='1'/></choice></complexType>
<complexType name='B'><complexContent><restriction base='t:A'><sequence><element name='b' fixed='2'>
  <simpleType><restriction base='int'><minInclusive value='2'/></restriction></simpleType></element></sequence>
</restriction></complexContent></complexType>
<complexType name='C'><sequence><element name='c' type='t:A' minOccurs='0' maxOccurs='unbounded'/>
  <choice maxOccurs='unbounded'><element name='d' type='int'/><element name='e' type='int'/></choice>
  <any namespace='##other' minOccurs='0' maxOccurs='3'/></sequence><attribute name='f' type='int'/>
  <anyAttribute namespace='urn:x urn:y'/></complexType>
<complexType name='D'><complexContent><restriction base='t:C'><sequence><element name='c' type='t:B'/>
  <choice maxOccurs='2'><element name='d' type='byte'/><element name='e' type='int'/></choice>
  <any namespace='urn:z'/></sequence><attribute name='f' type='int' use='required' fixed='3'/>
  <anyAttribute namespace='urn:x'/></restriction></complexContent></complexType>
<complexType name='E'><complexContent><extension base='t:D'><sequence><element name='g' type='int'/></sequence>
</extension></complexContent></complexType>
<complexType name='Same'><complexContent><restriction base='t:A'><choice minOccurs='0'>
  <element name='a' type='string'/><element name='b' type='int' default='1'/></choice></restriction></complexContent>
</complexType>)",
     R"(
class CA of A abstract element c
  0 A m_a: value a string preserve in 0
  1 B m_b: value b i4 default="1" in 0
  choice Choice: A B
  rows Choice(A B)?
class CB of B : CA replaces-elements element c
  restates 1 B m_b: value b i4 minInclusive=2 fixed="2"
class CC of C
  class CC::CChoice round
    0 D m_d: value d i4 in 0
    1 E m_e: value e i4 in 0
    choice Choice: D E
    rows Choice(D E)
  0 C m_c: objects c{0,} CA
  1 Choice m_choice: rounds{1,} CC::CChoice
  2 Any m_any: anys{0,3} allows "##other" not "urn:t"
  3 F m_f: value @f? i4
  4 AnyAttribute m_anyAttribute: anyattributes @{0,} allows "urn:x urn:y"
class CD of D : CC replaces-elements replaces-attributes
  restates 0 C m_c: objects c CB
  restates 1 Choice m_choice: rounds{1,2} CC::CChoice
  restates 2 Any m_any: anys allows "urn:z"
  restates 3 F m_f: value @f i4 fixed="3"
  restates 4 AnyAttribute m_anyAttribute: anyattributes @{0,} allows "urn:x"
class CE of E : CD
  5 G m_g: value g i4 mandatory
class CSame of Same : CA
)"},
    {"ARestrictionThatNeedsMoreDoesNotDerive",
     R"(
<complexType name='X' abstract='true'/>
<complexType name='Y'><complexContent><restriction base='t:X'/></complexContent></complexType>
<complexType name='A'><sequence><element name='x' type='t:X' maxOccurs='2'/></sequence></complexType>
<complexType name='B'><complexContent><restriction base='t:A'>
  <sequence><element name='x' type='t:Y'/><element name='x' type='t:Y'/></sequence></restriction></complexContent></complexType>
<complexType name='C'><sequence><element name='c' type='t:A'/></sequence></complexType>
<complexType name='D'><complexContent>
  <restriction base='t:C'><sequence><element name='c' type='t:B'/></sequence></restriction></complexContent>
</complexType>)",
     R"(
class CX of X abstract element x
class CY of Y : CX element x
class CA of A element c
  0 X m_x: objects x{1,2} CX
class CB of B element c
  0 X m_x: object x CY mandatory
  1 X2 m_x2: object x CY mandatory
class CC of C
  0 C m_c: object c CA mandatory
class CD of D
  0 C m_c: object c CB mandatory
a.xsd:5:1: warning: the class of the type "B" does not derive from that of "A", since the element "x" has another type in the base; it cannot stand where that is expected
a.xsd:8:1: warning: the class of the type "D" does not derive from that of "C", since the element "c" has another type in the base; it cannot stand where that is expected
)"},
    {"ARestrictionTakesAnElementInPlaceOfItsHead",
     R"(
<element name='shape' type='token' abstract='true'/>
<element name='round' type='token' substitutionGroup='t:shape'/>
<element name='circle' type='token' substitutionGroup='t:round'/>
<complexType name='A'><sequence><element ref='t:shape' maxOccurs='9'/></sequence></complexType>
<complexType name='B'><complexContent>
  <restriction base='t:A'><sequence><element ref='t:round'/></sequence></restriction></complexContent></complexType>
<complexType name='C'><complexContent>
  <restriction base='t:B'><sequence><element ref='t:circle'/></sequence></restriction></complexContent></complexType>)",
     R"(
class CA of A
  0 Shape m_shape: objects shape{1,9} string of circle string, round string
class CB of B : CA replaces-elements
  restates 0 Shape m_shape: objects round string of circle string, round string
class CC of C : CB replaces-elements
  restates 0 Shape m_shape: objects circle string of circle string
root Round round string
root Circle circle string
)"},
    {"ARestrictionGivesAnAbstractElementItsType",
     R"(
<complexType name='A' abstract='true'/>
<complexType name='B'><complexContent><restriction base='t:A'/></complexContent></complexType>
<complexType name='C'><sequence><element name='c' type='t:A'/></sequence></complexType>
<complexType name='D'><complexContent>
  <restriction base='t:C'><sequence><element name='c' type='t:B'/></sequence></restriction></complexContent>
</complexType>)",
     R"(
class CA of A abstract element c
class CB of B : CA element c
class CC of C
  0 C m_c: object c CA mandatory
class CD of D : CC replaces-elements
  restates 0 C m_c: object c CB mandatory
)"},
    {"AnExtensionOfARestrictionMayNotDerive",
     R"(
<complexType name='A'><sequence><element name='a' type='int'/><element name='b' type='int' minOccurs='0'/>
  <any namespace='##local' minOccurs='0'/></sequence></complexType>
<complexType name='B'><complexContent><restriction base='t:A'><sequence><element name='a' type='int'/>
  <element name='c' type='int' form='unqualified'/></sequence></restriction></complexContent></complexType>
<complexType name='C'><complexContent><extension base='t:B'><sequence><element name='b' type='int'/></sequence>
</extension></complexContent></complexType>
<complexType name='D'><complexContent><restriction base='t:A'><sequence><element name='a' type='int'/></sequence>
</restriction></complexContent></complexType>
<complexType name='E'><complexContent><extension base='t:D'><sequence><element name='b' type='int'/></sequence>
</extension></complexContent></complexType>)",
     R"(
class CA of A
  0 A m_a: value a i4 mandatory
  1 B m_b: value b? i4
  2 Any m_any: any? allows "##local"
class CB of B : CA
class CC of C
  0 A m_a: value a i4 mandatory
  1 C m_c: value c i4 mandatory
  2 B m_b: value b i4 mandatory
class CD of D : CA replaces-elements
  restates 0 A m_a: value a i4 mandatory
class CE of E : CD
  3 B2 m_b2: value b i4 mandatory
a.xsd:6:1: warning: the class of the type "C" does not derive from that of "B", since its base is restricted in the element "b"; it cannot stand where that is expected
)"},
    {"Texts",
     R"(
<complexType name='price'><simpleContent><extension base='decimal'><attribute name='value'/></extension>
</simpleContent></complexType>
<complexType name='low'><simpleContent><restriction base='t:price'><maxInclusive value='9'/></restriction>
</simpleContent></complexType>
<complexType name='para' mixed='true'><choice minOccurs='0' maxOccurs='unbounded'>
  <element name='b' type='string'/></choice></complexType>
<complexType name='name' mixed='true'><attribute name='x'/></complexType>
<complexType name='more' mixed='true'><complexContent><extension base='t:para'><attribute name='text'/></extension>
</complexContent></complexType>)",
     R"(
class CPrice of price
  0 Content m_content: value #text decimal mandatory
  1 Value m_value: value @value? string preserve
class CLow of low : CPrice
class CPara of para mixed
  0 B m_b: values b{0,} string preserve
  1 Text m_text: value #text string preserve mandatory
class CName of name mixed
  0 Text m_text: value #text string preserve mandatory
  1 X m_x: value @x? string preserve
class CMore of more : CPara mixed
  2 TextAttribute m_textAttribute: value @text? string preserve
)"},
    {"Nil",
     R"(
<complexType name='A'/><complexType name='B'><complexContent><extension base='t:A'/></complexContent></complexType>
<complexType name='C'><sequence><element name='a' type='t:A' nillable='true'/>
  <element name='b' type='int' nillable='true'/>
  <element name='c' type='int' nillable='true' maxOccurs='2' default='3'/></sequence></complexType>)",
     R"(
class CA of A nillable element a
class CB of B : CA nillable
class CC of C
  0 A m_a: object a CA mandatory
  1 B m_b: nillable value b i4 mandatory
  2 C m_c: nillable values c{1,2} i4 default="3"
)"},
    {"AnythingAndWildcards",
     R"(
<complexType name='A'><sequence><element name='a'/><element name='b' type='anySimpleType' minOccurs='2' maxOccurs='2'/>
  <any namespace='urn:x ##local ##targetNamespace'/><any maxOccurs='unbounded' minOccurs='0'/>
</sequence><anyAttribute namespace='##other'/></complexType>
<complexType name='B'><complexContent><extension base='t:A'><anyAttribute namespace='urn:t'/></extension>
</complexContent></complexType>
<complexType name='C'><complexContent><extension base='t:A'><anyAttribute namespace='urn:x'/></extension>
</complexContent></complexType>
<complexType name='D'><complexContent><extension base='anyType'><attribute name='d'/></extension></complexContent>
</complexType>
<element name='any'/>)",
     R"(
class CA of A
  0 A m_a: anytype a mandatory
  1 B m_b: anytypes b{2,2}
  2 Any m_any: any mandatory allows "urn:x ##local urn:t"
  3 Any2 m_any2: anys{0,} allows "##any"
  4 AnyAttribute m_anyAttribute: anyattributes @{0,} allows "##other" not "urn:t"
class CB of B : CA
class CC of C : CA
class CD of D mixed
  0 Any m_any: anys{0,} allows "##any"
  1 Text m_text: value #text string preserve mandatory
  2 D m_d: value @d? string preserve
  3 AnyAttribute m_anyAttribute: anyattributes @{0,} allows "##any"
root Any any anytype
a.xsd:5:61: warning: attributes of other namespaces than the wildcard of the base type "A" allows are refused
)"},
    {"SubstitutionGroups",
     R"(
<element name='head' type='t:A'/><element name='one' type='t:A' substitutionGroup='t:head' abstract='true'/>
<element name='two' type='t:B' substitutionGroup='t:one'/>
<complexType name='A'><sequence><element ref='t:head'/><element ref='t:two'/></sequence></complexType>
<complexType name='B'><complexContent><extension base='t:A'/></complexContent></complexType>
<element name='text' type='string' default='x'/>
<element name='word' type='token' substitutionGroup='t:text' nillable='true'/>
<element name='measure' abstract='true'/>
<element name='length' type='int' substitutionGroup='t:measure'/><element name='pair' type='t:B' substitutionGroup='t:measure'/>
<element name='thing'/><element name='bolt' type='t:A' substitutionGroup='t:thing'/>
<element name='a' abstract='true'/><element name='b' type='t:A' substitutionGroup='t:a'/>
<element name='c' type='t:B' substitutionGroup='t:a'/>
<complexType name='C'><sequence><element ref='t:text'/><element ref='t:measure'/>
  <choice maxOccurs='9'><element ref='t:thing'/><element ref='t:a'/></choice></sequence></complexType>)",
     R"(
class CA of A
  0 Head m_head: object head CA of head CA, two CB mandatory
  1 Two m_two: object two CB mandatory
class CB of B : CA
class CC of C
  class CC::CChoice round
    0 Thing m_thing: object thing any-object of bolt CA, thing anytype in 0
    1 A m_a: object a CA of b CA, c CB in 0
    choice Choice: Thing A
    rows Choice(Thing A)
  0 Text m_text: object text string preserve of text string preserve default="x", word string mandatory
  1 Measure m_measure: object measure bound-object of length i4, pair CB mandatory
  2 Choice m_choice: rounds{1,9} CC::CChoice
root Head head CA alias CHead
root Two two CB alias CTwo
root Text text string preserve default="x"
root Word word string
root Length length i4
root Pair pair CB alias CPair
root Thing thing anytype
root Bolt bolt CA alias CBolt
root B b CA
root C c CB
)"},
    {"BlockedSubstitutionGroups",
     R"(
<complexType name='A'/>
<complexType name='B'><complexContent><extension base='t:A'/></complexContent></complexType>
<complexType name='C' block='restriction'><complexContent><extension base='t:A'/></complexContent></complexType>
<complexType name='D'><complexContent><restriction base='t:C'/></complexContent></complexType>
<element name='all' type='t:A'/><element name='none' type='t:A' block='#all'/>
<element name='noExtension' type='t:A' block='extension'/><element name='noMember' type='t:A' block='substitution'/>
<element name='all2' type='t:A' substitutionGroup='t:all'/><element name='all3' type='t:B' substitutionGroup='t:all'/>
<element name='all4' type='t:D' substitutionGroup='t:all'/>
<element name='none2' type='t:A' substitutionGroup='t:none'/>
<element name='noExtension2' type='t:A' substitutionGroup='t:noExtension'/>
<element name='noExtension3' type='t:B' substitutionGroup='t:noExtension'/>
<element name='noMember2' type='t:A' substitutionGroup='t:noMember'/>
<complexType name='All'><sequence><element ref='t:all'/><element ref='t:none'/><element ref='t:noExtension'/>
  <element ref='t:noMember'/></sequence></complexType>)",
     R"(
class CA of A
class CB of B : CA by extension
class CC of C : CA by extension blocks restriction
class CD of D : CC by restriction element all4
class CAll of All
  0 All m_all: object all CA of all CA, all2 CA, all3 CB mandatory
  1 None m_none: object none CA mandatory blocks extension restriction
  2 NoExtension m_noExtension: object noExtension CA of noExtension CA blocks extension, noExtension2 CA mandatory
  3 NoMember m_noMember: object noMember CA mandatory
root All all CA
root None none CA blocks extension restriction alias CNone
root NoExtension noExtension CA blocks extension alias CNoExtension
root NoMember noMember CA alias CNoMember
root All2 all2 CA alias CAll2
root All3 all3 CB alias CAll3
root All4 all4 CD alias CAll4
root None2 none2 CA alias CNone2
root NoExtension2 noExtension2 CA alias CNoExtension2
root NoExtension3 noExtension3 CB alias CNoExtension3
root NoMember2 noMember2 CA alias CNoMember2
)"},
    {"DefaultsAndFixedValues",
     R"(
<complexType name='A'><sequence><element name='a' type='int' default='1'/>
  <element name='b' type='string' fixed='x' minOccurs='0'/><element name='c' type='int' default='1' maxOccurs='2'/>
</sequence><attribute name='d' type='int' default='7'/><attribute name='e' fixed='y' use='required'/></complexType>)",
     R"(
class CA of A
  0 A m_a: value a i4 mandatory default="1"
  1 B m_b: value b? string preserve fixed="x"
  2 C m_c: nillable values c{1,2} i4 default="1"
  3 D m_d: value @d? i4 default="7"
  4 E m_e: value @e string preserve mandatory fixed="y"
)"},
};

INSTANTIATE_TEST_SUITE_P(Plan, Classes, testing::ValuesIn(kCases), NameOfCase);

/// Groups g0 to g\p count, of which each has the one before \p times.
std::string GroupsInGroups(int count, int times, std::string const& begin, std::string const& end) {
  std::string text = "<group name='g0'><sequence><element name='a' type='int'/></sequence></group>";
  for (int i = 1; i <= count; ++i) {
    text += "<group name='g" + std::to_string(i) + "'><sequence>" + begin;
    for (int j = 0; j < times; ++j) text += "<group ref='t:g" + std::to_string(i - 1) + "'/>";
    text += end + "</sequence></group>";
  }
  return text;
}

TEST(PlanLimits, EndInAnError) {
  std::string types, begin, end;
  for (char const name : {'A', 'B', 'C', 'D', 'E'}) {
    types += std::string("<complexType name='") + name + "'><group ref='t:g15'/></complexType>";
  }
  for (int i = 0; i < 150; ++i) {
    begin += "<choice>";
    end += "</choice>";
  }
  std::string const deep = "<complexType name='A'><group ref='t:g20'/></complexType>";
  for (std::string const& schema : {GroupsInGroups(15, 2, "", "") + types, GroupsInGroups(20, 1, begin, end) + deep}) {
    SchemaFiles files;
    Schema::SchemaSet const set = SchemaOf(schema, files);
    Schema::Diagnostics diagnostics;
    Plan::MakePlan(set, {}, diagnostics);
    ASSERT_EQ(diagnostics.All().size(), 1U);
    EXPECT_NE(diagnostics.All()[0].text.find("the content models are too large"), std::string::npos);
  }
}

/// What all types share is copied for each of them, so a small schema could ask for any amount.
TEST(Plan, RepeatedDocumentationIsLimited) {
  std::string schema = "<attributeGroup name='G'><attribute name='a'><annotation><documentation>" +
                       std::string(100000, 'x') + "</documentation></annotation></attribute></attributeGroup>";
  for (int i = 0; i < 600; ++i) {
    schema += "<complexType name='T" + std::to_string(i) + "'><attributeGroup ref='t:G'/></complexType>";
  }
  SchemaFiles files;
  Schema::SchemaSet const set = SchemaOf(schema, files);
  Schema::Diagnostics diagnostics;
  Plan::MakePlan(set, {}, diagnostics);
  ASSERT_EQ(diagnostics.All().size(), 1U);
  EXPECT_NE(Format(diagnostics.All()[0]).find("more than 50000000 octets of documentation"), std::string::npos);
}

}  // namespace
}  // namespace Quillon9Generator::Testing
