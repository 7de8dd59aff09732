#include "descriptors/table_check.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "atom.h"
#include "dynamic_class.h"
#include "expect_failure.h"
#include "gpx.h"
#include "orders.h"
#include "shapes/shape_types.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

char const* ToText(int) { return "red"; }
int FromText(char const*) { return 0; }
CSmartPtr<CXmlObjectBase> Make(int, char const*) { return nullptr; }
CSmartPtr<CXmlObjectBase> MakeFor(CXmlElement*) { return nullptr; }

Shape::Options Group(int group) {
  Shape::Options options;
  options.group = static_cast<XmlElementGroupType>(group);
  return options;
}

CElementInfo* Mnd(char const* name, int index, char const* ns = "") {
  return Prim<CElementInfoSeqPrimMnd>(name, index, ItemType_string, NoFacets(), ns);
}
CElementInfo* Opt(char const* name, int index) { return Prim<CElementInfoSeqPrimOpt>(name, index); }
CElementInfo* Choice(char const* name, int index) { return Prim<CElementInfoChoicePrimOpt>(name, index); }
CElementInfo* Any(int index) { return new CElementInfoSeqUntpdCol("AnyElement", "", index); }
CAttributeInfo* AnyAttribute(int index) { return new CAttributeInfoAny("", "", index, true, "##any", "", nullptr); }

/// A class may stop its wildcard early, so that something can follow it.
class PoliteCol : public CElementCol {
 public:
  using CElementCol::CElementCol;
};

/// The findings, without the line in front of them; empty when there are none.
std::string Findings(CXmlGeneratedClass const& object) {
  try {
    object.CheckTables();
    return "";
  } catch (CQnException const& failure) {
    std::string const head = "The tables of the class [Type] are wrong:\n";
    std::string const text = failure.GetFullMessage();
    EXPECT_EQ(head, text.substr(0, head.size()));
    return text.substr(head.size());
  }
}

struct Row {
  Shape::Options options;
  std::vector<CElementInfo*> elements;
  std::vector<CAttributeInfo*> attributes;
  char const* findings;
  std::function<void(DynamicClass&)> fill = [](DynamicClass&) {};
};

void Expect(Row const& row) {
  Shape shape(row.options, {}, {});
  delete[] shape.m_elements;
  delete[] shape.m_attributes;
  shape.m_elements = new CElementInfo* [row.elements.size() + 1] {};
  shape.m_attributes = new CAttributeInfo* [row.attributes.size() + 1] {};
  std::copy(row.elements.begin(), row.elements.end(), shape.m_elements);
  std::copy(row.attributes.begin(), row.attributes.end(), shape.m_attributes);
  DynamicClass object(shape);
  row.fill(object);
  EXPECT_EQ(row.findings, Findings(object));
}

TEST(CheckTables, FindsWhatIsWrongWithNames) {
  Row const rows[] = {
      {{},
       {Mnd("", 0)},
       {Attribute("", 1, true)},
       "elements[0] []: the name is empty\nattributes[0] []: the name is empty"},
      {{}, {Mnd("http://x/y", 0)}, {}, "elements[0] [http://x/y]: a namespace stands in place of the name"},
      {{}, {Mnd("urn:x", 0, "note")}, {}, "elements[0] [urn:x]: a namespace stands in place of the name"},
      {{},
       {},
       {Attribute("urn:x", 0, true, ItemType_i4, NoFacets(), nullptr, "id")},
       "attributes[0] [urn:x]: a namespace stands in place of the name"},
      {{},
       {Mnd("a b", 0), Mnd("1a", 1)},
       {},
       "elements[0] [a b]: the name is not one that XML allows\nelements[1] [1a]: the name is not one that XML allows"},
      {{},
       {new CElementInfoSeqClsMnd("", "", 0, XmlElementType_Element, nullptr, 0, true)},
       {},
       "elements[0] []: the name is empty"},
      // Names of a DTD have prefixes, that of a group is for failures only, a wildcard of attributes has none.
      {{},
       {Mnd("a:b", 0), Mnd("\xC3\xA4-.1", 1),
        new CElementInfoSeqClsMnd("", "", 2, XmlElementType_Pseudo, nullptr, 0, true)},
       {AnyAttribute(3)},
       "",
       [](DynamicClass& object) { object.With(3, new CAttributeCol("", "##any", "")); }},
  };
  for (Row const& row : rows) Expect(row);
}

TEST(CheckTables, FindsWhatIsWrongWithIndices) {
  auto const fill = [](DynamicClass& object) { object.With(5, "set"); };
  Shape::Options text;
  text.textProperty = 2;
  class OwnMember : public CElementInfoSeqPrimMnd {
   public:
    using CElementInfoSeqPrimMnd::CElementInfoSeqPrimMnd;
  };
  Row const rows[] = {
      {{}, {Mnd("a", 0), Opt("b", 0)}, {}, "elements[1] [b]: the index 0 is also that of elements[0] [a]"},
      {{}, {Opt("a", 0)}, {Attribute("b", 0, false)}, "attributes[0] [b]: the index 0 is also that of elements[0] [a]"},
      {text, {}, {Attribute("b", 2, true)}, "text property: the index 2 is also that of attributes[0] [b]"},
      {{}, {Opt("a", 5), Opt("b", 5)}, {}, "elements[1] [b]: the index 5 is also that of elements[0] [a]", fill},
      {{}, {Opt("a", 5), Opt("b", 5)}, {Attribute("c", 5, true)}, ""},  // the class may ignore this index
      {{}, {Mnd("a", 5), Prim<OwnMember>("b", 5)}, {}, "", fill},       // which may do without its index
      {Group(XmlElementGroupType_Choice), {Choice("a", 5), Choice("b", 5)}, {}, "", fill},  // one occurs
  };
  for (Row const& row : rows) Expect(row);
}

TEST(CheckTables, FindsWhatIsWrongWithGroupsAndNumbers) {
  auto const prim = [](int type, int rule) {
    return new CElementInfoSeqPrimMnd("a", "", 0, static_cast<ItemType>(type), nullptr,
                                      static_cast<CWhitespaceUtils::WhitespaceRule>(rule), NoFacets());
  };
  Shape::Options typed;
  typed.typeAttributeWanted = true;
  Row const rows[] = {
      {Group(9), {Mnd("a", 0)}, {}, "group type: unknown number 9"},
      {Group(XmlElementGroupType_Sequence), {Choice("a", 0)}, {}, "elements[0] [a]: not a member of a sequence"},
      {Group(XmlElementGroupType_Choice), {Opt("a", 0)}, {}, "elements[0] [a]: not a member of a choice"},
      {Group(XmlElementGroupType_All),
       {Opt("a", 0), Prim<CElementInfoAllPrimOpt>("b", 1)},
       {},
       "elements[0] [a]: not a member of an all group"},
      {{}, {prim(ItemType_xmlObject, kCollapse)}, {}, "elements[0] [a]: the ItemType 27 is not that of a value"},
      {{},
       {prim(0, 4)},
       {},
       "elements[0] [a]: the ItemType 0 is not that of a value\nelements[0] [a]: the WhitespaceRule 4 does not exist"},
      {{},
       {},
       {Attribute("b", 1, true, static_cast<ItemType>(29))},
       "attributes[0] [b]: the ItemType 29 is not that of a value"},
      {typed, {}, {Attribute("a", 0, false, ItemType_i4, NoFacets(), "7")}, ""},  // the default has no effect
  };
  for (Row const& row : rows) Expect(row);
}

TEST(CheckTables, FindsMissingFunctionsAndCollections) {
  auto const fill = [](DynamicClass& object) {
    object.With(1, new CElementCol("", "##any", "", 0, -1));
    object.With(2, new PoliteCol("", "##any", "", 0, -1));
    object.With(3, new CAttributeCol("", "##any", ""));
  };
  Row const rows[] = {
      {{}, {new CElementInfoSeqEnumMnd("a", "", 0, ToText, nullptr)}, {}, "elements[0] [a]: the text function is null"},
      {{},
       {},
       {new CAttributeInfoEnum("b", "", 0, true, nullptr, FromText, nullptr)},
       "attributes[0] [b]: the text function is null"},
      {{},
       {new CElementInfoSeqClsOpt("a", "", 0, XmlElementType_Element, nullptr, 0)},
       {},
       "elements[0] [a]: the class factory is null"},
      {{},
       {new CElementInfoSeqAbsClsOpt("a", "", 0, XmlElementType_Element, nullptr)},
       {},
       "elements[0] [a]: the element factory is null"},
      {{},
       {new CElementInfoSeqClsOpt("a", "", 5, XmlElementType_Element, Make, 0),
        new CElementInfoSeqAbsClsMnd("b", "", 6, XmlElementType_Element, MakeFor)},
       {},
       ""},
      {{}, {new CElementInfoSeqPrimCol("a", "", 7)}, {}, "elements[0] [a]: the property 7 gives no collection"},
      {{}, {new CElementInfoSeqUntpdCol("a", "", 3)}, {}, "elements[0] [a]: the property 3 gives no CElementCol", fill},
      {{}, {}, {AnyAttribute(1)}, "attributes[0] []: the property 1 gives no CAttributeCol", fill},
      {{},
       {Any(1), Opt("b", 6)},
       {},
       "elements[0] [AnyElement]: a repeated wildcard takes all that is left, so it must be the last entry",
       fill},
      {{}, {Opt("b", 6), Any(1)}, {Attribute("c", 7, true), AnyAttribute(3)}, "", fill},
      {{}, {Any(2), Opt("b", 6)}, {}, "", fill},
      {{},
       {},
       {AnyAttribute(3), Attribute("c", 7, true)},
       "attributes[0] []: a wildcard takes all attributes, so it must be the last entry",
       fill},
  };
  for (Row const& row : rows) Expect(row);
}

TEST(CheckTables, PassTheClassesOfTheExamples) {
  std::vector<CSmartPtr<CXmlObjectBase>> objects = {Atom::CFeedType::CreateInstance(),
                                                    Atom::CFeedType::CChoice::CreateInstance(),
                                                    Atom::CGeneratorType::CreateInstance(),
                                                    Atom::CLinkType::CreateInstance(),
                                                    Gpx::CGpxType::CreateInstance(),
                                                    Gpx::CTrkType::CreateInstance("trk"),
                                                    Gpx::CTrksegType::CreateInstance("trkseg"),
                                                    Gpx::CWptType::CreateInstance("wpt"),
                                                    new Drawings::CDrawing,
                                                    Orders::CPurchaseOrderType::CreateInstance(),
                                                    Orders::CUSAddress::CreateInstance(),
                                                    Orders::CItems::CreateInstance(),
                                                    Orders::CItems::CItem::CreateInstance()};
  std::size_t const former = objects.size();
  try {
    for (int classId = 0;; ++classId) objects.push_back(Drawings::CClassFactory::CreateObject(classId, "x"));
  } catch (CQnInvalidParamException const&) {  // no class has this number
  }
  EXPECT_LT(former + 1, objects.size());
  for (auto const& object : objects) EXPECT_EQ("", Findings(dynamic_cast<CXmlGeneratedClass const&>(*object)));
}

/// A class whose record and tables are those of the pointers, right or wrong.
class PointedClass : public DynamicClass {
 public:
  using DynamicClass::DynamicClass;
  CParentElementInfo* GetClassInfo() const override { return m_info; }
  CElementInfo** GetClassElementInfo() const override { return m_elements; }
  CAttributeInfo** GetClassAttributeInfo() const override { return m_attributes; }
  void AccessProperty(int, bool, QnVariant&) override { throw CQnInvalidParamException("Unknown property"); }

  CParentElementInfo* m_info = nullptr;
  CElementInfo** m_elements = nullptr;
  CAttributeInfo** m_attributes = nullptr;
};

TEST(CheckTables, ReportsMissingTablesAndEnds) {
  Shape const shape({}, {new CElementInfoSeqPrimCol("a", "", 0)});
  PointedClass object(shape);
  std::string const head = "The tables of the class [Quillon9Data::(anonymous namespace)::PointedClass] are wrong:\n";
  EXPECT_FAILURE(
      CQnException,
      head + "GetClassInfo(): null\nelements: null in place of a table\nattributes: null in place of a table",
      object.CheckTables());
  std::vector<CElementInfo*> const endless(70'000, shape.m_elements[0]);
  object.m_elements = const_cast<CElementInfo**>(endless.data());
  object.m_attributes = shape.m_attributes;
  EXPECT_FAILURE(CQnException, head + "GetClassInfo(): null\nelements: no null pointer closes the table",
                 object.CheckTables());
  object.m_info = shape.m_info;
  object.m_elements = shape.m_elements;
  EXPECT_EQ("elements[0] [a]: the property 0 cannot be read: Unknown property", Findings(object));
}

class CheckedClass : public DynamicClass {
 public:
  using DynamicClass::DynamicClass;
};

TEST(CheckTables, RunsOnceForEachClassThatPasses) {
  Shape const wrong({}, {Mnd("", 0)});
  Shape const right({}, {Opt("a", 0)});
  CheckedClass bad(wrong);
  CheckedClass good(right);
  char const finding[] = "The tables of the class [Type] are wrong:\nelements[0] []: the name is empty";
  EXPECT_NO_THROW(CheckTablesOnce(bad));  // disabled by dynamic_class.h
  EnableTableChecks(true);
  EXPECT_FAILURE(CQnException, finding, CheckTablesOnce(bad));
  if (kChecksTables) {
    EXPECT_FAILURE(CQnValidationException, std::string("Failed to convert the element [root] to XML\n") + finding,
                   bad.Text());
    EXPECT_FAILURE(CQnValidationException, std::string("Failed to process the element [root]\n") + finding,
                   bad.FromXml("<root/>"));
  }
  EXPECT_NO_THROW(CheckTablesOnce(good));
  EXPECT_NO_THROW(CheckTablesOnce(bad));
  EXPECT_TRUE(EnableTableChecks(false));
}

}  // namespace
}  // namespace Quillon9Data
