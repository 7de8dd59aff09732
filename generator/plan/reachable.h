#pragma once

#include <set>
#include <string>
#include <vector>

#include "schema/components.h"
#include "schema/diagnostics.h"

namespace Quillon9Generator::Plan {

/// What there will be classes for.
struct Selection {
  /// The components of the whole set, or those that documents of the chosen elements may have.
  Schema::SchemaSet set;
  /// The elements that documents begin with; the other global ones of the set only stand within them.
  std::set<Schema::ElementDeclaration const*> documents;
};

/// All of \p set, with every global element as a document element.
Selection SelectAll(Schema::SchemaSet const& set);

/// What documents of the global elements \p roots may have, in the order of \p set: the types of their content and
/// attributes, the bases of these, the types derived from the type of an element, since xsi:type may name them, and the
/// elements that may stand in place of another. A wildcard reaches nothing. An abstract root stands for the elements of
/// its substitution group. A root is "{namespace}name", or "name" where only one namespace, or none, has that element;
/// any other is an error in \p diagnostics.
Selection SelectReachable(Schema::SchemaSet const& set, std::vector<std::string> const& roots,
                          Schema::Diagnostics& diagnostics);

}  // namespace Quillon9Generator::Plan
