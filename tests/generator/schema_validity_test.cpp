#include <gtest/gtest.h>

#include "schema/values.h"
#include "schema_cases.h"

/// The W3C suite of schemas, which `make xsts` runs, is the test of the constraints. Here are the messages, one or two
/// of each family, and what the suite does not have.
namespace Quillon9Generator::Testing {
namespace {

std::string Type(std::string const& name, std::string const& content) {
  return "<xs:complexType name='" + name + "'>" + content + "</xs:complexType>";
}

std::string Restricted(std::string const& base, std::string const& content) {
  return Type("B", base) + Type("T", "<xs:complexContent><xs:restriction base='t:B'>" + content +
                                         "</xs:restriction></xs:complexContent>");
}

TEST(SchemaValidity, Representation) {
  Check({
      {"<xs:complexType name='T'><xs:attribute name='a'/><xs:sequence/></xs:complexType>",
       "50: error: xs:sequence cannot stand after xs:attribute in xs:complexType\n"},
      {"<xs:element name='a' id='x'/><xs:element name='b' id='x'/><xs:element name='c' id='1'/>text",
       "a.xsd:1:1: error: unexpected text in xs:schema\n30: error: the id \"x\" stands twice in this file\n59: error: "
       "\"1\" is not a name\n"},
      {"<xs:attribute name='a' default='x' form='qualified'/>", "1: error: xs:attribute has no attribute \"form\"\n"},
      {"<xs:element name='a' final='substitution' type='a b'/>",
       "1: error: wrong final \"substitution\"\n1: error: \"a b\" is not a name\n"
       "1: error: no type \"a b\"; is an import missing?\n"},
      {"<xs:element name='e'><xs:key name='k'><xs:selector xpath='@a'/><xs:field xpath='a//b'/></xs:key></xs:element>",
       "39: error: wrong path \"@a\" of xs:selector: a selector cannot select attributes\n"
       "64: error: wrong path \"a//b\" of xs:field: \"//\" can only follow a dot at the start\n"},
      {"<xs:element name='e'><xs:keyref name='r' refer='t:k'><xs:selector xpath='q:a'/><xs:field "
       "xpath='.//a|@b'/></xs:keyref></xs:element>",
       "54: error: wrong path \"q:a\" of xs:selector: the prefix \"q\" is not declared\n"
       "22: error: no key or unique constraint \"t:k\"\n"},
  });
}

TEST(SchemaValidity, SimpleTypes) {
  auto const restriction = [](std::string const& base, std::string const& facets) {
    return "<xs:simpleType name='T'><xs:restriction base='" + base + "'>" + facets +
           "</xs:restriction></xs:simpleType>";
  };
  std::string const bounded =
      "<xs:simpleType name='B'><xs:restriction base='xs:decimal'><xs:maxExclusive value='10' "
      "fixed='true'/></xs:restriction></xs:simpleType>";
  Check({
      {restriction("t:B", "<xs:minInclusive value='10.0'/>").append(bounded).c_str(),
       "52: error: xs:minInclusive \"10.0\" is not less than xs:maxExclusive \"10\" of the base\n"},
      {restriction("t:B", "<xs:maxExclusive value='9'/>").append(bounded).c_str(),
       "52: error: xs:maxExclusive is fixed in the base\n"},
      {restriction("xs:int", "<xs:enumeration value='2147483648'/>").c_str(),
       "55: error: the enumeration does not fit the base: \"2147483648\" is not allowed: it is greater than "
       "2147483647\n"},
      {restriction("xs:gMonth", "<xs:enumeration value='--13'/>").c_str(),
       "58: error: the enumeration does not fit the base: \"--13\" is no value of xs:gMonth\n"},
      {restriction("xs:string", "<xs:pattern value='[a-]b-]'/>").c_str(),
       "58: error: the pattern \"[a-]b-]\" is no regular expression of XML Schema: unexpected \"]\"\n"},
      {restriction("xs:string", "<xs:pattern value='a\\/b'/>").c_str(),
       "58: warning: the pattern \"a\\/b\" is no regular expression of XML Schema: \"\\/\" needs no \"\\\"\n"},
      {restriction("xs:string", "<xs:length value='3'/><xs:minLength value='1'/>").c_str(),
       "25: error: xs:length and xs:minLength cannot stand together\n"},
  });
}

TEST(SchemaValidity, Values) {
  struct Pair {
    Schema::BuiltIn type;
    char const *a, *b;
    Schema::Order order;
  };
  using Schema::BuiltIn;
  using Schema::Order;
  for (Pair const& each : {Pair{BuiltIn::Decimal, "-01.50", "-1.5", Order::Equal},
                           {BuiltIn::Decimal, "-2", "-10", Order::Greater},
                           {BuiltIn::Decimal, "0.09", "0.1", Order::Less},
                           {BuiltIn::Float, "1e400", "INF", Order::Equal},
                           {BuiltIn::Double, "NaN", "0", Order::Incomparable},
                           {BuiltIn::Duration, "P1M", "P30D", Order::Incomparable},
                           {BuiltIn::Duration, "P1M", "P32D", Order::Less},
                           {BuiltIn::Duration, "-PT0.5S", "PT0S", Order::Less},
                           {BuiltIn::DateTime, "2000-01-01T00:00:00Z", "2000-01-01T13:00:00", Order::Incomparable},
                           {BuiltIn::DateTime, "2000-03-01T00:00:00+14:00", "2000-02-29T10:00:00Z", Order::Equal},
                           {BuiltIn::Date, "-0001-12-31", "0001-01-01", Order::Less},
                           {BuiltIn::HexBinary, "0aFF", "0Aff", Order::Equal}}) {
    EXPECT_EQ(Schema::Compare(each.type, each.a, each.b), each.order) << each.a << " " << each.b;
  }
  struct Text {
    Schema::BuiltIn type;
    char const* text;
    bool isValue;
  };
  for (Text const& each : {Text{BuiltIn::Date, "1900-02-29", false},
                           {BuiltIn::Date, "0000-01-01", false},
                           {BuiltIn::Time, "24:00:00", true},
                           {BuiltIn::Time, "24:00:01", false},
                           {BuiltIn::Time, "10:00:00+14:01", false},
                           {BuiltIn::GMonthDay, "--02-29Z", true},
                           {BuiltIn::Duration, "P", false},
                           {BuiltIn::Duration, "P1YT", false},
                           {BuiltIn::Duration, "P1.0D", false},
                           {BuiltIn::Duration, "-P1Y2M3DT4H5M6.7S", true},
                           {BuiltIn::Base64Binary, "AB==", false},
                           {BuiltIn::Base64Binary, "AA= =", true},
                           {BuiltIn::Float, "1.e-2", true},
                           {BuiltIn::AnyURI, "a%2", false}}) {
    EXPECT_EQ(Schema::IsValueOf(each.type, each.text), each.isValue) << each.text;
  }
}

TEST(SchemaValidity, ContentModels) {
  std::string const ab = "<xs:sequence><xs:element name='a' minOccurs='0'/><xs:element name='b'/></xs:sequence>";
  Check({
      {Type("T",
            "<xs:sequence><xs:element name='a' minOccurs='0' maxOccurs='1000000000'/><xs:element name='a'/>"
            "</xs:sequence>")
           .c_str(),
       "26: error: \"a\" may belong to either of two particles at one point of the content\n"},
      {Type("T",
            "<xs:sequence><xs:element name='a' minOccurs='5' maxOccurs='5'/><xs:element name='a'/>"
            "<xs:any namespace='##other' minOccurs='0'/></xs:sequence>")
           .c_str(),
       ""},
      {Type("T",
            "<xs:choice><xs:element name='a' type='xs:int'/><xs:sequence><xs:element name='b'/>"
            "<xs:element name='a' type='xs:date'/></xs:sequence></xs:choice>")
           .c_str(),
       "108: error: the element \"a\" has two types in one content: xs:int and xs:date\n"},
      {Restricted(ab, "<xs:sequence><xs:element name='a'/></xs:sequence>").c_str(),
       "199: error: this is no restriction of the base: the base needs \"b\"\n"},
      {Restricted(ab, "<xs:sequence><xs:element name='b' maxOccurs='2'/></xs:sequence>").c_str(),
       "199: error: this is no restriction of the base: \"b\" occurs 1 to 2 times, in the base 1 to 1 times\n"},
      {Restricted("<xs:choice maxOccurs='unbounded'><xs:element name='a'/><xs:any namespace='##other'/></xs:choice>",
                  "<xs:sequence><xs:element name='a' maxOccurs='unbounded'/></xs:sequence>")
           .c_str(),
       ""},
      {Restricted(ab, "").c_str(), "128: error: the content is empty, but that of the base cannot be\n"},
      {Restricted("<xs:attribute name='a' type='xs:int' use='required'/>",
                  "<xs:attribute name='a' type='xs:date' use='required'/><xs:attribute name='b'/>")
           .c_str(),
       "167: error: the type of the attribute \"a\" is not derived from its type in the base, which is xs:int\n"
       "221: error: the attribute \"b\" does not stand in the base\n"},
  });
}

TEST(SchemaValidity, Declarations) {
  Check({
      {"<xs:element name='e' type='xs:int' default='x'/><xs:attribute name='a' type='xs:ID' fixed='x'/>",
       "49: error: an attribute of the type xs:ID cannot have a default or fixed value\n"
       "1: error: the element \"e\": \"x\" is no value of xs:int\n"},
      {"<xs:element name='h' type='xs:int'/><xs:element name='m' type='xs:date' substitutionGroup='t:h'/>",
       "37: error: the element \"m\" cannot substitute \"h\": its type is not derived from xs:int\n"},
      {"<xs:complexType name='B' final='extension'/><xs:complexType name='T'><xs:complexContent><xs:extension "
       "base='t:B'/></xs:complexContent></xs:complexType>",
       "45: error: the type \"B\" is final and cannot be extended\n"},
      {"<xs:element name='e' type='xs:NOTATION'/>",
       "1: error: the element \"e\" needs a type with an enumeration of notations\n"},
  });
}

TEST(SchemaValidity, Redefinitions) {
  SchemaFiles files;
  files.WriteSchema("c.xsd", "",
                    "<xs:complexType name='T'><xs:sequence><xs:element name='a'/></xs:sequence></xs:complexType>"
                    "<xs:group name='G'><xs:choice><xs:element name='g'/><xs:element name='h'/></xs:choice></xs:group>"
                    "<xs:simpleType name='S'><xs:restriction base='xs:string'/></xs:simpleType>"
                    "<xs:attributeGroup name='A'><xs:attribute name='x'/></xs:attributeGroup>");
  files.WriteSchema("b.xsd", "",
                    "<xs:redefine schemaLocation='c.xsd'><xs:complexType name='T'><xs:complexContent><xs:extension "
                    "base='T'><xs:sequence><xs:element name='b' type='S'/></xs:sequence></xs:extension>"
                    "</xs:complexContent></xs:complexType></xs:redefine>");
  files.WriteSchema(
      "a.xsd", "",
      "<xs:redefine schemaLocation='b.xsd'><xs:complexType name='T'><xs:complexContent><xs:extension base='T'>"
      "<xs:sequence><xs:group ref='G'/></xs:sequence><xs:attributeGroup ref='A'/></xs:extension></xs:complexContent>"
      "</xs:complexType><xs:group name='G'><xs:choice><xs:element name='h'/></xs:choice></xs:group>"
      "<xs:simpleType name='S'><xs:restriction base='S'><xs:length value='1'/></xs:restriction></xs:simpleType>"
      "<xs:attributeGroup name='A'><xs:attributeGroup ref='A'/><xs:attribute name='y'/></xs:attributeGroup>"
      "</xs:redefine>");
  std::string const text = Schema::Print(files.Load({"a.xsd"}));
  EXPECT_EQ(files.Diagnostics(), "");
  EXPECT_EQ(text,
            "simpleType S: S (xs:string) length=1 preserve\ncomplexType T\n  sequence\n    sequence\n      sequence\n"
            "        element a: xs:anyType\n      sequence\n        element b: S\n    sequence\n      group ref G\n"
            "  attribute x: xs:anySimpleType\n  attribute y: xs:anySimpleType\ngroup G\n  choice\n"
            "    element h: xs:anyType\n");

  files.WriteSchema(
      "d.xsd", "",
      "<xs:redefine schemaLocation='c.xsd'><xs:simpleType name='S'><xs:list itemType='S'/></xs:simpleType>"
      "<xs:group name='G'><xs:sequence><xs:element name='z'/></xs:sequence></xs:group></xs:redefine>");
  files.Load({"d.xsd"});
  EXPECT_EQ(files.Diagnostics(),
            "d.xsd:2:37: error: the base of a redefined type must be the type itself\n"
            "d.xsd:2:37: error: xs:simpleType \"S\" is defined by itself\n");
}

std::string Repeated(int count, std::string const& text) {
  std::string all;
  for (int i = 0; i != count; ++i) {
    all += Replaced(Replaced(text, "#", std::to_string(i)), "$", std::to_string(i + 1));
  }
  return all;
}

/// What costs little to write must not cost much to check.
TEST(SchemaValidity, HostileSchemas) {
  std::string const unions =
      "<xs:simpleType name='U0'><xs:restriction base='xs:int'/></xs:simpleType>" +
      Repeated(100, "<xs:simpleType name='U$'><xs:union memberTypes='t:U# t:U#'/></xs:simpleType>");
  EXPECT_EQ(DiagnosticsOf(unions + "<xs:element name='e' type='t:U100' default='x'/>"), "");

  std::string const groups =
      "<xs:group name='G0'><xs:sequence/></xs:group>" +
      Repeated(
          12, "<xs:group name='G$'><xs:sequence><xs:group ref='t:G#'/><xs:group ref='t:G#'/></xs:sequence></xs:group>");
  std::string const types = Repeated(1000, "<xs:complexType name='T#'><xs:group ref='t:G12'/></xs:complexType>");
  EXPECT_EQ(DiagnosticsOf(groups + types),
            "a.xsd: warning: the schema is so large that not all of its content is checked\n");
}

}  // namespace
}  // namespace Quillon9Generator::Testing
