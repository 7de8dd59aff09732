#pragma once

#include <unordered_map>
#include <vector>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// Which elements may stand for which in documents.
class Substitutions {
 public:
  /// Return the elements that may stand in place of \p head, direct and indirect members of its group, without itself.
  std::vector<ElementDeclaration const*> const& Of(ElementDeclaration const& head);

 private:
  std::unordered_map<ElementDeclaration const*, std::vector<ElementDeclaration const*>> m_known;
};

}  // namespace Quillon9Generator::Schema
