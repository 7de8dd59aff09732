// Reading with a sink: which failures it receives, and what the object then holds.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "dynamic_class.h"
#include "quillon9/descriptors/generic_content.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

constexpr Shape::Options Of(XmlElementGroupType group, XmlElementType type = XmlElementType_Element) {
  return {group, type, -1, true, false};
}
constexpr Shape::Options kSequence = Of(XmlElementGroupType_Sequence);

enum Classes { kLeaf, kPair };

Shape const& ShapeOf(int classId) {
  static Shape const leaf(kSequence, {Prim<CElementInfoSeqPrimOpt>("v", 0, ItemType_i4)},
                          {Attribute("id", 1, true, ItemType_i4)});
  static Shape const pair({XmlElementGroupType_Sequence, XmlElementType_Pseudo, -1, false, false},
                          {Prim<CElementInfoSeqPrimMnd>("p", 0, ItemType_i4), Prim<CElementInfoSeqPrimMnd>("q", 1)});
  return classId == kLeaf ? leaf : pair;
}
CSmartPtr<CXmlObjectBase> MakeClass(int classId, char const* name) { return new DynamicClass(ShapeOf(classId), name); }
CSmartPtr<CXmlObjectBase> MakeNothing(CXmlElement*) { return nullptr; }
CSmartPtr<CXmlObjectBase> MakeNoClass(int, char const*) { return nullptr; }

char const* NameOf(FailureKind kind) {
  static char const* const names[] = {"other",      "input",    "parse",      "limit",      "value",
                                      "facet",      "fixed",    "missing",    "attribute?", "unexpected",
                                      "attribute!", "count",    "choice",     "namespace",  "factory",
                                      "nil",        "-element", "-attribute", "-text",      "-character"};
  return names[kind];
}

struct Sink : IFailureSink {
  explicit Sink(std::size_t most) : m_most(most) {}
  bool OnFailure(CFailure const& failure) override {
    m_told += std::string(m_told.empty() ? "" : "; ") + NameOf(failure.GetKind()) + " " + failure.GetPlace().GetPath();
    return ++m_count < m_most;
  }
  std::size_t m_most;
  std::size_t m_count = 0;
  std::string m_told;
};

using Fill = void (*)(DynamicClass&);

// What the sink receives, " -> ", and what the object writes; or "!" and the innermost failure that ends the read.
std::string Read(Shape const& shape, std::string const& content, std::string const& options, Fill fill,
                 std::size_t most = 1000) {
  CXmlSerializationContext ctx = Ignoring(options);
  ctx.SetChecksFacetsOnReading(options.find('F') != std::string::npos);
  Sink sink(most);
  ctx.SetFailureSink(&sink);
  DynamicClass object(shape);
  if (fill != nullptr) fill(object);
  try {
    object.FromXml(("<node xmlns:o='urn:o'" + content + "</node>").c_str(), ctx);
  } catch (CQnException const& failure) {
    CQnException const* cause = &failure;
    while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
    return sink.m_told + " ! " + cause->GetMessage();
  }
  std::string text;
  for (auto const& [index, value] : object.m_properties) {
    if (value.GetItemType() == ItemType_xmlCollection) {
      CSmartPtr<CXmlCollectionBase> const collection = value.GetXmlCollection();
      text += " " + std::to_string(index) + "=#" + std::to_string(collection->GetCount());
    } else if (value.IsValid() && value.GetItemType() != ItemType_xmlObject) {
      text += " " + std::to_string(index) + "=" + value.ToString(nullptr);
    }
  }
  return sink.m_told + " ->" + text;
}

struct Row {
  char const* content;
  char const* expected;
  char const* options = "";
};

void Expect(Shape const& shape, std::initializer_list<Row> rows, Fill fill = nullptr) {
  for (Row const& row : rows) {
    EXPECT_EQ(row.expected, Read(shape, row.content, row.options, fill)) << row.options << row.content;
  }
}

TEST(FailureSink, ReceivesEachValueThatDoesNotConvert) {
  Expect(
      Shape(kSequence,
            {Prim<CElementInfoSeqPrimMnd>("a", 0, ItemType_i4), Prim<CElementInfoSeqPrimOpt>("b", 1, ItemType_i4),
             new CElementInfoSeqClsOpt("child", "", 2, XmlElementType_Element, MakeClass, kLeaf),
             new CElementInfoSeqClsOpt("", "", 3, XmlElementType_Pseudo, MakeClass, kPair),
             new CElementInfoSeqPrimCol("i", "", 4),
             new CElementInfoSeqClsOpt("none", "", 5, XmlElementType_Element, MakeNoClass, kLeaf),
             new CElementInfoSeqAbsClsOpt("abstract", "", 6, XmlElementType_Element, MakeNothing),
             Prim<CElementInfoSeqPrimMnd>("z", 9)},
            {Attribute("r", 7, false, ItemType_i4), Attribute("s", 8, true, ItemType_i4)}),
      {{" r='1' s='2'><a>3</a><b>4</b><i>5</i><z>6</z>", " -> 0=3 1=4 4=#1 7=1 8=2 9=6"},
       {" r='x' s='y'><a>x</a><b>y</b><i>5</i><z/>",
        "value /node/@r; value /node/@s; value /node/a; value /node/b -> 4=#1 9="},
       {" q='1' s='y'><a>3</a><i>5</i><z/>", "attribute! /node/@q; value /node/@s; attribute? /node -> 0=3 4=#1 9="},
       {" r='1'><a>3</a><child id='x'><v>y</v></child><child/><i>5</i><z>6</z>",
        "value /node/child[1]/@id; value /node/child[1]/v; count /node/child[2] -> 0=3 4=#1 7=1 9=6"},
       {" r='1'><a>3</a><p>x</p><q>1</q><i>5</i><z>6</z>", "value /node/p -> 0=3 4=#1 7=1 9=6"},
       {" r='1'><a>3</a><i>x</i><i>5</i><i>99</i><z>6</z>", "value /node/i[1]; facet /node/i[3] -> 0=3 4=#1 7=1 9=6"},
       {" r='1'><a>3</a><i>x</i><z>6</z>", "value /node/i -> 0=3 4=#0 7=1 9=6"},
       {" r='1'><a>3</a><i>5</i><none/><abstract/><z>6</z>",
        "factory /node/none; missing /node/abstract -> 0=3 4=#1 7=1 9=6"}},
      [](DynamicClass& object) {
        object.With(4, new Ci4Col("i", "", 1, 3, "", -1, -1, "", "50", "", "", -1,
                                  CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
      });
}

// One extra element gives one failure wherever it is, and nothing else is lost.
TEST(FailureSink, ReceivesOneFailureForOneExtraElement) {
  Shape const shape(kSequence, {Prim<CElementInfoSeqPrimMnd>("a", 0), Prim<CElementInfoSeqPrimOpt>("b", 1),
                                new CElementInfoSeqPrimCol("i", "", 2), Prim<CElementInfoSeqPrimMnd>("c", 3),
                                new CElementInfoSeqPrimCol("j", "", 4), Prim<CElementInfoSeqPrimMnd>("d", 5)});
  Fill const fill = [](DynamicClass& object) {
    for (int const index : {2, 4}) {
      object.With(index, new CstringCol(index == 2 ? "i" : "j", "", 60, -1, "", -1, -1, "", "", "", "", -1,
                                        CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
    }
  };
  std::vector<std::string> children = {"<a>1</a>", "<b>2</b>"};
  children.insert(children.end(), 100, "<i/>");
  children.push_back("<c>3</c>");
  children.insert(children.end(), 100, "<j/>");
  children.push_back("<d>4</d>");
  for (std::size_t count : {1u, 3u}) {
    for (std::size_t at = 0; at <= children.size(); ++at) {
      std::string content = ">";
      for (std::size_t i = 0; i <= children.size(); ++i) {
        for (std::size_t extra = 0; i == at && extra < count; ++extra) content += "<x/>";
        if (i < children.size()) content += children[i];
      }
      std::string const read = Read(shape, content, "", fill);
      EXPECT_NE(std::string::npos, read.find(" -> 0=1 1=2 2=#100 3=3 4=#100 5=4")) << at << read;
      std::string paths = read.substr(0, read.find(" ->"));
      for (std::size_t extra = 1; extra <= count; ++extra) {
        std::string const path = count == 1 ? "/node/x" : "/node/x[" + std::to_string(extra) + "]";
        EXPECT_NE(std::string::npos, paths.find(path)) << at << read;
      }
      EXPECT_EQ(count - 1, static_cast<std::size_t>(std::count(paths.begin(), paths.end(), ';'))) << at << read;
    }
  }
}

TEST(FailureSink, TellsWhatIsMissingOnce) {
  Expect(Shape(kSequence, {Prim<CElementInfoSeqPrimMnd>("a", 0), Prim<CElementInfoSeqPrimMnd>("b", 1),
                           new CElementInfoSeqClsOpt("", "", 2, XmlElementType_Pseudo, MakeClass, kPair),
                           Prim<CElementInfoSeqPrimMnd>("c", 3)}),
         {{">", "missing /node; missing /node; missing /node ->"},
          {"><c>1</c>", "missing /node/c; missing /node/c -> 3=1"},
          {"><x/><b>1</b><c>2</c>", "missing /node/x -> 1=1 3=2"},
          {"><a/><b/><cc/>", "missing /node/cc -> 0= 1="},
          {"><p>1</p><q/><c/>", "missing /node/p; missing /node/p -> 3="},
          {"><x/><y/><a/><b/><z/>", "missing /node/x; unexpected /node/y; missing /node/z -> 0= 1="},
          {"><b/><a/><c/>", "missing /node/b; missing /node/a -> 1= 3="},
          {"><x/><c>1</c>", "missing /node; missing /node; -element /node/x -> 3=1", "U"},
          {"><c/>", " -> 3=", "M"}});
}

TEST(FailureSink, GoesOnInOtherGroups) {
  Expect(
      Shape(Of(XmlElementGroupType_All), {Prim<CElementInfoAllPrimMnd>("a", 0, ItemType_i4),
                                          Prim<CElementInfoAllPrimMnd>("b", 1), Prim<CElementInfoAllPrimOpt>("c", 2)}),
      {{"><b/><a>1</a>", " -> 0=1 1="},
       {"><b/><x/><a>1</a>", "missing /node/x -> 0=1 1="},
       {"><c/><x/><y/><a>1</a><b/>", "missing /node/x; unexpected /node/y -> 0=1 1= 2="},
       {">", "missing /node; missing /node ->"},
       {"><a>x</a><c/><b/><b/>", "value /node/a; unexpected /node/b[2] -> 1= 2="}});
  Shape const choice(Of(XmlElementGroupType_Choice),
                     {Prim<CElementInfoChoicePrimOpt>("a", 0, ItemType_i4), new CElementInfoChoicePrimCol("i", "", 1)});
  Fill const fill = [](DynamicClass& object) {
    object.With(1, new Ci4Col("i", "", 2, 3, "", -1, -1, "", "50", "", "", -1,
                              CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
  };
  Expect(choice,
         {{"><a>1</a>", " -> 0=1 1=#0"},
          {"><a>x</a>", "value /node/a -> 1=#0"},
          {"><x/><a>1</a>", "unexpected /node/x -> 0=1 1=#0"},
          {"><a>1</a><a>2</a><i/>", "unexpected /node/a[2]; unexpected /node/i -> 0=1 1=#0"},
          {"><i>1</i><x/><i>2</i>", "count /node/x -> 1=#2"},
          {"><i>1</i><i>2</i><x/><i>3</i><i>4</i>", "unexpected /node/x; count /node/i[4] -> 1=#4"}},
         fill);
  Expect(Shape(Of(XmlElementGroupType_Choice), {}),
         {{">", "choice /node ->"}, {"><x/><y/>", "choice /node/x; unexpected /node/y ->"}});
}

TEST(FailureSink, GoesOnInWildcards) {
  Shape const shape(
      kSequence,
      {new CElementInfoSeqUntpdMnd("AnyElement", "", 0, "##local", ""), Prim<CElementInfoSeqPrimMnd>("z", 2)},
      {new CAttributeInfoAny("", "", 1, true, "##local", "", nullptr)});
  Fill const fill = [](DynamicClass& object) {
    object.With(0, new CElement("AnyElement", "", "##local", "")).With(1, new CAttributeCol("", "##local", ""));
  };
  Expect(shape,
         {{" o:y='1' b='2'><x/><z/>", "namespace /node/@o:y -> 1=#1 2="},
          {"><o:x/><x/><z/>", "missing /node/o:x -> 1=#0 2="},
          {"><x/><o:y/><z/>", "missing /node/o:y -> 1=#0 2="}},
         fill);
}

TEST(FailureSink, ChecksFacetsWhereTheContextAsksForIt) {
  CPrimitiveRestrictions const facets("", -1, -1, "", "50", "", "", -1);
  Shape const shape(kSequence, {Prim<CElementInfoSeqPrimMnd>("a", 0, ItemType_i4, facets)},
                    {Attribute("b", 1, true, ItemType_i4, facets)});
  Expect(shape, {{" b='51'><a>51</a>", " -> 0=51 1=51"},
                 {" b='51'><a>51</a>", "facet /node/@b; facet /node/a ->", "F"},
                 {" b='50'><a>50</a>", " -> 0=50 1=50", "F"}});
}

TEST(FailureSink, RemarksWhatOptionsDrop) {
  Expect(Shape(kSequence,
               {Prim<CElementInfoSeqPrimMnd>("a", 0),
                new CElementInfoSeqClsOpt("", "", 1, XmlElementType_Pseudo, MakeClass, kPair),
                Prim<CElementInfoSeqPrimMnd>("c", 2), new CElementInfoSeqPrimCol("i", "", 3)},
               {Attribute("r", 4, true)}),
         {{"><a>1</a><c>2</c>text", "-text /node -> 0=1 2=2 3=#0"},
          {" r='1' s='2'><a>1</a><c>2</c>\n", "-attribute /node/@s -> 0=1 2=2 3=#0 4=1", "A"},
          {"><x/><a>1</a><y/><c>2</c><i/><i/><z/><i/>",
           "-element /node/x; -element /node/y; -element /node/z; -element /node/i[3] -> 0=1 2=2 3=#2", "U"},
          {"><a>1</a><p>1</p><q/><c>2</c>", " -> 0=1 2=2 3=#0", "U"},
          {"><a>1</a><p>1</p><x/><q/><c>2</c>", "-element /node/x -> 0=1 2=2 3=#0", "U"},
          {"><a>1</a><p>1</p><x/><c>2</c>", "-element /node/p; -element /node/x -> 0=1 2=2 3=#0", "U"},
          {"><b/><c>2</c>", "missing /node; -element /node/b -> 2=2 3=#0", "U"}},
         [](DynamicClass& object) {
           object.With(3, new CstringCol("i", "", 0, -1, "", -1, -1, "", "", "", "", -1,
                                         CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
         });
  Expect(Shape(Of(XmlElementGroupType_Choice), {Prim<CElementInfoChoicePrimOpt>("a", 0)}),
         {{"><x/><a>1</a><y/>", "-element /node/x; -element /node/y -> 0=1", "U"}});
  Expect(
      Shape(Of(XmlElementGroupType_All), {Prim<CElementInfoAllPrimMnd>("a", 0), Prim<CElementInfoAllPrimOpt>("b", 1)}),
      {{"><a>1</a><x/><b/>", "-element /node/x; -element /node/b -> 0=1", "U"}});
}

// A class whose setter reads a document of its own, which is gone when the failure reaches the read around it.
class Nested : public DynamicClass {
 public:
  using DynamicClass::DynamicClass;
  void AccessProperty(int index, bool read, QnVariant& value) override {
    if (!read && index == 0) ReadOther();
    DynamicClass::AccessProperty(index, read, value);
  }

 private:
  static void ReadOther() {
    CXmlDocument document;
    document.LoadXml("<other id='x'/>");
    DynamicClass object(ShapeOf(kLeaf));
    CXmlElement* const root = document.GetDocumentElement();
    CXmlObjectBase::FromXml_Int(&object, root, root->GetFirstElement(), CXmlSerializationContext::m_defaultContext);
  }
};

TEST(FailureSink, ReceivesFailuresOfTreesThatAreGone) {
  Shape const shape(kSequence,
                    {Prim<CElementInfoSeqPrimMnd>("a", 0), Prim<CElementInfoSeqPrimMnd>("b", 1, ItemType_i4)});
  for (bool const hasSink : {true, false}) {
    Sink sink(1000);
    CXmlSerializationContext ctx;
    if (hasSink) ctx.SetFailureSink(&sink);
    Nested object(shape);
    try {
      object.FromXml("<node><a/><b>x</b></node>", ctx);
      EXPECT_EQ("value ; value /node/b", sink.m_told);
    } catch (CQnException const& failure) {
      EXPECT_FALSE(hasSink);
      EXPECT_EQ("error: The value [x] can not be converted to a i4", failure.GetReport());
    }
  }
}

TEST(FailureSink, EndsAReadWithTheFailureThatItStopsAt) {
  Shape const shape(kSequence, {new CElementInfoSeqPrimCol("i", "", 0)});
  Fill const fill = [](DynamicClass& object) {
    object.With(0, new Ci4Col("i", "", 1, 2, "", -1, -1, "", "50", "", "", -1,
                              CWhitespaceUtils::WhitespaceRule_Collapse, nullptr));
  };
  std::string const content = "><i>x</i><i>2</i><i>99</i><i>y</i>";
  EXPECT_EQ("value /node/i[1] ! The value [x] can not be converted to a i4", Read(shape, content, "", fill, 1));
  EXPECT_EQ("value /node/i[1]; facet /node/i[3] ! Invalid Value for i [99]", Read(shape, content, "", fill, 2));
  EXPECT_EQ("value /node/i[1]; facet /node/i[3]; value /node/i[4] -> 0=#1", Read(shape, content, "", fill));

  DynamicClass object(shape);
  fill(object);
  Sink sink(1000);
  CXmlSerializationContext ctx;
  ctx.SetFailureSink(&sink);
  ctx.SetMaxFailures(2);
  EXPECT_THROW(object.FromXml(("<node" + content + "</node>").c_str(), ctx), CQnValidationException);
  EXPECT_EQ(2u, sink.m_count);

  struct Throwing : IFailureSink {
    bool OnFailure(CFailure const&) override { throw std::runtime_error("enough"); }
  } throwing;
  ctx.SetFailureSink(&throwing);
  EXPECT_THROW(object.FromXml(("<node" + content + "</node>").c_str(), ctx), std::runtime_error);
}

}  // namespace
}  // namespace Quillon9Data
