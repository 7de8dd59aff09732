#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "generated/value_rule.h"
#include "plan/plan.h"
#include "plan/value_types.h"
#include "quillon9/generated/enum_col.h"
#include "quillon9/generated/rows.h"
#include "schema/components.h"
#include "schema/diagnostics.h"

namespace SchemaTests {

using namespace Quillon9Generator;

/// Makes the constants that the source of a generated class has for a simple type, while the program runs. They live
/// as long as this object.
class ValueRows {
 public:
  ValueRows() : m_types(m_options, m_plan, m_diagnostics) {}

  /// How generated classes read and check a value of \p type; null stands for xs:anySimpleType.
  Quillon9::ValueRule const& RuleOf(Schema::SimpleType const* type);
  /// The same with the default and fixed value of a declaration, which are kept; null for none.
  Quillon9::ValueRule RuleOf(Schema::SimpleType const* type, char const* defaultText, char const* fixedText);

 private:
  using Texts = std::vector<char const*>;

  Quillon9::CValueType const& RowOf(Schema::SimpleType const* type, bool isFixed);
  Quillon9::CValueType const& MakeRow(Plan::ValueType const& type);
  Quillon9::CFacets const* MakeFacets(Plan::Facets const& facets);
  Quillon9::CEnumTexts const* MakeEnum(Plan::Enumeration const* enumeration);
  Quillon9::CTypeParts const* MakeParts(Plan::ValueType const& type);

  Plan::PlanOptions m_options;
  Plan::Plan m_plan;
  Schema::Diagnostics m_diagnostics;
  Plan::ValueTypes m_types;
  std::deque<Plan::ValueType> m_planned;  // owns the texts of the rows
  std::deque<Texts> m_texts;
  std::deque<Quillon9::CEnumTexts> m_enums;
  std::deque<std::vector<Quillon9::CValueType const*>> m_members;
  std::deque<Quillon9::CFacets> m_facets;
  std::deque<Quillon9::CTypeParts> m_parts;
  std::deque<Quillon9::CValueType> m_rows;
  std::map<std::pair<Schema::SimpleType const*, bool>, Quillon9::CValueType const*> m_rowOf;
  std::map<Schema::SimpleType const*, std::unique_ptr<Quillon9::ValueRule const>> m_rules;
};

}  // namespace SchemaTests
