// Everything here is read by the fast reader and by the parser: what the first one takes must be the same, and what it
// must take or leave is in tables.

#include "xmlio/fast_reader.h"

#include <expat.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "both_readers.h"
#include "quillon9/text/encoder.h"
#include "quillon9/text/unicode.h"
#include "support/scoped_locale.h"
#include "text/name_characters.h"
#include "xmlio/fast_reader_mode.h"

namespace Quillon9 {
namespace {

using Testing::BothReaders;
using Testing::ReadByBoth;

std::string Utf8(std::uint32_t character) {
  std::uint8_t bytes[4];
  auto const size = ConvertUTF32toUTF8(&character, &character + 1, bytes, bytes + sizeof bytes);
  return std::string(reinterpret_cast<char const*>(bytes), size);
}

class FastReaderTest : public testing::Test {
 protected:
  FastReaderTest() { ASCIIOnly(true); }
  ~FastReaderTest() override {
    ASCIIOnly(false);
    CLimits::SetAllowDocumentType(true);
    CLimits::SetMaxElementDepth(m_depth);
    CLimits::SetMaxContentSize(m_size);
    CLimits::SetMaxContentGrowth(m_growth);
  }

 private:
  std::uint32_t m_depth = CLimits::GetMaxElementDepth();
  std::uint64_t m_size = CLimits::GetMaxContentSize();
  std::uint32_t m_growth = CLimits::GetMaxContentGrowth();
};

/// A document with everything that is plain.
constexpr char kRich[] =
    "\xEF\xBB\xBF<?xml version=\"1.0\" encoding='UTF-8' standalone = \"no\" ?>\r\n<!-- \xC3\xA9 - --><!---->"
    "<?target \xE2\x82\xAC ?\?>\n<!DOCTYPE r PUBLIC '-//A_1/' \"\xC3\xA9'>\">"
    "<p:root xmlns:p='urn:p' xmlns = \"urn:d\"\txmlns:q='urn:q&#x41;' a='1' p:a='2'\n "
    "q:a=\"&lt;'&#9;&#10;>\r\n\t\xC3\xA9\">"
    "text &amp; &quot;more&#xD;&#8364;&gt; ]] ]> \xF0\x9F\x98\x80\r\nline\rline\ttab"
    "<![CDATA[ <a>&amp; ]] ]> ]]]><c xmlns='' xml:lang='en'><d/></c><c/><p:c xmlns:p='urn:2' ></p:c >"
    "<?x?><!-- > --><\xC3\xA9l\xC3\xA9ment \xC3\xA9.-1='x'/>tail</p:root>\n<!-- end --> <?end?>\r\n";

TEST_F(FastReaderTest, TakesPlainText) {
  std::string const rows[] = {
      kRich,
      "<a/>",
      " \n<a b=''\tc=\"\"></a>\r\n\n",
      "<?xml version='1.0'?><a>0123456789</a>",
      "<?xml version='1.0' standalone='yes'?><a\n/>",
      "<?xml version='1.0' encoding=\"utf-8\"?><xmlns b='>'/>",
      "<a>" + std::string(100, ' ') + "<b/>x<b>" + std::string(1000, 'y') + "</b>\n</a>",
      "<a:b xmlns:a='u'><a:b xmlns:a='v'/><a:b a:b=''/></a:b>",
      "<a xmlns='u'><a xmlns='v'><a/><a xmlns=''><a/></a></a><a a=''/></a>",
      "<a><b><c>x</c></b><b>1<c/>2<c/>3</b><b> <c/>\n<c/>&#13;</b></a>",
      "<a b='1' c='2' d='3' e='4' f='5'/>",
      "<?p \r\n x\ry\r\nz ?>\r<a>1<!--\r\n-\r--><?p?><b/>2<!-- --><!----></a><?p  ?>",
      "<p xmlns:p='u'><p:p p:p='1' p='2'/></p>",
      "<a xmlns:xml='http://www.w3.org/XML/1998/namespace' xml:lang='en'><xml:b/></a>",
      "<!DOCTYPE html>\n<html/>",
      "<?xml version='1.0' standalone='yes'?><!-- --><!DOCTYPE\n\xC3\xA9\t><?x?> <a/>",
      "<!DOCTYPE a SYSTEM\r'' ><a b='&lt;'>&amp;</a>",
      "<!DOCTYPE a PUBLIC \"-//A//B 1.0:(x),=?;!*#@$_%'+\"  'x'><a/>",
      "<?xml-stylesheet href='a.xsl'?><a/>",
      "\xEF\xBB\xBF<?xmlx?><?xml-x ?><a/>",
      "<a>&#x9;&#10;&#xD7FF;&#xE000;&#xFFFD;&#x10000;&#x10FFFF;&#0000065;\x7F\xC2\x80</a>",
  };
  CXmlSerializationContext keeping;
  keeping.SetStripCDATA(false);
  keeping.SetKeepUnknown(true);
  for (std::string const& row : rows) {
    for (CXmlSerializationContext const* const context : {&CXmlSerializationContext::m_defaultContext, &keeping}) {
      BothReaders const result = ReadByBoth(row, *context);
      EXPECT_EQ(result.failure, "") << row;
      EXPECT_EQ(result.difference, "") << row;
      EXPECT_TRUE(result.isTaken) << row;
    }
  }
}

TEST_F(FastReaderTest, LeavesToTheParserWhatIsNotPlain) {
  struct Row {
    std::string text;
    bool isWellFormed = false;
  } const rows[] = {
      {"<!DOCTYPE a []><a/>", true},
      {"<!DOCTYPE p:a><a/>", true},
      {"<!DOCTYPE a PUBLIC '\n' ''><a/>", true},
      {"<!DOCTYPE a SYSTEM ''><a>&e;</a>", true},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a/>", true},
      {"<?xml version='1.1'?><a/>", true},
      {std::string("\xFF\xFE<\0a\0/\0>\0", 10), true},
      {"<a b='&#00000000000000000065;'/>", true},
      {"<!DOCTYPE a><a>&e;</a>"},
      {"<!DOCTYPE><a/>"},
      {"<!DOCTYPEa><a/>"},
      {"<!doctype a><a/>"},
      {"<!DOCTYPE 1><a/>"},
      {"<!DOCTYPE a:><a/>"},
      {"<!DOCTYPE a b><a/>"},
      {"<!DOCTYPE a ''><a/>"},
      {"<!DOCTYPE aSYSTEM ''><a/>"},
      {"<!DOCTYPE a system ''><a/>"},
      {"<!DOCTYPE a SYSTEM><a/>"},
      {"<!DOCTYPE a SYSTEM''><a/>"},
      {"<!DOCTYPE a SYSTEM '\x01'><a/>"},
      {"<!DOCTYPE a SYSTEM '\xC0\x80'><a/>"},
      {"<!DOCTYPE a SYSTEM '' ''><a/>"},
      {"<!DOCTYPE a SYSTEM '><a/>"},
      {"<!DOCTYPE a PUBLIC ''><a/>"},
      {"<!DOCTYPE a PUBLIC ''''><a/>"},
      {"<!DOCTYPE a PUBLIC '\t' ''><a/>"},
      {"<!DOCTYPE a PUBLIC '\xC3\xA9' ''><a/>"},
      {"<!DOCTYPE a><!DOCTYPE a><a/>"},
      {"<!DOCTYPE a"},
      {"<!DOCTYPE a>"},
      {"<a><!DOCTYPE a></a>"},
      {"<a/><!DOCTYPE a>"},
      {"<a>"},
      {"<a></a"},
      {"<a></b>"},
      {"<a></a>x"},
      {"x<a/>"},
      {"<a/><b/>"},
      {std::string("<a/>\0", 5)},
      {""},
      {" "},
      {">"},
      {"<"},
      {"<>"},
      {"</>"},
      {"<a><></a>"},
      {"<a></a></a>"},
      {"<a>]]></a>"},
      {"<a>x]]]></a>"},
      {"<a>&e;</a>"},
      {"<a>&amp</a>"},
      {"<a>&;</a>"},
      {"<a>&#;</a>"},
      {"<a>&#x;</a>"},
      {"<a>&#X41;</a>"},
      {"<a>&#xG;</a>"},
      {"<a>&#4A;</a>"},
      {"<a>&#0;</a>"},
      {"<a>&#11;</a>"},
      {"<a>&#xD800;</a>"},
      {"<a>&#xFFFE;</a>"},
      {"<a>&#x110000;</a>"},
      {"<a>& amp;</a>"},
      {"<a b='<'/>"},
      {"<a b='&e;'/>"},
      {"<a b=''c=''/>"},
      {"<a b/>"},
      {"<a b=c/>"},
      {"<a =''/>"},
      {"<a b='/>"},
      {"<a/ >"},
      {"<a / >"},
      {"< a/>"},
      {"<a b='1' b='2'/>"},
      {"<a xmlns='u' xmlns='u'/>"},
      {"<a xmlns:p='u' xmlns:p='v'/>"},
      {"<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'/>"},
      {"<p:a/>"},
      {"<a p:b=''/>"},
      {"<a><b xmlns:p='u'/><p:b/></a>"},
      {"<a><b xmlns:p='u'></b><b p:c=''/></a>"},
      {"<xmlns:a/>"},
      {"<a xmlns:p=''/>"},
      {"<a xmlns:xml='u'/>"},
      {"<a xmlns:xmlns='u'/>"},
      {"<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>"},
      {"<a xmlns='http://www.w3.org/2000/xmlns/'/>"},
      {"<a xmlns='u|v'/>"},
      {"<:a/>"},
      {"<a:/>"},
      {"<a:b:c xmlns:a='u'/>"},
      {"<a:1 xmlns:a='u'/>"},
      {"<1/>"},
      {"<-a/>"},
      {"<a,/>"},
      {"<a\xC3\x97/>"},
      {"<!-- -- --><a/>"},
      {"<!-- ---><a/>"},
      {"<!--><a/>"},
      {"<a><!-- \x01 --></a>"},
      {"<a><!-- \xC0\x80 --></a>"},
      {"<a><!ELEMENT></a>"},
      {"<![CDATA[x]]><a/>"},
      {"<a><![CDATA[x]]</a>"},
      {"<a><![cdata[x]]></a>"},
      {"<a><![CDATA[\x02]]></a>"},
      {" <?xml version='1.0'?><a/>"},
      {"<?xml-x?><?xml version='1.0'?><a/>"},
      {"<?xml:x?><a/>"},
      {"<?xml,x?><a/>"},
      {"<?xml?><a/>"},
      {"<?xml version='1.0' standalone='maybe'?><a/>"},
      {"<?xml version='1.0' standalone='no' encoding='UTF-8'?><a/>"},
      {"<?xml encoding='UTF-8'?><a/>"},
      {"<?xml version='1.0'encoding='UTF-8'?><a/>"},
      {"<a><?xml?></a>"},
      {"<a><?XmL x?></a>"},
      {"<a><?p:i?></a>"},
      {"<a><?p?i?></a>"},
      {"<a><? p?></a>"},
      {"<a><?p </a>"},
  };
  for (Row const& row : rows) {
    BothReaders const result = ReadByBoth(row.text);
    EXPECT_FALSE(result.isTaken) << row.text;
    EXPECT_EQ(result.difference, "") << row.text;
    EXPECT_EQ(row.isWellFormed, result.failure.empty()) << row.text << ": " << result.failure;
  }
}

// Each byte of the rich document is left out, doubled, and replaced; and each beginning of it is read.
TEST_F(FastReaderTest, DamagedTextIsReadAsByTheParser) {
  static constexpr char kBytes[] = "\0\x01\t\n\r !\"&'-/:;<=>?[]a\x7F\x80\xBF\xC0\xC3\xE0\xEF\xF4\xFF";
  std::string const rich = kRich;
  std::vector<std::string> damaged;
  for (std::size_t at = 0; at < rich.size(); ++at) {
    damaged.push_back(rich.substr(0, at));
    damaged.push_back(rich.substr(0, at) + rich.substr(at + 1));
    damaged.push_back(rich.substr(0, at) + rich[at] + rich.substr(at));
    for (char const byte : std::string_view(kBytes, sizeof kBytes - 1)) {
      damaged.push_back(rich);
      damaged.back()[at] = byte;
    }
  }
  int taken = 0;
  for (std::string const& text : damaged) {
    BothReaders const result = ReadByBoth(text);
    EXPECT_EQ(result.difference, "") << text;
    taken += result.isTaken ? 1 : 0;
  }
  EXPECT_GT(taken, 1000);  // those in text and values
}

TEST_F(FastReaderTest, CharactersAreThoseOfTheParser) {
  std::vector<std::string> characters = {"\xC0\x80",         "\xC1\xBF",         "\xC2",
                                         "\xE0\x9F\xBF",     "\xED\xA0\x80",     "\xED\xBF\xBF",
                                         "\xEF\xBF\xBE",     "\xEF\xBF\xBF",     "\xF0\x8F\xBF\xBF",
                                         "\xF4\x90\x80\x80", "\xF8\x88\x80\x80", "\x80"};
  for (std::uint32_t const code : {1U,      8U,      9U,      10U,      11U,      12U,      13U,      14U,     31U,
                                   32U,     0x7FU,   0x80U,   0x85U,    0x9FU,    0x7FFU,   0x800U,   0x2028U, 0xD7FFU,
                                   0xE000U, 0xFDD0U, 0xFFFDU, 0x10000U, 0x1FFFEU, 0x1FFFFU, 0x10FFFFU}) {
    characters.push_back(Utf8(code));
  }
  for (std::string const& c : characters) {
    for (std::string const& text : {"<a>" + c + "</a>", "<a>0123456789" + c + "0123456789</a>", "<a b='" + c + "'/>",
                                    "<a b=\"01234567" + c + "\"/>", "<a><![CDATA[" + c + "]]></a>",
                                    "<!--" + c + "--><a/>", "<?p " + c + "?><a/>", "<a xmlns='" + c + "'/>"}) {
      BothReaders const result = ReadByBoth(text);
      EXPECT_EQ(result.difference, "") << text;
      EXPECT_EQ(result.isTaken, result.failure.empty()) << text;
    }
  }
}

TEST_F(FastReaderTest, NamesAreThoseOfTheParser) {
  std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> const parser(XML_ParserCreateNS(nullptr, '|'),
                                                                       XML_ParserFree);
  auto const isAccepted = [&](std::string const& text) {
    XML_ParserReset(parser.get(), nullptr);
    return XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
  };
  int differing = 0;
  for (std::uint32_t code = 0x80; code <= 0x10FFFF; code += code < 0x10000 ? 1 : 0x101) {
    if (code >= 0xD800 && code <= 0xDFFF) continue;
    std::string const character = Utf8(code);
    if (NameCharacters::IsStart(code) != isAccepted("<" + character + "/>")) ++differing;
    if (NameCharacters::IsPart(code) != isAccepted("<a" + character + "/>")) ++differing;
  }
  EXPECT_EQ(differing, 0);
}

TEST_F(FastReaderTest, ManyNamesPrefixesAndAttributes) {
  std::string many = "<r xmlns:p='u'>";
  for (int i = 0; i < 2000; ++i) {
    std::string const n = std::to_string(i);
    many += "<e" + n + " p:a" + n + "='1' a" + n + "='2'><p" + n + ":x xmlns:p" + n + "='u" + n + "'/></e" + n + ">";
  }
  std::string attributes;
  for (int i = 0; i < 100; ++i) attributes += " p:a" + std::to_string(i) + "=''";
  std::string const open = "<r xmlns:p='u' xmlns:q='u' xmlns:s='v'";
  struct {
    std::string text;
    bool isTaken;
  } const rows[] = {{many + "</r>", true},
                    {open + attributes + " a1='' s:a1='' q:a100=''/>", true},
                    {open + attributes + " a1='' s:a1='' q:a50=''/>", false}};
  for (auto const& row : rows) {
    BothReaders const result = ReadByBoth(row.text);
    EXPECT_EQ(result.difference, "");
    EXPECT_EQ(result.failure.empty(), row.isTaken);
    EXPECT_EQ(result.isTaken, row.isTaken);
  }
}

TEST_F(FastReaderTest, LimitsAreThoseOfTheParser) {
  for (std::uint32_t depth = 1; depth < 5; ++depth) {
    CLimits::SetMaxElementDepth(depth);
    BothReaders const result = ReadByBoth("<a><b><c/></b></a>");
    EXPECT_EQ(result.difference, "");
    EXPECT_EQ(result.isTaken, depth >= 3);
    EXPECT_EQ(result.failure.empty(), depth >= 3);
  }
  CLimits::SetMaxContentGrowth(1);
  int taken = 0;
  for (std::uint64_t size = 0; size < 8000; size += 7) {
    CLimits::SetMaxContentSize(size);
    BothReaders const result = ReadByBoth(kRich);
    EXPECT_EQ(result.difference, "") << size;
    EXPECT_EQ(result.isTaken, result.failure.empty()) << size;
    taken += result.isTaken ? 1 : 0;
  }
  EXPECT_GT(taken, 0);
}

TEST_F(FastReaderTest, DocumentTypesAreLeftToTheParserWhereNotAllowed) {
  CLimits::SetAllowDocumentType(false);
  BothReaders const result = ReadByBoth("<!DOCTYPE a><a/>");
  EXPECT_EQ(result.difference, "");
  EXPECT_EQ(result.failure, "The document has a document type declaration, which is not allowed");
}

TEST_F(FastReaderTest, TextThatHasToBeConvertedIsLeftToTheParser) {
  ASCIIOnly(false);
  Testing::ScopedLocale const ascii("C");
  EXPECT_TRUE(ReadByBoth("<a b='c'>d&#65;</a>").isTaken);
  for (char const* const text : {"<a>\xC3\xA9</a>", "<a b='\xC3\xA9'/>", "<\xC3\xA9/>", "<a>&#xE9;</a>",
                                 "<a b='&#xE9;'/>", "<a><![CDATA[\xC3\xA9]]></a>"}) {
    BothReaders const result = ReadByBoth(text);
    EXPECT_EQ(result.failure + result.difference, "");
    EXPECT_FALSE(result.isTaken) << text;
  }
  EXPECT_TRUE(ReadByBoth("<!-- \xC3\xA9 --><a/>").isTaken);
}

TEST_F(FastReaderTest, IsUsedWhereItMayBe) {
  CXmlDocument source;
  source.LoadXml("<a/>");
  CXmlSerializationContext plain;
  plain.SetSchemaType(SchemaType_DTD);
  CXmlDocument withoutNamespaces(plain);
  CXmlDocument filtered([](CXmlElement*) { return false; });
  CXmlDocument used;
  for (CXmlDocument* const document : {&withoutNamespaces, &filtered, &used}) {
    XmlNodeAccess::LendInput(*document, source);
  }
  used.SetNamespaceAlias("p", "u");
  EXPECT_FALSE(FastReader::Read(filtered));
  EXPECT_FALSE(FastReader::Read(used));
  EXPECT_EQ(used.LookupNamespaceFromAlias("p"), "u");

  FastReaderMode const mode = CurrentFastReaderMode();
  CLimits::SetUseFastReader(false);
  EXPECT_EQ(CurrentFastReaderMode(), FastReaderMode::kOff);
  CLimits::SetUseFastReader(true);
  EXPECT_EQ(CurrentFastReaderMode(), mode);
}

// A comparison that finds nothing would prove nothing.
TEST_F(FastReaderTest, DifferencesOfTreesAreFound) {
  struct {
    char const* left;
    char const* right;
    char const* difference;
  } const rows[] = {
      {"<a/>", "<b/>", "the name of [a]"},
      {"<a xmlns='u'/>", "<a xmlns='v'/>", "the aliases"},
      {"<a b='1'/>", "<a b='2'/>", "the attributes of [a]"},
      {"<a b='1'/>", "<a c='1'/>", "the attributes of [a]"},
      {"<r><a>1</a></r>", "<r><a>2</a></r>", "the text of [a]"},
      {"<r><a/><b/></r>", "<r><b/><b/></r>", "the size of the content"},
      {"<r><a/><b/></r>", "<r><b/><a/></r>", "the name of [a]"},
      {"<r><a><b/></a><c/></r>", "<r><a><b/><c/></a></r>", "the number of children, at [c]"},
      {"<r>1<a/>2</r>", "<r>12<a/></r>", "the places of the children of [r]"},
      {"<r><a xmlns:p='1'/><b xmlns:p='2'/><c xmlns:p='3'/></r>",
       "<r><a xmlns:p='2'/><b xmlns:p='1'/><c xmlns:p='3'/></r>", "the namespaces in scope of [a]"},
  };
  for (auto const& row : rows) {
    CXmlDocument left;
    CXmlDocument right;
    left.LoadXml(row.left);
    right.LoadXml(row.right);
    EXPECT_EQ(FirstDifference(left, right), row.difference) << row.left;
    EXPECT_EQ(FirstDifference(left, left), "");
  }
}

}  // namespace
}  // namespace Quillon9
