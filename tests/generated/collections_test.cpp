#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "expect_failure.h"
#include "generated/shop_types.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;
using namespace Shop;

namespace {

std::vector<int> Quantities(CObjectCol<CLine> const& lines) {
  std::vector<int> numbers;
  std::transform(lines.begin(), lines.end(), std::back_inserter(numbers),
                 [](CLine const& line) { return line.GetQuantity(); });
  return numbers;
}

TEST(ObjectCol, BehavesAsAContainer) {
  auto const order = CreateOrder();
  CObjectCol<CLine>& lines = order->GetLine();
  EXPECT_TRUE(lines.empty());
  for (int const number : {3, 1, 2}) lines.Add().SetQuantity(number);
  CSmartPtr<CLine> const other = CLine::CreateInstance("");
  other->SetQuantity(9);
  EXPECT_EQ(other.Get(), &lines.Insert(1, other));
  EXPECT_EQ("line", other->GetElementName());
  EXPECT_EQ((std::vector<int>{3, 9, 1, 2}), Quantities(lines));
  EXPECT_EQ(4u, lines.size());
  EXPECT_EQ(3, lines.front().GetQuantity());
  EXPECT_EQ(2, lines.back().GetQuantity());
  EXPECT_EQ(1, lines[2].GetQuantity());

  auto const isNine = [](CLine const& line) { return line.GetQuantity() == 9; };
  CObjectCol<CLine>::const_iterator const nine = std::find_if(lines.begin(), lines.end(), isNine);
  EXPECT_EQ(1, lines.erase(nine)->GetQuantity());
  EXPECT_EQ(lines.end(), lines.erase(std::next(lines.begin()), lines.end()));
  EXPECT_EQ((std::vector<int>{3}), Quantities(lines));
  for (CLine& line : lines) line.SetQuantity(5);
  EXPECT_EQ(5, lines.at(0).GetQuantity());
  EXPECT_FAILURE(CQnInvalidParamException, "Index 1 is out of range, use 0 - 1", lines.at(1));
  EXPECT_FAILURE(CQnInvalidParamException, "The Property [line] is mandatory, it may node be NULL", lines.Add(nullptr));
  EXPECT_FAILURE(CQnInvalidParamException,
                 "This property requrires an element with the name line the element being set has the element name x",
                 lines.Add(CLine::CreateInstance("x")));
  lines.Clear();
  EXPECT_FAILURE(CQnInvalidParamException, "Index 0 is out of range, use 0 - 0", lines.front());
}

TEST(ObjectCol, ServesClassesByHand) {
  class Items : public CObjectCol<CParty> {
   public:
    Items() : CObjectCol("party", "urn:shop", 0, -1) {}
  };
  CSmartPtr<Items> const items = new Items;
  items->Add(CFirm::CreateInstance());
  EXPECT_TRUE(items->front().GetTypeAttribute());  // of another type than the collection
  EXPECT_EQ("party", items->front().GetElementName());
}

TEST(EnumCol, HoldsEnumerators) {
  auto const order = CreateOrder();
  CEnumCol<EColour>& colours = order->GetColour();
  colours.Add(EColour::Blue);
  colours.AddAt(0, EColour::LightGreen);
  colours.AddFromString(" red ");
  EXPECT_EQ((std::vector<EColour>{EColour::LightGreen, EColour::Blue, EColour::Red}),
            std::vector<EColour>(colours.begin(), colours.end()));
  EXPECT_EQ(1, std::count(colours.begin(), colours.end(), EColour::Blue));
  EXPECT_EQ(EColour::Blue, colours[1]);
  EXPECT_FAILURE(CQnInvalidValueException, "The number 3 is not one of the enumeration [EColour]",
                 colours.Add(static_cast<EColour>(3)));
  colours.Remove(0);
  EXPECT_EQ(2u, colours.size());
  EXPECT_STREQ("light green", ToText(EColour::LightGreen));
  EXPECT_EQ(nullptr, ToText(static_cast<EColour>(-1)));
  EXPECT_EQ(EColour::LightGreen, ColourFromText("light green"));
}

TEST(ValueCol, BehavesAsAContainer) {
  auto const order = CreateOrder();
  for (int const number : {4, 5, 6}) order->GetSlot().Add(number);
  Ci4Col const& slots = order->GetSlot();
  EXPECT_EQ(15, std::accumulate(slots.begin(), slots.end(), 0));
  EXPECT_EQ(3u, slots.size());
  EXPECT_FALSE(slots.empty());
  EXPECT_EQ(5, slots[1]);
  EXPECT_FAILURE(CQnInvalidParamException, "Index 3 is out of range, use 0 - 3", slots[3]);
}

TEST(Roots, ComeFromEverySource) {
  std::string const text = "<s:colour xmlns:s='urn:shop'> light green </s:colour>";
  std::string const path = ::testing::TempDir() + "quillon9_roots_test.xml";
  std::ofstream(path) << text;
  std::istringstream stream(text);
  CBinaryData const bytes(text.c_str());
  for (CXmlSource const& source :
       {CXmlSource(path), CXmlSource(path.c_str()), CXmlSource(XmlText(text)), CXmlSource(bytes), CXmlSource(stream)}) {
    auto const root = Shop::ReadRoot(source);
    auto const* const colour = dynamic_cast<CValueElement<EColour>*>(root.Get());
    ASSERT_NE(nullptr, colour);
    EXPECT_EQ(EColour::LightGreen, colour->GetValue());
  }
  std::remove(path.c_str());
}

TEST(Roots, MustBeThoseOfTheSchema) {
  EXPECT_FAILURE(CQnValidationException, "The document element is [other] instead of [{urn:shop}order]",
                 ReadOrder(XmlText("<other/>")));
  EXPECT_FAILURE(CQnValidationException,
                 "The document element is [{urn:x}order] instead of [{urn:shop}order] or [{urn:shop}party] or "
                 "[{urn:shop}colour] or [anything]",
                 Shop::ReadRoot(XmlText("<order xmlns='urn:x'/>")));
  EXPECT_FAILURE(CQnException, "XML Stream is empty!", ReadOrder(XmlText("")));
  auto const anything = Shop::ReadRoot(XmlText("<anything>t</anything>"));
  EXPECT_EQ("t", dynamic_cast<CElement&>(*anything).GetText());
}

}  // namespace
