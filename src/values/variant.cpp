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

// The kinds that no variant can hold, because their value classes do not exist, to stand between "case" and colon.
// clang-format off
#define QN_KINDS_WITHOUT_CLASS                                                                                \
  ItemType_duration: case ItemType_yearMonth: case ItemType_monthDay: case ItemType_year: case ItemType_month: \
  case ItemType_day: case ItemType_date: case ItemType_datetime: case ItemType_time: case ItemType_decimal:   \
  case ItemType_integer
// clang-format on

// ---- Ownership

template <class Held>
void QnVariant::SetOwned(ItemType type, Held* value) {
  Clear();
  Store(type, value);
}

template <class Held>
void QnVariant::CopyHeld(ItemType type, QnVariant const& other) {
  if constexpr (std::is_arithmetic_v<Held>) {
    Store(type, other.Load<Held>());
  } else {
    Held const* const value = other.Load<Held*>();
    Store(type, value != nullptr ? new Held(*value) : nullptr);
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
}

void QnVariant::TakeFrom(QnVariant& other) {
  std::memcpy(m_value, other.m_value, sizeof m_value);
  m_type = std::exchange(other.m_type, ItemType_invalid);
}

QnVariant::QnVariant(QnVariant const& other) { *this = other; }

QnVariant::QnVariant(QnVariant&& other) noexcept { TakeFrom(other); }

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
    case QN_KINDS_WITHOUT_CLASS: break;
  }
  m_type = other.m_type;
  throw CQnException("Unknown Type");
}

QnVariant& QnVariant::operator=(QnVariant&& other) noexcept {
  Clear();
  TakeFrom(other);
  return *this;
}

QnVariant::~QnVariant() { Clear(); }

void QnVariant::Clear() {
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
    case ItemType_invalid:
    case QN_KINDS_WITHOUT_CLASS: break;
  }
  m_type = ItemType_invalid;
}

// ---- Setters and getters that do more than copy a scalar

void QnVariant::SetHexBinary(CBinaryData const& value) { SetOwned(ItemType_hexBinary, new CBinaryData(value)); }

void QnVariant::SetBase64Binary(CBinaryData const& value) { SetOwned(ItemType_base64Binary, new CBinaryData(value)); }

void QnVariant::SetString(std::string value) { SetOwned(ItemType_string, new std::string(std::move(value))); }

void QnVariant::SetXmlObject(CXmlObjectBase* object) { SetReference(ItemType_xmlObject, object); }

void QnVariant::SetXmlCollection(CXmlCollectionBase* collection) { SetReference(ItemType_xmlCollection, collection); }

void QnVariant::ThrowWrongKind(char const* kind) const {
  throw CQnException(FormatString("Invalid Type %d to read as %s", static_cast<int>(m_type), kind));
}

CBinaryData QnVariant::GetBinary(char const* kind) const {
  if (!IsValid()) return CBinaryData();
  if (m_type != ItemType_hexBinary && m_type != ItemType_base64Binary) ThrowWrongKind(kind);
  CBinaryData const* const value = Load<CBinaryData*>();
  return value != nullptr ? *value : CBinaryData();
}

CBinaryData QnVariant::GetHexBinary() const { return GetBinary("hexBinary"); }

CBinaryData QnVariant::GetBase64Binary() const { return GetBinary("base64Binary"); }

std::string const& QnVariant::GetString() const {
  static std::string const empty;
  if (!IsValid()) return empty;
  if (m_type != ItemType_string) ThrowWrongKind("string");
  std::string const* const value = Load<std::string*>();
  return value != nullptr ? *value : empty;
}

CSmartPtr<CXmlObjectBase> QnVariant::GetXmlObject() const {
  if (!IsValid()) return nullptr;
  if (m_type != ItemType_xmlObject && m_type != ItemType_xmlCollection) ThrowWrongKind("xmlObject");
  return Load<CXmlObjectBase*>();
}

CSmartPtr<CXmlCollectionBase> QnVariant::GetXmlCollection() const {
  if (!IsValid()) return nullptr;
  if (m_type != ItemType_xmlObject && m_type != ItemType_xmlCollection) ThrowWrongKind("xmlCollection");
  auto* const object = Load<CXmlObjectBase*>();
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
    case QN_KINDS_WITHOUT_CLASS:
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
    case QN_KINDS_WITHOUT_CLASS:
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
    case QN_KINDS_WITHOUT_CLASS:
    case ItemType_xmlObject:
    case ItemType_xmlCollection: break;
  }
  // The number is that of the kind held, not of the one asked for.
  throw CQnException(FormatString("Invalid Type %d to convert to string", static_cast<int>(m_type)));
}
// clang-format on

}  // namespace Quillon9
