#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/quillon9.h"
#include "schema/diagnostics.h"
#include "schema/files.h"

namespace Quillon9Generator::Schema {

/// Which file stands for which address, as OASIS XML Catalogs say it
/// (https://www.oasis-open.org/committees/entity/spec-2001-08-06.html). Entries for public identifiers are ignored.
class Catalog {
 public:
  explicit Catalog(Files const& files) : m_files(files) {}

  /// Add the entries of the catalog at \p path and of those that it names. Faults go to \p diagnostics.
  void Read(std::string const& path, Diagnostics& diagnostics);
  /// Return the path that stands for \p address.
  std::optional<std::string> Find(std::string_view address) const;

 private:
  struct Entry {
    enum class Kind { Whole, Start, End };
    Kind kind;
    std::string address;
    std::string target;  ///< for Start without its rest
  };

  void ReadEntries(Quillon9::CXmlElement const& parent, std::string const& base, Diagnostics& diagnostics);
  void ReadEntry(Quillon9::CXmlElement const& element, std::string const& base);
  void Add(Entry::Kind kind, std::string const& address, std::string target);

  Files const& m_files;
  std::vector<Entry> m_entries;
  std::set<std::string> m_read;  // the paths of all catalogs
};

}  // namespace Quillon9Generator::Schema
