#include <gtest/gtest.h>

#include <clocale>

#include "schema_files.h"

namespace Quillon9Generator::Testing {
namespace {

struct Case {
  char const* name;
  char const* body;
  char const* model;
};

/// Return what Print() gives after a line feed, with t: for the target namespace.
std::string Model(std::string const& body, SchemaFiles& files) {
  files.WriteSchema("a.xsd", "urn:t", body, "elementFormDefault='qualified'");
  return "\n" + Replaced(Schema::Print(files.Load({"a.xsd"})), "{urn:t}", "t:");
}

class Components : public testing::TestWithParam<Case> {};

TEST_P(Components, AreAsTheSchemaSays) {
  SchemaFiles files;
  EXPECT_EQ(Model(GetParam().body, files), GetParam().model);
  EXPECT_EQ(files.Diagnostics(), "");
}

constexpr Case kSimpleTypes[] = {
    {"FacetsAreInherited",
     R"(<xs:simpleType name='B'><xs:restriction base='t:A'><xs:pattern value='b|c'/><xs:pattern value=' d'/>
          <xs:minLength value='2'/><xs:maxLength value='+9'/></xs:restriction></xs:simpleType>
        <xs:simpleType name='A'><xs:restriction base='xs:normalizedString'><xs:pattern value='a'/>
          <xs:minLength value='1'/></xs:restriction></xs:simpleType>
        <xs:simpleType name='C'><xs:restriction base='xs:unsignedByte'><xs:minExclusive value=' 3 '/>
          <xs:maxInclusive value='7'/><xs:totalDigits value='1'/></xs:restriction></xs:simpleType>)",
     R"(
simpleType t:B: t:A (xs:normalizedString) minLength=2 maxLength=9 replace
  pattern a
  pattern b|c  d
simpleType t:A: xs:normalizedString minLength=1 replace
  pattern a
simpleType t:C: xs:unsignedByte totalDigits=1 fractionDigits=0 minExclusive="3" maxInclusive="7"
)"},
    {"EnumerationsAreThoseOfTheLastStep",
     R"(<xs:simpleType name='A'><xs:restriction base='xs:string'><xs:enumeration value=' x  y'>
          <xs:annotation><xs:documentation>
             The first.

             And
             more.</xs:documentation></xs:annotation></xs:enumeration>
          <xs:enumeration value=''/></xs:restriction></xs:simpleType>
        <xs:simpleType name='B'><xs:restriction base='t:A'><xs:whiteSpace value='collapse'/>
          <xs:enumeration value=' x  y'/></xs:restriction></xs:simpleType>
        <xs:simpleType name='C'><xs:restriction base='t:B'/></xs:simpleType>)",
     R"(
simpleType t:A: xs:string preserve
  /// The first.
  /// 
  /// And
  /// more.
  value " x  y"
  value ""
simpleType t:B: t:A (xs:string)
  value "x y"
simpleType t:C: t:B (xs:string)
  value "x y"
)"},
    {"ListsAndUnions",
     R"(<xs:simpleType name='L'><xs:list itemType='xs:int'/></xs:simpleType>
        <xs:simpleType name='M'><xs:restriction><xs:simpleType><xs:list><xs:simpleType>
          <xs:restriction base='xs:int'><xs:maxInclusive value='3'/></xs:restriction>
          </xs:simpleType></xs:list></xs:simpleType><xs:length value='2'/></xs:restriction></xs:simpleType>
        <xs:simpleType name='U'><xs:union memberTypes=' xs:int  t:L '><xs:simpleType>
          <xs:restriction base='xs:NMTOKENS'/></xs:simpleType></xs:union></xs:simpleType>)",
     R"(
simpleType t:L list of xs:int
simpleType t:M: (simple) (xs:anySimpleType) length=2
  simpleType list of (simple)
    simpleType: xs:int fractionDigits=0 minInclusive="-2147483648" maxInclusive="3"
simpleType t:U union of xs:int t:L (simple)
  simpleType: xs:NMTOKENS minLength=1
)"},
};

constexpr Case kContents[] = {
    {"GroupsStayReferences",
     R"(<xs:complexType name='T'><xs:group ref='t:G' minOccurs='0' maxOccurs='2'/></xs:complexType>
        <xs:group name='G'><xs:choice><xs:element name='a' type='xs:int'/>
          <xs:sequence minOccurs='0'><xs:any namespace='##other' processContents='lax'/>
          <xs:element ref='t:e' maxOccurs='unbounded'/></xs:sequence>
          <xs:element name='never' type='xs:int' minOccurs='0' maxOccurs='0'/></xs:choice></xs:group>
        <xs:element name='e' nillable='1' default='x' type='xs:string'/>)",
     R"(
element t:e: xs:string nillable default="x"
complexType t:T
  group ref t:G 0..2
group t:G
  choice
    element t:a: xs:int
    sequence 0..1
      any not "urn:t" lax
      element ref t:e 1..*
)"},
    {"NoContentAtAll",
     R"(<xs:complexType name='A'/><xs:complexType name='B' mixed='true'><xs:sequence/></xs:complexType>
        <xs:complexType name='C'><xs:choice minOccurs='0'/></xs:complexType>
        <xs:complexType name='D'><xs:complexContent><xs:extension base='t:B'/></xs:complexContent></xs:complexType>
        <xs:element name='e'/><xs:element name='f' type='xs:anySimpleType' abstract='true'/>)",
     R"(
element t:e: xs:anyType
element t:f: xs:anySimpleType abstract
complexType t:A empty
complexType t:B mixed derived: t:D
complexType t:C empty
complexType t:D extends t:B mixed
  own:
)"},
    {"ExtensionAppends",
     R"(<xs:complexType name='C'><xs:complexContent><xs:extension base='t:B'>
          <xs:attribute name='c'/></xs:extension></xs:complexContent></xs:complexType>
        <xs:complexType name='B' abstract='true'><xs:complexContent><xs:extension base='t:A'>
          <xs:sequence><xs:element name='b' type='xs:int'/></xs:sequence>
          <xs:attribute name='b' type='xs:int' use='required'/></xs:extension></xs:complexContent></xs:complexType>
        <xs:complexType name='A'><xs:choice><xs:element name='a' form='unqualified'><xs:complexType><xs:complexContent>
          <xs:extension base='t:A'/></xs:complexContent></xs:complexType></xs:element></xs:choice>
          <xs:attribute name='a' form='qualified' fixed='f'/></xs:complexType>)",
     R"(
complexType t:C extends t:B
  content of t:B
  attribute t:a: xs:anySimpleType fixed="f"
  attribute b: xs:int required
  attribute c: xs:anySimpleType
  own: c
complexType t:B extends t:A abstract derived: t:C
  sequence
    content of t:A
    sequence
      element t:b: xs:int
  attribute t:a: xs:anySimpleType fixed="f"
  attribute b: xs:int required
  own: content b
complexType t:A derived: t:B (a)
  choice
    element a: (complex)
      complexType extends t:A
        content of t:A
        attribute t:a: xs:anySimpleType fixed="f"
        own:
  attribute t:a: xs:anySimpleType fixed="f"
)"},
    {"RestrictionReplaces",
     R"(<xs:complexType name='A'><xs:sequence><xs:element name='a' type='xs:int' minOccurs='0'/></xs:sequence>
          <xs:attribute name='p' type='xs:int'/><xs:attribute name='q' type='xs:int'/>
          <xs:attribute name='r' type='xs:int'/><xs:anyAttribute/></xs:complexType>
        <xs:complexType name='B'><xs:complexContent><xs:restriction base='t:A'>
          <xs:attribute name='r' use='prohibited'/><xs:attribute name='q' type='xs:byte' use='required'/>
          </xs:restriction></xs:complexContent></xs:complexType>
        <xs:complexType name='C'><xs:complexContent mixed='true'><xs:restriction base='xs:anyType'/>
          </xs:complexContent></xs:complexType>
        <xs:complexType name='D'><xs:complexContent><xs:extension base='xs:anyType'/></xs:complexContent>
          </xs:complexType>)",
     R"(
complexType t:A derived: t:B
  sequence
    element t:a: xs:int 0..1
  attribute p: xs:int
  attribute q: xs:int
  attribute r: xs:int
  anyAttribute ##any
complexType t:B restricts t:A empty
  attribute p: xs:int
  attribute q: xs:byte required
complexType t:C mixed
complexType t:D extends xs:anyType mixed
  sequence
    any ##any lax 0..*
  anyAttribute ##any lax
  own:
)"},
    {"SimpleContent",
     R"(<xs:complexType name='A'><xs:simpleContent><xs:extension base='xs:decimal'><xs:attribute name='u'/>
          </xs:extension></xs:simpleContent></xs:complexType>
        <xs:complexType name='B'><xs:simpleContent><xs:restriction base='t:A'><xs:fractionDigits value='2'/>
          </xs:restriction></xs:simpleContent></xs:complexType>
        <xs:complexType name='C'><xs:complexContent><xs:extension base='t:A'/></xs:complexContent></xs:complexType>
        <xs:complexType name='M' mixed='true'/>
        <xs:complexType name='N'><xs:simpleContent><xs:restriction base='t:M'><xs:simpleType>
          <xs:restriction base='xs:token'/></xs:simpleType></xs:restriction></xs:simpleContent></xs:complexType>)",
     R"(
complexType t:A extends xs:decimal derived: t:B t:C
  text: xs:decimal
  attribute u: xs:anySimpleType
  own: u
complexType t:B restricts t:A
  text: (simple)
    simpleType: xs:decimal fractionDigits=2
  attribute u: xs:anySimpleType
complexType t:C extends t:A
  text: xs:decimal
  attribute u: xs:anySimpleType
  own:
complexType t:M mixed derived: t:N
complexType t:N restricts t:M
  text: (simple)
    simpleType: xs:token
)"},
    {"SubstitutionGroups",
     R"(<xs:element name='c' substitutionGroup='t:b'/><xs:element name='b' substitutionGroup='t:a'/>
        <xs:element name='a' type='xs:date' abstract='true'/><xs:element name='d' substitutionGroup='t:a'/>)",
     R"(
element t:c: xs:date substitutes t:b
element t:b: xs:date substitutes t:a substituted by t:c
element t:a: xs:date abstract substituted by t:b t:d
element t:d: xs:date substitutes t:a
)"},
};

constexpr Case kAttributes[] = {
    {"GroupsAndWildcards",
     R"(<xs:attributeGroup name='G'><xs:attribute ref='t:x' use='required'/><xs:attributeGroup ref='t:H'/>
          <xs:anyAttribute namespace='urn:a urn:b ##local' processContents='skip'/></xs:attributeGroup>
        <xs:attributeGroup name='H'><xs:attribute name='h' default='1'/></xs:attributeGroup>
        <xs:attribute name='x' type='xs:ID'/><xs:attribute name='y' fixed='2'/>
        <xs:complexType name='T'><xs:attributeGroup ref='t:G'/><xs:attributeGroup ref='t:H'/>
          <xs:attribute ref='t:y'/><xs:anyAttribute namespace='##other'/></xs:complexType>
        <xs:complexType name='E'><xs:complexContent><xs:extension base='t:T'>
          <xs:anyAttribute namespace='##targetNamespace' processContents='lax'/>
          </xs:extension></xs:complexContent></xs:complexType>
        <xs:complexType name='F'><xs:complexContent><xs:extension base='t:E'>
          <xs:anyAttribute namespace='##other'/></xs:extension></xs:complexContent></xs:complexType>)",
     R"(
attribute t:x: xs:ID
attribute t:y: xs:anySimpleType fixed="2"
complexType t:T empty derived: t:E
  attribute t:x: xs:ID required
  attribute h: xs:anySimpleType default="1"
  attribute t:y: xs:anySimpleType fixed="2"
  anyAttribute "urn:a" "urn:b"
complexType t:E extends t:T empty derived: t:F
  attribute t:x: xs:ID required
  attribute h: xs:anySimpleType default="1"
  attribute t:y: xs:anySimpleType fixed="2"
  anyAttribute "urn:t" "urn:a" "urn:b" lax
  own:
complexType t:F extends t:E empty
  attribute t:x: xs:ID required
  attribute h: xs:anySimpleType default="1"
  attribute t:y: xs:anySimpleType fixed="2"
  anyAttribute not ""
  own:
)"},
};

std::string NameOf(testing::TestParamInfo<Case> const& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(SimpleTypes, Components, testing::ValuesIn(kSimpleTypes), NameOf);
INSTANTIATE_TEST_SUITE_P(Contents, Components, testing::ValuesIn(kContents), NameOf);
INSTANTIATE_TEST_SUITE_P(Attributes, Components, testing::ValuesIn(kAttributes), NameOf);

TEST(Schema, TextIsUtf8InTheLocaleC) {
  ASSERT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  SchemaFiles files;
  files.Write("a.xsd",
              "<?xml version='1.0' encoding='ISO-8859-1'?><schema xmlns='http://www.w3.org/2001/XMLSchema'>"
              "<element name='stra\xDF"
              "e' type='int'/></schema>");
  EXPECT_EQ(Schema::Print(files.Load({"a.xsd"})),
            "element stra\xC3\x9F"
            "e: xs:int\n");
}

TEST(Schema, ATypeOfTheDocumentTypeMayBringEntitiesAndDefaults) {
  SchemaFiles files;
  files.Write(
      "a.xsd",
      "<!DOCTYPE xs:schema [<!ENTITY t 'xs:int'><!ATTLIST xs:element nillable CDATA 'true'>\n"
      "<!ENTITY two '<xs:element name=\"b\"/><xs:element name=\"c\" tpye=\"x\"/>'>]>\n"
      "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n <xs:element name='a' type='&t;'/>&two;</xs:schema>");
  EXPECT_EQ(Schema::Print(files.Load({"a.xsd"})),
            "element a: xs:int nillable\nelement b: xs:anyType nillable\nelement c: xs:anyType nillable\n");
  EXPECT_EQ(files.Diagnostics(), "a.xsd:4:35: error: xs:element has no attribute \"tpye\"\n");
}

TEST(Schema, DocumentationKeepsTheOrderOfItsMarkup) {
  SchemaFiles files;
  EXPECT_EQ(Model("<xs:element name='e'><xs:annotation><xs:documentation>Use <b>this</b> one.</xs:documentation>"
                  "<xs:appinfo><x/></xs:appinfo></xs:annotation></xs:element><xs:element name='f' x=''/>",
                  files),
            "\n/// Use this one.\nelement t:e: xs:anyType\nelement t:f: xs:anyType\n");
  EXPECT_EQ(files.Diagnostics(), "a.xsd:2:152: error: xs:element has no attribute \"x\"\n");
}

}  // namespace
}  // namespace Quillon9Generator::Testing
