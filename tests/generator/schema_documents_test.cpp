#include <gtest/gtest.h>

#include "schema_files.h"

namespace Quillon9Generator::Testing {
namespace {

TEST(SchemaDocuments, CirclesOfIncludesAndImportsEndAndCountFilesOnce) {
  SchemaFiles files;
  files.WriteSchema("a.xsd", "urn:a",
                    "<xs:include schemaLocation='a.xsd'/><xs:include schemaLocation='sub/b.xsd'/>"
                    "<xs:import namespace='urn:n' schemaLocation='n.xsd'/><xs:element name='a'/>");
  files.WriteSchema("sub/b.xsd", "urn:a",
                    "<xs:include schemaLocation='../sub/../a.xsd'/><xs:include schemaLocation='copy.xsd'/>"
                    "<xs:element name='b'/>");
  files.WriteSchema("sub/copy.xsd", "urn:a", "<xs:element name='c'/>");
  files.WriteSchema("copy.xsd", "urn:a", "<xs:element name='c'/>");
  files.WriteSchema("n.xsd", "urn:n",
                    "<xs:import namespace='urn:a' schemaLocation='copy.xsd'/><xs:import namespace='urn:a'/>"
                    "<xs:element name='n'/>");
  std::filesystem::create_symlink(files.Path("n.xsd"), files.Path("link.xsd"));
  Schema::SchemaSet const set = files.Load({"a.xsd", "link.xsd", "a.xsd"});
  EXPECT_EQ(files.Diagnostics(), "");
  EXPECT_EQ(Schema::Print(set),
            "element {urn:a}a: xs:anyType\nelement {urn:n}n: xs:anyType\n"
            "element {urn:a}b: xs:anyType\nelement {urn:a}c: xs:anyType\n");
  EXPECT_EQ(set.targetNamespaces, (std::vector<std::string>{"urn:a", "urn:n"}));
  EXPECT_EQ(set.files.size(), 5U);  // the copy counts, since it may change
}

TEST(SchemaDocuments, AFileWithoutNamespaceTakesThatOfEachIncluder) {
  SchemaFiles files;
  files.WriteSchema("a.xsd", "urn:a",
                    "<xs:include schemaLocation='none.xsd'/><xs:import namespace='urn:b' schemaLocation='b.xsd'/>");
  files.WriteSchema("b.xsd", "urn:b", "<xs:include schemaLocation='none.xsd'/>");
  files.Write("none.xsd",
              "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:include schemaLocation='more.xsd'/>"
              "<xs:element name='e' type='T'/></xs:schema>");
  files.Write("more.xsd",
              "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:simpleType name='T'>"
              "<xs:list itemType='xs:int'/></xs:simpleType></xs:schema>");
  EXPECT_EQ(Schema::Print(files.Load({"a.xsd"})),
            "element {urn:a}e: {urn:a}T\nelement {urn:b}e: {urn:b}T\n"
            "simpleType {urn:a}T list of xs:int\nsimpleType {urn:b}T list of xs:int\n");
  EXPECT_EQ(files.Diagnostics(), "");
}

TEST(SchemaDocuments, AreFoundByCatalogsNextToTheirUserAndInIncludePaths) {
  SchemaFiles files;
  files.WriteSchema("a.xsd", "urn:a",
                    "<xs:import namespace='urn:1' schemaLocation='http://x.org/1.xsd'/>"
                    "<xs:import namespace='urn:2' schemaLocation='http://x.org/two/2.xsd'/>"
                    "<xs:import namespace='urn:3'/>"
                    "<xs:import namespace='urn:4' schemaLocation='http://x.org/4.xsd'/>"
                    "<xs:import namespace='urn:5' schemaLocation='five%205.xsd'/>"
                    "<xs:import namespace='urn:6' schemaLocation='http://y.org/six/6.xsd'/>"
                    "<xs:import namespace='urn:7' schemaLocation='http://y.org/end/7.xsd'/>");
  files.WriteSchema("cat/one.xsd", "urn:1", "<xs:element name='e1'/>");
  files.WriteSchema(
      "cat/deep/x/2.xsd", "urn:2",
      "<xs:include schemaLocation='more.xsd'/><xs:include schemaLocation='../one.xsd'/><xs:element name='e2'/>");
  files.WriteSchema("cat/deep/x/more.xsd", "urn:2", "<xs:element name='more'/>");
  files.WriteSchema("other.xsd", "urn:2", "<xs:element name='other'/>");
  files.WriteSchema("cat/3.xsd", "urn:3", "<xs:element name='e3'/>");
  files.WriteSchema("4.xsd", "urn:4", "<xs:element name='e4'/>");
  files.WriteSchema("inc/five 5.xsd", "urn:5", "<xs:element name='e5'/>");
  files.WriteSchema("6.xsd", "urn:wrong", "<xs:element name='wrong'/>");
  files.WriteSchema("inc/y.org/six/6.xsd", "urn:6", "<xs:element name='e6'/>");
  files.WriteSchema("cat/7.xsd", "urn:7", "<xs:element name='e7'/>");
  constexpr char const* kOpen = "<catalog xmlns='urn:oasis:names:tc:entity:xmlns:xml:catalog' ";
  files.Write("c.xml",
              std::string(kOpen) +
                  "xml:base='cat/'><public publicId='p' uri='no'/><system systemId='http://x.org/1.xsd' uri='one.xsd'/>"
                  "<rewriteSystem systemIdStartString='http://x.org/' rewritePrefix='deep/'/>"
                  "<group xml:base='deep/'><rewriteURI uriStartString='http://x.org/two/' rewritePrefix='x/'/></group>"
                  "<nextCatalog catalog='next.xml'/></catalog>");
  files.Write("cat/next.xml",
              std::string(kOpen) +
                  "><uri name='urn:3' uri='3.xsd'/><uri name='http://x.org/one.xsd' uri='../other.xsd'/>"
                  "<systemSuffix systemIdSuffix='/end/7.xsd' uri='7.xsd'/>"
                  "<nextCatalog catalog='../c.xml'/></catalog>");
  std::string const text =
      Schema::Print(files.Load({{files.Path("a.xsd")}, {files.Path("c.xml")}, {files.Path("inc")}}));
  EXPECT_EQ(files.Diagnostics(), "");
  for (char const* name : {"{urn:1}e1", "{urn:2}e2", "{urn:2}more", "{urn:2}other", "{urn:3}e3", "{urn:4}e4",
                           "{urn:5}e5", "{urn:6}e6", "{urn:7}e7"}) {
    EXPECT_NE(text.find(std::string("element ") + name + ":"), std::string::npos) << name << "\n" << text;
  }
}

TEST(SchemaDocuments, WellKnownNamespacesAreThereUnlessAFileBringsThem) {
  SchemaFiles files;
  constexpr char const* kBody =
      "<xs:import namespace='http://www.w3.org/XML/1998/namespace' schemaLocation='http://www.w3.org/2001/xml.xsd'/>"
      "<xs:complexType name='T'><xs:attribute ref='xml:space'/></xs:complexType>";
  files.WriteSchema("a.xsd", "", kBody);
  EXPECT_NE(Schema::Print(files.Load({"a.xsd"})).find("value \"preserve\""), std::string::npos);
  EXPECT_EQ(files.Diagnostics(), "");
  files.WriteSchema("xml.xsd", "http://www.w3.org/XML/1998/namespace", "<xs:attribute name='space' type='xs:int'/>");
  EXPECT_EQ(Schema::Print(files.Load({"a.xsd"})),
            "attribute {http://www.w3.org/XML/1998/namespace}space: xs:int\ncomplexType T empty\n"
            "  attribute {http://www.w3.org/XML/1998/namespace}space: xs:int\n");
}

TEST(SchemaDocuments, TheSchemaForSchemasIsThereForThoseWhoReferToIt) {
  SchemaFiles files;
  constexpr char const* kImport = "<xs:import namespace='http://www.w3.org/2001/XMLSchema'/>";
  struct Row {
    char const* body;
    bool isNeeded;
  };
  Row const rows[] = {
      {"<xs:element name='e' type='xs:int'/>", false},
      {"<xs:complexType name='T'><xs:sequence><xs:element ref='xs:schema'/><xs:any/></xs:sequence></xs:complexType>",
       true},
      {"<xs:complexType name='T'><xs:complexContent><xs:extension base='xs:annotated'/></xs:complexContent>"
       "</xs:complexType>",
       true},
  };
  for (Row const& row : rows) {
    files.WriteSchema("a.xsd", "", std::string(kImport) + row.body);
    std::string const text = Schema::Print(files.Load({"a.xsd"}));
    EXPECT_EQ(files.Diagnostics(), "");
    EXPECT_EQ(text.find("element xs:schema") != text.npos, row.isNeeded) << row.body;
    EXPECT_EQ(text.find("{http://www.w3.org/XML/1998/namespace}lang") != text.npos, row.isNeeded) << row.body;
  }
  for (char const* address :
       {"http://www.w3.org/2001/XMLSchema.xsd", "http://www.w3.org/2001/xml.xsd", "http://www.w3.org/1999/xlink.xsd",
        "http://www.w3.org/TR/xmldsig-core/xmldsig-core-schema.xsd"}) {
    EXPECT_NE(Schema::Print(files.Load({{std::string(address)}, {}, {}})), "") << address;
    EXPECT_EQ(files.Diagnostics(), "");
  }
}

struct Fault {
  char const* body;
  char const* diagnostics;
};

TEST(SchemaDocuments, FaultsOfReferencesHavePlaces) {
  SchemaFiles files;
  files.WriteSchema("other.xsd", "urn:o", "<xs:element name='a'/>");
  files.WriteSchema("second.xsd", "urn:o", "<xs:element name='a' type='xs:int'/>");
  files.Write("broken.xsd", "<xs:schema\n xmlns:xs='http://www.w3.org/2001/XMLSchema'>\n  <xs:element</xs:schema>");
  files.Write("page.xsd", "\n<html/>");
  files.Write("empty.xsd", "");
  constexpr Fault kFaults[] = {
      {"<xs:include schemaLocation='none.xsd'/>", "a.xsd:2:1: warning: cannot find \"none.xsd\"\n"},
      {"<xs:include/>", "a.xsd:2:1: error: xs:include has no schemaLocation\n"},
      {"<xs:include schemaLocation='other.xsd'/>",
       "a.xsd:2:1: error: \"other.xsd\" has the target namespace \"urn:o\" and can only be imported, not included\n"},
      {"<xs:import namespace='urn:t'/>", "a.xsd:2:1: error: a schema cannot import its own namespace \"urn:t\"\n"},
      {"<xs:import namespace='urn:x' schemaLocation='other.xsd'/>",
       "a.xsd:2:1: error: \"other.xsd\" has the target namespace \"urn:o\", not \"urn:x\"\n"},
      {"<xs:import namespace='urn:x' schemaLocation='http://x.org/x.xsd'/>",
       "a.xsd:2:1: warning: cannot find \"http://x.org/x.xsd\" for the namespace \"urn:x\"; name a file for it with "
       "--catalog\n"},
      {"<xs:import namespace='urn:x' schemaLocation='x.xsd'/> <xs:element name='e' xmlns:x='urn:x' type='x:T'/>",
       "a.xsd:2:1: warning: cannot find \"x.xsd\" for the namespace \"urn:x\"; name a file for it with --catalog\n"
       "a.xsd:2:55: error: no type \"x:T\"; \"x.xsd\" was not found; name a file for it with --catalog\n"},
      {"<xs:include schemaLocation='broken.xsd'/>", "broken.xsd:3:14: error: not well-formed (invalid token)\n"},
      {"<xs:include schemaLocation='page.xsd'/>",
       "page.xsd:2:1: error: this is not a schema: the document element is \"html\"\n"},
      {"<xs:import namespace='urn:o' schemaLocation='other.xsd'/>"
       "<xs:import namespace='urn:o' schemaLocation='second.xsd'/>",
       "second.xsd:1:1: warning: definitions of the namespace \"urn:o\" that are there already are ignored; the first "
       "are at other.xsd:1:1\n"},
      {"<xs:redefine schemaLocation='none.xsd'><xs:group name='g'><xs:sequence/></xs:group></xs:redefine>",
       "a.xsd:2:1: error: cannot find \"none.xsd\"\na.xsd:2:40: error: no xs:group \"g\" to redefine\n"},
  };
  for (Fault const& fault : kFaults) {
    files.WriteSchema("a.xsd", "urn:t", fault.body);
    files.Load({"a.xsd"});
    EXPECT_EQ(files.Diagnostics(), fault.diagnostics) << fault.body;
  }
}

TEST(SchemaDocuments, FaultsOfFilesNameThem) {
  SchemaFiles files;
  files.Write("empty.xsd", "");
  files.Write("c.xml", "<catalog/>");
  files.Load({{files.Path("none.xsd"), files.Path("empty.xsd"), files.Path("")}, {files.Path("c.xml")}, {}});
  std::string const& text = files.Diagnostics();
  EXPECT_NE(text.find("c.xml: error: this is not an XML catalog: the document element is \"catalog\"\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("none.xsd: error: cannot read \"none.xsd\": No such file or directory\n"), std::string::npos)
      << text;
  EXPECT_NE(text.find("empty.xsd:1:1: error: no element found"), std::string::npos) << text;
  EXPECT_NE(text.find("error: Failed to get the size of the file"), std::string::npos) << text;
}

char const kService[] = R"(<w:definitions xmlns:w='http://schemas.xmlsoap.org/wsdl/' xmlns:a='urn:a' xmlns:b='urn:b'
    xmlns:xs='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:service'>
  <w:documentation>A <b xmlns=''>service</b>.</w:documentation>
  <w:import namespace='urn:more' location='sub/more.wsdl'/>
  <w:types>
    <xs:schema targetNamespace='urn:a'>
      <xs:import namespace='urn:b'/>
      <xs:import namespace='urn:c' schemaLocation='c.xsd'/>
      <xs:element name='request' type='b:Request'/>
    </xs:schema>
    <xs:schema targetNamespace='urn:b' elementFormDefault='qualified'>
      <xs:import namespace='urn:a' schemaLocation='?xsd=1'/>
      <xs:complexType name='Request'><xs:sequence>
        <xs:element name='x' type='%s'/><xs:element ref='a:request' minOccurs='0'/></xs:sequence></xs:complexType>
    </xs:schema>
  </w:types>
  <w:message name='m'><w:part name='p' element='a:request'/></w:message>
</w:definitions>)";

void WriteService(SchemaFiles const& files, char const* type) {
  files.Write("a.wsdl", Replaced(kService, "%s", type));
  files.Write("sub/more.wsdl", R"(<description xmlns='http://www.w3.org/ns/wsdl' targetNamespace='urn:more'>
  <include location='../a.wsdl'/><import namespace='urn:d' location='../d.xsd'/><types>
  <import xmlns='http://www.w3.org/2001/XMLSchema' namespace='urn:c' schemaLocation='../c.xsd'/>
  <schema xmlns='http://www.w3.org/2001/XMLSchema' targetNamespace='urn:more'><element name='more'/></schema></types>
</description>)");
  files.WriteSchema("c.xsd", "urn:c", "<xs:import namespace='urn:b'/><xs:element name='c'/>");
  files.WriteSchema("d.xsd", "urn:d", "<xs:element name='d'/>");
}

TEST(SchemaDocuments, ADescriptionHasSchemasOfAllItsNamespaces) {
  SchemaFiles files;
  WriteService(files, "xs:int");
  Schema::SchemaSet const set = files.Load({"a.wsdl"});
  EXPECT_EQ(files.Diagnostics(), "");
  EXPECT_EQ(Schema::Print(set),
            "element {urn:a}request: {urn:b}Request\nelement {urn:more}more: xs:anyType\n"
            "element {urn:c}c: xs:anyType\nelement {urn:d}d: xs:anyType\n"
            "complexType {urn:b}Request\n  sequence\n    element {urn:b}x: xs:int\n"
            "    element ref {urn:a}request 0..1\n");
  EXPECT_EQ(set.files.size(), 4U);
}

TEST(SchemaDocuments, FaultsInADescriptionHaveItsLines) {
  SchemaFiles files;
  WriteService(files, "b:Missing");
  files.Load({"a.wsdl"});
  EXPECT_EQ(files.Diagnostics(), "a.wsdl:14:9: error: no type \"b:Missing\" in the namespace \"urn:b\"\n");
  files.Write("empty.wsdl", "<definitions xmlns='http://schemas.xmlsoap.org/wsdl/'/>");
  files.WriteSchema("user.xsd", "", "<xs:include schemaLocation='empty.wsdl'/>");
  files.Load({"empty.wsdl"});
  EXPECT_EQ(files.Diagnostics(), "empty.wsdl:1:1: error: there is no schema in this description\n");
  files.Load({"user.xsd"});
  EXPECT_EQ(files.Diagnostics(),
            "empty.wsdl:1:1: error: this is not a schema: the document element is \"definitions\"\n");
}

}  // namespace
}  // namespace Quillon9Generator::Testing
