#include "fastinfoset/reader.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "fastinfoset/restricted_alphabet.h"
#include "quillon9/base/limits.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/xmlio/compression.h"
#include "quillon9/xmlio/document.h"
#include "support/dump.h"
#include "support/expect_failure.h"
#include "support/octets.h"
#include "support/scoped_locale.h"
#include "xmlio/document_outline.h"
#include "xmlio/node_access.h"

namespace Quillon9 {
namespace {

namespace fs = std::filesystem;
using Testing::Bytes;
using Testing::Dump;
using Testing::Octets;

/// A document whose header has no optional components.
std::string Document(std::string const& notation) { return Octets("E0 00 00 01 00 " + notation); }

void Load(CXmlDocument& document, std::string const& octets) {
  document.LoadXmlStream(reinterpret_cast<unsigned char const*>(octets.data()), octets.size());
}

/// Return the tree of \p octets, or the text of the failure.
std::string Outcome(std::string const& octets) {
  CXmlDocument document;
  try {
    Load(document, octets);
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
  return Dump(*document.GetDocumentElement());
}

struct Row {
  std::string octets;
  std::string outcome;
};

TEST(FastInfosetReader, CommentsAndInstructionsAreKeptOnWish) {
  // A notation, then comments and instructions that repeat strings of two tables, also of a document type.
  std::string const octets = Octets(
      "E0 00 00 01 10 C0 00'n' F0 E2 40'x' C4 E1 01'pi' 40'y' F0"
      "3C 00'a' E2 80 E1 80 81 82 01'text' 3C 00'b' F0 E1 81 FF F0"
      "E2 FF F0");
  CXmlSerializationContext ctx;
  ctx.SetKeepUnknown(true);
  CXmlDocument document(ctx);
  Load(document, octets);
  std::string shown;
  auto const show = [&](CMarkup const& markup) {
    shown += std::to_string(markup.childrenInFront) + std::to_string(markup.textInFront) + markup.target + ':' +
             markup.text + ' ';
  };
  for (CMarkup const& markup : XmlNodeAccess::MarkupIn(*document.GetDocumentElement())) show(markup);
  for (CMarkup const& markup : XmlNodeAccess::MarkupIn(document)) show(markup);
  EXPECT_EQ(shown, "00:x 00n:y 14pi: 00:x 10: ");
}

TEST(FastInfosetReader, Trees) {
  Row const rows[] = {
      // Terminators.
      {"3C 00'a' F0 F0", "a"},
      {"3C 00'a' FF", "a"},
      {"3C 00'a' F0", "a"},
      {"3C 00'a' FF 3C 00'b' F0", "a"},
      {"3C 00'a' F0 F0 3C 00'b' F0", "a"},
      {"3C 00'a' 3C 00'b' 3C 00'c' FF 02 FF F0", "a (b (c)) (c)"},
      {"7C 00'a' F0 FF", "a"},
      {"7C 00'a' 78 00'x' 00'1' FF", "a @x=1"},
      {"7C 00'a' 78 00'x' 00'1' FF F0", "a @x=1"},
      {"7C 00'a' 78 00'x' 00'1' F0 F0", "a @x=1"},
      {"3C 00'a' 7C 00'b' 78 00'x' 00'1' FF 90'.' FF", "a '.' (b @x=1)"},
      // Names: literals enter their tables, and every part can be an index.
      {"3D 01'u1' 00'a' 00 F0 3D 81 00'b' F0 3D 80 81 FF",
       "{u1}a ({u1}a) ({u1}b) ({http://www.w3.org/XML/1998/namespace}b)"},
      {"3F 00'p' 00'u' 00'a' 3F 81 81 80 00 FF FF", "{u}a ({u}a ({u}a))"},
      {"7C 00'a' 7B 80 80 03'lang' 41'en' 00 80 F0 FF",
       "a @{http://www.w3.org/XML/1998/namespace}lang=en @{http://www.w3.org/XML/1998/namespace}lang=en"},
      {"38 CF 00'p' 00'u' CD 00'd' CE 00'q' CC CD 81 F0 3D 81 00'a' FF", "{u}a"},
      {"78 F0 3C 00'a' 78 00'x' 00'1' F0 38 F0 00 FF FF", "a @x=1 (a)"},
      // Values: only those with the bit set enter the table.
      {"7C 00'a' 78 00'x' 40'1' 78 00'y' 00'2' 78 00'z' 40'3' 00 80 01 81 02 FF F0 FF",
       "a @x=1 @y=2 @z=3 @x=1 @y=3 @z="},
      {"3C 00'a' 80'1' 90'2' 80'3' 91'45' A0 A1 FF", "a '12345245'"},
      {"3C 00'a' 82 00 '678' 92 00 '9AB' A0 FF", "a '6789AB9AB'"},
      {"3C 00'a' 92 01 'x' 0D 'y' 0D A0 FF", "a 'xyxy'"},
      {"3C 00'a' 82 00 'x' 00 'y' 80'z' 93 00000000'" + std::string(259, 'L') + "' FF",
       "a 'xz" + std::string(259, 'L') + "'"},
      {"7C 00'a' 78 00'x' 08 00'123456789' 78 00'y' 0C 00000000'" + std::string(265, 'L') + "' FF",
       "a @x=123456789 @y=" + std::string(265, 'L')},
      // Restricted alphabets: numeric, date and time; the low half 15 ends the text.
      {"3C 00'a' 88 01 1C D5 80'|' 88 05 20 AD FF", "a '1.e5|20-Z'"},
      {"7C 00'a' 78 00'x' 20 00 1F 78 00'y' 60 01 12 3F 00 80 FF", "a @x=1 @y=123 @x=123"},
      // Encoding algorithms: short, boolean, base64, uuid, cdata; short as attribute.
      {"3C 00'a' 8C 0A 03 0001 FFFE 01F0 FF", "a '1 -2 496'"},
      {"3C 00'a' 8C 14 38 80'|' 8C 06 00 'abc' 80'|' 8C 26 00 '<&>' FF", "a 'true|YWJj|<&>'"},
      {"3C 00'a' 9C 22 0D 000102030405060708090A0B0C0D0E0F A0 FF",
       "a '000102030405060708090A0B0C0D0E0F000102030405060708090A0B0C0D0E0F'"},
      {"7C 00'a' 78 00'x' 70 21 0102 00 80 FF", "a @x=258 @x=258"},
      // Constructs without a place in the tree, whatever octets they end on or contain.
      {"E2 00 F0 E2 FF E1 00 FF 00 F0 E1 81 FF C4 F0 C7 80 00 FF E1 00'p' 00 F0 F0 E2 00 FF 3C 00'a' F0 E2 00 FF E1 "
       "00'p' FF F0",
       "a"},
      {"3C 00'a' E2 02 FFF0 FF 80'1' E1 02 'pi ' FF C8 00 FF 80'2' CB 80 81 82 C9 02 'ent' 00 F0 80'3' FF", "a '123'"},
      {"E2 11 00 'c' E2 2F F0 FF E2 3F F0 F0 3C 00'a' FF", "a"},
      {"E3 A0 DF 3C 00'a' FF", "a"},
  };
  for (Row const& row : rows) EXPECT_EQ(Outcome(Document(row.octets)), row.outcome) << row.octets;
}

constexpr char kFailed[] = "Failed to parse FastInfoset. ";

TEST(FastInfosetReader, Failures) {
  struct FailureRow {
    char const* failure;
    std::vector<char const*> documents;
  } const rows[] = {
      {"Unexpected End of File.", {"", "E2 00'c'", "3C 00'a' F0 E2", "3C 60 FFFFFFFF 'a'", "3C 00'a' 83 FFFFFFFF 'a'"}},
      {"Invalid Document type without Element.", {"F0", "E2 00'c' FF 3C 00'a' FF"}},
      {"Invalid Document type with more than one Element.", {"3C 00'a' F0 3C 00'b' F0 F0", "3C 00'a' 3C 00'b' FF 00"}},
      {"Invalid Document type with Document Type Declaration behind Element.", {"3C 00'a' F0 C4 F0 F0"}},
      {"Invalid Encoding of Document Type Declaration type.", {"C4 E2 00'c' F0"}},
      // In content, in a list of attributes, in a list of namespace attributes.
      {"Invalid Encoding of Element type.", {"3C 00'a' C4", "3C 00'a' F1", "7C 00'a' 80", "38 CC 00"}},
      {"Invalid QName type Prefix without Namespace.", {"3E 00'p' 00'a' FF", "7C 00'a' 7A 00'p' 00'x' 00'1' FF"}},
      // For each of the tables.
      {"Invalid Index beyond its table.",
       {"00", "30 0F FFFF", "3C 80", "3D 81 00'a'", "3F 81 80 00'a'", "38 CE 81", "38 CD 81", "7C 00'a' 00",
        "7C 00'a' 78 00'x' 00'1' 00 80", "3C 00'a' 80'1' A0", "3C 00'a' 88 08 00"}},
      {"Invalid Encoding of Restricted Alphabet. Index is beyond the Alphabet.", {"3C 00'a' 88 00 F0"}},
  };
  for (FailureRow const& row : rows) {
    for (char const* octets : row.documents)
      EXPECT_EQ(Outcome(Document(octets)), kFailed + std::string(row.failure)) << octets;
  }
  EXPECT_EQ(Outcome(Document("3C 00'a' 8C 08 00")), "Invalid value for SHORT byte encoding.");
  EXPECT_EQ(Outcome(Document("3C 00'a' 8C 28 00")), "Unknown byte encoding.");
  CXmlDocument document;
  EXPECT_FAILURE(CQnUtf16Exception, "Text in UTF-16 can not be converted",
                 Load(document, Document("3C 00'a' 85 00 'a' FF")));
  EXPECT_FAILURE(CQnUtf16Exception, "Text in UTF-16 can not be converted",
                 Load(document, Document("7C 00'a' 78 00'x' 11 00 'a' FF")));
}

TEST(FastInfosetReader, RecognisesTheHeaderBehindItsDeclarations) {
  std::string const body = Octets("00 3C 00'a' FF");
  Row const rows[] = {
      {"E0 00 00 01", "a"},
      {"'<?xml encoding=\"finf\"?>' E0 00 00 01", "XML declaration not well-formed at line 1"},
      {"E0 00 00 02", "not well-formed (invalid token) at line 1"},
      {"'<?xml version=\"1.0\"?><b/>'", "b"},
  };
  for (Row const& row : rows) {
    std::string const tail = row.outcome == "b" ? "" : body;
    EXPECT_EQ(Outcome(Octets(row.octets) + tail), row.outcome) << row.octets;
  }
  EXPECT_EQ(Outcome(Octets("E0 00 00 01")), "syntax error at line 1") << "no octet after the header";
  for (char const* version : {"", " version='1.0'", " version='1.1'"}) {
    for (char const* standalone : {"", " standalone='yes'", " standalone='no'"}) {
      std::string const declaration = std::string("<?xml") + version + " encoding='finf'" + standalone + "?>";
      EXPECT_EQ(Outcome(declaration + Octets("E0 00 00 01") + body), "a") << declaration;
      EXPECT_EQ(Outcome(declaration + "<b/>"),
                *version != '\0' ? "unknown encoding at line 1" : "XML declaration not well-formed at line 1");
    }
  }
  std::string const text(515, 'x');
  std::string const plain = Document("3C 00'a' 93 00000100'" + text + "' FF");
  CBinaryData data;
  data.SetBuffer(reinterpret_cast<unsigned char const*>(plain.data()), plain.size());
  CQnZip::CompressData(data, CompressionType_GZip);
  EXPECT_EQ(Outcome(Bytes(data)), "a '" + text + "'");
}

TEST(FastInfosetReader, PassesOverTheOptionalComponents) {
  std::string const strings = "01 00'a' 40 00'" + std::string(65, 'b') + "'";  // a sequence of two
  std::string const values = "01 00 F0 3F F0 FF";
  // Each component on its own, then all of them.
  std::string const components[] = {
      "40 00 00'i' 00'd'",
      "20 10 00 03'urn:'",
      "20 00 00",
      "20 0F E0 " + strings + strings + strings + strings + strings + strings + strings,
      "20 00 1C " + values + values + values,
      "20 00 03 00 00 00 02 00 00 01 40 00 3F 03 60 FFFF 00 3F",
      "10 C0 00 FF C3 80 81 00 F0 F0",
      "08 D0 00'n' 00 F0 80 D1 81 82 00 FF 83 F0",
      "04 04'UTF-8'",
      "02 01",
      "01 02'1.0'",
      "7F 00 00'i' 00'd' 00 00 F0 F0 00'e' 00 FF",
  };
  for (std::string const& row : components) {
    EXPECT_EQ(Outcome(Octets("E0 00 00 01 " + row + " 3C 00'a' FF")), "a") << row;
  }
  EXPECT_EQ(Outcome(Octets("E0 00 00 01 10 D0")), kFailed + std::string("Invalid Encoding of Notation type."));
  EXPECT_EQ(Outcome(Octets("E0 00 00 01 08 C0")), kFailed + std::string("Invalid Encoding of Unparsed Entity type."));
  // A vocabulary in the header does not enter the tables.
  EXPECT_EQ(Outcome(Octets("E0 00 00 01 20 00 80 00 00'a' 3C 80 FF")),
            kFailed + std::string("Invalid Index beyond its table."));
}

TEST(FastInfosetReader, FillsAliasesAndShowsTheFilterNothing) {
  CXmlDocument document([](CXmlElement*) { return true; });
  Load(document, Document("38 CF 00'p' 00'u' CD 00'd' CE 00'q' F0 3C 00'a' 38 CF 81 82 CC F0 3C 00'b' FF FF"));
  EXPECT_EQ(Dump(*document.GetDocumentElement()), "a (b)");
  EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "d");
  EXPECT_EQ(document.LookupNamespaceFromAlias("q"), "");
  EXPECT_EQ(document.LookupNamespaceFromAlias(""), "");
}

TEST(FastInfosetReader, StartsWithTheVocabularyOfTheContext) {
  CXmlSerializationContext context;
  CFIVocabulary& vocabulary = context.GetFIContext()->GetVocabulary();
  vocabulary.AddElement("p", "u", "a");
  vocabulary.AddAttribute("", "", "x");
  vocabulary.AddElementValue("text");
  vocabulary.AddAttributeValue("value");
  std::string const octets = Octets("E0 00 00 01 20 10 00 00'v' 40 00 80 F0 A0 3C 00'b' FF FF");
  CXmlDocument document(context);
  EXPECT_FAILURE(CQnException, "Failed to parse FastInfoset. Invalid Index beyond its table.", Load(document, octets));
  context.GetFIContext()->SetUseGeneratedVocabulary(true);
  for (int run = 0; run < 2; ++run) {  // the second run finds the context's vocabulary unchanged
    Load(document, octets);
    EXPECT_EQ(Dump(*document.GetDocumentElement()), "{u}a @x=value 'text' (b)");
  }
  vocabulary.AddQNameToVector(0, 9, 9, vocabulary.GetElementNamesTable().GetVector());
  EXPECT_FAILURE(CQnException, "Failed to parse FastInfoset. Invalid Index beyond its table.",
                 Load(document, Document("01 FF")));
}

TEST(FastInfosetReader, KeepsToTheLimits) {
  std::uint32_t const depth = CLimits::GetMaxElementDepth();
  std::string const deep = Document("3C 00'a'") + std::string(1'000'000, '\0');
  EXPECT_EQ(Outcome(deep), "Failed to parse FastInfoset. The element nesting exceeds the limit of 1000 levels");
  CLimits::SetMaxElementDepth(1'000'001);
  EXPECT_EQ(Outcome(deep), "Failed to parse FastInfoset. Unexpected End of File.") << "nesting costs no stack";
  CLimits::SetMaxElementDepth(depth);
}

TEST(FastInfosetReader, TextFollowsTheSwitchOfTheEncoder) {
  Testing::ScopedLocale const ascii("C");
  std::string const octets = Document("7C 00'a' 78 00'x' 01 C3A4 F0 81 C3A4 91 C3A4 A0 80 00 FF");
  EXPECT_EQ(Outcome(octets), "a @x=? '\?\?\?'");
  ASCIIOnly(true);
  EXPECT_EQ(Outcome(octets), "a @x=\u00E4 '\u00E4\u00E4\u00E4'");
  ASCIIOnly(false);
}

/// Return the value that \p form reads from \p notation, or the text of the failure; all octets must be used.
std::string Number(char form, std::string const& notation) {
  std::string const octets = Octets(notation);
  COctetSource source(reinterpret_cast<std::uint8_t const*>(octets.data()), octets.size());
  try {
    std::uint32_t const octet = form == 's' ? 0 : source.Octet();
    std::uint64_t const value = form == '2'   ? source.Integer1To2pw20Bit2(octet)
                                : form == '3' ? source.Integer1To2pw20Bit3(octet)
                                : form == '4' ? source.Integer1To2pw20Bit4(octet)
                                : form == '0' ? source.Integer0To2pw20Bit2(octet)
                                : form == 'b' ? source.NonEmptyOctetStringBit2Length(octet)
                                : form == 'e' ? source.NonEmptyOctetStringBit5Length(octet)
                                : form == 'g' ? source.NonEmptyOctetStringBit7Length(octet)
                                              : source.LengthOfSequence();
    return std::to_string(value) + (source.GetLeft() == 0 ? "" : " and octets left");
  } catch (CQnException const& failure) {
    return failure.GetFullMessage().substr(sizeof kFailed - 1);
  }
}

TEST(FastInfosetReader, NumbersAtTheBordersOfTheirForms) {
  struct FormRow {
    char form;
    char const* values;  // octets=value, separated by spaces
    char const* badOctets;
    char const* failure;
  } const rows[] = {
      {'2', "80=1 BF=64 C000=65 DFFF=8256 E00000=8257 EFDFBF=1048576", "F0",
       "Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet."},
      {'3', "40=1 5F=32 6000=33 67FF=2080 680000=2081 6FFFFF=526368 70000000=526369 7007F7DF=1048576", "78",
       "Invalid Encoding of integers 1 To 2^20 type  on the third bit of an octet."},
      {'4', "A0=1 AF=16 B000=17 B3FF=1040 B40000=1041 B7FFFF=263184 B8000000=263185 B80BFBEF=1048576", "BC",
       "Invalid Encoding of integers 1 To 2^20 type  on the fourth bit of an octet."},
      {'0', "FF=0 80=1 E00000=8257", "FE",
       "Invalid Encoding of integers 0 To 2^20 type  on the second bit of an octet."},
      {'b', "3F=64 4000=65 40FF=320 6000000000=321 60FFFFFFFF=4294967616", "50",
       "Invalid NonEmptyOctetString type  on the second bit of an octet."},
      {'e', "07=8 0800=9 08FF=264 0C00000000=265", "09",
       "Invalid NonEmptyOctetString type  on the fifth bit of an octet."},
      {'g', "01=2 0200=3 02FF=258 0300000000=259", "02", "Unexpected End of File."},
      {'s', "7F=128 800000=129 8FFFFF=1048704", "8000", "Unexpected End of File."},
  };
  for (FormRow const& row : rows) {
    std::istringstream values(row.values);
    for (std::string octets, value; std::getline(values, octets, '=') && std::getline(values, value, ' ');) {
      EXPECT_EQ(Number(row.form, octets), value) << row.form << " " << octets;
    }
    EXPECT_EQ(Number(row.form, row.badOctets), row.failure);
  }
}

TEST(FastInfosetReader, RestrictedAlphabetsOfAnyWidth) {
  std::string letters;
  for (int i = 0; i < 250; ++i) letters += static_cast<char>(i + 1);
  struct AlphabetRow {
    std::size_t size;
    char const* octets;
    char const* positions;  // counted from 1
  } const rows[] = {
      {2, "10 44", "01 02 01 01 02 01 02 01"},
      {3, "1B", "01 02 03"},
      {4, "05 3F", "01 02 03 04"},
      {7, "FF", ""},
      {16, "00 FF", "01 04"},
      {31, "07 FF", "01"},
      {100, "00 06 1F", "01 02 44"},
      {250, "00 F9", "01 FA"},
  };
  for (AlphabetRow const& row : rows) {
    std::string const octets = Octets(row.octets);
    std::string text;
    AppendRestrictedAlphabetText(text, reinterpret_cast<std::uint8_t const*>(octets.data()), octets.size(),
                                 letters.substr(0, row.size));
    EXPECT_EQ(text, Octets(row.positions)) << row.size;
  }
  std::string text;
  EXPECT_FAILURE(
      CQnException,
      "Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 "
      "and 2^20 characters.",
      AppendRestrictedAlphabetText(text, nullptr, 0, "a"));
}

/// Return a document with each construct at least once. The last octet completes the element.
std::string DocumentOfAllConstructs() {
  std::string const vocabulary =
      "1F FF 00'v' 00 00'r' 00 00'e' 00 00'p' 00 00'n' 00 00'l' 00 00'o' 00 00'u'"
      " 00 00'1' 00 20 01 1200 00 30 20 00 00 03 00 00 00 00 00 00";
  std::string const header =
      "E0 00 00 01 7F 00 00'i' 00'd'" + vocabulary + " C3 00'n' 00's' 80 F0 D1 00'u' 00's' 00'p' 80 F0 00'e' 01 00'1'";
  std::string const prolog = " E2 00'c' E1 00'p' 00'c' C7 00's' 00'p' E1 80 FF F0";
  std::string const attributes =
      " 7B 81 81 00'x' 40'1' 78 40 00'" + std::string(65, 'y') + "' 60 01 123F 00 80 01 30 21 0002 F0";
  std::string const content =
      " 82 00'345' 90'6' A0 9C 0A 01 00010002 A1 88 01 1C2F E2 00'c' E1 00'p' 00'c' CB 00'e' 00's' 00'p'";
  std::string const children = " 3C 80 3C 02'bcd' FF 40 FF 82 00'end'";
  return "<?xml encoding='finf'?>" + Octets(header + prolog + " 78 CF 00'q' 00'u' CD 81 F0 3F 81 81 00'a'" +
                                            attributes + content + children + " FF");
}

/// Return the tree of \p octets, or the text of the failure, as a reader gives it that opens and closes each element.
std::string OutcomeInSteps(std::string const& octets) {
  CXmlDocument document;
  CXmlDocument steps;
  try {
    Load(document, octets);
  } catch (CQnException const&) {  // the second tree shows the failure as well
  }
  XmlNodeAccess::LendInput(steps, document);
  CXmlSerializationContext const context;
  CFastInfosetReader reader(*context.GetFIContext(), steps);
  DocumentOutline outline;
  try {
    reader.ParseWithOutline(outline);
  } catch (CQnException const& failure) {
    return failure.GetFullMessage();
  }
  return Dump(*steps.GetDocumentElement());
}

TEST(FastInfosetReader, TextElementsAtOnceAreReadAsInSteps) {
  std::string const sample = Document(
      "3C 00'a' 3C 00'b' 92 02'value' F0"             // names are spelled out, the text enters the table
      "01 A0 F0 01 A1 F0 01 82 02'value' F0"          // an index, one beyond the table, a text
      "01 81 C3 A9 F0 01 80'x' 80'y' F0"              // beyond ASCII, two chunks
      "01 81 0D'x' F0 01 91 00'y' F0 01 A1 F0"        // a carriage return, a zero, and that by its index
      "01 80'x' 01 80'y' FF 01 80'z' E1 00'p' FF F0"  // a child behind the text, an instruction
      "01 F0 41 78 00'n' 40'v' F0 80'x' F0 01 80'x' FF F0");
  ASSERT_EQ(OutcomeInSteps(sample), Outcome(sample));
  for (std::size_t at = 5; at < sample.size(); ++at) {
    for (int const octet : {0x00, 0x01, 0x41, 0x80, 0x82, 0x83, 0x91, 0xA0, 0xA1, 0xB0, 0xBF, 0xF0, 0xFF}) {
      std::string changed = sample;
      changed[at] = static_cast<char>(octet);
      ASSERT_EQ(OutcomeInSteps(changed), Outcome(changed)) << at << ' ' << octet;
    }
  }
}

TEST(FastInfosetReader, EveryTruncationFails) {
  std::string const octets = DocumentOfAllConstructs();
  std::string const y(65, 'y');
  EXPECT_EQ(Outcome(octets),
            "{u}a @{u}x=1 @" + y + "=123 @{u}x=1 @" + y + "=2 '34566" + "1 21 21.2end' (a (bcd)) ({u}a)");
  for (std::size_t length = 28; length < octets.size(); ++length) {
    EXPECT_EQ(Outcome(octets.substr(0, length)), "Failed to parse FastInfoset. Unexpected End of File.") << length;
  }
}

/// Any octets must give either a tree or a failure of the family: other classes, and under sanitizers any other fault,
/// end the test.
TEST(FastInfosetReader, EveryChangedOctetGivesATreeOrAFailure) {
  std::string octets = DocumentOfAllConstructs();
  int trees = 0;
  for (char& octet : octets) {
    char const kept = octet;
    for (int value = 0; value < 256; ++value) {
      octet = static_cast<char>(value);
      CXmlDocument document;
      try {
        Load(document, octets);
        ASSERT_NE(document.GetDocumentElement(), nullptr);
        ++trees;
      } catch (CQnException const&) {
      }
    }
    octet = kept;
  }
  EXPECT_GT(trees, 0);
}

// Alphabets and algorithms of every index, including those that do not exist, with data of every small length.
TEST(FastInfosetReader, EveryEncodingTakesDataOfAnyLength) {
  int texts = 0;
  for (unsigned index = 0; index < 256; ++index) {
    for (unsigned const kind : {0x88U, 0x8CU}) {
      for (unsigned length = 1; length <= 17; ++length) {
        for (char const octet : {'\0', '\x21', '\xFF'}) {
          std::string octets = Document("3C 00'a'");
          octets += static_cast<char>(kind | index >> 6);
          // The last two bits of the octet and the following octets give the length: 1, 2, or 3 and more.
          octets += static_cast<char>((index & 0x3F) << 2 | (length <= 2 ? length - 1 : 2));
          if (length > 2) octets += static_cast<char>(length - 3);
          octets += std::string(length, octet) + '\xFF';
          CXmlDocument document;
          try {
            Load(document, octets);
            ASSERT_EQ("a", document.GetDocumentElement()->GetLocalName());
            ++texts;
          } catch (CQnException const&) {
          }
        }
      }
    }
  }
  EXPECT_GT(texts, 200);
}

std::string Escaped(std::string const& text) {
  std::string escaped;
  for (char const c : text) {
    char code[8];
    bool const isPlain = c >= 0x20 && c <= 0x7E;
    std::snprintf(code, sizeof code, isPlain ? "%c" : "\\x%02X", static_cast<unsigned char>(c));
    escaped += c == '\\' || c == '"' ? std::string("\\") + c : c == '\n' ? "\\n" : c == '\t' ? "\\t" : code;
  }
  return escaped;
}

/// Append a tree in the format of the files that accompany the sample documents.
void AppendLines(CXmlElement const& element, std::string& lines) {
  std::string const name = "{" + element.GetNamespaceURI() + "}" + element.GetLocalName();
  lines += "E " + name + "\n";
  for (CXmlAttribute const* attribute : element.GetAttributes()) {
    lines += "A {" + attribute->GetNamespaceURI() + "}" + attribute->GetLocalName() + "=\"" +
             Escaped(attribute->GetValue()) + "\"\n";
  }
  for (auto const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    AppendLines(*child, lines);
  }
  if (!element.GetText().empty()) lines += "T \"" + Escaped(element.GetText()) + "\"\n";
  lines += "/E " + name + "\n";
}

TEST(FastInfosetReader, SampleDocumentsGiveTheRecordedTrees) {
  char const* const corpus = std::getenv("QUILLON9_CORPUS");
  fs::path const folder = fs::path(corpus != nullptr ? corpus : "") / "finf";
  if (!fs::exists(folder)) GTEST_SKIP() << "no sample documents: set QUILLON9_CORPUS";
  ASCIIOnly(true);
  int checked = 0;
  for (auto const& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".finf") continue;
    CXmlDocument document;
    document.Load(entry.path().c_str());
    std::string lines;
    AppendLines(*document.GetDocumentElement(), lines);
    std::ifstream dump(entry.path().string() + ".dump", std::ios::binary);
    EXPECT_EQ(lines, std::string(std::istreambuf_iterator<char>(dump), {})) << entry.path();
    ++checked;
  }
  ASCIIOnly(false);
  EXPECT_GT(checked, 0);
}

}  // namespace
}  // namespace Quillon9
