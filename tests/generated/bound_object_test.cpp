#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

#include "expect_failure.h"
#include "generated/shop_types.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Shop;

namespace {

constexpr char kStart[] = "<order xmlns='urn:shop' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'>";
constexpr char kParty[] = "<party xsi:type='Person' id='007'><name>Zoe</name></party>";
constexpr char kLine[] = "<line><quantity>2</quantity><price>3.5</price></line>";

std::string Order(std::string const& content) { return kStart + content + "</order>"; }

/// What is written, with the namespace of the schema as the default one.
std::string Written(CXmlObjectBase const& object) {
  CXmlSerializationContext ctx;
  ctx.SetDefaultNamespaceURI("urn:shop");
  ctx.GetNamespaceAliases()->Add("xsi", "http://www.w3.org/2001/XMLSchema-instance");
  CBinaryData const bytes = object.ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, ctx);
  std::string text(reinterpret_cast<char const*>(bytes.GetData()), bytes.GetLength());
  std::replace(text.begin(), text.end(), '"', '\'');
  return text;
}

TEST(BoundObject, WritesWhatItRead) {
  std::string const text = Order(std::string(kParty) + "<pickup>x</pickup>" + kLine);
  EXPECT_EQ(text, Written(*ReadOrder(XmlText(text))));
}

}  // namespace
