#include "schema/paths.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace Quillon9Generator::Schema {

namespace {

bool IsSchemeCharacter(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '+' || character == '-' ||
         character == '.';
}

/// Return the length of the scheme with its colon; 0 for none.
std::size_t SchemeLength(std::string_view location) {
  std::size_t length = 0;
  while (length < location.size() && IsSchemeCharacter(location[length])) ++length;
  return length > 1 && length < location.size() && location[length] == ':' ? length + 1 : 0;
}

/// Return the length of "http://host" in an address.
std::size_t RootLength(std::string_view address) {
  std::size_t const scheme = SchemeLength(address);
  if (address.substr(scheme, 2) != "//") return scheme;
  return std::min(address.find('/', scheme + 2), address.size());
}

std::string WithoutDots(std::string_view path) { return std::filesystem::path(path).lexically_normal().string(); }

}  // namespace

bool IsRemote(std::string_view location) { return SchemeLength(location) != 0 && location.substr(0, 5) != "file:"; }

std::string PathOf(std::string_view location) {
  location = location.substr(0, location.find('#'));
  if (location.substr(0, 5) != "file:") return std::string(location);
  location.remove_prefix(5);
  if (location.substr(0, 2) == "//") location.remove_prefix(std::min(location.find('/', 2), location.size()));
  return Unescaped(location);
}

std::string Unescaped(std::string_view path) {
  std::string result;
  for (std::size_t i = 0; i < path.size(); ++i) {
    bool const escaped = path[i] == '%' && i + 2 < path.size() &&
                         std::isxdigit(static_cast<unsigned char>(path[i + 1])) != 0 &&
                         std::isxdigit(static_cast<unsigned char>(path[i + 2])) != 0;
    if (!escaped) {
      result += path[i];
      continue;
    }
    result += static_cast<char>(std::stoi(std::string(path.substr(i + 1, 2)), nullptr, 16));
    i += 2;
  }
  return result;
}

std::string Resolved(std::string_view base, std::string_view location) {
  if (IsRemote(location)) return std::string(location);
  if (!IsRemote(base)) {
    std::filesystem::path const folder = std::filesystem::path(base).parent_path();
    return (folder / PathOf(location)).lexically_normal().string();
  }
  std::size_t const root = RootLength(base);
  std::string const start(base.substr(0, root));
  if (!location.empty() && location.front() == '/') return start + WithoutDots(location);
  std::string_view const folder = base.substr(root, base.rfind('/') + 1 - root);
  return start + WithoutDots(std::string(folder) + std::string(location));
}

std::string_view LastPart(std::string_view location) {
  std::size_t const slash = location.rfind('/');
  return slash == std::string_view::npos ? location : location.substr(slash + 1);
}

}  // namespace Quillon9Generator::Schema
