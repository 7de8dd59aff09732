// Reads a document of orders that is made while it is read, so that it can have any length in the same memory. Adds up
// the orders of each product, passes over an order that is wrong, and writes the large orders to another document.
//
//   order_stream [number of orders]

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <string>

#include "orders.h"
#include "quillon9/quillon9.h"

using namespace Quillon9;

namespace {

constexpr char kNamespace[] = "urn:example:orders";
constexpr char kTarget[] = "large-orders.xml";
constexpr std::int64_t kWrongOrder = 777;

/// Makes the text of a document with orders, piece by piece.
class OrderText {
 public:
  explicit OrderText(std::int64_t count) : m_count(count) {}

  /// Put at most \p size bytes at \p to, and return their number; 0 at the end.
  std::size_t Read(char* to, std::size_t size) {
    if (m_at == m_piece.size()) {
      m_piece = NextPiece();
      m_at = 0;
    }
    std::size_t const copied = m_piece.copy(to, size, m_at);
    m_at += copied;
    return copied;
  }

 private:
  std::string NextPiece() {
    std::int64_t const number = m_next++;
    if (number == 0) return std::string("<orders xmlns='") + kNamespace + "' shop='Oban'>\n";
    if (number <= m_count) return OrderWith(number);
    return number == m_count + 1 ? "</orders>\n" : "";
  }

  static std::string OrderWith(std::int64_t number) {
    static constexpr char const* kProducts[] = {"Lamp", "Rope", "Anchor"};
    std::string text = "<order number='" + std::to_string(number) + "'>";
    for (std::int64_t item = 0; item <= number % 3; ++item) {
      std::string const quantity = number == kWrongOrder ? "some" : std::to_string(number % 10 + 1);
      text += std::string("<item><product>") + kProducts[item] + "</product><quantity>" + quantity +
              "</quantity><price>" + std::to_string(item + 2) + ".50</price></item>";
    }
    return text + "</order>\n";
  }

  std::int64_t m_count;
  std::int64_t m_next = 0;
  std::string m_piece;
  std::size_t m_at = 0;
};

/// Adds up orders, and writes the large ones.
class Clerk {
 public:
  Clerk() : m_large(kTarget) {
    m_large.OpenElement("orders", kNamespace);
    m_large.DeclareNamespace("", kNamespace);
    m_large.WriteAttribute("shop", "Oban");
  }

  void Take(Orders::COrder& order) {
    CDecimal value;
    for (Orders::CItem const& item : order.GetItem()) {
      CDecimal const price = item.GetPrice() * CDecimal(item.GetQuantity());
      m_quantities[item.GetProduct()] += item.GetQuantity();
      value += price;
    }
    m_value += value;
    if (value > CDecimal(100)) m_large.Write(order, "order", kNamespace);
  }

  void Finish() {
    m_large.Finish();
    for (auto const& [product, quantity] : m_quantities) {
      std::printf("%-8s%10lld\n", product.c_str(), static_cast<long long>(quantity));
    }
    std::printf("value   %10s\n", m_value.ToString().c_str());
    std::printf("%llu large orders in %s\n", static_cast<unsigned long long>(m_large.GetCount()), kTarget);
  }

 private:
  CXmlRecordWriter m_large;
  std::map<std::string, std::int64_t> m_quantities;
  CDecimal m_value;
};

/// The next order that can be read; null at the end. Reports the others.
CSmartPtr<Orders::COrder> NextGood(CXmlRecordReader& reader) {
  for (;;) {
    std::uint64_t const before = reader.GetCount();
    try {
      return reader.Next<Orders::COrder>();
    } catch (CQnException const& failure) {
      if (reader.GetCount() == before) throw;  // not an order, but the document is wrong
      std::printf("passed over: %s\n", failure.GetReport().c_str());
    }
  }
}

void Run(std::int64_t count) {
  OrderText text(count);
  CXmlRecordReader reader(CRecordSource([&text](char* to, std::size_t size) { return text.Read(to, size); }));
  reader.SelectRecords("/orders/order");
  Clerk clerk;
  while (auto const order = NextGood(reader)) clerk.Take(*order);
  clerk.Finish();
  std::printf("%llu orders in %llu bytes\n", static_cast<unsigned long long>(reader.GetCount()),
              static_cast<unsigned long long>(reader.GetInputOffset()));
}

}  // namespace

int main(int argc, char** argv) {
  try {
    Run(argc > 1 ? std::atoll(argv[1]) : 20000);
    return 0;
  } catch (CQnException const& failure) {
    std::printf("%s\n", failure.GetFullMessage().c_str());
  } catch (std::exception const& failure) {
    std::printf("%s\n", failure.what());
  }
  return 1;
}
