#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/fast_paths.h"

namespace Quillon9 {

/// The indices of the names that a writer recently wrote for the members of classes. Objects are repetitive, so most
/// elements are found here without comparing a prefix, a namespace or a name.
class CKnownNames {
 public:
  /// Return the index of the name that \p member, which is not 0, has in the scope with the state \p scope (see
  /// XmlWriterAccess::ScopeState()), or 0 if it is not known.
  unsigned long Find(std::uint64_t member, std::uint64_t scope) const {
    if constexpr (!kKnownNames.IsOn()) return 0;
    Name const& name = m_names[member % kNames];
    return name.m_member == member && name.m_scope == scope ? name.m_index : 0;
  }
  void Add(std::uint64_t member, std::uint64_t scope, unsigned long index) {
    if (scope != 0) m_names[member % kNames] = {member, scope, index};
  }

 private:
  static constexpr std::size_t kNames = 128;  // the members of a class have consecutive numbers
  struct Name {
    std::uint64_t m_member = 0;
    std::uint64_t m_scope = 0;
    unsigned long m_index = 0;
  };

  std::array<Name, kNames> m_names;
};

}  // namespace Quillon9
