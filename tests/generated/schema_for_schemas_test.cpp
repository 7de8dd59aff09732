#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "quillon9/quillon9.h"
#include "schemas.h"
#include "support/document_comparison.h"

/// The classes of the schema for schemas, which the generator brings, read schemas and write them back.
namespace Quillon9 {
namespace {

namespace fs = std::filesystem;

/// What is different after a read and a write; the failure if either fails.
std::string DifferenceAfterRoundTrip(CXmlSource const& source, bool keepsPrefixes = true) try {
  CXmlSerializationContext ctx;
  ctx.SetKeepPrefixes(keepsPrefixes);
  ctx.SetTextEncoding(TextEncoding_UTF8);
  CBinaryData const written = Schemas::ReadSchema(source, ctx)->ToXmlStream();
  return DifferenceBetween(source, written);
} catch (CQnException const& failure) {
  return failure.GetFullMessage();
}

constexpr char kSchema[] =
    "<xsd:schema xmlns:xsd='http://www.w3.org/2001/XMLSchema' xmlns:a='urn:a' xmlns:same='urn:a' xmlns:b='urn:b'"
    " xmlns:note='urn:note' targetNamespace='urn:a' note:by='me'><xsd:annotation><xsd:appinfo>a:b <note:x"
    " of='b:c'/></xsd:appinfo><xsd:documentation xml:lang='en'>One <em xmlns='urn:h'>two</em>\n  three"
    "<br/></xsd:documentation></xsd:annotation><xsd:element name='e' type='same:T'><xsd:key name='k'>"
    "<xsd:selector xpath='a:x|same:y/b:*'/><xsd:field xpath='@a:id'/></xsd:key></xsd:element>"
    "<xsd:complexType name='T'><xsd:sequence><xsd:element ref='a:x' maxOccurs='unbounded'/><xsd:any/><xsd:element"
    " ref='a:y'/></xsd:sequence><xsd:attribute name='q' default='b:v'><xsd:simpleType><xsd:restriction"
    " base='xsd:QName'><xsd:enumeration value='b:v'/></xsd:restriction></xsd:simpleType></xsd:attribute>"
    "</xsd:complexType></xsd:schema>";

TEST(SchemaForSchemas, KeepsAllContentAndThePrefixesOfPaths) {
  EXPECT_EQ(DifferenceAfterRoundTrip(XmlText(kSchema)), "");
  EXPECT_EQ(DifferenceAfterRoundTrip(XmlText(kSchema), false), "/schema/annotation/appinfo: the prefix of a:b");
}

TEST(SchemaForSchemas, PrefixesOfTheContextComeFirst) {
  CXmlSerializationContext ctx;
  ctx.SetKeepPrefixes(true);
  auto const schema = Schemas::ReadSchema(XmlText(kSchema), ctx);
  EXPECT_NE(schema->ToXml().find("<xsd:schema "), std::string::npos);
  auto const fromInfoset = Schemas::ReadSchema(schema->ToFastInfosetStream(), ctx);
  EXPECT_EQ(DifferenceAfterRoundTrip(XmlText(fromInfoset->ToXml())), "");
  EXPECT_NE(fromInfoset->ToXml().find("xmlns:same="), std::string::npos);
  CXmlSerializationContext writing;
  writing.GetNamespaceAliases()->Add("b", "urn:other");
  writing.GetNamespaceAliases()->Add("s", "http://www.w3.org/2001/XMLSchema");
  std::string const written = schema->ToXml(true, true, EOLType_LF, writing);
  EXPECT_NE(written.find("<s:schema "), std::string::npos) << written;
  EXPECT_NE(written.find("xmlns:b=\"urn:other\""), std::string::npos) << written;
  EXPECT_NE(written.find("xmlns:xsd="), std::string::npos) << written;
  Schemas::ReadSchema(XmlText(written));  // each prefix is declared once
  schema->Init();
  EXPECT_EQ(schema->ToXml().find("xmlns:note"), std::string::npos);
}

void ExpectRoundTrips(fs::path const& folder, std::size_t atLeast) {
  std::size_t count = 0;
  for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".xsd") continue;
    ++count;
    std::string const difference = DifferenceAfterRoundTrip(entry.path().string());
    bool const isValid = entry.path().filename() != "mock-taxonomy.xsd";  // has an attribute that no schema has
    EXPECT_EQ(difference.empty(), isValid) << entry.path() << ": " << difference;
  }
  EXPECT_GE(count, atLeast) << folder;
}

TEST(SchemaForSchemas, SchemasOfTheRepositoryComeBack) {
  ExpectRoundTrips(fs::path(QUILLON9_SOURCE_DIR) / "generator", 4);
  ExpectRoundTrips(fs::path(QUILLON9_SOURCE_DIR) / "examples", 3);
  ExpectRoundTrips(fs::path(QUILLON9_SOURCE_DIR) / "tests", 5);
}

TEST(SchemaForSchemas, RealSchemasComeBack) {
  char const* const corpus = std::getenv("QUILLON9_CORPUS");
  fs::path const folder = corpus != nullptr ? fs::path(corpus).parent_path() / "schemas" : fs::path();
  if (!fs::is_directory(folder)) GTEST_SKIP() << "there is no folder of real schemas next to the corpus";
  ExpectRoundTrips(folder, 800);
}

}  // namespace
}  // namespace Quillon9
