// Groups without a tag where unknown children are ignored: they are tried again for each child that is skipped, and
// each attempt has its effects.

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "descriptors/reading_allowance.h"
#include "dynamic_class.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

constexpr Shape::Options kTagged{XmlElementGroupType_Sequence, XmlElementType_Element, -1, false, false};
constexpr Shape::Options kGroup{XmlElementGroupType_Sequence, XmlElementType_Pseudo, -1, false, false};
constexpr Shape::Options kChoice{XmlElementGroupType_Choice, XmlElementType_Element, -1, false, false};

CElementInfo* Group(int index, bool requiresContent) {
  return new CElementInfoSeqClsMnd("", "", index, XmlElementType_Pseudo, nullptr, 0, requiresContent);
}

std::string Repeated(std::string const& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

Shape const& Pair() {
  static Shape const shape(kGroup, {Prim<CElementInfoSeqPrimMnd>("f", 0), Prim<CElementInfoSeqPrimMnd>("h", 1)});
  return shape;
}
CSmartPtr<CXmlObjectBase> MakePair(int, char const* name) { return new DynamicClass(Pair(), name); }

std::uint64_t StepsOf(CXmlObjectBase& object, std::string const& content) {
  std::uint64_t const before = ReadingAllowance::t_steps;
  try {
    object.FromXml(("<root>" + content + "</root>").c_str(), Ignoring("UC"));
  } catch (CQnException const&) {  // expected for many children, see below
  }
  return ReadingAllowance::t_steps - before;
}

TEST(GroupsAskedAgain, CostNoSquareWhereTheyBeginAtEveryOtherChild) {
  Shape const shape(kChoice, {new CElementInfoChoiceClsOpt("", "", 0, XmlElementType_Pseudo, MakePair, 0)});
  DynamicClass object(shape);
  for (std::string const& tail : {std::string(), std::string("<h>1</h>")}) {
    std::uint64_t const once = StepsOf(object, Repeated("<z/><f>1</f>", 500) + tail);
    EXPECT_LE(StepsOf(object, Repeated("<z/><f>1</f>", 2000) + tail), 4 * once + 100);
  }
  EXPECT_EQ("<root><f>0</f><h>2</h></root>", ReadBack(object, "<root><z/><f>0</f><z/><f>1</f><h>2</h></root>", "U"));
}

TEST(GroupsAskedAgain, MakeTheCallsOfAReaderThatRemembersNothing) {
  struct Counting : DynamicClass {
    using DynamicClass::DynamicClass;
    void Init() override { ++m_inits; }
    void AccessProperty(int index, bool read, QnVariant& value) override {
      if (index == 2) ++m_attributes;
      DynamicClass::AccessProperty(index, read, value);
    }
    int m_inits = 0;
    int m_attributes = 0;
  };
  Shape const pair(kGroup, {Prim<CElementInfoSeqPrimMnd>("f", 0), Prim<CElementInfoSeqPrimMnd>("h", 1)},
                   {Attribute("a", 2, true)});
  Shape const outer(kGroup, {Group(0, true)});
  Shape const shape(kTagged, {Group(0, false)});
  CSmartPtr<Counting> const inner(new Counting(pair, ""));
  CSmartPtr<DynamicClass> const middle(new DynamicClass(outer, ""));
  middle->With(0, inner.Get());
  DynamicClass object(shape);
  object.With(0, middle.Get());
  object.FromXml("<root a='1' b='2'><z/><z/><f>1</f><z/></root>", Ignoring("U"));
  EXPECT_EQ(4 + 3 + 2 + 1, inner->m_inits);
  EXPECT_EQ(inner->m_inits, inner->m_attributes);
}

// A class whose objects hold an inner group, as an optional member and again as a mandatory one.
struct Twice {
  Shape inner;
  Shape outer{kGroup, {Group(0, true)}};
  Shape shape{kTagged, {new CElementInfoSeqClsOpt("", "", 0, XmlElementType_Pseudo, Make, 0), Group(1, false)}};
  explicit Twice(std::initializer_list<CElementInfo*> members, std::initializer_list<CAttributeInfo*> attributes = {})
      : inner(kGroup, members, attributes) {
    t_current = this;
  }
  // Objects of the inner group keep their content because Init() leaves it.
  struct Inner : DynamicClass {
    using DynamicClass::DynamicClass;
    void Init() override {}
  };
  static CSmartPtr<CXmlObjectBase> Make(int, char const*) {
    CSmartPtr<DynamicClass> const object(new DynamicClass(t_current->outer, ""));
    auto* const held = new Inner(t_current->inner, "");
    held->With(0, new CstringCol("c", "", 2, -1, "", -1, -1, "", "", "", "", -1, CWhitespaceUtils::WhitespaceRule_None,
                                 nullptr));
    held->With(2, new CAttributeCol("", "##any", ""));
    object->With(0, held);
    return object;
  }
  static Twice* t_current;
};
Twice* Twice::t_current = nullptr;

// An object that has been filled before may find what a new object of its class did not find.
TEST(GroupsAskedAgain, FillAnObjectThatKeepsItsCollection) {
  Twice const twice({new CElementInfoSeqPrimCol("c", "", 0), Prim<CElementInfoSeqPrimMnd>("v", 1)});
  DynamicClass object(twice.shape);
  CSmartPtr<CXmlObjectBase> const kept = Twice::Make(0, "");
  object.With(1, kept.Get());
  auto& inner = dynamic_cast<DynamicClass&>(*dynamic_cast<DynamicClass&>(*kept).m_properties[0].GetXmlObject());
  inner.m_properties[0].SetXmlCollection(
      new CstringCol("c", "", 0, -1, "", -1, -1, "", "", "", "", -1, CWhitespaceUtils::WhitespaceRule_None, nullptr));
  EXPECT_EQ("<h><v>C</v></h>", ReadBack(object, "<h><u/><v>C</v></h>", "U"));
}

TEST(GroupsAskedAgain, TakeTheirAttributesEachTime) {
  Twice const twice({Prim<CElementInfoSeqPrimMnd>("v", 1)},
                    {new CAttributeInfoAny("any", "", 2, true, "##any", "", "")});
  DynamicClass object(twice.shape);
  CSmartPtr<CXmlObjectBase> const held = Twice::Make(0, "");
  object.With(1, held.Get());
  object.FromXml("<h p='1'><u/><u/></h>", Ignoring("U"));
  auto& inner = dynamic_cast<DynamicClass&>(*dynamic_cast<DynamicClass&>(*held).m_properties[0].GetXmlObject());
  EXPECT_EQ(2 + 1, inner.m_properties[2].GetXmlCollection()->GetCount());
}

TEST(GroupsAskedAgain, EndInAFailureWhereEachAttemptHasEffects) {
  // In a choice, a group that holds the pair: at each <f> it begins once for each earlier <f>.
  static Shape const nested(kGroup, {Group(0, true)});
  ClassFactory const make = [](int, char const* name) -> CSmartPtr<CXmlObjectBase> {
    CSmartPtr<DynamicClass> const group(new DynamicClass(nested, name));
    group->With(0, new DynamicClass(Pair(), ""));
    return group;
  };
  Shape const shape(kChoice, {new CElementInfoChoiceClsOpt("", "", 0, XmlElementType_Pseudo, make, 0)});
  DynamicClass object(shape);
  std::string const few = "<root>" + Repeated("<z/><f/>", 100) + "</root>";
  EXPECT_EQ("<root/>", ReadBack(object, few.c_str(), "UC"));
  std::size_t const base = std::exchange(ReadingAllowance::t_base, 100);
  std::string const many = "<root>" + Repeated("<z/><f/>", 1000) + "</root>";
  EXPECT_EQ(
      "Failed to process the element [root]\nFailed to process the element [root]\n"
      "Failed to process the element [root]\n"
      "Reading the element [root] takes too many attempts at groups without a tag",
      ReadBack(object, many.c_str(), "UC"));
  ReadingAllowance::t_base = base;
}

TEST(GroupsAskedAgain, EndInAFailureWhereAnElementFactoryRefusesAllChildren) {
  static int asked = 0;
  ElementFactory const refuse = [](CXmlElement*) -> CSmartPtr<CXmlObjectBase> {
    ++asked;
    return nullptr;
  };
  static Shape const group(kGroup, {new CElementInfoSeqAbsClsMnd("a", "", 0, XmlElementType_Element, refuse)});
  ClassFactory const make = [](int, char const* name) -> CSmartPtr<CXmlObjectBase> {
    return new DynamicClass(group, name);
  };
  Shape const shape(kChoice, {new CElementInfoChoiceClsOpt("", "", 0, XmlElementType_Pseudo, make, 0)});
  DynamicClass object(shape);
  EXPECT_EQ("<root/>", ReadBack(object, ("<root>" + Repeated("<a/>", 100) + "</root>").c_str(), "UC"));
  EXPECT_EQ(101 * 100 / 2, asked);  // it may answer in another way the next time
  std::size_t const base = std::exchange(ReadingAllowance::t_base, 100);
  StepsOf(object, Repeated("<a/>", 2000));
  EXPECT_LE(asked, 200000);
  ReadingAllowance::t_base = base;
}

// ---- What is remembered

// What one class ignores, another one with the same table may refuse.
TEST(GroupsAskedAgain, RefuseAnAttributeThatAnotherClassWithTheSameTableIgnores) {
  struct Sharing : DynamicClass {
    Sharing(Shape const& shape, CAttributeInfo** table) : DynamicClass(shape), m_table(table) {}
    CAttributeInfo** GetClassAttributeInfo() const override { return m_table; }
    CAttributeInfo** m_table;
  };
  constexpr Shape::Options strict{XmlElementGroupType_Sequence, XmlElementType_Pseudo, -1, true, false};
  Shape const first(kGroup, {Prim<CElementInfoSeqPrimMnd>("f", 0)}, {Attribute("a", 1, true)});
  Shape const second(strict, {Prim<CElementInfoSeqPrimMnd>("h", 0)});
  Shape const shape(kTagged, {Group(0, false), Group(1, false)});
  DynamicClass object(shape);
  object.With(0, new DynamicClass(first, "")).With(1, new Sharing(second, first.m_attributes));
  char const* const document = "<root a='1' b='2'><f>1</f><h>2</h></root>";
  EXPECT_EQ(
      "Failed to process the element [root]\nFailed to process the element [root]\nUnexpected Attribute [b] found.",
      ReadBack(object, document, "U"));
  EXPECT_EQ("<root a=\"1\" a=\"1\"><f>1</f><h>2</h></root>", ReadBack(object, document, "UA"));
}

// The child <f> exists with its group, and its collection grows each time that the group reads it.
TEST(GroupsAskedAgain, FillAChildThatKeepsItsCollectionAtEachOfThem) {
  struct Keeping : DynamicClass {
    using DynamicClass::DynamicClass;
    void Init() override {}
  };
  Shape const child(kTagged, {new CElementInfoSeqPrimCol("c", "", 0)});
  Shape const sequence(kGroup, {new CElementInfoSeqClsMnd("f", "", 0, XmlElementType_Element, nullptr, 0, false),
                                Prim<CElementInfoSeqPrimMnd>("h", 1)});
  Shape const all({XmlElementGroupType_All, XmlElementType_Pseudo, -1, false, false},
                  {Prim<CElementInfoAllPrimOpt>("g", 2),
                   new CElementInfoAllClsMnd("f", "", 0, XmlElementType_Element, nullptr, 0, true),
                   Prim<CElementInfoAllPrimMnd>("h", 1)});
  Shape const shape(kTagged, {Group(0, false)});
  for (bool const isHasty : {false, true}) {
    ReadingAllowance::t_isHasty = isHasty;
    for (Shape const* const group : {&sequence, &all}) {
      CSmartPtr<DynamicClass> const held(new Keeping(child, "f"));
      held->With(0, new CstringCol("c", "", 0, -1, "", -1, -1, "", "", "", "", -1,
                                   CWhitespaceUtils::WhitespaceRule_None, nullptr));
      CSmartPtr<DynamicClass> const inner(new DynamicClass(*group, ""));
      inner->With(0, held.Get());
      DynamicClass object(shape);
      object.With(0, inner.Get());
      object.FromXml("<root><z/><z/><z/><f><c>1</c></f><z/><f><c>1</c></f></root>", Ignoring("U"));
      EXPECT_EQ(group == &sequence ? 6 : 2, held->m_properties[0].GetXmlCollection()->GetCount()) << isHasty;
    }
  }
  ReadingAllowance::t_isHasty = false;
}

// ---- The namespace of the holder

TEST(HolderNamespace, IsGivenToAnUntypedMemberWhateverWasReadBefore) {
  auto const any = [](int index) {
    return new CElementInfoSeqUntpdOpt("AnyElement", "", index, "##targetNamespace ##local", "");
  };
  Shape const base(kTagged, {Prim<CElementInfoSeqPrimOpt>("v", 0)});
  // Its table begins with the descriptor of the base, and ends with one that uses the namespace.
  Shape const derived(kTagged, {Prim<CElementInfoSeqPrimOpt>("w", 0), any(1)});
  CElementInfo* shared[] = {base.m_elements[0], derived.m_elements[1], nullptr};
  struct Derived : DynamicClass {
    Derived(Shape const& shape, CElementInfo** table) : DynamicClass(shape, "d"), m_table(table) {}
    CElementInfo** GetClassElementInfo() const override { return m_table; }
    std::string GetNamespace() const override {
      ++m_asked;
      return "urn:d";
    }
    CElementInfo** m_table;
    mutable int m_asked = 0;
  };
  Shape const root(kTagged, {new CElementInfoSeqClsMnd("b", "", 0, XmlElementType_Element, nullptr, 0, false),
                             new CElementInfoSeqClsMnd("d", "", 1, XmlElementType_Element, nullptr, 0, false)});
  CSmartPtr<Derived> const object(new Derived(derived, shared));
  DynamicClass holder(root);
  holder.With(0, new DynamicClass(base, "b")).With(1, object.Get());
  holder.FromXml("<root><b><v>1</v></b><d><v>2</v><x/></d></root>");
  EXPECT_EQ(1, object->m_asked);
  EXPECT_TRUE(object->m_properties[1].GetXmlObject());
}

}  // namespace
}  // namespace Quillon9Data
