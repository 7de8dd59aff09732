#include "schema/validity/wildcard_rules.h"

#include <algorithm>

namespace Quillon9Generator::Schema {

using Constraint = Wildcard::Constraint;

bool Allows(Wildcard const& wildcard, std::string const& ns) {
  switch (wildcard.constraint) {
    case Constraint::Any: return true;
    case Constraint::Other: return !ns.empty() && ns != wildcard.notNamespace;
    case Constraint::Listed: break;
  }
  return std::find(wildcard.namespaces.begin(), wildcard.namespaces.end(), ns) != wildcard.namespaces.end();
}

bool IsSubset(Wildcard const& narrow, Wildcard const& wide) {
  if (wide.constraint == Constraint::Any) return true;
  if (narrow.constraint == Constraint::Any) return false;
  if (narrow.constraint == Constraint::Other) {
    bool const isSame = narrow.notNamespace == wide.notNamespace || wide.notNamespace.empty();
    return wide.constraint == Constraint::Other && isSame;
  }
  return std::all_of(narrow.namespaces.begin(), narrow.namespaces.end(),
                     [&](std::string const& ns) { return Allows(wide, ns); });
}

bool Overlap(Wildcard const& first, Wildcard const& second) {
  if (first.constraint != Constraint::Listed && second.constraint != Constraint::Listed) return true;
  Wildcard const& listed = first.constraint == Constraint::Listed ? first : second;
  Wildcard const& other = &listed == &first ? second : first;
  return std::any_of(listed.namespaces.begin(), listed.namespaces.end(),
                     [&](std::string const& ns) { return Allows(other, ns); });
}

bool IsAsStrict(Wildcard const& narrow, Wildcard const& wide) { return narrow.processing <= wide.processing; }

}  // namespace Quillon9Generator::Schema
