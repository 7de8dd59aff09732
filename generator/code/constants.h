#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "code/names.h"
#include "code/text.h"
#include "plan/plan.h"

namespace Quillon9Generator::Code {

/// A set of Schema::Derivations as the tables have it; an empty text for an empty one.
std::string BlockText(unsigned derivations);

/// What a declaration says of the texts of an element of simple type.
struct ValueTexts {
  std::optional<std::string> defaultValue, fixedValue;
};

/// The constants of one source file that the tables of several classes share. Each is collected when it is first asked
/// for, and stands in the file once.
class Constants {
 public:
  /// \p main are those that define what all share, and must outlive these; null for those themselves.
  explicit Constants(Plan::Namespace const& ns, Constants* main = nullptr) : m_ns(ns), m_main(main) {}

  /// The names of the constants for a value type, a namespace, a wildcard. \p hint names a type without a name of its
  /// own.
  ///@{
  std::string ValueType(Plan::ValueType const& type, std::string const& hint);
  std::string Uri(std::string const& uri);
  std::string Rule(Plan::Member const& wildcard);
  ///@}
  /// The name of the table of texts of \p enumeration.
  std::string Texts(Plan::Enumeration const& enumeration);
  /// The name of the tables of an element of simple type. All sources and namespaces share them, so that each takes the
  /// objects that another one makes.
  std::string ValueElement(Plan::ValueType const& type, ValueTexts const& texts, std::string const& hint);
  /// The tables of \p cls as they are named beside the constants.
  std::string TablesOf(Plan::Class const& cls) const;
  /// The name of \p group.
  std::string Group(Plan::ElementGroup const& group);
  /// \p wanted, or with the first number that makes it unique in the file.
  std::string Unique(std::string const& wanted);

  /// Add the names of the tables that several sources or namespaces use, as they are in the namespace of the main ones.
  void AddShared(std::set<std::string>& names) const { names.insert(m_shared.begin(), m_shared.end()); }
  bool HasShared() const { return !m_shared.empty(); }
  /// Append the definitions of all but that, in an order in which each is known before its use.
  void Print(Text& text) const;
  /// Append the definitions of these, if these are the main constants.
  void PrintShared(Text& text) const;

 private:
  using FacetKey =
      std::tuple<std::string, long, long, long, long, long, std::string, std::string, std::string, std::string>;

  /// The tables of an element of simple type.
  struct Element {
    std::string name, row, definition;
  };

  std::string Facets(Plan::Facets const& facets, std::string const& wanted);
  std::string Parts(Plan::ValueType const& type, std::string const& name);

  Plan::Namespace const& m_ns;
  Constants* m_main;
  // Names that the makers of rows have, too.
  std::set<std::string> m_names{"kOnce", "kOptional", "kPreserve", "kReplace", "kCollapse"};
  std::map<std::string, std::string> m_uris;
  std::map<std::tuple<std::string, std::string>, std::string> m_rules;
  std::map<Plan::Enumeration const*, std::string> m_texts;
  std::map<FacetKey, std::string> m_facets;
  std::map<std::tuple<int, int, std::string, Plan::Enumeration const*, std::string, int>, std::string> m_types;
  std::map<std::vector<std::string>, std::string> m_parts;
  std::map<std::string, std::string> m_valueElements;  ///< by the arguments of their rows
  std::vector<std::string> m_uriLines, m_ruleLines;
  std::vector<std::string> m_typeLines;  ///< facets, texts and value types
  std::vector<Element> m_elements;
  std::set<std::string> m_shared;  ///< the names of those that others use or define
  std::map<Plan::ElementGroup const*, std::string> m_groups;
  std::vector<std::string> m_groupLines;
};

}  // namespace Quillon9Generator::Code
