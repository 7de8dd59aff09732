#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/typed_collections.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/generated/qualified_name.h"
#include "quillon9/generated/rows.h"
#include "quillon9/values/variant.h"

namespace Quillon9 {

/// What the library does with a data member of one C++ type. The functions get the address of the member.
struct CPropertyKind {
  /// Copy the member into \p value, which holds nothing; leave it so when the member is not set.
  void (*read)(void const* member, QnVariant& value);
  /// Copy the value into the member. An object of another class than that of the member is stored as null.
  void (*store)(void* member, QnVariant const& value);
  /// Unset the member, or give it the first value of its type.
  void (*clear)(void* member);
  /// Whether there is something to write.
  bool (*isSet)(void const* member);
  /// The object or collection, or null. Null itself for values.
  CXmlObjectBase* (*look)(void const* member);
  /// Share an object, which is of the class of the member, or null. Null itself for values.
  void (*hold)(void* member, CXmlObjectBase* object);
  /// A new empty collection for the elements of a row, or for attributes where that is null. Null itself for others.
  CSmartPtr<CXmlObjectBase> (*make)(CElementRow const* row);
};

/// \cond
namespace detail {

/// How a member holds values.
enum class Form {
  Plain,        ///< a value
  Optional,     ///< an std::optional
  List,         ///< an std::vector, which a variant holds as text, with blanks between the items
  OptionalList  ///< an std::optional of that
};

/// The kind of a member that holds a value: how \p Value is held in a variant as the kind \p number.
template <class Value, ItemType number>
struct ValueKind {
  static CPropertyKind const kPlain;         ///< of a Value
  static CPropertyKind const kOptional;      ///< of an std::optional<Value>
  static CPropertyKind const kList;          ///< of an std::vector<Value>
  static CPropertyKind const kOptionalList;  ///< of an std::optional<std::vector<Value>>
};

#define QN_VALUE_TYPES(Make)                                                                                    \
  Make(CBinaryData, ItemType_hexBinary) Make(CBinaryData, ItemType_base64Binary) Make(std::int8_t, ItemType_i1) \
      Make(std::int16_t, ItemType_i2) Make(std::int32_t, ItemType_i4) Make(std::int64_t, ItemType_i8)           \
          Make(std::uint8_t, ItemType_ui1) Make(std::uint16_t, ItemType_ui2) Make(std::uint32_t, ItemType_ui4)  \
              Make(std::uint64_t, ItemType_ui8) Make(float, ItemType_r4) Make(double, ItemType_r8)              \
                  Make(CDateTimeSpan, ItemType_duration) Make(CDateTime, ItemType_yearMonth)                    \
                      Make(CDateTime, ItemType_monthDay) Make(std::uint16_t, ItemType_year)                     \
                          Make(std::uint8_t, ItemType_month) Make(std::uint8_t, ItemType_day)                   \
                              Make(CDateTime, ItemType_date) Make(CDateTime, ItemType_datetime)                 \
                                  Make(CDateTime, ItemType_time) Make(std::string, ItemType_string)             \
                                      Make(bool, ItemType_boolean) Make(CDecimal, ItemType_decimal)             \
                                          Make(CBigInteger, ItemType_integer)
#define QN_DECLARE_KIND(Value, number) extern template struct QUILLON9_API ValueKind<Value, number>;
QN_VALUE_TYPES(QN_DECLARE_KIND)
#undef QN_DECLARE_KIND

/// The numbers of a list of enumerators as text, and back.
///@{
QUILLON9_API std::string TextOfNumbers(std::vector<int> const& numbers);
QUILLON9_API std::vector<int> NumbersOfText(QnVariant const& text);
///@}

/// The kind of an enumerator, which a variant holds as its number.
template <class Enum>
struct EnumKind {
  static_assert(std::is_enum_v<Enum>, "this is no type of a property");
  static std::optional<Enum>& Held(void* member) { return *static_cast<std::optional<Enum>*>(member); }
  static std::optional<Enum> const& Held(void const* member) {
    return *static_cast<std::optional<Enum> const*>(member);
  }

  static constexpr CPropertyKind kPlain = {
      [](void const* member, QnVariant& value) { value.SetI4(static_cast<int>(*static_cast<Enum const*>(member))); },
      [](void* member, QnVariant const& value) { *static_cast<Enum*>(member) = static_cast<Enum>(value.GetI4()); },
      [](void* member) { *static_cast<Enum*>(member) = Enum(); },
      [](void const*) { return true; },
      nullptr,
      nullptr,
      nullptr};
  static constexpr CPropertyKind kOptional = {
      [](void const* member, QnVariant& value) {
        if (Held(member)) value.SetI4(static_cast<int>(*Held(member)));
      },
      [](void* member, QnVariant const& value) { Held(member) = static_cast<Enum>(value.GetI4()); },
      [](void* member) { Held(member).reset(); },
      [](void const* member) { return Held(member).has_value(); },
      nullptr,
      nullptr,
      nullptr};

  using List = std::vector<Enum>;
  static void ReadList(List const& list, QnVariant& value) {
    std::vector<int> numbers;
    for (Enum const each : list) numbers.push_back(static_cast<int>(each));
    value.SetString(TextOfNumbers(numbers));
  }
  static List ListOf(QnVariant const& value) {
    List list;
    for (int const number : NumbersOfText(value)) list.push_back(static_cast<Enum>(number));
    return list;
  }
  static constexpr CPropertyKind kList = {
      [](void const* member, QnVariant& value) { ReadList(*static_cast<List const*>(member), value); },
      [](void* member, QnVariant const& value) { *static_cast<List*>(member) = ListOf(value); },
      [](void* member) { static_cast<List*>(member)->clear(); },
      [](void const*) { return true; },
      nullptr,
      nullptr,
      nullptr};
  static constexpr CPropertyKind kOptionalList = {
      [](void const* member, QnVariant& value) {
        auto const& held = *static_cast<std::optional<List> const*>(member);
        if (held) ReadList(*held, value);
      },
      [](void* member, QnVariant const& value) { *static_cast<std::optional<List>*>(member) = ListOf(value); },
      [](void* member) { static_cast<std::optional<List>*>(member)->reset(); },
      [](void const* member) { return static_cast<std::optional<List> const*>(member)->has_value(); },
      nullptr,
      nullptr,
      nullptr};
};

/// The table of \p Kinds for a form.
template <class Kinds, Form form>
constexpr CPropertyKind const* TableOf() {
  if constexpr (form == Form::Plain) return &Kinds::kPlain;
  if constexpr (form == Form::Optional) return &Kinds::kOptional;
  if constexpr (form == Form::List) return &Kinds::kList;
  if constexpr (form == Form::OptionalList) return &Kinds::kOptionalList;
}

/// Makes the collection of a row. The collections of objects and enumerators have the function themselves.
template <class Collection>
struct NewCollection {
  static CSmartPtr<CXmlObjectBase> ForRow(CElementRow const* row) { return Collection::ForRow(*row); }
};
#define QN_VALUE_COLLECTION(stem)                                    \
  template <>                                                        \
  struct QUILLON9_API NewCollection<C##stem##Col> {                  \
    static CSmartPtr<CXmlObjectBase> ForRow(CElementRow const* row); \
  };
#define QN_VALUE_COLLECTIONS(Make)                                                                                \
  Make(hexBinary) Make(base64Binary) Make(i1) Make(i2) Make(i4) Make(i8) Make(ui1) Make(ui2) Make(ui4) Make(ui8)  \
      Make(r4) Make(r8) Make(duration) Make(yearMonth) Make(monthDay) Make(year) Make(month) Make(day) Make(date) \
          Make(datetime) Make(time) Make(string) Make(boolean) Make(decimal) Make(integer)
QN_VALUE_COLLECTIONS(QN_VALUE_COLLECTION)
#undef QN_VALUE_COLLECTION
template <>
struct QUILLON9_API NewCollection<CAttributeCol> {
  static CSmartPtr<CXmlObjectBase> ForRow(CElementRow const*);
};

/// The kind of a member that shares an object or a collection. A collection counts as set when it has items.
template <class Object>
struct PointerKind {
  static constexpr bool kIsCollection = std::is_base_of_v<CXmlCollectionBase, Object>;
  static CSmartPtr<Object>& Held(void* member) { return *static_cast<CSmartPtr<Object>*>(member); }
  static Object* Held(void const* member) { return static_cast<CSmartPtr<Object> const*>(member)->Get(); }

  static void Read(void const* member, QnVariant& value) {
    if constexpr (kIsCollection) {
      value.SetXmlCollection(Held(member));
    } else {
      value.SetXmlObject(Held(member));
    }
  }
  static void Store(void* member, QnVariant const& value) {
    Held(member) = dynamic_cast<Object*>(value.GetXmlObject().Get());
  }
  static void Clear(void* member) { Held(member) = nullptr; }
  static bool IsSet(void const* member) {
    Object* const held = Held(member);
    if constexpr (kIsCollection) {
      return held != nullptr && held->GetCount() > 0;
    } else {
      return held != nullptr;
    }
  }
  static CXmlObjectBase* Look(void const* member) { return Held(member); }
  static void Hold(void* member, CXmlObjectBase* object) { Held(member) = static_cast<Object*>(object); }

  static constexpr auto Make() -> CSmartPtr<CXmlObjectBase> (*)(CElementRow const*) {
    if constexpr (kIsCollection) return &NewCollection<Object>::ForRow;
    return nullptr;
  }
  static constexpr CPropertyKind kTable = {&Read, &Store, &Clear, &IsSet, &Look, &Hold, Make()};
};

/// The kind of a \p Value where its C++ type does not say it; \p kind is what the schema says.
template <class Value>
struct KindChoice {
  template <Form form>
  static CPropertyKind const* Of(ItemType) {
    return TableOf<EnumKind<Value>, form>();
  }
};
#define QN_ONE_KIND(Value, number)                      \
  template <>                                           \
  struct KindChoice<Value> {                            \
    template <Form form>                                \
    static CPropertyKind const* Of(ItemType) {          \
      return TableOf<ValueKind<Value, number>, form>(); \
    }                                                   \
  };
QN_ONE_KIND(std::int8_t, ItemType_i1)
QN_ONE_KIND(std::int16_t, ItemType_i2)
QN_ONE_KIND(std::int32_t, ItemType_i4)
QN_ONE_KIND(std::int64_t, ItemType_i8)
QN_ONE_KIND(std::uint32_t, ItemType_ui4)
QN_ONE_KIND(std::uint64_t, ItemType_ui8)
QN_ONE_KIND(float, ItemType_r4)
QN_ONE_KIND(double, ItemType_r8)
QN_ONE_KIND(CDateTimeSpan, ItemType_duration)
QN_ONE_KIND(std::string, ItemType_string)
QN_ONE_KIND(bool, ItemType_boolean)
QN_ONE_KIND(CDecimal, ItemType_decimal)
QN_ONE_KIND(CBigInteger, ItemType_integer)
#undef QN_ONE_KIND

/// The kind of a qualified name, which a variant holds as text.
struct QUILLON9_API QualifiedNameKind {
  static CPropertyKind const kPlain;         ///< of a CQName
  static CPropertyKind const kOptional;      ///< of an std::optional of it
  static CPropertyKind const kList;          ///< of an std::vector of it
  static CPropertyKind const kOptionalList;  ///< of an std::optional of that
};
template <>
struct KindChoice<CQName> {
  template <Form form>
  static CPropertyKind const* Of(ItemType) {
    return TableOf<QualifiedNameKind, form>();
  }
};

/// One of several kinds; the first where \p kind is none of them.
template <class Value, Form form, ItemType first, ItemType... others>
CPropertyKind const* ChooseKind(ItemType kind) {
  if constexpr (sizeof...(others) != 0) {
    if (kind != first && ((kind == others) || ...)) return ChooseKind<Value, form, others...>(kind);
  }
  return TableOf<ValueKind<Value, first>, form>();
}
#define QN_SEVERAL_KINDS(Value, ...)                     \
  template <>                                            \
  struct KindChoice<Value> {                             \
    template <Form form>                                 \
    static CPropertyKind const* Of(ItemType kind) {      \
      return ChooseKind<Value, form, __VA_ARGS__>(kind); \
    }                                                    \
  };
QN_SEVERAL_KINDS(std::uint8_t, ItemType_ui1, ItemType_month, ItemType_day)
QN_SEVERAL_KINDS(std::uint16_t, ItemType_ui2, ItemType_year)
QN_SEVERAL_KINDS(CBinaryData, ItemType_base64Binary, ItemType_hexBinary)
QN_SEVERAL_KINDS(CDateTime, ItemType_datetime, ItemType_date, ItemType_time, ItemType_yearMonth, ItemType_monthDay)
#undef QN_SEVERAL_KINDS

}  // namespace detail
/// \endcond

/// A data member of a generated class: where it is, and what can be done with it. Valid as long as the member.
class CPropertyRef {
 public:
  /// No property.
  CPropertyRef() = default;
  /// A value that is always there. Its C++ type decides the kind, except for CDateTime (a date and time unless \p kind
  /// says otherwise), CBinaryData (base64Binary), std::uint16_t (a number, not a year) and std::uint8_t.
  template <class Value>
  CPropertyRef(Value& member, ItemType kind = ItemType_invalid)
      : m_member(&member), m_kind(detail::KindChoice<Value>::template Of<detail::Form::Plain>(kind)) {}
  /// A value that may be missing.
  template <class Value>
  CPropertyRef(std::optional<Value>& member, ItemType kind = ItemType_invalid)
      : m_member(&member), m_kind(detail::KindChoice<Value>::template Of<detail::Form::Optional>(kind)) {}
  /// A list of values, and one that may be missing. \p kind is that of the items.
  ///@{
  template <class Item>
  CPropertyRef(std::vector<Item>& member, ItemType kind = ItemType_invalid)
      : m_member(&member), m_kind(detail::KindChoice<Item>::template Of<detail::Form::List>(kind)) {}
  template <class Item>
  CPropertyRef(std::optional<std::vector<Item>>& member, ItemType kind = ItemType_invalid)
      : m_member(&member), m_kind(detail::KindChoice<Item>::template Of<detail::Form::OptionalList>(kind)) {}
  ///@}
  /// An object or a collection.
  template <class Object>
  CPropertyRef(CSmartPtr<Object>& member) : m_member(&member), m_kind(&detail::PointerKind<Object>::kTable) {}

  /// Whether this is a property.
  explicit operator bool() const { return m_kind != nullptr; }

  /// The operations of CPropertyKind. There must be a property.
  ///@{
  void Read(QnVariant& value) const { m_kind->read(m_member, value); }
  void Store(QnVariant const& value) const { m_kind->store(m_member, value); }
  void Clear() const { m_kind->clear(m_member); }
  bool IsSet() const { return m_kind->isSet(m_member); }
  CXmlObjectBase* Look() const { return m_kind->look(m_member); }
  std::string const* LookText() const;
  void Hold(CXmlObjectBase* object) const { m_kind->hold(m_member, object); }
  CSmartPtr<CXmlObjectBase> Make(CElementRow const* row) const { return m_kind->make(row); }
  ///@}
  /// Whether the member shares an object or a collection.
  bool IsObject() const { return m_kind->look != nullptr; }

 private:
  void* m_member = nullptr;
  CPropertyKind const* m_kind = nullptr;
};

namespace Rows {

/// A short name.
using PropertyRef = CPropertyRef;

}  // namespace Rows

}  // namespace Quillon9
