// What an object keeps although its class does not know it.

#include <gtest/gtest.h>

#include <string>

#include "dynamic_class.h"
#include "expect_failure.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

CXmlSerializationContext Keeping(std::string const& options = "UA") {
  CXmlSerializationContext ctx = Ignoring(options);
  ctx.SetKeepUnknown(true);
  return ctx;
}

Shape const& Pair() {  // a group without a tag: a mandatory <p>, an optional <q>, an attribute
  static Shape const pair({XmlElementGroupType_Sequence, XmlElementType_Pseudo, -1, false},
                          {Prim<CElementInfoSeqPrimMnd>("p", 0), Prim<CElementInfoSeqPrimOpt>("q", 1)},
                          {Attribute("pa", 2, true)});
  return pair;
}
CSmartPtr<CXmlObjectBase> MakePair(int, char const* name) { return new DynamicClass(Pair(), name); }

Shape const& Sequence() {
  static Shape const shape({}, {Prim<CElementInfoSeqPrimOpt>("a", 0), Prim<CElementInfoSeqPrimMnd>("b", 1),
                                Prim<CElementInfoSeqPrimOpt>("c", 2)});
  return shape;
}
Shape const& All() {
  static Shape const shape({XmlElementGroupType_All},
                           {Prim<CElementInfoAllPrimOpt>("a", 0), Prim<CElementInfoAllPrimOpt>("b", 1)});
  return shape;
}
Shape const& Choice() {
  static Shape const shape({XmlElementGroupType_Choice},
                           {Prim<CElementInfoChoicePrimOpt>("a", 0), Prim<CElementInfoChoicePrimOpt>("b", 1)});
  return shape;
}
Shape const& Text() {
  static Shape const shape({XmlElementGroupType_Sequence, XmlElementType_Element, 0}, {}, {Attribute("x", 1, true)});
  return shape;
}
CSmartPtr<CXmlObjectBase> MakeText(int, char const* name) { return new DynamicClass(Text(), name); }
Shape const& Holder() {
  static Shape const shape({}, {new CElementInfoSeqClsOpt("a", "", 0, XmlElementType_Element, MakeText, 0),
                                Prim<CElementInfoSeqPrimOpt>("b", 1)});
  return shape;
}
Shape const& Group() {
  static Shape const shape({}, {Prim<CElementInfoSeqPrimOpt>("a", 0),
                                new CElementInfoSeqClsOpt("", "", 1, XmlElementType_Pseudo, MakePair, 0)});
  return shape;
}

TEST(UnknownContent, IsWrittenWhereItStood) {
  struct {
    Shape const& shape;
    char const* document;
    char const* options = "UA";
    char const* expected = nullptr;  // null for the document itself
  } const rows[] = {
      {Sequence(), "<root><a>1</a><x/><b>2</b><c>3</c><y>t<z k=\"1\"/>u</y></root>"},
      {Sequence(), "<root><x/><a>1</a><b>2</b><y/><c>3</c></root>"},  // a and c are not reached
      {Sequence(), "<root k=\"1\"><b>2</b><!--c--><?p i?></root>"},
      {Sequence(), "<root k=\"1\"><!--c--><b>2</b></root>", "A"},
      {Sequence(), "<root><!--c--><b>2</b><!----></root>", ""},
      {Sequence(), "<!--head-->\n<?p?>\n<root><b>2</b></root><!--tail-->\n", ""},
      {Sequence(), "<root><b>2</b><n:x xmlns:n=\"urn:n\" k=\"n:v\"/></root>", "U",
       "<root><b>2</b><AA:x xmlns:AA=\"urn:n\" xmlns:n=\"urn:n\" k=\"n:v\"/></root>"},
      {Sequence(), "<root xmlns:n=\"urn:n\" n:k=\"n:v\"><b>2</b></root>"},
      {Sequence(), "<root><b><!--lost with the value-->2</b></root>", "", "<root><b>2</b></root>"},
      {All(), "<root><b>2</b><x/><a>1</a></root>", "U", "<root><b>2</b><x/><a>1</a></root>"},
      {All(), "<root><b>2</b><!--c--><a>1</a></root>", "U", "<root><a>1</a><!--c--><b>2</b></root>"},
      {Choice(), "<root><x/><b>2</b><!--c--><a>1</a></root>"},
      {Text(), "<root x=\"1\" y=\"2\"><!--c-->text<?p?></root>", "A"},
      {Text(), "<root><y/>text<!--c--></root>", "U"},
      {Text(), "<root>t<y/><?p?>ex<!--c-->t</root>", "U"},
      {Holder(), "<root><a x=\"1\" y=\"2\">text</a><!--c--><b>1</b><z/></root>"},
      {Group(), "<root pa=\"3\" k=\"1\"><a>1</a><p>1</p><x/><q>2</q></root>"},
      {Group(), "<root><a>1</a><q>2</q></root>"},  // no group without p
  };
  for (auto const& row : rows) {
    CFailureList failures;
    for (bool const isTold : {false, true}) {
      CXmlSerializationContext ctx = Keeping(row.options);
      if (isTold) ctx.SetFailureSink(&failures);
      DynamicClass object(row.shape);
      object.FromXml(row.document, ctx);
      EXPECT_EQ(object.Text(), row.expected != nullptr ? row.expected : row.document);
      DynamicClass again(row.shape);
      again.FromXmlStream(object.ToFastInfosetStream(), ctx);
      EXPECT_EQ(again.Text(), object.Text());
    }
    EXPECT_EQ(failures.GetReport(), "") << row.document;
  }
}

TEST(UnknownContent, IsDroppedWithoutTheOptionAndByTheNextRead) {
  char const* const document = "<root k=\"1\"><b>2</b><x/><!--c--></root>";
  DynamicClass object(Sequence());
  object.FromXml(document, Ignoring("UA"));
  EXPECT_EQ(object.GetUnknownContent(), nullptr);
  object.FromXml(document, Keeping());
  ASSERT_NE(object.GetUnknownContent(), nullptr);
  EXPECT_EQ(object.GetUnknownContent()->GetItems().size(), 2u);
  EXPECT_EQ(object.GetUnknownContent()->GetAttributes()->GetCount(), 1);
  object.FromXml("<root><b>2</b></root>", Keeping());
  EXPECT_EQ(object.GetUnknownContent(), nullptr);
  object.FromXml(document, Keeping());
  object.FromXml(document, Ignoring("UA"));
  EXPECT_EQ(object.Text(), "<root><b>2</b></root>");
}

TEST(UnknownContent, CopiesHaveTheCommentsToo) {
  DynamicClass object(Sequence());
  object.FromXml("<root><b>2</b><x><y/>1<!--c-->2</x><!--d--></root>", Keeping());
  CElement const copy(&object, nullptr);
  EXPECT_EQ(copy.Clone()->ToXml(false, false), object.Text());
  EXPECT_EQ(copy.GetMarkup().size(), 1u);
}

TEST(UnknownContent, AttributesOfTheContextComeFirst) {
  DynamicClass object(Sequence());
  object.FromXml("<root k=\"1\" l=\"2\"><b>2</b></root>", Keeping());
  CXmlSerializationContext ctx;
  ctx.GetAdditionalRootAttributes()->Add("k", "3");
  EXPECT_EQ(object.Text(ctx), "<root k=\"3\" l=\"2\"><b>2</b></root>");
}

TEST(UnknownContent, InstructionsOfTheContextAreNotWrittenTwice) {
  DynamicClass object(Sequence());
  object.FromXml("<?style  sheet?><!--head--><root><b>2</b></root><?p?>", Keeping());
  CXmlSerializationContext ctx;
  ctx.GetProcessingInstructions() = {"<?style sheet?>", "<?p?>"};
  EXPECT_EQ(object.Text(ctx), "<?style sheet?>\n<!--head-->\n<?p?>\n\n<root><b>2</b></root><?p?>\n");
}

TEST(UnknownContent, TextOfAnotherSizeIsWrittenInOnePiece) {
  DynamicClass object(Text());
  object.FromXml("<root><!--1-->10<!--2-->00<!--3--></root>", Keeping());
  object.With(0, "1500");
  EXPECT_EQ(object.Text(), "<root><!--1-->15<!--2-->00<!--3--></root>");
  object.With(0, "15000");
  EXPECT_EQ(object.Text(), "<root><!--1-->15000<!--2--><!--3--></root>");
  object.With(0, "1\xE2\x82\xAC");
  EXPECT_EQ(object.Text(), "<root><!--1-->1<!--2-->\xE2\x82\xAC<!--3--></root>");
  CXmlSerializationContext ctx = Keeping();
  ctx.SetTextEncoding(TextEncoding_UTF8);
  CXmlDocument tree(ctx);
  tree.LoadXml("<e>a<!--c-->b</e>");
  CElement element("");
  element.CopyXmlElement(tree.GetDocumentElement());
  element.SetText("\xC3\xA4");
  EXPECT_EQ(element.ToXml(false, false, EOLType_LF, ctx), "<e><!--c-->\xC3\xA4</e>");
}

TEST(UnknownContent, WhatWouldEndACommentIsParted) {
  DynamicClass object(Sequence());
  object.FromXml("<root><b>2</b><!--c--><?p i?></root>", Keeping());
  object.GetUnknownContent()->GetItems()[0].text = "a--b---";
  object.GetUnknownContent()->GetItems()[1].text = "a?>b";
  object.GetUnknownContent()->GetItems()[1].target = "p?>";
  EXPECT_EQ(object.Text(), "<root><b>2</b><!--a- -b- - - --><?p? > a? >b?></root>");
}

TEST(UnknownContent, IsBoundedByTheLimits) {
  std::string document = "<root><b>2</b>";
  for (int i = 0; i < 2000; ++i) document += "<!--c--><x/>";
  document += "</root>";
  std::uint64_t const limit = CLimits::GetMaxContentSize();
  std::uint32_t const growth = CLimits::GetMaxContentGrowth();
  CLimits::SetMaxContentSize(700000);
  CLimits::SetMaxContentGrowth(1);
  DynamicClass object(Sequence());
  EXPECT_NO_THROW(object.FromXml(document.c_str(), Ignoring("U")));
  EXPECT_THROW(object.FromXml(document.c_str(), Keeping()), CQnException);
  CLimits::SetMaxContentSize(limit);
  CLimits::SetMaxContentGrowth(growth);
}

}  // namespace
}  // namespace Quillon9Data
