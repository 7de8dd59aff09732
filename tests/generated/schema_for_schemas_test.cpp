#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/quillon9.h"
#include "schemas.h"

/// The classes of the schema for schemas, which the generator brings, read schemas and write them back.
namespace Quillon9 {
namespace {

namespace fs = std::filesystem;

bool IsInName(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '-' || c == '.';
}

/// What stands in front of the colons of a value.
std::vector<std::string> PrefixesIn(std::string const& value) {
  std::vector<std::string> prefixes;
  for (auto colon = value.find(':'); colon != value.npos; colon = value.find(':', colon + 1)) {
    auto begin = colon;
    while (begin != 0 && IsInName(value[begin - 1])) --begin;
    if (begin != colon) prefixes.push_back(value.substr(begin, colon - begin));
  }
  return prefixes;
}

using Scope = std::map<std::string, std::string>;  // the URI of each prefix

/// An element of a tree that was read without namespaces, so that it still has the declarations.
struct Place {
  CXmlElement const* element;
  Scope scope;

  static Place Of(CXmlElement const& element, Scope scope) {
    for (CXmlAttribute const& attribute : element.Attributes()) {
      std::string const& name = attribute.GetLocalName();
      if (IsDeclaration(name)) scope[name.size() > 5 ? name.substr(6) : ""] = attribute.GetValue();
    }
    return {&element, std::move(scope)};
  }
  static bool IsDeclaration(std::string const& name) { return name == "xmlns" || name.rfind("xmlns:", 0) == 0; }

  std::string UriOf(std::string const& prefix) const {
    auto const found = scope.find(prefix);
    return found != scope.end() ? found->second : std::string();
  }
  std::string Expanded(std::string const& name, bool isAttribute = false) const {
    auto const colon = name.find(':');
    if (colon == name.npos) return (isAttribute ? "" : UriOf("")) + '|' + name;
    return UriOf(name.substr(0, colon)) + '|' + name.substr(colon + 1);
  }
  /// The names that stand in a list.
  std::string Names(std::string const& list) const {
    std::string names;
    for (std::size_t begin = 0; begin < list.size();) {
      auto const end = std::min(list.find(' ', begin), list.size());
      names += Expanded(list.substr(begin, end - begin)) + ' ';
      begin = end + 1;
    }
    return names;
  }
  std::map<std::string, std::string> Attributes() const {
    std::map<std::string, std::string> attributes;
    for (CXmlAttribute const& attribute : element->Attributes()) {
      std::string const name = Expanded(attribute.GetLocalName(), true);
      bool const isKept = !IsDeclaration(attribute.GetLocalName()) &&
                          name != "http://www.w3.org/2001/XMLSchema-instance|schemaLocation";
      if (isKept) attributes[name] = CWhitespaceUtils::Collapse(attribute.GetValue());
    }
    return attributes;
  }
  /// The texts and the elements in order; white space does not count.
  std::vector<std::pair<std::string, CXmlElement const*>> Content() const {
    std::vector<std::pair<std::string, CXmlElement const*>> content;
    for (auto const& item : element->Content()) {
      std::string const text = CWhitespaceUtils::Collapse(std::string(item.GetText()));
      if (item.GetElement() != nullptr || !text.empty()) content.emplace_back(text, item.GetElement());
    }
    return content;
  }
};

/// Compares two documents by content, and says where they differ first.
class Comparison {
 public:
  std::string Compare(CXmlDocument const& first, CXmlDocument const& second) {
    Elements(Place::Of(*first.GetDocumentElement(), {}), Place::Of(*second.GetDocumentElement(), {}));
    return m_difference;
  }

 private:
  void Note(std::string const& what) {
    if (m_difference.empty()) m_difference = m_path + ": " + what;
  }

  /// The same text with the same meaning of its prefixes, or else the same names or the same truth value.
  void Values(Place const& one, Place const& other, std::string const& first, std::string const& second) {
    auto const truth = [](std::string const& text) { return text == "1" ? "true" : text == "0" ? "false" : text; };
    if (first != second && truth(first) != truth(second) && one.Names(first) != other.Names(second)) {
      return Note(first + " -> " + second);
    }
    for (std::string const& prefix : PrefixesIn(first == second ? first : "")) {
      std::string const uri = one.UriOf(prefix);
      if (prefix != "xml" && !uri.empty() && uri != other.UriOf(prefix)) Note("the prefix of " + first);
    }
  }

  void Attributes(Place const& one, Place const& other) {
    auto const first = one.Attributes();
    auto const second = other.Attributes();
    for (auto const& [name, value] : first) {
      auto const same = second.find(name);
      if (same == second.end()) return Note("@" + name + " is lost");
      Values(one, other, value, same->second);
    }
    if (first.size() != second.size()) Note("more attributes");
  }

  void Elements(Place const& one, Place const& other) {
    std::string const outer = m_path;
    std::string const name = one.Expanded(one.element->GetLocalName());
    m_path += '/' + name.substr(name.find('|') + 1);
    if (name != other.Expanded(other.element->GetLocalName())) Note("another name");
    Attributes(one, other);
    auto const first = one.Content();
    auto const second = other.Content();
    if (first.size() != second.size()) Note("other content");
    for (std::size_t i = 0; i < first.size() && m_difference.empty(); ++i) {
      if ((first[i].second == nullptr) != (second[i].second == nullptr)) {
        Note("text and elements in another order");
      } else if (first[i].second == nullptr) {
        Values(one, other, first[i].first, second[i].first);
      } else {
        Elements(Place::Of(*first[i].second, one.scope), Place::Of(*second[i].second, other.scope));
      }
    }
    m_path = outer;
  }

  std::string m_path;
  std::string m_difference;
};

/// What is different after a read and a write; the failure if either fails.
std::string DifferenceAfterRoundTrip(CXmlSource const& source, bool keepsPrefixes = true) try {
  CXmlSerializationContext ctx;
  ctx.SetKeepPrefixes(keepsPrefixes);
  ctx.SetTextEncoding(TextEncoding_UTF8);
  CBinaryData const written = Schemas::ReadSchema(source, ctx)->ToXmlStream();
  ctx.SetSchemaType(SchemaType_DTD);
  CXmlDocument original(ctx);
  source.Load(original);
  CXmlDocument copy(ctx);
  copy.LoadXmlStream(written.GetData(), written.GetLength());
  return Comparison().Compare(original, copy);
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
