#include "quillon9/descriptors/element_info.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

static_assert(std::is_base_of_v<CElementInfoSeq, CElementInfoSeqPrimMnd>);
static_assert(std::is_base_of_v<CElementInfoSeqCol, CElementInfoSeqAbsClsCol>);
static_assert(std::is_abstract_v<CElementInfoSeqNonCol> &&
              !std::is_base_of_v<CElementInfoSeqCol, CElementInfoSeqNonCol>);
static_assert(std::is_abstract_v<CElementInfoAllPrimCol> && std::is_abstract_v<CElementInfoAllClsCol>);
static_assert(std::is_abstract_v<CElementInfoAllEnumCol> &&
              !std::is_base_of_v<CElementInfoAllCol, CElementInfoAllEnumCol>);

/// A class with one value <v>, with or without a tag; the element factories of these tests create it.
Shape const& Leaf() {
  static Shape const shape({}, {Prim<CElementInfoSeqPrimOpt>("v", 0)});
  return shape;
}
Shape const& Group() {  // without a tag: a mandatory <p> and an optional <q>, and an attribute
  static Shape const shape({XmlElementGroupType_Sequence, XmlElementType_Pseudo, -1, false, false},
                           {Prim<CElementInfoSeqPrimMnd>("p", 0), Prim<CElementInfoSeqPrimOpt>("q", 1)},
                           {Attribute("ga", 2, true)});
  return shape;
}
CSmartPtr<CXmlObjectBase> MakeClass(int id, char const* name) {
  return new DynamicClass(id == 0 ? Leaf() : Group(), name);
}
CSmartPtr<CXmlObjectBase> MakeForElement(CXmlElement* element) {
  if (CClassfactoryBase::GetElementType(element) == "none") return nullptr;
  return new DynamicClass(Leaf(), element->GetLocalName().c_str());
}

/// The holder: <root> with the descriptor under test as property 0, followed by <z> as property 1.
struct Row {
  char const* options;
  char const* content;
  char const* expected;
};
constexpr char kRoot[] = "Failed to process the element [root]\n";

template <class MakeDescriptor, class Fill>
void ExpectRows(MakeDescriptor makeDescriptor, Fill fill, std::initializer_list<Row> rows) {
  for (Row const& row : rows) {
    Shape::Options options;
    options.rejectUnknownAttributes = false;  // a child without a tag also sees the attributes of its holder
    Shape const shape(options, {makeDescriptor(), Prim<CElementInfoSeqPrimOpt>("z", 1)}, {Attribute("own", 2, true)});
    DynamicClass object(shape);
    fill(object);
    std::string const document =
        "<root xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'" + std::string(row.content) + "</root>";
    EXPECT_EQ(row.expected, ReadBack(object, document.c_str(), row.options)) << row.options << " " << row.content;
  }
}
void Nothing(DynamicClass&) {}

std::string const kLeftOverX = std::string(kRoot) +
                               "Failed read all the elements held within the element [root]. The unexpected element "
                               "[x] remains un processed";
std::string const kRequiredC = std::string(kRoot) + "Failed to find a required element [c]";

TEST(SeqClsMnd, WithATag) {
  ExpectRows([] { return new CElementInfoSeqClsMnd("c", "", 0, XmlElementType_Element, MakeClass, 0, true); },
             [](DynamicClass& object) { object.With(0, new DynamicClass(Leaf(), "c")); },
             {{"", "><c><v>1</v></c><z>2</z>", "<root><c><v>1</v></c><z>2</z></root>"},
              {"", "><z>2</z>", kRequiredC.c_str()},
              {"U", "><x/><c/>", "<root><c/></root>"},
              {"M", "><z>2</z>", "<root><c/><z>2</z></root>"},
              {"", "><c><y/></c>",
               "Failed to process the element [root]\nFailed to process the element [c]\nFailed read all the "
               "elements held "
               "within the element [c]. The unexpected element [y] remains un processed"}});
}

TEST(SeqClsMnd, WithoutATag) {
  auto const fill = [](DynamicClass& object) { object.With(0, new DynamicClass(Group(), "")); };
  ExpectRows(
      [] { return new CElementInfoSeqClsMnd("c", "", 0, XmlElementType_Pseudo, MakeClass, 1, false); }, fill,
      {{"", " ga='g' own='o'><p>1</p><q>2</q><z>3</z>", "<root own=\"o\" ga=\"g\"><p>1</p><q>2</q><z>3</z></root>"},
       {"", "><z>3</z>", "<root><z>3</z></root>"},  // an empty group counts as present
       {"", ">", "<root/>"},
       {"U", "><x/><p>1</p>", "<root><p>1</p></root>"},
       {"U", "><x/><y/><x/><y/>", "<root/>"},
       {"", "><x/>", kLeftOverX.c_str()}});
  ExpectRows([] { return new CElementInfoSeqClsMnd("c", "", 0, XmlElementType_Pseudo, MakeClass, 1, true); }, fill,
             {{"", "><p>1</p>", "<root><p>1</p></root>"},
              {"", ">", kRequiredC.c_str()},
              {"M", "><z>3</z>", kRequiredC.c_str()}});  // no option excuses this
}

TEST(SeqClsOpt, WithATagAndWithout) {
  ExpectRows([] { return new CElementInfoSeqClsOpt("c", "", 0, XmlElementType_Element, MakeClass, 0); }, Nothing,
             {{"", "><c/><z>2</z>", "<root><c/><z>2</z></root>"},
              {"", "><z>2</z>", "<root><z>2</z></root>"},
              {"", "><x/>", kLeftOverX.c_str()}});
  ExpectRows([] { return new CElementInfoSeqClsOpt("c", "", 0, XmlElementType_Pseudo, MakeClass, 1); }, Nothing,
             {{"", " ga='g'><p>1</p>", "<root ga=\"g\"><p>1</p></root>"},
              {"", "><z>2</z>", "<root><z>2</z></root>"},
              {"", ">", "<root/>"}});
}

TEST(SeqClsOpt, AChildThatFailsLeavesThePropertyAsItWas) {
  Shape const shape({}, {new CElementInfoSeqClsOpt("c", "", 0, XmlElementType_Element, MakeClass, 0)});
  DynamicClass object(shape);
  object.FromXml("<root><c><v>old</v></c></root>");
  EXPECT_THROW(object.FromXml("<root><c><v>new</v><y/></c></root>"), CQnValidationException);
  EXPECT_EQ("<root><c><v>old</v></c></root>", object.Text());
}

TEST(SeqAbsCls, TakeTheClassFromTheElement) {
  std::string const noSubstitution = std::string(kRoot) + "Failed to find a suitable substitution element for [c]";
  ExpectRows([] { return new CElementInfoSeqAbsClsMnd("c", "", 0, XmlElementType_Element, MakeForElement); }, Nothing,
             {{"", "><c><v>1</v></c>", "<root><c><v>1</v></c></root>"},
              {"", "><c xsi:type='none'/>", noSubstitution.c_str()},
              {"U", "><x/><c/>", noSubstitution.c_str()},
              {"M", ">", noSubstitution.c_str()}});
  std::string const leftOverC = std::string(kRoot) +
                                "Failed read all the elements held within the element [root]. The unexpected element "
                                "[c] remains un processed";
  ExpectRows([] { return new CElementInfoSeqAbsClsOpt("c", "", 0, XmlElementType_Element, MakeForElement); }, Nothing,
             {{"", "><c><v>1</v></c><z>2</z>", "<root><c><v>1</v></c><z>2</z></root>"},
              {"", "><z>2</z>", "<root><z>2</z></root>"},
              {"", "><c xsi:type='none'/>", leftOverC.c_str()}});
}

TEST(SeqCol, TakesItsRunAndJudgesTheCount) {
  auto const fill = [](DynamicClass& object) { object.With(0, new DynamicCollection(Leaf(), "c", 1, 2)); };
  std::string const tooFew = std::string(kRoot) + "The Minimum number of [c] elements allowed in this collection is 1";
  std::string const tooMany = std::string(kRoot) + "The Maximum number of [c] elements allowed in this collection is 2";
  ExpectRows([] { return new CElementInfoSeqClsCol("c", "", 0, XmlElementType_Element); }, fill,
             {{"", "><c><v>1</v></c><c/><z>2</z>", "<root><c><v>1</v></c><c/><z>2</z></root>"},
              {"", "><z>2</z>", tooFew.c_str()},
              {"I", "><z>2</z>", "<root><z>2</z></root>"},
              {"", "><c/><c/><c/>", tooMany.c_str()},
              {"I", "><c/><c/><c/>", "<root><c/><c/><c/></root>"}});
}

// ---- What a descriptor returns for a holder without a tag, and where it leaves the cursor

struct Probe {
  char const* options;
  char const* content;
  bool satisfied;
  char const* cursorAt;  // local name, empty for null
};

template <class MakeDescriptor, class Fill>
void ExpectProbes(MakeDescriptor makeDescriptor, Fill fill, std::initializer_list<Probe> probes) {
  for (Probe const& probe : probes) {
    std::unique_ptr<CElementInfo> const descriptor(makeDescriptor());
    Shape const shape({}, {});
    DynamicClass holder(shape);
    fill(holder);
    CXmlDocument document;
    document.LoadXml(("<r>" + std::string(probe.content) + "</r>").c_str());
    CXmlElement* const parent = document.GetDocumentElement();
    CXmlElement* cursor = parent->GetFirstElement();
    EXPECT_EQ(probe.satisfied,
              descriptor->ElementFromXml(Ignoring(probe.options), &holder, parent, &cursor, "", XmlElementType_Pseudo))
        << probe.options << " " << probe.content;
    EXPECT_EQ(probe.cursorAt, cursor != nullptr ? cursor->GetLocalName() : "") << probe.options << probe.content;
  }
}

TEST(PseudoHolder, DescriptorsAnswerFalseInsteadOfFailing) {
  ExpectProbes([] { return Prim<CElementInfoSeqPrimMnd>("c", 0); }, Nothing,
               {{"", "<c/><d/>", true, "d"},
                {"", "<x/>", false, "x"},
                {"M", "<x/>", false, "x"},
                {"U", "<x/><c/><d/>", true, "d"},
                {"U", "<x/><y/>", false, ""}});
  auto const withLeaf = [](DynamicClass& object) { object.With(0, new DynamicClass(Leaf(), "c")); };
  ExpectProbes([] { return new CElementInfoSeqClsMnd("c", "", 0, XmlElementType_Element, MakeClass, 0, true); },
               withLeaf, {{"", "<c/>", true, ""}, {"U", "<x/><c/>", false, "x"}});
  auto const withGroup = [](DynamicClass& object) { object.With(0, new DynamicClass(Group(), "")); };
  ExpectProbes([] { return new CElementInfoSeqClsMnd("c", "", 0, XmlElementType_Pseudo, MakeClass, 1, true); },
               withGroup, {{"", "<p/><x/>", true, "x"}, {"", "<x/>", false, "x"}, {"", "", false, ""}});
  ExpectProbes([] { return new CElementInfoSeqClsMnd("c", "", 0, XmlElementType_Pseudo, MakeClass, 1, false); },
               withGroup, {{"U", "<x/>", true, "x"}});
  ExpectProbes([] { return new CElementInfoSeqAbsClsMnd("c", "", 0, XmlElementType_Element, MakeForElement); }, Nothing,
               {{"", "<x/>", false, "x"}, {"", "<c/>", true, ""}});
  auto const withItems = [](DynamicClass& object) { object.With(0, new DynamicCollection(Leaf(), "c", 1, 2)); };
  ExpectProbes([] { return new CElementInfoSeqClsCol("c", "", 0, XmlElementType_Element); }, withItems,
               {{"", "<x/>", false, "x"}, {"", "<c/><c/><c/><x/>", false, "x"}, {"", "<c/><x/>", true, "x"}});
  ExpectProbes([] { return new CElementInfoChoiceClsCol("c", "", 0, XmlElementType_Element); }, withItems,
               {{"", "<x/>", false, "x"}, {"", "<c/><c/><c/><x/>", false, "c"}, {"I", "<c/><c/><c/>", true, ""}});
}

// ---- Writing and other operations

TEST(PrimitiveWriting, FacetsFailBeforeAnyOutputAndInvalidValuesWriteNothing) {
  Shape const shape(
      {}, {Prim<CElementInfoSeqPrimMnd>("v", 0, ItemType_i4, CPrimitiveRestrictions("", -1, -1, "", "5", "", "", -1))});
  DynamicClass object(shape);
  EXPECT_EQ("<root/>", object.Text());
  EXPECT_EQ("<root><v>5</v></root>", object.With(0, 5).Text());
  EXPECT_FAILURE(CQnValidationException, "Failed to convert the element [root] to XML\nInvalid Value for v [6]",
                 object.With(0, 6).Text());
}

/// The text so far, and what writing \p value as <v> inside <a> throws.
template <class Writer = CXmlTextWriter>
std::string WriteValue(QnVariant const& value, char const* format) {
  CElementInfoSeqPrimMnd const descriptor("v", "", 0, ItemType_r8, format, CWhitespaceUtils::WhitespaceRule_Collapse,
                                          NoFacets());
  Shape const shape({}, {});
  DynamicClass object(shape);
  object.m_properties[0] = value;
  CTextStream stream;
  Writer writer(stream);
  writer.SetFormat(false);
  writer.WriteStartElement("a", "");
  try {
    descriptor.ElementToXml(CXmlSerializationContext::m_defaultContext, &object, &writer);
  } catch (CQnException const& failure) {
    return stream.CopyText() + ' ' + failure.GetMessage();
  }
  return stream.CopyText();
}

TEST(PrimitiveWriting, ValuesArePrintedBehindTheStartOfTheirElementByTheWritersOwnOperations) {
  struct Renaming : CXmlTextWriter {
    using CXmlTextWriter::CXmlTextWriter;
    void WriteStartElement(std::string const& name, std::string const& ns) override {
      CXmlTextWriter::WriteStartElement(name + "1", ns);
    }
  };
  struct Bracketing : CXmlTextWriter {
    using CXmlTextWriter::CXmlTextWriter;
    void WriteTextElement(std::string const& name, std::string const& ns, std::string_view value, ItemType type,
                          std::uint64_t member) override {
      CXmlTextWriter::WriteTextElement(name, ns, '[' + std::string(value) + ']', type, member);
    }
  };
  QnVariant number;
  number.SetR8(0.5);
  EXPECT_EQ("<a><v>0.50</v>", WriteValue(number, "%.2f"));
  EXPECT_EQ("<a><v>0.5</v>", WriteValue(number, kShortestFormat));
  EXPECT_EQ("<a1><v1>0.50</v1>", WriteValue<Renaming>(number, "%.2f"));
  EXPECT_EQ("<a><v>[0.50]</v>", WriteValue<Bracketing>(number, "%.2f"));
  EXPECT_EQ("<a><v>[0.5]</v>", WriteValue<Bracketing>(number, nullptr));
  EXPECT_EQ("<a><v The format [%s] does not print one floating-point number", WriteValue(number, "%s"));
  QnVariant object;
  object.SetXmlObject(nullptr);
  EXPECT_EQ("<a><v Invalid Type 27 to convert to string", WriteValue(object, nullptr));
}

TEST(CollectionWriting, ItemsWithoutATagPutTheirAttributesOnTheOpenElement) {
  Shape const shape({}, {new CElementInfoSeqClsCol("c", "", 0, XmlElementType_Pseudo)});
  CSmartPtr<DynamicCollection> const items(new DynamicCollection(Group(), "c", 0, -1));
  auto* const item = new DynamicClass(Group(), "");
  item->With(0, "1").With(2, "g");
  items->Add(item);
  DynamicClass object(shape);
  EXPECT_EQ("<root ga=\"g\"><p>1</p></root>", object.With(0, items.Get()).Text());
}

TEST(ElementInfo, ChecksThatOnlyPrimitiveAndAllMembersAnswer) {
  CElementInfoSeqClsCol const collection("c", "", 0, XmlElementType_Element);
  QnVariant value;
  value.SetI4(1);
  EXPECT_FAILURE(CQnException, "Cannot CheckRestriction for type: i4", collection.CheckRestriction(value));
  EXPECT_FAILURE(CQnException, "Not implemented, should never be called",
                 collection.Validate(Ignoring(""), nullptr, true, true));
}

TEST(ElementInfo, DefaultNamespaceOfUntypedContent) {
  struct {
    char const* restriction;
    char const* ns;
    char const* expected;
  } const rows[] = {
      {"##any", "urn:n", "urn:n"},
      {"##other", "urn:n", ""},
      {"##other", "", "DefaultNamespace"},
      {"##local", "urn:n", ""},
      {"##targetNamespace", "n", "urn:t"},
      {"##other ##local", "", "DefaultNamespace"},
      {"urn:a urn:b", "n", ""},
      {"urn:a", "n", ""},
      {"##any ##x", "n", "n"},
  };
  for (auto const& row : rows) {
    EXPECT_EQ(row.expected, CElementInfo::GetAnyDefaultNamespace(row.restriction, row.ns, "urn:t")) << row.restriction;
  }
}

}  // namespace
}  // namespace Quillon9Data
