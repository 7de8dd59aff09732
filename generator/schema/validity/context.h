#pragma once

#include <cstdint>
#include <unordered_map>

#include "schema/components.h"
#include "schema/diagnostics.h"
#include "schema/simple_values.h"

namespace Quillon9Generator::Schema {

/// What the constraints on the components of one set have in common.
class ValidityContext {
 public:
  explicit ValidityContext(Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  void Error(Place const& place, std::string text) { m_diagnostics.Error(place, std::move(text)); }
  Diagnostics& GetDiagnostics() { return m_diagnostics; }
  ValueRules& Values() { return m_values; }

  /// Return whether \p steps more may be done. A hostile schema would make some constraints cost far more than what it
  /// costs to write it. What is left is not checked then.
  bool MaySpend(std::uint64_t steps) {
    m_left = steps < m_left ? m_left - steps : 0;
    return m_left != 0;
  }

  /// Return whether \p particle may match nothing.
  bool IsEmptiable(Particle const& particle);

 private:
  bool IsEmptiable(ModelGroup const& group);

  Diagnostics& m_diagnostics;
  ValueRules m_values;
  std::uint64_t m_left = 8000000;
  std::unordered_map<ModelGroup const*, bool> m_emptiable;
};

}  // namespace Quillon9Generator::Schema
