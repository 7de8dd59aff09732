#pragma once

#include <map>
#include <string>
#include <vector>

#include "schema/components.h"
#include "schema/diagnostics.h"

namespace Quillon9Generator::Plan {

/// Decides which complex types become C++ classes that derive from the class of their base. An extension does, and a
/// restriction whose documents the tables of the base hold; both may fail where a restriction gives an element a wider
/// type, or takes an element of a substitution group in place of its head.
class Derivations {
 public:
  explicit Derivations(Schema::Diagnostics& diagnostics) : m_diagnostics(diagnostics) {}

  /// The type from whose class that of \p type derives; null for none. Warns once where the schema derives and the
  /// class cannot.
  Schema::ComplexType const* BaseOf(Schema::ComplexType const& type);

  /// What the class adds to that of BaseOf().
  Schema::Particle const* OwnContent(Schema::ComplexType const& type);
  std::vector<Schema::AttributeUse const*> OwnAttributes(Schema::ComplexType const& type);

 private:
  /// The elements of a content model by name.
  struct Elements {
    std::map<Schema::QualifiedName, Schema::ElementDeclaration const*> byName;
    bool hasWildcard = false;
  };

  static void Collect(std::optional<Schema::Particle> const& particle, Elements& elements);
  Elements const& ElementsOfTables(Schema::ComplexType const& type);
  std::string ObstacleOf(Schema::ComplexType const& type);
  std::string ObstacleOfRestriction(Schema::ComplexType const& type);
  std::string ObstacleOfExtension(Schema::ComplexType const& type);
  bool HoldsType(Schema::ElementDeclaration const& wide, Schema::ElementDeclaration const& narrow);
  bool HasRestrictedBase(Schema::ComplexType const& type);

  Schema::Diagnostics& m_diagnostics;
  std::map<Schema::ComplexType const*, Schema::ComplexType const*> m_bases;
  std::map<Schema::ComplexType const*, Elements> m_elements;
};

}  // namespace Quillon9Generator::Plan
