#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "orders/generator.h"
#include "quillon9/quillon9.h"

namespace Orders {

/// A set of classes for the schema.
struct Classes {
  char const* name;
  CSmartPtr<Quillon9::CXmlObjectBase> (*readText)(std::string& text);
  CSmartPtr<Quillon9::CXmlObjectBase> (*readInfoset)(Quillon9::CBinaryData const& infoset);
  Sums (*sumUp)(Quillon9::CXmlObjectBase const& orders);
  bool areClassic;  ///< read and written by the classic rules of values, whatever rules the classes ask for
};

/// Those of orders/orders.h.
extern Classes const kByHand;
/// Those that `quillon9 generate` makes of orders.xsd, read by the functions that it makes for the document element.
extern Classes const kGenerated;
/// The same, by the classic rules of values.
extern Classes const kClassic;
/// No classes: the document is a CElement.
extern Classes const kGeneric;

/// A document and, where an operation writes, the objects that were read from it.
struct Workload {
  Workload(std::uint64_t bytes, bool isIndented, Classes const& boundClasses = kByHand);

  bool indented;
  Document document;
  Classes const* classes;
  CSmartPtr<Quillon9::CXmlObjectBase> objects;  ///< null until ReadObjects()
  Quillon9::CBinaryData infoset;                ///< the document as Fast Infoset; empty until WriteInfoset()

  /// Forget the objects if they are of other classes.
  void UseClasses(Classes const& boundClasses);

  /// Fill objects from the document.
  void ReadObjects();
  /// Write the objects to infoset; reads them first if there are none.
  void WriteInfoset();
};

/// One way to process a whole document.
struct Operation {
  char const* name;
  bool writes;        ///< needs objects, not the text
  bool needsInfoset;  ///< reads the document as Fast Infoset
  bool bindsClasses;  ///< uses the classes of the workload
  /// Do the work to be timed once; returns the number of octets read or written.
  std::size_t (*run)(Workload& load);
  /// Do it once and sum up the result. Equal sums prove that the work was done.
  Sums (*prove)(Workload& load);
};

/// The parser only: namespaces on, handlers that do nothing. The yardstick for all other operations.
extern Operation const kRawExpat;
/// CXmlDocument::LoadXmlStream(): parser and tree.
extern Operation const kLoadTree;
/// From octets to objects, including the destruction of the objects.
extern Operation const kReadObjects;
/// ToXmlStream(): from objects to octets, indented as the document is.
extern Operation const kWriteObjects;
/// Reading and writing for Fast Infoset with the default settings. Their speed counts the octets of the XML document.
extern Operation const kReadInfoset;
extern Operation const kWriteInfoset;

/// The forms of one document and their lengths.
struct SizeRow {
  char const* form;
  std::size_t octets;
};
std::vector<SizeRow> SizesOf(Workload& load);

}  // namespace Orders
