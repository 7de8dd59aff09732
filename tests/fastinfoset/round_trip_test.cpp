// Tests that documents written as Fast Infoset are read back unchanged.

#include <gtest/gtest.h>

#include <deque>
#include <fstream>
#include <iterator>
#include <string>

#include "dump.h"
#include "dynamic_class.h"
#include "expect_failure.h"
#include "octets.h"

namespace Quillon9 {
namespace {

using namespace Testing;

// ---- Objects

struct Value {
  ItemType type;
  char const* text;
};
constexpr Value kValues[] = {
    {ItemType_hexBinary, "00FF10"},
    {ItemType_base64Binary, "AAECAw=="},
    {ItemType_i1, "-128"},
    {ItemType_i2, "-32768"},
    {ItemType_i4, "-2147483648"},
    {ItemType_i8, "-9223372036854775808"},
    {ItemType_ui1, "255"},
    {ItemType_ui2, "65535"},
    {ItemType_ui4, "4294967295"},
    {ItemType_ui8, "9223372036854775807"},
    {ItemType_r8, "-2.5e-300"},
    {ItemType_yearMonth, "2001-02"},
    {ItemType_monthDay, "--02-03"},
    {ItemType_year, "2001"},
    {ItemType_month, "--02"},
    {ItemType_day, "---03"},
    {ItemType_date, "2001-02-03"},
    {ItemType_datetime, "2001-02-03T04:05:06Z"},
    {ItemType_time, "04:05:06"},
    {ItemType_string, "<text> & more of it, with an \xC3\xA4"},
    {ItemType_string, ""},
    {ItemType_boolean, "true"},
    {ItemType_decimal, "-12.5"},
    {ItemType_integer, "123456789012345678901234567890"},
    // These do not survive the suggested encodings.
    {ItemType_r4, "1.5"},
    {ItemType_duration, "P1Y2M"},
    {ItemType_ui8, "18446744073709551615"},
};
constexpr int kCount = static_cast<int>(std::size(kValues));
constexpr int kSuggestedCount = kCount - 3;

/// A class that has an element and an attribute for each of the first \p count values.
class AllKinds {
 public:
  explicit AllKinds(int count) : m_shape({}, {}), m_count(count) {
    delete[] m_shape.m_elements;
    delete[] m_shape.m_attributes;
    m_shape.m_elements = new Quillon9Data::CElementInfo* [static_cast<std::size_t>(count) + 1] {};
    m_shape.m_attributes = new Quillon9Data::CAttributeInfo* [static_cast<std::size_t>(count) + 1] {};
    for (int i = 0; i < count; ++i) {
      std::string const& name = m_names.emplace_back("v" + std::to_string(i));
      m_shape.m_elements[i] = Prim<Quillon9Data::CElementInfoSeqPrimMnd>(name.c_str(), i, kValues[i].type);
      m_shape.m_attributes[i] = Attribute(name.c_str(), i + count, true, kValues[i].type);
    }
  }
  void Fill(DynamicClass& object) const {
    constexpr auto kRule = CWhitespaceUtils::WhitespaceRule_None;
    for (int i = 0; i < 2 * m_count; ++i) {
      object.m_properties[i].FromString(kValues[i % m_count].text, kValues[i % m_count].type, kRule);
    }
  }
  Shape const& GetShape() const { return m_shape; }

 private:
  std::deque<std::string> m_names;
  Shape m_shape;
  int m_count;
};

class RoundTrip : public testing::Test {
 protected:
  RoundTrip() { ASCIIOnly(true); }
  ~RoundTrip() override { ASCIIOnly(false); }

  /// Check every kind of value with every declaration and compression.
  static void ExpectSame(int count, CXmlSerializationContext const& ctx) {
    AllKinds const kinds(count);
    DynamicClass source(kinds.GetShape());
    kinds.Fill(source);
    source.m_targetNamespace = "urn:t";
    for (int decl = FInfoDecl_None; decl <= FInfoDecl_Version11_StandaloneNo; ++decl) {
      for (auto const compression : {CompressionType_None, CompressionType_GZip, CompressionType_ZLib}) {
        DynamicClass back(kinds.GetShape());
        back.m_targetNamespace = "urn:t";
        back.FromXmlStream(source.ToFastInfosetStream(static_cast<FInfoDecl>(decl), ctx, compression), ctx);
        ASSERT_EQ(source.Text(), back.Text());
        for (auto const& property : source.m_properties) {
          ASSERT_EQ(property.second.GetItemType(), back.m_properties[property.first].GetItemType());
        }
      }
    }
  }
};

TEST_F(RoundTrip, EveryKindOfValue) {
  CXmlSerializationContext ctx;
  ExpectSame(kCount, ctx);
  ctx.GetFIContext()->SetElementMaxAddLength(1000);
  ctx.GetFIContext()->SetAttributeMaxAddLength(0);
  ctx.GetNamespaceAliases()->Add("p", "urn:p");
  ctx.GetNamespaceAliases()->Add("p", "urn:t");
  ExpectSame(kCount, ctx);
  ctx.SetDefaultNamespaceURI("urn:t");
  ExpectSame(kCount, ctx);
}

TEST_F(RoundTrip, SuggestedEncodings) {
  CXmlSerializationContext ctx;
  ctx.GetFIContext()->SetSuggestedValues();
  ExpectSame(kSuggestedCount, ctx);

  // The other three: a float, decoded from its first octet, and two refusals.
  Shape const shape({}, {Prim<Quillon9Data::CElementInfoSeqPrimOpt>("v", 0, ItemType_r4),
                         Prim<Quillon9Data::CElementInfoSeqPrimOpt>("w", 1, ItemType_ui8)});
  DynamicClass object(shape);
  object.m_properties[0].SetR4(1.5F);
  object.FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, ctx));
  EXPECT_EQ("<root><v>0.7470588</v></root>", object.Text());
  object.m_properties[1].SetUI8(18446744073709551615U);
  EXPECT_FAILURE(CQnValidationException,
                 "Failed to convert the element [root] to XML\n"
                 "The value [18446744073709551615] is to large to fit in a i8",
                 object.ToFastInfosetStream(FInfoDecl_None, ctx));
}

TEST_F(RoundTrip, GeneratedVocabulary) {
  CXmlSerializationContext ctx;
  CFIVocabulary& vocabulary = ctx.GetFIContext()->GetVocabulary();
  for (int i = kCount; i-- > 0;) {
    vocabulary.AddElement(i % 2 == 0 ? "" : "p", "", "v" + std::to_string(i));
    vocabulary.AddAttribute("", "", "v" + std::to_string(i));
    vocabulary.AddElementValue(kValues[i].text);
    vocabulary.AddAttributeValue(kValues[i].text);
  }
  ctx.GetFIContext()->SetUseGeneratedVocabulary(true);
  ExpectSame(kCount, ctx);
  ctx.GetFIContext()->SetExternalVocabularyURI("urn:vocabulary");
  ExpectSame(kCount, ctx);
}

TEST_F(RoundTrip, Files) {
  AllKinds const kinds(kCount);
  DynamicClass source(kinds.GetShape());
  kinds.Fill(source);
  std::string const path = testing::TempDir() + "quillon9_round_trip.finf";
  CXmlSerializationContext const ctx;
  for (auto const compression : {CompressionType_None, CompressionType_GZip}) {
    source.ToFastInfosetFile(path.c_str(), FInfoDecl_Version10, ctx, compression);
    std::ifstream file(path, std::ios::binary);
    std::string const octets(std::istreambuf_iterator<char>(file), {});
    EXPECT_EQ(Hex(Bytes(source.ToFastInfosetStream(FInfoDecl_Version10, ctx, compression))), Hex(octets));
    DynamicClass back(kinds.GetShape());
    back.FromXmlFile(path.c_str());
    EXPECT_EQ(source.Text(), back.Text());
  }
  CElement apart("a", "urn:d");
  apart.SetDefaultNamespace("urn:d");
  EXPECT_FAILURE(CQnException, "An element with a default namespace can only be written as text",
                 apart.ToFastInfosetStream());
  EXPECT_FAILURE(CQnException, "ZLIB Compression only available for To Stream methods.",
                 source.ToFastInfosetFile(path.c_str(), FInfoDecl_None, ctx, CompressionType_ZLib));
  for (std::string const bad : {"/no/such/folder/x", "/dev/full"}) {
    EXPECT_FAILURE(CQnException, "Failed to write data to the file [" + bad + "]",
                   source.ToFastInfosetFile(bad.c_str()));
  }
}

// ---- Documents: the same calls on both writers give the same tree.

template <class Write>
void ExpectSameTree(Write write, CFastInfosetContext const& context = {}) {
  CTextStream text(XmlEncoding_UTF8);
  CXmlTextWriter textWriter(text);
  textWriter.SetFormat(false);
  textWriter.Open();
  write(textWriter);
  textWriter.Close();

  CBinaryStream binary;
  CFastInfosetWriter writer(context, binary);
  writer.Open();
  writer.WriteStartDocument(FInfoDecl_None);
  write(writer);
  writer.WriteEndDocument();
  writer.Close();

  CXmlDocument expected;
  expected.LoadXml(text.GetText());
  CXmlDocument document;
  CBinaryData const data = binary.GetBinaryStream();
  document.LoadXmlStream(data.GetData(), data.GetLength());
  EXPECT_TRUE(Dump(*expected.GetDocumentElement()) == Dump(*document.GetDocumentElement()));
}

TEST_F(RoundTrip, NamespacesAndNesting) {
  ExpectSameTree([](CXmlWriter& writer) {
    writer.AddNamespace("p", "urn:p");
    writer.AddNamespace("xsi", "http://www.w3.org/2001/XMLSchema-instance");
    writer.SetDefaultNamespace("urn:d");
    writer.WriteStartElement("a", "urn:p");
    writer.WriteAttributeString("lang", CXmlWriter::XML_NAMESPACE, "en", ItemType_string);
    writer.WriteAttributeString("n", "urn:q", "", ItemType_string);
    writer.WriteAttributeNil();
    writer.WriteAttributeType("urn:p", "T", ItemType_string);
    for (char const* const uri : {"urn:d", "urn:p", "urn:q", "urn:r", "urn:q", "urn:p"}) {
      writer.WriteStartElement("b", uri);
      writer.WriteAttributeString("n", uri, "1", ItemType_string);
      for (int depth = 0; depth < 5; ++depth) writer.WriteStartElement("c", "urn:r");
      writer.WriteString("text", ItemType_string);
      for (int depth = 0; depth < 5; ++depth) writer.WriteEndElement();
      writer.WriteStartElement("c", "urn:s");
      writer.WriteEndElement();
      writer.WriteEndElement();
    }
    writer.WriteEndElement();
  });
}

// Enough names and values for all forms of their indices except the longest one of element names, which is not read
// back.
TEST_F(RoundTrip, ManyNamesAndValues) {
  ExpectSameTree([](CXmlWriter& writer) {
    writer.WriteStartElement("a", "");
    for (int i = 0; i < 2 * 8300; ++i) {
      std::string const number = std::to_string(i % 8300);
      writer.WriteStartElement("e" + number, i % 3 == 0 ? "urn:" + std::to_string(i % 900) : "");
      writer.WriteAttributeString("n" + number, "", number, ItemType_string);
      writer.WriteString(number, ItemType_string);
      writer.WriteEndElement();
    }
    writer.WriteEndElement();
  });
}

TEST_F(RoundTrip, FullTableOfChunks) {
  constexpr int kFull = 1 << 20;
  CFastInfosetContext context;
  context.SetElementMaxAddLength(9);
  ExpectSameTree(
      [](CXmlWriter& writer) {
        writer.WriteStartElement("a", "");
        for (int i = 0; i < kFull + 2; ++i) writer.WriteString(std::to_string(i) + ' ', ItemType_string);
        for (int const index : {1, 16, 17, 1040, 1041, 263184, 263185, kFull, kFull + 1, kFull + 2}) {
          writer.WriteString(std::to_string(index - 1) + ' ', ItemType_string);
        }
        writer.WriteEndElement();
      },
      context);
}

TEST_F(RoundTrip, LengthsOfStrings) {
  ExpectSameTree([](CXmlWriter& writer) {
    writer.WriteStartElement("a", "");
    for (std::size_t const length :
         {1U, 2U, 3U, 5U, 6U, 8U, 9U, 64U, 65U, 258U, 259U, 264U, 265U, 320U, 321U, 70000U}) {
      writer.WriteStartElement(std::string(length, 'n'), "urn:" + std::string(length, 'u'));
      writer.WriteAttributeString(std::string(length, 'm'), "", std::string(length, 'v'), ItemType_string);
      writer.WriteString(std::string(length, 't'), ItemType_string);
      writer.WriteEndElement();
    }
    writer.WriteEndElement();
  });
}

}  // namespace
}  // namespace Quillon9
