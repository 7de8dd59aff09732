#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "plan/plan.h"
#include "quillon9/values/item_type.h"
#include "schema/components.h"
#include "schema/diagnostics.h"

namespace Quillon9Generator::Plan {

struct PlanOptions {
  std::string cppNamespace;  ///< Company::Orders
  /// How values of a simple type, and of those derived from it, are held in place of what the plan would choose. A key
  /// is "{namespace}name", "name" for a type without a namespace, or "xs:name" for a built-in type.
  std::map<std::string, Quillon9::ItemType> kinds;
  /// Names for types and global elements: of "{namespace}Type" or "Type" to a name without the leading C or E.
  std::map<std::string, std::string> names;
  /// The C++ namespaces for types and elements of these XML namespaces, where that is not cppNamespace. The key is
  /// empty for what has no namespace.
  std::map<std::string, std::string> namespaces;
  /// The global elements that documents begin with: "{namespace}name", or "name" if only one has it. There are classes
  /// for what these may contain; for all of the set if there is none.
  std::vector<std::string> roots;
  /// Whether the classes use the classic rules of values where the context does not say.
  bool classicValues = false;
};

/// The kind of value that a user names: "string", "i4", "datetime" and so on, as in ItemType. Nothing for a text that
/// is not the name of a kind that a value can have.
std::optional<Quillon9::ItemType> KindFromName(std::string_view name);

/// The name of \p kind, for KindFromName().
char const* KindName(Quillon9::ItemType kind);

/// The kind of a member in words: "value", "nillable values".
char const* KindText(Member::Kind kind);

/// Decide which classes there will be for \p set, which must be complete and outlive the plan. What documents lose by
/// these classes is a warning in \p diagnostics; an option that names a type that does not exist is an error there, and
/// so is a content model too large to be written out. The same set and options give the same plan.
/// \throws nothing but std::bad_alloc.
Plan MakePlan(Schema::SchemaSet const& set, PlanOptions const& options, Schema::Diagnostics& diagnostics);

/// The plan as text, one line for each fact, for tests and for finding faults.
std::string Print(Plan const& plan);

}  // namespace Quillon9Generator::Plan
