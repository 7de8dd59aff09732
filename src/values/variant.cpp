#include "quillon9/values/variant.h"

#include <memory>
#include <type_traits>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "values/text_conversions.h"

namespace Quillon9 {

#define QN_VALUE_KIND(number, stem, Access, Held) \
  static_assert(ItemType_##stem == (number) && (sizeof(Held) <= 8 || !std::is_arithmetic_v<Held>), #stem);
#include "values/item_types.def"

// ---- Ownership

template <class Held, class Value>
void QnVariant::SetHeld(ItemType type, Value&& value) {
  static_assert(sizeof(Held) <= sizeof m_held && alignof(Held) <= 8, "does not fit");
  if (m_owns) {  // the value may be part of the old one, and copying it may fail
    Held copy(std::forward<Value>(value));
    Clear();
    Store(type, new (m_held) Held(std::move(copy)));
  } else {
    Store(type, new (m_held) Held(std::forward<Value>(value)));
  }
  m_owns = true;
}

template <class Held>
void QnVariant::SetConverted(ItemType type, Held&& value) {
  if constexpr (std::is_arithmetic_v<Held>) {
    SetScalar(type, value);
  } else {
    SetHeld<Held>(type, std::move(value));
  }
}

template <class Held>
void QnVariant::CopyHeld(ItemType type, QnVariant const& other) {
  if constexpr (std::is_arithmetic_v<Held>) {
    Store(type, other.Load<Held>());
  } else {
    SetHeld<Held>(type, *other.Load<Held const*>());
  }
}

/// Leaves \p other without a value.
template <class Held>
void QnVariant::MoveHeld(ItemType type, QnVariant& other) {
  if constexpr (std::is_arithmetic_v<Held>) {
    Store(type, other.Load<Held>());
  } else {
    SetHeld<Held>(type, std::move(*other.Load<Held*>()));
  }
  other.Clear();
}

template <class Held>
void QnVariant::DeleteHeld() {
  if constexpr (!std::is_arithmetic_v<Held>) {
    Load<Held*>()->~Held();
    Store<Held*>(m_type, nullptr);
  }
}

// clang-format off
void QnVariant::TakeFrom(QnVariant& other) {
  switch (other.m_type) {
#define QN_VALUE_KIND(number, stem, Access, Held) \
    case ItemType_##stem: return MoveHeld<Held>(ItemType_##stem, other);
#include "values/item_types.def"
    case ItemType_xmlObject:
    case ItemType_xmlCollection:
      Store(other.m_type, other.Load<CXmlObjectBase*>());
      m_owns = std::exchange(other.m_owns, false);
      break;
    case ItemType_invalid: break;
  }
  other.m_type = ItemType_invalid;
}
// clang-format on

QnVariant::QnVariant(QnVariant const& other) { *this = other; }

QnVariant::QnVariant(QnVariant&& other) { TakeFrom(other); }

QnVariant& QnVariant::operator=(QnVariant const& other) {
  Clear();
  switch (other.m_type) {
#define QN_VALUE_KIND(number, stem, Access, Held) \
  case ItemType_##stem:                           \
    CopyHeld<Held>(ItemType_##stem, other);       \
    return *this;
#include "values/item_types.def"
    case ItemType_xmlObject:
    case ItemType_xmlCollection: SetReference(other.m_type, other.Load<CXmlObjectBase*>()); return *this;
    case ItemType_invalid: return *this;
  }
  m_type = other.m_type;
  throw CQnException("Unknown Type");
}

QnVariant& QnVariant::operator=(QnVariant&& other) {
  Clear();
  TakeFrom(other);
  return *this;
}

QnVariant::~QnVariant() { Clear(); }

void QnVariant::Release() {
  m_owns = false;
  switch (m_type) {
#define QN_VALUE_KIND(number, stem, Access, Held) \
  case ItemType_##stem:                           \
    DeleteHeld<Held>();                           \
    break;
#include "values/item_types.def"
    case ItemType_xmlObject:
    case ItemType_xmlCollection: ReleaseReference(); break;
    case ItemType_invalid: break;
  }
}

// ---- Setters and getters that do more than copy a scalar

void QnVariant::SetHexBinary(CBinaryData const& value) { SetHeld<CBinaryData>(ItemType_hexBinary, value); }

void QnVariant::SetBase64Binary(CBinaryData const& value) { SetHeld<CBinaryData>(ItemType_base64Binary, value); }

void QnVariant::SetDuration(CDateTimeSpan const& value) { SetHeld<CDateTimeSpan>(ItemType_duration, value); }

void QnVariant::SetYearMonth(CDateTime const& value) { SetHeld<CDateTime>(ItemType_yearMonth, value); }

void QnVariant::SetMonthDay(CDateTime const& value) { SetHeld<CDateTime>(ItemType_monthDay, value); }

void QnVariant::SetDate(CDateTime const& value) { SetHeld<CDateTime>(ItemType_date, value); }

void QnVariant::SetDateTime(CDateTime const& value) { SetHeld<CDateTime>(ItemType_datetime, value); }

void QnVariant::SetTime(CDateTime const& value) { SetHeld<CDateTime>(ItemType_time, value); }

void QnVariant::SetDecimal(CDecimal const& value) { SetHeld<CDecimal>(ItemType_decimal, value); }

void QnVariant::SetDecimal(CDecimal&& value) { SetHeld<CDecimal>(ItemType_decimal, std::move(value)); }

void QnVariant::SetInteger(CBigInteger const& value) { SetHeld<CBigInteger>(ItemType_integer, value); }

void QnVariant::SetInteger(CBigInteger&& value) { SetHeld<CBigInteger>(ItemType_integer, std::move(value)); }

void QnVariant::SetString(std::string value) { SetHeld<std::string>(ItemType_string, std::move(value)); }

void QnVariant::ThrowWrongKind(char const* kind) const {
  throw CQnException(FormatString("Invalid Type %d to read as %s", static_cast<int>(m_type), kind));
}

// clang-format off
// Whether a value of this kind is held as a `Wanted`.
template <class Wanted>
static bool IsHeldAs(ItemType type) {
  switch (type) {
#define QN_VALUE_KIND(number, stem, Access, Held) case ItemType_##stem: return std::is_same_v<Held, Wanted>;
#include "values/item_types.def"
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  return false;
}
// clang-format on

template <class Held>
Held QnVariant::GetOwned(char const* kind) const {
  if (!IsValid()) return Held();
  if (!IsHeldAs<Held>(m_type)) ThrowWrongKind(kind);
  Held const* const value = Load<Held*>();
  return value != nullptr ? *value : Held();
}

template <class Held>
Held const& QnVariant::LookAtOwned(char const* kind) const {
  static auto const& empty = *new Held{};
  if (!IsValid()) return empty;
  if (!IsHeldAs<Held>(m_type)) ThrowWrongKind(kind);
  Held const* const value = Load<Held*>();
  return value != nullptr ? *value : empty;
}

CBinaryData QnVariant::GetHexBinary() const { return GetOwned<CBinaryData>("hexBinary"); }

CBinaryData QnVariant::GetBase64Binary() const { return GetOwned<CBinaryData>("base64Binary"); }

CDateTimeSpan QnVariant::GetDuration() const { return GetOwned<CDateTimeSpan>("duration"); }

CDateTime QnVariant::GetYearMonth() const { return GetOwned<CDateTime>("yearMonth"); }

CDateTime QnVariant::GetMonthDay() const { return GetOwned<CDateTime>("monthDay"); }

CDateTime QnVariant::GetDate() const { return GetOwned<CDateTime>("date"); }

CDateTime QnVariant::GetDateTime() const { return GetOwned<CDateTime>("datetime"); }

CDateTime QnVariant::GetTime() const { return GetOwned<CDateTime>("time"); }

CDecimal const& QnVariant::GetDecimal() const& { return LookAtOwned<CDecimal>("decimal"); }

CDecimal QnVariant::GetDecimal() const&& { return GetOwned<CDecimal>("decimal"); }

CBigInteger const& QnVariant::GetInteger() const& { return LookAtOwned<CBigInteger>("integer"); }

CBigInteger QnVariant::GetInteger() const&& { return GetOwned<CBigInteger>("integer"); }

std::string const& QnVariant::GetString() const& { return LookAtOwned<std::string>("string"); }

std::string QnVariant::GetString() const&& { return GetOwned<std::string>("string"); }

// ---- Names and text

std::string QnVariant::GetType() const {
  switch (m_type) {
// clang-format off
#define QN_VALUE_KIND(number, stem, Access, Held) case ItemType_##stem: return #stem;
#include "values/item_types.def"
      // clang-format on
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  throw CQnException(FormatString("Invalid Type %d", static_cast<int>(m_type)));
}

// clang-format off
std::string QnVariant::ToString(char const* format) const {
  switch (m_type) {
#define QN_VALUE_KIND(number, stem, Access, Held) \
    case ItemType_##stem: return CConversions::stem##ToString(Get##Access());
#define QN_FORMATTED_VALUE_KIND(number, stem, Access, Held) \
    case ItemType_##stem: return CConversions::stem##ToString(Get##Access(), format);
#include "values/item_types.def"
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  throw CQnException(FormatString("Invalid Type %d to convert to string", static_cast<int>(m_type)));
}

void QnVariant::FromString(std::string const& text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
  FromText(text, type, rule);
}

void QnVariant::FromText(std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule) {
  if (type == ItemType_string) {  // converted directly in its place
    std::string scratch;
    return SetHeld<std::string>(type, ApplyWhitespaceRule(rule, text, scratch));
  }
  switch (type) {
#define QN_VALUE_KIND(number, stem, Access, Held) \
    case ItemType_##stem: SetConverted<Held>(ItemType_##stem, TextConversions::stem##FromText(text, rule)); return;
#include "values/item_types.def"
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  // The number is that of the held kind, not of the requested one.
  throw CQnException(FormatString("Invalid Type %d to convert to string", static_cast<int>(m_type)));
}
// clang-format on

}  // namespace Quillon9
