#pragma once

namespace Quillon9 {

/// By which rules a read or a write converts, compares and checks values.
enum ValueRules : int {
  ValueRules_Classic = 0,   ///< those of CConversions and CXmlObjectHelper, with their differences from XML Schema
  ValueRules_XmlSchema = 1  ///< those of W3C XML Schema Part 2, second edition: see CSchemaValues
};

}  // namespace Quillon9
