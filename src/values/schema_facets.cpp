#include "values/schema_facets.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

#include "base/failure_detail.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/text/encoder.h"
#include "quillon9/values/schema_values.h"
#include "text/lost_characters.h"
#include "text/utf8_text.h"
#include "values/schema_order.h"
#include "values/schema_pattern_access.h"
#include "values/schema_spellings.h"

namespace Quillon9 {

namespace {

bool HasBounds(CPrimitiveRestrictions const& r) {
  return !r.minInclusive.empty() || !r.maxInclusive.empty() || !r.minExclusive.empty() || !r.maxExclusive.empty();
}

/// Most texts with a pattern or an exact length are: codes and numbers.
bool IsShortAscii(std::string const& text) {
  constexpr std::size_t kShort = 32;
  return text.size() <= kShort &&
         std::all_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) > 0; });
}

/// What \p use makes of \p text in UTF-8, which is a copy only where the code page is another one.
template <class Use>
auto WithUtf8(std::string const& text, Use use) {
  bool const isSame =
      (Utf8Text::IsInUse() && IsShortAscii(text)) || CEncoder::IsUtf8SameInLocalCodePage(text.data(), text.size());
  if (isSame) return use(std::string_view(text));
  LostCharacters::Scope const unobserved(nullptr);  // the copy serves only the comparison
  CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(text.c_str());
  return use(std::string_view(reinterpret_cast<char const*>(utf8.GetData()), utf8.GetLength()));
}

}  // namespace

// ---- Bounds

template <auto get>
class SchemaFacets::BoundsOf : public Bounds {
 public:
  BoundsOf(ItemType type, CPrimitiveRestrictions const& r) {
    auto const read = [&](std::optional<Value>& bound, std::string const& text) {
      if (text.empty()) return;
      QnVariant const parsed = CSchemaValues::FromText(text, type, CWhitespaceUtils::WhitespaceRule_Collapse);
      bound = (parsed.*get)();
    };
    read(m_minInclusive, r.minInclusive);
    read(m_maxInclusive, r.maxInclusive);
    read(m_minExclusive, r.minExclusive);
    read(m_maxExclusive, r.maxExclusive);
  }

  bool Contain(QnVariant const& held) const override {
    auto const& value = (held.*get)();
    using namespace SchemaOrder;
    return (!m_minInclusive || IsAtMost(*m_minInclusive, value)) &&
           (!m_maxInclusive || IsAtMost(value, *m_maxInclusive)) &&
           (!m_minExclusive || IsBelow(*m_minExclusive, value)) && (!m_maxExclusive || IsBelow(value, *m_maxExclusive));
  }

 private:
  using Value = std::decay_t<decltype((std::declval<QnVariant const&>().*get)())>;

  std::optional<Value> m_minInclusive;
  std::optional<Value> m_maxInclusive;
  std::optional<Value> m_minExclusive;
  std::optional<Value> m_maxExclusive;
};

/// Null for kinds whose values have no order, as for no bounds.
std::unique_ptr<SchemaFacets::Bounds const> SchemaFacets::MakeBounds() const {
  if (!HasBounds(m_restrictions)) return nullptr;
  constexpr CDecimal const& (QnVariant::*getDecimal)() const& = &QnVariant::GetDecimal;  // not the copying one
  constexpr CBigInteger const& (QnVariant::*getInteger)() const& = &QnVariant::GetInteger;
#define QN_BOUNDS(stem, Access) \
  case ItemType_##stem: return std::make_unique<BoundsOf<&QnVariant::Get##Access>>(m_type, m_restrictions)
  switch (m_type) {
    QN_BOUNDS(i1, I1);
    QN_BOUNDS(i2, I2);
    QN_BOUNDS(i4, I4);
    QN_BOUNDS(i8, I8);
    QN_BOUNDS(ui1, UI1);
    QN_BOUNDS(ui2, UI2);
    QN_BOUNDS(ui4, UI4);
    QN_BOUNDS(ui8, UI8);
    QN_BOUNDS(r4, R4);
    QN_BOUNDS(r8, R8);
    QN_BOUNDS(duration, Duration);
    QN_BOUNDS(yearMonth, YearMonth);
    QN_BOUNDS(monthDay, MonthDay);
    QN_BOUNDS(year, Year);
    QN_BOUNDS(month, Month);
    QN_BOUNDS(day, Day);
    QN_BOUNDS(date, Date);
    QN_BOUNDS(datetime, DateTime);
    QN_BOUNDS(time, Time);
    case ItemType_decimal: return std::make_unique<BoundsOf<getDecimal>>(m_type, m_restrictions);
    case ItemType_integer: return std::make_unique<BoundsOf<getInteger>>(m_type, m_restrictions);
    case ItemType_hexBinary:
    case ItemType_base64Binary:
    case ItemType_char:
    case ItemType_string:
    case ItemType_boolean:
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
#undef QN_BOUNDS
  return nullptr;
}

// ---- Making

SchemaFacets::SchemaFacets(ItemType type, CPrimitiveRestrictions const& restrictions)
    : SchemaFacets(type, restrictions, Others()) {}

SchemaFacets::SchemaFacets(ItemType type, CPrimitiveRestrictions const& restrictions, Others const& others)
    : m_type(type),
      m_restrictions(restrictions),
      m_others(others),
      m_hasPattern(!restrictions.pattern.empty()),
      m_hasDigits(others.totalDigits >= 0 || others.fractionDigits >= 0),
      m_isMeasured(IsMeasured()) {
  try {
    m_parsed = Parse();
  } catch (CQnException const&) {
    m_isBroken = true;
  }
  m_extent = FindExtent();
}

SchemaFacets::~SchemaFacets() = default;
SchemaFacets::SchemaFacets(SchemaFacets&&) noexcept = default;
SchemaFacets& SchemaFacets::operator=(SchemaFacets&&) noexcept = default;

SchemaFacets::Extent SchemaFacets::FindExtent() const {
  bool const isOneOfText = m_type == ItemType_string && m_hasPattern != m_isMeasured;
  if (m_isBroken || m_hasDigits || m_others.form != SchemaForm::Any) return Extent::All;
  if (isOneOfText) return m_hasPattern ? Extent::PatternOfText : Extent::LengthOfText;
  if (m_hasPattern || m_isMeasured) return Extent::All;
  return m_parsed.bounds != nullptr ? Extent::Bounds : Extent::Nothing;
}

SchemaFacets::Parsed SchemaFacets::Parse() const {
  Parsed parsed;
  parsed.bounds = MakeBounds();
  if (m_hasPattern) parsed.pattern.emplace(WithUtf8(m_restrictions.pattern, &SchemaPatternAccess::FromRestriction));
  return parsed;
}

// Every qualified name keeps to every length (W3C XML Schema Part 2, second edition, 4.3.1.3).
bool SchemaFacets::IsMeasured() const {
  bool const isBinary = m_type == ItemType_hexBinary || m_type == ItemType_base64Binary;
  bool const isText = m_type == ItemType_string && m_others.form != SchemaForm::QName;
  CPrimitiveRestrictions const& r = m_restrictions;
  return (isBinary || isText) && (r.minLength >= 0 || r.maxLength >= 0 || r.length >= 0);
}

// ---- Checking

void SchemaFacets::Check(char const* name, QnVariant const& value) const {
  if (value.GetItemType() != m_type || !UsesText()) return Check(name, value, std::string_view());
  Check(name, value, TextOf(value));
}

std::string SchemaFacets::TextOf(QnVariant const& value) const {
  std::string const text = CSchemaValues::ToText(value);
  if (!UsesText() || m_isBroken || value.GetItemType() != m_type || m_parsed.pattern->Matches(text)) return text;
  return FirstSpelling(text, m_type, [this](std::string const& other) { return m_parsed.pattern->Matches(other); });
}

void SchemaFacets::CheckWithSpace(char const* name, QnVariant const& value, std::string_view text) const {
  std::string scratch;
  Check(name, value, ApplyWhitespaceRule(CWhitespaceUtils::WhitespaceRule_Collapse, text, scratch));
}

void SchemaFacets::CheckOther(char const* name, QnVariant const& value) const {
  std::string const text = CSchemaValues::ToText(value);
  Check(name, CSchemaValues::FromText(text, m_type, CWhitespaceUtils::WhitespaceRule_None), text);
}

void SchemaFacets::RefuseValue(char const* name, QnVariant const& value) {
  std::string const shown = CSchemaValues::ToText(value);
  throw OfKind(FailureKind_BrokenFacet, CQnException(FormatString("Invalid Value for %s [%s]", name, shown.c_str())));
}

// What did not parse does so again here. It may succeed: where the thread has another code page or a larger stack.
bool SchemaFacets::KeepsToAll(QnVariant const& value, std::string_view text) const {
  return m_isBroken ? KeepsTo(Parse(), value, text) : KeepsTo(m_parsed, value, text);
}

bool SchemaFacets::KeepsTo(Parsed const& parsed, QnVariant const& value, std::string_view text) const {
  if (m_type == ItemType_string) return KeepsText(parsed, value.GetString());
  if (parsed.bounds != nullptr && !parsed.bounds->Contain(value)) return false;
  if (m_isMeasured && !IsAllowedLength(value.GetHexBinary().GetLength())) return false;
  if (m_hasDigits && !HasAllowedDigits(value)) return false;
  return !m_hasPattern || parsed.pattern->Matches(text);
}

bool SchemaFacets::KeepsText(Parsed const& parsed, std::string const& value) const {
  if (m_isMeasured && !HasAllowedLength(value)) return false;
  if (!m_hasPattern && m_others.form == SchemaForm::Any) return true;
  return WithUtf8(value, [&](std::string_view utf8) { return KeepsForm(parsed, utf8); });
}

bool SchemaFacets::KeepsPattern(std::string const& value) const {
  return WithUtf8(value, [this](std::string_view utf8) { return m_parsed.pattern->Matches(utf8); });
}

bool SchemaFacets::KeepsForm(Parsed const& parsed, std::string_view utf8) const {
  if (m_others.form != SchemaForm::Any && !CSchemaValues::HasForm(utf8, m_others.form)) return false;
  return !m_hasPattern || parsed.pattern->Matches(utf8);
}

bool SchemaFacets::HasAllowedLength(std::string const& value) const {
  auto const bytes = static_cast<std::int64_t>(value.size());
  CPrimitiveRestrictions const& r = m_restrictions;
  // A character has one to four bytes, so most texts need not be counted.
  if (r.length < 0 && (bytes + 3) / 4 >= r.minLength && (r.maxLength < 0 || bytes <= r.maxLength)) return true;
  return IsAllowedLength(WithUtf8(value, &Utf8Text::CountCharacters));
}

bool SchemaFacets::IsAllowedLength(std::size_t size) const {
  auto const length = static_cast<std::int64_t>(size);
  CPrimitiveRestrictions const& r = m_restrictions;
  return length >= r.minLength && (r.maxLength < 0 || length <= r.maxLength) && (r.length < 0 || length == r.length);
}

bool SchemaFacets::HasAllowedDigits(QnVariant const& number) const {
  constexpr int kNoLimit = std::numeric_limits<int>::max();
  int const total = m_others.totalDigits >= 0 ? m_others.totalDigits : kNoLimit;
  int const fraction = m_others.fractionDigits >= 0 ? m_others.fractionDigits : kNoLimit;
  if (m_type == ItemType_decimal) return number.GetDecimal().HasAtMostDigits(total, fraction);
  std::string const digits = CSchemaValues::ToText(number);  // of an integer
  std::size_t const first = std::min(digits.find_first_of("123456789"), digits.size());
  return digits.size() - first <= static_cast<std::size_t>(total);
}

// ---- LazySchemaFacets

detail::LazySchemaFacets::~LazySchemaFacets() { delete m_made.load(); }

SchemaFacets const& detail::LazySchemaFacets::Make(ItemType type, CPrimitiveRestrictions const& restrictions) const {
  SchemaFacets::Others others;
  others.form = restrictions.form;
  auto made = std::make_unique<SchemaFacets const>(type, restrictions, others);
  SchemaFacets const* held = nullptr;
  // Another thread may have been faster.
  if (!m_made.compare_exchange_strong(held, made.get(), std::memory_order_acq_rel)) return *held;
  return *made.release();
}

}  // namespace Quillon9
