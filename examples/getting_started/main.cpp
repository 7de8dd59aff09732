// Reads a weather report, changes it and writes it. The classes are generated from weather.xsd while building.
// docs/getting-started.md explains it step by step.

// [includes]
#include <iostream>

#include "quillon9/quillon9.h"
#include "weather.h"

using namespace Weather;
// [includes]
using Quillon9::CQnException;
using Quillon9::CXmlObjectBase;
using Quillon9::CXmlSerializationContext;
using Quillon9::XmlText;

namespace {

// [read]
void Print(CReport const& report) {
  std::cout << report.GetDate().ToString() << ", " << ToText(report.GetSky());
  if (report.GetTown()) std::cout << " in " << *report.GetTown();
  std::cout << '\n';
  for (CReading const& reading : report.GetReading()) {
    std::cout << int{reading.GetHour()} << " h: " << reading.GetTemperature().ToString() << report.GetUnit() << '\n';
  }
}
// [read]

// [optional]
void PrintWind(CReport const& report) {
  CWind const* const wind = report.GetWind();
  if (wind == nullptr) return;
  std::cout << "Wind from " << wind->GetFrom();
  if (wind->GetSpeed()) std::cout << ", " << *wind->GetSpeed() << " m/s";
  std::cout << '\n';
}
// [optional]

// [choice]
void PrintPlace(CReport const& report) {
  switch (report.GetChoice()) {
    case CReport::EChoice::Station: std::cout << "Station " << *report.GetStation() << '\n'; break;
    case CReport::EChoice::Town: std::cout << "Town " << *report.GetTown() << '\n'; break;
    case CReport::EChoice::None: break;
  }
}
// [choice]

// [rounds]
void PrintMessages(CReport const& report) {
  for (CReport::CMessage const& message : report.GetMessage()) {
    if (message.GetWarning()) std::cout << "Warning: " << *message.GetWarning() << '\n';
    if (message.GetNote()) std::cout << "Note: " << *message.GetNote() << '\n';
  }
}
// [rounds]

// [change]
void Change(CReport& report) {
  report.SetStation(3724);  // unsets the town
  report.SetSky(ESky::Clouds);

  CWind& wind = report.CreateWind();
  wind.SetFrom("NW");
  wind.SetSpeed(11.3);

  report.GetObserver().Add("Åse");

  CReading& evening = report.GetReading().Add();
  evening.SetHour(18);
  evening.SetTemperature("5.25");

  report.GetMessage().erase(report.GetMessage().begin());
  report.GetMessage().Add().SetWarning("Rain until midnight");
}
// [change]

// [write]
void Write(CReport const& report) {
  CXmlSerializationContext context;
  context.SetDefaultNamespaceURI("urn:example:weather");  // otherwise the elements get a prefix
  std::cout << report.ToXml(true, true, Quillon9::EOLType_LF, context);
  report.ToXmlFile("changed.xml");
}
// [write]

// [create]
CSmartPtr<CReport> NewReport() {
  CSmartPtr<CReport> report = CreateReport();
  report->SetDate({2026, 3, 15});
  report->SetTown("Ålesund");
  report->SetSky(SkyFromText("clear"));
  CReading& reading = report->GetReading().Add();
  reading.SetHour(6);
  reading.SetTemperature(-2);
  return report;
}
// [create]

// [wrong]
void ReadWrong() {
  try {
    ReadReport(
        XmlText("<report xmlns='urn:example:weather'>"
                "<date>2026-03-15</date><town>Ålesund</town><sky>rain</sky>"
                "<reading hour='6'><temperatur>4</temperatur></reading>"
                "</report>"));
  } catch (CQnException const& failure) {
    std::cout << failure.GetReport() << '\n' << failure.GetFullMessage() << '\n';
  }
}
// [wrong]

// [facet]
void SetWrong(CReading& reading) {
  try {
    reading.SetTemperature(75);
  } catch (CQnException const& failure) {
    std::cout << failure.GetFullMessage() << '\n';
  }
}
// [facet]

// [root]
void PrintKind(char const* path) {
  CSmartPtr<CXmlObjectBase> const document = ReadRoot(path);
  if (auto const* const report = dynamic_cast<CReport const*>(document.Get())) Print(*report);
}
// [root]

}  // namespace

int main() try {
  std::cout << "[read]\n";
  CSmartPtr<CReport> const report = ReadReport("weather.xml");
  Print(*report);
  PrintWind(*report);
  std::cout << "[rounds]\n";
  PrintMessages(*report);
  std::cout << "[change]\n";
  Change(*report);
  PrintPlace(*report);
  PrintWind(*report);
  std::cout << "[write]\n";
  Write(*report);
  std::cout << "[root]\n";
  PrintKind("changed.xml");
  std::cout << "[create]\n";
  Print(*NewReport());
  std::cout << "[wrong]\n";
  ReadWrong();
  std::cout << "[facet]\n";
  SetWrong(report->GetReading().front());
} catch (CQnException const& failure) {
  std::cerr << failure.GetFullMessage() << '\n';
  return 1;
}
