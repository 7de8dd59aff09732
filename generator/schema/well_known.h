#pragma once

#include <string_view>

namespace Quillon9Generator::Schema {

/// A schema that the program brings, since many others import it from an address of the W3C.
struct WellKnown {
  std::string_view ns;  ///< its target namespace
  char const* text;
  std::string_view addresses[2];
};

/// Return the schema for a namespace; null for another.
WellKnown const* FindWellKnown(std::string_view ns);
/// Return the schema that has this address; null for another.
WellKnown const* FindWellKnownAt(std::string_view address);

}  // namespace Quillon9Generator::Schema
