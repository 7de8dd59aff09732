// The form of a document that is kept on wish.

#include <gtest/gtest.h>

#include <string>

#include "dynamic_class.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

CXmlSerializationContext Keeping() {
  CXmlSerializationContext ctx = Ignoring("A");
  ctx.SetKeepForm(true);
  ctx.SetKeepUnknown(true);
  return ctx;
}

constexpr char kNamespace[] = "urn:n";

Shape const& Leaf() {
  static Shape const shape({XmlElementGroupType_Sequence, XmlElementType_Element, 0}, {},
                           {Attribute("x", 1, true), Attribute("y", 2, true)});
  return shape;
}
CSmartPtr<CXmlObjectBase> MakeLeaf(int, char const* name) { return new DynamicClass(Leaf(), name); }

/// <root> with <a> and <b>, which are in \p ns, and <plain>, which is in none.
Shape const& Root(char const* ns) {
  static auto const make = [](char const* name) {
    return new Shape({}, {new CElementInfoSeqClsOpt("a", name, 0, XmlElementType_Element, MakeLeaf, 0),
                          new CElementInfoSeqClsOpt("b", name, 1, XmlElementType_Element, MakeLeaf, 0),
                          new CElementInfoSeqClsOpt("plain", "", 2, XmlElementType_Element, MakeLeaf, 0)});
  };
  static Shape const& without = *make("");
  static Shape const& with = *make(kNamespace);
  return ns[0] == '\0' ? without : with;
}

struct Object : DynamicClass {
  explicit Object(char const* ns = "") : DynamicClass(Root(ns)) { m_targetNamespace = ns; }
};

std::string Written(CXmlGeneratedClass const& object, CXmlSerializationContext const& ctx = Keeping()) {
  CBinaryData const data = object.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx);
  return {reinterpret_cast<char const*>(data.GetData()), data.GetLength()};
}

CBinaryData Bytes(std::string const& text) {
  CBinaryData data;
  data.Append(reinterpret_cast<unsigned char const*>(text.data()), text.size());
  return data;
}

std::string RoundTrip(std::string const& document, char const* ns = "") {
  Object object(ns);
  object.FromXmlStream(Bytes(document), Keeping());
  return Written(object);
}

TEST(DocumentForm, DocumentsComeBackAsTheyWere) {
  std::string const documents[] = {
      "<root><a>1</a></root>",
      "<root/>",
      "<root />\n",
      "<root></root>\r\n",
      "<?xml version='1.0' encoding=\"utf-8\" standalone='yes' ?><root><a>1</a><b>2</b></root>\n",
      "<?xml version=\"1.0\"?>\n<root>\n\t<a>1</a>\n\t<b x=\"1\">2</b>\n</root>\n",
      "<?xml version=\"1.0\"?>\r\n\r\n<root>\r\n  <a>1</a>\r\n  <b>2</b>\r\n</root>",
      "\xEF\xBB\xBF<root>\n    <a>1</a>\n    <b />\n</root>\n",
      "<root>\n<a>1</a>\n<b></b>\n</root>\n",
      "<root>\n <!-- c -->\n <a>1</a>\n</root>\n",
      "<!-- one -->\n\n<!DOCTYPE root SYSTEM 'a>b'>\n<?p i?>\n<root>\n <a>1</a>\n</root>\n\n<!-- two -->\n",
      "<root\n  xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'\n  xsi:schemaLocation='urn:a a.xsd\n    urn:b "
      "b.xsd'"
      "\n>\n  <a>1</a>\n</root>\n",
      "<root xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:noNamespaceSchemaLocation=\"\"/>\n",
      "<root xmlns:unused=\"urn:u\" k=\"&#34;&lt;\">\n  <a y='1' x = \"2\"/>\n  <b y='3'\n     x='4'>say "
      "\"it\"</b>\n</root>\n",
      "<root><a>&quot;</a></root>\n",
  };
  for (std::string const& document : documents) EXPECT_EQ(RoundTrip(document), document);
}

TEST(DocumentForm, PrefixesAreThoseOfTheDocument) {
  EXPECT_EQ(RoundTrip("<root xmlns=\"urn:n\"><a>1</a></root>", kNamespace), "<root xmlns=\"urn:n\"><a>1</a></root>");
  EXPECT_EQ(RoundTrip("<root xmlns=\"urn:n\"><a>1</a><plain xmlns=\"\">1</plain></root>", kNamespace),
            "<root xmlns=\"urn:n\"><a>1</a><plain xmlns=\"\">1</plain></root>");
  EXPECT_EQ(RoundTrip("<p:root xmlns:p=\"urn:n\" xmlns=\"urn:n\"><p:a>1</p:a></p:root>", kNamespace),
            "<AA:root xmlns:p=\"urn:n\" xmlns:AA=\"urn:n\"><AA:a>1</AA:a></AA:root>");
  Object object(kNamespace);
  object.FromXml("<root xmlns='urn:n'><a>1</a></root>", Keeping());
  CXmlSerializationContext ctx = Keeping();
  ctx.GetNamespaceAliases()->Add("q", kNamespace);
  EXPECT_EQ(Written(object, ctx), "<q:root xmlns:q=\"urn:n\"><q:a>1</q:a></q:root>");
}

TEST(DocumentForm, WhatCannotBeKeptIsWrittenAsEver) {
  struct {
    std::string document;
    char const* expected;
  } const rows[] = {
      {"<?xml version='1.0' encoding='ISO-8859-1'?>\n<root><a>\xE9</a></root>\n",
       "<?xml version='1.0' encoding='UTF-8'?>\n<root><a>\xC3\xA9</a></root>\n"},
      {"<!DOCTYPE root [<!ENTITY e \"]>'\"><!-- ' --><?p \"?>]>\n<root x='&e;'><a>1</a></root>\n",
       "\n<root x=\"]&gt;'\"><a>1</a></root>\n"},
      {"<root><a> <![CDATA[1]]></a ></root >", "<root><a> 1</a></root>"},
      {"<root>\t <a>1</a></root>", "<root><a>1</a></root>"},
      {"<root>\n  <a>1</a>\r\n\n  <b>2</b></root>", "<root>\n  <a>1</a>\n  <b>2</b>\n</root>"},
      {"<!DOCTYPE root [<!ENTITY e 'u'>]><root xmlns:p='urn:&e;' xmlns:q='urn:&amp;'/>", "<root xmlns:q='urn:&amp;'/>"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><root xmlns:p='urn:\xE9' xmlns:\xE9='urn:q' k='\xE9'/>",
       "<?xml version='1.0' encoding='UTF-8'?><root k='\xC3\xA9'/>"},
      {"<root>\n" + std::string(200, ' ') + "<a/></root>", "<root>\n                <a/>\n</root>"},
  };
  ASCIIOnly(true);
  for (auto const& row : rows) EXPECT_EQ(RoundTrip(row.document), row.expected) << row.document;
  ASCIIOnly(false);
}

TEST(DocumentForm, DocumentsInUtf16) {
  std::string const document = "<?xml version=\"1.0\" encoding=\"UTF-16\"?>\r\n<root>\r\n   <a x='1'/>\r\n</root>\r\n";
  for (bool const isBigEndian : {false, true}) {
    std::string wide = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (char const c : document) wide += isBigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    EXPECT_EQ(RoundTrip(wide), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<root>\r\n   <a x='1'/>\r\n</root>\r\n");
  }
}

TEST(DocumentForm, ChangedObjectsKeepIt) {
  Object object;
  object.FromXml("<root k='1'>\r\n  <a y='1' x='2'/>\r\n</root>\r\n", Keeping());
  DynamicClass* const leaf = new DynamicClass(Leaf(), "b");
  object.With(1, leaf);
  leaf->With(0, "t");
  leaf->With(1, "it's");
  object.GetUnknownContent()->GetAttributes()->Clear();
  object.GetUnknownContent()->GetAttributes()->Add("l", "2");
  EXPECT_EQ(Written(object), "<root l=\"2\">\r\n  <a y='1' x='2'/>\r\n  <b x=\"it's\">t</b>\r\n</root>\r\n");
}

TEST(DocumentForm, TheProgramMayChangeIt) {
  Object object;
  object.FromXml("<?xml version='1.0'?><!DOCTYPE root SYSTEM 'a'>\n<root>\n <a>1</a>\n</root>", Keeping());
  CDocumentForm form = *object.GetDocumentForm();
  form.declaration.clear();
  form.documentType = "<!DOCTYPE root>";
  form.lineEnd = EOLType_CRLF;
  form.indentCharacter = '\t';
  form.indentWidth = 2;
  form.hasFinalLineEnd = true;
  form.schemaLocation = "urn:a \"a\"";
  object.SetDocumentForm(form);
  EXPECT_EQ(Written(object),
            "<!DOCTYPE root>\r\n<root xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:schemaLocation=\""
            "urn:a &quot;a&quot;\">\r\n\t\t<a>1</a>\r\n</root>\r\n");
  CXmlSerializationContext ctx = Keeping();
  ctx.GetAdditionalRootAttributes()->Add("schemaLocation", "urn:b b", "http://www.w3.org/2001/XMLSchema-instance");
  EXPECT_EQ(Written(object, ctx).find("urn:a"), std::string::npos);
  form.startTags = {"<root x='1' x='1'y='2'>", "<a x='1' x='2'>"};
  object.SetDocumentForm(form);
  CXmlDocument().LoadXml(Written(object).c_str());
  object.DropDocumentForm();
  EXPECT_EQ(Written(object), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n\t<a>1</a>\n</root>\n");
}

TEST(DocumentForm, AttributesOfTheClassStandOnce) {
  static char const xsi[] = "http://www.w3.org/2001/XMLSchema-instance";
  static Shape const shape({}, {}, {Attribute("schemaLocation", 0, true, ItemType_string, NoFacets(), nullptr, xsi)});
  DynamicClass object(shape);
  std::string const document = std::string("<root xmlns:xsi='") + xsi + "' xsi:schemaLocation='a b'/>";
  object.FromXml(document.c_str(), Keeping());
  EXPECT_EQ(Written(object), document);
  object.With(0, "c d");
  EXPECT_EQ(Written(object), std::string("<root xmlns:xsi='") + xsi + "' xsi:schemaLocation='c d'/>");
  DynamicClass again(shape);
  again.FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, Keeping()), Keeping());
  EXPECT_EQ(again.GetDocumentForm()->schemaLocation, "c d");
}

TEST(DocumentForm, CountsOnlyUnderTheOption) {
  std::string const document = "<root ><a>1</a></root>";
  std::string const usual = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<root>\n\t<a>1</a>\n</root>\n";
  Object object;
  object.FromXml(document.c_str(), Keeping());
  EXPECT_EQ(Written(object), document);
  EXPECT_EQ(object.ToXml(false, true, EOLType_CRLF, Keeping()), document);
  EXPECT_EQ(Written(object, CXmlSerializationContext::m_defaultContext), usual);
  CXmlDocument tree;
  tree.LoadXml(("<other>" + document + "</other>").c_str());
  object.FromXmlElement(tree.GetDocumentElement()->GetFirstElement(), Keeping());
  EXPECT_EQ(object.GetDocumentForm(), nullptr);
  object.FromXml(document.c_str(), Keeping());
  object.FromXml(document.c_str());
  EXPECT_EQ(object.GetDocumentForm(), nullptr);
  CElement generic("root", "");
  generic.FromXml(document.c_str());
  object.FromXmlElement(&generic, Keeping());
  EXPECT_EQ(object.GetDocumentForm(), nullptr);
}

TEST(DocumentForm, FastInfosetHasWhatApplies) {
  Object object;
  object.FromXml(
      "<?xml version='1.0' encoding='UTF-8' standalone='no'?><root "
      "xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
      " xsi:noNamespaceSchemaLocation='a.xsd'><a>1</a></root>",
      Keeping());
  CBinaryData const infoset = object.ToFastInfosetStream(FInfoDecl_None, Keeping());
  Object again;
  again.FromXmlStream(infoset, Keeping());
  ASSERT_NE(again.GetDocumentForm(), nullptr);
  EXPECT_FALSE(again.GetDocumentForm()->hasLayout);
  EXPECT_EQ(again.GetDocumentForm()->declaration, "<?xml version=\"1.0\" standalone=\"no\"?>");
  EXPECT_EQ(again.GetDocumentForm()->noNamespaceSchemaLocation, "a.xsd");
  EXPECT_EQ(again.ToXml(false, true, EOLType_CRLF, Keeping()),
            "<?xml version=\"1.0\" standalone=\"no\"?>\r\n<root xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
            " xsi:noNamespaceSchemaLocation=\"a.xsd\">\r\n\t<a>1</a>\r\n</root>\r\n");
  EXPECT_TRUE(again.ToFastInfosetStream(FInfoDecl_None, Keeping()) == infoset);
}

}  // namespace
}  // namespace Quillon9Data
