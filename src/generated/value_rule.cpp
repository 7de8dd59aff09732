#include "generated/value_rule.h"

#include <algorithm>
#include <limits>

#include "base/failure_detail.h"
#include "base/text_arguments.h"
#include "generated/list_items.h"
#include "generated/qualified_name_text.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/generated/enum_col.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/object_helper.h"
#include "text/whitespace_view.h"
#include "values/ruled_values.h"
#include "values/schema_facets.h"

namespace Quillon9 {

namespace {

CPrimitiveRestrictions FacetsOf(CValueType const& type) {
  if (type.facets == nullptr) return {};
  CFacets const& f = *type.facets;
  if (ValueRule::IsList(type)) return CPrimitiveRestrictions(OrEmpty(f.pattern), -1, -1, "", "", "", "", -1);
  CPrimitiveRestrictions restrictions(OrEmpty(f.pattern), f.minLength, f.maxLength, OrEmpty(f.minInclusive),
                                      OrEmpty(f.maxInclusive), OrEmpty(f.minExclusive), OrEmpty(f.maxExclusive),
                                      f.length);
  restrictions.comparesMonths = true;
  return restrictions;
}

}  // namespace

CPrimitiveRestrictions RestrictionsOf(CValueType const& type) {
  CPrimitiveRestrictions restrictions = FacetsOf(type);
  if (!ValueRule::IsList(type)) restrictions.form = type.form;
  return restrictions;
}

char const* FormatOf(ItemType kind) {
  bool const hasLongOrWrongForm =
      kind == ItemType_r4 || kind == ItemType_r8 || kind == ItemType_duration || kind == ItemType_base64Binary;
  return hasLongOrWrongForm ? kShortestFormat : nullptr;
}

ValueRule::ValueRule(char const* name, CValueType const& type, char const* defaultText, char const* fixedText)
    : m_name(name),
      m_type(type),
      m_restrictions(RestrictionsOf(type)),
      m_filter(CFacetFilter::Make(type.kind, m_restrictions)),
      m_default(fixedText != nullptr ? fixedText : defaultText),
      m_fixed(fixedText) {
  if (!HasParts(type)) return;
  if (IsList(type)) m_item = std::make_unique<ValueRule const>(name, *type.parts->item, nullptr, nullptr);
  for (int i = 0; i < type.parts->memberCount; ++i) {
    m_members.push_back(std::make_unique<ValueRule const>(name, *type.parts->members[i], nullptr, nullptr));
  }
}

namespace {

bool IsSameName(std::string_view a, std::string_view b) {
  CQName const one = QualifiedNameText::Parse(a);
  CQName const other = QualifiedNameText::Parse(b);
  return one.GetLocalName() == other.GetLocalName() && one.GetNamespace() == other.GetNamespace();
}

/// "{namespace}name" for a name as it is held.
std::string WithoutPrefix(std::string_view held) {
  CQName const name = QualifiedNameText::Parse(held);
  return name.GetNamespace().empty() ? name.GetLocalName() : '{' + name.GetNamespace() + '}' + name.GetLocalName();
}

/// The items of \p list as \p convert returns them, with one blank between them.
template <class Convert>
std::string Joined(std::string_view list, Convert convert) {
  std::string text;
  for (ListItems items(list); items.Next();) {
    if (!text.empty()) text += ' ';
    text += convert(items.Text());
  }
  return text;
}

}  // namespace

QnVariant ValueRule::Convert(std::string_view text) const {
  QnVariant value;
  if (m_item != nullptr) {
    bool const hasNumbers = m_item->m_type.enumeration != nullptr;
    value.SetString(Joined(text, [&](std::string_view item) {
      return hasNumbers ? m_item->Convert(item).ToString() : std::string(item);
    }));
  } else if (m_type.enumeration == nullptr) {
    RuledValues::FromPart(value, text, m_type.kind, m_type.whitespace);
  } else {
    std::string scratch;
    value.SetI4(m_type.enumeration->FromText(ApplyWhitespaceRule(m_type.whitespace, text, scratch)));
  }
  return value;
}

QnVariant ValueRule::Read(std::string_view text, bool isElement, CXmlSerializationContext const* ctx) const {
  std::string_view const used = TextOf(text, isElement);
  QnVariant value = Convert(used);
  CheckRead(value, used, ctx);
  return value;
}

void ValueRule::CheckRead(QnVariant const& value, std::string_view text, CXmlSerializationContext const* ctx) const {
  if (m_fixed != nullptr && (ctx == nullptr || ctx->GetChecksFixedValuesOnReading())) CheckFixed(value);
  if (ctx == nullptr || !ChecksFacets(*ctx)) return;
  if (!HasNames(m_type) || !RulesInUse::AreSchema()) return CheckFacets(value, text);
  RequireNames(text);
  CheckPatternOfNames(text);
}

void ValueRule::CheckResolved(QnVariant const& value) const {
  if (RulesInUse::AreSchema()) CheckFacets(value);
}

// Other names are refused with the facets; the prefixes of these are replaced, and all that remains would be a name.
void ValueRule::RequireNames(std::string_view text) const {
  int count = 0;
  bool areNames = true;
  for (ListItems items(text); items.Next(); ++count) {
    areNames = areNames && CSchemaValues::HasForm(items.Text(), SchemaForm::QName);
  }
  if (areNames && (m_item != nullptr || count == 1)) return;
  throw OfKind(FailureKind_BadValue, CQnInvalidValueException(FormatString("The value [%s] is not a valid %s",
                                                                           std::string(text).c_str(), "QName")));
}

void ValueRule::CheckPatternOfNames(std::string_view text) const {
  auto const hasPattern = [](CValueType const& type) {
    return type.facets != nullptr && type.facets->pattern != nullptr;
  };
  if (hasPattern(m_type)) CheckBySchema(Convert(text), text);
  if (m_item == nullptr || !hasPattern(m_item->m_type)) return;
  for (ListItems items(text); items.Next();) m_item->CheckPatternOfNames(items.Text());
}

bool ValueRule::ChecksFacets(CXmlSerializationContext const& ctx) {
  return ctx.GetChecksFacetsOnReading() || RulesInUse::AreSchema();
}

// Whether two values are equal, however they are written.
bool ValueRule::IsSame(QnVariant const& a, QnVariant const& b) const {
  if (m_item != nullptr) return IsSameList(a.GetString(), b.GetString());
  if (IsName(m_type)) return IsSameName(a.GetString(), b.GetString());
  if (RulesInUse::AreSchema()) {
    if (!m_members.empty() && a.GetItemType() == ItemType_string) return IsSameInUnion(a.GetString(), b.GetString());
    return CSchemaValues::Compare(a, b) == ValueOrder_Equal;
  }
  switch (a.GetItemType()) {
    case ItemType_decimal: return a.GetDecimal() == b.GetDecimal();
    case ItemType_r4:
    case ItemType_r8: return a.ToString(kShortestFormat) == b.ToString(kShortestFormat);
    default: return a.ToString() == b.ToString();
  }
}

// Two texts are the same value if the first member that accepts them is the same for both, and makes the same of them.
bool ValueRule::IsSameInUnion(std::string const& a, std::string const& b) const {
  if (a == b) return true;
  auto const accepts = [](std::string const& text) {
    return [&text](std::unique_ptr<ValueRule const> const& member) { return member->Accepts(text); };
  };
  auto const member = std::find_if(m_members.begin(), m_members.end(), accepts(a));
  if (member == m_members.end() || std::find_if(m_members.begin(), m_members.end(), accepts(b)) != member) return false;
  return (*member)->IsSame((*member)->Convert(a), (*member)->Convert(b));
}

bool ValueRule::IsSameList(std::string const& a, std::string const& b) const {
  ListItems ones(a);
  ListItems others(b);
  while (ones.Next()) {
    if (!others.Next()) return false;
    if (ones.Text() != others.Text() && !m_item->IsSame(m_item->Held(ones.Text()), m_item->Held(others.Text()))) {
      return false;
    }
  }
  return !others.Next();
}

// The value of an item of a list as that holds it, in which enumerators are numbers.
QnVariant ValueRule::Held(std::string_view item) const {
  if (m_type.enumeration == nullptr) return Convert(item);
  QnVariant number;
  number.FromString(std::string(item), ItemType_i4, CWhitespaceUtils::WhitespaceRule_Preserve);
  return number;
}

void ValueRule::RefuseValue(QnVariant const& value) const {
  std::string const text = HasNames(m_type) ? Joined(value.GetString(), WithoutPrefix) : Print(value);
  throw OfKind(FailureKind_BrokenFacet, CQnException(FormatString("Invalid Value for %s [%s]", m_name, text.c_str())));
}

void ValueRule::CheckFixed(QnVariant const& value) const {
  if (IsSame(value, Convert(m_fixed))) return;
  throw OfKind(FailureKind_FixedValue,
               CQnInvalidValueException(FormatString("The value [%s] of [%s] is not the fixed value [%s]",
                                                     Print(value).c_str(), m_name, m_fixed)));
}

void ValueRule::CheckParts(QnVariant const& value) const {
  CTypeParts const& parts = *m_type.parts;
  if (m_item != nullptr) CheckList(value);
  if (!m_members.empty() && !IsAcceptedByMember(Print(value))) RefuseValue(value);
  if (parts.valueCount == 0 || (HasNames(m_type) && !RulesInUse::AreSchema())) return;
  bool const isThere = std::any_of(parts.values, parts.values + parts.valueCount,
                                   [&](char const* each) { return IsSame(value, Convert(each)); });
  if (!isThere) RefuseValue(value);
}

void ValueRule::CheckList(QnVariant const& list) const {
  int count = 0;
  bool const checksItems = m_item->m_type.facets != nullptr || HasParts(m_item->m_type) || RulesInUse::AreSchema();
  std::string const text = list.GetString();
  for (ListItems items(text); items.Next(); ++count) {
    if (checksItems) m_item->CheckFacets(m_item->Held(items.Text()), items.Text());
  }
  if (m_type.facets == nullptr) return;
  CFacets const& f = *m_type.facets;
  bool const isWrong = (f.length >= 0 && count != f.length) || (f.minLength >= 0 && count < f.minLength) ||
                       (f.maxLength >= 0 && count > f.maxLength);
  if (isWrong) RefuseValue(list);
  if (f.pattern == nullptr || m_item->m_type.enumeration == nullptr) return;
  // What CheckFacets() compares with the pattern is not what the document has.
  QnVariant printed;
  printed.SetString(Print(list));
  if (RulesInUse::AreSchema()) return CheckBySchema(printed, printed.GetString());
  CXmlObjectHelper::CheckRestriction(m_name, printed, ItemType_string, m_restrictions);
}

// What is held as a vector has been converted; the text of a union has not.
void ValueRule::RequireItems(std::string const& list) const {
  for (ListItems items(list); items.Next();) m_item->Held(items.Text());
}

bool ValueRule::Accepts(std::string const& text) const {
  try {
    QnVariant const value = Convert(text);
    if (m_item != nullptr) RequireItems(value.GetString());
    CheckFacets(value, text);
    return true;
  } catch (CQnException const&) {
    return false;
  }
}

bool ValueRule::IsAcceptedByMember(std::string const& text) const {
  return std::any_of(m_members.begin(), m_members.end(), [&](auto const& member) { return member->Accepts(text); });
}

void ValueRule::CheckBySchema(QnVariant const& value, std::string_view text) const {
  m_schemaFacets.Get(m_type.kind, m_restrictions).CheckRead(m_name, value, text);
}

void ValueRule::CheckFacets(QnVariant const& value, std::string_view text) const {
  // The text of names is checked where it is at hand.
  bool const hasOtherText =
      HasNames(m_type) || m_type.enumeration != nullptr || (m_item != nullptr && m_item->m_type.enumeration != nullptr);
  if (!hasOtherText && RulesInUse::AreSchema()) {
    CheckBySchema(value, text);
  } else if (!hasOtherText && (m_filter == nullptr || !m_filter->Passes(value))) {
    CXmlObjectHelper::CheckRestriction(m_name, value, m_type.kind, m_restrictions);
  }
  if (HasDigits(m_type)) CheckDigits(m_name, *m_type.facets, value);
  if (HasParts(m_type)) CheckParts(value);
}

void ValueRule::CheckFacets(QnVariant const& value) const {
  bool const needsText = m_type.kind != ItemType_string && m_type.enumeration == nullptr && RulesInUse::AreSchema();
  if (!needsText) return CheckFacets(value, value.GetItemType() == ItemType_string ? value.GetString() : std::string());
  CheckFacets(value, Print(value));
}

void ValueRule::Check(QnVariant const& value) const {
  CheckFacets(value);
  if (m_fixed != nullptr) CheckFixed(value);
}

std::string ValueRule::Print(QnVariant const& value) const {
  if (m_item != nullptr && m_item->m_type.enumeration != nullptr) {
    return Joined(value.GetString(), [&](std::string_view item) { return m_item->Print(m_item->Held(item)); });
  }
  if (m_type.enumeration == nullptr) {
    if (!RulesInUse::AreSchema()) return value.ToString(FormatOf(m_type.kind));
    return m_schemaFacets.Get(m_type.kind, m_restrictions).TextOf(value);
  }
  char const* const text = m_type.enumeration->ToText(value.GetI4());
  if (text != nullptr) return text;
  throw OfKind(FailureKind_BadValue,
               CQnException(FormatString("The number %d of [%s] has no text", value.GetI4(), m_name)));
}

QnVariant ValueRule::Resolve(QnVariant const& value, CXmlElement const& element) const {
  QnVariant resolved;
  resolved.SetString(
      Joined(value.GetString(), [&](std::string_view name) { return QualifiedNameText::Resolved(name, element); }));
  return resolved;
}

std::string ValueRule::NamesText(QnVariant const& value, CXmlWriter& writer) const {
  std::string text = Declare(value, writer);
  if (RulesInUse::AreSchema()) CheckPatternOfNames(text);
  return text;
}

std::string ValueRule::Declare(QnVariant const& value, CXmlWriter& writer) const {
  return Joined(value.GetString(), [&](std::string_view name) { return QualifiedNameText::Declared(name, writer); });
}

void ValueRule::CheckDigits(char const* name, CFacets const& facets, QnVariant const& number) {
  constexpr int kNoLimit = std::numeric_limits<int>::max();
  int const total = facets.totalDigits >= 0 ? facets.totalDigits : kNoLimit;
  int const fraction = facets.fractionDigits >= 0 ? facets.fractionDigits : kNoLimit;
  bool const isShort = number.GetItemType() == ItemType_decimal
                           ? number.GetDecimal().HasAtMostDigits(total, fraction)
                           : CDecimal(number.ToString().c_str()).HasAtMostDigits(total, fraction);
  if (isShort) return;
  throw OfKind(FailureKind_BrokenFacet,
               CQnException(FormatString("Invalid Value for %s [%s]", name, number.ToString().c_str())));
}

}  // namespace Quillon9
