#include "plan/names.h"
#include "plan_text.h"

namespace Quillon9Generator::Testing {
namespace {

TEST(Names, AreUpperCamelInAscii) {
  struct {
    char const* given;
    char const* name;
  } const cases[] = {
      {"shipTo", "ShipTo"},
      {"po-number.x y", "PoNumberXY"},
      {"snake_case__x", "Snake_case_x"},
      {"_Feature", "_Feature"},
      {"3d", "N3d"},
      {"-1", "N1"},
      {"", "Empty"},
      {"+", "U002B"},
      {"<=", "U003CU003D"},
      {"Größe", "Grosse"},
      {"čeština", "Cestina"},
      {"Подписант", "Podpisant"},
      {"Объём", "Obem"},
      {"Αθήνα", "Athina"},
      {"名", "U540D"},
      {"a·b×c", "ABC"},
      {"e\xCC\x81t\xC3\xA9", "Ete"},  // a combining accent
      {"a\xFF"
       "b\xE9",
       "AB"},  // no UTF-8
  };
  for (auto const& each : cases) EXPECT_EQ(Plan::UpperCamel(each.given), each.name) << each.given;
}

TEST(Names, OfFieldsLowerTheFirstWord) {
  EXPECT_EQ(Plan::FieldName("ShipTo"), "m_shipTo");
  EXPECT_EQ(Plan::FieldName("ID"), "m_id");
  EXPECT_EQ(Plan::FieldName("URLPath"), "m_urlPath");
  EXPECT_EQ(Plan::FieldName("_Feature"), "m_feature");
  EXPECT_EQ(Plan::FieldName("X2"), "m_x2");
}

class UniqueNames : public testing::TestWithParam<PlanCase> {};

TEST_P(UniqueNames, FollowTheRules) { EXPECT_EQ(PlanText(GetParam().schema), GetParam().plan); }

constexpr PlanCase kCases[] = {
    {"Members",
     R"(
<complexType name='A'><sequence><element name='x' type='int'/><element name='X' type='int'/>
  <element name='namespace' type='int'/><element name='elementName' type='int'/><choice>
    <element name='choice' type='int'/><element name='none' type='int'/></choice>
  <choice><element name='_y' type='int'/><element name='None' type='int'/></choice></sequence>
  <attribute name='x' type='int'/><attribute name='y-z' type='int'/><attribute name='y.z' type='int'/>
  <attribute name='nil' type='int'/><attribute name='MAX' type='int'/>
  <attribute name='type-attribute' type='int'/></complexType>
<complexType name='B'><complexContent><extension base='t:A'><sequence><element name='x1' type='int'/></sequence>
  <attribute name='X1' type='int'/><attribute name='X' type='int'/></extension></complexContent></complexType>)",
     R"(
class CA of A
  0 X m_x: value x i4 mandatory
  1 X2 m_x2: value X i4 mandatory
  2 NamespaceElement m_namespaceElement: value namespace i4 mandatory
  3 ElementNameElement m_elementNameElement: value elementName i4 mandatory
  4 Choice m_choice: value choice i4 in 0
  5 None m_none: value none i4 in 0
  6 _Y m_y: value _y i4 in 1
  7 None2 m_none2: value None i4 in 1
  8 XAttribute m_xAttribute: value @x? i4
  9 YZ m_yz: value @y-z? i4
  10 YZ2 m_yz2: value @y.z? i4
  11 NilAttribute m_nilAttribute: value @nil? i4
  12 MAX m_max: value @MAX? i4
  13 TypeAttributeAttribute m_typeAttributeAttribute: value @type-attribute? i4
  choice Choice2: Choice None2
  choice Choice3: Y None2
  rows X X2 NamespaceElement ElementNameElement Choice2(Choice None) Choice3(_Y None2)
class CB of B : CA
  14 X1 m_x1: value x1 i4 mandatory
  15 X1Attribute m_x1Attribute: value @X1? i4
  16 XAttribute2 m_xAttribute2: value @X? i4
)"},
    {"Types",
     R"(
<complexType name='order'/><complexType name='Order'/><element name='order'><complexType/></element>
<element name='invoice' type='t:order'/><element name='Order' type='t:order'/>
<element name='root' type='int'/><complexType name='SmartPtr'/>
<simpleType name='RANGE'><restriction base='string'><enumeration value='NULL'/></restriction></simpleType>)",
     R"(
enum ERANGE_ of RANGE: NULL_="NULL"
class COrder of order
class COrder2 of Order
class CSmartPtr2 of SmartPtr
class COrderElement element order
root Order order COrderElement
root Invoice invoice COrder alias CInvoice
root OrderElement Order COrder
root RootElement root i4
)"},
    {"NestedTypes",
     R"(
<complexType name='Item'/>
<complexType name='Items'><sequence><element name='items'><complexType/></element>
  <element name='item'><complexType/></element>
  <choice><element name='choice'><simpleType><restriction base='string'><enumeration value='a'/></restriction>
  </simpleType></element><element name='b' type='t:Item'/></choice></sequence></complexType>)",
     R"(
class CItem of Item element b
class CItems of Items
  enum CItems::EChoice: A="a"
  class CItems::CItems2 element items
  class CItems::CItem element item
  0 Items m_items: object items CItems::CItems2 mandatory
  1 Item m_item: object item CItems::CItem mandatory
  2 Choice m_choice: value choice CItems::EChoice preserve in 0
  3 B m_b: object b CItem in 0
  choice Choice2: Choice B
  rows Items Item Choice2(Choice B)
)"},
    {"Enumerators",
     R"(
<simpleType name='A'><restriction base='token'><enumeration value='red'/><enumeration value='Red'/>
  <enumeration value='1'/><enumeration value='-1'/><enumeration value='EOF'/><enumeration value=''/>
  <enumeration value='_b'/><enumeration value='+'/><enumeration value='красный'/></restriction></simpleType>)",
     R"(
enum EA of A: Red="red" Red2="Red" N1="1" N1_2="-1" EOF_="EOF" Empty="" B="_b" U002B="+" Krasnyy="красный"
)"},
};

INSTANTIATE_TEST_SUITE_P(Plan, UniqueNames, testing::ValuesIn(kCases), NameOfCase);

TEST(Options, NamesAndKindsAreTheUsers) {
  Plan::PlanOptions options;
  options.names = {{"{urn:t}a", "Alpha"}, {"{urn:t}e", "Echo"}, {"nobody", "X"}};
  options.kinds = {{"xs:dateTime", *Plan::KindFromName("string")},
                   {"{urn:t}e", *Plan::KindFromName("string")},
                   {"{urn:t}none", *Plan::KindFromName("i4")},
                   {"xs:datetime", *Plan::KindFromName("string")}};
  EXPECT_EQ(PlanText(R"(
<simpleType name='e'><restriction base='string'><enumeration value='a'/></restriction></simpleType>
<simpleType name='t'><restriction base='dateTime'><maxInclusive value='2000-01-01T00:00:00'/></restriction></simpleType>
<complexType name='a'><attribute name='x' type='t:t'/><attribute name='y' type='t:e'/></complexType>)",
                     options),
            R"(
class CAlpha of a
  0 X m_x: value @x? string
  1 Y m_y: value @y? string preserve
error: no simple type "xs:datetime" to map to another kind
error: no simple type "none" to map to another kind
error: no type or global element "nobody" to rename
)");
  EXPECT_FALSE(Plan::KindFromName("xmlObject"));
}

}  // namespace
}  // namespace Quillon9Generator::Testing
