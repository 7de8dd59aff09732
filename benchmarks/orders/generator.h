#pragma once

#include <cstdint>
#include <string>

namespace Orders {

/// Sums over the contents of a document, by which a reader can prove that it saw all of it.
struct Sums {
  std::uint64_t orders = 0;
  std::uint64_t items = 0;
  std::uint64_t quantity = 0;  ///< of all items
  std::uint64_t priceE4 = 0;   ///< unit prices of all items, in units of 0.0001

  bool operator==(Sums const& other) const;
  bool operator!=(Sums const& other) const { return !(*this == other); }
  /// All four sums, for a message.
  std::string ToString() const;
};

struct Document {
  std::string text;
  Sums sums;
};

/// Write a business document of the schema orders.xsd in UTF-8: orders of customers with nested addresses, some text
/// beyond ASCII, entities, and occasionally a base64 label. It ends with the first order that reaches \p bytes. \p
/// indented puts each element on a separate line, indented by tabs. Equal arguments give equal octets on every machine,
/// and a smaller document is the beginning of a larger one, except for its last tag.
Document GenerateOrders(std::uint64_t bytes, bool indented, std::uint64_t seed = 1);

/// The number of units of 0.0001 in a price with at most four digits after its point.
std::uint64_t PriceE4(std::string const& price);

}  // namespace Orders
