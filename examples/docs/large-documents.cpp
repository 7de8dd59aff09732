// The code of docs/large-documents.md.

#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "orders.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

void ReadRecords() {
  std::cout << "[read]\n";
  // [read]
  CXmlRecordReader reader("sales.xml");
  reader.SelectRecords("/sales/day/order");
  try {
    while (auto order = reader.Next<Orders::COrder>()) {
      std::cout << order->GetNumber() << ": " << order->GetProduct() << '\n';
    }
  } catch (CQnException const& failure) {
    std::cout << failure.GetReport() << '\n';
  }
  // [read]
}

void GoOn() {
  std::cout << "[bad]\n";
  // [bad]
  CXmlRecordReader reader("sales.xml");
  reader.SelectRecords("//order");
  while (!reader.IsAtEnd()) {
    try {
      auto const order = reader.Next<Orders::COrder>();
      if (order) std::cout << order->GetNumber() << ": " << order->GetProduct() << '\n';
    } catch (CQnException const& failure) {
      std::cout << failure.GetReport() << '\n';
    }
  }
  // [bad]
}

void Surroundings() {
  std::cout << "[around]\n";
  // [around]
  CXmlRecordReader reader("sales.xml");
  reader.SelectRecords("/sales/day/order");
  reader.OnElement("/sales/shop",
                   [](CXmlRecordReader& at) { std::cout << "in " << at.Read<Orders::CShop>()->GetCity() << '\n'; });
  while (reader.Advance()) {
    CXmlElement const& day = *reader.GetAncestors().back();
    std::cout << day.GetAttribute("date", "") << ", " << reader.GetPlace().GetPath() << " at byte "
              << reader.GetPlace().GetOffset() << ": " << reader.GetElement()->GetAttribute("number", "") << '\n';
  }
  // [around]
}

// [source]
CRecordSource FromSocket(int socket) {
  return CRecordSource([socket](char* to, std::size_t size) {
    ssize_t const count = ::read(socket, to, size);
    if (count < 0) throw std::runtime_error("the connection is lost");  // Next() throws it
    return static_cast<std::size_t>(count);                             // 0 is the end
  });
}
// [source]

void ReadInThreads(CRecordSource source) {
  std::cout << "[threads]\n";
  // [threads]
  CXmlRecordReader reader(std::move(source));
  reader.SelectRecords("//order");
  std::atomic<int> sum{0};
  std::uint64_t const count = reader.ForEachRecord<Orders::COrder>(
      4, [&sum](CSmartPtr<Orders::COrder> const& order) { sum += order->GetQuantity(); });
  std::cout << count << " orders of " << sum << " pieces\n";
  // [threads]
}

void WriteRecords() {
  std::cout << "[write]\n";
  // [write]
  CXmlRecordWriter writer("copy.xml");
  writer.OpenElement("sales");
  writer.OpenElement("day");
  writer.WriteAttribute("date", "2026-03-04");
  for (int number = 5; number < 7; ++number) {
    auto const order = Orders::COrder::CreateInstance();
    order->SetNumber(number);
    order->SetProduct("Compass");
    order->SetQuantity(1);
    writer.Write(*order);
  }
  writer.Finish();  // closes the elements; until then, there is no file
  // [write]
  std::ifstream file("copy.xml");
  std::cout << file.rdbuf();
}

void Resume() {
  std::cout << "[resume]\n";
  // [resume]
  std::string point;
  std::uint64_t border = 0;
  {
    CXmlRecordReader reader("sales.xml");
    reader.SelectRecords("//order");
    while (reader.GetCount() < 3 && reader.Skip()) {
    }
    point = reader.GetResumePoint();
    border = static_cast<std::uint64_t>(reader.GetPlace().GetOffset());
  }
  CXmlRecordReader first("sales.xml");  // the records in front of the third one
  first.SelectRecords("//order");
  first.SetEnd(border);
  CXmlRecordReader second("sales.xml");  // the third one and those that follow
  second.SelectRecords("//order");
  second.SetStart(point);
  for (CXmlRecordReader* const part : {&first, &second}) {
    while (part->Advance()) std::cout << part->GetElement()->GetAttribute("number", "") << ' ';
    std::cout << "end of the part\n";
  }
  // [resume]
}

}  // namespace

int main() {
  ReadRecords();
  GoOn();
  Surroundings();
  int pipe[2];
  if (::pipe(pipe) != 0) return 1;
  static constexpr char kOrders[] =
      "<orders><order number='1'><product>Lamp</product><quantity>2</quantity></order>"
      "<order number='2'><product>Rope</product><quantity>3</quantity></order></orders>";
  if (::write(pipe[1], kOrders, sizeof kOrders - 1) < 0) return 1;
  ::close(pipe[1]);
  ReadInThreads(FromSocket(pipe[0]));
  WriteRecords();
  Resume();
}
