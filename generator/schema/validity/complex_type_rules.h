#pragma once

#include <map>

#include "schema/diagnostics.h"
#include "schema/validity/derivation.h"
#include "schema/validity/particle_restriction.h"
#include "schema/validity/unique_attribution.h"

namespace Quillon9Generator::Schema {

/// Checks complex types one by one.
class ComplexTypeRules {
 public:
  ComplexTypeRules(Substitutions& substitutions, Diagnostics& diagnostics)
      : m_substitutions(substitutions),
        m_diagnostics(diagnostics),
        m_restriction(substitutions),
        m_attribution(substitutions) {}

  void Check(ComplexType const& type);
  /// Check that \p narrow, which redefines a group, restricts it.
  void CheckRedefinition(GroupDefinition const& narrow, GroupDefinition const& wide);

 private:
  using TypesByName = std::map<QualifiedName, ElementDeclaration const*>;

  void CheckRestriction(ComplexType const& type, ComplexType const& base);
  void CheckContentRestriction(ComplexType const& type, ComplexType const& base);
  void CheckFinal(ComplexType const& type);
  void CheckConsistency(ComplexType const& type);
  void CollectTypes(ModelGroup const& group, TypesByName& types, Place const& place);
  void AddElement(ElementDeclaration const& element, TypesByName& types, Place const& place);

  Substitutions& m_substitutions;
  Diagnostics& m_diagnostics;
  ParticleRestriction m_restriction;
  UniqueAttribution m_attribution;
};

}  // namespace Quillon9Generator::Schema
