#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "dynamic_class.h"
#include "expect_failure.h"
#include "quillon9/base/failures.h"

// The check of an object before it is written, and the places of the failures of writes, with classes of constant tables.
namespace Quillon9::Testing {
namespace {

using namespace Quillon9Data;

CPrimitiveRestrictions AtMost(int length) { return CPrimitiveRestrictions("", -1, length, "", "", "", "", -1); }
char const* TextOf(int number) { return number == 1 ? "one" : nullptr; }
int NumberOf(char const*) { return 1; }

CSmartPtr<CXmlObjectBase> MakeNothing(int, char const*) { return nullptr; }

/// Checks no count on writing, as generated code may do.
class UncheckedCollection : public DynamicCollection {
 public:
  explicit UncheckedCollection(Shape const& item) : DynamicCollection(item, "i", 2, 2) {
    Add(new DynamicClass(item, "i"));
  }

 protected:
  void ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx, bool) const override {
    for (CNode* node = GetFirstNode(); node != nullptr; node = node->m_next) {
      CXmlObjectBase::ToXml_Int(node->m_item, writer, false, ns, ctx, false);
    }
  }
};

std::string Reports(CXmlObjectBase const& object,
                    CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext) {
  CFailureList failures;
  EXPECT_EQ(object.Check(ctx), object.Check(ctx, &failures));
  return failures.GetReport();
}

/// The report of the failure that ends \p write; empty if it succeeds.
std::string ReportOf(std::function<void()> const& write) {
  try {
    write();
  } catch (CQnException const& failure) {
    EXPECT_NE(nullptr, failure.GetPlace()) << failure.GetFullMessage();
    return failure.GetReport() + "\n";
  }
  return "";
}

/// Each way to write fails as the first line of \p reports.
void ExpectWritesFailLike(CXmlObjectBase const& object, std::string const& reports) {
  std::string const first = reports.substr(0, reports.find('\n') + 1);
  EXPECT_EQ(first, ReportOf([&] { object.ToXml(); }));
  EXPECT_EQ(first, ReportOf([&] { object.ToXmlStream(); }));
  EXPECT_EQ(first, ReportOf([&] { object.ToXmlFile("not written.xml"); }));
  EXPECT_EQ(first, ReportOf([&] { object.ToFastInfosetStream(); }));
}

/// A class with a member or an attribute in front of and after the one in question, both of which fail, too.
struct Case {
  char const* what;
  CElementInfo* member;
  CAttributeInfo* attribute;
  std::function<void(DynamicClass&)> set;  // property 1
  std::string report;
};

TEST(ObjectCheck, EachKindOfMemberIsToldAtItsPlaceAndTheRestIsCheckedToo) {
  Shape const item({}, {Prim<CElementInfoSeqPrimMnd>("v", 1, ItemType_string, AtMost(2))});
  Shape const group({XmlElementGroupType_Sequence, XmlElementType_Pseudo},
                    {Prim<CElementInfoSeqPrimMnd>("in", 1, ItemType_string, AtMost(2))});
  Shape const choice({XmlElementGroupType_Choice}, {new CElementInfoChoicePrimCol("p", "", 1)});
  Shape const all({XmlElementGroupType_All}, {Prim<CElementInfoAllPrimMnd>("a", 1, ItemType_string, AtMost(2)),
                                              Prim<CElementInfoAllPrimMnd>("b", 2, ItemType_string, AtMost(2))});
  auto const object = [](Shape const& shape, char const* name, char const* text) {
    return [&shape, name, text](DynamicClass& holder) {
      holder.With(1, static_cast<CXmlObjectBase*>(&(new DynamicClass(shape, name))->With(1, text)));
    };
  };
  auto const items = [&](std::vector<char const*> const& texts) {
    return [&item, texts](DynamicClass& holder) {
      auto* const collection = new DynamicCollection(item, "item", 2, 3);
      for (char const* const text : texts) collection->Add(&(new DynamicClass(item, "item"))->With(1, text));
      holder.With(1, static_cast<CXmlCollectionBase*>(collection));
    };
  };
  auto const text = [](char const* value) { return [value](DynamicClass& holder) { holder.With(1, value); }; };
  auto const number = [](int value) { return [value](DynamicClass& holder) { holder.With(1, value); }; };
  auto const cls = [](char const* name, XmlElementType type) {
    return new CElementInfoSeqClsMnd(name, "", 1, type, MakeNothing, 0, false);
  };
  Case const cases[] = {
      {"value", Prim<CElementInfoSeqPrimOpt>("m", 1, ItemType_string, AtMost(2)), nullptr, text("long"),
       "error: /node/m: Invalid Value for m [long]\n"},
      {"attribute", nullptr, Attribute("m", 1, true, ItemType_string, AtMost(2)), text("long"),
       "error: /node/@m: Invalid Value for m [long]\n"},
      {"required attribute", nullptr, Attribute("m", 1, false), [](DynamicClass&) {},
       "error: /node/@m: Invalid Type 0 to convert to string\n"},
      {"enumerator", new CElementInfoSeqEnumMnd("m", "", 1, TextOf, NumberOf), nullptr, number(2),
       "error: /node/m: The number 2 of the element [m] has no text\n"},
      {"enumerator in an attribute", nullptr, new CAttributeInfoEnum("m", "", 1, true, TextOf, NumberOf, nullptr),
       number(2), "error: /node/@m: The number 2 of the attribute [m] has no text\n"},
      {"nested", cls("m", XmlElementType_Element), nullptr, object(item, "m", "long"),
       "error: /node/m/v: Invalid Value for v [long]\n"},
      {"group", cls("g", XmlElementType_Pseudo), nullptr, object(group, "g", "long"),
       "error: /node/in: Invalid Value for in [long]\n"},
      {"all", cls("m", XmlElementType_Element), nullptr,
       [&](DynamicClass& holder) {
         holder.With(1, static_cast<CXmlObjectBase*>(&(new DynamicClass(all, "m"))->With(1, "long").With(2, "longer")));
       },
       "error: /node/m/a: Invalid Value for a [long]\nerror: /node/m/b: Invalid Value for b [longer]\n"},
      {"items", new CElementInfoSeqClsCol("item", "", 1, XmlElementType_Element), nullptr,
       items({"a", "long", "longer"}),
       "error: /node/item[2]/v: Invalid Value for v [long]\nerror: /node/item[3]/v: Invalid Value for v [longer]\n"},
      {"the first of several items", new CElementInfoSeqClsCol("item", "", 1, XmlElementType_Element), nullptr,
       items({"long", "a"}), "error: /node/item[1]/v: Invalid Value for v [long]\n"},
      {"count and item", new CElementInfoSeqClsCol("item", "", 1, XmlElementType_Element), nullptr, items({"long"}),
       "error: /node: The Minimum number of [item] elements allowed in this collection is 2\n"
       "error: /node/item/v: Invalid Value for v [long]\n"},
      {"no collection", new CElementInfoSeqPrimCol("item", "", 1), nullptr, [](DynamicClass&) {},
       "error: /node/item: The class has no collection for the element [item]\n"},
      {"empty choice", cls("m", XmlElementType_Element), nullptr,
       [&](DynamicClass& holder) {
         auto* const held = new DynamicClass(choice, "m");
         held->With(
             1, static_cast<CXmlCollectionBase*>(new CstringCol("p", "", 1, 2, "", -1, -1, "", "", "", "", -1,
                                                                CWhitespaceUtils::WhitespaceRule_Preserve, nullptr)));
         holder.With(1, static_cast<CXmlObjectBase*>(held));
       },
       "error: /node/m: This element is a choice, and as such must have at one (and only one) valid item, currently "
       "there are none set\n"},
      {"wildcard attributes", nullptr, new CAttributeInfoAny("", "", 1, true, "##any", "", nullptr), number(1),
       "error: /node: Serialization Data Error : The collection should be a CAttributeCol, it was not!\n"},
  };
  for (Case const& tried : cases) {
    SCOPED_TRACE(tried.what);
    CElementInfo* const last = Prim<CElementInfoSeqPrimOpt>("last", 2, ItemType_string, AtMost(2));
    Shape const root = tried.member != nullptr ? Shape({}, {tried.member, last}) : Shape({}, {last}, {tried.attribute});
    DynamicClass holder(root, "node");
    tried.set(holder);
    EXPECT_EQ(tried.report, Reports(holder));
    ExpectWritesFailLike(holder, tried.report);
    holder.With(2, "too long");
    EXPECT_EQ(tried.report + "error: /node/last: Invalid Value for last [too long]\n", Reports(holder));
  }
}

// What a write lets pass, and a reader refuses.
TEST(ObjectCheck, WhatAReaderWouldRefuseIsToldUnlessAnOptionExcusesIt) {
  Shape const group({XmlElementGroupType_Sequence, XmlElementType_Pseudo},
                    {Prim<CElementInfoSeqPrimMnd>("a", 1), Prim<CElementInfoSeqPrimOpt>("b", 2)});
  Shape const choice({XmlElementGroupType_Choice, XmlElementType_Pseudo}, {Prim<CElementInfoChoicePrimOpt>("c", 1)});
  Shape const twice({XmlElementGroupType_Choice},
                    {Prim<CElementInfoChoicePrimOpt>("c", 1), Prim<CElementInfoChoicePrimOpt>("d", 2),
                     new CElementInfoChoiceClsCol("i", "", 3, XmlElementType_Element)});
  Shape const item({}, {});
  auto const cls = [](bool requiresContent) {
    return new CElementInfoSeqClsMnd("g", "", 1, XmlElementType_Pseudo, MakeNothing, 0, requiresContent);
  };
  Shape const value({}, {Prim<CElementInfoSeqPrimMnd>("m", 1)});
  Shape const inAll({XmlElementGroupType_All}, {Prim<CElementInfoAllPrimMnd>("m", 1)});
  Shape const groups({}, {cls(true)});
  Shape const emptyGroups({}, {cls(false)});
  auto const held = [](CXmlObjectBase* object) { return [object](DynamicClass& root) { root.With(1, object); }; };
  auto const made = [](Shape const& shape, int index = 0) {
    auto* const object = new DynamicClass(shape, "g");
    if (index != 0) object->With(index, "x");
    return static_cast<CXmlObjectBase*>(object);
  };
  auto const nothing = [](DynamicClass&) {};
  std::string const noM = "error: /node: The required element [m] is not set\n";
  std::string const noG = "error: /node: The required element [g] is not set\n";
  struct {
    char const* what;
    Shape const& shape;
    std::function<void(DynamicClass&)> set;
    std::string report;
    std::string excuse;
  } const cases[] = {
      {"value", value, nothing, noM, "M"},
      {"value of an all group", inAll, nothing, noM, ""},
      {"empty group", groups, held(made(group)), noG, ""},
      {"empty choice in the middle", groups, held(made(choice)), noG, ""},
      {"full group", groups, held(made(group, 1)), "", ""},
      {"group without its first element", groups, held(made(group, 2)),
       "error: /node: The required element [a] is not set\n", ""},
      {"group that may be empty", emptyGroups, held(made(group)), "", ""},
      {"no object", groups, nothing, noG, ""},
      {"two members of a choice", twice, [](DynamicClass& root) { root.With(1, "1").With(2, "2"); },
       "error: /node: More than one of the elements [c, d] is set, but they exclude each other\n", ""},
      {"count in a choice", twice,
       [&](DynamicClass& root) { root.With(3, static_cast<CXmlCollectionBase*>(new UncheckedCollection(item))); },
       "error: /node: The Minimum number of [i] elements allowed in this collection is 2\n", "I"},
      {"control character", value, [](DynamicClass& root) { root.With(1, "a\x01"); },
       "error: /node/m: The control character 1 has no place in a document\n", ""},
  };
  for (auto const& tried : cases) {
    SCOPED_TRACE(tried.what);
    DynamicClass root(tried.shape, "node");
    tried.set(root);
    EXPECT_EQ(tried.report, Reports(root));
    EXPECT_EQ("", ReportOf([&] { root.ToXmlStream(); }));
    if (!tried.excuse.empty()) {
      EXPECT_EQ("", Reports(root, Ignoring(tried.excuse)));
    }
  }
}

/// Writes itself, and fails in the middle.
class Handwritten : public DynamicClass {
 public:
  using DynamicClass::DynamicClass;

 protected:
  void ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const&, bool) const override {
    writer->WriteStartElement(GetElementName(), ns);
    writer->WriteStartElement("inner", ns);
    throw CQnException("on purpose");
  }
};

struct Stopping : IFailureSink {
  bool OnFailure(CFailure const& failure) override {
    reports.push_back(failure.GetReport());
    if (throws) throw CQnInvalidStateException("of the sink");
    return false;
  }
  bool throws = false;
  std::vector<std::string> reports;
};

TEST(ObjectCheck, TheSinkAndTheLimitEndACheck) {
  Shape const inner({}, {Prim<CElementInfoSeqPrimOpt>("v", 1, ItemType_string, AtMost(2)),
                         Prim<CElementInfoSeqPrimOpt>("w", 2, ItemType_string, AtMost(2))});
  Shape const outer({}, {new CElementInfoSeqClsOpt("m", "", 1, XmlElementType_Element, MakeNothing, 0)});
  DynamicClass root(outer, "node");
  root.With(1, static_cast<CXmlObjectBase*>(&(new DynamicClass(inner, "m"))->With(1, "long").With(2, "long")));
  Stopping sink;
  EXPECT_FALSE(root.Check(CXmlSerializationContext(), &sink));
  EXPECT_EQ(1U, sink.reports.size());
  sink.throws = true;
  EXPECT_FAILURE(CQnInvalidStateException, "of the sink", root.Check(CXmlSerializationContext(), &sink));
  EXPECT_EQ(2U, sink.reports.size());
  CXmlSerializationContext ctx;
  ctx.SetMaxFailures(1);
  EXPECT_EQ("error: /node/m/v: Invalid Value for v [long]\n", Reports(root, ctx));
}

TEST(ObjectCheck, AClassThatWritesItselfAndAnEndlessGraphAreTold) {
  Shape const shape({}, {new CElementInfoSeqClsOpt("m", "", 1, XmlElementType_Element, MakeNothing, 0),
                         new CElementInfoSeqClsOpt("n", "", 2, XmlElementType_Element, MakeNothing, 0)});
  DynamicClass root(shape, "node");
  root.With(1, static_cast<CXmlObjectBase*>(new Handwritten(shape, "m")));
  root.With(2, static_cast<CXmlObjectBase*>(new Handwritten(shape, "n")));
  std::string const reports = "error: /node/m/inner: on purpose\nerror: /node/n/inner: on purpose\n";
  EXPECT_EQ(reports, Reports(root));
  ExpectWritesFailLike(root, reports);
  CSmartPtr<DynamicClass> const own(new DynamicClass(shape, "m"));
  own->With(1, static_cast<CXmlObjectBase*>(own.Get())).With(2, static_cast<CXmlObjectBase*>(own.Get()));
  CFailureList failures;
  EXPECT_FALSE(own->Check(CXmlSerializationContext(), &failures));
  ASSERT_EQ(1U, failures.GetFailures().size());
  EXPECT_EQ(FailureKind_Limit, failures.GetFailures()[0].GetKind());
  own->With(1, static_cast<CXmlObjectBase*>(nullptr)).With(2, static_cast<CXmlObjectBase*>(nullptr));
}

/// Writes another object on the way, which fails.
class WritesAnother : public Handwritten {
 public:
  WritesAnother(Shape const& shape, CXmlObjectBase const& other) : Handwritten(shape, "m"), m_other(other) {}

 protected:
  void ToXml_Int(CXmlWriter*, bool, char const*, CXmlSerializationContext const&, bool) const override {
    EXPECT_FAILURE(CQnValidationException,
                   "Failed to convert the element [e] to XML\n"
                   "The Minimum number of [i] elements allowed in this collection is 2",
                   m_other.ToXml());
  }

 private:
  CXmlObjectBase const& m_other;
};

TEST(ObjectCheck, AWriteInsideACheckFailsByItself) {
  Shape const item({}, {});
  Shape const others({}, {new CElementInfoSeqCol("i", "", 1)});
  DynamicClass other(others, "e");
  other.With(1, static_cast<CXmlObjectBase*>(new UncheckedCollection(item)));  // one item, where two are needed
  Shape const shape({}, {new CElementInfoSeqClsOpt("m", "", 1, XmlElementType_Element, MakeNothing, 0)});
  DynamicClass root(shape, "node");
  root.With(1, static_cast<CXmlObjectBase*>(new WritesAnother(shape, other)));
  EXPECT_EQ("", Reports(root));
}

TEST(ObjectCheck, TextThatIsNotUtf8IsToldAtEachPlace) {
  Shape const shape({},
                    {Prim<CElementInfoSeqPrimOpt>("m", 1),
                     new CElementInfoSeqClsOpt("e", "", 2, XmlElementType_Element, MakeNothing, 0)},
                    {Attribute("a", 3, true)});
  DynamicClass root(shape, "node");
  root.With(1, "good").With(3, "x\xFF");
  auto* const element = new CElement("e");
  element->GetElements()->Add("f")->SetText("y\xC3");
  element->GetElements()->Add("f");
  root.With(2, static_cast<CXmlObjectBase*>(element));
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  EXPECT_EQ(
      "error: /node/@a: The text is not well-formed UTF-8 after [x]\n"
      "error: /node/e/f[1]: The text is not well-formed UTF-8 after [y]\n",
      Reports(root, ctx));
  EXPECT_EQ("", Reports(root));
  for (std::function<void()> const& write : std::initializer_list<std::function<void()>>{
           [&] { root.ToXml(true, true, EOLType_LF, ctx); },
           [&] { root.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, ctx); },
           [&] { root.ToFastInfosetStream(FInfoDecl_None, ctx); }}) {
    std::string const report = ReportOf(write);
    EXPECT_EQ("error: /node/@a: The text is not well-formed UTF-8 after", report.substr(0, 56)) << report;
  }
}

// Only an encoding of Fast Infoset fails, and the check knows nothing of it.
TEST(ObjectCheck, TheFailureOfAnEncoderHasItsPlace) {
  Shape const item({}, {Prim<CElementInfoSeqPrimOpt>("n", 1)});
  Shape const shape({}, {new CElementInfoSeqClsCol("item", "", 1, XmlElementType_Element)});
  DynamicClass root(shape, "node");
  auto* const items = new DynamicCollection(item, "item", 0, -1);
  for (char const* const text : {"12", "abc"}) items->Add(&(new DynamicClass(item, "item"))->With(1, text));
  root.With(1, static_cast<CXmlCollectionBase*>(items));
  CXmlSerializationContext ctx;
  ctx.GetFIContext()->SetEncoding(ItemType_string, {1, 1});
  EXPECT_EQ("", Reports(root, ctx));
  std::string const report = ReportOf([&] { root.ToFastInfosetStream(FInfoDecl_None, ctx); });
  EXPECT_EQ("error: /node/item[2]/n: ", report.substr(0, 24)) << report;
}

}  // namespace
}  // namespace Quillon9::Testing
