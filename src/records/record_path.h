#pragma once

#include <cstdint>
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
  /// How far the names of the open elements, from the root on, follow the path.
  using State = std::uint64_t;

  /// The prefixes of \p text stand for the namespaces that \p aliases gives them. A name without a prefix is that of
  /// elements in any namespace, `{}name` of those in none.
  /// \throws CQnInvalidParamException "The path [%s] is not a path of elements: %s".
  RecordPath(std::string const& text, CNamespaceAliasMap const& aliases);

  /// The state outside of the root.
  static constexpr State kStart = 1;
  /// The state inside of an element \p name whose parent has the state \p outside.
  State Enter(State outside, ElementName const& name) const;
  /// Whether the innermost element is a record.
  bool IsRecord(State state) const { return (state >> m_steps.size() & 1) != 0; }
  std::string const& Text() const { return m_text; }

 private:
  struct Step {
    bool isAnywhere = false;  ///< any number of elements stand in front of it
    bool isAnyName = false;
    bool isAnyNamespace = false;
    ElementName name;
  };

  static Step StepOf(std::string_view text, std::string const& path, CNamespaceAliasMap const& aliases);

  std::string m_text;
  std::vector<Step> m_steps;
};

}  // namespace Quillon9
