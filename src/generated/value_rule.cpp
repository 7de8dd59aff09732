#include "generated/value_rule.h"

#include <limits>

#include "base/failure_detail.h"
#include "base/text_arguments.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/serialization_context.h"
#include "quillon9/generated/enum_col.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/object_helper.h"
#include "text/whitespace_view.h"

namespace Quillon9 {

CPrimitiveRestrictions RestrictionsOf(CValueType const& type) {
  if (type.facets == nullptr) return {};
  CFacets const& f = *type.facets;
  CPrimitiveRestrictions restrictions(OrEmpty(f.pattern), f.minLength, f.maxLength, OrEmpty(f.minInclusive),
                                      OrEmpty(f.maxInclusive), OrEmpty(f.minExclusive), OrEmpty(f.maxExclusive),
                                      f.length);
  restrictions.comparesMonths = true;
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
      m_fixed(fixedText) {}

QnVariant ValueRule::Convert(std::string_view text) const {
  QnVariant value;
  if (m_type.enumeration == nullptr) {
    value.FromString(std::string(text), m_type.kind, m_type.whitespace);
  } else {
    std::string scratch;
    value.SetI4(m_type.enumeration->FromText(ApplyWhitespaceRule(m_type.whitespace, text, scratch)));
  }
  return value;
}

QnVariant ValueRule::Read(std::string_view text, bool isElement, CXmlSerializationContext const* ctx) const {
  QnVariant value = Convert(isElement && text.empty() && m_default != nullptr ? m_default : text);
  if (m_fixed != nullptr && (ctx == nullptr || ctx->GetChecksFixedValuesOnReading())) CheckFixed(value);
  if (ctx != nullptr && ctx->GetChecksFacetsOnReading()) CheckFacets(value);
  return value;
}

namespace {

/// Whether two values of one kind are equal, however they are written.
bool IsSame(QnVariant const& a, QnVariant const& b) {
  switch (a.GetItemType()) {
    case ItemType_decimal: return a.GetDecimal() == b.GetDecimal();
    case ItemType_r4:
    case ItemType_r8: return a.ToString(kShortestFormat) == b.ToString(kShortestFormat);
    default: return a.ToString() == b.ToString();
  }
}

}  // namespace

void ValueRule::CheckFixed(QnVariant const& value) const {
  if (IsSame(value, Convert(m_fixed))) return;
  throw OfKind(FailureKind_FixedValue,
               CQnInvalidValueException(FormatString("The value [%s] of [%s] is not the fixed value [%s]",
                                                     Print(value).c_str(), m_name, m_fixed)));
}

void ValueRule::CheckFacets(QnVariant const& value) const {
  if (m_type.enumeration == nullptr && (m_filter == nullptr || !m_filter->Passes(value))) {
    CXmlObjectHelper::CheckRestriction(m_name, value, m_type.kind, m_restrictions);
  }
  if (HasDigits(m_type)) CheckDigits(m_name, *m_type.facets, value);
}

void ValueRule::Check(QnVariant const& value) const {
  CheckFacets(value);
  if (m_fixed != nullptr) CheckFixed(value);
}

std::string ValueRule::Print(QnVariant const& value) const {
  if (m_type.enumeration == nullptr) return value.ToString(FormatOf(m_type.kind));
  char const* const text = m_type.enumeration->ToText(value.GetI4());
  if (text != nullptr) return text;
  throw OfKind(FailureKind_BadValue,
               CQnException(FormatString("The number %d of [%s] has no text", value.GetI4(), m_name)));
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
