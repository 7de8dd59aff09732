// Enumerations, all groups, choices and untyped content: what a table of them reads from a document.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <utility>
#include <vector>

#include "descriptors/reading_allowance.h"
#include "dynamic_class.h"
#include "expect_failure.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

constexpr Shape::Options Of(XmlElementGroupType group, XmlElementType type = XmlElementType_Element) {
  return {group, type, -1, false, false};
}
constexpr Shape::Options kSequence = Of(XmlElementGroupType_Sequence);
constexpr Shape::Options kAll = Of(XmlElementGroupType_All);
constexpr Shape::Options kChoice = Of(XmlElementGroupType_Choice);

// ---- What the members hold

enum Classes { kLeaf, kPair, kEither };

Shape const& ShapeOf(int classId) {
  static Shape const leaf(kSequence, {Prim<CElementInfoSeqPrimOpt>("v", 0)});
  // A group without a tag: a mandatory <p>, an optional <q>, an attribute.
  static Shape const pair(Of(XmlElementGroupType_Sequence, XmlElementType_Pseudo),
                          {Prim<CElementInfoSeqPrimMnd>("p", 0), Prim<CElementInfoSeqPrimOpt>("q", 1)},
                          {Attribute("pa", 2, true)});
  static Shape const either(kChoice, {});  // nothing fits, and nothing is optional
  return classId == kLeaf ? leaf : classId == kPair ? pair : either;
}
CSmartPtr<CXmlObjectBase> MakeClass(int classId, char const* name) { return new DynamicClass(ShapeOf(classId), name); }
CSmartPtr<CXmlObjectBase> MakeForElement(CXmlElement* element) {
  if (CClassfactoryBase::GetElementType(element) == "none") return nullptr;
  return new DynamicClass(ShapeOf(kLeaf), element->GetLocalName().c_str());
}
char const* ColourText(int value) { return value == 1 ? "red" : "other"; }
int ColourOf(char const* text) { return std::strcmp(text, "red") == 0 ? 1 : 2; }

// ---- A table of cases: a class, documents, and what is written back or the failure

struct Row {
  char const* options;
  char const* content;
  std::string expected;
};

using Members = std::initializer_list<CElementInfo*>;

void Expect(Shape::Options group, Members members, std::initializer_list<Row> rows,
            void (*fill)(DynamicClass&) = nullptr, char const* ns = "") {
  Shape const shape(group, members);
  for (Row const& row : rows) {
    DynamicClass object(shape);
    object.m_targetNamespace = ns;
    if (fill != nullptr) fill(object);
    std::string const document =
        "<root xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'" + std::string(row.content) + "</root>";
    EXPECT_EQ(row.expected, ReadBack(object, document.c_str(), row.options)) << row.options << " " << row.content;
  }
}

std::string Failure(std::string const& text) { return "Failed to process the element [root]\n" + text; }
std::string LeftOver(std::string const& name) {
  return Failure("Failed read all the elements held within the element [root]. The unexpected element [" + name +
                 "] remains un processed");
}
std::string const kEmptyChoice = Failure(
    "No child elements within the element [root] were populated. The element represents a choice, so one and only one "
    "element should be populated. The element contained no sutable child elements");

// ---- Enumerations

TEST(EnumMembers, GoThroughTheirFunctionsWithTheRawText) {
  std::string const required = Failure("Failed to find a required element [c]");
  Expect(kSequence,
         {new CElementInfoSeqEnumMnd("c", "", 0, ColourText, ColourOf),
          new CElementInfoSeqEnumOpt("d", "", 1, ColourText, ColourOf)},
         {{"", "><c>red</c>", "<root><c>red</c></root>"},
          {"", "><c> red </c><d>red</d>", "<root><c>other</c><d>red</d></root>"},
          {"", "><d>red</d>", required},
          {"U", "><x/><c>red</c>", "<root><c>red</c></root>"},
          {"M", "><d>red</d>", "<root><d>red</d></root>"}});
}

TEST(EnumMembers, SkipNothingInAHolderWithoutATagUnlikeValues) {
  CElementInfoSeqEnumMnd enumeration("c", "", 0, ColourText, ColourOf);
  Shape const shape(kSequence, {});
  DynamicClass holder(shape);
  CXmlDocument document;
  document.LoadXml("<r><x/><c>red</c></r>");
  CXmlElement* cursor = document.GetDocumentElement()->GetFirstElement();
  EXPECT_FALSE(enumeration.ElementFromXml(Ignoring("U"), &holder, document.GetDocumentElement(), &cursor, "",
                                          XmlElementType_Pseudo));
  EXPECT_EQ("x", cursor->GetLocalName());
}

// ---- All groups

TEST(AllGroup, TakesItsElementsInAnyOrderAndJudgesAtTheEnd) {
  std::string const missing = Failure("Failed to find the mandatory element [a]");
  Expect(kAll,
         {Prim<CElementInfoAllPrimMnd>("a", 0), Prim<CElementInfoAllPrimOpt>("b", 1),
          new CElementInfoAllEnumMnd("c", "", 2, ColourText, ColourOf),
          new CElementInfoAllEnumOpt("d", "", 3, ColourText, ColourOf)},
         {{"", "><d>red</d><c>red</c><b>2</b><a>1</a>", "<root><a>1</a><b>2</b><c>red</c><d>red</d></root>"},
          {"", "><c>red</c><a>1</a>", "<root><a>1</a><c>red</c></root>"},
          {"", "><c>red</c><a>1</a><c>red</c>", LeftOver("c")},
          {"", "><c>red</c>", missing},
          {"M", "><c>red</c>", missing},  // no option excuses this
          {"", ">", missing},
          {"", "><a/><c/><x/>", LeftOver("x")},
          {"U", "><a/><c>red</c><x/><b/>", "<root><a/><c>red</c></root>"}});  // reading ends at <x/>
}

TEST(AllGroup, HoldsObjects) {
  auto const fill = [](DynamicClass& object) {
    object.With(0, new DynamicClass(ShapeOf(kLeaf), "a")).With(1, new DynamicClass(ShapeOf(kPair), ""));
  };
  Members const members = {new CElementInfoAllClsMnd("a", "", 0, XmlElementType_Element, MakeClass, kLeaf, false),
                           new CElementInfoAllClsMnd("", "", 1, XmlElementType_Pseudo, MakeClass, kPair, false),
                           new CElementInfoAllClsOpt("c", "", 2, XmlElementType_Element, MakeClass, kLeaf)};
  Expect(kAll, members,
         {{"", "><c/><p>1</p><q>2</q><a><v>3</v></a>", "<root><a><v>3</v></a><p>1</p><q>2</q><c/></root>"},
          {"", "><p/>", "<root><a/><p/></root>"},  // a child with a tag may be missing when it needs no content
          {"", "><a/>", Failure("Failed to find the mandatory element []")}},
         fill);
  Expect(kAll,
         {new CElementInfoAllClsMnd("a", "", 0, XmlElementType_Element, MakeClass, kLeaf, true),
          new CElementInfoAllClsOpt("", "", 1, XmlElementType_Pseudo, MakeClass, kPair)},
         {{"", "><a/><q/>", LeftOver("q")},
          {"", "><p/><a/>", "<root><a/><p/></root>"},
          {"", "><a/>", "<root><a/></root>"},
          {"", "><p/>", Failure("Failed to find the mandatory element [a]")}},
         [](DynamicClass& object) { object.With(0, new DynamicClass(ShapeOf(kLeaf), "a")); });
}

TEST(AllGroup, WritesButCannotReadElementsOfAbstractType) {
  std::string const clause =
      "::ElementFromXml, has not been implemented fully, please contact the support of the "
      "code generator";
  Expect(kAll, {new CElementInfoAllAbsClsMnd("c", "", 0, XmlElementType_Element, MakeForElement, 0)},
         {{"", "><x/>", Failure("CElementInfoAllAbsClsMnd" + clause)},
          {"", ">", Failure("Failed to find the mandatory element [c]")}});
  Expect(kAll, {new CElementInfoAllAbsClsOpt("c", "", 0, XmlElementType_Element, MakeForElement)},
         {{"", "><x/>", Failure("CElementInfoAllAbsClsOpt" + clause)}, {"", ">", "<root/>"}});
  Shape const shape(kAll, {new CElementInfoAllAbsClsOpt("c", "", 0, XmlElementType_Element, MakeForElement)});
  EXPECT_EQ("<root><c/></root>", DynamicClass(shape).With(0, new DynamicClass(ShapeOf(kLeaf), "c")).Text());
}

TEST(AllGroup, WithoutATagIsAbsentWhenAMandatoryElementIs) {
  static Shape const group(Of(XmlElementGroupType_All, XmlElementType_Pseudo),
                           {Prim<CElementInfoAllPrimMnd>("a", 0), Prim<CElementInfoAllPrimOpt>("b", 1)});
  ClassFactory const make = [](int, char const* name) -> CSmartPtr<CXmlObjectBase> {
    return new DynamicClass(group, name);
  };
  Expect(kSequence,
         {new CElementInfoSeqClsOpt("", "", 0, XmlElementType_Pseudo, make, 0), Prim<CElementInfoSeqPrimOpt>("b", 1)},
         {{"", "><b>1</b>", "<root><b>1</b></root>"},
          {"", "><b>1</b><a>2</a><b>3</b>", "<root><a>2</a><b>1</b><b>3</b></root>"}});
}

// ---- Choices

TEST(Choice, TakesTheFirstMemberThatFits) {
  Members const members = {Prim<CElementInfoChoicePrimOpt>("a", 0),
                           new CElementInfoChoiceEnumOpt("b", "", 1, ColourText, ColourOf),
                           new CElementInfoChoiceClsOpt("", "", 2, XmlElementType_Pseudo, MakeClass, kPair),
                           new CElementInfoChoiceClsOpt("d", "", 3, XmlElementType_Element, MakeClass, kEither),
                           new CElementInfoChoiceAbsClsOpt("e", "", 4, XmlElementType_Element, MakeForElement)};
  Expect(kChoice, members,
         {{"", "><a>1</a>", "<root><a>1</a></root>"},
          {"", "><b>red</b>", "<root><b>red</b></root>"},
          {"", " pa='x'><p>1</p><q>2</q>", "<root pa=\"x\"><p>1</p><q>2</q></root>"},
          {"", "><d/>", "<root><d/></root>"},  // an empty choice, read and written as a member of a choice
          {"", "><e><v>1</v></e>", "<root><e><v>1</v></e></root>"},
          {"", "><a>1</a><b>red</b>", LeftOver("b")},
          {"", ">", "<root/>"},  // all members are optional, and so is the choice
          {"", "><e xsi:type='none'/>", LeftOver("e")},
          {"U", "><x/><a>1</a>", "<root><a>1</a></root>"}});
}

TEST(Choice, LeavesThePropertyOfAFailedTryNull) {
  Shape const shape(kChoice, {new CElementInfoChoiceClsOpt("", "", 0, XmlElementType_Pseudo, MakeClass, kPair),
                              new CElementInfoChoiceAbsClsOpt("e", "", 1, XmlElementType_Element, MakeForElement),
                              new CElementInfoChoiceUntpdOpt("AnyElement", "", 2, "##targetNamespace", "urn:t"),
                              new CElementInfoChoiceUntpdOpt("e", "", 3, "##any", "")});
  DynamicClass object(shape);
  for (int index : {0, 1, 2}) object.With(index, new DynamicClass(ShapeOf(kLeaf), "old"));
  object.FromXml("<root><e xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:type='none'>t</e></root>");
  for (int index : {0, 1}) EXPECT_FALSE(object.m_properties[index].GetXmlObject()) << index;
  EXPECT_FALSE(object.m_properties[2].GetXmlObject());
  EXPECT_TRUE(object.m_properties[3].GetXmlObject());
  // When no child is left, no member is tried and no property is cleared.
  object.With(2, new DynamicClass(ShapeOf(kLeaf), "old"));
  object.FromXml("<root/>");
  EXPECT_TRUE(object.m_properties[2].GetXmlObject());
}

TEST(Choice, IsOptionalThroughItsMembers) {
  static Shape const leaf(kSequence, {});
  auto const fill0 = [](DynamicClass& object) { object.With(0, new DynamicCollection(leaf, "c", 0, -1)); };
  auto const fill1 = [](DynamicClass& object) { object.With(0, new DynamicCollection(leaf, "c", 1, -1)); };
  Expect(kChoice, {new CElementInfoChoiceClsCol("c", "", 0, XmlElementType_Element)},
         {{"", ">", "<root/>"}, {"", "><c/><c/>", "<root><c/><c/></root>"}}, fill0);
  Expect(kChoice, {new CElementInfoChoiceClsCol("c", "", 0, XmlElementType_Element)},
         {{"", ">", kEmptyChoice}, {"C", ">", "<root/>"}}, fill1);
}

// ---- Untyped content

TEST(UntypedMembers, AreHeldByNameAndNamespace) {
  auto const fill = [](DynamicClass& object) { object.With(0, new CElement("any", "", "##other", "urn:t")); };
  Expect(kSequence,
         {new CElementInfoSeqUntpdMnd("AnyElement", "urn:mine", 0, "##any", ""), Prim<CElementInfoSeqPrimOpt>("z", 1)},
         {{"", " xmlns:o='urn:o'><o:x k='1'>t<o:y/></o:x><z>2</z>",
           "<root><AA:x xmlns:AA=\"urn:o\" k=\"1\"><AA:y/>t</AA:x><z>2</z></root>"},
          {"", " xmlns='urn:t'><x/>", Failure("Failed to find the required element from namespace [urn:mine]")},
          {"U", "><x xmlns='urn:t'/>", Failure("Failed to find the required element from namespace [urn:mine]")},
          {"M", ">", Failure("Failed to find a required element [AnyElement]")}},
         fill);
  Expect(kSequence,
         {new CElementInfoSeqUntpdOpt("x", "", 0, "##any", ""),
          new CElementInfoSeqUntpdOpt("AnyElement", "", 1, "##local", ""), Prim<CElementInfoSeqPrimOpt>("z", 2)},
         {{"", "><x>1</x><z>2</z>", "<root><x>1</x><z>2</z></root>"},
          {"", "><y/><z>2</z>", "<root><y/><z>2</z></root>"},
          {"", "><o:y xmlns:o='urn:o'/>", LeftOver("y")},
          {"", ">", "<root/>"}});
}

TEST(UntypedMembers, GetAPlaceholderNamespaceThatTheirRestrictionAdmits) {
  Expect(kSequence, {new CElementInfoSeqUntpdOpt("AnyElement", "", 0, "##other", "")},
         {{"", "><a xmlns='urn:a'/>", "<root><AA:a xmlns:AA=\"urn:a\"/></root>"}});
  // In a holder with a namespace it is the empty one, which "##other" refuses here before any name is checked.
  Expect(kSequence, {new CElementInfoSeqUntpdOpt("x", "", 0, "##other", "")},
         {{"", "><z/>",
           Failure("Invalid namespace []. The namespace must be one of [##other] where the target namespace is []")},
          {"", ">", "<AA:root xmlns:AA=\"urn:h\"/>"}},
         nullptr, "urn:h");
}

TEST(UntypedMembers, OfAnAllGroupAndRepeated) {
  Expect(kAll,
         {new CElementInfoAllUntpdOpt("x", "", 0, "##any", ""), new CElementInfoAllUntpdMnd("y", "", 1, "##any", "")},
         {{"", "><y>2</y><x>1</x>", "<root><x>1</x><y>2</y></root>"},
          {"", "><x>1</x>", Failure("Failed to find the mandatory element [y]")}},
         [](DynamicClass& object) { object.With(1, new CElement("y")); });
  auto const fill = [](DynamicClass& object) { object.With(0, new CElementCol("", "##any", "", 0, -1)); };
  Expect(kSequence, {new CElementInfoSeqUntpdCol("x", "", 0), Prim<CElementInfoSeqPrimOpt>("z", 1)},
         {{"", "><x>1</x><x>2</x><z>3</z>", "<root><x>1</x><x>2</x><z>3</z></root>"},
          {"", "><x/><x xmlns='urn:o'/>", LeftOver("x")},  // a run has one namespace
          {"", ">", "<root/>"}},
         fill);
  Expect(kSequence, {new CElementInfoSeqUntpdCol("AnyElement", "", 0), Prim<CElementInfoSeqPrimOpt>("z", 1)},
         {{"", "><x/><z>3</z>", "<root><x/><z>3</z></root>"}}, fill);
  Expect(kChoice, {new CElementInfoChoiceUntpdCol("x", "", 0), Prim<CElementInfoChoicePrimOpt>("z", 1)},
         {{"", "><x/><x/>", "<root><x/><x/></root>"}, {"", "><z>1</z>", "<root><z>1</z></root>"}, {"", ">", "<root/>"}},
         fill);
  Expect(kSequence, {new CElementInfoSeqUntpdCol("x", "", 0)},
         {{"", "><x/>", Failure("The collection for the element [x] is none of untyped elements")}},
         [](DynamicClass& object) { object.With(0, new DynamicCollection(ShapeOf(kLeaf), "x", 0, -1)); });
}

// ---- Unknown children before groups: each is passed once, otherwise this would take hours

Shape const& Group(Members members) {
  static std::vector<std::unique_ptr<Shape>> shapes;
  shapes.push_back(std::make_unique<Shape>(Of(XmlElementGroupType_Sequence, XmlElementType_Pseudo), members));
  return *shapes.back();
}

CElementInfo* GroupMember(int index, int classId, ClassFactory factory, bool requiresContent) {
  return new CElementInfoSeqClsMnd("", "", index, XmlElementType_Pseudo, factory, classId, requiresContent);
}

TEST(IgnoredChildren, CostNoSquareInFrontOfGroups) {
  static Shape const& values = Group({Prim<CElementInfoSeqPrimMnd>("p", 0), Prim<CElementInfoSeqPrimMnd>("q", 1)});
  static Shape const& enums = Group({new CElementInfoSeqEnumMnd("p", "", 0, ColourText, ColourOf),
                                     new CElementInfoSeqEnumMnd("q", "", 1, ColourText, ColourOf)});
  static Shape const& nested = Group({GroupMember(0, 0, nullptr, true)});
  ClassFactory const make = [](int, char const* name) -> CSmartPtr<CXmlObjectBase> {
    return new DynamicClass(enums, name);
  };
  std::size_t const base = std::exchange(ReadingAllowance::t_base, 1000);
  std::string unknown;
  for (int i = 0; i < 20000; ++i) unknown += "<x/>";
  std::string const documents[] = {"<root>" + unknown + "</root>",
                                   "<root>" + unknown + "<p>red</p>" + unknown + "</root>"};
  Shape const inSequence(kSequence, {GroupMember(0, 0, nullptr, false), Prim<CElementInfoSeqPrimOpt>("z", 1)});
  Shape const inChoice(kChoice, {new CElementInfoChoiceClsOpt("", "", 0, XmlElementType_Pseudo, make, 0)});
  for (std::string const& document : documents) {
    for (Shape const* const group : {&values, &enums, &nested}) {
      DynamicClass* const inner = new DynamicClass(*group, "");
      if (group == &nested) inner->With(0, new DynamicClass(enums, ""));
      DynamicClass object(inSequence);
      object.With(0, inner);
      object.FromXml(document.c_str(), Ignoring("U"));
    }
    DynamicClass(inChoice).FromXml(document.c_str(), Ignoring("U"));
  }
  ReadingAllowance::t_base = base;
}

// What is known of one tree must not be applied to another that happens to have the same addresses.
TEST(IgnoredChildren, AreForgottenWithTheirDocument) {
  static Shape const& group = Group({Prim<CElementInfoSeqPrimMnd>("a", 0)});
  struct Outer : DynamicClass {
    using DynamicClass::DynamicClass;
    void AccessProperty(int, bool read, QnVariant& value) override {
      if (read) return;
      ClassFactory const make = [](int, char const* name) -> CSmartPtr<CXmlObjectBase> {
        return new DynamicClass(group, name);
      };
      static Shape const inner(kAll, {new CElementInfoAllClsOpt("", "", 0, XmlElementType_Pseudo, make, 0),
                                      Prim<CElementInfoAllPrimOpt>("b", 1)});
      DynamicClass object(inner);
      object.FromXml(value.GetString().c_str(), Ignoring("U"));
      m_read += object.Text();
    }
    std::string m_read;
  };
  Shape const shape(kSequence, {Prim<CElementInfoSeqPrimOpt>("first", 0), Prim<CElementInfoSeqPrimOpt>("second", 0)});
  Outer outer(shape);
  outer.FromXml(
      "<root><first>&lt;r>&lt;b/>&lt;b>1&lt;/b>&lt;/r></first><second>&lt;r>&lt;b/>&lt;a>1&lt;/a>&lt;/r></second></"
      "root>",
      Ignoring("U"));
  EXPECT_EQ("<r><b/></r><r><a>1</a></r>", outer.m_read);
}

}  // namespace
}  // namespace Quillon9Data
