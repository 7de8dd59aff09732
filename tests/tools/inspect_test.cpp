#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "infoset_parser.h"
#include "octets.h"
#include "program.h"

namespace Quillon9::Testing {
namespace {

using namespace Quillon9Tool;

// Every construct of the standard.
std::string const kDocument = Octets(
    "E0000001 7F 0000'u'01'dd'"
    "0FFF 0002'abc' 0000'x' 0000'p' 0002'u:v' 0100'r'00'q' 0000'o' 0000'w' 0000'v' 0100't'00'z' 0000'-' 0003818180 "
    "000081"
    "C200'n'01'ss'F0 D000'e'00's'80F0 03'utf8' 01 02'1.0'"
    "C700's'00'i'E100'k'00'd'F0 E100'k'FF E200'c'"
    "40 00 80 F0 A0 9C1A013FC00000 9C1438 00 8C090007 850061 883C1B C800'k' E280 E181FF FF F0");

TEST_F(ProgramTest, InspectTellsOffsetOctetsAndMeaning) {
  std::string const infoset = Octets(
      "E0000001 00 78 CF00'p'02'u:v' F0 3F818100'a' 7800'b'42'yes' F0 3C00'c' 9207'0123456789' F0 41 00 80 FF FF");
  EXPECT_EQ(Run("inspect -", infoset).output,
            "offset    octets                       construct\n"
            "00000000  E0 00 00 01                  Fast Infoset, version 1\n"
            "00000004  00                           components of the header: none\n"
            "00000005  78                           element, attributes follow\n"
            "00000006  CF                             namespace attribute\n"
            "00000007  00 70                            prefix \"p\"  -> prefix #2\n"
            "00000009  02 75 3A 76                      namespace name \"u:v\"  -> namespace #2\n"
            "0000000D  F0                             end of the list\n"
            "0000000E  3F                             element name\n"
            "0000000F  81                               prefix #2 \"p\"\n"
            "00000010  81                               namespace name #2 \"u:v\"\n"
            "00000011  00 61                            local name \"a\"  -> local name #1, element name #1 p:a\n"
            "00000013  78                             attribute\n"
            "00000014  00 62                            local name \"b\"  -> local name #2, attribute name #1 b\n"
            "00000016  42 79 65 73                      value \"yes\"  -> attribute value #1\n"
            "0000001A  F0                             end of the attributes\n"
            "0000001B  3C                             element\n"
            "0000001C  00 63                            local name \"c\"  -> local name #3, element name #2 c\n"
            "0000001E  92 07 30 31 32 33 34 35 ..       text \"0123456789\"  -> text #1\n"
            "0000002A  F0                             end of the element\n"
            "0000002B  41                             element #2 c, attributes follow\n"
            "0000002C  00                               attribute #1 b\n"
            "0000002D  80                                 value #1 \"yes\"\n"
            "0000002E  FF                             end of the attributes and of the element\n"
            "0000002F  FF                           end of the element and of the document\n"
            "\n"
            "size by kind                                         parts    octets         \n"
            "  header                                                 2         5   10.4 %\n"
            "  beginnings and ends of elements and attributes        10        10   20.8 %\n"
            "  names in full                                          5        12   25.0 %\n"
            "  names by index                                         4         4    8.3 %\n"
            "  attribute values in full                               1         4    8.3 %\n"
            "  attribute values by index                              1         1    2.1 %\n"
            "  text in full                                           1        12   25.0 %\n"
            "  all                                                   24        48  100.0 %\n"
            "\n"
            "entries in the tables at the end\n"
            "  prefixes                                               2\n"
            "  namespace names                                        2\n"
            "  local names                                            3\n"
            "  attribute values                                       1\n"
            "  texts                                                  1\n"
            "  element names                                          2\n"
            "  attribute names                                        1\n"
            "\n"
            "references by index: 5, in 5 octets instead of 16; they make the document 18.6 % shorter\n");
  EXPECT_NE(Run("inspect --full -", infoset).output.find("\n00000026  36 37 38 39\n"), std::string::npos);
}

TEST_F(ProgramTest, InspectPrintsWhatThePageShows) {
  std::string const examples = QUILLON9_EXAMPLES;
  std::string const page = ReadFile(examples + "/../docs/fast-infoset.md");
  std::size_t const begin = page.find("offset    octets");
  ASSERT_NE(begin, std::string::npos);
  ASSERT_EQ(Run("convert '" + examples + "/purchase_order/purchase_order.xml' order.finf.gz").status, 0);
  std::string const output = Run("inspect order.finf.gz").output;
  std::istringstream excerpt(page.substr(begin, page.find("```", begin) - begin));
  for (std::string line; std::getline(excerpt, line);) EXPECT_NE(output.find(line + '\n'), std::string::npos) << line;
}

TEST_F(ProgramTest, InspectDecodesEveryKindOfString) {
  std::string const output = Run("inspect -", kDocument).output;
  for (char const* const expected :
       {"additional data, of kind \"u\"", "entry \"abc\"  -> alphabet #16", "entry \"x\"  -> algorithm #32",
        "entry  -> element name #1 p:r", "character encoding scheme \"utf8\"", "standalone: yes", "version \"1.0\"",
        "name of the notation #1 \"o\"", "public identifier \"i\"", "text (float) \"1.5\"  -> text #3",
        "text (boolean) \"true\"  -> text #4", "text (short) \"7\"", "text (UTF-16) \"a\"",
        "text (alphabet 16) \"abc\"", "unexpanded entity reference", "string #1 \"-\"", "string #0 \"\""}) {
    EXPECT_NE(output.find(expected), std::string::npos) << expected;
  }
}

/// Split \p octets into parts. Whatever they are, the parts must be adjacent from the first octet on.
/// \returns whether the octets are well-formed.
bool ParsesSideBySide(std::string const& octets) {
  std::size_t next = 0;
  bool isSideBySide = true;
  InfosetParser parser(octets, [&](Part const& part) {
    isSideBySide &= part.offset == next && part.size > 0;
    next += part.size;
  });
  bool isWellFormed = true;
  try {
    parser.Parse();
  } catch (InfosetError const&) {
    isWellFormed = false;
  }
  EXPECT_TRUE(isSideBySide && parser.GetPosition() == next) << Hex(octets);
  EXPECT_TRUE(!isWellFormed || next == octets.size()) << Hex(octets);
  return isWellFormed;
}

TEST(InfosetParserTest, DamagedDocumentsEndInAnError) {
  EXPECT_TRUE(ParsesSideBySide(kDocument));
  for (std::size_t length = 0; length + 1 < kDocument.size(); ++length) {  // the last terminator may be missing
    EXPECT_FALSE(ParsesSideBySide(kDocument.substr(0, length))) << length;
  }
  for (std::size_t at = 0; at < kDocument.size(); ++at) {
    std::string changed = kDocument;
    for (int octet = 0; octet < 256; ++octet) {
      changed[at] = static_cast<char>(octet);
      ParsesSideBySide(changed);
    }
  }
}

TEST(InfosetParserTest, MalformedOctetsHaveAReason) {
  struct Row {
    char const* behindHeader;
    std::size_t position;
    char const* reason;
  };
  Row const rows[] = {
      {"F0", 6, "the document has no element"},
      {"00", 5, "the index 1 is beyond its table"},
      {"3E80 00'a' FF", 6, "the name has a prefix, but no namespace"},
      {"3C00'a' 00 3C00'b'", 12, "the document ends in the middle"},
      {"3C00'a' F0 00", 9, "the document has a second document element"},
      {"3C00'a' D3", 8, "this begins nothing that may stand here"},
      {"80'a'", 5, "this begins nothing that may stand here"},
      {"38 00 F0", 6, "this is neither a namespace attribute nor the end of them"},
      {"7C00'a' F1", 8, "this is neither an attribute nor the end of them"},
      {"3C41'a'", 6, "no length has this form"},
      {"3C00'a' BF", 8, "no index has this form"},
      {"3C60FFFFFFFF'a'", 6, "the document ends in the middle"},
  };
  for (Row const& row : rows) {
    std::string const octets = Octets(std::string("E0000001 00 ") + row.behindHeader);
    InfosetParser parser(octets, [](Part const&) {});
    try {
      parser.Parse();
      ADD_FAILURE() << row.behindHeader;
    } catch (InfosetError const& error) {
      EXPECT_STREQ(error.what(), row.reason) << row.behindHeader;
      EXPECT_EQ(parser.GetPosition(), row.position) << row.behindHeader;
    }
  }
}

TEST(InfosetOctetsTest, NumbersOfEveryForm) {
  struct Row {
    Number number;
    char const* octets;
    std::uint64_t value;
  };
  Row const rows[] = {
      {Number::Index2, "BF", 64},
      {Number::Index2, "C000", 65},
      {Number::Index2, "E00000", 8257},
      {Number::Index2, "EFFFFF", 1056832},
      {Number::Index3, "1F", 32},
      {Number::Index3, "27FF", 2080},
      {Number::Index3, "2FFFFF", 526368},
      {Number::Index3, "30000000", 526369},
      {Number::Index3, "3007F7DF", 1048576},
      {Number::Index4, "AF", 16},
      {Number::Index4, "B3FF", 1040},
      {Number::Index4, "B7FFFF", 263184},
      {Number::Index4, "B8000000", 263185},
      {Number::Length2, "3F", 64},
      {Number::Length2, "40FF", 320},
      {Number::Length2, "6000000000", 321},
      {Number::Length5, "07", 8},
      {Number::Length5, "08FF", 264},
      {Number::Length5, "0C00000000", 265},
      {Number::Length7, "01", 2},
      {Number::Length7, "02FF", 258},
      {Number::Length7, "03FFFFFFFF", 4294967554},
      {Number::Items, "7F", 128},
      {Number::Items, "800000", 129},
      {Number::Items, "8FFFFF", 1048704},
  };
  for (Row const& row : rows) {
    std::string const bytes = Octets(row.octets);
    InfosetOctets octets(bytes);
    std::uint32_t const first = octets.Next();
    if (row.value <= 1U << 20 || row.number == Number::Length7 || row.number == Number::Items) {
      EXPECT_EQ(octets.Read(row.number, first), row.value) << row.octets;
      EXPECT_EQ(octets.GetLeft(), 0U) << row.octets;
    } else {
      EXPECT_THROW(octets.Read(row.number, first), InfosetError) << row.octets;
    }
  }
}

}  // namespace
}  // namespace Quillon9::Testing
