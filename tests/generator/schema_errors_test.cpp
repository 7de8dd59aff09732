#include <gtest/gtest.h>

#include "schema_cases.h"

namespace Quillon9Generator::Testing {
namespace {

TEST(SchemaErrors, References) {
  constexpr SchemaCase kCases[] = {
      {"<xs:element name='e' type='po:SKU' xmlns:po='urn:po'/><xs:element name='f' type='q:x'/>",
       "1: error: no type \"po:SKU\"; is an import missing?\n55: error: the prefix \"q\" is not declared\n"},
      {"<xs:element name='e' type='T'/><xs:element name='f' type='t:e'/><xs:element name='g' type='xs:itn'/>"
       "<xs:simpleType name='T'><xs:list itemType='xs:int'/></xs:simpleType>",
       "1: error: no type \"T\"; is a prefix missing?\n32: error: no type \"t:e\" in the namespace \"urn:t\"\n"
       "65: error: no type \"xs:itn\" in XML Schema\n"},
      {"<xs:complexType name='T'><xs:sequence><xs:element ref='t:x'/><xs:group ref='t:y'/></xs:sequence>"
       "<xs:attribute ref='t:z'/><xs:attributeGroup ref='t:a'/></xs:complexType>",
       "39: error: no element \"t:x\" in the namespace \"urn:t\"\n62: error: no group \"t:y\" in the namespace "
       "\"urn:t\"\n"
       "97: error: no attribute \"t:z\" in the namespace \"urn:t\"\n"
       "122: error: no attribute group \"t:a\" in the namespace \"urn:t\"\n"},
      {"<xs:attribute name='a' type='t:T'/><xs:complexType name='T'/>",
       "1: error: \"t:T\" is a complex type, where a simple one is needed\n"},
  };
  Check(kCases, std::size(kCases));
}

TEST(SchemaErrors, Definitions) {
  constexpr SchemaCase kCases[] = {
      {"<xs:simpleType name='T'><xs:list itemType='xs:int'/></xs:simpleType><xs:complexType name='T'/>",
       "69: error: xs:complexType \"T\" is defined twice; the first is at 1\n"},
      {"<xs:element/><xs:element name='a b'/>", "1: error: xs:element has no name\n14: error: \"a b\" is not a name\n"},
      {"<xs:complexType name='T'><xs:attribute name='a'/><xs:attribute name='a'/></xs:complexType>",
       "50: error: a second attribute \"a\" in one type\n"},
      {"<xs:complexType name='A'><xs:complexContent><xs:extension base='t:B'/></xs:complexContent></xs:complexType>"
       "<xs:complexType name='B'><xs:complexContent><xs:extension base='t:A'/></xs:complexContent></xs:complexType>",
       "1: error: xs:complexType \"A\" is defined by itself\n"},
      {"<xs:simpleType name='A'><xs:union memberTypes='xs:int t:A'/></xs:simpleType>"
       "<xs:attributeGroup name='G'><xs:attributeGroup ref='t:G'/></xs:attributeGroup>",
       "1: error: xs:simpleType \"A\" is defined by itself\n77: error: xs:attributeGroup \"G\" is defined by itself\n"},
      {"<xs:group name='G'><xs:sequence><xs:group ref='t:H'/></xs:sequence></xs:group>"
       "<xs:group name='H'><xs:sequence><xs:group ref='t:G' minOccurs='0'/></xs:sequence></xs:group>",
       "111: error: a group contains itself\n"},
      {"<xs:element name='a' substitutionGroup='t:b'/><xs:element name='b' substitutionGroup='t:a'/>",
       "1: error: the element \"a\" substitutes itself\n"},
      {"<xs:complexType name='A'><xs:complexContent><xs:extension base='xs:int'/></xs:complexContent></xs:complexType>"
       "<xs:complexType name='B'><xs:simpleContent><xs:extension base='t:E'/></xs:simpleContent></xs:complexType>"
       "<xs:complexType name='C'><xs:simpleContent/></xs:complexType><xs:complexType name='E'/>",
       "241: error: xs:simpleContent needs xs:restriction or xs:extension\n"
       "45: error: a type with complex content cannot be derived from a simple type\n"
       "154: error: the base of a type with simple content must have simple content\n"},
  };
  Check(kCases, std::size(kCases));
}

TEST(SchemaErrors, Values) {
  constexpr SchemaCase kCases[] = {
      {"<xs:group name='G'><xs:sequence><xs:element name='a' minOccurs='2'/><xs:any maxOccurs='-1'/>"
       "<xs:any minOccurs='x'/></xs:sequence></xs:group>",
       "33: error: minOccurs is greater than maxOccurs\n69: error: wrong maxOccurs \"-1\"\n"
       "93: error: wrong minOccurs \"x\"\n"},
      {"<xs:element name='e' nillable='yes' default='' fixed=''/>",
       "1: error: nillable=\"yes\" is neither true nor false\n1: error: default and fixed cannot stand together\n"},
      {"<xs:complexType name='T'><xs:attribute name='a' use='never'/><xs:anyAttribute "
       "processContents='no'/></xs:complexType>",
       "26: error: wrong use \"never\"\n62: error: wrong processContents \"no\"\n"},
      {"<xs:simpleType name='A'><xs:restriction base='xs:int'><xs:length value='1'/><xs:minInclusive value='1.5'/>"
       "<xs:totalDigits value='-1'/><xs:totalDigits value='1'/><xs:totalDigits/></xs:restriction></xs:simpleType>",
       "162: error: xs:totalDigits has no value\n55: error: xs:length is no facet of xs:decimal\n"
       "107: error: wrong value \"-1\" of xs:totalDigits\n135: error: a second xs:totalDigits\n"
       "77: error: wrong value \"1.5\" of xs:minInclusive\n"},
      {"<xs:simpleType name='A'><xs:restriction base='xs:string'><xs:minLength value='3'/><xs:maxLength value='2'/>"
       "<xs:whiteSpace value='none'/></xs:restriction></xs:simpleType>",
       "108: error: wrong value \"none\" of xs:whiteSpace\n25: error: no value has the length that the facets ask "
       "for\n"},
  };
  Check(kCases, std::size(kCases));
}

TEST(SchemaErrors, Grammar) {
  constexpr SchemaCase kCases[] = {
      {"<xs:elment name='e'/><xs:element name='e' tpye='xs:int'/><html xmlns=''/>",
       "1: error: unexpected xs:elment in xs:schema\n22: error: xs:element has no attribute \"tpye\"\n"
       "58: error: unexpected element \"html\" in xs:schema\n"},
      {"<xs:simpleType name='A'><xs:restriction base='xs:int'><xs:size value='1'/></xs:restriction></xs:simpleType>",
       "55: error: unknown facet xs:size\n"},
      {"<xs:complexType name='T'><xs:sequence/><xs:choice/></xs:complexType>"
       "<xs:simpleType name='S'/><xs:element name='e' type='xs:int'><xs:simpleType/></xs:element>",
       "40: error: xs:choice cannot stand next to xs:sequence in xs:complexType\n"
       "69: error: xs:simpleType needs xs:restriction, xs:list or xs:union\n"
       "129: error: xs:simpleType needs xs:restriction, xs:list or xs:union\n"
       "94: error: xs:element has both an attribute type and an anonymous type\n"},
      {"<xs:group name='G'><xs:sequence><xs:element name='e' type='xs:int'><xs:complexType/></xs:element></xs:sequence>"
       "</xs:group>",
       "33: error: xs:element has both an attribute type and an anonymous type\n"},
      {"<xs:complexType name='T'><xs:assert test='1'/></xs:complexType><xs:defaultOpenContent/>",
       "26: warning: xs:assert belongs to XML Schema 1.1 and is not checked\n"
       "64: error: xs:defaultOpenContent belongs to XML Schema 1.1, which is not supported\n"},
      {"<xs:annotation xmlns:vc='http://www.w3.org/2007/XMLSchema-versioning' vc:minVersion='1.0' vc:maxVersion='1.1'/>"
       "<xs:element name='e' xmlns:vc='http://www.w3.org/2007/XMLSchema-versioning' vc:minVersion='1.1'/>"
       "<xs:element name='e' xmlns:vc='http://www.w3.org/2007/XMLSchema-versioning' vc:maxVersion='1.1'/>"
       "<xs:element name='f' xmlns:vc='http://www.w3.org/2007/XMLSchema-versioning' vc:maxVersion='1' vc:x='1'/>"
       "<xs:element name='g' xmlns:vc='http://www.w3.org/2007/XMLSchema-versioning' vc:minVersion='new' vc:x=''/>",
       "112: warning: xs:element is left out, since it is for another version of XML Schema than 1.0\n"
       "306: warning: xs:element is left out, since it is for another version of XML Schema than 1.0\n"
       "410: warning: the attribute \"vc:minVersion\" is not evaluated, since its value is not a version\n"
       "410: warning: the attribute \"vc:x\" is not evaluated\n"},
      {"<xs:group name='G'><xs:all><xs:element name='a' maxOccurs='2'/></xs:all></xs:group>"
       "<xs:complexType name='T'><xs:sequence><xs:group ref='t:G'/></xs:sequence></xs:complexType>",
       "28: error: an element in xs:all cannot occur more than once\n"
       "122: error: xs:all can only be the whole content of a type\n"},
  };
  Check(kCases, std::size(kCases));
}

std::string Repeated(int count, std::string const& text) {
  std::string all;
  for (int i = 0; i != count; ++i) {
    all += Replaced(Replaced(text, "#", std::to_string(i)), "$", std::to_string(i + 1));
  }
  return all;
}

/// What costs little to write but would cost much to work on ends with one error, soon and on little stack.
TEST(SchemaErrors, HostileSchemas) {
  std::string const last = "<xs:group name='G40'><xs:sequence><xs:any/></xs:sequence></xs:group>";
  std::string const twice =
      "<xs:group name='G#'><xs:sequence><xs:group ref='t:G$'/><xs:group ref='t:G$'/></xs:sequence></xs:group>";
  EXPECT_NE(
      DiagnosticsOf("<xs:complexType name='T'><xs:group ref='t:G0'/></xs:complexType>" + Repeated(40, twice) + last)
          .find("1: error: the type has more than 100000 particles when each group is replaced"),
      std::string::npos);

  constexpr SchemaCase kChains[] = {
      {"<xs:simpleType name='T#'><xs:restriction base='t:T$'/></xs:simpleType>", "definitions need one another"},
      {"<xs:complexType name='T#'><xs:complexContent><xs:extension base='t:T$'/></xs:complexContent></xs:complexType>",
       "definitions need one another"},
      {"<xs:attributeGroup name='T#'><xs:attributeGroup ref='t:T$'/></xs:attributeGroup>",
       "definitions need one another"},
      {"<xs:group name='T#'><xs:sequence><xs:group ref='t:T$'/></xs:sequence></xs:group>",
       "groups contain one another"},
      {"<xs:element name='T#' substitutionGroup='t:T$'/>", "elements substitute one another"},
  };
  for (SchemaCase const& chain : kChains) {
    EXPECT_NE(DiagnosticsOf(Repeated(20000, chain.body)).find(chain.diagnostics), std::string::npos) << chain.body;
  }

  std::string nested = "<xs:simpleType name='T#'>";
  nested += Repeated(90, "<xs:restriction><xs:simpleType>") + "<xs:restriction base='t:T$'/>";
  nested += Repeated(90, "</xs:simpleType></xs:restriction>") + "</xs:simpleType>";
  EXPECT_NE(DiagnosticsOf(Repeated(100, nested)).find("definitions need one another"), std::string::npos);
  EXPECT_NE(DiagnosticsOf(Repeated(500, "<xs:sequence>") + Repeated(500, "</xs:sequence>")).find("nested too deeply"),
            std::string::npos);

  std::string const values = "<xs:simpleType name='V'><xs:restriction base='xs:string'>" +
                             Repeated(20000, "<xs:enumeration value='#'/>") + "</xs:restriction></xs:simpleType>";
  EXPECT_NE(
      DiagnosticsOf(values + Repeated(2000, "<xs:simpleType name='V#'><xs:restriction base='t:V'/></xs:simpleType>"))
          .find("the types inherit more than 2000000 values"),
      std::string::npos);
  EXPECT_EQ(
      DiagnosticsOf("<xs:complexType name='T'>" + Repeated(20000, "<xs:attribute name='a#'/>") + "</xs:complexType>"),
      "");
}

}  // namespace
}  // namespace Quillon9Generator::Testing
