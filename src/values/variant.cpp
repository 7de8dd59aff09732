#include "quillon9/values/variant.h"

#include <memory>
#include <type_traits>
#include <utility>

#include "quillon9/binding/exceptions.h"
#include "quillon9/values/conversions.h"

namespace Quillon9 {

#define QN_VALUE_KIND(number, stem, Access, Held) \
  static_assert(ItemType_##stem == (number) && (sizeof(Held) <= 8 || !std::is_arithmetic_v<Held>), #stem);
#include "values/item_types.def"

// ---- Ownership

template <class Held>
void QnVariant::SetOwned(ItemType type, Held* value) {
  Clear();
  Store(type, value);
  m_owns = true;
}

template <class Held>
void QnVariant::CopyHeld(ItemType type, QnVariant const& other) {
  if constexpr (std::is_arithmetic_v<Held>) {
    Store(type, other.Load<Held>());
  } else {
    Held const* const value = other.Load<Held*>();
    SetOwned(type, value != nullptr ? new Held(*value) : nullptr);
  }
}

template <class Held>
void QnVariant::DeleteHeld() {
  if constexpr (!std::is_arithmetic_v<Held>) {
    delete Load<Held*>();
    Store<Held*>(m_type, nullptr);
  }
}

void QnVariant::SetReference(ItemType type, CXmlObjectBase* object) {
  if (object != nullptr) object->AddRef();  // first: it may be held by nobody but this variant
  Clear();
  Store(type, object);
  m_owns = true;
}

void QnVariant::TakeFrom(QnVariant& other) {
  if (other.m_type == ItemType_string && !other.m_owns) {  // a borrowed one
    *this = static_cast<QnVariant const&>(other);
    return other.Clear();
  }
  std::memcpy(m_value, other.m_value, sizeof m_value);
  m_type = std::exchange(other.m_type, ItemType_invalid);
  m_owns = std::exchange(other.m_owns, false);
}

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
    case ItemType_xmlCollection:
      if (auto* const object = Load<CXmlObjectBase*>()) object->Release();
      Store<CXmlObjectBase*>(m_type, nullptr);
      break;
    case ItemType_invalid: break;
  }
}

// ---- Setters and getters that do more than copy a scalar

void QnVariant::SetHexBinary(CBinaryData const& value) { SetOwned(ItemType_hexBinary, new CBinaryData(value)); }

void QnVariant::SetBase64Binary(CBinaryData const& value) { SetOwned(ItemType_base64Binary, new CBinaryData(value)); }

void QnVariant::SetDuration(CDateTimeSpan const& value) { SetOwned(ItemType_duration, new CDateTimeSpan(value)); }

void QnVariant::SetYearMonth(CDateTime const& value) { SetOwned(ItemType_yearMonth, new CDateTime(value)); }

void QnVariant::SetMonthDay(CDateTime const& value) { SetOwned(ItemType_monthDay, new CDateTime(value)); }

void QnVariant::SetDate(CDateTime const& value) { SetOwned(ItemType_date, new CDateTime(value)); }

void QnVariant::SetDateTime(CDateTime const& value) { SetOwned(ItemType_datetime, new CDateTime(value)); }

void QnVariant::SetTime(CDateTime const& value) { SetOwned(ItemType_time, new CDateTime(value)); }

void QnVariant::SetDecimal(CDecimal const& value) { SetOwned(ItemType_decimal, new CDecimal(value)); }

void QnVariant::SetDecimal(CDecimal&& value) { SetOwned(ItemType_decimal, new CDecimal(std::move(value))); }

void QnVariant::SetInteger(CBigInteger const& value) { SetOwned(ItemType_integer, new CBigInteger(value)); }

void QnVariant::SetInteger(CBigInteger&& value) { SetOwned(ItemType_integer, new CBigInteger(std::move(value))); }

void QnVariant::SetString(std::string value) { SetOwned(ItemType_string, new std::string(std::move(value))); }

void QnVariant::BorrowString(std::string const& value) {
  Clear();
  Store(ItemType_string, &value);
}

void QnVariant::SetXmlObject(CXmlObjectBase* object) { SetReference(ItemType_xmlObject, object); }

void QnVariant::SetXmlCollection(CXmlCollectionBase* collection) { SetReference(ItemType_xmlCollection, collection); }

void QnVariant::ThrowWrongKind(char const* kind) const {
  throw CQnException(FormatString("Invalid Type %d to read as %s", static_cast<int>(m_type), kind));
}

// clang-format off
// Whether the union of a kind is a pointer to a `Wanted`.
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
  static Held const empty{};
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

CDecimal const& QnVariant::GetDecimal() const { return LookAtOwned<CDecimal>("decimal"); }

CBigInteger const& QnVariant::GetInteger() const { return LookAtOwned<CBigInteger>("integer"); }

std::string const& QnVariant::GetString() const { return LookAtOwned<std::string>("string"); }

CSmartPtr<CXmlObjectBase> QnVariant::GetXmlObject() const {
  if (!IsValid()) return nullptr;
  if (m_type != ItemType_xmlObject && m_type != ItemType_xmlCollection) ThrowWrongKind("xmlObject");
  return Load<CXmlObjectBase*>();
}

CSmartPtr<CXmlCollectionBase> QnVariant::GetXmlCollection() const {
  if (!IsValid()) return nullptr;
  if (m_type != ItemType_xmlObject && m_type != ItemType_xmlCollection) ThrowWrongKind("xmlCollection");
  auto* const object = Load<CXmlObjectBase*>();
  if (m_type == ItemType_xmlCollection) return static_cast<CXmlCollectionBase*>(object);
  auto* const collection = dynamic_cast<CXmlCollectionBase*>(object);
  if (collection == nullptr && object != nullptr) ThrowWrongKind("xmlCollection");
  return collection;
}

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
  switch (type) {
#define QN_VALUE_KIND(number, stem, Access, Held) \
    case ItemType_##stem: Set##Access(CConversions::stem##FromString(text, rule)); return;
#include "values/item_types.def"
    case ItemType_invalid:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  // The number is that of the kind held, not of the one asked for.
  throw CQnException(FormatString("Invalid Type %d to convert to string", static_cast<int>(m_type)));
}
// clang-format on

}  // namespace Quillon9
