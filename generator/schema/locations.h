#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "schema/catalog.h"

namespace Quillon9Generator::Schema {

/// Where a document comes from.
struct Location {
  std::string path;
  std::string address;  ///< the address that a catalog replaced by the path; empty for none
};

/// Finds the files that schema documents name.
class Locations {
 public:
  Locations(Catalog const& catalog, std::vector<std::string> const& includePaths, Files const& files)
      : m_catalog(catalog), m_includePaths(includePaths), m_files(files) {}

  /// Find the files that may be meant by \p location as \p referring names it, the best first: by the catalogs; next to
  /// \p referring; in the include paths. For a remote address, files of its name in the two last places will do.
  std::vector<Location> Find(std::string_view location, Location const& referring) const;
  /// Find the file that the catalogs name for a namespace.
  std::optional<Location> FindNamespace(std::string_view ns) const;

 private:
  std::optional<Location> InCatalog(std::string const& address) const;
  std::vector<std::string> PathsOf(std::string_view location, Location const& referring) const;

  Catalog const& m_catalog;
  std::vector<std::string> const& m_includePaths;
  Files const& m_files;
};

}  // namespace Quillon9Generator::Schema
