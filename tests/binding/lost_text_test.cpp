#include <gtest/gtest.h>

#include <string>

#include "dynamic_class.h"
#include "expect_failure.h"
#include "scoped_locale.h"

namespace Quillon9 {
namespace {

using namespace Quillon9Data;
using namespace Testing;

constexpr char kByteE9[] = "The byte 0xE9 is not part of a character of the code page";

Shape NoteShape() {
  return Shape({}, {Prim<CElementInfoSeqPrimMnd>("a", 0), Prim<CElementInfoSeqPrimOpt>("b", 1)},
               {Attribute("c", 2, true)});
}

TEST(LostText, WritingReportsBytesThatAreNoCharacters) {
  ScopedLocale const scoped("C.UTF-8");
  Shape const shape = NoteShape();
  DynamicClass object(shape);
  object.With(0, "Zo\xE9 \xE9");
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
    ASSERT_EQ(1U, list.GetFailures().size());
    EXPECT_EQ(FailureKind_LostCharacter, list.GetFailures()[0].GetKind());
    EXPECT_EQ(FailureSeverity_Remark, list.GetFailures()[0].GetSeverity());
    EXPECT_EQ(kByteE9, list.GetFailures()[0].GetText());
  }
}

}  // namespace
}  // namespace Quillon9
