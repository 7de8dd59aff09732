#include "schema/locations.h"

#include "schema/paths.h"

namespace Quillon9Generator::Schema {

namespace {

std::optional<Location> IfFile(std::string const& path) {
  if (IsFile(path)) return Location{path, {}};
  return std::nullopt;
}

}  // namespace

std::optional<Location> Locations::Find(std::string_view location, Location const& referring) const {
  if (auto found = InCatalog(std::string(location))) return found;
  if (!referring.address.empty()) {
    std::string const address = Resolved(referring.address, location);
    if (auto found = InCatalog(address)) return found;
  }
  if (auto found = NextTo(location, referring)) return found;
  return InIncludePaths(location);
}

std::optional<Location> Locations::FindNamespace(std::string_view ns) const { return InCatalog(std::string(ns)); }

std::optional<Location> Locations::InCatalog(std::string const& address) const {
  std::optional<std::string> const path = m_catalog.Find(address);
  if (!path || !IsFile(*path)) return std::nullopt;
  return Location{*path, IsRemote(address) ? address : std::string()};
}

std::optional<Location> Locations::NextTo(std::string_view location, Location const& referring) const {
  if (IsRemote(location)) return IfFile(Resolved(referring.path, LastPart(location)));
  std::string const path = Resolved(referring.path, location);
  if (auto found = IfFile(path)) return found;
  return IfFile(Unescaped(path));
}

std::optional<Location> Locations::InIncludePaths(std::string_view location) const {
  std::size_t const host = IsRemote(location) ? location.find("//") : std::string_view::npos;
  if (host != std::string_view::npos) location.remove_prefix(host + 2);
  for (std::string const& folder : m_includePaths) {
    if (auto found = IfFile(Resolved(folder + "/", location))) return found;
    if (auto found = IfFile(Resolved(folder + "/", LastPart(location)))) return found;
  }
  return std::nullopt;
}

}  // namespace Quillon9Generator::Schema
