// A program whose classes quillon9_generate() makes from schemas/depot.xsd, a header for each type.
#include <iostream>

// [headers]
#include "depots/depot.h"    // CDepot, ReadDepot(), CreateDepot()
#include "depots/driver.h"   // CDriver
#include "depots/vehicle.h"  // CVehicle
// [headers]
#include "depots.h"  // CreateWeight(), ReadRoot()

int main() {
  auto const depot = Depots::CreateDepot();
  depot->SetLimit(Depots::CreateWeight());
  auto& vehicle = depot->GetVehicle().Add();
  vehicle.SetColour(Depots::EColour::Blue);
  vehicle.GetDriver().SetName("Zoe");
  vehicle.GetDriver().CreateSecond().GetDriver().SetName("Max");
  std::string const written = depot->ToXml();
  if (Depots::ReadRoot(Quillon9::XmlText(written))->ToXml() == written) return 0;
  std::cout << written << '\n';
  return 1;
}
