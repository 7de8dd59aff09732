#include <gtest/gtest.h>

#include <string>

#include "article.h"
#include "constructs.h"
#include "dynamic_class.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

CXmlSerializationContext Under(ValueRules rules) {
  CXmlSerializationContext ctx;
  ctx.SetValueRules(rules);
  return ctx;
}

using Testing::DynamicClass;
using Testing::Shape;

/// An object of a class written by hand, with one value of the kind.
Shape ShapeOf(ItemType kind, CWhitespaceUtils::WhitespaceRule rule) {
  return {{}, {new Quillon9Data::CElementInfoSeqPrimOpt("v", "", 0, kind, nullptr, rule, CPrimitiveRestrictions())}};
}

std::string Written(std::string const& text, CXmlSerializationContext const& ctx) {
  Shape const shape = ShapeOf(ItemType_string, CWhitespaceUtils::WhitespaceRule_Preserve);
  DynamicClass object(shape);
  object.m_properties[0].SetString(text);
  return object.Text(ctx);
}

std::string ReadAndWritten(ItemType kind, std::string const& text, CXmlSerializationContext const& ctx) {
  Shape const shape = ShapeOf(kind, CWhitespaceUtils::WhitespaceRule_Preserve);
  DynamicClass object(shape);
  try {
    object.FromXml(("<root><v>" + text + "</v></root>").c_str(), ctx);
    return object.Text(ctx);
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
}

}  // namespace

TEST(ValueRules, TextsComeBackAsTheyWere) {
  CXmlSerializationContext const classic = Under(ValueRules_Classic);
  CXmlSerializationContext const schema = Under(ValueRules_XmlSchema);
  EXPECT_EQ(Written("<![CDATA[x]]>", classic), "<root><v><![CDATA[x]]></v></root>");
  EXPECT_EQ(Written("<![CDATA[x]]>", schema), "<root><v>&lt;![CDATA[x]]&gt;</v></root>");
  EXPECT_EQ(Written("a\r\n\tb", classic), "<root><v>a\n\tb</v></root>");
  EXPECT_EQ(Written("a\r\n\tb", schema), "<root><v>a&#xD;\n\tb</v></root>");
  EXPECT_NO_THROW(Written(std::string("a\x01"), classic));
  EXPECT_THROW(Written(std::string("a\x01"), schema), CQnException);
  EXPECT_EQ(Written(std::string("a\0b", 3), classic), "<root><v>a</v></root>");
  EXPECT_THROW(Written(std::string("a\0b", 3), schema), CQnException);
}

TEST(ValueRules, NamespacesComeBackAsTheyWere) {
  CElement element("e");
  element.FromXml("<n:e xmlns:n='u:&lt;&amp;&quot;' n:a='1'/>");
  CXmlSerializationContext const classic = Under(ValueRules_Classic);
  CXmlSerializationContext const schema = Under(ValueRules_XmlSchema);
  EXPECT_EQ(element.ToXml(false, false, EOLType_LF, classic), "<AA:e xmlns:AA=\"u:<&\"\" AA:a=\"1\"/>");
  EXPECT_EQ(element.ToXml(false, false, EOLType_LF, schema), "<AA:e xmlns:AA=\"u:&lt;&amp;&quot;\" AA:a=\"1\"/>");
}

TEST(ValueRules, ReferencesToCarriageReturnsAreKept) {
  CXmlSerializationContext const classic = Under(ValueRules_Classic);
  CXmlSerializationContext const schema = Under(ValueRules_XmlSchema);
  std::string const end = "<root><v>a&#13;\r\nb</v></root>";
  for (std::string const start : {"", "<?xml version='1.0' encoding='ISO-8859-1'?>"}) {  // each has a reader of its own
    Shape const shape = ShapeOf(ItemType_string, CWhitespaceUtils::WhitespaceRule_Preserve);
    DynamicClass object(shape);
    object.FromXml((start + end).c_str(), classic);
    EXPECT_EQ(object.m_properties[0].GetString(), "a\nb");
    object.FromXml((start + end).c_str(), schema);
    EXPECT_EQ(object.m_properties[0].GetString(), "a\r\nb");
    object.FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, schema), schema);
    EXPECT_EQ(object.m_properties[0].GetString(), "a\r\nb");
  }
}

TEST(ValueRules, TreesAreParsedByTheRulesOfTheirContext) {
  std::string const text = "<a>x&#13;y</a>";
  for (ValueRules const rules : {ValueRules_Classic, ValueRules_XmlSchema}) {
    CXmlSerializationContext const ctx = Under(rules);
    std::string const expected = rules == ValueRules_Classic ? "xy" : "x\ry";
    CXmlDocument tree(ctx);
    tree.LoadXml(text.c_str());
    EXPECT_EQ(tree.GetDocumentElement()->GetText(), expected);
    tree.LoadXml(std::wstring(text.begin(), text.end()).c_str());
    EXPECT_EQ(tree.GetDocumentElement()->GetText(), expected);
    tree.LoadXmlStream(reinterpret_cast<unsigned char const*>(text.data()), text.size());
    EXPECT_EQ(tree.GetDocumentElement()->GetText(), expected);
  }
}

// What a program reads while an object is read around it.
TEST(ValueRules, TreesOfTheProgramKeepTheRulesThatItAskedFor) {
  struct Sink : IFailureSink {
    bool OnFailure(CFailure const&) override {
      CXmlSerializationContext const ctx = Under(ValueRules_Classic);
      CXmlDocument tree(ctx);
      tree.LoadXml("<a>x&#13;y</a>");
      text = tree.GetDocumentElement()->GetText();
      return true;
    }
    std::string text;
  } sink;
  CXmlSerializationContext ctx = Under(ValueRules_XmlSchema);
  ctx.SetFailureSink(&sink);
  ReadAndWritten(ItemType_i4, "x", ctx);
  EXPECT_EQ(sink.text, "xy");
}

TEST(ValueRules, GenericCopiesHaveTheTextsOfTheObject) {
  auto const named = Constructs::ReadRoot(XmlText("<named xmlns='urn:t'><one>x</one><said>a&#13;b</said></named>"));
  std::string const copy = CElement(named.Get(), nullptr).GetElements()->Item(1)->GetText();
  EXPECT_EQ(copy, "a\rb");
}

TEST(ValueRules, ShortFormsOfFastInfosetLoseNoText) {
  struct Row {
    ItemType kind;
    char const* pattern;
    char const* text;
  };
  Row const rows[] = {
      {ItemType_i4, "\\d{3}", "007"},
      {ItemType_boolean, "[01]", "1"},
      {ItemType_r4, "", "1.5"},
      {ItemType_r8, "\\d\\.\\d\\d", "1.50"},
      {ItemType_ui8, "", "18446744073709551615"},
      {ItemType_duration, "", "P1D"},
      {ItemType_datetime, "", "2026-01-02T03:04:05.5+01:00"},
      {ItemType_hexBinary, "[0-9a-f]*", "0aff"},
      {ItemType_base64Binary, "", "TQ=="},
  };
  CXmlSerializationContext ctx = Under(ValueRules_XmlSchema);
  ctx.GetFIContext()->SetSuggestedValues();
  for (Row const& row : rows) {
    CPrimitiveRestrictions const facets(row.pattern, -1, -1, "", "", "", "", -1);
    auto const rule = CWhitespaceUtils::WhitespaceRule_Collapse;
    Shape const shape(
        {}, {new Quillon9Data::CElementInfoSeqPrimOpt("v", "", 0, row.kind, nullptr, rule, facets)},
        {new Quillon9Data::CAttributeInfoPrimitive("w", "", 1, true, row.kind, nullptr, rule, facets, nullptr)});
    std::string const text = row.text;
    std::string const document = "<root w=\"" + text + "\"><v>" + text + "</v></root>";
    DynamicClass object(shape);
    object.FromXml(document.c_str(), ctx);
    EXPECT_NO_THROW(object.FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, ctx), ctx));
    EXPECT_EQ(object.Text(ctx), document);
  }
}

TEST(ValueRules, DocumentsAreParsedByTheRulesOfTheirRoots) {
  auto const document = XmlText("<named xmlns='urn:t'><one>x</one><said>a&#13;b</said></named>");
  std::string const kept = Constructs::ReadRoot(document)->ToXml();
  EXPECT_NE(kept.find(">a&#xD;b<"), kept.npos) << kept;
  std::string const classic = Constructs::ReadRoot(document, Under(ValueRules_Classic))->ToXml();
  EXPECT_NE(classic.find(">ab<"), classic.npos) << classic;
}

TEST(ValueRules, ClassesByHandFollowTheContext) {
  struct Row {
    ItemType kind;
    char const* text;
    char const* classic;
    char const* schema;
  };
  Row const rows[] = {
      {ItemType_integer, "12-3", "<v>3</v>", "The value [12-3] is not a valid integer"},
      {ItemType_boolean, "TRUE", "<v>true</v>", "The value [TRUE] is not a valid boolean"},
      {ItemType_r8, "8.72", "<v>8.720000000000001</v>", "<v>8.72</v>"},
      {ItemType_base64Binary, "TQ==", "<v>TQ=</v>", "<v>TQ==</v>"},
      {ItemType_duration, "PT0S", "<v>P</v>", "<v>PT0S</v>"},
      {ItemType_date, "12026-01-02", "", "<v>12026-01-02</v>"},
      {ItemType_i4, " 7 ", "", "<v>7</v>"},
  };
  for (Row const& row : rows) {
    std::string const classic = ReadAndWritten(row.kind, row.text, Under(ValueRules_Classic));
    EXPECT_NE(classic.find(row.classic), classic.npos) << classic;
    std::string const schema = ReadAndWritten(row.kind, row.text, Under(ValueRules_XmlSchema));
    EXPECT_NE(schema.find(row.schema), schema.npos) << schema;
  }
}

TEST(ValueRules, CollectionsFollowTheContext) {
  Cr8Col numbers("v", "", 0, -1, "\\d\\.\\d", -1, -1, "", "5", "", "", -1, CWhitespaceUtils::WhitespaceRule_Collapse,
                 nullptr);
  numbers.FromXml("<r><v>0x4</v></r>", Under(ValueRules_Classic));
  EXPECT_EQ(numbers.GetCount(), 1);
  for (char const* const refused : {"0x4", "6.0", "4", "4.00"}) {
    EXPECT_THROW(numbers.FromXml(("<r><v>" + std::string(refused) + "</v></r>").c_str(), Under(ValueRules_XmlSchema)),
                 CQnException)
        << refused;
  }
  numbers.FromXml("<r><v> 4.5 </v></r>", Under(ValueRules_XmlSchema));
  EXPECT_EQ(numbers.Item(1), 4.5);
}

TEST(ValueRules, NilIsANumberToo) {
  Shape const shape = ShapeOf(ItemType_string, CWhitespaceUtils::WhitespaceRule_Preserve);
  Testing::NillableClass object(shape);
  char const* const text = "<root xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:nil=' 1 '/>";
  EXPECT_THROW(object.FromXml(text, Under(ValueRules_Classic)), CQnException);
  object.FromXml(text, Under(ValueRules_XmlSchema));
  EXPECT_TRUE(object.IsNil());
}

TEST(ValueRules, GeneratedClassesAskForThoseOfXmlSchema) {
  auto const order = Constructs::CreateHolder();
  EXPECT_EQ(order->GetDefaultValueRules(), ValueRules_XmlSchema);
  CXmlSerializationContext const unset;
  EXPECT_FALSE(unset.HasValueRules());
  EXPECT_EQ(unset.GetValueRules(), ValueRules_Classic);
}

TEST(ValueRules, CollectionsAskForThoseOfTheirItems) {
  auto const article = Article::ReadArticle(XmlText("<article><item/></article>"));
  article->GetChoice().begin()->GetItem()->GetNote().FromXml("<item><note>a&#13;b</note></item>");
  EXPECT_EQ(article->ToXml(false, false), "<article><item><note>a&#xD;b</note></item></article>");
}

namespace {

/// The first cause of the failure of a read, or "" if there is none.
std::string FailureOf(std::string const& document, CXmlSerializationContext const& ctx = {}) {
  try {
    Constructs::ReadRoot(XmlText(document), ctx);
    return "";
  } catch (CQnException const& failure) {
    CQnException const* cause = &failure;
    while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
    return cause->GetMessage();
  }
}

std::string WrittenAgain(std::string const& document) {
  try {
    CXmlSerializationContext ctx;
    ctx.SetKeepPrefixes(true);
    return Constructs::ReadRoot(XmlText(document), ctx)->ToXml();
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
}

}  // namespace

TEST(ValueRules, ValuesOfUnionsAreComparedByTheirMembers) {
  auto const document = [](std::string const& two, std::string const& some) {
    return "<compared xmlns='urn:t' some='" + some + "'><two>" + two + "</two></compared>";
  };
  EXPECT_EQ(FailureOf(document("+02", " 1.50 ")), "");
  EXPECT_EQ(FailureOf(document("", "all  of it")), "");
  EXPECT_EQ(FailureOf(document("2.0", "1.5")), "The value [2.0] of [two] is not the fixed value [2]");
  EXPECT_EQ(FailureOf(document("2", "1.50")), "");
  EXPECT_EQ(FailureOf(document("2", "1")), "Invalid Value for some [1]");
  EXPECT_EQ(FailureOf(document("2", "all")), "Invalid Value for some [all]");
}

TEST(ValueRules, EmptyElementsAreCheckedAsTheirDefault) {
  EXPECT_EQ(FailureOf("<padded xmlns='urn:t'/>"), "");
  EXPECT_EQ(FailureOf("<padded xmlns='urn:t'>08</padded>"), "Invalid Value for text [8]");
  EXPECT_NE(Constructs::ReadRoot(XmlText("<padded xmlns='urn:t'/>"))->ToXml().find(">007<"), std::string::npos);
}

TEST(ValueRules, QualifiedNamesHaveTheFormOfNames) {
  auto const read = [](std::string const& name, std::string const& list) {
    return Constructs::ReadRoot(
        XmlText("<t:named xmlns:t='urn:t' all='" + list + "'><t:one>" + name + "</t:one></t:named>"));
  };
  EXPECT_NO_THROW(read(" t:a ", ""));
  EXPECT_NO_THROW(read("a.1", " a  t:b "));
  for (char const* const refused : {"", "1a", ":a", "t:", "t:a:b", "t:a b", "no:a"}) {
    EXPECT_THROW(read(refused, ""), CQnException) << refused;
  }
  EXPECT_THROW(read("a", "a 1b"), CQnException);
}

TEST(ValueRules, FacetsOfQualifiedNames) {
  struct {
    char const* content;
    char const* failure;
  } const rows[] = {
      {"><t:one>t:a</t:one>", ""},
      {"><one xmlns='urn:t'>a</one>", ""},
      {"><t:one xmlns:other='urn:o'> other:b </t:one>", ""},
      {"><t:one>t:b</t:one>", "Invalid Value for one [{urn:t}b]"},
      {"><t:one xmlns:other='urn:t'>other:b</t:one>", "Invalid Value for one [{urn:t}b]"},
      {"><t:one>a</t:one>", "Invalid Value for one [a]"},
      {"><t:short>t:a</t:short><t:short>o:b</t:short>", ""},
      {"><t:short>t:a</t:short><t:short xmlns:other='urn:o'>other:b</t:short>", "Invalid Value for text [other:b]"},
      {"><t:short>o:a</t:short>", "Invalid Value for text [{urn:o}a]"},
      {" xmlns:x='urn:o' pairs=' t:a  x:b '>", ""},
      {" pairs='t:a'>", ""},
      {" pairs='o:b t:a'>", "Invalid Value for pairs [{urn:o}b {urn:t}a]"},
      {" pairs='t:a t:b'>", "Invalid Value for pairs [{urn:t}b]"},
  };
  for (auto const& row : rows) {
    std::string const document = "<t:marked xmlns:t='urn:t' xmlns:o='urn:o'" + std::string(row.content) + "</t:marked>";
    EXPECT_EQ(FailureOf(document), row.failure) << document;
    EXPECT_EQ(FailureOf(document, Under(ValueRules_Classic)), "") << document;
    if (*row.failure != '\0') continue;
    EXPECT_EQ(FailureOf(WrittenAgain(document)), "") << document;
  }
}

TEST(ValueRules, QualifiedNamesThatAProgramSetsAreChecked) {
  auto const marked = Constructs::CreateMarked();
  auto const written = [&marked](char const* prefix) {
    try {
      CXmlSerializationContext ctx;
      ctx.GetNamespaceAliases()->Add(prefix, "urn:t");
      return marked->ToXml(true, false, EOLType_LF, ctx);
    } catch (CQnException const& failure) {
      return failure.GetFullMessage();
    }
  };
  marked->SetOne(CQName("urn:o", "b", "any"));
  EXPECT_THROW(marked->SetOne(CQName("urn:t", "b", "t")), CQnException);
  EXPECT_NE(written("t").find(">any:b<"), std::string::npos);
  auto& mark = marked->GetShort().Add();
  mark.SetValue(CQName("urn:t", "a"));
  EXPECT_NE(written("long").find("Invalid Value for text [long:a]"), std::string::npos);
  EXPECT_NE(written("s").find(">s:a<"), std::string::npos);
}

TEST(ValueRules, CollectionsCheckWhatAProgramAddsByTheRulesOfTheirClass) {
  CXmlSerializationContext const classic = Under(ValueRules_Classic);
  auto const made = Constructs::CreateNumbers();
  auto const read = Constructs::ReadNumbers(XmlText("<numbers xmlns='urn:t'><n>12</n></numbers>"), classic);
  for (auto const& object : {made, read}) {
    auto& numbers = object->GetN();
    int const count = numbers.GetCount();
    EXPECT_THROW(numbers.Add(1000), CQnException);
    EXPECT_THROW(numbers.AddFromString("07"), CQnException);
    EXPECT_EQ(numbers.GetCount(), count);
    numbers.Add(7);
    numbers.AddFromString(" 008 ");
    EXPECT_EQ(numbers.GetCount(), count + 2);
  }
  std::string const written = made->ToXml();
  EXPECT_LT(written.find(">007<"), written.find(">008<")) << written;
  Ci4Col byHand("n", "", 0, -1, "\\d{3}", -1, -1, "", "", "", "", -1, CWhitespaceUtils::WhitespaceRule_Collapse,
                nullptr);
  byHand.Add(1000);
  EXPECT_EQ(byHand.GetCount(), 1);
}
