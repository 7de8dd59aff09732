#include "plan/constraints.h"

#include <algorithm>
#include <cstddef>

namespace Quillon9Generator::Plan {

namespace {

using Kind = Schema::IdentityConstraint::Kind;

/// More of one element are only counted.
constexpr std::size_t kMost = 8;

std::string Described(Schema::IdentityConstraint const& constraint) {
  std::string values;
  for (std::string const& field : constraint.fields)
    values += (values.empty() ? "" : ", ") + (field == "." ? "value" : field);
  std::string const element = constraint.selector == "." ? "element" : constraint.selector;
  std::string const& name = constraint.name.local;
  switch (constraint.kind) {
    case Kind::Key: return "Key " + name + ": each " + element + " has " + values + ", and no two have the same.";
    case Kind::Unique: return "Unique " + name + ": no two " + element + " have the same " + values + ".";
    case Kind::Keyref: break;
  }
  std::string const key = constraint.refer != nullptr ? " of the key " + constraint.refer->name.local : "";
  return "Reference " + name + ": " + values + " of each " + element + " is one" + key + ".";
}

}  // namespace

std::string DocumentationWithConstraints(Schema::ElementDeclaration const& element) {
  std::string text = element.documentation;
  std::size_t const count = element.identityConstraints.size();
  if (count == 0) return text;
  if (!text.empty()) text += "\n\n";
  for (std::size_t i = 0; i < std::min(count, kMost); ++i) {
    Schema::IdentityConstraint const& constraint = *element.identityConstraints[i];
    text += Described(constraint) + '\n';
    if (!constraint.documentation.empty()) text += constraint.documentation + '\n';
  }
  if (count > kMost) text += "And " + std::to_string(count - kMost) + " others. ";
  return text + (count > 1 ? "These rules are not checked." : "This is not checked.");
}

}  // namespace Quillon9Generator::Plan
