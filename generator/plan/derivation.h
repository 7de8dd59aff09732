#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "plan/content.h"
#include "schema/components.h"
#include "schema/diagnostics.h"

namespace Quillon9Generator::Plan {

/// Decides which complex types become C++ classes that derive from the class of their base. An extension does. A
/// restriction does where its elements fit into the members of the base, and then has a table of its own over these; or
/// where the table of the base reads its documents. Both may fail where a restriction gives an element a wider type, or
/// takes several elements of a substitution group in place of their head.
class Derivations {
 public:
  /// Decides for all types of \p set, which must outlive this object.
  Derivations(Schema::SchemaSet const& set, Schema::Diagnostics& diagnostics);

  /// The type from whose class that of \p type derives; null for none. Warns once where the schema derives and the
  /// class cannot.
  Schema::ComplexType const* BaseOf(Schema::ComplexType const& type);

  /// Whether the class has rows of its own for the elements of the base that it keeps.
  bool ReplacesElements(Schema::ComplexType const& type) const;

  /// What the class adds to that of BaseOf().
  Schema::Particle const* OwnContent(Schema::ComplexType const& type);

 private:
  /// From the least to the most that a class has of its base.
  enum class Manner { Alone, SharesElements, ReplacesElements };

  struct Decision {
    Manner manner = Manner::Alone;
    std::string obstacle;
    bool warned = false;
  };

  /// The elements of a content model by name.
  struct Elements {
    std::map<Schema::QualifiedName, Schema::ElementDeclaration const*> byName;
    bool hasWildcard = false;
  };

  /// An element, a wildcard or a repeated group of a content model: what becomes a member.
  struct Part {
    ContentNode const* node = nullptr;
    bool mandatory = false;
    bool repeated = false;
  };
  using Parts = std::vector<Part>;

  static void Collect(std::optional<Schema::Particle> const& particle, Elements& elements);
  static void CollectParts(ContentNode const& node, bool mandatory, Parts& parts);

  void Decide(Schema::SchemaSet const& set);
  Decision Decided(Schema::ComplexType const& type, Manner most);
  Schema::ComplexType const* BaseClassOf(Schema::ComplexType const& type) const;

  std::string ObstacleOfRestriction(Schema::ComplexType const& type);
  std::string ObstacleOfExtension(Schema::ComplexType const& type);
  Elements const& ElementsOfTables(Schema::ComplexType const& type);
  bool TableHoldsType(Schema::ElementDeclaration const& wide, Schema::ElementDeclaration const& narrow) const;
  static bool HasHeadOf(Elements const& elements, Schema::ElementDeclaration const& element);
  bool AddsAttributes(Schema::ComplexType const& type) const;
  bool SharesRestrictedTable(Schema::ComplexType const& type) const;

  ContentNode const* ContentOf(std::optional<Schema::Particle> const& particle);
  Parts const& PartsOfTables(Schema::ComplexType const& type);
  bool FitsMembers(Schema::ComplexType const& type);
  static bool Match(Parts const& wide, Parts const& narrow, std::vector<std::size_t>& places);
  bool MemberHolds(Part const& wide, Part const& narrow) const;
  bool MemberHoldsType(Schema::ElementDeclaration const& wide, Schema::ElementDeclaration const& narrow) const;
  bool RoundHolds(ContentNode const& wide, ContentNode const& narrow) const;

  Schema::Diagnostics& m_diagnostics;
  std::size_t m_budget;  ///< how many parts of content models may still be looked at
  std::map<Schema::ComplexType const*, Decision> m_decisions;
  std::map<Schema::Particle const*, std::optional<ContentNode>> m_contents;
  // These depend on the decisions.
  std::map<Schema::ComplexType const*, Elements> m_elements;
  std::map<Schema::ComplexType const*, Parts> m_parts;
};

}  // namespace Quillon9Generator::Plan
