#include "pages/pages.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "plan_text.h"

namespace Quillon9Generator::Testing {
namespace {

/// The text of an attribute of HTML, without escapes of octets.
std::string Decoded(std::string const& fragment) {
  std::string text;
  for (std::size_t i = 0; i < fragment.size(); ++i) {
    bool const isEscape = fragment[i] == '%';
    text += isEscape ? static_cast<char>(std::stoi(fragment.substr(i + 1, 2), nullptr, 16)) : fragment[i];
    if (isEscape) i += 2;
  }
  return text;
}

/// References that lead nowhere.
std::string BrokenLinks(std::vector<Pages::Page> const& pages) {
  std::regex const mark("(id|href)=\"([^\"]*)\"");
  std::set<std::string> places;
  std::set<std::string> wanted;
  for (Pages::Page const& page : pages) {
    places.insert(page.path);
    for (std::sregex_iterator at(page.content.begin(), page.content.end(), mark), end; at != end; ++at) {
      std::string const value = (*at)[2];
      bool const isPlace = (*at)[1] == "id";
      EXPECT_TRUE(!isPlace || places.insert(page.path + "#" + value).second) << "twice: " << value;
      if (!isPlace && value.rfind("https://www.w3.org/TR/xmlschema-2/#", 0) != 0) wanted.insert(Decoded(value));
    }
  }
  std::string broken;
  for (std::string const& each : wanted) broken += places.count(each) == 0 ? each + "\n" : "";
  return broken;
}

/// The index and the page of the schema.
std::string PagesOf(std::string const& body) {
  SchemaFiles files;
  std::vector<Pages::Page> const pages = Pages::Write(SchemaOf(body, files));
  EXPECT_EQ(files.Diagnostics(), "");
  EXPECT_EQ(BrokenLinks(pages), "");
  EXPECT_EQ(pages.size(), 2U);
  return pages.front().content + pages.back().content;
}

// To accept a change: quillon9 generate --documentation=tests/generator/golden/pages tests/generator/golden/drawing.xsd
TEST(Pages, WritesTheGoldenPages) {
  Schema::Diagnostics diagnostics;
  auto const pages = Pages::Write(Schema::LoadSchemas({{QUILLON9_GOLDEN "/drawing.xsd"}, {}, {}}, diagnostics));
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_EQ(BrokenLinks(pages), "");
  for (Pages::Page const& page : pages) EXPECT_EQ(page.content, ReadText(QUILLON9_GOLDEN "/pages/" + page.path));
}

TEST(Pages, ShowsWhatTheSchemaSays) {
  struct Row {
    char const* schema;
    char const* text;
  };
  std::string const documentation =
      "<annotation><documentation>" + std::string(900, 'd') + "</documentation></annotation>";
  std::string const group =
      "<attributeGroup name='G'><attribute name='a' type='int'>" + documentation +
      "</attribute></attributeGroup><complexType name='A'><attributeGroup ref='t:G'/></complexType>"
      "<complexType name='B'><attributeGroup ref='t:G'/></complexType>";
  Row const rows[] = {
      // Texts are escaped, wherever they come from.
      {"<element name='e' type='string' default='&lt;script>'><annotation><documentation>a&amp;b &lt;i>\n\n\"c\"\nd"
       "</documentation></annotation></element>",
       "<p>a&amp;b &lt;i&gt;</p>\n<p>&quot;c&quot;\nd</p>\n"},
      {"<element name='e' type='string' default='&lt;script>'/>",
       "<dt>Default</dt><dd><code>&lt;script&gt;</code></dd>"},
      {"<element name='gr\xC3\xB6\xC3\x9F"
       "e' type='int'/><complexType name='C'><sequence><element ref='t:gr\xC3\xB6\xC3\x9F"
       "e'/></sequence>"
       "</complexType>",
       "href=\"urn-t.html#element-gr%C3%B6%C3%9F"
       "e\""},
      // What a document says about itself is on the first page.
      {"<annotation><documentation>A\n\n&lt;b></documentation></annotation><element name='e' type='int'/>"
       "<annotation><documentation>C</documentation></annotation>",
       "<li>a.xsd\n<p>A</p>\n<p>&lt;b&gt;\nC</p>\n</li>"},
      // A derived type has what it adds or changes.
      {"<complexType name='B'><attribute name='a'/><attribute name='b'/><attribute name='c'/></complexType>"
       "<complexType name='D'><complexContent><restriction base='t:B'><attribute name='a' use='prohibited'/>"
       "<attribute name='b' use='required'/></restriction></complexContent></complexType>",
       "<code>@b</code></td><td>required</td><td>xs:anySimpleType</td><td></td></tr>\n<tr><td style=\"padding-left: "
       "1em\"><code>@a</code></td><td>prohibited</td><td></td><td></td></tr>\n<tr><td style=\"padding-left: "
       "1em\">other "
       "attributes of <a href=\"urn-t.html#type-B\">B</a></td>"},
      {"<simpleType name='S'><restriction base='string'><maxLength value='9'/><pattern value='a'/><enumeration "
       "value='a'/></restriction></simpleType><simpleType name='T'><restriction base='t:S'><pattern value='b|a'/>"
       "<pattern value='c'/></restriction></simpleType>",
       ">S</a>\n<ul>\n<li>pattern <code>b|a</code> or <code>c</code></li>\n</ul>\n</dd>"},
      {"<simpleType name='L'><list><simpleType><restriction base='int'><minInclusive value='2'/></restriction>"
       "</simpleType></list></simpleType>",
       "list of <a href=\"https://www.w3.org/TR/xmlschema-2/#int\">xs:int</a>\n<ul>\n<li>minInclusive <code>2</code>"},
      {"<simpleType name='U'><union memberTypes='t:V decimal'/></simpleType><simpleType name='V'><restriction "
       "base='token'/></simpleType>",
       "one of\n<ul>\n<li><a href=\"urn-t.html#type-V\">V</a></li>\n<li>"},
      // What is used by others says so.
      {"<simpleType name='S'><restriction base='int'/></simpleType><element name='e' type='t:S'/><group name='G'>"
       "<sequence><element name='f' type='t:S' minOccurs='0' maxOccurs='unbounded'/></sequence></group>",
       "<p>Used by element <a href=\"urn-t.html#element-e\">e</a>, group <a href=\"urn-t.html#group-G\">G</a></p>"},
      {group.c_str(), "<td>optional</td><td></td><td>as in <a href=\"urn-t.html#type-A\">A</a></td>"},
      {"<element name='e'><complexType><sequence><any namespace='##other' processContents='skip'/></sequence>"
       "</complexType></element>",
       "any element</td><td>1</td><td>of any namespace but <code>urn:t</code>; not checked</td>"},
  };
  for (Row const& row : rows) {
    std::string const page = PagesOf(row.schema);
    EXPECT_NE(page.find(row.text), page.npos) << row.text << "\n" << page;
    EXPECT_EQ(page.find("<script"), page.npos);
  }
}

TEST(Pages, FollowRedefinitionsAndNamespaces) {
  SchemaFiles files;
  files.WriteSchema("b.xsd", "urn:t", "<xs:complexType name='T'><xs:attribute name='old'/></xs:complexType>");
  files.WriteSchema("c.xsd", "HTTP://T/", "<xs:element name='e' type='xs:int'/>");
  files.WriteSchema("d.xsd", "http://t", "<xs:element name='e' type='xs:int'/>");
  files.WriteSchema("a.xsd", "urn:t",
                    "<xs:redefine schemaLocation='b.xsd'><xs:complexType name='T'><xs:complexContent><xs:extension "
                    "base='t:T'><xs:attribute name='new'/></xs:extension></xs:complexContent></xs:complexType>"
                    "</xs:redefine><xs:import namespace='HTTP://T/' schemaLocation='c.xsd'/>"
                    "<xs:import namespace='http://t' schemaLocation='d.xsd'/>");
  auto const pages = Pages::Write(files.Load({"a.xsd"}));
  ASSERT_EQ(pages.size(), 4U) << files.Diagnostics();
  EXPECT_EQ(BrokenLinks(pages), "");
  EXPECT_EQ(pages[2].path, "t.html");
  EXPECT_EQ(pages[3].path, "t-2.html");
  EXPECT_NE(pages[1].content.find("@old"), std::string::npos) << pages[1].content;
  EXPECT_NE(pages[1].content.find("@new"), std::string::npos);
}

TEST(Pages, LargeNamespacesAreDividedByLetters) {
  std::string body;
  for (int i = 0; i < 300; ++i) body += "<element name='e" + std::to_string(i) + "' type='t:\xC3\xA4' />";
  SchemaFiles files;
  auto const pages =
      Pages::Write(SchemaOf(body + "<simpleType name='\xC3\xA4'><restriction base='int'/></simpleType>", files));
  ASSERT_EQ(pages.size(), 4U);
  EXPECT_EQ(pages[1].path + " " + pages[2].path + " " + pages[3].path, "urn-t-e.html urn-t-other.html urn-t.html");
  EXPECT_EQ(BrokenLinks(pages), "");
}

}  // namespace
}  // namespace Quillon9Generator::Testing
