// Where text stands between the children of an element.

#include <gtest/gtest.h>

#include <string>

#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

/// The content as it is in the tree: runs of text in brackets, and children by their names.
template <class Element>
std::string Shown(Element& element) {
  std::string shown;
  for (auto const& item : element.Content()) {
    shown += item.IsText() ? "[" + std::string(item.GetText()) + "]" : item.GetElement()->GetLocalName();
  }
  return shown;
}

struct Case {
  char const* content;
  char const* shown;
  bool isMixed;
};

bool IsDropped(CXmlElement* element) { return element->GetLocalName() == "drop"; }

}  // namespace

TEST(MixedContent, TextKeepsItsPlaceBesideChildren) {
  Case const cases[] = {
      {"", "", false},
      {"text", "[text]", false},
      {" \n", "[ \n]", false},
      {"<b/>", "b", false},
      {"\n\t<b/>\n\t<c/>\n", "bc", false},
      {"one<b/>", "[one]b", true},
      {"<b/>one", "b[one]", true},
      {"<b/>\n<c/>\none\n<d/>\n", "b[\n]c[\none\n]d[\n]", true},
      {"one<b/>two<c/><d/>three", "[one]b[two]cd[three]", true},
      {"<b>x<c/>y</b> \n <c/>.", "b[ \n ]c[.]", true},
      {"<b/>&#x4E00;<c/>&amp;<![CDATA[<]]>\r\n<d/>", "b[\xE4\xB8\x80]c[&<\n]d", true},
      {"1<drop/>2<b/><drop>3</drop>4<drop/>", "[12]b[4]", true},
  };
  for (Case const& each : cases) {
    std::string const text = std::string("<a>") + each.content + "</a>";
    CXmlSerializationContext ctx;
    ctx.SetTextEncoding(TextEncoding_UTF8);
    CXmlDocument document(IsDropped, ctx);
    document.LoadXml(text.c_str());
    CXmlElement& root = *document.GetDocumentElement();
    EXPECT_EQ(each.shown, Shown(root)) << text;
    EXPECT_EQ(each.shown, Shown(const_cast<CXmlElement const&>(root))) << text;
    EXPECT_EQ(each.isMixed, root.IsMixed()) << text;
  }
}

TEST(MixedContent, ElementsBuiltByHandKeepIt) {
  CXmlDocument document;
  for (bool const isStandalone : {false, true}) {
    CXmlElement standalone(nullptr);
    if (!isStandalone) document.AddDocElement("", "a");
    CXmlElement& element = isStandalone ? standalone : *document.GetDocumentElement();
    auto const add = [&](char const* name) { element.CreateNewChildElement()->SetElementName(name); };
    add("b");
    element.AppendText("1");
    add("c");
    add("d");
    element.AppendText(" ");
    EXPECT_TRUE(element.AppendPlainText("2") || (element.AppendText("2"), true));
    add("e");
    EXPECT_EQ("b[1]cd[ 2]e", Shown(element));
    delete element.RemoveLastChildElement();
    delete element.RemoveLastChildElement();
    element.AppendText("3");
    EXPECT_EQ("b[1]c[ 23]", Shown(element));
    EXPECT_EQ("1 23", element.GetText());
  }
  document.CloseElement();
  EXPECT_EQ("b[1]c[ 23]", Shown(*document.GetDocumentElement())) << "the end of the element changes nothing";
  document.Cleanup();
  document.LoadXml("<a>\n<b/>\n<c/>\n</a>");
  document.GetDocumentElement()->AppendText("x");
  document.GetDocumentElement()->CreateNewChildElement()->SetElementName("d");
  EXPECT_EQ("bc[\n\n\nx]d", Shown(*document.GetDocumentElement()));
}

TEST(MixedContent, ReadersAndFailuresLeaveNothingBehind) {
  CXmlDocument document;
  EXPECT_THROW(document.LoadXml("<a>1<b>2<c/>3</b>4"), CQnException);
  EXPECT_EQ("b[14]", Shown(*document.GetDocumentElement())) << "an element that is not complete";
  EXPECT_EQ("[2]c[3]", Shown(*document.GetDocumentElement()->GetFirstElement()));
  document.LoadXml("<a>5<b/>6</a>");
  EXPECT_EQ("[5]b[6]", Shown(*document.GetDocumentElement()));
}
