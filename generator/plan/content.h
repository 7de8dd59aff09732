#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "schema/components.h"

namespace Quillon9Generator::Plan {

/// A content model in its simplest form that allows the same content: groups of one particle, groups around nothing
/// and groups that only repeat what is around them are gone.
struct ContentNode {
  enum class Kind { Element, Wildcard, Sequence, Choice, All };

  Kind kind = Kind::Sequence;
  int minOccurs = 1;
  int maxOccurs = 1;  ///< Schema::Particle::kUnbounded for no limit
  Schema::ElementDeclaration const* element = nullptr;
  Schema::Wildcard const* wildcard = nullptr;
  Schema::GroupDefinition const* group = nullptr;  ///< the named group that it is the reference to
  Schema::Place place;
  std::vector<ContentNode> children;

  bool IsGroup() const { return kind != Kind::Element && kind != Kind::Wildcard; }
  bool IsRepeated() const { return maxOccurs != 1; }
};

/// The content of \p particle as a sequence that occurs once; without children for a particle that allows no content.
/// Takes its size from \p budget. Nothing if that is used up, which groups that refer to groups can reach, or if groups
/// are nested so deeply that working on them would need too much stack.
std::optional<ContentNode> NormalizedContent(std::optional<Schema::Particle> const& particle, std::size_t& budget);

}  // namespace Quillon9Generator::Plan
