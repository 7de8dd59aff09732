#include "values/facet_filter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/conversions.h"
#include "text/utf8_text.h"
#include "values/fixed_pattern.h"

namespace Quillon9 {

namespace {

using Filter = std::unique_ptr<CFacetFilter const>;

/// For a kind in which a value either satisfies or violates a bound.
template <auto get, class Value>
class CNumberFilter : public CFacetFilter {
 public:
  template <class Parse>
  CNumberFilter(ItemType type, CPrimitiveRestrictions const& r, Parse parse) : CFacetFilter(type, false) {
    auto const read = [&](std::optional<Value>& bound, std::string const& text) {
      if (!text.empty()) bound = parse(text, CWhitespaceUtils::WhitespaceRule_Collapse);
    };
    read(m_minInclusive, r.minInclusive);
    read(m_maxInclusive, r.maxInclusive);
    read(m_minExclusive, r.minExclusive);
    read(m_maxExclusive, r.maxExclusive);
  }

 private:
  bool IsWithin(QnVariant const& held) const override {
    auto const& value = (held.*get)();
    return (!m_minInclusive || value >= *m_minInclusive) && (!m_maxInclusive || *m_maxInclusive >= value) &&
           (!m_minExclusive || value > *m_minExclusive) && (!m_maxExclusive || *m_maxExclusive > value);
  }

  std::optional<Value> m_minInclusive;
  std::optional<Value> m_maxInclusive;
  std::optional<Value> m_minExclusive;
  std::optional<Value> m_maxExclusive;
};

class CTextFilter : public CFacetFilter {
 public:
  CTextFilter(CPrimitiveRestrictions const& r, std::optional<CFixedPattern> pattern)
      : CFacetFilter(ItemType_string, false),
        m_minLength(r.minLength),
        m_maxLength(r.maxLength),
        m_length(r.length),
        m_pattern(std::move(pattern)) {}

 private:
  bool IsWithin(QnVariant const& held) const override {
    std::string const& value = held.GetString();
    if (!HasAllowedLength(value)) return false;
    return !m_pattern || (m_pattern->Matches(value) && CEncoder::IsUtf8SameInLocalCodePage(value.data(), value.size()));
  }

  bool HasAllowedLength(std::string const& value) const {
    auto const bytes = static_cast<std::int64_t>(value.size());
    // A character has one to four bytes, so most texts need not be counted.
    if (m_length < 0 && (bytes + 3) / 4 >= m_minLength && (m_maxLength < 0 || bytes <= m_maxLength)) return true;
    auto const length = static_cast<std::int64_t>(Utf8Text::LengthOf(value));
    return length >= m_minLength && (m_maxLength < 0 || length <= m_maxLength) && (m_length < 0 || length == m_length);
  }

  std::int64_t m_minLength;
  std::int64_t m_maxLength;
  std::int64_t m_length;
  std::optional<CFixedPattern> m_pattern;  // empty for no pattern
};

class COpenFilter : public CFacetFilter {
 public:
  explicit COpenFilter(ItemType type) : CFacetFilter(type, true) {}
};

bool HasBounds(CPrimitiveRestrictions const& r) {
  return !r.minInclusive.empty() || !r.maxInclusive.empty() || !r.minExclusive.empty() || !r.maxExclusive.empty();
}

bool HasLengths(CPrimitiveRestrictions const& r) { return r.minLength >= 0 || r.maxLength >= 0 || r.length >= 0; }

Filter Open(ItemType type, bool isOpen) { return isOpen ? std::make_unique<COpenFilter>(type) : nullptr; }

// A bound that does not parse throws at each check.
template <auto get, class Parse>
Filter ForNumbers(ItemType type, CPrimitiveRestrictions const& r, Parse parse) {
  using Value = decltype(parse(std::string(), CWhitespaceUtils::WhitespaceRule_Collapse));
  if (!HasBounds(r)) return Open(type, true);
  try {
    return std::make_unique<CNumberFilter<get, Value>>(type, r, parse);
  } catch (CQnException const&) {
    return nullptr;
  }
}

Filter ForText(CPrimitiveRestrictions const& r) {
  if (r.pattern.empty())
    return HasLengths(r) ? std::make_unique<CTextFilter>(r, std::nullopt) : Open(ItemType_string, true);
  std::optional<CFixedPattern> pattern = CFixedPattern::Parse(r.pattern);
  return pattern ? std::make_unique<CTextFilter>(r, std::move(pattern)) : nullptr;
}

}  // namespace

CFacetFilter::~CFacetFilter() = default;

bool CFacetFilter::IsWithin(QnVariant const&) const { return m_isOpen; }

Filter CFacetFilter::Make(ItemType type, CPrimitiveRestrictions const& r) {
  constexpr CDecimal const& (QnVariant::*getDecimal)() const& = &QnVariant::GetDecimal;  // not the copying one
  constexpr CBigInteger const& (QnVariant::*getInteger)() const& = &QnVariant::GetInteger;
#define QN_NUMBERS(stem, Access) \
  case ItemType_##stem: return ForNumbers<&QnVariant::Get##Access>(type, r, &CConversions::stem##FromString)
  switch (type) {
    QN_NUMBERS(i1, I1);
    QN_NUMBERS(i2, I2);
    QN_NUMBERS(i4, I4);
    QN_NUMBERS(i8, I8);
    QN_NUMBERS(ui1, UI1);
    QN_NUMBERS(ui2, UI2);
    QN_NUMBERS(ui4, UI4);
    QN_NUMBERS(ui8, UI8);
    QN_NUMBERS(r4, R4);
    QN_NUMBERS(r8, R8);
    QN_NUMBERS(year, Year);
    QN_NUMBERS(month, Month);
    QN_NUMBERS(day, Day);
    case ItemType_decimal: return ForNumbers<getDecimal>(type, r, &CConversions::decimalFromString);
    case ItemType_integer: return ForNumbers<getInteger>(type, r, &CConversions::integerFromString);
    case ItemType_string: return ForText(r);
    case ItemType_boolean: return Open(type, true);
    case ItemType_hexBinary:
    case ItemType_base64Binary: return Open(type, !HasLengths(r));
    case ItemType_duration:
    case ItemType_yearMonth:
    case ItemType_monthDay:
    case ItemType_date:
    case ItemType_datetime:
    case ItemType_time: return Open(type, !HasBounds(r));
    case ItemType_invalid:
    case ItemType_char:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
#undef QN_NUMBERS
  return nullptr;
}

}  // namespace Quillon9
