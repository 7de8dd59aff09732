#include "quillon9/xmlio/document.h"
#include "quillon9/binding/serialization_context.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <string>

#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/text/encoder.h"
#include "quillon9/xmlio/compression.h"
#include "support/dump.h"
#include "support/expect_failure.h"
#include "support/scoped_locale.h"

namespace Quillon9 {
namespace {

using Testing::Dump;

std::string Dump(CXmlDocument const& document) { return Dump(*document.GetDocumentElement()); }

/// Restores process-wide switches that a test may change.
class Document : public testing::Test {
 protected:
  ~Document() override {
    ASCIIOnly(false);
    CLimits::SetMaxElementDepth(m_depth);
  }

 private:
  std::uint32_t m_depth = CLimits::GetMaxElementDepth();
};

TEST_F(Document, TreesOfText) {
  struct Row {
    char const* xml;
    char const* tree;
    char const* withoutNamespaces = nullptr;
  } const rows[] = {
      {"<p:a xmlns:p='u' p:b='1' c='2'/>", "{u}a @{u}b=1 @c=2", "p:a @xmlns:p=u @p:b=1 @c=2"},
      {"<a xmlns='d'><b c=''/><x:b xmlns:x='' /></a>", nullptr, "a @xmlns=d (b @c=) (x:b @xmlns:x=)"},
      {"<a>x<b>1</b>y<!-- c --><?p i?><b>2</b>z</a>", "a 'xyz' (b '1') (b '2')"},
      {"<a>\n\t<b/>\n</a>", "a '\n\t\n' (b)"},
      {"<a><b/><c/><b/><d/><b/><e/><b/><c/></a>", "a (b) (c) (b) (d) (b) (e) (b) (c)"},
      {"<a>&#13;b&#13;&#13;c\r\nd&#13;</a>", "a 'bc\nd'"},
      {"<a b='&#13;&lt;'/>", "a @b=\r<"},
      {"<!DOCTYPE a [<!ENTITY e 'x<b/>'><!ATTLIST a c CDATA 'd'>]><a>&e;y</a>", "a @c=d 'xy' (b)"},
      {"<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE9'>\xFC</a>", "a @b=\xC3\xA9 '\xC3\xBC'"},
      {"<\xC3\xA9 xmlns='\xC3\xBC'/>", "{\xC3\xBC}\xC3\xA9"},
  };
  ASCIIOnly(true);
  CXmlSerializationContext plain;
  plain.SetSchemaType(SchemaType_DTD);
  CXmlDocument document;
  CXmlDocument plainDocument(plain);
  for (Row const& row : rows) {
    if (row.tree != nullptr) {
      document.LoadXml(row.xml);
      EXPECT_EQ(Dump(document), row.tree) << row.xml;
    }
    if (row.withoutNamespaces == nullptr) continue;
    plainDocument.LoadXml(row.xml);
    EXPECT_EQ(Dump(plainDocument), row.withoutNamespaces) << row.xml;
  }
}

TEST_F(Document, CDataIsTextOrKeepsItsMarks) {
  CXmlSerializationContext keeping;
  keeping.SetStripCDATA(false);
  CXmlDocument kept(keeping);
  kept.LoadXml("<a>x<![CDATA[<y>]]>z</a>");
  EXPECT_EQ(kept.GetDocumentElement()->GetText(), "x<![CDATA[<y>]]>z");
  CXmlDocument stripped;
  stripped.LoadXml("<a>x<![CDATA[<y>]]>z</a>");
  EXPECT_EQ(stripped.GetDocumentElement()->GetText(), "x<y>z");
}

TEST_F(Document, TextIsInTheCodePageOfTheLocale) {
  char const* const xml = "<a b='\xC3\xA9' \xC3\xA9='1'>x\xE2\x82\xACy&#13;z</a>";
  CXmlDocument document;
  {
    Testing::ScopedLocale const ascii("C");
    document.LoadXml(xml);
  }
  EXPECT_EQ(Dump(document), "a @b=? @?=1 'x?yz'");
  Testing::ScopedLocale const utf8("C.UTF-8");
  ASSERT_TRUE(utf8.IsThere());
  document.LoadXml(xml);
  EXPECT_EQ(Dump(document), "a @b=\xC3\xA9 @\xC3\xA9=1 'x\xE2\x82\xACyz'");
}

TEST_F(Document, WideTextCountsWithSixteenBits) {
  ASCIIOnly(true);
  CXmlDocument document;
  document.LoadXml(L"<a>\u20AC\xD83D\xDE00</a>");
  EXPECT_EQ(Dump(document), "a '\xE2\x82\xAC\xF0\x9F\x98\x80'");
  wchar_t const beyond[] = {0x1003C, L'a', L'>', 0x10041, L'<', L'/', L'a', L'>', 0};
  document.LoadXml(beyond);
  EXPECT_EQ(Dump(document), "a 'A'");
}

TEST_F(Document, AliasesHoldTheLastDeclaration) {
  CXmlDocument document;
  document.LoadXml("<a xmlns='d' xmlns:p='1'><p:b/><p:b xmlns:p='2'/><c xmlns=''/></a>");
  EXPECT_EQ(Dump(document), "{d}a ({1}b) ({2}b) (c)");
  EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "2");
  EXPECT_EQ(document.LookupNamespaceFromAlias(""), "");
  EXPECT_EQ(document.LookupNamespaceFromAlias("q"), "");
  document.LoadXml("<b/>");
  EXPECT_EQ(Dump(document), "b");
  EXPECT_EQ(document.LookupNamespaceFromAlias("p"), "");
}

TEST_F(Document, MalformedTextFailsWithTheParsersText) {
  CXmlDocument document;
  EXPECT_FAILURE(CQnException, "XML String is empty!", document.LoadXml(""));
  EXPECT_FAILURE(CQnException, "XML String is empty!", document.LoadXml(L""));
  EXPECT_FAILURE(CQnException, "XML Stream is empty!", document.LoadXmlStream(nullptr, 0));
  EXPECT_EQ(document.GetDocumentElement(), nullptr);
  EXPECT_FAILURE(CQnException, "mismatched tag at line 3", document.LoadXml("<a>\n<b/>\n</b>"));
  EXPECT_EQ(Dump(document), "a '\n\n' (b)");
  EXPECT_FAILURE(CQnException, "no element found at line 1", document.LoadXml(L"<a>"));
  EXPECT_FAILURE(CQnException, "unbound prefix at line 1", document.LoadXml("<p:a/>"));
  EXPECT_FAILURE(CQnException, "undefined entity at line 1", document.LoadXml("<a>&e;</a>"));
  EXPECT_FAILURE(CQnException, "unknown encoding at line 1",
                 document.LoadXml("<?xml version='1.0' encoding='EUC-JP'?><a/>"));
  // The separator in the parser's names cannot occur in a namespace, so a document cannot forge one.
  EXPECT_FAILURE(CQnException, "syntax error at line 1", document.LoadXml("<p:a xmlns:p='u|v'/>"));
}

TEST_F(Document, SingleByteEncodingsOfTheSystemAreRead) {
  constexpr char kUnknown[] = "unknown encoding at line 1";
  constexpr char kBadByte[] = "not well-formed (invalid token) at line 1";
  struct Row {
    std::string start;
    std::string encoding;
    std::string byte;
    std::string expected;
  } const rows[] = {
      {"", "windows-1252", "\x80", "€ €"},
      {"", "Windows-1251", "\xE6", "ж ж"},
      {"", "ISO-8859-15", "\xA4", "€ €"},
      {"", "koi8-r", "\xD6", "ж ж"},
      {"", "windows-1258", "a\xCC", "a\u0300 a\u0300"},
      {"", "macintosh", "\x8A", "ä ä"},
      {"", "windows-1252", "\x81", kBadByte},
      {"", "ISO-8859-1", "\x80", "\u0080 \u0080"},  // expat's own
      {"", "Shift_JIS", "x", kUnknown},
      {"", "GB18030", "x", kUnknown},
      {"", "UTF-7", "x", kUnknown},
      {"", "ISO-2022-KR", "x", kUnknown},
      {"", "TSCII", "x", kUnknown},
      {"", "IBM037", "x", kUnknown},
      {"", "ISO646-DE", "x", kUnknown},
      {"", "no-such-encoding", "x", kUnknown},
      {"", std::string(100000, 'x'), "x", kUnknown},
      {"", "windows-1252//TRANSLIT", "x", "XML declaration not well-formed at line 1"},
      {"\xEF\xBB\xBF", "windows-1252", "x", kUnknown},
  };
  CXmlSerializationContext context;
  context.SetTextEncoding(TextEncoding_UTF8);
  CXmlDocument document(context);
  for (Row const& row : rows) {
    std::string const text =
        row.start + "<?xml version='1.0' encoding='" + row.encoding + "'?><p a='" + row.byte + "'>" + row.byte + "</p>";
    std::string read;
    try {
      document.LoadXml(text.c_str());
      CXmlElement const& root = *document.GetDocumentElement();
      read = root.GetText() + ' ' + root.GetFirstAttribute()->GetValue();
    } catch (CQnException const& failure) {
      read = failure.GetMessage();
    }
    EXPECT_EQ(row.expected, read) << row.encoding.substr(0, 50);
  }
  EXPECT_FAILURE(CQnException, kUnknown, document.LoadXml(L"<?xml version='1.0' encoding='windows-1252'?><p/>"));
}

/// A file in a folder of its own, both removed at the end.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::string const& content) {
    std::string pattern = (std::filesystem::temp_directory_path() / "quillon9-XXXXXX").string();
    m_folder = ::mkdtemp(pattern.data());
    m_path = m_folder + "/file";
    std::ofstream(m_path, std::ios::binary) << content;
  }
  ~TemporaryFile() { std::filesystem::remove_all(m_folder); }
  std::string const& Folder() const { return m_folder; }
  std::string const& Path() const { return m_path; }

 private:
  std::string m_folder;
  std::string m_path;
};

TEST_F(Document, LoadsFilesAndSaysWhyNot) {
  Testing::ScopedLocale const english("C");
  TemporaryFile const good("<a>1</a>");
  CXmlDocument document;
  document.Load(good.Path().c_str());
  EXPECT_EQ(Dump(document), "a '1'");

  std::string const& folder = good.Folder();
  std::string const missing = folder + "/none";
  EXPECT_FAILURE(CQnException, "Failed to open the file [" + missing + "]", document.Load(missing.c_str()));
  EXPECT_EQ(document.GetDocumentElement(), nullptr);
  EXPECT_FAILURE(CQnException, "Failed to get the size of the file [" + folder + "] Error [Is a directory]",
                 document.Load(folder.c_str()));
  std::string const pipe = folder + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_FAILURE(CQnException, "Failed to get the size of the file [" + pipe + "] Error [Illegal seek]",
                 document.Load(pipe.c_str()));
  std::filesystem::resize_file(good.Path(), 0);
  EXPECT_FAILURE(CQnException,
                 "Failed to read the contents of the file [" + good.Path() + "] Error [No data available]",
                 document.Load(good.Path().c_str()));
  std::filesystem::resize_file(good.Path(), 0x100000000U);  // takes no room on the disk
  EXPECT_FAILURE(CQnException, "The file [" + good.Path() + "] exceeds the limit of 4294967295 bytes",
                 document.Load(good.Path().c_str()));
}

// Kernel files: one reports no size, and one reports more than a read then returns, like a file that shrinks meanwhile.
TEST_F(Document, RefusesFilesThatAreNotAsLongAsTheySay) {
  Testing::ScopedLocale const english("C");
  for (std::string const path : {"/proc/self/status", "/sys/devices/system/cpu/possible"}) {
    if (!std::filesystem::exists(path)) continue;
    CXmlDocument document;
    EXPECT_FAILURE(CQnException, "Failed to read the contents of the file [" + path + "] Error [No data available]",
                   document.Load(path.c_str()));
    EXPECT_EQ(document.GetDocumentElement(), nullptr);
  }
}

// In these code pages, the second byte of the names' characters equals the separator in the parser's names.
TEST_F(Document, NamesAreSplitBeforeTheyAreConverted) {
  struct {
    char const* locale;
    std::string utf8;
    std::string local;
  } const rows[] = {{"zh_CN.GB18030", "\u4E85", "\x81|"}, {"ja_JP.SJIS", "\u30DD", "\x83|"}};
  for (auto const& row : rows) {
    Testing::ScopedLocale const locale(row.locale);
    if (!locale.IsThere()) continue;
    CXmlDocument document;
    std::string const& c = row.utf8;
    document.LoadXml(("<" + c + ":" + c + " xmlns:" + c + "='u" + c + "' " + c + ":b='" + c + "'>" + c + "<" + c +
                      "/></" + c + ":" + c + ">")
                         .c_str());
    std::string const& l = row.local;
    EXPECT_EQ(Dump(document), "{u" + l + "}" + l + " @{u" + l + "}b=" + l + " '" + l + "' (" + l + ")") << row.locale;
    EXPECT_EQ("u" + l, document.LookupNamespaceFromAlias(l.c_str()));
  }
}

TEST_F(Document, OnlyStreamsAndFilesMayBeCompressed) {
  std::string const xml = "<a>" + std::string(500, 'x') + "</a>";
  for (CompressionType const type : {CompressionType_GZip, CompressionType_ZLib}) {
    unsigned long size = xml.size();
    auto* data = new unsigned char[size];
    xml.copy(reinterpret_cast<char*>(data), size);
    CQnZip::Compress(&data, &size, type);
    std::unique_ptr<unsigned char[]> const owner(data);
    CXmlDocument document;
    document.LoadXmlStream(data, size);
    EXPECT_EQ(Dump(document), "a '" + std::string(500, 'x') + "'");
    EXPECT_EQ(document.GetInputSize(), xml.size());
    std::string const bytes(reinterpret_cast<char*>(data), size);
    document.Load(TemporaryFile(bytes).Path().c_str());
    EXPECT_EQ(document.GetInputSize(), xml.size());
    EXPECT_FAILURE(CQnException, "not well-formed (invalid token) at line 1", document.LoadXml(bytes.c_str()));
  }
}

std::string Nested(std::size_t depth, bool closed) {
  std::string xml;
  for (std::size_t i = 0; i < depth; ++i) xml += "<a>";
  for (std::size_t i = 0; i < depth && closed; ++i) xml += "</a>";
  return xml;
}

TEST_F(Document, NestingIsLimitedAndNeedsNoStack) {
  CXmlDocument document;
  document.LoadXml(Nested(1000, true).c_str());
  for (std::size_t const depth : {1001U, 1000000U}) {
    for (bool const closed : {true, false}) {
      EXPECT_FAILURE(CQnException, "The element nesting exceeds the limit of 1000 levels",
                     document.LoadXml(Nested(depth, closed).c_str()));
    }
  }
  CLimits::SetMaxElementDepth(1000000);
  document.LoadXml(Nested(1000000, true).c_str());
  document.Cleanup();
  EXPECT_FAILURE(CQnException, "no element found at line 1", document.LoadXml(Nested(1000000, false).c_str()));
}

TEST_F(Document, FilterSeesCompleteElementsAndRemovesThem) {
  static std::string seen;
  seen.clear();
  CXmlDocument document([](CXmlElement* element) {
    seen += Dump(*element) + "; ";
    return element->GetLocalName() != "b";
  });
  document.LoadXml("<a>1<b><c/></b><c>2</c><b x='3'/></a>");
  EXPECT_EQ(seen, "c; b; c '2'; b @x=3; a '1' (b) (b @x=3); ");
  EXPECT_EQ(Dump(document), "a '1' (b) (b @x=3)");

  CXmlDocument self([](CXmlElement* element) {
    const_cast<CXmlDocument*>(element->GetDocument())->Cleanup();
    return true;
  });
  EXPECT_FAILURE(CQnException, "The filter changed the document that is being read", self.LoadXml("<a><b/>1<b/></a>"));

  CXmlDocument all([](CXmlElement*) { return true; });
  all.LoadXml("<a><b><c/></b><d/></a>");
  EXPECT_EQ(Dump(all), "a");

  CXmlDocument built([](CXmlElement* element) { return element->GetLocalName() == "drop"; });
  built.AddDocElement("", "a");
  for (char const* name : {"b", "drop"}) {
    built.AddChildElement("", name);
    built.AddChildElement("", "x");
    built.CloseElement();
    built.EndElement();
  }
  EXPECT_EQ(Dump(built), "a (b (x))");
}

TEST_F(Document, FilterThatKeepsEverySecondOfManyIsFast) {
  std::string xml = "<r>";
  for (int i = 0; i < 100000; ++i) xml += "<a/><b/>";
  CXmlDocument document([](CXmlElement* element) { return element->GetLocalName() == "b"; });
  document.LoadXml((xml + "</r>").c_str());
  int kept = 0;
  CXmlElement const* child = document.GetDocumentElement()->GetFirstElement();
  for (; child != nullptr; child = child->GetNextSiblingElement()) ++kept;
  EXPECT_EQ(kept, 100000);
}

TEST_F(Document, WhatAFilterThrowsPassesThroughTheParser) {
  CXmlDocument document([](CXmlElement* element) -> bool {
    if (element->GetLocalName() == "b") throw CQnValidationException("no b");
    throw std::bad_alloc();
  });
  EXPECT_FAILURE(CQnValidationException, "no b", document.LoadXml("<a>\n<b/>more<c/></d>"));
  EXPECT_THROW(document.LoadXml("<a/>"), std::bad_alloc);
}

TEST_F(Document, TreesAreBuiltByHand) {
  CXmlDocument document;
  EXPECT_FAILURE(CQnException, "No element is open", document.AddChildElement("u", "a"));
  EXPECT_FAILURE(CQnException, "No element is open", document.EndElement());
  CXmlElement* const root = document.AddDocElement("u", "a");
  EXPECT_FAILURE(CQnException, "The document has a document element already", document.AddDocElement("u", "a"));
  document.AddElementAttribute(document.AddChildElement(nullptr, "b"), "c", "d", "");
  document.EndElement();
  document.AppendTextExcludingCR(root, "\rx\r\ry\r");
  document.AppendTextExcludingCR(root, "12\0003", 4);
  document.AppendTextExcludingCR(root, "12345", 2);
  document.AppendTextExcludingCR(root, "no", 0);
  root->AppendText("z", 1);
  root->AppendText("no", -1);
  EXPECT_EQ(Dump(document), "{u}a 'xy1212z' (b @c=d)");
  EXPECT_EQ(root->GetFirstElement()->GetDocument(), &document);

  CXmlElement* const second = root->CreateNewChildElement();
  CXmlElement* const third = root->CreateNewChildElement();
  for (CXmlElement* const expected : {third, second}) {
    std::unique_ptr<CXmlElement> const removed(root->RemoveLastChildElement());
    EXPECT_EQ(removed.get(), expected);
  }
  std::unique_ptr<CXmlElement> const first(root->RemoveLastChildElement());
  EXPECT_EQ(root->GetFirstElement(), nullptr);
  EXPECT_EQ(root->RemoveLastChildElement(), nullptr);
}

// In a document's memory and standalone, short and long, with the string or the vector requested at any time.
TEST_F(Document, TextsAndAttributesAreTheSameHoweverTheyAreAskedFor) {
  for (std::size_t const run : {1U, 3U, 7U, 8U, 75U, 151U, 152U, 400U}) {
    for (int const asked : {-1, 0, 1, 2, 5}) {
      CXmlDocument document;
      CXmlElement alone(&document);
      for (CXmlElement* const element : {document.AddDocElement("", "a"), &alone}) {
        std::string expected;
        for (int i = 0; i < 6; ++i) {
          std::string const text(run, static_cast<char>('a' + i));
          i % 2 == 0 ? element->AppendText(text) : static_cast<void>(element->AppendPlainText(text));
          if (element->GetTextView().size() == expected.size()) element->AppendText(text);  // no room for it in place
          EXPECT_FALSE(element->AppendPlainText(text + '\r'));
          element->AddAttribute(text, text, "");
          expected += text;
          if (i == asked) {
            EXPECT_EQ(element->GetText(), expected);
            EXPECT_EQ(element->GetAttributes().size(), static_cast<std::size_t>(i + 1));
          }
        }
        EXPECT_EQ(element->GetTextView(), expected);
        EXPECT_EQ(std::strlen(element->GetTextView().data()), expected.size());
        EXPECT_EQ(&element->GetText(), &element->GetText());
        std::size_t count = 0;
        for (auto* attribute = element->GetFirstAttribute(); attribute != nullptr;
             attribute = attribute->GetNextAttribute()) {
          EXPECT_EQ(attribute->GetValueView(), attribute->GetLocalName());
          EXPECT_EQ(attribute, element->GetAttributes().at(count++));
        }
        EXPECT_EQ(count, 6U);
        element->AppendText(element->GetTextView());
        EXPECT_EQ(element->GetTextView(), expected + expected);
      }
    }
  }
}

TEST_F(Document, TextsEndWithAZeroWhateverTheRunsWere) {
  std::string text;
  for (int i = 0; i < 160; ++i, text += 'x') {
    CXmlDocument document;
    document.LoadXml(("<a>" + text + "&#13;</a>").c_str());
    std::string_view const view = document.GetDocumentElement()->GetTextView();
    EXPECT_EQ(view, text);
    EXPECT_EQ(view.data()[view.size()], '\0');
  }
}

TEST_F(Document, DetachedElementsOutliveTheirDocument) {
  std::string const text(200, 'x');
  std::string const xml = "<r><a k='v'><b>" + text + "</b><c>1</c></a><d/></r>";
  std::unique_ptr<CXmlElement> inner;
  std::unique_ptr<CXmlElement> outer;
  {
    CXmlDocument document;
    document.LoadXml(xml.c_str());
    delete document.GetDocumentElement()->RemoveLastChildElement();
    outer.reset(document.GetDocumentElement()->RemoveLastChildElement());
    inner.reset(outer->RemoveLastChildElement());
    document.LoadXml("<other/>");
  }
  EXPECT_EQ(Dump(*outer), "a @k=v (b '" + text + "')");
  outer->CreateNewChildElement()->SetElementName("new");
  outer.reset();
  inner->AppendText(text);
  EXPECT_EQ(Dump(*inner), "c '1" + text + "'");
}

TEST_F(Document, AttributesAreFoundByExactName) {
  CXmlDocument document;
  document.LoadXml("<a b='1' p:b='2' xmlns:p='u'/>");
  CXmlElement const& element = *document.GetDocumentElement();
  EXPECT_EQ(element.GetAttribute("b", ""), "1");
  EXPECT_EQ(element.GetAttribute("b", "u"), "2");
  EXPECT_EQ(element.GetAttribute("B", "u"), "");
  EXPECT_EQ(&element.GetAttribute("x", ""), &element.GetAttribute("y", "u"));

  char const* const instance = "http://www.w3.org/2001/XMLSchema-instance";
  char const* const declarations = "http://www.w3.org/2000/xmlns/";
  for (char const* const uri : {instance, declarations, "", "u"}) {
    bool const isMachinery = uri == instance || uri == declarations;
    EXPECT_EQ(CXmlAttribute("nil", "", uri).IsNilAttribute(), isMachinery) << uri;
    EXPECT_FALSE(CXmlAttribute("nil", "", uri).IsNamespaceAttribute()) << uri;
    EXPECT_FALSE(CXmlAttribute("type", "", uri).IsNilAttribute()) << uri;
    for (char const* const name : {"xmlns", "type", "schemaLocation", "noNamespaceSchemaLocation"}) {
      EXPECT_EQ(CXmlAttribute(name, "", uri).IsNamespaceAttribute(), isMachinery) << name << uri;
    }
  }
}

TEST_F(Document, FileLengthKeepsThePosition) {
  TemporaryFile const file("12345");
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> const open(std::fopen(file.Path().c_str(), "r"), std::fclose);
  std::fseek(open.get(), 2, SEEK_SET);
  EXPECT_EQ(_filelength(open.get()), 5);
  EXPECT_EQ(std::ftell(open.get()), 2);
}

}  // namespace
}  // namespace Quillon9
