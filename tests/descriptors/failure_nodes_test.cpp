// Which node of the document a failure is about, and what kind of failure it is.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "base/failure_detail.h"
#include "dynamic_class.h"
#include "quillon9/descriptors/generic_content.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

enum Classes { kLeaf, kPair };

Shape const& ShapeOf(int classId) {
  static Shape const leaf({}, {Prim<CElementInfoSeqPrimOpt>("v", 0, ItemType_i4)},
                          {Attribute("id", 1, true, ItemType_i4)});
  static Shape const pair({XmlElementGroupType_Sequence, XmlElementType_Pseudo, -1, false, false},
                          {Prim<CElementInfoSeqPrimMnd>("p", 0, ItemType_i4), Prim<CElementInfoSeqPrimMnd>("q", 1)});
  return classId == kLeaf ? leaf : pair;
}
CSmartPtr<CXmlObjectBase> MakeClass(int classId, char const* name) { return new DynamicClass(ShapeOf(classId), name); }
CSmartPtr<CXmlObjectBase> MakeNothing(CXmlElement*) { return nullptr; }
CSmartPtr<CXmlObjectBase> MakeNoClass(int, char const*) { return nullptr; }
char const* ColourText(int) { return "red"; }
int ColourOf(char const* text) {
  if (std::strcmp(text, "red") != 0) throw CQnException("no colour");
  return 1;
}

// "name" is an element, "i=2" an item of a collection, "name/@attribute" an attribute, "/name" an end tag.
std::string NodeOf(CQnException const& failure) {
  CFailureDetail const* const detail = FailureAccess::FindDetail(failure, 0);
  if (detail == nullptr || detail->element == nullptr) return "unknown";
  std::string name = static_cast<CXmlElement const*>(detail->element)->GetLocalName();
  if (name == "i") name += "=" + static_cast<CXmlElement const*>(detail->element)->GetText();
  if (detail->isAtEnd) name.insert(0, "/");
  auto const* const attribute = static_cast<CXmlAttribute const*>(detail->attribute);
  return attribute != nullptr ? name + "/@" + attribute->GetLocalName() : name;
}

struct Row {
  char const* content;  // of the root, from its attributes on
  FailureKind kind;
  char const* node;
};

void Expect(Shape const& shape, std::initializer_list<Row> rows, void (*fill)(DynamicClass&) = nullptr) {
  for (Row const& row : rows) {
    DynamicClass object(shape);
    if (fill != nullptr) fill(object);
    CXmlDocument document;
    document.LoadXml(("<root xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xmlns:o='urn:o'" +
                      std::string(row.content) + "</root>")
                         .c_str());
    try {
      object.FromXmlElement(document.GetDocumentElement());
      ADD_FAILURE() << row.content;
    } catch (CQnException const& failure) {
      EXPECT_EQ(row.kind, failure.GetKind()) << row.content;
      EXPECT_EQ(row.node, NodeOf(failure)) << row.content;
    }
  }
}

TEST(FailureNodes, OfASequence) {
  Shape const shape({},
                    {Prim<CElementInfoSeqPrimMnd>("a", 0, ItemType_date),
                     new CElementInfoSeqEnumOpt("e", "", 1, ColourText, ColourOf),
                     new CElementInfoSeqClsOpt("child", "", 2, XmlElementType_Element, MakeClass, kLeaf),
                     new CElementInfoSeqClsOpt("", "", 3, XmlElementType_Pseudo, MakeClass, kPair),
                     new CElementInfoSeqPrimCol("i", "", 4),
                     new CElementInfoSeqClsOpt("none", "", 5, XmlElementType_Element, MakeNoClass, kLeaf),
                     new CElementInfoSeqAbsClsMnd("abstract", "", 6, XmlElementType_Element, MakeNothing)},
                    {Attribute("r", 7, false, ItemType_boolean),
                     new CAttributeInfoEnum("c", "", 8, true, ColourText, ColourOf, nullptr)});
  Expect(shape,
         {{">", FailureKind_MissingAttribute, "root"},
          {" r='x'>", FailureKind_BadValue, "root/@r"},
          {" r='1' c='blue'>", FailureKind_BadValue, "root/@c"},
          {" r='1' z='1'>", FailureKind_UnexpectedAttribute, "root/@z"},
          {" r='1' xsi:nil='true'>", FailureKind_UnexpectedAttribute, "root/@nil"},
          {" r='1'>", FailureKind_MissingElement, "/root"},
          {" r='1'><e/>", FailureKind_MissingElement, "e"},
          {" r='1'><a>x</a>", FailureKind_BadValue, "a"},
          {" r='1'><a>2001-02-03</a><e>blue</e>", FailureKind_BadValue, "e"},
          {" r='1'><a>2001-02-03</a><child id='x'/>", FailureKind_BadValue, "child/@id"},
          {" r='1'><a>2001-02-03</a><child><v>x</v></child>", FailureKind_BadValue, "v"},
          {" r='1'><a>2001-02-03</a><child><w/></child>", FailureKind_UnexpectedElement, "w"},
          {" r='1'><a>2001-02-03</a><p>x</p>", FailureKind_BadValue, "p"},
          {" r='1'><a>2001-02-03</a>", FailureKind_Count, "/root"},
          {" r='1'><a>2001-02-03</a><none/>", FailureKind_Count, "none"},
          {" r='1'><a>2001-02-03</a><i>1</i><i>x</i>", FailureKind_BadValue, "i=x"},
          {" r='1'><a>2001-02-03</a><i>1</i><i>99</i>", FailureKind_BrokenFacet, "i=99"},
          {" r='1'><a>2001-02-03</a><i>1</i><none/>", FailureKind_Factory, "none"},
          {" r='1'><a>2001-02-03</a><i>1</i><abstract/>", FailureKind_Factory, "abstract"},
          {" r='1'><a>2001-02-03</a><i>1</i>", FailureKind_MissingElement, "/root"}},
         [](DynamicClass& object) {
           object.With(4, new Ci4Col("i", "", 1, 3, "", -1, -1, "", "50", "", "", -1,
                                     CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
         });
}

TEST(FailureNodes, OfCounts) {
  auto const fill = [](DynamicClass& object) {
    object.With(0, new Ci4Col("i", "", 2, 3, "", -1, -1, "", "", "", "", -1, CWhitespaceUtils::WhitespaceRule_Collapse,
                              nullptr));
  };
  std::initializer_list<Row> const rows = {{"><i>1</i>", FailureKind_Count, "/root"},
                                           {"><i>1</i><x/>", FailureKind_Count, "x"},
                                           {"><i>1</i><i>2</i><i>3</i><i>4</i><i>5</i><x/>", FailureKind_Count, "i=4"},
                                           {"><i>1</i><i>2</i><x/>", FailureKind_UnexpectedElement, "x"}};
  Expect(Shape({}, {new CElementInfoSeqPrimCol("i", "", 0)}), rows, fill);
  Expect(Shape({XmlElementGroupType_Choice}, {new CElementInfoChoicePrimCol("i", "", 0)}), rows, fill);
}

TEST(FailureNodes, OfOtherGroups) {
  Expect(Shape({XmlElementGroupType_Choice},
               {new CElementInfoChoiceClsOpt("child", "", 0, XmlElementType_Element, MakeClass, kLeaf),
                Prim<CElementInfoChoicePrimOpt>("a", 1, ItemType_i4)}),
         {{"><a>x</a>", FailureKind_BadValue, "a"},
          {"><a>1</a><child/>", FailureKind_UnexpectedElement, "child"},
          {"><x/><a>1</a>", FailureKind_UnexpectedElement, "x"}});
  Expect(Shape({XmlElementGroupType_Choice}, {}),
         {{"><x/>", FailureKind_EmptyChoice, "x"}, {">", FailureKind_EmptyChoice, "/root"}});
  Expect(Shape({XmlElementGroupType_All},
               {Prim<CElementInfoAllPrimMnd>("a", 0, ItemType_i4), Prim<CElementInfoAllPrimMnd>("b", 1)}),
         {{"><b/>", FailureKind_MissingElement, "/root"},
          {"><b/><x/>", FailureKind_MissingElement, "x"},
          {"><b/><a>x</a>", FailureKind_BadValue, "a"},
          {"><b/><a>1</a><a>1</a>", FailureKind_UnexpectedElement, "a"}});
}

TEST(FailureNodes, OfWildcards) {
  Shape const shape({XmlElementGroupType_Sequence, XmlElementType_Element, 3},
                    {new CElementInfoSeqUntpdMnd("AnyElement", "", 0, "##local", "")},
                    {new CAttributeInfoAny("", "", 1, true, "##local", "", nullptr)});
  Expect(shape,
         {{" o:z='1'>", FailureKind_Namespace, "root/@z"},
          {">", FailureKind_MissingElement, "/root"},
          {"><o:x/>", FailureKind_MissingElement, "x"},
          {"><x><y o:z='1'/></x><o:y/>", FailureKind_UnexpectedElement, "y"}},
         [](DynamicClass& object) {
           object.With(0, new CElement("AnyElement", "", "##local", "")).With(1, new CAttributeCol("", "##local", ""));
         });
  CAttributeCol attributes("", "##local", "");
  CXmlDocument document;
  document.LoadXml("<x xmlns:o='urn:o' a='1' o:z='2'/>");
  try {
    attributes.FromXmlElement(document.GetDocumentElement());
    FAIL();
  } catch (CQnException const& failure) {
    EXPECT_EQ(FailureKind_Namespace, failure.GetKind());
    EXPECT_EQ("x/@z", NodeOf(failure));
  }
}

TEST(FailureNodes, OfLimits) {
  CXmlDocument document;
  document.LoadXml("<r><s><t><u/></t></s></r>");
  CElement element("any");
  std::uint32_t const limit = CLimits::GetMaxElementDepth();
  CLimits::SetMaxElementDepth(2);
  try {
    element.FromXmlElement(document.GetDocumentElement());
    ADD_FAILURE();
  } catch (CQnException const& failure) {
    EXPECT_EQ(FailureKind_Limit, failure.GetKind());
    EXPECT_EQ("u", NodeOf(failure));
  }
  CLimits::SetMaxElementDepth(limit);
}

}  // namespace
}  // namespace Quillon9Data
