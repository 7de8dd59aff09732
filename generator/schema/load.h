#pragma once

#include <string>
#include <vector>

#include "schema/components.h"
#include "schema/diagnostics.h"
#include "schema/files.h"

namespace Quillon9Generator::Schema {

/// Where the documents of a set are looked for. Nothing is ever fetched from a network.
struct LoadOptions {
  std::vector<std::string> documents;     ///< paths of the main schema documents
  std::vector<std::string> catalogs;      ///< paths of OASIS XML catalogs
  std::vector<std::string> includePaths;  ///< folders in which relative locations are looked for as well
};

/// Load the documents with everything that they include and import, resolve all references, and check the constraints
/// on schemas. All faults of the documents go to \p diagnostics; the set is complete only if it has no errors then. A
/// construct that is not supported yet is an error there, never dropped.
/// \throws nothing but std::bad_alloc for faults of the input.
SchemaSet LoadSchemas(LoadOptions const& options, Diagnostics& diagnostics);
/// The same for documents that need not be files of the system.
SchemaSet LoadSchemas(LoadOptions const& options, Files const& files, Diagnostics& diagnostics);

/// The component model as text, one line for each fact, for tests and for finding faults.
std::string Print(SchemaSet const& set);

}  // namespace Quillon9Generator::Schema
