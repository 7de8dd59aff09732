#include <algorithm>
#include <cstdlib>
#include <set>

#include "quillon9/values/schema_pattern.h"
#include "schema/builder.h"
#include "schema/facet_rules.h"
#include "schema/lexical.h"
#include "schema/simple_values.h"
#include "schema/values.h"

namespace Quillon9Generator::Schema {

namespace {

bool IsLength(Tag tag) { return tag == Tag::Length || tag == Tag::MinLength || tag == Tag::MaxLength; }

bool IsBound(Tag tag) {
  return tag == Tag::MinInclusive || tag == Tag::MaxInclusive || tag == Tag::MinExclusive || tag == Tag::MaxExclusive;
}

bool IsDigits(Tag tag) { return tag == Tag::TotalDigits || tag == Tag::FractionDigits; }

bool IsFacet(Tag tag) {
  return IsLength(tag) || IsBound(tag) || IsDigits(tag) || tag == Tag::Pattern || tag == Tag::Enumeration ||
         tag == Tag::WhiteSpace;
}

/// https://www.w3.org/TR/xmlschema-2/#defn-coss
bool AppliesToPrimitive(Tag tag, BuiltIn primitive) {
  switch (primitive) {
    case BuiltIn::String:
    case BuiltIn::HexBinary:
    case BuiltIn::Base64Binary:
    case BuiltIn::AnyURI:
    case BuiltIn::QName:
    case BuiltIn::Notation: return !IsBound(tag) && !IsDigits(tag);
    case BuiltIn::Decimal: return !IsLength(tag);
    case BuiltIn::Boolean: return tag == Tag::Pattern || tag == Tag::WhiteSpace;
    case BuiltIn::AnySimpleType:
    case BuiltIn::None: return true;
    default: return !IsLength(tag) && !IsDigits(tag);
  }
}

bool Applies(Tag tag, SimpleType const& type) {
  if (type.variety == Variety::Union) return tag == Tag::Pattern || tag == Tag::Enumeration;
  if (type.variety == Variety::List) return !IsBound(tag) && !IsDigits(tag);
  return AppliesToPrimitive(tag, PrimitiveOf(type));
}

std::string TextOf(Node const& facet) { return "xs:" + std::string(facet.name); }

}  // namespace

bool Builder::HasFacets(Node const& node) {
  return std::any_of(node.children.begin(), node.children.end(), [](Node const& child) { return IsFacet(child.tag); });
}

void Builder::ApplyFacets(SimpleType& type, Document const& document, Node const& node) {
  if (Node const* const whiteSpace = node.Child(Tag::WhiteSpace)) ApplyWhiteSpace(type, *whiteSpace);
  std::set<Tag> known;
  std::vector<std::string> patterns;
  std::vector<EnumerationValue> values;
  for (Node const& facet : node.children) {
    if (!IsFacet(facet.tag) || !facet.Has("value") || !CheckFacet(type, facet)) continue;
    std::string_view const text = *facet.Find("value");
    if (facet.tag == Tag::Pattern) {
      CheckPatternOf(facet);
      patterns.emplace_back(text);
    } else if (facet.tag == Tag::Enumeration) {
      Describe(values.emplace_back(), facet);
      values.back().text = Normalized(text, type.facets.whiteSpace);
      TakeNames(document, facet, type, values.back());
    } else if (!known.insert(facet.tag).second) {
      m_diagnostics.Error(facet.place, "a second " + TextOf(facet));
    } else {
      ApplyFacet(type, facet, std::string(Trimmed(text)));
      if (ReadBool(facet, "fixed", false)) type.facets.fixed |= FacetBit(facet.tag);
    }
  }
  if (!patterns.empty()) type.facets.patterns.push_back(std::move(patterns));
  if (!values.empty()) type.facets.enumeration = std::move(values);
  CheckFacets(type, node, m_values, m_diagnostics);
}

void Builder::CheckPatternOf(Node const& facet) {
  std::string_view const pattern = *facet.Find("value");
  Quillon9::CSchemaPattern::Faults const faults = Quillon9::CSchemaPattern::Check(pattern);
  std::string const start = "the pattern \"" + std::string(pattern) + "\" is no regular expression of XML Schema: ";
  if (!faults.error.empty()) return m_diagnostics.Error(facet.place, start + faults.error);
  if (!faults.warning.empty()) m_diagnostics.Warning(facet.place, start + faults.warning);
}

void Builder::TakeNames(Document const& document, Node const& facet, SimpleType const& type, EnumerationValue& value) {
  bool const isList = type.variety == Variety::List && type.itemType != nullptr;
  BuiltIn const primitive = PrimitiveOf(isList ? *type.itemType : type);
  if (primitive != BuiltIn::QName && primitive != BuiltIn::Notation) return;
  for (std::string_view const word : Words(value.text)) {
    if (std::optional<QualifiedName> const name = Resolve(document, facet, word)) value.names.push_back(*name);
  }
  if (primitive == BuiltIn::Notation && !isList && value.names.size() == 1) TakeNotation(facet, value);
}

/// What a notation stands for documents the value that names it.
void Builder::TakeNotation(Node const& facet, EnumerationValue& value) {
  auto const notation = m_notations.find(value.names.front());
  if (notation == m_notations.end()) {
    return m_diagnostics.Error(facet.place, "no notation \"" + value.text + "\"");
  }
  if (!value.documentation.empty()) return;
  Node const& declaration = *notation->second;
  value.documentation = Trimmed(declaration.Find("public").value_or(declaration.Find("system").value_or("")));
}

bool Builder::CheckFacet(SimpleType const& type, Node const& facet) {
  if (Applies(facet.tag, type)) return true;
  std::string const kind = type.variety == Variety::List    ? "a list"
                           : type.variety == Variety::Union ? "a union"
                                                            : std::string("xs:") + NameOf(PrimitiveOf(type));
  m_diagnostics.Error(facet.place, TextOf(facet) + " is no facet of " + kind);
  return false;
}

void Builder::ApplyWhiteSpace(SimpleType& type, Node const& facet) {
  std::string_view const text = Trimmed(facet.Find("value").value_or(""));
  if (text == "preserve") {
    type.facets.whiteSpace = WhiteSpace::Preserve;
  } else if (text == "replace") {
    type.facets.whiteSpace = WhiteSpace::Replace;
  } else if (text == "collapse") {
    type.facets.whiteSpace = WhiteSpace::Collapse;
  } else {
    m_diagnostics.Error(facet.place, "wrong value \"" + std::string(text) + "\" of xs:whiteSpace");
  }
}

void Builder::ApplyFacet(SimpleType& type, Node const& facet, std::string const& value) {
  Facets& facets = type.facets;
  switch (facet.tag) {
    case Tag::Length: return ApplyNumber(facets.length, facet, value);
    case Tag::MinLength: return ApplyNumber(facets.minLength, facet, value);
    case Tag::MaxLength: return ApplyNumber(facets.maxLength, facet, value);
    case Tag::TotalDigits: return ApplyNumber(facets.totalDigits, facet, value);
    case Tag::FractionDigits: return ApplyNumber(facets.fractionDigits, facet, value);
    case Tag::WhiteSpace: return;  // applied before
    default: return ApplyBound(type, facet, value);
  }
}

void Builder::ApplyNumber(std::optional<long>& number, Node const& facet, std::string const& value) {
  constexpr std::size_t kMostDigits = 18;
  std::string_view const digits = std::string_view(value).substr(value.rfind('+', 0) == 0 ? 1 : 0);
  bool const isNumber = !digits.empty() && digits.find_first_not_of("0123456789") == std::string_view::npos;
  if (isNumber && digits.size() <= kMostDigits) {
    number = std::stol(std::string(digits));
  } else {
    m_diagnostics.Error(facet.place, "wrong value \"" + value + "\" of " + TextOf(facet));
  }
}

void Builder::ApplyBound(SimpleType& type, Node const& facet, std::string const& value) {
  Facets& facets = type.facets;
  if (facet.tag == Tag::MinInclusive || facet.tag == Tag::MinExclusive) {
    facets.minInclusive.reset();
    facets.minExclusive.reset();
    (facet.tag == Tag::MinInclusive ? facets.minInclusive : facets.minExclusive) = value;
  } else {
    facets.maxInclusive.reset();
    facets.maxExclusive.reset();
    (facet.tag == Tag::MaxInclusive ? facets.maxInclusive : facets.maxExclusive) = value;
  }
}

}  // namespace Quillon9Generator::Schema
