#include <gtest/gtest.h>

#include <string>

#include "constructs.h"
#include "quillon9/quillon9.h"
#include "support/document_comparison.h"

/// Constructs of XML Schema, each with documents that are valid and documents that are not.
namespace Quillon9 {
namespace {

std::string WithNamespaces(std::string document) {
  return document.insert(document.find_first_of(" />", 1),
                         " xmlns='urn:t' xmlns:o='urn:o' xmlns:x='urn:x' xmlns:xlink='http://www.w3.org/1999/xlink'"
                         " xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'");
}

std::string Written(std::string const& document) {
  return Constructs::ReadRoot(XmlText(WithNamespaces(document)))->ToXml();
}

TEST(Constructs, ValidDocumentsComeBack) {
  char const* const documents[] = {
      "<r1/>",
      "<r1><a/><b/><a/><a/><b/></r1>",
      "<r2><a>1</a><b>2</b><b>3</b><a>4</a></r2>",
      "<r2/>",
      "<r3><a>1</a><a>2</a><b>3</b></r3>",
      "<r3><a>1</a><a>2</a><a>2</a><c>3</c><a>1</a><a>2</a><b>3</b></r3>",
      "<r4/>",
      "<r4><a>1</a><a>2</a></r4>",
      "<r4><a>1</a><a>2</a><a>3</a></r4>",
      "<r4><a>1</a><a>2</a><a>3</a><a>4</a></r4>",
      "<r4><a>1</a><a>2</a><a>3</a><a>4</a><a>5</a></r4>",
      "<r4><a>1</a><a>2</a><a>3</a><a>4</a><a>5</a><a>6</a><a>7</a></r4>",
      "<r5/>",
      "<r5><a>1</a></r5>",
      "<r5><a>1</a><a>2</a><a>3</a><a>4</a></r5>",
      "<r6><z>1</z></r6>",
      "<r6><a>1</a><a>1</a><a>1</a><z>1</z></r6>",
      "<r7><a>1</a><b>1</b></r7>",
      "<r7><b>1</b><a>1</a><a>1</a><b>1</b></r7>",
      "<r7><a>1</a><a>1</a><a>1</a></r7>",
      "<r7><a>1</a><a>1</a><a>1</a><a>1</a><a>1</a><a>1</a></r7>",
      "<any1>text<a xmlns=''>x</a>more<x:b k='1'/></any1>",
      "<any2 k='1' m='2'>text<a xmlns=''>x</a>more<x:b k='1'/></any2>",
      "<any2/>",
      "<any3><a>1</a></any3>",
      "<any4><a>1<x:b/>2</a><a/><b xsi:type='Base'><a>1</a></b></any4>",
      "<narrow q='1'><a>1</a><a>1</a></narrow>",
      "<base/>",
      "<base xsi:type='Wide'><c>1</c></base>",
      "<base xsi:type='Narrow' q='1'><a>1</a></base>",
      "<noExtension xsi:type='Narrow' q='1'><a>1</a></noExtension>",
      "<noExtension xsi:type='Base'><a>1</a></noExtension>",
      "<noDerivation xsi:type='Base'/>",
      "<closed xsi:type='ClosedWide'><a>1</a><b>1</b></closed>",
      "<holder><one xsi:type='Wide'><c>1</c></one></holder>",
      "<holder><many/><many xsi:type='ClosedWide'><b>1</b></many></holder>",
      "<heads><plain>1</plain><defaulted>x</defaulted><fixedOne>f</fixedOne><o:far>1</o:far></heads>",
      "<heads><blockedRes q='1'><a>1</a></blockedRes><blockingExt/></heads>",
      "<allHeads><blockedRes q='1'><a>1</a></blockedRes><o:far>1</o:far></allHeads>",
      "<w1><x:q><r/></x:q><o:far>f</o:far><a>1</a></w1>",
      "<w1><a>1</a></w1>",
      "<w2><a xmlns=''/><b xmlns=''/><a>1</a><x:x/></w2>",
      "<w3><a>1</a><narrow q='1'><a>1</a></narrow><base/></w3>",
      "<w4 x:k='1' o:attr='5'><a>1</a><x:b/><a>2</a></w4>",
      "<w5 k='1' o:attr='1'><base/><q xmlns=''/><x:y/></w5>",
      "<allMore p='1' q='2' r='3'><y>1</y><x>2</x></allMore>",
      "<allMore><x>2</x></allMore>",
      "<allOptional/>",
      "<nils><l>1 2</l><l xsi:nil='true'/><l/><v xsi:nil='1'/><v>1</v><o xsi:nil='true' p='1'/><o/></nils>",
      "<links xml:lang='de' xlink:href='#a' o:attr='1'/>",
      "<redefined mark='1' "
      "mark2='2'><person><name>n</name><age>1</age></person><first>1</first><second>2</second><third>3</"
      "third><code>abc</code></redefined>",
      "<sizes size='2'><s>1</s><s>2</s></sizes>",
      "<fixedOne>f</fixedOne>",
  };
  for (char const* document : documents) {
    try {
      std::string const original = WithNamespaces(document);
      EXPECT_EQ(DifferenceBetween(XmlText(original), XmlText(Written(document))), "") << document;
    } catch (CQnException const& failure) {
      ADD_FAILURE() << document << failure.GetFullMessage();
    }
  }
}

TEST(Constructs, OtherDocumentsAreRefused) {
  char const* const documents[] = {
      "<r1><b/></r1>",
      "<r1><a/><b/><b/></r1>",
      "<r2><c/></r2>",
      "<r3><a>1</a><b>3</b></r3>",
      "<r3><a>1</a><a>1</a><a>1</a><a>1</a><b>3</b></r3>",
      "<r3><a>1</a><a>1</a></r3>",
      "<r3/>",
      "<r4><a>1</a></r4>",
      "<r5><a>1</a><a>2</a><a>3</a><a>4</a><a>5</a></r5>",
      "<r6><a>1</a><a>1</a><a>1</a><a>1</a><z>1</z></r6>",
      "<r7><a>1</a><a>1</a><a>1</a><a>1</a><a>1</a><a>1</a><a>1</a></r7>",
      "<r7><b>1</b></r7>",
      "<r7><a>1</a></r7>",
      "<any2 k='x'/>",
      "<any3><b>1</b></any3>",
      "<any3 k='1'><a>1</a></any3>",
      "<any4/>",
      "<narrow q='1'/>",
      "<narrow q='1'><a>1</a><a>1</a><a>1</a></narrow>",
      "<narrow q='1'><a>1</a><b>1</b></narrow>",
      "<narrow><a>1</a></narrow>",
      "<narrow p='1' q='1'><a>1</a></narrow>",
      "<noExtension xsi:type='Wide'><c>1</c></noExtension>",
      "<noDerivation xsi:type='Narrow' q='1'><a>1</a></noDerivation>",
      "<noDerivation xsi:type='Wide'><c>1</c></noDerivation>",
      "<closed xsi:type='ClosedNarrow'/>",
      "<holder><one xsi:type='Narrow' q='1'><a>1</a></one></holder>",
      "<holder><many xsi:type='ClosedNarrow'/></holder>",
      "<heads><fixedOne>g</fixedOne></heads>",
      "<heads><head>g</head></heads>",
      "<heads><blocked><c>1</c></blocked></heads>",
      "<heads><blockedExt><c>1</c></blockedExt></heads>",
      "<allHeads/>",
      "<w1><z/><a>1</a></w1>",
      "<w1><q xmlns=''/><a>1</a></w1>",
      "<w2><a xmlns=''/><b xmlns=''/><c xmlns=''/><a>1</a></w2>",
      "<w2><a>1</a></w2>",
      "<w2><x:a/><a>1</a></w2>",
      "<w2><b xmlns=''/><a>1</a><y:x xmlns:y='urn:y'/></w2>",
      "<w3><a>1</a><x:a/></w3>",
      "<w4 k='1'><a>1</a></w4>",
      "<w5><base/></w5>",
      "<w5 x:k='1'><x:y/></w5>",
      "<allMore><y>2</y></allMore>",
      "<allOptional><y>1</y></allOptional>",
      "<nils><l xsi:nil='true'>1</l></nils>",
      "<links xml:lang='de'/>",
      "<links xlink:href='#a' o:attr='x'/>",
      "<links xlink:href='#a' attr='1'/>",
      ("<redefined><person><name>n</name></person><first>1</first><second>2</second><third>3</third><code>abc</code></"
       "redefined>"),
      "<fixedOne>g</fixedOne>",
      "<nils><o xsi:nil='true'><a>1</a></o></nils>",
      "<nils><o xsi:nil='true'>z</o></nils>",
  };
  for (char const* document : documents) EXPECT_THROW(Written(document), CQnException) << document;
}

TEST(Constructs, EmptyElementsHaveTheirDefaultAndFixedValues) {
  auto const heads = Constructs::ReadHeads(XmlText(WithNamespaces("<heads><defaulted/><fixedOne/><plain/></heads>")));
  std::string values;
  for (auto& head : heads->GetHead()) values += head.GetValue() + ';';
  EXPECT_EQ(values, "d;f;;");
  EXPECT_EQ(Constructs::CreateFixedOne()->GetValue(), "f");
  EXPECT_EQ(Constructs::ReadDefaulted(XmlText(WithNamespaces("<defaulted/>")))->GetValue(), "d");
  CXmlSerializationContext lenient;
  lenient.SetChecksFixedValuesOnReading(false);
  EXPECT_EQ(Constructs::ReadFixedOne(XmlText(WithNamespaces("<fixedOne>g</fixedOne>")), lenient)->GetValue(), "g");
  EXPECT_THROW(Constructs::CreateFixedOne()->SetValue("g"), CQnInvalidValueException);
}

TEST(Constructs, BlockedTypesAndContentOfNilElementsAreNamed) {
  struct Row {
    char const* document;
    char const* failure;
  };
  Row const rows[] = {
      {"<closed xsi:type='ClosedNarrow'/>", "The type [ClosedNarrow] of the element [closed] is blocked"},
      {"<nils><v xsi:nil='true'>1</v></nils>", "The element [v] is nil, but not empty"},
      {"<nils><v xsi:nil='yes'/></nils>", "Unexpected Value for Attribute [nil] found."},
  };
  for (Row const& row : rows) {
    try {
      Written(row.document);
      ADD_FAILURE() << row.document;
    } catch (CQnException const& failure) {
      EXPECT_NE(failure.GetFullMessage().find(row.failure), std::string::npos) << failure.GetFullMessage();
    }
  }
  auto const holder = Constructs::CreateHolder();
  EXPECT_THROW(holder->SetOne(Constructs::CNarrow::CreateInstance()), CQnInvalidParamException);
  EXPECT_THROW(holder->GetMany().Add(Constructs::CClosedNarrow::CreateInstance()), CQnInvalidParamException);
  holder->GetMany().Add(Constructs::CClosedWide::CreateInstance());
}

TEST(Constructs, EnumeratedNumbersAreChecked) {
  CXmlSerializationContext checking;
  checking.SetChecksFacetsOnReading(true);
  auto const read = [&](std::string const& text) {
    return Constructs::ReadSizes(XmlText(WithNamespaces(text)), checking)->ToXml();
  };
  read("<sizes size='2'><s>1</s></sizes>");
  EXPECT_THROW(read("<sizes size='3'/>"), CQnException);
  EXPECT_THROW(read("<sizes><s>3</s></sizes>"), CQnException);
  EXPECT_THROW(Constructs::CreateSizes()->SetSize(3), CQnException);
}

}  // namespace
}  // namespace Quillon9
