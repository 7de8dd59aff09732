#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "quillon9/binding/collection.h"
#include "quillon9/export.h"
#include "quillon9/text/whitespace.h"
#include "quillon9/values/big_integer.h"
#include "quillon9/values/conversions.h"
#include "quillon9/values/date_time.h"
#include "quillon9/values/date_time_span.h"
#include "quillon9/values/decimal.h"
#include "quillon9/values/item_type.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/values/restrictions.h"

/// Collections of plain values, for repeating elements of primitive types. A class name consists of C, a kind in XML
/// Schema style, and Col. The facets check each value as it enters, and not again when it is written. Destroying a
/// collection fires no event.
namespace Quillon9 {

/// Base of all collections of values: the facets, and how a run of elements with the same name is read.
class QUILLON9_API CXmlTypeCollection : public CXmlCollectionBase {
 public:
  /// \p maxOccurs -1 means no upper limit; a null \p name or \p ns counts as empty; a negative length and an empty or
  /// null text mean that this facet is not set. \p format, with which decimals and floating-point numbers are written,
  /// is not copied and must outlive the collection (generated code passes literals or null); everything else is copied.
  CXmlTypeCollection(ItemType type, char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern,
                     int minLength, int maxLength, char const* minInclusive, char const* maxInclusive,
                     char const* minExclusive, char const* maxExclusive, int length,
                     CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CXmlTypeCollection() override;

  /// Apply the collection's white-space rule to \p text, convert it and add the value.
  /// \throws what the conversion and Add() throw.
  virtual void AddFromString(std::string text) = 0;

 protected:
  /// Add the text of each element from \p cursor on that has this collection's name, however many there are; return the
  /// first element with another name. The other arguments are ignored. Values read before a failure stay.
  /// \throws what AddFromString() throws.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;

  /// \throws CQnInvalidParamException "Index out of range" unless \p index is 0 to GetCount().
  void CheckInsertIndex(int index) const;
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" unless \p index is 0 to GetCount() - 1.
  void CheckItemIndex(int index) const;
  /// \throws CQnInvalidStateException "The collection [%s] was changed while values were removed from it" always.
  [[noreturn]] void ThrowChangedDuringRemoval() const;
  /// By the rules of XML Schema: check \p value, whose text is \p text; check it, and return its text.
  ///@{
  void CheckBySchema(QnVariant const& value, std::string_view text) const;
  std::string CheckedText(QnVariant const& value) const;
  ///@}

  CPrimitiveRestrictions m_restrictions;              ///< the facets, copied
  ItemType m_itemType;                                ///< kind of the values
  char const* m_format;                               ///< not owned; see the constructor
  CWhitespaceUtils::WhitespaceRule m_whitespaceRule;  ///< for AddFromString()

 private:
  detail::LazySchemaFacets m_schemaFacets;
};

namespace detail {

/// The values of a collection. Removing one moves those on its shorter side, so that removing the first, as Clear()
/// does, costs as little as removing the last.
template <class Value>
class ValueList {
 public:
  int Count() const { return static_cast<int>(m_items.size() - m_first); }
  Value At(int index) const { return m_items[m_first + static_cast<std::size_t>(index)]; }
  void Insert(int index, Value const& value) {
    m_items.insert(std::next(begin(), index), value);
    ++m_changes;
  }
  void Erase(int index) {
    ++m_changes;
    if (index > Count() / 2) {
      m_items.erase(std::next(begin(), index));
      return;
    }
    auto const first = std::next(m_items.begin(), static_cast<std::ptrdiff_t>(m_first));
    std::move_backward(first, std::next(first, index), std::next(first, index + 1));
    *first = Value();
    ++m_first;
    if (m_first <= m_items.size() / 2) return;
    m_items.erase(m_items.begin(), begin());
    m_first = 0;
  }
  /// Erase each value whose index is true in \p unwanted, which has one entry for each value.
  void Erase(std::vector<bool> const& unwanted) {
    ++m_changes;
    std::size_t kept = m_first;
    for (std::size_t i = 0; i < unwanted.size(); ++i) {
      if (unwanted[i]) continue;
      if (kept != m_first + i) m_items[kept] = std::move(m_items[m_first + i]);
      ++kept;
    }
    m_items.resize(kept);
  }
  /// How often the list has changed.
  std::uint64_t Changes() const { return m_changes; }
  auto begin() const { return std::next(m_items.begin(), static_cast<std::ptrdiff_t>(m_first)); }
  auto end() const { return m_items.end(); }

 private:
  std::vector<Value> m_items;
  std::size_t m_first = 0;  // the values before this index have been removed
  std::uint64_t m_changes = 0;
};

/// The operations on values that the collections of all kinds share.
template <class Value>
class QUILLON9_API ValueCol : public CXmlTypeCollection {
 public:
  using CXmlTypeCollection::CXmlTypeCollection;

  /// The number of values.
  int GetCount() const override { return m_items.Count(); }
  /// Call Remove(0) until the collection is empty.
  /// \throws CQnException "The collection [%s] is filled while it is cleared" for a listener that adds without end.
  void Clear() override {
    ClearGuard guard(*this);
    while (GetCount() != 0) {
      Remove(0);
      guard.Check();
    }
  }
  /// The remove event precedes the check of \p index. The event after the removal always has the index 0.
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" with the count.
  void Remove(int index) override {
    FireOnCollectionRemove(index);
    CheckItemIndex(index);
    m_items.Erase(index);
    FireOnCollectionRemoveComplete(0);
    FireOnCollectionChange();
  }

  /// Remove all values for which \p isUnwanted, a function of one value, returns true, and return their number. This
  /// takes one pass over the values, whereas every Remove() from the middle moves the values on the shorter side.
  /// \p isUnwanted is called once for each value, in order; it must not change the collection.
  ///
  /// CollectionRemove is fired with the index of each of these values, from the last to the first, before anything
  /// changes. Then all are removed at once. CollectionRemoveComplete follows as many times, with the index 0, and
  /// CollectionChange once. There is no event when nothing is removed.
  /// \throws what \p isUnwanted or a listener of CollectionRemove throws, or CQnInvalidStateException "The collection
  ///         [%s] was changed while values were removed from it" when such a listener changed it: then no value has
  ///         been removed here. What other listeners throw, after the values have been removed.
  template <class Predicate>
  int RemoveIf(Predicate isUnwanted) {
    std::vector<bool> unwanted;
    unwanted.reserve(static_cast<std::size_t>(GetCount()));
    for (Value const& value : *this) unwanted.push_back(static_cast<bool>(isUnwanted(value)));
    auto const count = static_cast<int>(std::count(unwanted.begin(), unwanted.end(), true));
    if (count == 0) return 0;
    AnnounceRemoval(unwanted);
    m_items.Erase(unwanted);
    for (int i = 0; i < count; ++i) FireOnCollectionRemoveComplete(0);
    FireOnCollectionChange();
    return count;
  }

  // The member types that algorithms expect of a container.
  using value_type = Value;                                              ///< the values
  using const_iterator = typename std::vector<Value>::const_iterator;    ///< goes through them
  using iterator = const_iterator;                                       ///< the same: values do not change in place
  using const_reference = typename std::vector<Value>::const_reference;  ///< a value in the collection
  using reference = const_reference;                                     ///< the same
  using size_type = std::size_t;                                         ///< a number of values
  using difference_type = std::ptrdiff_t;                                ///< a distance between values
  /// The values in order. Valid until the collection changes.
  const_iterator begin() const { return m_items.begin(); }
  /// The end of the values.
  const_iterator end() const { return m_items.end(); }
  /// The number of values.
  std::size_t size() const { return static_cast<std::size_t>(m_items.Count()); }
  /// Whether there are none.
  bool empty() const { return m_items.Count() == 0; }
  /// The value at \p index, from 0. Valid until the collection changes.
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" with the count.
  const_reference operator[](int index) const {
    CheckItemIndex(index);
    return begin()[index];
  }

 protected:
  /// A copy of the value at \p index.
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d".
  Value ItemAt(int index) const {
    CheckItemIndex(index);
    return m_items.At(index);
  }
  /// Insert \p value, a copy that no listener can remove. The add event, with the address of the value as data,
  /// precedes the checks of the index and by \p check; a failure up to this point leaves the collection unchanged, a
  /// failure of a later listener leaves the value in it.
  template <class Check>
  void Insert(int index, Value value, Check check) {
    FireOnCollectionAdd(&value);
    CheckInsertIndex(index);
    check(static_cast<Value const&>(value));
    m_items.Insert(index, value);
    FireOnCollectionAddComplete(&value);
    FireOnCollectionChange();
  }

 private:
  void AnnounceRemoval(std::vector<bool> const& unwanted) {
    std::uint64_t const changes = m_items.Changes();
    for (int index = GetCount(); index-- > 0;) {
      if (!unwanted[static_cast<std::size_t>(index)]) continue;
      FireOnCollectionRemove(index);
      if (m_items.Changes() != changes) ThrowChangedDuringRemoval();
    }
  }

  ValueList<Value> m_items;
};

/// One family of operations for every kind of value. `Kind` supplies the type of the values, how they are passed, their
/// ItemType, and the matching conversions and facet check.
template <class Kind>
class CTypedColImpl : public ValueCol<typename Kind::Value> {
 public:
  ///@{
  using Value = typename Kind::Value;        ///< what is held
  using Argument = typename Kind::Argument;  ///< how it is passed
  ///@}

  /// The arguments of CXmlTypeCollection without the first.
  CTypedColImpl(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern, int minLength,
                int maxLength, char const* minInclusive, char const* maxInclusive, char const* minExclusive,
                char const* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CTypedColImpl() override;

  /// Insert \p value at the end, as AddAt() does.
  void Add(Argument value);
  /// Insert \p value, which may be one of this collection, at \p index. The add event, with the address of the value as
  /// data, precedes the checks of the index and the facets; a failure of these leaves the collection unchanged.
  /// \throws CQnInvalidParamException "Index out of range" unless \p index is 0 to GetCount(); CQnException for a
  ///         broken facet and for a pattern that does not compile, CQnInvalidValueException for a bound that does not
  ///         parse; CQnException "The collection [%s] is full" at 2,147,483,647 values; what a listener throws.
  void AddAt(int index, Argument value);
  /// Apply the collection's white-space rule to \p text, convert it and add the value.
  /// \throws CQnInvalidValueException for a text that does not convert, and the other failures of
  ///         CConversions; what Add() throws.
  void AddFromString(std::string text) override;
  /// A copy of the value at \p index, from 0.
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" with the count.
  Value Item(int index) const { return this->ItemAt(index); }

 protected:
  /// \throws CQnValidationException for a count outside its limits, before anything is written; what the conversion to
  ///         text throws, while the element of this value is open.
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
};

/// PlainKind converts to text without a format, FormattedKind with one.
template <class V, class A, ItemType number, auto fromString, auto toString, auto check>
struct PlainKind {
  using Value = V;
  using Argument = A;
  static constexpr ItemType kItemType = number;
  static V FromText(std::string const& text, CWhitespaceUtils::WhitespaceRule rule) { return fromString(text, rule); }
  static std::string ToText(V const& value, char const*) { return toString(value); }
  static void Check(char const* name, V const& value, CPrimitiveRestrictions const& facets) {
    check(name, value, facets);
  }
};
template <class V, class A, ItemType number, auto fromString, auto toString, auto check>
struct FormattedKind : PlainKind<V, A, number, fromString, toString, check> {
  static std::string ToText(V const& value, char const* format) { return toString(value, format); }
};

// How the kinds differ: in the type of their values and how these are passed (strings by value), and in whether their
// conversion to text takes the collection's format (Formatted). CbooleanCol holds a vector of bits, whose items have no
// address of their own. The five kinds that hold a CDateTime form a family of their own, CdatetimeBaseCol: it checks
// the type of the value and the facets before the first event, never converts a value of another type, and passes every
// value to the writer as ItemType_datetime.
//
// clang-format off
#define QN_KIND(Style, stem, V, A)                                                                              \
  struct stem##Kind : Style##Kind<V, A, ItemType_##stem, &CConversions::stem##FromString,                        \
                                  &CConversions::stem##ToString, &CXmlObjectHelper::CheckRestrictionFor##stem> {}; \
  extern template class QUILLON9_API CTypedColImpl<stem##Kind>;
QN_KIND(Plain,     hexBinary,    CBinaryData,   CBinaryData const&)
QN_KIND(Formatted, base64Binary, CBinaryData,   CBinaryData const&)
QN_KIND(Plain,     i1,           std::int8_t,   std::int8_t)
QN_KIND(Plain,     i2,           std::int16_t,  std::int16_t)
QN_KIND(Plain,     i4,           std::int32_t,  std::int32_t)
QN_KIND(Plain,     i8,           std::int64_t,  std::int64_t)
QN_KIND(Plain,     ui1,          std::uint8_t,  std::uint8_t)
QN_KIND(Plain,     ui2,          std::uint16_t, std::uint16_t)
QN_KIND(Plain,     ui4,          std::uint32_t, std::uint32_t)
QN_KIND(Plain,     ui8,          std::uint64_t, std::uint64_t)
QN_KIND(Formatted, r4,           float,         float)
QN_KIND(Formatted, r8,           double,        double)
QN_KIND(Formatted, duration,     CDateTimeSpan, CDateTimeSpan const&)
QN_KIND(Plain,     year,         std::uint16_t, std::uint16_t)
QN_KIND(Plain,     month,        std::uint8_t,  std::uint8_t)
QN_KIND(Plain,     day,          std::uint8_t,  std::uint8_t)
QN_KIND(Plain,     string,       std::string,   std::string)
QN_KIND(Plain,     boolean,      bool,          bool)
QN_KIND(Formatted, decimal,      CDecimal,      CDecimal const&)
QN_KIND(Plain,     integer,      CBigInteger,   CBigInteger const&)
#undef QN_KIND
//      class          stem          must be of type
//      CdateCol       date          dt_date
//      CdatetimeCol   datetime      dt_dateTime
//      CtimeCol       time          dt_time
//      CyearMonthCol  yearMonth     dt_gYearMonth
//      CmonthDayCol   monthDay      dt_gMonthDay
// clang-format on

}  // namespace detail

// The concrete classes. They only give their kind a name.

/// A collection of octets, spelled as `hexBinary`.
class QUILLON9_API ChexBinaryCol : public detail::CTypedColImpl<detail::hexBinaryKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~ChexBinaryCol() override;
};

/// A collection of octets, spelled as `base64Binary`.
class QUILLON9_API Cbase64BinaryCol : public detail::CTypedColImpl<detail::base64BinaryKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Cbase64BinaryCol() override;
};

/// A collection of 8-bit integers: `byte`.
class QUILLON9_API Ci1Col : public detail::CTypedColImpl<detail::i1Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Ci1Col() override;
};

/// A collection of 16-bit integers: `short`.
class QUILLON9_API Ci2Col : public detail::CTypedColImpl<detail::i2Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Ci2Col() override;
};

/// A collection of 32-bit integers: `int`.
class QUILLON9_API Ci4Col : public detail::CTypedColImpl<detail::i4Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Ci4Col() override;
};

/// A collection of 64-bit integers: `long`.
class QUILLON9_API Ci8Col : public detail::CTypedColImpl<detail::i8Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Ci8Col() override;
};

/// A collection of unsigned 8-bit integers: `unsignedByte`.
class QUILLON9_API Cui1Col : public detail::CTypedColImpl<detail::ui1Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Cui1Col() override;
};

/// A collection of unsigned 16-bit integers: `unsignedShort`.
class QUILLON9_API Cui2Col : public detail::CTypedColImpl<detail::ui2Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Cui2Col() override;
};

/// A collection of unsigned 32-bit integers: `unsignedInt`.
class QUILLON9_API Cui4Col : public detail::CTypedColImpl<detail::ui4Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Cui4Col() override;
};

/// A collection of unsigned 64-bit integers: `unsignedLong`.
class QUILLON9_API Cui8Col : public detail::CTypedColImpl<detail::ui8Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Cui8Col() override;
};

/// A collection of single-precision numbers: `float`.
class QUILLON9_API Cr4Col : public detail::CTypedColImpl<detail::r4Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Cr4Col() override;
};

/// A collection of double-precision numbers: `double`.
class QUILLON9_API Cr8Col : public detail::CTypedColImpl<detail::r8Kind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~Cr8Col() override;
};

/// A collection of durations: `duration`.
class QUILLON9_API CdurationCol : public detail::CTypedColImpl<detail::durationKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CdurationCol() override;
};

/// A collection of years: `gYear`.
class QUILLON9_API CyearCol : public detail::CTypedColImpl<detail::yearKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CyearCol() override;
};

/// A collection of months: `gMonth`.
class QUILLON9_API CmonthCol : public detail::CTypedColImpl<detail::monthKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CmonthCol() override;
};

/// A collection of days: `gDay`.
class QUILLON9_API CdayCol : public detail::CTypedColImpl<detail::dayKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CdayCol() override;
};

/// A collection of strings: `string` and the types derived from it.
class QUILLON9_API CstringCol : public detail::CTypedColImpl<detail::stringKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CstringCol() override;
};

/// A collection of Boolean values: `boolean`.
class QUILLON9_API CbooleanCol : public detail::CTypedColImpl<detail::booleanKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CbooleanCol() override;
};

/// A collection of decimals of any length: `decimal`.
class QUILLON9_API CdecimalCol : public detail::CTypedColImpl<detail::decimalKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CdecimalCol() override;
};

/// A collection of integers of any length: `integer`.
class QUILLON9_API CintegerCol : public detail::CTypedColImpl<detail::integerKind> {
 public:
  using CTypedColImpl::CTypedColImpl;
  ~CintegerCol() override;
};

/// The base of the collections of dates and times. Unlike the other collections, these check the type of the value
/// first and then its facets, so that a value that fails never reaches the listeners, and the index last.
class QUILLON9_API CdatetimeBaseCol : public detail::ValueCol<CDateTime> {
 public:
  /// The arguments are those of CXmlTypeCollection.
  CdatetimeBaseCol(ItemType type, char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern,
                   int minLength, int maxLength, char const* minInclusive, char const* maxInclusive,
                   char const* minExclusive, char const* maxExclusive, int length,
                   CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CdatetimeBaseCol() override;

  /// Insert \p value at the end, as AddAt() does.
  virtual void Add(CDateTime const& value);
  /// Insert \p value, which may be one of this collection, at \p index.
  /// \throws CQnInvalidParamException "Dates added to this collection must be of type %s" for a value of another type,
  ///         which is not converted; CQnException for a broken facet; CQnInvalidParamException "Index out of range";
  ///         the rest as in the other collections.
  virtual void AddAt(int index, CDateTime const& value) = 0;
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" with the count.
  virtual CDateTime Item(int index) const;
  /// The text of \p value in the format of this class.
  /// \throws CQnInvalidValueException "Date Not Set".
  virtual std::string ItemToString(CDateTime const& value) const = 0;

 protected:
  /// Every class passes its values to the writer as ItemType_datetime. Throws as the other collections do.
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  /// The last step of AddAt(): fire the add event, check the index, insert the value, fire the remaining events.
  void BaseAddAt(int index, CDateTime const& value);
  /// \throws CQnInvalidParamException when \p value is not of \p type.
  static void CheckType(CDateTime const& value, CDateTime::DTType type, char const* typeName);
};

// The concrete classes; the arguments are those of CXmlTypeCollection without the first.

/// A collection of `date` values.
class QUILLON9_API CdateCol : public CdatetimeBaseCol {
 public:
  /// The arguments of CXmlTypeCollection without the first.
  CdateCol(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern, int minLength,
           int maxLength, char const* minInclusive, char const* maxInclusive, char const* minExclusive,
           char const* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CdateCol() override;
  void AddFromString(std::string text) override;
  void AddAt(int index, CDateTime const& value) override;
  std::string ItemToString(CDateTime const& value) const override;
};

/// A collection of `dateTime` values.
class QUILLON9_API CdatetimeCol : public CdatetimeBaseCol {
 public:
  /// The arguments of CXmlTypeCollection without the first.
  CdatetimeCol(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern, int minLength,
               int maxLength, char const* minInclusive, char const* maxInclusive, char const* minExclusive,
               char const* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CdatetimeCol() override;
  void AddFromString(std::string text) override;
  void AddAt(int index, CDateTime const& value) override;
  std::string ItemToString(CDateTime const& value) const override;
};

/// A collection of `time` values.
class QUILLON9_API CtimeCol : public CdatetimeBaseCol {
 public:
  /// The arguments of CXmlTypeCollection without the first.
  CtimeCol(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern, int minLength,
           int maxLength, char const* minInclusive, char const* maxInclusive, char const* minExclusive,
           char const* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CtimeCol() override;
  void AddFromString(std::string text) override;
  void AddAt(int index, CDateTime const& value) override;
  std::string ItemToString(CDateTime const& value) const override;
};

/// A collection of `gYearMonth` values.
class QUILLON9_API CyearMonthCol : public CdatetimeBaseCol {
 public:
  /// The arguments of CXmlTypeCollection without the first.
  CyearMonthCol(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern, int minLength,
                int maxLength, char const* minInclusive, char const* maxInclusive, char const* minExclusive,
                char const* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CyearMonthCol() override;
  void AddFromString(std::string text) override;
  void AddAt(int index, CDateTime const& value) override;
  std::string ItemToString(CDateTime const& value) const override;
};

/// A collection of `gMonthDay` values.
class QUILLON9_API CmonthDayCol : public CdatetimeBaseCol {
 public:
  /// The arguments of CXmlTypeCollection without the first.
  CmonthDayCol(char const* name, char const* ns, int minOccurs, int maxOccurs, char const* pattern, int minLength,
               int maxLength, char const* minInclusive, char const* maxInclusive, char const* minExclusive,
               char const* maxExclusive, int length, CWhitespaceUtils::WhitespaceRule rule, char const* format);
  ~CmonthDayCol() override;
  void AddFromString(std::string text) override;
  void AddAt(int index, CDateTime const& value) override;
  std::string ItemToString(CDateTime const& value) const override;
};

}  // namespace Quillon9
