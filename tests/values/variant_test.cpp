#include "quillon9/values/variant.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "dynamic_class.h"
#include "expect_failure.h"

namespace Quillon9 {
namespace {

using namespace Testing;

constexpr auto kNone = CWhitespaceUtils::WhitespaceRule_None;
constexpr auto kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

TEST(Variant, TextThereAndBack) {
  // clang-format off
  struct { ItemType type; char const *name, *text, *back; } const rows[] = {
      {ItemType_hexBinary, "hexBinary", "0aFF", "0AFF"}, {ItemType_base64Binary, "base64Binary", "TWFu", "TWFu"},
      {ItemType_i1, "i1", "-128", "-128"}, {ItemType_i2, "i2", "-32768", "-32768"},
      {ItemType_i4, "i4", "-2147483648", "-2147483648"},
      {ItemType_i8, "i8", "-9223372036854775808", "-9223372036854775808"},
      {ItemType_ui1, "ui1", "255", "255"}, {ItemType_ui2, "ui2", "65535", "65535"},
      {ItemType_ui4, "ui4", "4294967295", "4294967295"},
      {ItemType_ui8, "ui8", "18446744073709551615", "18446744073709551615"},
      {ItemType_r4, "r4", "1.5", "1.5"}, {ItemType_r8, "r8", "0.1", "0.1"}, {ItemType_char, "char", "x", "x"},
      {ItemType_string, "string", "a b", "a b"}, {ItemType_boolean, "boolean", "1", "true"}};
  // clang-format on
  QnVariant value;  // each kind follows another one
  for (auto const& row : rows) {
    value.FromString(row.text, row.type, kNone);
    EXPECT_TRUE(value.IsValid());
    EXPECT_EQ(row.type, value.GetItemType());
    EXPECT_EQ(row.name, value.GetType());
    QnVariant copy(value);
    QnVariant const moved(std::move(value));
    EXPECT_FALSE(value.IsValid());
    value = copy;
    EXPECT_EQ(row.back, value.ToString());
    EXPECT_EQ(row.back, moved.ToString());
    copy = std::move(value);
    EXPECT_EQ(row.back, copy.ToString());
  }
}

TEST(Variant, ScalarGettersReadTheBytesOfOtherKinds) {
  QnVariant value;
  value.SetUI4(4294967295U);
  EXPECT_EQ(-1, value.GetI4());
  EXPECT_TRUE(value.GetBoolean());
  value.SetR8(1.25);
  EXPECT_EQ(0x3FF4000000000000, value.GetI8());
  EXPECT_EQ("1.2500", value.ToString("%.4f"));
}

TEST(Variant, NothingHeld) {
  QnVariant value;
  EXPECT_FALSE(value.IsValid());
  EXPECT_FAILURE(CQnException, "Invalid Type 0", value.GetType());
  EXPECT_FAILURE(CQnException, "Invalid Type 0 to convert to string", value.ToString());
  EXPECT_EQ("", value.GetString());
  EXPECT_EQ(CBinaryData(), value.GetHexBinary());
  EXPECT_EQ(nullptr, value.GetXmlObject().Get());
  EXPECT_EQ(nullptr, value.GetXmlCollection().Get());
  EXPECT_FALSE(QnVariant(value).IsValid());
}

QnVariant Parsed(char const* text, ItemType type) {
  QnVariant value;
  value.FromString(text, type, CWhitespaceUtils::WhitespaceRule_None);
  return value;
}

TEST(Variant, ValuesOfTemporaryVariantsOutliveThem) {
  std::string const digits(100, '7');
  auto const& text = Parsed(digits.c_str(), ItemType_string).GetString();
  auto const& integer = Parsed(digits.c_str(), ItemType_integer).GetInteger();
  auto const& decimal = static_cast<QnVariant const&&>(Parsed((digits + ".5").c_str(), ItemType_decimal)).GetDecimal();
  EXPECT_EQ(digits, text);
  EXPECT_EQ(digits, integer.ToString());
  EXPECT_EQ(digits + ".5", decimal.ToString());
  EXPECT_FAILURE(CQnException, "Invalid Type 26 to read as string", Parsed("1", ItemType_integer).GetString());
}

TEST(Variant, GettersOfOwnedKindsRefuseOthers) {
  QnVariant value;
  value.SetUI8(std::numeric_limits<std::uint64_t>::max());
  EXPECT_FAILURE(CQnException, "Invalid Type 10 to read as string", value.GetString());
  EXPECT_FAILURE(CQnException, "Invalid Type 10 to read as hexBinary", value.GetHexBinary());
  EXPECT_FAILURE(CQnException, "Invalid Type 10 to read as base64Binary", value.GetBase64Binary());
  EXPECT_FAILURE(CQnException, "Invalid Type 10 to read as xmlObject", value.GetXmlObject());
  EXPECT_FAILURE(CQnException, "Invalid Type 10 to read as xmlCollection", value.GetXmlCollection());
  value.SetHexBinary(CBinaryData("Man"));
  EXPECT_EQ(CBinaryData("Man"), value.GetBase64Binary());  // the same class
}

TEST(Variant, CopiesAreDeep) {
  QnVariant text;
  text.SetString("one");
  QnVariant const copy(text);
  text.SetString(text.GetString() + " more");  // the argument is made before the old text is released
  EXPECT_EQ("one", copy.GetString());
  EXPECT_EQ("one more", text.GetString());
}

TEST(Variant, AssignedToItselfIsEmpty) {
  Shape const shape({}, {});
  CSmartPtr<DynamicClass> const object(new DynamicClass(shape));
  QnVariant value;
  value.SetXmlObject(object.Get());
  QnVariant& same = value;
  value = same;
  EXPECT_FALSE(value.IsValid());
  EXPECT_EQ(2, object->AddRef());  // so that only the pointer held it
  object->Release();
}

TEST(Variant, FailedConversionKeepsTheValue) {
  QnVariant value;
  value.SetString("old");
  EXPECT_FAILURE(CQnInvalidValueException, "The value [abc] can not be converted to a i4",
                 value.FromString("abc", ItemType_i1, kCollapse));
  EXPECT_EQ("old", value.GetString());
  for (ItemType type : {ItemType_invalid, ItemType_xmlObject, ItemType_xmlCollection}) {
    EXPECT_FAILURE(CQnException, "Invalid Type 23 to convert to string", value.FromString("x", type, kCollapse));
  }
  value.FromString(" 1 ", ItemType_i1, kCollapse);
  EXPECT_EQ(1, value.GetI1());
}

TEST(Variant, HoldsCountedReferences) {
  Shape const shape({}, {});
  auto* const object = new DynamicClass(shape, "o");
  QnVariant value;
  value.SetXmlObject(object);
  {
    QnVariant const copy(value);
    QnVariant const moved(std::move(value));
    value = moved;
    EXPECT_EQ(object, copy.GetXmlObject().Get());
    EXPECT_EQ(4, object->AddRef());
    EXPECT_EQ(3, object->Release());
  }
  value.SetXmlObject(object);  // held throughout
  EXPECT_EQ("o", value.GetXmlObject()->GetElementName());
  EXPECT_FAILURE(CQnException, "Invalid Type 27", value.GetType());
  EXPECT_FAILURE(CQnException, "Invalid Type 27 to convert to string", value.ToString());
  EXPECT_FAILURE(CQnException, "Invalid Type 27 to read as xmlCollection", value.GetXmlCollection());
  value.SetXmlObject(nullptr);
  EXPECT_TRUE(value.IsValid());
  EXPECT_EQ(nullptr, QnVariant(value).GetXmlCollection().Get());
}

TEST(Variant, CollectionIsAnObjectToo) {
  Shape const shape({}, {});
  auto* const collection = new DynamicCollection(shape, "item", 0, -1);
  QnVariant asCollection;
  asCollection.SetXmlCollection(collection);
  QnVariant asObject;
  asObject.SetXmlObject(asCollection.GetXmlObject().Get());
  EXPECT_EQ(collection, asCollection.GetXmlCollection().Get());
  EXPECT_EQ(collection, asObject.GetXmlCollection().Get());
}

TEST(Variant, TakesItsOwnValueAndGivesItAway) {
  char const* const digits = "123456789012345678901234567890";
  QnVariant value;
  value.SetDecimal(CDecimal(digits));
  value.SetDecimal(value.GetDecimal());
  EXPECT_EQ(digits, value.ToString());
  value.SetDecimal(std::move(const_cast<CDecimal&>(value.GetDecimal())));
  EXPECT_EQ(digits, value.ToString());
  value.SetInteger(CBigInteger(digits));
  value.SetInteger(value.GetInteger());
  value.SetString(value.ToString());
  value.SetString(value.GetString());
  QnVariant taken(std::move(value));
  EXPECT_EQ(digits, taken.GetString());
  EXPECT_FALSE(value.IsValid());
  value = std::move(taken);
  EXPECT_EQ(digits, value.GetString());
  EXPECT_FALSE(taken.IsValid());
}

}  // namespace
}  // namespace Quillon9
