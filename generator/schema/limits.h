#pragma once

#include <cstddef>
#include <cstdint>

/// Bounds on what a hostile schema may cost. No real schema comes near them.
namespace Quillon9Generator::Schema {

/// How deeply elements may be nested in a schema document, how many types may derive from one another in a row, and how
/// many groups may contain one another. Each level takes some stack, here and in what works on the components.
constexpr int kMaxLevels = 200;
/// Into how many particles one type may grow when each reference to a group is replaced by its content.
constexpr std::uint64_t kMaxExpandedParticles = 100000;
/// How many namespaces one wildcard may list.
constexpr std::size_t kMaxNamespaces = 1000;
/// How many values all types together may inherit: attributes, enumeration values and patterns. Each is copied.
constexpr std::uint64_t kMaxInherited = 2000000;

}  // namespace Quillon9Generator::Schema
