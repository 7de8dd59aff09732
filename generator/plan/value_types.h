#pragma once

#include <map>
#include <string>

#include "plan/make_plan.h"
#include "plan/plan.h"

namespace Quillon9Generator::Plan {

/// Decides how values of simple types are held, and collects the enumerations. Until names are given, the name of an
/// enumeration is the name that it shall have in words of the schema.
class ValueTypes {
 public:
  ValueTypes(PlanOptions const& options, Plan& plan, Schema::Diagnostics& diagnostics)
      : m_options(options), m_plan(plan), m_diagnostics(diagnostics) {}

  /// Where a value of a simple type occurs.
  struct Use {
    Class const* user = nullptr;  ///< the class that has the value; null for all classes
    std::string name;             ///< for an anonymous enumeration
    std::string ns;               ///< the namespace in XML of such a one
  };

  /// \p type may be null, for xs:anySimpleType.
  ValueType Of(Schema::SimpleType const* type, Use const& use);

 private:
  void WarnOfUnchecked(Schema::SimpleType const& type, ValueType const& value);
  /// \p isMember says that it is a member of a union, which has texts in place of enumerators.
  ValueType Decide(Schema::SimpleType const& type, Use const& use, bool isMember);
  static Use UseOfItem(Schema::SimpleType const& list, Use const& use);
  void SetItem(Schema::SimpleType const& type, Use const& use, ValueType& value);
  void SetMembers(Schema::SimpleType const& type, ValueType& value);
  static void SetValues(Schema::SimpleType const& type, ValueType& value);
  Quillon9::ItemType const* MappedKind(Schema::SimpleType const& type) const;
  Enumeration* EnumerationOf(Schema::SimpleType const& type, Use const& use);
  void SetPattern(Schema::SimpleType const& type, Facets& facets);

  PlanOptions const& m_options;
  Plan& m_plan;
  Schema::Diagnostics& m_diagnostics;
  std::map<Schema::SimpleType const*, ValueType> m_values;
  std::map<Schema::SimpleType const*, Enumeration*> m_enumerations;
};

/// "{namespace}name", or "name" without a namespace.
std::string KeyOf(Schema::QualifiedName const& name);

/// The name for which the user asked in place of that of \p name.
std::string NameOf(Schema::QualifiedName const& name, PlanOptions const& options);

}  // namespace Quillon9Generator::Plan
