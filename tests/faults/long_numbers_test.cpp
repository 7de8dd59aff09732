// Numbers whose texts are much shorter than their digits. Memory is counted in bytes.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "dynamic_class.h"
#include "failing_allocations.h"
#include "quillon9/quillon9.h"

namespace Quillon9 {
namespace {

using namespace Testing;
using Quillon9Data::CElementInfoSeqPrimCol;

template <class Collection>
Collection* Make(char const* name, char const* minInclusive = "", char const* maxExclusive = "") {
  return new Collection(name, "", 0, -1, "", -1, -1, minInclusive, "", "", maxExclusive, -1,
                        CWhitespaceUtils::WhitespaceRule_Collapse, nullptr);
}

std::string LongValues(int count) {
  std::string document = "<root>";
  for (int i = 0; i < count; ++i) document += "<d>1e99999</d>";
  for (int i = 0; i < count; ++i) document += "<i> -25e99998 </i>";
  return document + "</root>";
}

TEST(LongNumbers, ADocumentTakesMemoryByTheLengthOfItsTexts) {
  std::string const document = LongValues(1000);
  Shape const shape({}, {new CElementInfoSeqPrimCol("d", "", 0), new CElementInfoSeqPrimCol("i", "", 1)});

  auto* const texts = Make<CstringCol>("d");
  DynamicClass written(shape);
  written.With(0, texts).With(1, Make<CstringCol>("i"));
  written.FromXml(document.c_str());
  CBinaryData const infoset = written.ToFastInfosetStream();

  for (bool const isText : {true, false}) {
    auto* const decimals = Make<CdecimalCol>("d", "-2e99999", "1.1e99999");
    auto* const integers = Make<CintegerCol>("i", "-25e99998", "1e5");
    DynamicClass object(shape);
    object.With(0, decimals).With(1, integers);
    std::size_t const before = CountBytesTaken();
    isText ? object.FromXml(document.c_str()) : object.FromXmlStream(infoset);
    ASSERT_EQ(1000, decimals->GetCount());
    ASSERT_EQ(1000, integers->GetCount());
    std::vector<CDecimal> const copies(decimals->begin(), decimals->end());
    EXPECT_LT(CountBytesTaken() - before, 100 * document.size());
    EXPECT_EQ(CBigInteger(CDecimal("-2.5e99999")), *integers->begin());
    EXPECT_EQ("1" + std::string(99999, '0'), copies.back().ToString());
    EXPECT_EQ("-25" + std::string(99998, '0'), integers->begin()->ToString());
  }
}

TEST(LongNumbers, OnlyDigitsThatAreAskedForTakeMemory) {
  CDecimal const value("-1.5e99999");
  CBigInteger const integer("3e100000");
  std::size_t const before = CountBytesTaken();

  CDecimal const bound("-1.4e99999");
  EXPECT_TRUE(value < bound && bound >= value && value != bound && value < CDecimal("0.5"));
  EXPECT_TRUE(integer > CBigInteger(7) && integer == integer.GetAbs() && integer != CBigInteger("3e99999"));
  EXPECT_EQ(value, CDecimal(value.ToBigInteger()));

  QnVariant variant;
  variant.SetDecimal(value);
  variant = QnVariant(variant);
  EXPECT_EQ(value, variant.GetDecimal());
  variant.FromString(" 1E+100000 ", ItemType_integer, CWhitespaceUtils::WhitespaceRule_Collapse);
  EXPECT_EQ(CBigInteger("10e99999"), variant.GetInteger());

  CDecimal changed(value);
  changed.Rationalise();
  changed.ChangeFractionalDivider(0);
  EXPECT_EQ(value, changed);
  changed.ChangeFractionalDivider(100000);
  EXPECT_EQ(value, changed);

  EXPECT_LT(CountBytesTaken() - before, 20000U);
  EXPECT_EQ("-15" + std::string(99998, '0'), value.ToString());
}

TEST(LongNumbers, ArithmeticOfShortDecimalsTakesNoMemory) {
  CDecimal const a("-12345678.5");
  CDecimal const b("1234567.25");
  std::size_t const before = CountBytesTaken();
  CDecimal rounded = a * b;
  rounded.ChangeFractionalDivider(2);
  EXPECT_TRUE(rounded > a * b && (a - b) * CDecimal(2) == a * CDecimal(2) - b - b);
  EXPECT_TRUE(a / CDecimal("0.008") == a * CDecimal(125));
  EXPECT_EQ(before, CountBytesTaken());
  EXPECT_EQ("-15241570355129.12", rounded.ToString());
}

}  // namespace
}  // namespace Quillon9
