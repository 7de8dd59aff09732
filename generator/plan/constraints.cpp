#include "plan/constraints.h"

namespace Quillon9Generator::Plan {

namespace {

using Kind = Schema::IdentityConstraint::Kind;

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
  if (element.identityConstraints.empty()) return text;
  for (Schema::IdentityConstraint const* constraint : element.identityConstraints) {
    text += (text.empty() ? "" : "\n\n") + Described(*constraint);
    if (!constraint->documentation.empty()) text += "\n" + constraint->documentation;
  }
  return text + "\n\nThis is not checked.";
}

}  // namespace Quillon9Generator::Plan
