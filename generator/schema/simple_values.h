#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "schema/components.h"

namespace Quillon9Generator::Schema {

/// Return \p text as a type with this facet compares it.
std::string Normalized(std::string_view text, WhiteSpace whiteSpace);

/// Return whether \p type is xs:NOTATION or derived from it without an enumeration, so that nothing can have this type.
bool LacksEnumeration(SimpleType const& type);

/// Return whether two texts are the same value of \p type. Those of lists and unions are compared as text.
bool AreEqual(SimpleType const& type, std::string_view a, std::string_view b);

/// Decides which texts are values of simple types.
class ValueRules {
 public:
  /// Return why \p text is no value of \p type; an empty text if it is one. Patterns of the user and the declarations
  /// of prefixes are not checked.
  std::string FaultOf(SimpleType const& type, std::string_view text);

 private:
  std::string FaultOfAtom(SimpleType const& type, std::string const& text);
  std::string FaultOfList(SimpleType const& type, std::string const& text);
  std::string FaultInUnion(SimpleType const& type, std::string const& text);
  bool IsEnumerated(SimpleType const& type, BuiltIn primitive, std::string const& text);

  /// How much may still be compared. A hostile schema is believed then.
  std::uint64_t m_left = 5000000;
  std::unordered_map<SimpleType const*, std::unordered_set<std::string_view>> m_enumerations;
};

}  // namespace Quillon9Generator::Schema
