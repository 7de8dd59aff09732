#include "plan/value_types.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "plan/check_values.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/values/pattern.h"
#include "quillon9/values/schema_pattern.h"

namespace Quillon9Generator::Plan {

std::string KeyOf(Schema::QualifiedName const& name) {
  return name.ns.empty() ? name.local : "{" + name.ns + "}" + name.local;
}

namespace {

using namespace Quillon9;
using Schema::BuiltIn;
using Schema::SimpleType;

struct NamedKind {
  char const* name;
  ItemType kind;
};

constexpr NamedKind kNamedKinds[] = {
    {"hexBinary", ItemType_hexBinary},
    {"base64Binary", ItemType_base64Binary},
    {"i1", ItemType_i1},
    {"i2", ItemType_i2},
    {"i4", ItemType_i4},
    {"i8", ItemType_i8},
    {"ui1", ItemType_ui1},
    {"ui2", ItemType_ui2},
    {"ui4", ItemType_ui4},
    {"ui8", ItemType_ui8},
    {"r4", ItemType_r4},
    {"r8", ItemType_r8},
    {"duration", ItemType_duration},
    {"yearMonth", ItemType_yearMonth},
    {"monthDay", ItemType_monthDay},
    {"year", ItemType_year},
    {"month", ItemType_month},
    {"day", ItemType_day},
    {"date", ItemType_date},
    {"datetime", ItemType_datetime},
    {"time", ItemType_time},
    {"string", ItemType_string},
    {"boolean", ItemType_boolean},
    {"decimal", ItemType_decimal},
    {"integer", ItemType_integer},
};

ItemType KindOf(BuiltIn type) {
  switch (type) {
    case BuiltIn::Boolean: return ItemType_boolean;
    case BuiltIn::Base64Binary: return ItemType_base64Binary;
    case BuiltIn::HexBinary: return ItemType_hexBinary;
    case BuiltIn::Float: return ItemType_r4;
    case BuiltIn::Double: return ItemType_r8;
    case BuiltIn::Decimal: return ItemType_decimal;
    case BuiltIn::Integer:
    case BuiltIn::NonPositiveInteger:
    case BuiltIn::NegativeInteger:
    case BuiltIn::NonNegativeInteger:
    case BuiltIn::PositiveInteger: return ItemType_integer;
    case BuiltIn::Long: return ItemType_i8;
    case BuiltIn::Int: return ItemType_i4;
    case BuiltIn::Short: return ItemType_i2;
    case BuiltIn::Byte: return ItemType_i1;
    case BuiltIn::UnsignedLong: return ItemType_ui8;
    case BuiltIn::UnsignedInt: return ItemType_ui4;
    case BuiltIn::UnsignedShort: return ItemType_ui2;
    case BuiltIn::UnsignedByte: return ItemType_ui1;
    case BuiltIn::Duration: return ItemType_duration;
    case BuiltIn::DateTime: return ItemType_datetime;
    case BuiltIn::Time: return ItemType_time;
    case BuiltIn::Date: return ItemType_date;
    case BuiltIn::GYearMonth: return ItemType_yearMonth;
    case BuiltIn::GYear: return ItemType_year;
    case BuiltIn::GMonthDay: return ItemType_monthDay;
    case BuiltIn::GDay: return ItemType_day;
    case BuiltIn::GMonth: return ItemType_month;
    case BuiltIn::None:
    case BuiltIn::AnySimpleType:
    case BuiltIn::String:
    case BuiltIn::NormalizedString:
    case BuiltIn::Token:
    case BuiltIn::Language:
    case BuiltIn::NMToken:
    case BuiltIn::NMTokens:
    case BuiltIn::Name:
    case BuiltIn::NCName:
    case BuiltIn::ID:
    case BuiltIn::IDRef:
    case BuiltIn::IDRefs:
    case BuiltIn::Entity:
    case BuiltIn::Entities:
    case BuiltIn::AnyURI:
    case BuiltIn::QName:
    case BuiltIn::Notation: return ItemType_string;
  }
  return ItemType_string;
}

// xs:string, xs:token and what derives from them, but for lists.
bool IsText(SimpleType const& type) {
  return type.variety == Schema::Variety::Atomic && type.ancestor >= BuiltIn::String &&
         type.ancestor <= BuiltIn::Entities;
}

bool IsNumber(ItemType kind) {
  return (kind >= ItemType_i1 && kind <= ItemType_r8) || kind == ItemType_decimal || kind == ItemType_integer;
}

bool IsWholeNumber(ItemType kind) { return IsNumber(kind) && kind != ItemType_r4 && kind != ItemType_r8; }

bool IsDateOrTime(ItemType kind) { return kind >= ItemType_duration && kind <= ItemType_time; }

// ---- Facets

// What the bounds of xs:int and its kind say, the kind says already.
struct KindBounds {
  ItemType kind;
  char const* min;
  char const* max;
};

constexpr KindBounds kKindBounds[] = {
    {ItemType_i1, "-128", "127"},
    {ItemType_i2, "-32768", "32767"},
    {ItemType_i4, "-2147483648", "2147483647"},
    {ItemType_i8, "-9223372036854775808", "9223372036854775807"},
    {ItemType_ui1, "0", "255"},
    {ItemType_ui2, "0", "65535"},
    {ItemType_ui4, "0", "4294967295"},
    {ItemType_ui8, "0", "18446744073709551615"},
};

void DropBoundsOfKind(ItemType kind, Facets& facets) {
  for (KindBounds const& bounds : kKindBounds) {
    if (bounds.kind != kind) continue;
    if (facets.minInclusive == bounds.min) facets.minInclusive.clear();
    if (facets.maxInclusive == bounds.max) facets.maxInclusive.clear();
  }
}

void SetBounds(SimpleType const& type, ItemType kind, Facets& facets) {
  facets.minInclusive = type.facets.minInclusive.value_or("");
  facets.maxInclusive = type.facets.maxInclusive.value_or("");
  facets.minExclusive = type.facets.minExclusive.value_or("");
  facets.maxExclusive = type.facets.maxExclusive.value_or("");
  DropBoundsOfKind(kind, facets);
  if (IsWholeNumber(kind)) facets.totalDigits = type.facets.totalDigits.value_or(-1);
  if (kind == ItemType_decimal) facets.fractionDigits = type.facets.fractionDigits.value_or(-1);
}

void SetLengths(SimpleType const& type, Facets& facets) {
  facets.length = type.facets.length.value_or(-1);
  facets.minLength = type.facets.minLength.value_or(-1);
  facets.maxLength = type.facets.maxLength.value_or(-1);
}

// The members of a union say what becomes of white space: nothing, unless all agree that it goes.
Schema::WhiteSpace WhiteSpaceOf(SimpleType const& type) {
  if (type.variety == Schema::Variety::List) return Schema::WhiteSpace::Collapse;
  if (type.variety == Schema::Variety::Atomic) return type.facets.whiteSpace;
  bool const allCollapse = std::all_of(type.memberTypes.begin(), type.memberTypes.end(), [](SimpleType const* member) {
    return WhiteSpaceOf(*member) == Schema::WhiteSpace::Collapse;
  });
  return allCollapse ? Schema::WhiteSpace::Collapse : Schema::WhiteSpace::Preserve;
}

// The patterns of xs:NCName and its kind are not checked, as those of numbers and dates are not: each name would cost a
// match.
std::vector<std::vector<std::string>> PatternsOfUser(SimpleType const& type) {
  SimpleType const* builtIn = &type;
  while (builtIn->builtIn == BuiltIn::None && builtIn->base != nullptr) builtIn = builtIn->base;
  auto const& all = type.facets.patterns;
  auto const own = static_cast<std::ptrdiff_t>(std::min(builtIn->facets.patterns.size(), all.size()));
  return {all.begin() + own, all.end()};
}

// ---- Forms

SchemaForm FormOf(BuiltIn type) {
  switch (type) {
    case BuiltIn::Language: return SchemaForm::Language;
    case BuiltIn::NMToken: return SchemaForm::NMToken;
    case BuiltIn::Name: return SchemaForm::Name;
    case BuiltIn::NCName:
    case BuiltIn::ID:
    case BuiltIn::IDRef:
    case BuiltIn::Entity: return SchemaForm::NCName;
    case BuiltIn::AnyURI: return SchemaForm::AnyURI;
    case BuiltIn::QName:
    case BuiltIn::Notation: return SchemaForm::QName;
    default: return SchemaForm::Any;
  }
}

// ---- Unions

bool AcceptsAnything(ValueType const& value) {
  return !value.HasChecks() && value.item == nullptr && value.form == SchemaForm::Any;
}

// The kind that holds the values of all members; text if there is none.
ItemType CommonKind(std::vector<ValueType> const& members) {
  auto const all = [&members](auto accepts) { return std::all_of(members.begin(), members.end(), accepts); };
  ItemType const first = members.front().kind;
  if (all([first](ValueType const& member) { return member.item == nullptr && member.kind == first; })) return first;
  if (!all([](ValueType const& member) { return IsWholeNumber(member.kind) && member.kind != ItemType_decimal; })) {
    return ItemType_string;
  }
  bool const isInteger =
      !all([](ValueType const& member) { return member.kind != ItemType_integer && member.kind != ItemType_ui8; });
  return isInteger ? ItemType_integer : ItemType_i8;
}

// ---- Enumerations

bool HasEnumerators(SimpleType const& type) {
  if (IsText(type)) return !type.facets.enumeration.empty();
  return type.variety == Schema::Variety::Union &&
         std::all_of(type.memberTypes.begin(), type.memberTypes.end(), [&type](SimpleType const* member) {
           return HasEnumerators(*member) && WhiteSpaceOf(*member) == WhiteSpaceOf(type);
         });
}

bool HasSameTexts(SimpleType const& type, SimpleType const& other) {
  auto const sameText = [](Schema::EnumerationValue const& a, Schema::EnumerationValue const& b) {
    return a.text == b.text;
  };
  return std::equal(type.facets.enumeration.begin(), type.facets.enumeration.end(), other.facets.enumeration.begin(),
                    other.facets.enumeration.end(), sameText);
}

// The type that introduced the values of \p type.
SimpleType const& OriginOfTexts(SimpleType const& type) {
  SimpleType const* origin = &type;
  while (origin->base != nullptr && origin->base->variety == type.variety && HasSameTexts(*origin, *origin->base)) {
    origin = origin->base;
  }
  return *origin;
}

void AppendEnumerators(SimpleType const& type, std::vector<Enumerator>& enumerators) {
  for (Schema::EnumerationValue const& value : type.facets.enumeration) {
    auto const isSame = [&value](Enumerator const& other) { return other.text == value.text; };
    if (std::any_of(enumerators.begin(), enumerators.end(), isSame)) continue;
    enumerators.push_back({"", value.text, value.documentation});
  }
  if (!type.facets.enumeration.empty()) return;
  for (SimpleType const* member : type.memberTypes) AppendEnumerators(*member, enumerators);
}

/// "{namespace}name" for each name in \p value, with blanks between them.
std::string NamesText(Schema::EnumerationValue const& value) {
  std::string text;
  for (Schema::QualifiedName const& name : value.names) text += (text.empty() ? "" : " ") + KeyOf(name);
  return text;
}

std::vector<std::string> TextsOf(SimpleType const& type) {
  std::vector<Enumerator> enumerators;
  AppendEnumerators(type, enumerators);
  std::vector<std::string> texts;
  for (Enumerator const& each : enumerators) texts.push_back(each.text);
  return texts;
}

/// What the notations among which a value chooses stand for.
std::string DescribeNotations(SimpleType const& type) {
  constexpr std::size_t kMost = 8;
  std::vector<Schema::EnumerationValue> const& notations = type.facets.enumeration;
  if (notations.empty()) return {};
  std::string list;
  for (std::size_t i = 0; i < std::min(notations.size(), kMost); ++i) {
    list += (list.empty() ? "One of the notations " : ", ") + notations[i].text;
    if (!notations[i].documentation.empty()) list += " (" + notations[i].documentation + ")";
  }
  return list + (notations.size() > kMost ? " and " + std::to_string(notations.size() - kMost) + " others." : ".");
}

std::string NameForUsers(SimpleType const& type) {
  if (type.builtIn != BuiltIn::None) return "xs:" + type.name.local;
  return type.name.local;
}

}  // namespace

std::optional<ItemType> KindFromName(std::string_view name) {
  for (NamedKind const& each : kNamedKinds) {
    if (each.name == name) return each.kind;
  }
  return std::nullopt;
}

char const* KindName(ItemType kind) {
  for (NamedKind const& each : kNamedKinds) {
    if (each.kind == kind) return each.name;
  }
  return "";
}

std::string NameOf(Schema::QualifiedName const& name, PlanOptions const& options) {
  auto const renamed = options.names.find(KeyOf(name));
  return renamed != options.names.end() ? renamed->second : name.local;
}

ItemType const* ValueTypes::MappedKind(SimpleType const& type) const {
  if (m_options.kinds.empty()) return nullptr;
  for (SimpleType const* each = &type; each != nullptr; each = each->base) {
    if (each->IsAnonymous()) continue;
    auto const mapped =
        m_options.kinds.find(each->builtIn != BuiltIn::None ? "xs:" + each->name.local : KeyOf(each->name));
    if (mapped != m_options.kinds.end()) return &mapped->second;
  }
  return nullptr;
}

void ValueTypes::SetPattern(SimpleType const& type, Facets& facets) {
  char const* cause = "it is no regular expression of XML Schema";
  try {
    std::string pattern = CSchemaPattern::Combine(PatternsOfUser(type));
    cause = "it is too large";
    if (!pattern.empty()) TestRegEx(pattern, "");
    facets.pattern = std::move(pattern);
    return;
  } catch (CQnException const&) {
    // a pattern that is none has been reported as an error of its schema
  }
  m_diagnostics.Warning(type.place,
                        (type.IsAnonymous() ? "the pattern" : "the pattern of \"" + type.name.local + "\"") +
                            " is not checked: " + cause);
}

Enumeration* ValueTypes::EnumerationOf(SimpleType const& type, Use const& use) {
  SimpleType const& origin = OriginOfTexts(type);
  Enumeration*& known = m_enumerations[&origin];
  if (known != nullptr) {
    if (known->owner != use.user) known->owner = nullptr;
    return known;
  }
  m_plan.enumerationStorage.push_back(std::make_unique<Enumeration>());
  known = m_plan.enumerationStorage.back().get();
  known->cppName = origin.IsAnonymous() ? use.name : NameOf(origin.name, m_options);
  known->cppNamespace = origin.IsAnonymous() ? use.ns : origin.name.ns;
  known->name = origin.name;
  known->documentation = origin.documentation;
  known->place = origin.place;
  AppendEnumerators(origin, known->enumerators);
  known->owner = origin.IsAnonymous() ? use.user : nullptr;
  return known;
}

// A type that only inherits a facet is not warned of again.
void ValueTypes::WarnOfUnchecked(SimpleType const& type, ValueType const& value) {
  if (type.builtIn != BuiltIn::None || type.base == nullptr) return;
  Schema::Facets const& own = type.facets;
  Schema::Facets const& base = type.base->facets;
  std::string names;
  auto const note = [&names](char const* name) { names += (names.empty() ? "" : ", ") + std::string(name); };
  bool const ignoresNames = value.isQualifiedName && m_options.classicValues;
  if (ignoresNames && !own.enumeration.empty() && !HasSameTexts(type, *type.base)) note("enumeration");
  bool const hasLengths = own.length || own.minLength || own.maxLength;
  Facets const& kept = value.facets;
  bool const keepsLengths = kept.length >= 0 || kept.minLength >= 0 || kept.maxLength >= 0;
  bool const isInherited =
      own.length == base.length && own.minLength == base.minLength && own.maxLength == base.maxLength;
  if (hasLengths && !keepsLengths && !isInherited && !value.isQualifiedName) note("length");
  bool const hasPattern = own.patterns.size() > base.patterns.size();
  bool const ignoresPattern = ignoresNames || (m_options.classicValues && value.kind != ItemType_string);
  if (hasPattern && ignoresPattern) note("pattern");
  if (names.empty()) return;
  m_diagnostics.Warning(type.place, (type.IsAnonymous() ? "a facet" : "a facet of \"" + type.name.local + "\"") +
                                        " is not checked: " + names);
}

ValueType ValueTypes::Decide(SimpleType const& type, Use const& use, bool isMember) {
  ValueType value;
  ItemType const* const mapped = MappedKind(type);
  bool const isAtomic = type.variety == Schema::Variety::Atomic;
  ItemType const natural = isAtomic ? KindOf(type.ancestor) : ItemType_string;
  value.kind = mapped != nullptr ? *mapped : natural;
  value.schemaName = NameForUsers(type);
  bool const isName = isAtomic && (type.ancestor == BuiltIn::QName || type.ancestor == BuiltIn::Notation);
  value.isQualifiedName = isName && mapped == nullptr && !isMember;
  if (isAtomic && type.ancestor == BuiltIn::Notation) value.remark = DescribeNotations(type);
  value.isIdentifier = isAtomic && type.ancestor == BuiltIn::ID && mapped == nullptr;
  value.whiteSpace = value.kind == ItemType_string ? WhiteSpaceOf(type) : Schema::WhiteSpace::Collapse;
  if (mapped == nullptr && HasEnumerators(type) && !isMember) {
    value.enumeration = EnumerationOf(type, use);
    value.kind = ItemType_i4;
    return value;
  }
  if (isAtomic && mapped == nullptr && !value.isQualifiedName) value.form = FormOf(type.ancestor);
  if (mapped == nullptr && type.variety == Schema::Variety::List) SetItem(type, use, value);
  if (mapped == nullptr && type.variety == Schema::Variety::Union) SetMembers(type, value);
  bool const hasOwnText = value.kind == ItemType_string || mapped == nullptr;
  if (hasOwnText && !type.facets.patterns.empty()) SetPattern(type, value.facets);
  bool const hasBytes = value.kind == ItemType_hexBinary || value.kind == ItemType_base64Binary;
  bool const isTextOrAddress = IsText(type) || (isAtomic && type.ancestor == BuiltIn::AnyURI);
  bool const hasItems = value.item != nullptr && type.builtIn == BuiltIn::None;
  if (value.kind == natural && (hasBytes || isTextOrAddress || hasItems)) SetLengths(type, value.facets);
  bool const keepsBounds =
      value.kind == natural ? IsNumber(natural) || IsDateOrTime(natural) : IsNumber(natural) && IsNumber(value.kind);
  if (keepsBounds && isAtomic) SetBounds(type, value.kind, value.facets);
  if (mapped == nullptr && !(isName && isMember)) SetValues(type, value);
  if (mapped == nullptr) WarnOfUnchecked(type, value);
  return value;
}

// An anonymous item belongs to its list, if that has a name.
ValueTypes::Use ValueTypes::UseOfItem(SimpleType const& list, Use const& use) {
  return list.IsAnonymous() ? use : Use{nullptr, list.name.local + "Item", list.name.ns};
}

void ValueTypes::SetItem(SimpleType const& type, Use const& use, ValueType& value) {
  ValueType item = Of(type.itemType, UseOfItem(type, use));
  if (item.item == nullptr) value.item = std::make_shared<ValueType const>(std::move(item));
}

void ValueTypes::SetMembers(SimpleType const& type, ValueType& value) {
  for (SimpleType const* member : type.memberTypes) value.members.push_back(Decide(*member, {}, true));
  if (value.members.empty()) return;
  value.kind = CommonKind(value.members);
  if (value.kind != ItemType_string) value.whiteSpace = Schema::WhiteSpace::Collapse;
  bool const acceptsAll = std::any_of(value.members.begin(), value.members.end(), [&value](ValueType const& member) {
    return member.kind == value.kind && AcceptsAnything(member);
  });
  if (!acceptsAll) return;
  value.uncheckedMembers = std::move(value.members);
  value.members.clear();
  if (!type.facets.enumeration.empty()) value.CompareByMember();
}

// What the library cannot hold is no value that it could find.
void ValueTypes::SetValues(SimpleType const& type, ValueType& value) {
  if (type.facets.enumeration.empty()) return;
  if (value.Single().isQualifiedName) {
    for (Schema::EnumerationValue const& each : type.facets.enumeration) value.values.push_back(NamesText(each));
    return;
  }
  for (std::string& text : TextsOf(type)) {
    if (value.kind == ItemType_string || IsReadable(value.kind, text)) value.values.push_back(std::move(text));
  }
}

ValueType ValueTypes::Of(SimpleType const* type, Use const& use) {
  if (type == nullptr) {
    ValueType text;
    text.whiteSpace = Schema::WhiteSpace::Preserve;
    text.schemaName = "xs:anySimpleType";
    return text;
  }
  auto const known = m_values.find(type);
  if (known == m_values.end()) return m_values.emplace(type, Decide(*type, use, false)).first->second;
  if (known->second.enumeration != nullptr) EnumerationOf(*type, use);  // one more user
  if (known->second.item != nullptr) Of(type->itemType, UseOfItem(*type, use));
  return known->second;
}

}  // namespace Quillon9Generator::Plan
