#pragma once

namespace Quillon9 {

/// The kind of schema that the generated classes come from. The library tells apart only the kind without
/// namespaces: under it documents are parsed without namespace processing and names are compared as they stand,
/// prefix included.
enum SchemaType : int {
  SchemaType_XSD = 0,
  SchemaType_XDR = 1,
  SchemaType_DTD = 2,  ///< no namespaces
};

}  // namespace Quillon9
