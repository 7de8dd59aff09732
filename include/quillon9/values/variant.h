#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/export.h"
#include "quillon9/fwd.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/big_integer.h"
#include "quillon9/values/binary_data.h"
#include "quillon9/values/date_time.h"
#include "quillon9/values/date_time_span.h"
#include "quillon9/values/decimal.h"
#include "quillon9/values/item_type.h"

namespace Quillon9 {

/// Holds one value of one ItemType, or nothing. Values travel in it between the properties of generated classes, the
/// facet checks, and the text of a document.
///
/// A variant owns its value: a copy of a string or of binary data (whose bytes are shared until one side changes them),
/// or a counted reference to an object, which may be null. Any number of threads may read and copy it while none
/// changes it.
class QUILLON9_API QnVariant {
 public:
  /// Holds nothing.
  QnVariant() = default;
  /// Copy the value of \p other; an object is shared.
  /// \throws CQnException "Unknown Type" for a kind that does not exist.
  QnVariant(QnVariant const& other);
  /// Take the value of \p other, which then holds nothing.
  QnVariant(QnVariant&& other);
  /// Clear(), then copy: assigning a variant to itself empties it.
  /// \throws CQnException "Unknown Type".
  QnVariant& operator=(QnVariant const& other);
  /// Clear(), then take the value of \p other, which then holds nothing.
  QnVariant& operator=(QnVariant&& other);
  virtual ~QnVariant();

  /// Whether this variant holds a value.
  bool IsValid() const { return m_type != ItemType_invalid; }
  /// The kind of the value held; ItemType_invalid for none.
  ItemType GetItemType() const { return m_type; }
  /// The name of the held kind, which is the part of the enumerator after its underscore.
  /// \throws CQnException "Invalid Type %d" when nothing, an object or a collection is held.
  std::string GetType() const;

  /// Release the value; the variant then holds nothing.
  ///@{
  void Clear() {
    if (m_owns) Release();
    m_type = ItemType_invalid;
  }
  void SetInvalid() { Clear(); }
  ///@}

  /// Release the old value and hold the new one.
  ///@{
  void SetHexBinary(CBinaryData const& value);
  void SetBase64Binary(CBinaryData const& value);
  void SetI1(std::int8_t value) { SetScalar(ItemType_i1, value); }
  void SetI2(std::int16_t value) { SetScalar(ItemType_i2, value); }
  void SetI4(std::int32_t value) { SetScalar(ItemType_i4, value); }
  void SetI8(std::int64_t value) { SetScalar(ItemType_i8, value); }
  void SetUI1(std::uint8_t value) { SetScalar(ItemType_ui1, value); }
  void SetUI2(std::uint16_t value) { SetScalar(ItemType_ui2, value); }
  void SetUI4(std::uint32_t value) { SetScalar(ItemType_ui4, value); }
  void SetUI8(std::uint64_t value) { SetScalar(ItemType_ui8, value); }
  void SetR4(float value) { SetScalar(ItemType_r4, value); }
  void SetR8(double value) { SetScalar(ItemType_r8, value); }
  void SetDuration(CDateTimeSpan const& value);
  void SetYearMonth(CDateTime const& value);
  void SetMonthDay(CDateTime const& value);
  void SetYear(std::uint16_t value) { SetScalar(ItemType_year, value); }
  void SetMonth(std::uint8_t value) { SetScalar(ItemType_month, value); }
  void SetDay(std::uint8_t value) { SetScalar(ItemType_day, value); }
  void SetDate(CDateTime const& value);
  void SetDateTime(CDateTime const& value);
  void SetTime(CDateTime const& value);
  void SetChar(char value) { SetScalar(ItemType_char, value); }
  void SetString(std::string value);
  ///@}
  /// Like the setters above; an argument that was moved from may only be assigned to or destroyed.
  ///@{
  void SetBoolean(bool value) { SetScalar(ItemType_boolean, value); }
  void SetDecimal(CDecimal const& value);
  void SetDecimal(CDecimal&& value);
  void SetInteger(CBigInteger const& value);
  void SetInteger(CBigInteger&& value);
  ///@}
  /// Take a counted reference to \p object, unless it is null; a null object also counts as a value.
  ///@{
  void SetXmlObject(CXmlObjectBase* object);
  void SetXmlCollection(CXmlCollectionBase* collection);
  ///@}

  /// Read a scalar without checking the held kind: if another kind is held, the getter returns whatever is in the eight
  /// bytes of the value (GetBoolean: whether the first of them is not 0).
  ///@{
  std::int8_t GetI1() const { return Load<std::int8_t>(); }
  std::int16_t GetI2() const { return Load<std::int16_t>(); }
  std::int32_t GetI4() const { return Load<std::int32_t>(); }
  std::int64_t GetI8() const { return Load<std::int64_t>(); }
  std::uint8_t GetUI1() const { return Load<std::uint8_t>(); }
  std::uint16_t GetUI2() const { return Load<std::uint16_t>(); }
  std::uint32_t GetUI4() const { return Load<std::uint32_t>(); }
  std::uint64_t GetUI8() const { return Load<std::uint64_t>(); }
  float GetR4() const { return Load<float>(); }
  double GetR8() const { return Load<double>(); }
  std::uint16_t GetYear() const { return Load<std::uint16_t>(); }
  std::uint8_t GetMonth() const { return Load<std::uint8_t>(); }
  std::uint8_t GetDay() const { return Load<std::uint8_t>(); }
  char GetChar() const { return Load<char>(); }
  bool GetBoolean() const { return Load<unsigned char>() != 0; }
  ///@}

  /// The other getters return an empty value when nothing is held.
  /// \throws CQnException "Invalid Type %d to read as hexBinary", and so on, when a value of another class is held;
  ///         hexBinary and base64Binary have the same class, and so do the five kinds that hold a CDateTime.
  ///@{
  CBinaryData GetHexBinary() const;
  CBinaryData GetBase64Binary() const;
  CDateTimeSpan GetDuration() const;
  CDateTime GetYearMonth() const;
  CDateTime GetMonthDay() const;
  CDateTime GetDate() const;
  CDateTime GetDateTime() const;
  CDateTime GetTime() const;
  ///@}
  /// These three return a reference to the value itself, which lives until this variant changes or is destroyed; their
  /// overloads for a temporary variant return a copy.
  ///@{
  CDecimal const& GetDecimal() const&;
  CDecimal GetDecimal() const&&;
  CBigInteger const& GetInteger() const&;
  CBigInteger GetInteger() const&&;
  std::string const& GetString() const&;
  std::string GetString() const&&;
  ///@}
  /// The held object or collection; null when nothing is held.
  CSmartPtr<CXmlObjectBase> GetXmlObject() const;
  /// The same without a counted reference, which saves two atomic operations. Use it only while this variant holds the
  /// object.
  CXmlObjectBase* LookAtXmlObject() const;
  /// The held collection, also when it was set as an object; null when nothing is held.
  /// \throws CQnException "Invalid Type %d to read as xmlCollection", also for an object that is not a collection.
  CSmartPtr<CXmlCollectionBase> GetXmlCollection() const;
  /// The same without a counted reference.
  /// \throws CQnException as GetXmlCollection().
  CXmlCollectionBase* LookAtXmlCollection() const;

  /// The text of the value, as the `...ToString` of CConversions prints it. \p format applies only to r4, r8,
  /// decimal, duration and base64Binary; null means their default form, and kShortestFormat the shortest text that reads back the same.
  /// \throws CQnException "Invalid Type %d to convert to string" when nothing, an object or a collection is held;
  ///         whatever the conversion throws: for a \p format that prints anything but the one number,
  ///         CQnInvalidValueException "Date Not Set".
  std::string ToString(char const* format = nullptr) const;
  /// Parse \p text as a value of the kind \p type with the `...FromString` of CConversions, and hold it. After a
  /// failure the variant keeps the old value.
  /// \throws CQnException "Invalid Type %d to convert to string" with the number of the kind that is held now, when \p
  ///         type has no text form; whatever the conversion throws.
  void FromString(std::string const& text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);

 private:
  friend struct VariantAccess;

  /// FromString() for a text that is followed by a zero.
  void FromText(std::string_view text, ItemType type, CWhitespaceUtils::WhitespaceRule rule);
  template <class T>
  T Load() const {
    T value;
    std::memcpy(&value, m_value, sizeof value);
    return value;
  }
  template <class T>
  void Store(ItemType type, T value) {
    static_assert(sizeof value <= sizeof m_value, "does not fit");
    std::memcpy(m_value, &value, sizeof value);
    m_type = type;
  }
  template <class T>
  void SetScalar(ItemType type, T value) {
    Clear();
    Store(type, value);
  }
  template <class Held, class Value>
  void SetHeld(ItemType type, Value&& value);
  template <class Held>
  void SetConverted(ItemType type, Held&& value);
  template <class Held>
  void CopyHeld(ItemType type, QnVariant const& other);
  template <class Held>
  void MoveHeld(ItemType type, QnVariant& other);
  void Release();
  template <class Held>
  void DeleteHeld();
  void SetReference(ItemType type, CXmlObjectBase* object);
  void ReleaseReference();
  template <class Held>
  Held GetOwned(char const* kind) const;
  template <class Held>
  Held const& LookAtOwned(char const* kind) const;
  void TakeFrom(QnVariant& other);
  [[noreturn]] void ThrowWrongKind(char const* kind) const;

  ItemType m_type = ItemType_invalid;
  bool m_owns = false;                       // owns the pointee of the value, or a counted reference to it
  alignas(8) unsigned char m_value[8] = {};  // a scalar, or a pointer to m_held or to an object
  // Holds values that are not scalars: giving each its own memory makes reading and writing measurably slower.
  alignas(8) unsigned char m_held[std::max({sizeof(std::string), sizeof(CBigInteger), sizeof(CBinaryData),
                                            sizeof(CDateTime), sizeof(CDateTimeSpan), sizeof(CDecimal)})];
};

}  // namespace Quillon9
