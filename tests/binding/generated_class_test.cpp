#include "quillon9/descriptors/generated_class.h"

#include <gtest/gtest.h>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9 {
namespace {

using namespace Quillon9Data;
using namespace Testing;

constexpr char kXsi[] = " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' ";

// ---- Attributes and xsi:nil

TEST(GeneratedClassReading, AttributesByClassAndOption) {
  struct Row {
    bool rejectUnknown;
    char const* options;
    char const* attributes;
    char const* expected;
  } const rows[] = {
      {true, "", "a='1' b='2'", "<root a=\"1\" b=\"2\"/>"},
      {true, "", "b='2'", "Failed to process the element [root]\nFailed to find the required Attribute [a]"},
      {true, "", "a='1' c='3'", "Failed to process the element [root]\nUnexpected Attribute [c] found."},
      {true, "A", "a='1' c='3'", "<root a=\"1\"/>"},
      {false, "", "a='1' c='3'", "<root a=\"1\"/>"},
      {true, "", "a='1' xsi:type='t' xsi:schemaLocation='x y' xsi:noNamespaceSchemaLocation='z'", "<root a=\"1\"/>"},
      {true, "A", "a='1' xsi:nil='true'", "Failed to process the element [root]\nUnexpected Attribute [nil] found."},
      {true, "N", "x:a='1' xmlns:x='u'", "Failed to process the element [root]\nUnexpected Attribute [a] found."},
  };
  for (Row const& row : rows) {
    Shape::Options options;
    options.rejectUnknownAttributes = row.rejectUnknown;
    Shape const shape(options, {}, {Attribute("a", 0, false), Attribute("b", 1, true)});
    DynamicClass object(shape);
    std::string const document = std::string("<root ") + kXsi + row.attributes + "/>";
    EXPECT_EQ(row.expected, ReadBack(object, document.c_str(), row.options)) << row.attributes;
  }
}

TEST(GeneratedClassReading, NilTakesTheWordsOnly) {
  Shape::Options options;
  options.textProperty = 1;
  Shape const shape(options, {Prim<CElementInfoSeqPrimMnd>("v", 0)}, {Attribute("a", 2, true)});
  struct Row {
    char const* nil;
    char const* content;
    char const* expected;
  } const rows[] = {
      {"TRUE", "<v>1</v><unknown/>", "<root AA:nil=\"true\"/>"},
      {"false", "<v>1</v>", "<root><v>1</v></root>"},
      {"1", "<v>1</v>", "Failed to process the element [root]\nUnexpected Value for Attribute [nil] found."},
  };
  for (Row const& row : rows) {
    NillableClass object(shape);
    std::string const document = std::string("<root") + kXsi + "xsi:nil='" + row.nil + "'>" + row.content + "</root>";
    std::string back = ReadBack(object, document.c_str());
    std::string const declaration = "xmlns:AA=\"http://www.w3.org/2001/XMLSchema-instance\" ";
    if (back.find(declaration) != std::string::npos) back.erase(back.find(declaration), declaration.size());
    EXPECT_EQ(row.expected, back) << row.nil;
  }
}

TEST(GeneratedClassReading, TextPropertyTakesTheTextOfTheElement) {
  Shape::Options options;
  options.textProperty = 7;
  Shape const shape(options, {});
  DynamicClass object(shape);
  EXPECT_EQ("<r>a &lt; b</r>", ReadBack(object, "<r>a &lt; b</r>"));
  object.m_properties.clear();
  EXPECT_EQ("<r/>", object.Text());
}

// ---- Drivers

TEST(GeneratedClassReading, Sequences) {
  struct Row {
    char const* options;
    char const* content;
    char const* expected;
  } const rows[] = {
      {"", "<a>1</a><b>2</b>", "<root><a>1</a><b>2</b></root>"},
      {"", "<a>1</a>", "<root><a>1</a></root>"},
      {"", "<b>2</b><a>1</a>", "Failed to process the element [root]\nFailed to find a required element [a]"},
      {"", "<a>1</a><x/>",
       "Failed to process the element [root]\nFailed read all the elements held within the element [root]. The "
       "unexpected element [x] remains un processed"},
      {"U", "<x/><a>1</a><x/><b>2</b>", "<root><a>1</a></root>"},  // an optional member skips nothing
      {"U", "<x/><a>1</a><b>2</b><x/>", "<root><a>1</a><b>2</b></root>"},
      {"U", "<x/>", "Failed to process the element [root]\nFailed to find a required element [a]"},
      {"M", "<b>2</b>", "<root><b>2</b></root>"},
      {"", "<a xmlns='urn:other'>1</a>", "Failed to process the element [root]\nFailed to find a required element [a]"},
      {"N", "<a xmlns='urn:other'>1</a>", "<root><a>1</a></root>"},
  };
  Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("a", 0), Prim<CElementInfoSeqPrimOpt>("b", 1)});
  for (Row const& row : rows) {
    DynamicClass object(shape);
    EXPECT_EQ(row.expected, ReadBack(object, ("<root>" + std::string(row.content) + "</root>").c_str(), row.options))
        << row.content;
  }
}

TEST(GeneratedClassReading, AnEmptyTableTakesNothing) {
  Shape const shape({}, {});
  DynamicClass object(shape);
  EXPECT_EQ(0, object.GetClassElementInfoCount());
  EXPECT_EQ("<r/>", ReadBack(object, "<r> </r>"));
  EXPECT_EQ("<r/>", ReadBack(object, "<r><x/></r>", "U"));
  EXPECT_EQ(
      "Failed to process the element [r]\nFailed read all the elements held within the element [r]. The "
      "unexpected "
      "element [x] remains un processed",
      ReadBack(object, "<r><x/></r>"));
}

TEST(GeneratedClassReading, ChoicesOfCollections) {
  Shape const item({}, {});
  struct Row {
    char const* options;
    int minOccurs;
    char const* content;
    char const* expected;
  } const rows[] = {
      {"", 1, "<b/><b/>", "<root><b/><b/></root>"},
      {"", 1, "<a/><b/>",
       "Failed to process the element [root]\nFailed read all the elements held within the element [root]. The "
       "unexpected element [b] remains un processed"},
      {"U", 1, "<x/><x/><b/><a/>", "<root><b/></root>"},
      {"", 1, "",
       "Failed to process the element [root]\nNo child elements within the element [root] were populated. The "
       "element "
       "represents a choice, so one and only one element should be populated. The element contained no sutable "
       "child "
       "elements"},
      {"C", 1, "", "<root/>"},
      {"", 0, "", "<root/>"},  // a member that may occur zero times makes the choice optional
      {"", 0, "<a/><a/><a/>",
       "Failed to process the element [root]\nThe Maximum number of [a] elements allowed in this collection is 2"},
  };
  for (Row const& row : rows) {
    Shape::Options options;
    options.group = XmlElementGroupType_Choice;
    Shape const shape(options, {new CElementInfoChoiceClsCol("a", "", 0, XmlElementType_Element),
                                new CElementInfoChoiceClsCol("b", "", 1, XmlElementType_Element)});
    DynamicClass object(shape);
    object.With(0, new DynamicCollection(item, "a", row.minOccurs, 2)).With(1, new DynamicCollection(item, "b", 1, 2));
    EXPECT_EQ(row.expected, ReadBack(object, ("<root>" + std::string(row.content) + "</root>").c_str(), row.options))
        << row.content;
  }
}

TEST(GeneratedClassReading, UnknownGroupTypesFailInBothDirections) {
  Shape::Options options;
  options.group = static_cast<XmlElementGroupType>(9);
  Shape const shape(options, {});
  DynamicClass object(shape);
  EXPECT_EQ("Failed to process the element [r]\nUnknow Group Type", ReadBack(object, "<r/>"));
  EXPECT_FAILURE(CQnValidationException, "Failed to convert the element [r] to XML\nUnknown XML Group Type",
                 object.Text());
  options.group = XmlElementGroupType_All;
  Shape const wrongTable(options, {Prim<CElementInfoSeqPrimOpt>("a", 0)});
  DynamicClass wrong(wrongTable);
  EXPECT_EQ("Failed to process the element [r]\nThe table of an all group holds a member of another group",
            ReadBack(wrong, "<r/>"));
}

/// Creates classes nested n deep, each holding one of the same kind.
CSmartPtr<CXmlObjectBase> MakeNested(int, char const* name);
Shape const& NestedShape() {
  static Shape const shape(
      {}, {new CElementInfoSeqClsOpt("n", "", 0, XmlElementType_Element, MakeNested, 0)},
      {Attribute("id", 1, true, ItemType_i4, CPrimitiveRestrictions("", -1, -1, "", "5", "", "", -1))});
  return shape;
}
CSmartPtr<CXmlObjectBase> MakeNested(int, char const* name) { return new DynamicClass(NestedShape(), name); }

TEST(GeneratedClass, FailuresNameEveryOpenElement) {
  DynamicClass object(NestedShape());
  EXPECT_EQ(
      "Failed to process the element [r]\nFailed to process the element [n]\nFailed to process the element [n]\n"
      "The value [x] can not be converted to a i4",
      ReadBack(object, "<r><n><n id='x'/></n></r>"));
  EXPECT_EQ(
      "Failed to convert the element [r] to XML\nFailed to convert the element [n] to XML\nFailed to convert the "
      "element [n] to XML\nFailed to convert attributes to XML\nInvalid Value for id [6]",
      ReadBack(object, "<r><n><n id='6'/></n></r>"));
}

TEST(GeneratedClass, DeepDocumentsGoRoundUpToTheLimitAndFailClearlyBehindIt) {
  auto const nested = [](unsigned depth) {
    std::string text = "<r>";
    for (unsigned i = 1; i < depth; ++i) text += "<n>";
    for (unsigned i = 1; i < depth; ++i) text += "</n>";
    return text + "</r>";
  };
  unsigned const limit = CLimits::GetMaxElementDepth();
  DynamicClass object(NestedShape());
  object.FromXml(nested(limit).c_str());
  EXPECT_EQ(7U * (limit - 2) + 11, object.Text().size());
  EXPECT_FAILURE(CQnException, "The element nesting exceeds the limit of 1000 levels",
                 object.FromXml(nested(limit + 1).c_str()));
  EXPECT_FAILURE(CQnException, "The element nesting exceeds the limit of 1000 levels",
                 object.FromXml(nested(1000000).c_str()));
}

/// Creates a group without a tag that holds one of its own kind.
CSmartPtr<CXmlObjectBase> MakeGroup(int, char const* name);
Shape const& EndlessGroup() {
  static Shape const shape({XmlElementGroupType_Sequence, XmlElementType_Pseudo, -1, true, false},
                           {new CElementInfoSeqClsOpt("g", "", 0, XmlElementType_Pseudo, MakeGroup, 0)});
  return shape;
}
CSmartPtr<CXmlObjectBase> MakeGroup(int, char const* name) { return new DynamicClass(EndlessGroup(), name); }

TEST(GeneratedClass, GroupsAndGraphsWithoutEndFailClearly) {
  auto const innermost = [](CQnException const& failure) {
    CQnException const* cause = &failure;
    while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
    return cause->GetMessage();
  };
  std::string const tooDeep = "The element nesting exceeds the limit of 1000 levels";
  Shape const shape({}, {new CElementInfoSeqClsOpt("g", "", 0, XmlElementType_Pseudo, MakeGroup, 0)});
  DynamicClass holder(shape);
  try {
    holder.FromXml("<r><a/></r>");
    ADD_FAILURE() << "a group that reads itself came to an end";
  } catch (CQnValidationException const& failure) {
    EXPECT_EQ(tooDeep, innermost(failure));
  }
  for (Shape const* each : {&EndlessGroup(), &NestedShape()}) {
    CSmartPtr<DynamicClass> const cyclic(new DynamicClass(*each, "n"));
    cyclic->With(0, cyclic.Get());
    try {
      holder.With(0, cyclic.Get()).Text();
      ADD_FAILURE() << "a graph that holds itself was written";
    } catch (CQnValidationException const& failure) {
      EXPECT_EQ(tooDeep, innermost(failure));
    }
    cyclic->m_properties.clear();
  }
}

// ---- Writing

TEST(GeneratedClassWriting, RootPrologueInOrder) {
  Shape::Options options;
  options.typeAttributeWanted = true;
  Shape const shape(options, {Prim<CElementInfoSeqPrimOpt>("v", 0)}, {Attribute("a", 1, true)});
  NillableClass object(shape);
  object.With(1, "1");
  object.SetNil(true);
  object.m_targetNamespace = "urn:b";
  CXmlSerializationContext ctx;
  ctx.GetProcessingInstructions() = {"<?one?>", "<?two?>"};
  ctx.GetNamespaceAliases()->Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
  ctx.GetNamespaceAliases()->Add("t", "urn:type");
  ctx.SetDefaultNamespaceURI("urn:b");
  ctx.SetInLineSchema("xsi:schemaLocation=\"urn:b b.xsd\"");
  EXPECT_EQ(
      "<?one?>\n\n<?two?>\n\n<root xmlns=\"urn:b\" xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xmlns:t=\"urn:type\" xsi:type=\"t:Type\" a=\"1\" \nxsi:schemaLocation=\"urn:b b.xsd\"\n xsi:nil=\"true\"/>",
      object.Text(ctx));
  ctx.SetWriteTypeAttribute(false);
  EXPECT_EQ(std::string::npos, object.Text(ctx).find("xsi:type"));
  ctx.SetWriteTypeAttribute(true);
  object.SetElementName("Type");
  EXPECT_EQ(std::string::npos, object.Text(ctx).find("xsi:type")) << "an element named as its type needs none";
}

TEST(GeneratedClassWriting, AChoiceWritesItsFirstMemberAlone) {
  Shape const item({}, {});
  Shape::Options options;
  options.group = XmlElementGroupType_Choice;
  Shape const shape(options, {new CElementInfoChoiceClsCol("a", "", 0, XmlElementType_Element),
                              new CElementInfoChoiceClsCol("b", "", 1, XmlElementType_Element)});
  CSmartPtr<DynamicCollection> const a(new DynamicCollection(item, "a", 1, 9));
  CSmartPtr<DynamicCollection> const b(new DynamicCollection(item, "b", 1, 9));
  DynamicClass object(shape);
  object.With(0, a.Get()).With(1, b.Get());
  EXPECT_FAILURE(CQnValidationException,
                 "Failed to convert the element [root] to XML\nThis element is a choice, and as such must have at one "
                 "(and only one) valid item, currently there are none set",
                 object.Text());
  EXPECT_EQ("<root/>", object.Text(Ignoring("C")));
  b->Add(new DynamicClass(item, "b"));
  EXPECT_EQ("<root><b/></root>", object.Text());
  a->Add(new DynamicClass(item, "a"));
  EXPECT_EQ("<root><a/></root>", object.Text());
}

// ---- Metadata and factory

TEST(Metadata, CleaningIsSafeTwiceAndOnNothing) {
  CParentElementInfo* info = nullptr;
  CElementInfo** elements = new CElementInfo* [2] { Prim<CElementInfoSeqPrimMnd>("a", 0), nullptr };
  CAttributeInfo** attributes = nullptr;
  CXmlGeneratedClass::CleanMetaData(info, elements, attributes);
  CXmlGeneratedClass::CleanMetaData(info, elements, attributes);
  EXPECT_EQ(nullptr, elements);
}

TEST(ClassFactory, TypeOfAnElement) {
  struct Row {
    char const* attributes;
    char const* type;
    char const* ns;
  } const rows[] = {
      {"", "", "urn:e"},
      {"xsi:type='t'", "t", "urn:e"},
      {"xsi:type='p:t' xmlns:p='urn:p'", "t", "urn:p"},
      {"xsi:type='p:b:c' xmlns:p='urn:p'", "b:c", "urn:p"},
      {"xsi:type='q:t'", "t", "urn:e"},
  };
  for (Row const& row : rows) {
    CXmlDocument document;
    document.LoadXml((std::string("<e xmlns='urn:e'") + kXsi + row.attributes + "/>").c_str());
    EXPECT_EQ(row.type, CClassfactoryBase::GetElementType(document.GetDocumentElement())) << row.attributes;
    EXPECT_EQ(row.ns, CClassfactoryBase::GetElementTypeNamespaceUri(document.GetDocumentElement()));
  }
}

TEST(GeneratedClass, KnowsTheElementsOfItsTable) {
  Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("a", 0)});
  DynamicClass object(shape);
  CXmlDocument document;
  document.LoadXml("<a><b/></a>");
  CXmlElement* const a = document.GetDocumentElement();
  EXPECT_TRUE(object.IsElementInList(Ignoring(""), a));
  EXPECT_FALSE(object.IsElementInList(Ignoring(""), a->GetFirstElement()));
}

}  // namespace
}  // namespace Quillon9
