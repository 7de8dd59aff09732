#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

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

std::vector<std::string> LinesOf(std::string const& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  std::sort(lines.begin(), lines.end());
  return lines;
}

/// Adds the lines of \p document, and those that it has not any more after a read and a write in its form.
void CountLines(std::string const& document, std::size_t& all, std::size_t& different) {
  CXmlSerializationContext ctx;
  ctx.SetKeepForm(true);
  ctx.SetKeepPrefixes(true);
  ctx.SetKeepUnknown(true);
  CBinaryData const bytes =
      Schemas::ReadSchema(XmlText(document), ctx)->ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx);
  EXPECT_EQ(DifferenceBetween(XmlText(document), bytes), "") << document.substr(0, 200);
  std::vector<std::string> const before = LinesOf(document);
  std::vector<std::string> const after = LinesOf({reinterpret_cast<char const*>(bytes.GetData()), bytes.GetLength()});
  std::vector<std::string> lost;
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(), std::back_inserter(lost));
  all += before.size();
  different += lost.size();
}

TEST(SchemaForSchemas, RealSchemasKeepTheirForm) {
  char const* const corpus = std::getenv("QUILLON9_CORPUS");
  fs::path const folder = corpus != nullptr ? fs::path(corpus).parent_path() / "schemas" : fs::path();
  if (!fs::is_directory(folder)) GTEST_SKIP() << "there is no folder of real schemas next to the corpus";
  std::set<fs::path> schemas;
  for (fs::directory_entry const& entry : fs::recursive_directory_iterator(folder)) {
    bool const isValid = entry.path().filename() != "mock-taxonomy.xsd";
    if (isValid && entry.path().extension() == ".xsd") schemas.insert(entry.path());
  }
  std::size_t all = 0;
  std::size_t different = 0;
  std::size_t count = 0;
  for (fs::path const& path : schemas) {
    if (count++ % 8 != 0) continue;
    std::ifstream file(path, std::ios::binary);
    CountLines({std::istreambuf_iterator<char>(file), {}}, all, different);
  }
  RecordProperty("lines", std::to_string(all));
  RecordProperty("different", std::to_string(different));
  EXPECT_LT(different * 4, all);
}

}  // namespace
}  // namespace Quillon9
