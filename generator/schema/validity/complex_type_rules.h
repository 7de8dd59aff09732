#pragma once

#include <map>

#include "schema/validity/derivation.h"
#include "schema/validity/particle_restriction.h"
#include "schema/validity/unique_attribution.h"

namespace Quillon9Generator::Schema {

/// Checks complex types one by one.
class ComplexTypeRules {
 public:
  explicit ComplexTypeRules(ValidityContext& context)
      : m_context(context), m_restriction(context), m_attribution(context) {}

  void Check(ComplexType const& type);
  /// Check that \p narrow, which redefines a group, restricts it.
  void CheckRedefinition(GroupDefinition const& narrow, GroupDefinition const& wide);

 private:
  using TypesByName = std::map<QualifiedName, ElementDeclaration const*>;

  bool IsEmptiable(ComplexType const& type);
  void CheckRestriction(ComplexType const& type, ComplexType const& base);
  void CheckContentRestriction(ComplexType const& type, ComplexType const& base);
  void CheckFinal(ComplexType const& type);
  void CheckConsistency(ComplexType const& type);
  void CollectTypes(ModelGroup const& group, TypesByName& types, Place const& place);
  void AddElement(ElementDeclaration const& element, TypesByName& types, Place const& place);

  ValidityContext& m_context;
  ParticleRestriction m_restriction;
  UniqueAttribution m_attribution;
};

}  // namespace Quillon9Generator::Schema
