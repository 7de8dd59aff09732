#include "quillon9/descriptors/attribute_info.h"

#include <gtest/gtest.h>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9Data {
namespace {

using namespace Quillon9;
using namespace Quillon9::Testing;

char const* ColourText(int value) { return value == 0 ? "red" : "green"; }
int ColourNumber(char const* text) { return std::string(text) == "red" ? 0 : 1; }

CAttributeInfo* Colour(bool optional, char const* defaultValue = nullptr) {
  return new CAttributeInfoEnum("c", "", 0, optional, ColourText, ColourNumber, defaultValue);
}

TEST(AttributeWriting, UnsetDefaultAndFacet) {
  CPrimitiveRestrictions const atMost5("", -1, -1, "", "5", "", "", -1);
  struct Row {
    CAttributeInfo* descriptor;
    int value;  // -1 means not set
    bool omitDefaults;
    char const* expected;
  } const rows[] = {
      {Attribute("a", 0, true, ItemType_i4), -1, false, "<root/>"},
      {Attribute("a", 0, true, ItemType_i4), 7, true, "<root a=\"7\"/>"},
      {Attribute("a", 0, true, ItemType_i4, NoFacets(), "7"), 7, false, "<root a=\"7\"/>"},
      {Attribute("a", 0, true, ItemType_i4, NoFacets(), "7"), 7, true, "<root/>"},
      {Attribute("a", 0, true, ItemType_i4, NoFacets(), "7.0"), 7, true, "<root a=\"7\"/>"},
      {Attribute("a", 0, false, ItemType_i4, NoFacets(), "7"), 7, true, "<root a=\"7\"/>"},
      {Attribute("a", 0, true, ItemType_i4, atMost5, "7"), 7, true, "<root/>"},  // a suppressed default is not checked
      {Attribute("a", 0, true, ItemType_i4, atMost5, "7"), 6, true,
       "Failed to convert the element [root] to XML\nFailed to convert attributes to XML\nInvalid Value for a "
       "[6]"},
      {Attribute("a", 0, false, ItemType_i4), -1, false,
       "Failed to convert the element [root] to XML\nFailed to convert attributes to XML\nInvalid Type 0 to "
       "convert to "
       "string"},
      {Colour(true), -1, false, "<root/>"},
      {Colour(false), -1, false, "<root c=\"red\"/>"},  // a required value that is not set counts as number 0
      {Colour(true, "green"), 1, true, "<root/>"},
      {Colour(true, "green"), 1, false, "<root c=\"green\"/>"},
  };
  for (Row const& row : rows) {
    Shape const shape({}, {}, {row.descriptor});
    DynamicClass object(shape);
    if (row.value != -1) object.With(0, row.value);
    CXmlSerializationContext ctx;
    ctx.SetNoOptionalAttributeDefaultOutput(row.omitDefaults);
    std::string text;
    try {
      text = object.Text(ctx);
    } catch (CQnException const& failure) {
      text = failure.GetFullMessage();
    }
    EXPECT_EQ(row.expected, text);
  }
}

TEST(AttributeReading, AnEnumerationMatchesWithoutNamespacesAndSeesTheRawText) {
  Shape const shape({}, {}, {Colour(false)});
  DynamicClass object(shape);
  EXPECT_EQ("<r c=\"red\"/>", ReadBack(object, "<r x:c='red' xmlns:x='urn:x'/>", "N"));
  EXPECT_EQ("<r c=\"green\"/>", ReadBack(object, "<r c=' red'/>"));
  EXPECT_EQ("Failed to process the element [r]\nFailed to find the required Attribute [c]", ReadBack(object, "<r/>"));
}

}  // namespace
}  // namespace Quillon9Data
