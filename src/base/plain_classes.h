#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <typeinfo>

namespace Quillon9 {

/// Remembers, for one document that is read or written, which classes of its objects are known not to be nillable,
/// because the cast that finds this out walks the tree of a class's bases. One thread at a time.
class PlainClasses {
 public:
  /// Whether \p type was added and no other class has taken its place since.
  bool Has(std::type_info const& type) const { return m_types[Place(type)] == &type; }
  /// Remember \p type, which is borrowed.
  void Add(std::type_info const& type) { m_types[Place(type)] = &type; }

 private:
  static constexpr std::size_t kPlaces = 32;
  static std::size_t Place(std::type_info const& type) {
    return reinterpret_cast<std::uintptr_t>(&type) / alignof(std::type_info) % kPlaces;
  }

  std::array<std::type_info const*, kPlaces> m_types{};  // by address; each place keeps the last one
};

}  // namespace Quillon9
