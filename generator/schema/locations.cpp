#include "schema/locations.h"

#include "schema/paths.h"

namespace Quillon9Generator::Schema {

std::vector<Location> Locations::Find(std::string_view location, Location const& referring) const {
  std::vector<Location> found;
  if (auto const entry = InCatalog(std::string(location))) found.push_back(*entry);
  if (!referring.address.empty()) {
    if (auto const entry = InCatalog(Resolved(referring.address, location))) found.push_back(*entry);
  }
  for (std::string const& path : PathsOf(location, referring)) {
    std::string const unescaped = Unescaped(path);
    if (m_files.IsFile(path)) {
      found.push_back({path, {}});
    } else if (unescaped != path && m_files.IsFile(unescaped)) {
      found.push_back({unescaped, {}});
    }
  }
  return found;
}

std::optional<Location> Locations::FindNamespace(std::string_view ns) const { return InCatalog(std::string(ns)); }

std::optional<Location> Locations::InCatalog(std::string const& address) const {
  std::optional<std::string> const path = m_catalog.Find(address);
  if (!path || !m_files.IsFile(*path)) return std::nullopt;
  return Location{*path, IsRemote(address) ? address : std::string()};
}

/// Return the paths at which a file may be, besides those of the catalogs.
std::vector<std::string> Locations::PathsOf(std::string_view location, Location const& referring) const {
  std::string_view const name = LastPart(location);
  std::vector<std::string> paths = {Resolved(referring.path, IsRemote(location) ? name : location)};
  std::size_t const host = IsRemote(location) ? location.find("//") : std::string_view::npos;
  if (host != std::string_view::npos) location.remove_prefix(host + 2);
  for (std::string const& folder : m_includePaths) {
    paths.push_back(Resolved(folder + "/", location));
    paths.push_back(Resolved(folder + "/", name));
  }
  return paths;
}

}  // namespace Quillon9Generator::Schema
