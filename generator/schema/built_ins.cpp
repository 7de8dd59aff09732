#include "schema/built_ins.h"

#include <algorithm>
#include <iterator>

#include "schema/facet_rules.h"
#include "schema/node.h"

namespace Quillon9Generator::Schema {

namespace {

struct Row {
  BuiltIn type;
  char const* name;
  BuiltIn base;
  char const* minInclusive = nullptr;
  char const* maxInclusive = nullptr;
  char const* pattern = nullptr;
};

// https://www.w3.org/TR/xmlschema-2/#built-in-datatypes, in the order of the enumeration.
constexpr Row kRows[] = {
    {BuiltIn::AnySimpleType, "anySimpleType", BuiltIn::None},
    {BuiltIn::String, "string", BuiltIn::AnySimpleType},
    {BuiltIn::NormalizedString, "normalizedString", BuiltIn::String},
    {BuiltIn::Token, "token", BuiltIn::NormalizedString},
    {BuiltIn::Language, "language", BuiltIn::Token, nullptr, nullptr, "[a-zA-Z]{1,8}(-[a-zA-Z0-9]{1,8})*"},
    {BuiltIn::NMToken, "NMTOKEN", BuiltIn::Token, nullptr, nullptr, "\\c+"},
    {BuiltIn::NMTokens, "NMTOKENS", BuiltIn::AnySimpleType},
    {BuiltIn::Name, "Name", BuiltIn::Token, nullptr, nullptr, "\\i\\c*"},
    {BuiltIn::NCName, "NCName", BuiltIn::Name, nullptr, nullptr, "[\\i-[:]][\\c-[:]]*"},
    {BuiltIn::ID, "ID", BuiltIn::NCName},
    {BuiltIn::IDRef, "IDREF", BuiltIn::NCName},
    {BuiltIn::IDRefs, "IDREFS", BuiltIn::AnySimpleType},
    {BuiltIn::Entity, "ENTITY", BuiltIn::NCName},
    {BuiltIn::Entities, "ENTITIES", BuiltIn::AnySimpleType},
    {BuiltIn::Boolean, "boolean", BuiltIn::AnySimpleType},
    {BuiltIn::Base64Binary, "base64Binary", BuiltIn::AnySimpleType},
    {BuiltIn::HexBinary, "hexBinary", BuiltIn::AnySimpleType},
    {BuiltIn::Float, "float", BuiltIn::AnySimpleType},
    {BuiltIn::Double, "double", BuiltIn::AnySimpleType},
    {BuiltIn::Decimal, "decimal", BuiltIn::AnySimpleType},
    {BuiltIn::Integer, "integer", BuiltIn::Decimal},
    {BuiltIn::NonPositiveInteger, "nonPositiveInteger", BuiltIn::Integer, nullptr, "0"},
    {BuiltIn::NegativeInteger, "negativeInteger", BuiltIn::NonPositiveInteger, nullptr, "-1"},
    {BuiltIn::Long, "long", BuiltIn::Integer, "-9223372036854775808", "9223372036854775807"},
    {BuiltIn::Int, "int", BuiltIn::Long, "-2147483648", "2147483647"},
    {BuiltIn::Short, "short", BuiltIn::Int, "-32768", "32767"},
    {BuiltIn::Byte, "byte", BuiltIn::Short, "-128", "127"},
    {BuiltIn::NonNegativeInteger, "nonNegativeInteger", BuiltIn::Integer, "0"},
    {BuiltIn::UnsignedLong, "unsignedLong", BuiltIn::NonNegativeInteger, "0", "18446744073709551615"},
    {BuiltIn::UnsignedInt, "unsignedInt", BuiltIn::UnsignedLong, "0", "4294967295"},
    {BuiltIn::UnsignedShort, "unsignedShort", BuiltIn::UnsignedInt, "0", "65535"},
    {BuiltIn::UnsignedByte, "unsignedByte", BuiltIn::UnsignedShort, "0", "255"},
    {BuiltIn::PositiveInteger, "positiveInteger", BuiltIn::NonNegativeInteger, "1"},
    {BuiltIn::Duration, "duration", BuiltIn::AnySimpleType},
    {BuiltIn::DateTime, "dateTime", BuiltIn::AnySimpleType},
    {BuiltIn::Time, "time", BuiltIn::AnySimpleType},
    {BuiltIn::Date, "date", BuiltIn::AnySimpleType},
    {BuiltIn::GYearMonth, "gYearMonth", BuiltIn::AnySimpleType},
    {BuiltIn::GYear, "gYear", BuiltIn::AnySimpleType},
    {BuiltIn::GMonthDay, "gMonthDay", BuiltIn::AnySimpleType},
    {BuiltIn::GDay, "gDay", BuiltIn::AnySimpleType},
    {BuiltIn::GMonth, "gMonth", BuiltIn::AnySimpleType},
    {BuiltIn::AnyURI, "anyURI", BuiltIn::AnySimpleType},
    {BuiltIn::QName, "QName", BuiltIn::AnySimpleType},
    {BuiltIn::Notation, "NOTATION", BuiltIn::AnySimpleType},
};

Row const& RowOf(BuiltIn type) { return kRows[static_cast<std::size_t>(type) - 1]; }

WhiteSpace WhiteSpaceOf(BuiltIn type) {
  if (type == BuiltIn::AnySimpleType || type == BuiltIn::String) return WhiteSpace::Preserve;
  return type == BuiltIn::NormalizedString ? WhiteSpace::Replace : WhiteSpace::Collapse;
}

SimpleType MakeSimpleType(Row const& row, BuiltInTypes const& types) {
  SimpleType type;
  type.name = {std::string(kSchemaNamespace), row.name};
  type.builtIn = type.ancestor = row.type;
  if (row.base != BuiltIn::None) {
    type.base = types.Get(row.base);
    type.facets = type.base->facets;
  }
  type.facets.whiteSpace = WhiteSpaceOf(row.type);
  if (row.minInclusive != nullptr) type.facets.minInclusive = row.minInclusive;
  if (row.maxInclusive != nullptr) type.facets.maxInclusive = row.maxInclusive;
  if (row.pattern != nullptr) type.facets.patterns.push_back({row.pattern});
  if (row.type == BuiltIn::Integer) {
    type.facets.fractionDigits = 0;
    type.facets.fixed |= FacetBit(Tag::FractionDigits);
  }
  return type;
}

void MakeList(SimpleType& list, SimpleType const* item) {
  list.variety = Variety::List;
  list.hasLists = true;
  list.itemType = item;
  list.facets.minLength = 1;
}

ComplexType const* AddAnyType(Storage& storage) {
  Wildcard any;
  any.processing = Wildcard::Processing::Lax;
  ModelGroup& group = storage.modelGroups.emplace_back();
  group.particles.push_back({0, Particle::kUnbounded, &storage.wildcards.emplace_back(any), {}, nullptr});
  ComplexType& type = storage.complexTypes.emplace_back();
  type.name = {std::string(kSchemaNamespace), "anyType"};
  type.anyType = true;
  type.content = ComplexType::Content::Mixed;
  type.particle = type.ownParticle = Particle{1, 1, &group, {}, nullptr};
  type.attributeWildcard = any;
  return &type;
}

}  // namespace

BuiltInTypes AddBuiltInTypes(Storage& storage) {
  BuiltInTypes types{AddAnyType(storage), {}};
  std::deque<SimpleType>& all = storage.simpleTypes;
  for (Row const& row : kRows) types.simpleTypes.push_back(&all.emplace_back(MakeSimpleType(row, types)));
  for (SimpleType& type : all) {
    if (type.builtIn == BuiltIn::NMTokens) MakeList(type, types.Get(BuiltIn::NMToken));
    if (type.builtIn == BuiltIn::IDRefs) MakeList(type, types.Get(BuiltIn::IDRef));
    if (type.builtIn == BuiltIn::Entities) MakeList(type, types.Get(BuiltIn::Entity));
  }
  return types;
}

bool IsBuiltInType(std::string_view name) {
  return name == "anyType" ||
         std::any_of(std::begin(kRows), std::end(kRows), [name](Row const& row) { return row.name == name; });
}

char const* NameOf(BuiltIn type) { return type == BuiltIn::None ? "" : RowOf(type).name; }

}  // namespace Quillon9Generator::Schema
