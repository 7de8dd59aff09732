#pragma once

#include <cstddef>
#include <string>

#include "orders/generator.h"
#include "orders/orders.h"

namespace Orders {

/// A document and, where an operation writes, the objects that were read from it.
struct Workload {
  Workload(std::uint64_t bytes, bool isIndented);

  bool indented;
  Document document;
  CSmartPtr<COrders> objects;  ///< null until ReadObjects()

  /// Fill objects from the document.
  void ReadObjects();
};

/// One way to go over a whole document.
struct Operation {
  char const* name;
  bool writes;  ///< needs objects, not the text
  /// Do the work once, as it is to be timed; the number of octets taken or given.
  std::size_t (*run)(Workload& load);
  /// Do it once and sum up what came of it. Equal sums prove that the work was done.
  Sums (*prove)(Workload& load);
};

/// The parser alone: namespaces on, handlers that do nothing. What everything else is compared with.
extern Operation const kRawExpat;
/// CXmlDocument::LoadXmlStream(): parser and tree.
extern Operation const kLoadTree;
/// FromXmlStream(): from octets to objects, the objects' destruction included.
extern Operation const kReadObjects;
/// ToXmlStream(): from objects to octets, indented as the document is.
extern Operation const kWriteObjects;

}  // namespace Orders
