#pragma once

#include <string>
#include <string_view>

/// Paths of files and addresses (RFC 3986) as schema documents name them.
namespace Quillon9Generator::Schema {

/// Return whether \p location begins with a scheme other than file.
bool IsRemote(std::string_view location);
/// Return the path for a location that is not remote: without file: and what follows a '#', in which case also with %xx
/// replaced.
std::string PathOf(std::string_view location);
/// Return \p path with %xx replaced by the octets.
std::string Unescaped(std::string_view path);
/// Return \p location relative to the file or address \p base, which ends in a name that does not count; without
/// needless parts such as "./" and "a/../".
std::string Resolved(std::string_view base, std::string_view location);
/// Return what follows the last '/'.
std::string_view LastPart(std::string_view location);

}  // namespace Quillon9Generator::Schema
