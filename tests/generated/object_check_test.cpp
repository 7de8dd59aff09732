#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "shop_types.h"

// The check of objects of generated classes, and the places of the failures of their writes.
namespace Shop {
namespace {

using namespace Quillon9;

CSmartPtr<COrder> GoodOrder() {
  auto order = COrder::CreateInstance("order");
  auto firm = CFirm::CreateInstance();
  firm->SetName("Quill");
  firm->SetId("123");
  order->SetParty(firm.Get());
  order->SetPickup("noon");
  for (int i = 0; i < 2; ++i) {
    CLine& line = order->GetLine().Add();
    line.SetQuantity(3);
    line.SetPrice(CDecimal("1.25"));
  }
  return order;
}

TEST(GeneratedObjectCheck, EachKindOfFailureIsToldWhereAWriteFails) {
  struct {
    char const* what;
    std::function<void(COrder&)> change;
    std::string reports;
    bool isWritten = false;  // a write lets it pass
  } const cases[] = {
      {"nothing", [](COrder&) {}, "", true},
      {"no object",
       [](COrder& order) {
         order.Init();
         order.SetPickup("x");
         order.GetLine().Add().SetQuantity(1);
       },
       "error: /order: The required element [party] is not set\n"},
      {"values of items",
       [](COrder& order) {
         order.GetLine().Add();
         order.GetLine().Add();
       },
       "error: /order/line[3]/quantity: Invalid Value for quantity [0]\n"
       "error: /order/line[4]/quantity: Invalid Value for quantity [0]\n"},
      {"enumerator of an attribute", [](COrder& order) { order.SetStatus(static_cast<EColour>(9)); },
       "error: /order/@status: The number 9 of [status] has no text\n"},
      {"count", [](COrder& order) { order.GetLine().Clear(); },
       "error: /order: The Minimum number of [line] elements allowed in this collection is 1\n"},
      {"choice with two alternatives", [](COrder& order) { order.GetSlot().Add(4); },
       "error: /order: More than one of the elements [pickup, street, slot] is set, but they exclude each other\n"},
      {"empty choice", [](COrder& order) { order.SetPickup(std::nullopt); },
       "error: /order: None of the elements [pickup, street, slot] is set, and one is required\n"},
      {"part of a sequence", [](COrder& order) { order.SetFrom(CDateTime(2020, 3, 4)); },
       "error: /order: The required element [until] is not set\n"},
      {"part of an alternative", [](COrder& order) { order.SetCity("Rome"); },
       "error: /order: The required element [street] is not set\n"},
      {"round without content",
       [](COrder& order) {
         order.GetRounds().Add().SetText("a");
         order.GetRounds().Add();
         order.GetRounds().Add().SetText("b\xFF");
       },
       "error: /order: None of the elements [text, mark] is set, and one is required\n"
       "error: /order/text[2]: The text is not well-formed UTF-8 after [b]\n"},
      {"wildcard of attributes", [](COrder& order) { order.GetAnyAttributes().Add(new CAttribute("a", "b", "")); },
       "error: /order/@a: Invalid namespace []. The namespace must be one of [##other] where the target namespace is "
       "[urn:shop]\n"},
  };
  for (auto const& tried : cases) {
    SCOPED_TRACE(tried.what);
    CSmartPtr<COrder> const order = GoodOrder();
    tried.change(*order);
    CFailureList failures;
    EXPECT_EQ(tried.reports.empty(), order->Check(CXmlSerializationContext(), &failures));
    EXPECT_EQ(tried.reports, failures.GetReport());
    try {
      order->ToXmlStream();
      EXPECT_TRUE(tried.isWritten);
    } catch (CQnException const& failure) {
      EXPECT_EQ(tried.reports.substr(0, failure.GetReport().size()), failure.GetReport());
    }
  }
}

}  // namespace
}  // namespace Shop
