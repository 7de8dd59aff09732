#include "quillon9/xmlio/writer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "expect_failure.h"
#include "quillon9/base/limits.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"

namespace Quillon9 {
namespace {

using Map = std::map<std::string, std::string>;
using Context = CXmlWriter::CXmlWriterContext;

constexpr bool kFormatted = true;

/// Builds a document, so that a case is one chain of operations next to the resulting text.
class Doc {
 public:
  explicit Doc(bool format = false) { m_writer.SetFormat(format); }

  Doc& Eol(EOLType type) { return m_writer.SetEOLType(type), *this; }
  Doc& Declare() { return m_writer.WriteStartDocument(), *this; }
  Doc& Directive(char const* text) { return m_writer.WriteHeaderDirective(text), *this; }
  Doc& Comment(char const* text) { return m_writer.WriteComment(text), *this; }
  Doc& PI(char const* text) { return m_writer.WritePI(text), *this; }
  Doc& Alias(char const* alias, char const* uri) { return m_writer.AddNamespace(alias, uri), *this; }
  Doc& Declare(char const* prefix, char const* uri) { return m_writer.DeclarePrefix(prefix, uri), *this; }
  Doc& EscapeNamespaces() { return m_writer.SetEscapesNamespaces(true), *this; }
  Doc& Default(char const* uri) { return m_writer.SetDefaultNamespace(uri), *this; }
  Doc& Start(char const* name, char const* ns = "") { return m_writer.WriteStartElement(name, ns), *this; }
  Doc& Attr(char const* name, char const* ns, char const* value) {
    return m_writer.WriteAttributeString(name, ns, value, ItemType_string), *this;
  }
  Doc& Type(char const* ns, char const* name) { return m_writer.WriteAttributeType(ns, name, ItemType_string), *this; }
  Doc& Nil() { return m_writer.WriteAttributeNil(), *this; }
  Doc& Schema(char const* text) { return m_writer.WriteInlineSchema(text), *this; }
  Doc& Text(std::string const& text) { return m_writer.WriteString(text, ItemType_string), *this; }
  Doc& Child(char const* name, char const* text) {
    return m_writer.WriteTextElement(name, "", text, ItemType_string), *this;
  }
  Doc& Raw(std::string const& text) { return m_writer.CloseParentElm(), m_writer.WriteRawElement(text), *this; }
  Doc& End(int count = 1) {
    while (count-- > 0) m_writer.WriteEndElement();
    return *this;
  }
  std::string Close() { return m_writer.Close(), SoFar(); }
  std::string SoFar() const { return m_stream.GetText(); }

 private:
  CTextStream m_stream{XmlEncoding_UTF8};
  CXmlTextWriter m_writer{m_stream};
};

// clang-format off
TEST(TextWriter, ElementsAndText) {
  EXPECT_EQ(Doc().Start("a").Text("").End().Close(), "<a/>");
  // The declaration ends its line, formatted or not.
  EXPECT_EQ(Doc().Declare().Start("a").Start("b").Text("1").End(2).Close(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a><b>1</b></a>");
  EXPECT_EQ(Doc(kFormatted).Declare().Start("a").Start("b").Text("1").End(2).Close(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n\t<b>1</b>\n</a>\n");
  EXPECT_EQ(Doc().Directive("<!DOCTYPE a>").Comment("1<2--3").PI("<?p x<y?>").Start("a").End().Close(),
            "<!DOCTYPE a>\n<!--1&lt;2--3-->\n<?p x<y?>\n\n<a/>");
  EXPECT_EQ(Doc().Start("a").Schema("s='<'").End().Close(), "<a \ns='<'\n/>");
  // In mixed content only elements add line ends and tabs; a raw child counts as a child.
  EXPECT_EQ(Doc(kFormatted).Start("a").Text("x").Start("b").End().Text("y").End().Close(), "<a>x\t<b/>\ny</a>\n");
  EXPECT_EQ(Doc(kFormatted).Start("a").Start("b").Raw("<c/>").End(2).Close(),
            "<a>\n\t<b>\n<c/>\n\t</b>\n</a>\n");
  EXPECT_EQ(Doc().Start("a").Raw("<b/>").End().Close(), "<a><b/></a>");
}

TEST(TextWriter, PreservesSpaceUpToTheEndTag) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.PreserveSpace();  // no element is open
  writer.WriteStartElement("a", "");
  for (int i = 0; i < 2; ++i) {
    writer.WriteStartElement("p", "");
    writer.PreserveSpace();
    writer.WriteTextElement("b", "", "1", ItemType_string);
    writer.WriteStartElement("c", "");
    writer.PreserveSpace();
    writer.WriteTextElement("d", "", "", ItemType_string);
    writer.WriteEndElement();
    writer.WriteEndElement();
  }
  writer.WriteTextElement("e", "", "", ItemType_string);
  writer.WriteEndElement();
  EXPECT_EQ("<a>\n\t<p><b>1</b><c><d/></c></p>\n\t<p><b>1</b><c><d/></c></p>\n\t<e/>\n</a>\n", stream.CopyText());
}

TEST(TextWriter, Escapes) {
  EXPECT_EQ(Doc().Start("a").Text("\"&<>\r\n\t'\xC3\xA4\xFFz").End().Close(),
            "<a>&quot;&amp;&lt;&gt;\n\t'\xC3\xA4\xFFz</a>");
  EXPECT_EQ(Doc().Start("a").Attr("n", "", "\"&<>\r\n\t'z").End().Close(),
            "<a n=\"&quot;&amp;&lt;&gt;&#xA;\t'z\"/>");
  EXPECT_EQ(Doc(kFormatted).Eol(EOLType_CRLF).Start("a").Attr("n", "", "\n").Start("b").Text("x\r\ny\n")
                .End(2).Close(),
            "<a n=\"&#xA;\">\r\n\t<b>x\r\ny\r\n</b>\r\n</a>\r\n");
  EXPECT_EQ(Doc().Start("a").Text(std::string("x\0y", 3)).End().Close(), "<a>x</a>");
  // A CDATA section is written literally only at the very start.
  EXPECT_EQ(Doc().Start("a").Text("<![CDATA[a<b]]>").Text(" <![CDATA[a]]>").Text("<![CDATA").End().Close(),
            "<a><![CDATA[a<b]]> &lt;![CDATA[a]]&gt;&lt;![CDATA</a>");
}

std::string EscapedByByte(std::string const& text) {
  std::string escaped;
  for (char const c : text) {
    switch (c) {
      case '\0': return escaped;
      case '\r': break;
      case '\n': escaped += "\r\n"; break;
      case '"': escaped += "&quot;"; break;
      case '&': escaped += "&amp;"; break;
      case '<': escaped += "&lt;"; break;
      case '>': escaped += "&gt;"; break;
      default: escaped += c;
    }
  }
  return escaped;
}

// Text is processed eight bytes at a time, and every byte must be found at any position.
TEST(TextWriter, EveryByteIsEscapedAtEveryPlace) {
  for (std::size_t length = 1; length < 20; ++length) {
    for (std::size_t place = 0; place < length; ++place) {
      Doc doc;
      std::string expected = "<a>";
      doc.Eol(EOLType_CRLF).Start("a");
      for (int byte = 0; byte < 256; ++byte) {
        std::string text = std::string("ab\xC3\xA4 c;!=#'%$?;\x7F~ABCDEFGHIJKLMNOP").substr(0, length);
        text[place] = static_cast<char>(byte);
        expected += EscapedByByte(text);
        doc.Text(text);
      }
      EXPECT_EQ(expected + "</a>", doc.End().Close()) << length << ' ' << place;
    }
  }
  std::string text(5000, 'x');
  for (std::size_t place : {1022U, 1023U, 1024U, 1025U, 4094U, 4095U, 4096U, 4999U}) text[place] = '<';
  EXPECT_EQ("<a>" + EscapedByByte(text) + "</a>", Doc().Start("a").Text(text).End().Close());
}

TEST(TextWriter, Namespaces) {
  EXPECT_EQ(Doc().Start("a", "u").End().Close(), "<AA:a xmlns:AA=\"u\"/>");
  EXPECT_EQ(Doc().Default("u").Start("a", "u").Start("b").End(2).Close(), "<a xmlns=\"u\"><b/></a>");
  // Declared in the order of URIs; the last prefix of a URI wins; URIs that begin with the XML namespace are left out.
  std::string const more = std::string(CXmlWriter::XML_NAMESPACE) + "/more";
  EXPECT_EQ(Doc().Alias("p", "v").Alias("q", "u").Alias("r", "v").Alias("s", more.c_str())
                .Start("a", "v").Attr("lang", CXmlWriter::XML_NAMESPACE, "en").End().Close(),
            "<r:a xmlns:q=\"u\" xmlns:r=\"v\" xml:lang=\"en\"/>");
  // A generated prefix ends with its element.
  EXPECT_EQ(Doc().Start("r").Start("a", "u").Start("b", "v").Start("c", "u").Text("1").End(3)
                .Start("d", "v").End(2).Close(),
            "<r><AA:a xmlns:AA=\"u\"><AB:b xmlns:AB=\"v\"><AA:c>1</AA:c></AB:b></AA:a><AA:d xmlns:AA=\"v\"/></r>");
  EXPECT_EQ(Doc().Alias("AA", "x").Alias("ab", "y").Start("a", "u").End().Close(),
            "<AB:a xmlns:AB=\"u\" xmlns:AA=\"x\" xmlns:ab=\"y\"/>");
  // Bound inside an element: used, but not declared.
  EXPECT_EQ(Doc().Start("a").Alias("p", "u").Start("b", "u").End(2).Close(), "<a><p:b/></a>");
  EXPECT_EQ(Doc().Default("u").Start("a", "u").Attr("m", "u", "1").Attr("n", "u", "2").End().Close(),
            "<a xmlns=\"u\" xmlns:AA=\"u\" AA:m=\"1\" AA:n=\"2\"/>");
  EXPECT_EQ(Doc().Default("u&").Alias("p", "v\"").Start("a", "w<").End().Close(),
            "<AA:a xmlns:AA=\"w<\" xmlns=\"u&\" xmlns:p=\"v\"\"/>");
  EXPECT_EQ(Doc().EscapeNamespaces().Default("u&").Alias("p", "v\"\t").Start("a", "w<\r\n").End().Close(),
            "<AA:a xmlns:AA=\"w&lt;&#xD;&#xA;\" xmlns=\"u&amp;\" xmlns:p=\"v&quot;&#x9;\"/>");
  EXPECT_EQ(Doc().EscapeNamespaces().Start("a").Declare("p", "u\t\r").Start("p", "u\t\r").End(2).Close(),
            "<a xmlns:p=\"u&#x9;&#xD;\"><p:p/></a>");
  EXPECT_EQ(Doc().Start("a").Declare("p", "u\t\r&").End().Close(), "<a xmlns:p=\"u\t&amp;\"/>");
  EXPECT_FAILURE(CQnInvalidValueException, "The character U+0001 cannot stand in an XML document",
                 Doc().EscapeNamespaces().Start("a", "\1"));
}

// What is cached for a name from its start to its end, and for the next element, follows the default namespace.
TEST(TextWriter, ChangedDefaultNamespaceCountsForWhatFollows) {
  Doc doc;
  doc.Default("d").Start("r", "d").Start("a", "d").End().Default("e").Start("a", "d").End().Start("b", "e").Default("d");
  doc.Start("a", "d").End().Text("t").End().Start("b", "e").End().Start("n").End().End();
  EXPECT_EQ(R"(<r xmlns="d"><a/><AA:a xmlns:AA="d"/><b><a/>t</:b><b/><n/></:r>)", doc.Close());
}

TEST(TextWriter, NamesEndAtAZeroByte) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  for (std::size_t length = 0; length < 20; ++length) {
    std::string const name(length, 'n');
    stream.Open();
    writer.WriteStartElement(name + '\0' + "unseen and long enough", "");
    writer.WriteAttributeString(name + '\0', "", "v\n", ItemType_string);
    writer.WriteString("t", ItemType_string);
    writer.WriteEndElement();
    EXPECT_EQ("<" + name + " " + name + "=\"v&#xA;\">t</" + name + ">\n", std::string(stream.GetText()));
  }
}

TEST(TextWriter, TypeAndNil) {
  constexpr char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";
  EXPECT_EQ(Doc().Start("a").Nil().End().Close(),
            "<a xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" AA:nil=\"true\"/>");
  EXPECT_EQ(Doc().Alias("xsi", kXsi).Default("d").Start("a").Type("", "T").Type("d", "T").Type("u", "T")
                .Type("u", "T").End().Close(),
            "<a xmlns=\"d\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:type=\"T\" xsi:type=\"T\" "
            "xmlns:AA=\"u\"  xsi:type=\"AA:T\" xsi:type=\"AA:T\"/>");
}

TEST(TextWriter, RefusesWhatIsOutOfOrder) {
  constexpr char kLate[] = "Attributes must be added before elements";
  Doc doc;
  EXPECT_FAILURE(CQnException, kLate, doc.Attr("n", "", "1"));
  EXPECT_FAILURE(CQnException, "There is no open element to end", doc.End());
  EXPECT_FAILURE(CQnException, "Invalid EOL type.", doc.Eol(EOLType_CRLF).Eol(static_cast<EOLType>(2)));
  doc.Start("a").Start("b").Text("\n");
  EXPECT_FAILURE(CQnException, kLate, doc.Attr("n", "", "1"));
  doc.End();
  EXPECT_FAILURE(CQnException, kLate, doc.Type("u", "T"));
  EXPECT_FAILURE(CQnException, kLate, doc.Nil());
  EXPECT_FAILURE(CQnException, "Headed directives must appear before an Element has been added.",
                 doc.Directive("x"));
  EXPECT_FAILURE(CQnException, "An Element has not been closed.", doc.Close());
  doc.End().Close();
  EXPECT_EQ(doc.Close(), "<a><b>\r\n</b></a>");
}
// clang-format on

TEST(TextWriter, IndentsByOneTabALevelHoweverDeep) {
  Doc doc(kFormatted);
  std::string starts;
  std::string ends;
  for (std::size_t depth = 0; depth < 99; ++depth) {
    doc.Start("e");
    starts += std::string(depth, '\t') + "<e>\n";
    ends.insert(0, std::string(depth, '\t') + "</e>\n");
  }
  EXPECT_EQ(doc.Start("e").End(100).Close(), starts + std::string(99, '\t') + "<e/>\n" + ends);
}

// An element written at once equals one written in three operations, wherever its prefix comes from.
TEST(TextWriter, TextElementsAtOnce) {
  struct Case {
    char const* defaultNamespace;
    char const* parent;
    char const* child;
  } const cases[] = {{"", "", ""},    {"", "u", "u"},  {"", "u", ""},   {"", "u", "v"},
                     {"u", "u", "u"}, {"u", "v", "u"}, {"u", "v", "v"}, {"u", "", "u"}};
  std::string const values[] = {"",
                                "1",
                                "a<b",
                                "<![CDATA[<]]>",
                                std::string("<![CDATA[<\0]]>", 13),
                                std::string("\0x", 2),
                                "x\r\ny",
                                std::string(1024, 'x'),
                                std::string(1025, 'x') + '&'};
  auto const write = [&](Case const& names, bool format, bool atOnce) {
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.SetFormat(format);
    writer.SetEOLType(EOLType_CRLF);
    writer.SetDefaultNamespace(names.defaultNamespace);
    writer.WriteStartElement("parent", names.parent);
    for (std::string const& value : values) {
      if (atOnce) {
        writer.WriteTextElement("child", names.child, value, ItemType_string);
        continue;
      }
      writer.WriteStartElement("child", names.child);
      writer.WriteString(value, ItemType_string);
      writer.WriteEndElement();
    }
    writer.WriteEndElement();
    return stream.CopyText();
  };
  for (Case const& each : cases) {
    for (bool const format : {false, true}) EXPECT_EQ(write(each, format, false), write(each, format, true));
  }
}

TEST(TextWriter, TextElementsCallTheOverridesOfADerivedClass) {
  struct Marking : CXmlTextWriter {
    using CXmlTextWriter::CXmlTextWriter;
    void WriteStartElement(std::string const& name, std::string const& ns) override {
      CXmlTextWriter::WriteStartElement(name + '1', ns);
    }
    void WriteString(std::string const& value, ItemType type) override {
      CXmlTextWriter::WriteString(value + (type == ItemType_i4 ? "2" : ""), type);
    }
    void WriteEndElement() override {
      WriteString("3", ItemType_string);
      CXmlTextWriter::WriteEndElement();
    }
  };
  CTextStream stream;
  Marking writer(stream);
  writer.SetFormat(false);
  writer.WriteStartElement("a", "");
  static_cast<CXmlWriter&>(writer).WriteTextElement("b", "", "x", ItemType_i4);
  writer.WriteTextElement("c", "", "", ItemType_string);
  writer.WriteEndElement();
  EXPECT_EQ("<a1><b1>x23</b1><c1>3</c1>3</a1>", stream.CopyText());
}

TEST(TextWriter, DeclarationFollowsTheStreamsEncoding) {
  char const* const encodings[] = {"", " encoding=\"UTF-8\"", " encoding=\"UTF-16\"", ""};
  for (int encoding = XmlEncoding_Default; encoding <= XmlEncoding_Unicode; ++encoding) {
    CTextStream stream(static_cast<XmlEncoding>(encoding));
    CXmlTextWriter(stream).WriteStartDocument();
    EXPECT_EQ(std::string("<?xml version=\"1.0\"") + encodings[encoding] + "?>\n", stream.GetText());
  }
}

TEST(TextWriter, FlushesAFullStreamAfterAPiece) {
  struct Counting : CTextStream {
    void Flush() override { m_lengths.push_back(GetLength()); }
    std::vector<unsigned long> m_lengths;
  } stream;
  CXmlTextWriter writer(stream);
  writer.WriteStartElement("a", "");
  writer.WriteRawElement(std::string(5000, 'x'));
  EXPECT_TRUE(stream.m_lengths.empty());
  writer.WriteAttributeString("n", "", "1", ItemType_string);
  writer.WriteString("y", ItemType_string);
  writer.WriteEndElement();
  EXPECT_EQ((std::vector<unsigned long>{5009, 5011, 5016}), stream.m_lengths);
}

TEST(Writer, NestingIsLimited) {
  struct RestoreLimit {
    std::uint32_t m_limit = CLimits::GetMaxElementDepth();
    ~RestoreLimit() { CLimits::SetMaxElementDepth(m_limit); }
  } const restore;
  CLimits::SetMaxElementDepth(2);
  Doc doc;
  doc.Start("a").Start("b");
  EXPECT_FAILURE(CQnException, "The element nesting exceeds the limit of 2 levels", doc.Start("c"));
  EXPECT_FAILURE(CQnException, "The element nesting exceeds the limit of 2 levels", doc.Child("c", "1"));
  EXPECT_EQ(doc.End().Start("d").End(2).Close(), "<a><b></b><d/></a>");
}

TEST(Writer, GeneratedPrefixes) {
  static constexpr struct {
    int number;
    char const* prefix;
  } kRows[] = {{0, "AA"},    {1, "AB"},    {25, "AZ"},    {26, "BA"},     {675, "ZZ"},    {676, "AAA"},
               {677, "AAB"}, {702, "ABA"}, {1352, "BAA"}, {16547, "XML"}, {18251, "ZZZ"}, {18252, "AAAA"}};
  for (auto const& row : kRows) EXPECT_EQ(row.prefix, CXmlWriter::NsIntToString(row.number));
  EXPECT_FAILURE(CQnException, "The prefix number [-1] is negative", CXmlWriter::NsIntToString(-1));

  // Each map gets the next free prefix; XML is skipped.
  Map map;
  for (int number = 0; number < 16550; ++number) {
    std::string const prefix = CXmlWriter::NsIntToString(number);
    if (prefix == "XML") continue;
    if (number < 700 || number > 16540) {
      ASSERT_EQ(prefix, CXmlWriter::GetUniquePrefix(map));
    }
    map["urn:" + std::to_string(number)] = prefix;
  }
  map.erase("urn:700");
  map["urn:long"] = "ZZZZZZZZZZZZZZ";
  map["urn:twice"] = "AA";
  EXPECT_EQ(CXmlWriter::NsIntToString(700), CXmlWriter::GetUniquePrefix(map));
}

TEST(WriterContext, SharesTheParentsScopeUntilItChanges) {
  Map const map{{"u", "p"}};
  Context* const root = new Context("r", "u", "d", map, nullptr);
  auto const changed = std::make_unique<Context>("c", "", root);
  EXPECT_EQ(&root->GetNamespaceMap(), &changed->GetNamespaceMap());
  EXPECT_EQ("d", changed->GetDefaultNamespace());

  changed->SetNamespaceMapValue("u", "q");
  EXPECT_EQ((Map{{"u", "q"}}), changed->GetNamespaceMap());
  EXPECT_EQ("d", changed->GetDefaultNamespace());
  changed->SetDefaultNamespace("e");
  EXPECT_EQ("e", changed->GetDefaultNamespace());
  EXPECT_EQ(map, root->GetNamespaceMap());
  EXPECT_EQ("d", root->GetDefaultNamespace());

  // Looking up an unknown URI leaves an empty entry in the scope of the lookup.
  EXPECT_EQ("", changed->GetNamespaceMapValue("v"));
  EXPECT_EQ((Map{{"u", "q"}, {"v", ""}}), changed->GetNamespaceMap());
}

// Each namespace gets the prefix that a search through all bindings in force would give it.
TEST(WriterContext, ManyNamespacesAreBoundInLinearTime) {
  CTextStream stream;
  CXmlTextWriter writer(stream);
  writer.SetFormat(false);
  writer.WriteStartElement("r", "");
  writer.AddNamespace("AC", "urn:chosen");
  for (int i = 0; i < 7000; ++i) writer.WriteAttributeString("a", "urn:" + std::to_string(i), "", ItemType_string);
  for (int i = 0; i < 7000; ++i) {
    writer.WriteStartElement("e", "urn:child:" + std::to_string(i));
    writer.WriteEndElement();
  }
  for (int i = 0; i < 700; ++i) writer.WriteStartElement("n", "urn:nested:" + std::to_string(i));
  std::string const text = stream.GetText();
  EXPECT_NE(std::string::npos, text.find(" xmlns:AB=\"urn:1\" AB:a=\"\" xmlns:AD=\"urn:2\" AD:a"));
  std::string const next = CXmlWriter::NsIntToString(7001);
  EXPECT_NE(std::string::npos, text.find("<" + next + ":e xmlns:" + next + "=\"urn:child:6999\"/>"));
  EXPECT_NE(std::string::npos, text.find("<" + next + ":n xmlns:" + next + "=\"urn:nested:0\">"));
  EXPECT_NE(std::string::npos, text.find("xmlns:" + CXmlWriter::NsIntToString(7002) + "=\"urn:nested:1\">"));
  for (int i = 0; i < 701; ++i) writer.WriteEndElement();
  writer.Close();
  CXmlDocument document;
  document.LoadXml(stream.GetText());
  CXmlElement const* const root = document.GetDocumentElement();
  EXPECT_EQ(7000U, root->GetAttributes().size());
  EXPECT_EQ("urn:6999", root->GetAttributes().back()->GetNamespaceURI());
  int children = 0;
  for (auto const* child = root->GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    if (++children > 7000) continue;
    EXPECT_EQ("urn:child:" + std::to_string(children - 1), child->GetNamespaceURI());
  }
  EXPECT_EQ(7001, children);
}

TEST(WriterContext, DeepChainIsFreedWithoutRecursion) {
  auto* context = new Context("a", "", "", Map(), nullptr);
  for (int i = 0; i < 200000; ++i) context = new Context("a", "", context);
  EXPECT_EQ(200000U, context->m_depth);
  delete context;
}

}  // namespace
}  // namespace Quillon9
