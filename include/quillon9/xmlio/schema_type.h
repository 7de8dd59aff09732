#pragma once

namespace Quillon9 {

/// The kind of schema that the generated classes come from. The library treats only SchemaType_DTD, which has no
/// namespaces, differently: documents are then parsed without namespace processing, and names are compared literally,
/// prefix included.
enum SchemaType : int {
  SchemaType_XSD = 0,
  SchemaType_XDR = 1,
  SchemaType_DTD = 2,  ///< no namespaces
};

}  // namespace Quillon9
