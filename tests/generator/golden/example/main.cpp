// Reads a document whose element is purchaseOrder, and writes it again.
//
// quillon9 generate has written this file once, and does not change it any more.
#include <iostream>

#include "orders.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: " << argv[0] << " INPUT OUTPUT\n";
    return 2;
  }
  try {
    auto const object = Orders::ReadPurchaseOrder(argv[1]);
    // Work with the object here, for example with object->GetShipTo().
    object->ToXmlFile(argv[2]);
  } catch (Quillon9::CQnException const& failure) {
    std::cerr << failure.GetReport() << '\n';
    return 1;
  }
  return 0;
}
