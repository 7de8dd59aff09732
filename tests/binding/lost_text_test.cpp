#include <gtest/gtest.h>

#include <string>

#include "dynamic_class.h"
#include "expect_failure.h"
#include "scoped_locale.h"

namespace Quillon9 {
namespace {

using namespace Quillon9Data;
using namespace Testing;

Shape NoteShape() {
  return Shape({}, {Prim<CElementInfoSeqPrimMnd>("a", 0), Prim<CElementInfoSeqPrimOpt>("b", 1)},
               {Attribute("c", 2, true)});
}

TEST(LostText, WritingReportsBytesThatAreNoCharacters) {
  ScopedLocale const scoped("C.UTF-8");
  Shape const shape = NoteShape();
  DynamicClass object(shape, "node");
  object.With(0, "Zo\xE9 \xE9\xFF").With(2, "\xE9");
  using Write = CBinaryData (*)(DynamicClass const&, CXmlSerializationContext const&);
  Write const writes[] = {
      [](auto const& o, auto const& ctx) { return o.ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, ctx); },
      [](auto const& o, auto const& ctx) { return o.ToXmlStream(false, false, XmlEncoding_UTF16, EOLType_LF, ctx); },
      [](auto const& o, auto const& ctx) { return o.ToFastInfosetStream(FInfoDecl_None, ctx); },
  };
  for (Write const write : writes) {
    CFailureList list;
    CXmlSerializationContext ctx;
    ctx.SetFailureSink(&list);
    CBinaryData const data = write(object, ctx);
    EXPECT_EQ(write(object, {}), data);
    EXPECT_EQ(
        "remark: /node/@c: The byte 0xE9 is not part of a character of the code page\n"
        "remark: /node/a: The byte 0xE9 is not part of a character of the code page\n"
        "remark: /node/a: The byte 0xFF is not part of a character of the code page\n",
        list.GetReport());
    EXPECT_EQ(FailureKind_LostCharacter, list.GetFailures()[0].GetKind());
    ctx.SetMaxFailures(2);
    list.Clear();
    write(object, ctx);
    EXPECT_EQ(2U, list.GetFailures().size());
  }
}

TEST(LostText, ReadingReportsCharactersThatTheCodePageLacks) {
  struct Row {
    char const* locale;
    char const* document;
    std::string told;
  } const rows[] = {
      {"C", "<node><a>Zoe</a></node>", ""},
      {"C.UTF-8", "<node c='\u20AC'><a>\U0001F600</a></node>", ""},
      {"C", "<node><a>\u20AC \u20AC\u00EB</a>\n<b>\u20AC</b></node>",
       "1:7: remark: /node/a: The character U+20AC has no place in the code page\n"
       "1:7: remark: /node/a: The character U+00EB has no place in the code page\n"
       "2:1: remark: /node/b: The character U+20AC has no place in the code page\n"},
      {"C", "<node c='\U0001F600'>\n  <a/></node>",
       "1:1: remark: /node: The character U+1F600 has no place in the code page\n"},
      // A namespace is known before its element.
      {"C", "<node xmlns:n='\u20AC'><a xmlns:m='\u00EB'/></node>",
       "1:1: remark: /node: The character U+20AC has no place in the code page\n"
       "1:1: remark: /node: The character U+00EB has no place in the code page\n"},
      {"de_DE.ISO-8859-1", "<node c='\u00EB'><a>\u00EB&#x20AC;</a></node>",
       "1:13: remark: /node/a: The character U+20AC has no place in the code page\n"},
      {"ja_JP.SJIS", "<node><a>\u65E5\u00EB</a></node>",
       "1:7: remark: /node/a: The character U+00EB has no place in the code page\n"},
  };
  Shape const shape = NoteShape();
  for (Row const& row : rows) {
    ScopedLocale const scoped(row.locale);
    if (!scoped.IsThere()) continue;
    CFailureList list;
    CXmlSerializationContext ctx;
    ctx.SetFailureSink(&list);
    DynamicClass object(shape);
    object.FromXml(row.document, ctx);
    EXPECT_EQ(row.told, list.GetReport()) << row.locale;
    list.Clear();
    ctx.SetTextEncoding(TextEncoding_UTF8);
    object.FromXml(row.document, ctx);
    EXPECT_EQ("", list.GetReport()) << row.locale;
  }
}

TEST(LostText, ReadingFastInfosetReportsThemToo) {
  Shape const shape = NoteShape();
  CXmlSerializationContext utf8;
  utf8.SetTextEncoding(TextEncoding_UTF8);
  DynamicClass object(shape);
  object.FromXml("<node c='\u20AC'><a>\u00EB</a><b>\u00EB</b></node>", utf8);
  CBinaryData const data = object.ToFastInfosetStream(FInfoDecl_None, utf8);
  ScopedLocale const scoped("C");
  CFailureList list;
  CXmlSerializationContext ctx;
  ctx.SetFailureSink(&list);
  object.FromXmlStream(data, ctx);
  ASSERT_LE(2U, list.GetFailures().size());  // a text that is repeated is converted once
  EXPECT_EQ("/node", list.GetFailures()[0].GetPlace().GetPath());
  EXPECT_EQ("The character U+20AC has no place in the code page", list.GetFailures()[0].GetText());
  EXPECT_EQ("/node/a", list.GetFailures()[1].GetPlace().GetPath());
}

TEST(LostText, RemarksAreLimited) {
  ScopedLocale const scoped("C");
  Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("a", 0)});
  std::string document = "<node><a>";
  for (char last = '\x80'; last != '\xC0'; ++last) document += std::string("\xD0") + last;
  document += "</a></node>";
  for (std::uint32_t const most : {1U, 10U, 0U}) {
    CFailureList list;
    CXmlSerializationContext ctx;
    ctx.SetFailureSink(&list);
    ctx.SetMaxFailures(most);
    DynamicClass object(shape);
    object.FromXml(document.c_str(), ctx);
    EXPECT_EQ(most != 0 ? most : 64U, list.GetFailures().size());
  }
}

// What a sink throws reaches the caller as it is, also if it could be a failure of the document.
TEST(LostText, ASinkMayThrow) {
  struct Throwing : IFailureSink {
    bool OnFailure(CFailure const&) override {
      ++m_calls;
      throw CQnOverFlowException("sink");
    }
    int m_calls = 0;
  };
  ScopedLocale const scoped("C");
  Shape const shape = NoteShape();
  Throwing sink;
  CXmlSerializationContext ctx;
  ctx.SetFailureSink(&sink);
  DynamicClass object(shape);
  EXPECT_FAILURE(CQnOverFlowException, "sink", object.FromXml("<node><a>\u20AC\u20AC\u00EB</a></node>", ctx));
  EXPECT_EQ(1, sink.m_calls);
  EXPECT_FAILURE(CQnOverFlowException, "sink", object.FromXml("<node><b/></node>", ctx));
  EXPECT_EQ(2, sink.m_calls);
  object.With(0, "\xE9");
  EXPECT_FAILURE(CQnOverFlowException, "sink", object.ToFastInfosetStream(FInfoDecl_None, ctx));
}

}  // namespace
}  // namespace Quillon9
