#pragma once

#include <string_view>

namespace Quillon9Generator::Schema {

/// Return the text of a schema for a namespace that many schemas import from an address of the W3C; null for others.
/// The text is empty for the namespace of XML Schema itself, whose types are built in.
char const* WellKnownSchema(std::string_view ns);

}  // namespace Quillon9Generator::Schema
