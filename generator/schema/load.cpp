#include "schema/load.h"

#include "schema/builder.h"
#include "schema/validity/check.h"

namespace Quillon9Generator::Schema {

namespace {

void WarnOfLostImports(Documents const& documents, Diagnostics& diagnostics) {
  for (auto const& [ns, import] : documents.GetLostImports()) {
    if (import.location.empty()) continue;
    diagnostics.Warning(import.place, "cannot find \"" + import.location + "\" for the namespace \"" + ns +
                                          "\"; name a file for it with --catalog");
  }
}

}  // namespace

SchemaSet LoadSchemas(LoadOptions const& options, Diagnostics& diagnostics) {
  return LoadSchemas(options, SystemFiles(), diagnostics);
}

SchemaSet LoadSchemas(LoadOptions const& options, Files const& files, Diagnostics& diagnostics) {
  auto const storage = std::make_shared<Storage>();
  SchemaSet set;
  set.storage = storage;
  Documents documents(options, files, storage->paths, diagnostics);
  documents.Load();
  WarnOfLostImports(documents, diagnostics);
  Builder builder(*storage, diagnostics);
  builder.Build(documents, set);
  if (!diagnostics.HasErrors()) CheckComponents(*storage, diagnostics);
  builder.Finish(set);
  return set;
}

}  // namespace Quillon9Generator::Schema
