#pragma once

#include <vector>

#include "schema/node.h"

/// Descriptions of web services, WSDL 1.1 (https://www.w3.org/TR/wsdl) and 2.0 (https://www.w3.org/TR/wsdl20): what of
/// them concerns schemas.
namespace Quillon9Generator::Schema {

/// Whether \p root is the document element of a description.
bool IsDescription(Node const& root);

/// What a description has of schemas.
struct DescriptionParts {
  std::vector<Node const*> schemas;  ///< embedded ones
  std::vector<Node const*> imports;  ///< elements xs:import beside them
  std::vector<Node const*> others;   ///< references to other descriptions, which may also be to schemas
};

DescriptionParts PartsOf(Node const& description);

}  // namespace Quillon9Generator::Schema
