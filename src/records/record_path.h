#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quillon9/binding/namespace_alias_map.h"

namespace Quillon9 {

/// The name of an element as a parser sees it.
struct ElementName {
  std::string uri;
  std::string local;
};

/// Says which elements are records: `/orders/order`, `/o:orders/*`, `//{urn:o}order`.
class RecordPath {
 public:
  /// The prefixes of \p text stand for the namespaces that \p aliases gives them. A name without a prefix is that of
  /// elements in any namespace, `{}name` of those in none.
  /// \throws CQnInvalidParamException "The path [%s] is not a path of elements: %s".
  RecordPath(std::string const& text, CNamespaceAliasMap const& aliases);

  /// Whether the innermost of \p open, the names of the open elements from the root on, is a record.
  bool Matches(std::vector<ElementName> const& open) const { return Matches(m_steps.size(), open, open.size()); }

 private:
  struct Step {
    bool isAnywhere = false;  ///< any number of elements stand in front of it
    bool isAnyName = false;
    bool isAnyNamespace = false;
    ElementName name;
  };

  static Step StepOf(std::string_view text, std::string const& path, CNamespaceAliasMap const& aliases);
  bool Matches(std::size_t steps, std::vector<ElementName> const& open, std::size_t count) const;

  std::vector<Step> m_steps;
};

}  // namespace Quillon9
