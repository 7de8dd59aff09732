#include "schema/simple_values.h"

#include <algorithm>

#include "schema/built_ins.h"
#include "schema/lexical.h"
#include "schema/values.h"

namespace Quillon9Generator::Schema {

namespace {

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

/// Return whether \p text has the form that a built-in type derived from string asks for.
bool HasForm(BuiltIn type, std::string_view text) {
  switch (type) {
    case BuiltIn::Language: return IsLanguage(text);
    case BuiltIn::NMToken: return IsNmtoken(text);
    case BuiltIn::Name: return IsName(text);
    case BuiltIn::NCName:
    case BuiltIn::ID:
    case BuiltIn::IDRef:
    case BuiltIn::Entity: return IsNCName(text);
    default: return true;
  }
}

bool IsInteger(SimpleType const& type) {
  for (SimpleType const* each = &type; each != nullptr; each = each->base) {
    if (each->builtIn == BuiltIn::Integer) return true;
  }
  return false;
}

std::string FaultOfBounds(Facets const& facets, BuiltIn primitive, std::string_view text) {
  auto const is = [&](std::optional<std::string> const& bound, Order order) {
    return bound && Compare(primitive, text, *bound) == order;
  };
  if (is(facets.minInclusive, Order::Less)) return "it is less than " + *facets.minInclusive;
  if (is(facets.maxInclusive, Order::Greater)) return "it is greater than " + *facets.maxInclusive;
  if (is(facets.minExclusive, Order::Less) || is(facets.minExclusive, Order::Equal)) {
    return "it is not greater than " + *facets.minExclusive;
  }
  if (is(facets.maxExclusive, Order::Greater) || is(facets.maxExclusive, Order::Equal)) {
    return "it is not less than " + *facets.maxExclusive;
  }
  return {};
}

std::string FaultOfDigits(Facets const& facets, std::string_view text) {
  if (!facets.totalDigits && !facets.fractionDigits) return {};
  DigitCount const digits = DigitsOf(text);
  bool const isTooLong = (facets.totalDigits && digits.total > *facets.totalDigits) ||
                         (facets.fractionDigits && digits.fraction > *facets.fractionDigits);
  return isTooLong ? "it has too many digits" : "";
}

std::string FaultOfLength(Facets const& facets, long length) {
  if (facets.length && length != *facets.length) return "its length is not " + std::to_string(*facets.length);
  if (facets.minLength && length < *facets.minLength) return "it is shorter than " + std::to_string(*facets.minLength);
  if (facets.maxLength && length > *facets.maxLength) return "it is longer than " + std::to_string(*facets.maxLength);
  return {};
}

}  // namespace

std::string Normalized(std::string_view text, WhiteSpace whiteSpace) {
  std::string result(text);
  if (whiteSpace == WhiteSpace::Preserve) return result;
  std::replace_if(
      result.begin(), result.end(), [](char c) { return c == '\t' || c == '\n' || c == '\r'; }, ' ');
  if (whiteSpace == WhiteSpace::Replace) return result;
  std::size_t const first = std::min(result.find_first_not_of(' '), result.size());
  result = result.substr(first, result.find_last_not_of(' ') + 1 - first);
  auto const areBlanks = [](char a, char b) { return a == ' ' && b == ' '; };
  result.erase(std::unique(result.begin(), result.end(), areBlanks), result.end());
  return result;
}

bool LacksEnumeration(SimpleType const& type) {
  return type.variety == Variety::Atomic && type.ancestor == BuiltIn::Notation && type.facets.enumeration.empty();
}

bool AreEqual(SimpleType const& type, std::string_view a, std::string_view b) {
  std::string const first = Normalized(a, type.facets.whiteSpace);
  std::string const second = Normalized(b, type.facets.whiteSpace);
  return first == second || Compare(PrimitiveOf(type), first, second) == Order::Equal;
}

std::string ValueRules::FaultOf(SimpleType const& type, std::string_view text) {
  if (type.builtIn == BuiltIn::AnySimpleType || m_left == 0) return {};
  --m_left;
  switch (type.variety) {
    case Variety::Atomic: return FaultOfAtom(type, Normalized(text, type.facets.whiteSpace));
    case Variety::List: return FaultOfList(type, Normalized(text, WhiteSpace::Collapse));
    case Variety::Union: return FaultInUnion(type, std::string(text));
  }
  return {};
}

std::string ValueRules::FaultOfAtom(SimpleType const& type, std::string const& text) {
  BuiltIn const primitive = PrimitiveOf(type);
  bool const hasForm = IsValueOf(primitive, text) && HasForm(type.ancestor, text) &&
                       (!IsInteger(type) || text.find('.') == std::string::npos);
  if (!hasForm) return Quoted(text) + " is no value of xs:" + std::string(NameOf(type.ancestor));
  std::string fault = FaultOfBounds(type.facets, primitive, text);
  if (fault.empty() && primitive == BuiltIn::Decimal) fault = FaultOfDigits(type.facets, text);
  bool const hasLength = primitive != BuiltIn::QName && primitive != BuiltIn::Notation;
  if (fault.empty() && hasLength) fault = FaultOfLength(type.facets, LengthOf(primitive, text));
  if (fault.empty() && !IsEnumerated(type, primitive, text)) fault = "it is none of the enumeration";
  return fault.empty() ? fault : Quoted(text) + " is not allowed: " + fault;
}

bool ValueRules::IsEnumerated(SimpleType const& type, BuiltIn primitive, std::string const& text) {
  std::vector<EnumerationValue> const& values = type.facets.enumeration;
  if (values.empty() || primitive == BuiltIn::QName || primitive == BuiltIn::Notation) return true;
  auto const [texts, isNew] = m_enumerations.try_emplace(&type);
  if (isNew) {
    for (EnumerationValue const& value : values) texts->second.insert(value.text);
  }
  if (texts->second.count(text) != 0) return true;
  if (primitive == BuiltIn::String || primitive == BuiltIn::AnyURI) return false;
  if (values.size() >= m_left) {
    m_left = 0;
    return true;
  }
  m_left -= values.size();
  return std::any_of(values.begin(), values.end(), [&](EnumerationValue const& value) {
    return Compare(primitive, value.text, text) == Order::Equal;
  });
}

std::string ValueRules::FaultOfList(SimpleType const& type, std::string const& text) {
  std::vector<std::string_view> const items = Words(text);
  if (type.itemType != nullptr) {
    for (std::string_view const item : items) {
      std::string fault = FaultOf(*type.itemType, item);
      if (!fault.empty()) return fault;
    }
  }
  std::string const fault = FaultOfLength(type.facets, static_cast<long>(items.size()));
  return fault.empty() ? fault : Quoted(text) + " is not allowed: " + fault;
}

std::string ValueRules::FaultInUnion(SimpleType const& type, std::string const& text) {
  auto const& members = type.memberTypes;
  bool const isMember = members.empty() || std::any_of(members.begin(), members.end(), [&](SimpleType const* each) {
                          return FaultOf(*each, text).empty();
                        });
  return isMember ? "" : Quoted(text) + " is no value of any member of the union";
}

}  // namespace Quillon9Generator::Schema
