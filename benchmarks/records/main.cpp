// Reads and writes long documents of orders record by record, to see that memory stays flat and how fast it is.
//
//   long_orders make MEGABYTES                      writes a document in text to the standard output
//   long_orders make-infoset MEGABYTES              the same in Fast Infoset
//   long_orders read FILE [THREADS]                 reads records; "-" is the standard input
//   long_orders work FILE [THREADS]                 the same, and writes each record as text, which takes about as long
//   long_orders whole FILE                          reads a file as a whole
//   long_orders copy FILE                           reads records of text or Fast Infoset and writes Fast Infoset
//
// Prints the number of records, the megabytes of input and seconds, and the most memory that was used, on the standard
// error output.

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "generatedorders.h"
#include "orders/generator.h"
#include "quillon9/quillon9.h"

namespace {

using namespace Quillon9;
using Order = GeneratedOrders::COrderType;

constexpr char kPath[] = "/orders/order";

/// Says what was done when it is destroyed.
class Report {
 public:
  ~Report() {
    std::chrono::duration<double> const time = std::chrono::steady_clock::now() - m_start;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::fprintf(stderr, "%llu records, %.1f MB, %.2f s, %.1f MB/s, at most %.1f MiB\n",
                 static_cast<unsigned long long>(records), megabytes, time.count(), megabytes / time.count(),
                 static_cast<double>(usage.ru_maxrss) / 1024);
  }

  std::uint64_t records = 0;
  double megabytes = 0;

 private:
  std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

CRecordSource SourceOf(char const* file) {
  if (std::strcmp(file, "-") == 0) return CRecordSource::Descriptor(0);
  return CRecordSource(file);
}

/// Some orders, which are written over and over.
std::vector<CSmartPtr<Order>> SomeOrders() {
  Orders::Document const document = Orders::GenerateOrders(1000000, false);
  CXmlRecordReader reader(CRecordSource::Memory(document.text.data(), document.text.size()));
  reader.SelectRecords(kPath);
  std::vector<CSmartPtr<Order>> orders;
  for (CSmartPtr<Order> const& order : reader.Records<Order>()) orders.push_back(order);
  return orders;
}

void Make(double megabytes, bool isInfoset) {
  Report report;
  std::vector<CSmartPtr<Order>> const orders = SomeOrders();
  CRecordTarget target([&report](char const* bytes, std::size_t size) {
    if (std::fwrite(bytes, 1, size, stdout) != size) throw CQnException("The standard output is closed");
    report.megabytes += static_cast<double>(size) / 1e6;
  });
  CXmlRecordWriter writer(std::move(target));
  if (isInfoset) writer.SetFastInfoset();
  writer.OpenElement("orders", "urn:example:orders");
  while (report.megabytes < megabytes) {
    for (CSmartPtr<Order> const& order : orders) writer.Write(*order, "order");
    report.records += orders.size();
  }
  writer.Finish();
}

template <class Use>
void Read(char const* file, char const* threads, Use use) {
  Report report;
  CXmlRecordReader reader(SourceOf(file));
  reader.SelectRecords(kPath);
  if (threads == nullptr) {
    while (CSmartPtr<Order> const order = reader.Next<Order>()) use(order);
  } else {
    reader.ForEachRecord<Order>(static_cast<unsigned>(std::atoi(threads)), use);
  }
  report.records = reader.GetCount();
  report.megabytes = static_cast<double>(reader.GetInputOffset()) / 1e6;
}

void Copy(char const* file) {
  Report report;
  CXmlRecordReader reader(SourceOf(file));
  reader.SelectRecords(kPath);
  CXmlRecordWriter writer(CRecordTarget::Descriptor(1));
  writer.SetFastInfoset();
  writer.OpenElement("orders", "urn:example:orders");
  while (CSmartPtr<Order> const order = reader.Next<Order>()) writer.Write(*order, "order");
  writer.Finish();
  report.records = reader.GetCount();
  report.megabytes = static_cast<double>(reader.GetInputOffset()) / 1e6;
}

void ReadWhole(char const* file) {
  Report report;
  CSmartPtr<GeneratedOrders::COrders> const orders = GeneratedOrders::ReadOrders(file);
  report.records = static_cast<std::uint64_t>(orders->GetOrder().GetCount());
  if (std::FILE* const opened = std::fopen(file, "rb")) {
    std::fseek(opened, 0, SEEK_END);
    report.megabytes = static_cast<double>(std::ftell(opened)) / 1e6;
    std::fclose(opened);
  }
}

bool Run(int argc, char** argv) {
  if (argc < 3) return false;
  std::string const command = argv[1];
  if (command == "make" || command == "make-infoset") {
    Make(std::atof(argv[2]), command != "make");
  } else if (command == "read") {
    Read(argv[2], argc > 3 ? argv[3] : nullptr, [](CSmartPtr<Order> const&) {});
  } else if (command == "work") {
    Read(argv[2], argc > 3 ? argv[3] : nullptr, [](CSmartPtr<Order> const& order) { order->ToXml(); });
  } else if (command == "copy") {
    Copy(argv[2]);
  } else if (command == "whole") {
    ReadWhole(argv[2]);
  } else {
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (Run(argc, argv)) return 0;
    std::fprintf(stderr, "usage: %s make|make-infoset MEGABYTES | read|work FILE [THREADS] | copy FILE | whole FILE\n",
                 argv[0]);
    return 2;
  } catch (CQnException const& failure) {
    std::fprintf(stderr, "%s\n", failure.GetReport().c_str());
    return 1;
  }
}
