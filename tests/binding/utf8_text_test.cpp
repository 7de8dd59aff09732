#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "dynamic_class.h"
#include "expect_failure.h"
#include "quillon9/text/encoder.h"
#include "quillon9/xmlio/document.h"
#include "scoped_locale.h"

namespace Quillon9 {
namespace {

using namespace Quillon9Data;
using namespace Testing;

constexpr char kName[] = "имя";
constexpr char kAttribute[] = "größe";
constexpr char kText[] = "Zoë, Привет, 日本, 😀";
constexpr char kDocument[] = "<root größe=\"😀\"><имя>Zoë, Привет, 日本, 😀</имя></root>";

CXmlSerializationContext Utf8Context() {
  CXmlSerializationContext ctx;
  ctx.SetTextEncoding(TextEncoding_UTF8);
  return ctx;
}

CPrimitiveRestrictions Facets(char const* pattern, int maxLength) {
  return CPrimitiveRestrictions(pattern, -1, maxLength, "", "", "", "", -1);
}

Shape PersonShape(char const* pattern = "(\\p{L}|😀|[ ,])+", int maxLength = 32) {
  return Shape({}, {Prim<CElementInfoSeqPrimMnd>(kName, 0, ItemType_string, Facets(pattern, maxLength))},
               {Attribute(kAttribute, 1, true)});
}

/// Holds UTF-8 without an option, as a generated class does.
struct Utf8Class : DynamicClass {
  using DynamicClass::DynamicClass;
  bool HoldsUtf8Text() const override { return true; }
};

std::string TextOf(CBinaryData const& data) {
  return {reinterpret_cast<char const*>(data.GetData()), data.GetLength()};
}

// Every form of output and input, with the object that reads one back in front of the next.
void ExpectNothingIsLost(std::function<CSmartPtr<DynamicClass>()> const& make, CXmlSerializationContext const& ctx) {
  CSmartPtr<DynamicClass> object = make();
  auto const expectIsKept = [&](char const* what) {
    EXPECT_EQ(kText, object->m_properties[0].GetString()) << what;
    EXPECT_EQ("😀", object->m_properties[1].GetString()) << what;
    EXPECT_EQ(kDocument, object->Text(ctx)) << what;
  };
  object->FromXml(kDocument, ctx);
  expectIsKept("text");
  CBinaryData const bytes = object->ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, ctx);
  EXPECT_EQ(kDocument, TextOf(bytes));
  object = make();
  object->FromXmlStream(bytes, ctx);
  expectIsKept("stream");
  CBinaryData const fastInfoset = object->ToFastInfosetStream(FInfoDecl_None, ctx);
  object = make();
  object->FromXmlStream(fastInfoset, ctx);
  expectIsKept("Fast Infoset");
  CBinaryData const wide = object->ToXmlStream(false, false, XmlEncoding_UTF16, EOLType_LF, ctx);
  std::u32string const expected = U"<root größe=\"😀\"><имя>Zoë, Привет, 日本, 😀</имя></root>";
  EXPECT_EQ(std::string(reinterpret_cast<char const*>(expected.data()), 4 * expected.size()), TextOf(wide));

  CXmlSerializationContext const utf8 = Utf8Context();
  CXmlDocument document(utf8);
  document.LoadXml(kDocument);
  object = make();
  object->FromXmlElement(document.GetDocumentElement(), ctx);
  expectIsKept("tree");
  if (!object->HoldsUtf8Text()) return;
  CSmartPtr<CElement> const generic(new CElement(object.Get(), ""));
  EXPECT_EQ(kDocument, generic->ToXml(false, false, EOLType_LF, Utf8Context()));
  object = make();
  object->FromXmlElement(generic.Get(), ctx);
  expectIsKept("generic content");
}

TEST(Utf8Text, NothingIsLostInAnyLocale) {
  Shape const shape = PersonShape();
  for (char const* locale : {"C", "C.UTF-8", "de_DE.ISO-8859-1"}) {
    ScopedLocale const scoped(locale);
    for (bool const asciiOnly : {false, true}) {
      ASCIIOnly(asciiOnly);
      ExpectNothingIsLost([&] { return CSmartPtr<DynamicClass>(new DynamicClass(shape)); }, Utf8Context());
      ExpectNothingIsLost([&] { return CSmartPtr<DynamicClass>(new Utf8Class(shape)); }, {});
    }
    ASCIIOnly(false);
  }
}

TEST(Utf8Text, LengthsCountBytesUnlessTheClassHoldsUtf8) {
  ScopedLocale const scoped("C");
  struct Row {
    bool ofClass;
    int maxLength;
    bool fits;
  } const rows[] = {{false, 32, true}, {false, 31, false}, {true, 18, true}, {true, 17, false}};
  for (Row const& row : rows) {
    for (char const* pattern : {"", ".+"}) {
      Shape const shape = PersonShape(pattern, row.maxLength);
      CSmartPtr<DynamicClass> const object(row.ofClass ? new Utf8Class(shape) : new DynamicClass(shape));
      object->With(0, kText);
      auto const write = [&] { return object->Text(row.ofClass ? CXmlSerializationContext() : Utf8Context()); };
      if (row.fits) {
        EXPECT_NO_THROW(write()) << row.maxLength;
      } else {
        EXPECT_THROW(write(), CQnException) << row.maxLength;
      }
    }
  }
}

TEST(Utf8Text, IllFormedTextIsRefused) {
  ScopedLocale const scoped("C.UTF-8");
  std::string const longText = std::string(80, 'a') + "ё\xC3";
  using Write = void (*)(DynamicClass const&, CXmlSerializationContext const&);
  struct Row {
    char const* text;
    std::string shown;
    Write write;
  } const rows[] = {
      {"Zo\xEB", "<root><имя>Zo", [](DynamicClass const& o, CXmlSerializationContext const& c) { o.Text(c); }},
      {longText.c_str(), std::string(58, 'a') + "ё",
       [](DynamicClass const& o, CXmlSerializationContext const& c) {
         o.ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, c);
       }},
      {"\xED\xA0\x80", "<root><имя>",
       [](DynamicClass const& o, CXmlSerializationContext const& c) {
         o.ToXmlStream(false, false, XmlEncoding_UTF16, EOLType_LF, c);
       }},
      {"Zo\xEB", "Zo",
       [](DynamicClass const& o, CXmlSerializationContext const& c) { o.ToFastInfosetStream(FInfoDecl_None, c); }},
  };
  Shape const shape = PersonShape("", -1);
  for (Row const& row : rows) {
    DynamicClass object(shape);
    object.With(0, row.text);
    std::string message;
    try {
      row.write(object, Utf8Context());
    } catch (CQnException const& failure) {
      message = failure.GetFullMessage();
      message.erase(0, message.rfind('\n') + 1);
    }
    EXPECT_EQ("The text is not well-formed UTF-8 after [" + row.shown + "]", message);
  }
}

// The encoding belongs to one read: it neither reaches a read inside it nor outlives a failure.
TEST(Utf8Text, ReadsNestAndEnd) {
  ScopedLocale const scoped("C");
  struct Nesting : DynamicClass {
    using DynamicClass::DynamicClass;
    void AccessProperty(int index, bool read, QnVariant& value) override {
      DynamicClass::AccessProperty(index, read, value);
      if (read) return;
      Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("v", 0)});
      DynamicClass plain(shape);
      plain.FromXml("<root><v>é</v></root>");
      m_inner += plain.m_properties[0].GetString();
      EXPECT_ANY_THROW(plain.FromXml("<root><é/></root>", Utf8Context()));
    }
    std::string m_inner;
  };
  Shape const shape({}, {Prim<CElementInfoSeqPrimMnd>("a", 0), Prim<CElementInfoSeqPrimMnd>("b", 1)});
  Nesting object(shape);
  EXPECT_ANY_THROW(object.FromXml("<root><a>ä</a><c/></root>", Utf8Context()));
  object.FromXml("<root><a>ä</a><b>ö</b></root>", Utf8Context());
  EXPECT_EQ("<root><a>ä</a><b>ö</b></root>", object.Text(Utf8Context()));
  EXPECT_EQ("???", object.m_inner);
  EXPECT_EQ("?", CEncoder::Utf8ToLocalCodePage("é"));
}

}  // namespace
}  // namespace Quillon9
