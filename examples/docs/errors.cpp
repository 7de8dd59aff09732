// The code of docs/errors.md.

#include <clocale>
#include <iostream>
#include <new>

#include "orders.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

void First() {
  std::cout << "[first]\n";
  // [first]
  try {
    auto const order = Orders::ReadOrder("orders.xml");
  } catch (CQnException const& failure) {
    std::cout << failure.GetReport() << '\n';
  }
  // [first]
}

void All() {
  std::cout << "[all]\n";
  // [all]
  CFailureList failures;
  CXmlSerializationContext ctx;
  ctx.SetFailureSink(&failures);
  auto const order = Orders::ReadOrder("orders.xml", ctx);
  std::cout << failures.GetReport();
  // [all]
  std::cout << "[kept]\n";
  // [kept]
  for (Orders::CItem const& item : order->GetItems().GetItem()) {
    std::cout << item.GetProduct() << ": " << item.GetQuantity() << '\n';
  }
  // [kept]
}

void Remarks() {
  std::cout << "[remarks]\n";
  // [remarks]
  std::setlocale(LC_ALL, "C");  // which has only ASCII
  CFailureList failures;
  CXmlSerializationContext ctx;
  ctx.SetFailureSink(&failures);
  CElement price("price", "");
  CXmlObjectBase& object = price;
  object.FromXml("<price><amount>5 \u20AC</amount></price>", ctx);
  std::cout << failures.GetReport();
  // [remarks]
}

void Check() {
  std::cout << "[check]\n";
  // [check]
  auto const order = Orders::CreateOrder();
  order->GetShipTo().SetCity("Mill\x07Valley");
  order->GetItems();  // an empty list, but the schema wants at least one item
  CFailureList failures;
  if (!order->Check(CXmlSerializationContext::m_defaultContext, &failures)) std::cout << failures.GetReport();
  // [check]
}

void ReadNested() {
  std::cout << "[nested]\n";
  // [nested]
  auto const order = Orders::CreateOrder();
  try {
    order->FromXml("<order number='7'><shipTo><city>Mill Valley</city><zip>9o952</zip></shipTo></order>");
  } catch (CQnException const& failure) {
    std::cout << failure.GetFullMessage() << '\n';
  }
  // [nested]
  std::cout << "[state]\n"
            << "number " << order->GetNumber() << ", city " << order->GetShipTo().GetCity() << ", zip "
            << order->GetShipTo().GetZip() << '\n';
}

// [innermost]
CQnException const& Innermost(CQnException const& failure) {
  CQnException const* at = &failure;
  while (at->GetInnerException() != nullptr) at = at->GetInnerException();
  return *at;
}
// [innermost]

// [catch]
bool Read(Orders::COrder& order, char const* text) try {
  order.FromXml(text);
  return true;
} catch (CQnValidationException const& failure) {  // well-formed, but not what the classes describe
  CQnException const& cause = Innermost(failure);
  bool const isValue = dynamic_cast<CQnInvalidValueException const*>(&cause) != nullptr;
  std::cout << (isValue ? "a value: " : "the structure: ") << cause.GetMessage() << '\n';
  return false;
} catch (CQnException const& failure) {  // could not be parsed at all, or is too large, or ...
  std::cout << "the input: " << failure.GetMessage() << '\n';
  return false;
} catch (std::bad_alloc const&) {  // not a CQnException
  std::cout << "no memory\n";
  return false;
}
// [catch]

void Sort() {
  std::cout << "[catch]\n";
  auto const order = Orders::CreateOrder();
  Read(*order, "<order number='x'/>");
  Read(*order, "<order number='1'/>");
  Read(*order, "<order number='1'></odrer>");
}

void Write() {
  std::cout << "[write]\n";
  // [write]
  auto const order = Orders::CreateOrder();
  order->GetShipTo().SetCity("Mill Valley");
  order->GetItems();  // an empty list, but the schema wants at least one item
  try {
    std::cout << order->ToXml();
  } catch (CQnException const& failure) {
    std::cout << failure.GetFullMessage() << '\n' << failure.GetReport() << '\n';
  }
  // [write]
}

}  // namespace

int main() {
  First();
  All();
  Remarks();
  ReadNested();
  Sort();
  Write();
  Check();
}
