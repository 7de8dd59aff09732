#include "schemas/value_rows.h"

#include <cstddef>

namespace SchemaTests {

using namespace Quillon9;

namespace {

char const* TextOrNull(std::string const& text) { return text.empty() ? nullptr : text.c_str(); }

}  // namespace

CFacets const* ValueRows::MakeFacets(Plan::Facets const& facets) {
  if (facets.Empty()) return nullptr;
  CFacets row;
  row.pattern = TextOrNull(facets.pattern);
  row.length = static_cast<int>(facets.length);
  row.minLength = static_cast<int>(facets.minLength);
  row.maxLength = static_cast<int>(facets.maxLength);
  row.minInclusive = TextOrNull(facets.minInclusive);
  row.maxInclusive = TextOrNull(facets.maxInclusive);
  row.minExclusive = TextOrNull(facets.minExclusive);
  row.maxExclusive = TextOrNull(facets.maxExclusive);
  row.totalDigits = static_cast<int>(facets.totalDigits);
  row.fractionDigits = static_cast<int>(facets.fractionDigits);
  return &m_facets.emplace_back(row);
}

CEnumTexts const* ValueRows::MakeEnum(Plan::Enumeration const* enumeration) {
  if (enumeration == nullptr) return nullptr;
  Texts& texts = m_texts.emplace_back();
  for (Plan::Enumerator const& each : enumeration->enumerators) texts.push_back(each.text.c_str());
  return &m_enums.emplace_back(enumeration->cppName.c_str(), texts.data(), static_cast<int>(texts.size()));
}

CTypeParts const* ValueRows::MakeParts(Plan::ValueType const& type) {
  CTypeParts parts;
  if (type.isIdentifier) parts.role = ValueRole::Identifier;
  if (type.isQualifiedName) parts.role = ValueRole::QualifiedName;
  bool const isPlain = type.item == nullptr && type.members.empty() && type.values.empty();
  if (isPlain && parts.role == ValueRole::None) return nullptr;
  if (type.item != nullptr) parts.item = &MakeRow(*type.item);
  auto& members = m_members.emplace_back();
  for (Plan::ValueType const& member : type.members) members.push_back(&MakeRow(member));
  parts.members = members.data();
  parts.memberCount = static_cast<int>(members.size());
  Texts& values = m_texts.emplace_back();
  for (std::string const& value : type.values) values.push_back(value.c_str());
  parts.values = values.data();
  parts.valueCount = static_cast<int>(values.size());
  return &m_parts.emplace_back(parts);
}

CValueType const& ValueRows::MakeRow(Plan::ValueType const& type) {
  static constexpr CWhitespaceUtils::WhitespaceRule kRules[] = {Rows::kPreserve, Rows::kReplace, Rows::kCollapse};
  CValueType row;
  row.kind = type.kind;
  row.whitespace = kRules[static_cast<std::size_t>(type.whiteSpace)];
  row.facets = MakeFacets(type.facets);
  row.enumeration = MakeEnum(type.enumeration);
  row.parts = MakeParts(type);
  row.form = type.form;
  return m_rows.emplace_back(row);
}

CValueType const& ValueRows::RowOf(Schema::SimpleType const* type, bool isFixed) {
  CValueType const*& row = m_rowOf[{type, isFixed}];
  if (row != nullptr) return *row;
  Plan::ValueType& planned = m_planned.emplace_back(m_types.Of(type, {nullptr, "Values", ""}));
  if (isFixed) planned.CompareByMember();
  row = &MakeRow(planned);
  return *row;
}

ValueRule const& ValueRows::RuleOf(Schema::SimpleType const* type) {
  auto& rule = m_rules[type];
  if (rule == nullptr) rule = std::make_unique<ValueRule const>("value", RowOf(type, false), nullptr, nullptr);
  return *rule;
}

ValueRule ValueRows::RuleOf(Schema::SimpleType const* type, char const* defaultText, char const* fixedText) {
  return ValueRule("value", RowOf(type, fixedText != nullptr), defaultText, fixedText);
}

}  // namespace SchemaTests
