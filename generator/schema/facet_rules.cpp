#include "schema/facet_rules.h"

#include <iterator>
#include <string>

#include "schema/values.h"

namespace Quillon9Generator::Schema {

namespace {

bool IsBound(Tag tag) {
  return tag == Tag::MinInclusive || tag == Tag::MaxInclusive || tag == Tag::MinExclusive || tag == Tag::MaxExclusive;
}

std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

std::optional<std::string> const& BoundOf(Facets const& facets, Tag tag) {
  switch (tag) {
    case Tag::MinInclusive: return facets.minInclusive;
    case Tag::MaxInclusive: return facets.maxInclusive;
    case Tag::MinExclusive: return facets.minExclusive;
    default: return facets.maxExclusive;
  }
}

std::optional<long> NumberOf(Facets const& facets, Tag tag) {
  switch (tag) {
    case Tag::Length: return facets.length;
    case Tag::MinLength: return facets.minLength;
    case Tag::MaxLength: return facets.maxLength;
    case Tag::TotalDigits: return facets.totalDigits;
    case Tag::FractionDigits: return facets.fractionDigits;
    default: return std::nullopt;
  }
}

/// What a bound must not be, compared with another bound of the base or of the same type.
struct BoundRule {
  Tag bound, other;
  bool atMost;  ///< the bound must not be greater than the other; else not less
  bool mayEqual;
  bool ofBase;
  bool ofSelf;
};

constexpr BoundRule kBoundRules[] = {
    {Tag::MinInclusive, Tag::MinInclusive, false, true, true, false},
    {Tag::MinInclusive, Tag::MinExclusive, false, false, true, false},
    {Tag::MinInclusive, Tag::MaxInclusive, true, true, true, true},
    {Tag::MinInclusive, Tag::MaxExclusive, true, false, true, true},
    {Tag::MinExclusive, Tag::MinExclusive, false, true, true, false},
    {Tag::MinExclusive, Tag::MinInclusive, false, true, true, false},
    {Tag::MinExclusive, Tag::MaxInclusive, true, false, true, true},
    {Tag::MinExclusive, Tag::MaxExclusive, true, true, false, true},
    {Tag::MinExclusive, Tag::MaxExclusive, true, false, true, false},
    {Tag::MaxInclusive, Tag::MaxInclusive, true, true, true, false},
    {Tag::MaxInclusive, Tag::MaxExclusive, true, false, true, false},
    {Tag::MaxInclusive, Tag::MinInclusive, false, true, true, false},
    {Tag::MaxInclusive, Tag::MinExclusive, false, false, true, false},
    {Tag::MaxExclusive, Tag::MaxExclusive, true, true, true, false},
    {Tag::MaxExclusive, Tag::MaxInclusive, true, true, true, false},
    {Tag::MaxExclusive, Tag::MinInclusive, false, false, true, false},
    {Tag::MaxExclusive, Tag::MinExclusive, false, false, true, false},
};

class FacetCheck {
 public:
  FacetCheck(SimpleType const& type, Node const& restriction, ValueRules& values, Diagnostics& diagnostics)
      : m_type(type),
        m_base(*type.base),
        m_primitive(PrimitiveOf(*type.base)),
        m_restriction(restriction),
        m_values(values),
        m_diagnostics(diagnostics) {}

  void Check() {
    for (Node const& facet : m_restriction.children) {
      if (!facet.Has("value")) continue;
      if (IsBound(facet.tag)) CheckBound(facet);
      if (facet.tag == Tag::WhiteSpace) CheckWhiteSpace(facet);
      if (facet.tag == Tag::Enumeration) CheckEnumeration(facet);
      if (NumberOf(m_type.facets, facet.tag)) CheckNumber(facet);
    }
    CheckTogether();
  }

 private:
  void CheckBound(Node const& facet) {
    std::optional<std::string> const& own = BoundOf(m_type.facets, facet.tag);
    if (!own) return Error(facet, "an inclusive and an exclusive bound cannot stand together");
    if (!IsInValueSpace(*own)) return WrongValue(facet);
    CheckFixed(facet, BoundOf(m_base.facets, facet.tag).value_or(*own) != *own);
    for (BoundRule const& rule : kBoundRules) {
      if (rule.bound != facet.tag) continue;
      if (rule.ofBase) CheckAgainst(facet, rule, BoundOf(m_base.facets, rule.other), " of the base");
      if (rule.ofSelf && IsOwn(rule.other)) CheckAgainst(facet, rule, BoundOf(m_type.facets, rule.other), "");
    }
  }

  void CheckAgainst(Node const& facet, BoundRule const& rule, std::optional<std::string> const& other,
                    char const* owner) {
    if (!other) return;
    Order const order = Compare(m_primitive, *BoundOf(m_type.facets, facet.tag), *other);
    bool const isWrong =
        order == (rule.atMost ? Order::Greater : Order::Less) || (order == Order::Equal && !rule.mayEqual);
    if (!isWrong) return;
    char const* const relation = rule.atMost ? (rule.mayEqual ? "greater than" : "not less than")
                                             : (rule.mayEqual ? "less than" : "not greater than");
    Error(facet, Named(facet.tag) + " " + Quoted(*BoundOf(m_type.facets, facet.tag)) + " is " + relation + " " +
                     Named(rule.other) + " " + Quoted(*other) + owner);
  }

  /// A bound has the form of a value of the base. That it may not lie beyond the bounds of the base is a rule of its
  /// own.
  bool IsInValueSpace(std::string const& text) const {
    SimpleType const* type = &m_base;
    while (type->builtIn == BuiltIn::None && type->base != nullptr) type = type->base;
    SimpleType unbounded = *type;
    unbounded.facets = {};
    return ValueRules().FaultOf(unbounded, text).empty();
  }

  void CheckWhiteSpace(Node const& facet) {
    bool const isLooser = m_type.facets.whiteSpace < m_base.facets.whiteSpace;
    if (isLooser) return Error(facet, "xs:whiteSpace keeps what the base does not keep");
    CheckFixed(facet, m_type.facets.whiteSpace != m_base.facets.whiteSpace);
  }

  void CheckEnumeration(Node const& facet) {
    std::string const fault = m_values.FaultOf(m_base, *facet.Find("value"));
    if (!fault.empty()) Error(facet, "the enumeration does not fit the base: " + fault);
  }

  void CheckNumber(Node const& facet) {
    long const own = *NumberOf(m_type.facets, facet.tag);
    if (facet.tag == Tag::TotalDigits && own == 0) return WrongValue(facet);
    std::optional<long> const base = NumberOf(m_base.facets, facet.tag);
    if (!base) return;
    CheckFixed(facet, *base != own);
    bool const isWrong = facet.tag == Tag::Length      ? own != *base
                         : facet.tag == Tag::MinLength ? own < *base
                                                       : own > *base;
    if (isWrong) {
      Error(facet, Named(facet.tag) + " " + std::to_string(own) + " does not restrict the base, which has " +
                       std::to_string(*base));
    }
  }

  void CheckTogether() {
    Facets const& facets = m_type.facets;
    long const min = facets.minLength.value_or(0);
    bool const isEmptyRange = facets.maxLength && min > *facets.maxLength;
    bool const isOutside =
        facets.length && (*facets.length < min || (facets.maxLength && *facets.length > *facets.maxLength));
    if (isEmptyRange || isOutside) Error(m_restriction, "no value has the length that the facets ask for");
    for (Tag const limit : {Tag::MinLength, Tag::MaxLength}) {
      bool const isKnown = NumberOf(m_base.facets, limit) == NumberOf(facets, limit);
      if (facets.length && IsOwn(limit) && !isKnown) {
        Error(m_restriction, "xs:length and " + Named(limit) + " cannot stand together");
      }
    }
    if (facets.totalDigits && facets.fractionDigits && *facets.fractionDigits > *facets.totalDigits) {
      Error(m_restriction, "xs:fractionDigits is greater than xs:totalDigits");
    }
  }

  bool IsOwn(Tag tag) const { return m_restriction.Child(tag) != nullptr; }

  void CheckFixed(Node const& facet, bool changes) {
    if (changes && (m_base.facets.fixed & FacetBit(facet.tag)) != 0) {
      Error(facet, Named(facet.tag) + " is fixed in the base");
    }
  }

  static std::string Named(Tag tag) { return "xs:" + std::string(NameOf(tag)); }

  void WrongValue(Node const& facet) {
    Error(facet, "wrong value " + Quoted(Trimmed(*facet.Find("value"))) + " of " + Named(facet.tag));
  }

  void Error(Node const& node, std::string text) { m_diagnostics.Error(node.place, std::move(text)); }

  SimpleType const& m_type;
  SimpleType const& m_base;
  BuiltIn const m_primitive;
  Node const& m_restriction;
  ValueRules& m_values;
  Diagnostics& m_diagnostics;
};

}  // namespace

unsigned FacetBit(Tag facet) {
  constexpr Tag kFacets[] = {Tag::Length,       Tag::MinLength,     Tag::MaxLength,    Tag::MinInclusive,
                             Tag::MaxInclusive, Tag::MinExclusive,  Tag::MaxExclusive, Tag::TotalDigits,
                             Tag::WhiteSpace,   Tag::FractionDigits};
  for (std::size_t i = 0; i != std::size(kFacets); ++i) {
    if (kFacets[i] == facet) return 1U << i;
  }
  return 0;
}

void CheckFacets(SimpleType const& type, Node const& restriction, ValueRules& values, Diagnostics& diagnostics) {
  FacetCheck(type, restriction, values, diagnostics).Check();
}

}  // namespace Quillon9Generator::Schema
