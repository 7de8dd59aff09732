#include "quillon9/fastinfoset/writer.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "expect_failure.h"
#include "fastinfoset/octet_sink.h"
#include "fastinfoset/restricted_alphabet_packing.h"
#include "octets.h"
#include "quillon9/fastinfoset/context.h"
#include "quillon9/text/encoder.h"
#include "quillon9/xmlio/streams.h"
#include "scoped_locale.h"

namespace Quillon9 {
namespace {

using namespace Testing;

constexpr char kXsi[] = "http://www.w3.org/2001/XMLSchema-instance";

CFastInfosetContext const& Plain() {
  static CFastInfosetContext const context;
  return context;
}

CFastInfosetContext Suggested() {
  CFastInfosetContext context;
  context.SetSuggestedValues();
  return context;
}

/// Builds a document, so that a case is one chain of operations next to the resulting octets.
class Doc {
 public:
  explicit Doc(CFastInfosetContext const& context = Plain()) : m_writer(context, m_stream) {}

  Doc& Declare(FInfoDecl decl) { return m_writer.WriteStartDocument(decl), *this; }
  Doc& Comment() { return m_writer.WriteComment("x"), *this; }
  Doc& PI() { return m_writer.WritePI("<?x?>"), *this; }
  Doc& Schema() { return m_writer.WriteInlineSchema("x"), *this; }
  Doc& Alias(char const* alias, std::string const& uri) { return m_writer.AddNamespace(alias, uri), *this; }
  Doc& Default(char const* uri) { return m_writer.SetDefaultNamespace(uri), *this; }
  Doc& Start(char const* name, char const* ns = "") { return m_writer.WriteStartElement(name, ns), *this; }
  Doc& Attr(char const* name, char const* ns, std::string const& value, ItemType type = ItemType_string) {
    return m_writer.WriteAttributeString(name, ns, value, type), *this;
  }
  Doc& Type(char const* ns, char const* name) { return m_writer.WriteAttributeType(ns, name, ItemType_string), *this; }
  Doc& Nil() { return m_writer.WriteAttributeNil(), *this; }
  Doc& Text(std::string const& text, ItemType type = ItemType_string) {
    return m_writer.WriteString(text, type), *this;
  }
  Doc& Child(bool atOnce, std::string const& name, char const* ns, std::string const& text, ItemType type,
             std::uint64_t member = 0) {
    if (!atOnce) return Start(name.c_str(), ns).Text(text, type).End();
    return m_writer.WriteTextElement(name, ns, text, type, member), *this;
  }
  Doc& Mixed() { return m_writer.PreserveSpace(), *this; }
  Doc& End(int count = 1) {
    while (count-- > 0) m_writer.WriteEndElement();
    return *this;
  }
  Doc& Close() { return m_writer.Close(), *this; }
  /// Return the octets of the whole document.
  std::string Done() {
    m_writer.WriteEndDocument();
    m_writer.Close();
    return Bytes(m_stream.GetBinaryStream());
  }
  /// The same in hexadecimal digits.
  std::string Hexed() { return Hex(Done()); }

 private:
  CBinaryStream m_stream;
  CFastInfosetWriter m_writer;
};

std::string Expected(std::string const& notation) { return Hex(Octets(notation)); }

// clang-format off
TEST(FastInfosetWriter, Elements) {
  EXPECT_EQ(Doc().Declare(FInfoDecl_None).Start("a").End().Done(), Octets("E0000001 00 38F0 3C 00'a' FF"));
  EXPECT_EQ(Doc().Start("a").Start("b").End(2).Hexed(), Expected("38F0 3C 00'a' 3C 00'b' FF F0"));
  EXPECT_EQ(Doc().Start("a").Start("b").End().Start("b").End().Start("a").Start("b").End(3).Hexed(),
            Expected("38F0 3C 00'a' 3C 00'b' F0 01 F0 00 01 FF FF"));
  EXPECT_EQ(Doc().Start("a").Start("b").Text("").End().Text("").End().Hexed(),
            Expected("38F0 3C 00'a' 3C 00'b' FF F0"));
  EXPECT_EQ(Doc().Comment().PI().Start("a").Comment().Attr("n", "", "1").Schema().Start("b").PI().End().PI().Comment()
                .End().Hexed(),
            Expected("78F0 3C 00'a' 78 00'n' 40'1' F0 3C 00'b' FF F0"));
}

TEST(FastInfosetWriter, AttributesAndText) {
  EXPECT_EQ(Doc().Start("a").Attr("n", "", "").Attr("m", "", "1").End().Hexed(),
            Expected("78F0 3C 00'a' 78 00'n' FF 78 00'm' 40'1' F0 FF"));
  EXPECT_EQ(Doc().Start("a").Start("b").Attr("n", "", "1").Text("1").End().Start("b").Attr("n", "", "1").Text("1")
                .End(2).Hexed(),
            Expected("38F0 3C 00'a' 7C 00'b' 78 00'n' 40'1' F0 90'1' F0"
                     "             41       00       80      F0 A0    FF F0"));
  // Five bytes enter the table, six do not.
  EXPECT_EQ(Doc().Start("a").Attr("n", "", "12345").Attr("m", "", "123456").Text("12345").Text("123456").Text("123456")
                .Text("12345").Text("12").Text("12").End().Hexed(),
            Expected("78F0 3C 00'a' 78 00'n' 44'12345' 78 00'm' 05'123456' F0 92 02'12345' 82 03'123456' 82 03'123456'"
                     "A0 91'12' A1 FF"));
  EXPECT_EQ(Doc().Start("a").Text(std::string("x\0y", 3)).Text(std::string("\0y", 2)).Text("x").End().Hexed(),
            Expected("38F0 3C 00'a' 90'x' A0 FF"));
  EXPECT_EQ(Doc().Start("a").Text("<![CDATA[1]]>").End().Hexed(), Expected("38F0 3C 00'a' 82 0A'<![CDATA[1]]>' FF"));
}

TEST(FastInfosetWriter, TextAfterAChildIsTextOfTheChildUnlessContentIsMixed) {
  EXPECT_EQ(Doc().Start("a").Start("b").End().Text("x").Start("c").End().Text("y").End().Hexed(),
            Expected("38F0 3C 00'a' 3C 00'b' 90'x' F0 3C 00'c' 90'y' FF F0"));
  EXPECT_EQ(Doc().Start("a").Mixed().Start("b").End().Text("x").Start("c").End().Text("y").End().Hexed(),
            Expected("38F0 3C 00'a' 3C 00'b' F0 90'x' 3C 00'c' F0 90'y' FF"));
  EXPECT_EQ(Doc().Start("r").Start("a").Mixed().Start("b").Mixed().End().Text("x").End().Text("z").End().Hexed(),
            Expected("38F0 3C 00'r' 3C 00'a' 3C 00'b' F0 90'x' 90'z' FF F0"));
}

TEST(FastInfosetWriter, Namespaces) {
  EXPECT_EQ(Doc().Start("a", "u").Start("b", "u").Attr("n", "u", "1").End().Start("b", "").Attr("n", "", "1").End(2)
                .Hexed(),
            Expected("38F0 3F 01'AA' 00'u' 00'a' 7F 81 81 00'b' 7B 81 81 00'n' 40'1' F0 F0"
                     "7C 81 78 82 80 F0 FF F0"));
  EXPECT_EQ(Doc().Default("d").Alias("q", "v").Alias("p", "u").Start("a", "d").Start("b", "v").Start("b", "d").End(3)
                .Hexed(),
            Expected("38 CD 00'd' CF 00'p' 00'u' CF 00'q' 00'v' F0 3D 81 00'a' 3F 82 83 00'b' 3D 81 81 FF FF"));
  // One prefix for two namespaces; a namespace that begins with the XML namespace is not declared.
  EXPECT_EQ(Doc().Alias("p", "u").Alias("p", "v").Alias("x", std::string(CXmlWriter::XML_NAMESPACE) + "/1")
                .Start("a", "u").Attr("lang", CXmlWriter::XML_NAMESPACE, "en").Start("a", "v").End(2).Hexed(),
            Expected("78 CF 00'p' 00'u' CF 81 00'v' F0 3F 81 81 00'a' 7B 80 80 03'lang' 41'en' F0 3F 81 82 80 FF F0"));
  // A binding ends with its element, so its prefix is reused.
  EXPECT_EQ(Doc().Start("a").Start("b", "u").Start("b", "u").End(2).Start("b", "v").End(2).Hexed(),
            Expected("38F0 3C 00'a' 3F 01'AA' 00'u' 00'b' 01 FF 3F 81 00'v' 81 FF F0"));
  // The prefix of a name changes after elements with that name.
  EXPECT_EQ(Doc().Alias("p", "u").Start("a").Start("b", "u").End().Start("b", "u").End().Alias("q", "u").Start("b", "u")
                .End(2).Hexed(),
            Expected("38 CF 00'p' 00'u' F0 3C 00'a' 3F 81 81 00'b' F0 01 F0 3F 00'q' 81 81 FF F0"));
}

TEST(FastInfosetWriter, TypeAndNil) {
  std::string const xsi = "28'http://www.w3.org/2001/XMLSchema-instance'";
  EXPECT_EQ(Doc().Start("a").Nil().End().Hexed(),
            Expected("78F0 3C 00'a' 7B 01'AA' " + xsi + " 02'nil' 43'true' F0 FF"));
  EXPECT_EQ(Doc().Alias("i", kXsi).Default("d").Start("a", "d").Type("", "T").Type("d", "T").End().Hexed(),
            Expected("78 CD 00'd' CF 00'i' " + xsi + " F0 3D 81 00'a' 7B 81 82 03'type' 40'T' 00 80 F0 FF"));
  // Bound: xsi:type gets the prefix of the type's namespace. Unbound: there is no xsi:type at all.
  EXPECT_EQ(Doc().Alias("i", kXsi).Alias("p", "u").Start("a").Type("u", "T").Type("v", "T").End().Hexed(),
            Expected("78 CF 00'i' " + xsi + " CF 00'p' 00'u' F0 3C 00'a'"
                     "7B 82 81 03'type' 42'p:T' 7B 01'AA' 00'v' 00'T' 43'AA:T' F0 FF"));
}

TEST(FastInfosetWriter, Header) {
  constexpr struct { FInfoDecl decl; char const* text; } kRows[] = {
      {FInfoDecl_None, ""},
      {FInfoDecl_NoVersion, "<?xml encoding='finf'?>"},
      {FInfoDecl_NoVersion_StandaloneYes, "<?xml encoding='finf' standalone='yes'?>"},
      {FInfoDecl_NoVersion_StandaloneNo, "<?xml encoding='finf' standalone='no'?>"},
      {FInfoDecl_Version10, "<?xml version='1.0' encoding='finf'?>"},
      {FInfoDecl_Version10_StandaloneYes, "<?xml version='1.0' encoding='finf' standalone='yes'?>"},
      {FInfoDecl_Version10_StandaloneNo, "<?xml version='1.0' encoding='finf' standalone='no'?>"},
      {FInfoDecl_Version11, "<?xml version='1.1' encoding='finf'?>"},
      {FInfoDecl_Version11_StandaloneYes, "<?xml version='1.1' encoding='finf' standalone='yes'?>"},
      {FInfoDecl_Version11_StandaloneNo, "<?xml version='1.1' encoding='finf' standalone='no'?>"},
  };
  for (auto const& row : kRows) EXPECT_EQ(row.text + Octets("E0000001 00 F0"), Doc().Declare(row.decl).Done());
  for (int const decl : {-1, 10}) {
    EXPECT_FAILURE(CQnException, FormatString("Failed to write FastInfoset. Invalid declaration value [%d]", decl),
                   Doc().Declare(static_cast<FInfoDecl>(decl)));
  }
}

TEST(FastInfosetWriter, GeneratedVocabulary) {
  CFastInfosetContext context;
  context.GetVocabulary().AddElement("", "", "a");
  context.GetVocabulary().AddElement("p", "u", "b");
  context.GetVocabulary().AddAttribute("", "", "n");
  context.GetVocabulary().AddElementValue("text beyond the limit");
  context.GetVocabulary().AddElementValue("1");
  context.GetVocabulary().AddAttributeValue("2");
  auto const written = [&context](char const* alias) {
    return Doc(context).Declare(FInfoDecl_None).Alias(alias, "u").Start("a").Attr("n", "", "2").Start("b", "u")
        .Text("1").Text("3").End(2).Done();
  };
  EXPECT_EQ(written("p"), Octets("E0000001 00 78 CF 00'p' 00'u' F0 3C 00'a' 78 00'n' 40'2' F0 3F 81 81 00'b' 90'1' 90'3'"
                                 "FF F0"));
  context.SetUseGeneratedVocabulary(true);
  EXPECT_EQ(written("p"), Octets("E0000001 20 1000 1F'urn:quillon9:external-vocabulary'"
                                 "78 CF 81 81 F0 00 00 80 F0 01 A1 90'3' FF F0"));
  context.SetExternalVocabularyURI("urn:v");
  // With another prefix the name is not the one in the vocabulary.
  EXPECT_EQ(written("q"), Octets("E0000001 20 1000 04'urn:v'"
                                 "78 CF 00'q' 81 F0 00 00 80 F0 3F 82 81 81 A1 90'3' FF F0"));
  EXPECT_EQ(written("q"), written("q")) << "the context's own vocabulary does not grow";
}

TEST(FastInfosetWriter, ItemTypesChooseTheEncoding) {
  CFastInfosetContext context = Suggested();
  context.SetEncoding(ItemType_char, {2, 10});
  EXPECT_EQ(Doc(context).Start("a").Attr("n", "", "-2", ItemType_i2).Attr("m", "", "1.25", ItemType_decimal)
                .Text("-2", ItemType_i1).Text("2001-02-03", ItemType_date).Text("10", ItemType_ui8)
                .Text("1.250", ItemType_decimal).Text("true", ItemType_boolean).Text("x", ItemType_char).End().Hexed(),
            Expected("78F0 3C 00'a' 78 00'n' 70 21 FFFE 78 00'm' 60 01 1C25 F0"
                     "9C 09 FFFE 88 06 02 2001A02A03 9C 12 05 000000000000000A 98 02 00 1C250F 9C 14 38 9C 24'x' FF"));
  // A value is one entry by its text, however it was encoded at first.
  EXPECT_EQ(Doc(context).Start("a").Text("01", ItemType_i4).Text("01").End().Hexed(),
            Expected("38F0 3C 00'a' 9C 0E 01 00000001 A0 FF"));
}
// clang-format on

TEST(FastInfosetWriter, RefusesValuesThatTheirEncodingDoesNotFit) {
  auto const with = [](unsigned long kind, unsigned long index) {
    CFastInfosetContext context = Suggested();
    context.SetEncoding(ItemType_string, {kind, index});
    return context;
  };
  CFastInfosetContext utf16;
  utf16.SetDefaultStringEncoding(1);
  constexpr auto kUtf16 = "Unsupported Feature UTF16BE in EncodedCharacterStringBit5.";
  constexpr auto kNotFound = "Invalid character not found for Restricted Alphabet.";
  struct {
    CFastInfosetContext context;
    ItemType type;
    char const* value;
    std::string attribute;
    std::string text;
  } const rows[] = {
      {utf16, ItemType_string, "x", kUtf16, kUtf16},
      {with(1, 0), ItemType_string, "x", "Invalid Restricted Alphabet value [0]", ""},
      {with(1, 3), ItemType_string, "x", "Invalid Restricted Alphabet value [3]", ""},
      {with(2, 0), ItemType_string, "x", "Invalid Encoding Algorithm value [0]", ""},
      {with(2, 11), ItemType_string, "x", "Invalid Encoding Algorithm value [11]", ""},
      {with(3, 1), ItemType_string, "x", "Unknown encoding in EncodedCharacterStringBit5.",
       "Unknown encoding in EncodedCharacterStringBit7."},
      {with(2, 2), ItemType_string, "?", "An octet string may not be empty.", ""},
      {Suggested(), ItemType_duration, "P1Y", kNotFound, ""},
      {Suggested(), ItemType_datetime, "2001-01-01T00:00:00.5", kNotFound, ""},
      {Suggested(), ItemType_decimal, "1E5", kNotFound, ""},
  };
  for (auto const& row : rows) {
    std::string const head = "Failed to write FastInfoset. ";
    EXPECT_FAILURE(CQnException, head + row.attribute, Doc(row.context).Start("a").Attr("n", "", row.value, row.type));
    EXPECT_FAILURE(CQnException, head + (row.text.empty() ? row.attribute : row.text),
                   Doc(row.context).Start("a").Text(row.value, row.type));
  }
  EXPECT_FAILURE(CQnInvalidValueException, "The value [9223372036854775808] is to large to fit in a i8",
                 Doc(Suggested()).Start("a").Text("9223372036854775808", ItemType_ui8));
  EXPECT_FAILURE(CQnException, "The item type [29] is out of range",
                 Doc().Start("a").Text("x", static_cast<ItemType>(29)));
}

TEST(FastInfosetWriter, RefusesWhatIsOutOfOrder) {
  constexpr char kLate[] = "Attributes must be added before elements";
  constexpr char kNotClosed[] = "An Element has not been closed.";
  constexpr char kEmpty[] = "Failed to write FastInfoset. An octet string may not be empty.";
  Doc doc;
  EXPECT_FAILURE(CQnException, kLate, doc.Attr("n", "", "1"));
  EXPECT_FAILURE(CQnException, "There is no open element to end", doc.End());
  EXPECT_FAILURE(CQnException, "Failed to write FastInfoset. There is no open element for the text.", doc.Text("x"));
  doc.Start("a");
  EXPECT_FAILURE(CQnException, kNotClosed, doc.Close());
  doc.Start("b").Text("");
  EXPECT_FAILURE(CQnException, kLate, doc.Attr("n", "", "1"));
  doc.End();
  EXPECT_FAILURE(CQnException, kLate, doc.Type("u", "T"));
  EXPECT_FAILURE(CQnException, kLate, doc.Nil());
  EXPECT_FAILURE(CQnException, kNotClosed, doc.Close());
  EXPECT_EQ(doc.End().Hexed(), Expected("38F0 3C 00'a' 3C 00'b' FF F0"));

  EXPECT_FAILURE(CQnException, kEmpty, Doc().Start("").End());
  EXPECT_FAILURE(CQnException, kEmpty, Doc().Start("a").Attr("", "", "1"));
  EXPECT_FAILURE(CQnException, kEmpty, Doc().Alias("", "u").Start("a").End());
  // The element has already been written without attributes.
  EXPECT_FAILURE(CQnException, kLate, Doc().Start("a").PI().Attr("n", "", "1"));
}

// An element written at once equals one written in three operations.
TEST(FastInfosetWriter, TextElementsAtOnce) {
  auto const write = [](bool atOnce, char const* defaultNamespace, char const* parent) {
    CFastInfosetContext const context = Suggested();
    Doc doc(context);
    doc.Default(defaultNamespace).Start("a", parent);
    for (char const* const ns : {"u", "", "v", "u"}) {
      doc.Child(atOnce, "b", ns, "", ItemType_string);
      doc.Child(atOnce, "b", ns, std::string("text\0x", 6), ItemType_string);
      doc.Child(atOnce, "c", ns, "2001-02-03", ItemType_date);
    }
    return doc.End().Hexed();
  };
  for (char const* const defaultNamespace : {"", "u", "v"}) {
    for (char const* const parent : {"", "u"}) {
      EXPECT_EQ(write(false, defaultNamespace, parent), write(true, defaultNamespace, parent));
    }
  }
}

// This also holds when the bindings change between two elements of a member.
TEST(FastInfosetWriter, TextElementsCallTheOverridesOfADerivedClass) {
  struct Marking : CFastInfosetWriter {
    using CFastInfosetWriter::CFastInfosetWriter;
    void WriteString(std::string const& value, ItemType type) override {
      CFastInfosetWriter::WriteString(value + '2', type);
    }
  };
  CBinaryStream stream;
  Marking writer(Plain(), stream);
  writer.WriteStartDocument(FInfoDecl_None);
  writer.WriteStartElement("a", "");
  static_cast<CXmlWriter&>(writer).WriteTextElement("b", "", "x", ItemType_string, 1);
  writer.WriteTextElement("b", "", "x", ItemType_string, 1);
  writer.WriteEndElement();
  writer.WriteEndDocument();
  Doc expected;
  expected.Declare(FInfoDecl_None).Start("a");
  for (int i = 0; i < 2; ++i) expected.Start("b").Text("x2").End();
  EXPECT_EQ(expected.End().Done(), Bytes(stream.GetBinaryStream()));
}

TEST(FastInfosetWriter, MembersAreNumberedAnewInEachScope) {
  auto const write = [](bool atOnce) {
    Doc doc;
    auto const children = [&](std::string const& text) {
      doc.Child(atOnce, "b", "u", text, ItemType_string, 1);
      doc.Child(atOnce, "b", "v", text, ItemType_string, 129);  // these share a place in the cache of names
      doc.Child(atOnce, "b", "", text, ItemType_string, 2);
    };
    doc.Alias("p", "u").Start("a", "u");
    for (int i = 0; i < 3; ++i) children("long enough to stand by itself");
    children(std::string("long enough with a \0", 21));
    children(std::string(2, '\0'));
    doc.Start("a", "u").Default("u");
    for (int i = 0; i < 2; ++i) children("1");
    doc.Start("a", "u").Default("").Attr("x", "v", "1");
    for (int i = 0; i < 2; ++i) children("2");
    doc.Alias("q", "u");
    for (int i = 0; i < 2; ++i) children("3");
    doc.Alias("r", "v").Start("a", "u");
    children("4");
    doc.End(2).Start("a", "u");
    children("5");
    return doc.End(3).Hexed();
  };
  EXPECT_EQ(write(false), write(true));
}

// A failure leaves the element open, started or written, like an element written in three operations.
TEST(FastInfosetWriter, TextElementsAtOnceFailAsInSteps) {
  struct Case {
    char const* name;
    char const* text;
    char const* failure;
    char const* thenAnAttribute;
  } const cases[] = {{"b", "no date", "Invalid character not found for Restricted Alphabet.",
                      "Attributes must be added before elements"},
                     {"", "2001-02-03", "An octet string may not be empty.",
                      "Failed to write FastInfoset. An octet string may not be empty."}};
  for (Case const& each : cases) {
    for (bool const atOnce : {false, true}) {
      CFastInfosetContext const context = Suggested();
      Doc doc(context);
      doc.Start("a");
      EXPECT_FAILURE(CQnException, std::string("Failed to write FastInfoset. ") + each.failure,
                     doc.Child(atOnce, each.name, "", each.text, ItemType_date));
      EXPECT_FAILURE(CQnException, each.thenAnAttribute, doc.Attr("n", "", "1"));
      EXPECT_FAILURE(CQnException, "An Element has not been closed.", doc.Close());
    }
  }
}

TEST(FastInfosetWriter, WhatWasWrittenReachesTheStream) {
  CBinaryStream stream;
  {
    CFastInfosetWriter writer(Plain(), stream);
    writer.WriteStartElement("a", "");
    writer.WriteString(std::string(5000, 'x'), ItemType_string);
    EXPECT_EQ(5010U, stream.GetBinaryStream().GetLength());
    writer.WriteString("y", ItemType_string);
    writer.WriteStartElement("b", "");
  }
  EXPECT_EQ(5012U, stream.GetBinaryStream().GetLength());
}

TEST(FastInfosetWriter, TextIsConvertedFromTheLocalCodePage) {
  Testing::ScopedLocale const locale("de_DE.ISO-8859-1");
  if (!locale.IsThere()) GTEST_SKIP() << "no locale de_DE.ISO-8859-1";
  std::string const latin = Doc().Start("\xE4").Text("\xE4\xE4\xE4\xE4\xE4").Text("\xE4\xE4\xE4\xE4\xE4").End().Hexed();
  // Five bytes here, ten octets there: the five count.
  EXPECT_EQ(latin, Expected("38F0 3C 01C3A4 92 07C3A4C3A4C3A4C3A4C3A4 A0 FF"));
  ASCIIOnly(true);
  std::string const ascii = Doc().Start("\xE4").Text("\xFF").End().Hexed();
  ASCIIOnly(false);
  EXPECT_EQ(ascii, Expected("38F0 3C 00E4 90FF FF"));
}

// Names and values of other documents must not come back, whether those have ended or not.
TEST(FastInfosetWriter, TablesOfAnEarlierWriterAreForgotten) {
  CFastInfosetContext const context;
  auto const write = [&](int first) {
    Doc doc(context);
    doc.Start("root");
    for (int i = first; i < first + 40; ++i) {
      std::string const number = std::to_string(i);
      doc.Start(("a-name-that-is-long-" + number).c_str()).Text(number).End();
      doc.Start(("n" + number).c_str()).Text(number).End();
    }
    return doc.End().Done();
  };
  std::string expected;
  std::thread([&] { expected = write(20); }).join();
  write(0);
  Doc open(context);
  open.Start("n20").Text("20");
  EXPECT_EQ(Hex(expected), Hex(write(20)));
  EXPECT_EQ(Hex(expected), Hex(write(20)));
  open.End();
}

TEST(FastInfosetWriter, AFullTableIsReferredToAndTakesNoMore) {
  CFastInfosetContext context;
  context.SetElementMaxAddLength(8);
  Doc doc(context);
  doc.Start("a");
  constexpr int kFull = 1 << 20;
  for (int value = 0; value <= kFull; ++value) doc.Text(std::to_string(value));
  doc.Text(std::to_string(kFull - 1)).Text(std::to_string(kFull)).Text("1040").End();
  std::string const octets = doc.Done();
  std::string const end = Octets("92 04'1048576' B8 0BFBEF 92 04'1048576' B40000 FF");
  EXPECT_EQ(Hex(end), Hex(octets.substr(octets.size() - end.size())));
}

struct FormRow {
  unsigned long value;
  char const* octets;
};

template <class Write>
void ExpectForms(Write write, std::vector<FormRow> const& rows) {
  for (FormRow const& row : rows) {
    CBinaryStream stream;
    COctetSink sink(stream);
    write(sink, row.value);
    sink.Flush();
    std::string const expected = Octets(row.octets);
    EXPECT_EQ(Hex(expected), Hex(Bytes(stream.GetBinaryStream()).substr(0, expected.size()))) << row.value;
  }
}

// clang-format off
TEST(OctetSink, Integers) {
  ExpectForms([](COctetSink& sink, unsigned long value) { sink.Integer0To2pw20Bit2(0x80, value); },
              {{0, "FF"}, {1, "80"}, {64, "BF"}, {65, "C000"}, {320, "C0FF"}, {321, "C100"}, {8256, "DFFF"},
               {8257, "E00000"}, {73793, "E10000"}, {1048576, "EFDFBF"}});
  ExpectForms([](COctetSink& sink, unsigned long value) { sink.Integer1To2pw20Bit3(0x40, value); },
              {{1, "40"}, {32, "5F"}, {33, "6000"}, {2080, "67FF"}, {2081, "680000"}, {526368, "6FFFFF"},
               {526369, "70000001"}, {1048576, "7007F7E0"}});
  ExpectForms([](COctetSink& sink, unsigned long value) { sink.Integer1To2pw20Bit4(0xA0, value); },
              {{1, "A0"}, {16, "AF"}, {17, "B000"}, {1040, "B3FF"}, {1041, "B40000"}, {263184, "B7FFFF"},
               {263185, "B8000000"}, {1048576, "B80BFBEF"}});
}

TEST(OctetSink, OctetStrings) {
  auto const x = [](unsigned long length) { return std::string(length, 'x'); };
  ExpectForms([&x](COctetSink& sink, unsigned long length) { sink.NonEmptyOctetStringBit2(0x80, x(length)); },
              {{1, "80'x'"}, {64, "BF'x'"}, {65, "C000'x'"}, {320, "C0FF'x'"}, {321, "E000000000'x'"},
               {66000, "E0000100 8F'x'"}});
  ExpectForms([&x](COctetSink& sink, unsigned long length) { sink.NonEmptyOctetStringBit5(0xF0, x(length)); },
              {{1, "F0'x'"}, {8, "F7'x'"}, {9, "F800'x'"}, {264, "F8FF'x'"}, {265, "FC00000000'x'"},
               {521, "FC00000100'x'"}});
  ExpectForms([&x](COctetSink& sink, unsigned long length) { sink.NonEmptyOctetStringBit7(0x9C, x(length)); },
              {{1, "9C'x'"}, {2, "9D'x'"}, {3, "9E00'x'"}, {258, "9EFF'x'"}, {259, "9F00000000'x'"},
               {515, "9F00000100'x'"}});
}
// clang-format on

TEST(RestrictedAlphabet, OnlyHalvesAndWholeOctetsAreWritten) {
  auto const packed = [](std::size_t characters, std::string const& text) {
    std::string alphabet;
    for (std::size_t i = 0; i < characters; ++i) alphabet += static_cast<char>(i + 1);
    std::string octets;
    AppendRestrictedAlphabetString(octets, text, alphabet);
    return Hex(octets);
  };
  EXPECT_EQ("", packed(15, ""));
  EXPECT_EQ("12EF", packed(15, "\2\3\x0F"));
  EXPECT_EQ("7106", packed(8, "\x08\2\1\x07"));
  EXPECT_EQ("00FE", packed(255, "\1\xFF"));
  EXPECT_EQ("7F", packed(128, "\x80"));
  constexpr char kWidth[] = "Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.";
  for (std::size_t const characters : {2U, 3U, 4U, 7U, 16U, 127U, 256U}) {
    EXPECT_FAILURE(CQnException, kWidth, packed(characters, "\1"));
  }
  constexpr char kLength[] =
      "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between 2 and 2^20 characters.";
  EXPECT_FAILURE(CQnException, kLength, packed(1, "\1"));
  EXPECT_FAILURE(CQnException, kLength, packed((1 << 20) + 1, "\1"));
}

}  // namespace
}  // namespace Quillon9
