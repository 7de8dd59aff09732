#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// Owns the components of a set.
struct Storage {
  std::deque<std::string> paths;
  std::deque<ElementDeclaration> elements;
  std::deque<AttributeDeclaration> attributes;
  std::deque<SimpleType> simpleTypes;
  std::deque<ComplexType> complexTypes;
  std::deque<ModelGroup> modelGroups;
  std::deque<GroupDefinition> groups;
  std::deque<Wildcard> wildcards;
  std::deque<IdentityConstraint> identityConstraints;
  /// Groups with those that they redefine, and must restrict.
  std::vector<std::pair<GroupDefinition const*, GroupDefinition const*>> redefinedGroups;
};

}  // namespace Quillon9Generator::Schema
