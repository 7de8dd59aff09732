#pragma once

#include <atomic>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "quillon9/binding/typed_collections.h"
#include "quillon9/export.h"
#include "quillon9/generated/rows.h"

namespace Quillon9 {

/// The texts of an enumeration whose enumerators are 0, 1, 2 and so on. A constant that lives until the process ends.
class QUILLON9_API CEnumTexts {
 public:
  /// \p name is that of the enumeration, for failures; \p texts has the text of each enumerator. Both are kept.
  template <int count>
  constexpr CEnumTexts(char const* name, char const* const (&texts)[count]) : CEnumTexts(name, texts, count) {}
  /// The same for \p count texts.
  constexpr CEnumTexts(char const* name, char const* const* texts, int count)
      : m_name(name), m_texts(texts), m_count(count) {}

  /// The text of an enumerator; null for a number that is not one.
  char const* ToText(int number) const { return number >= 0 && number < m_count ? m_texts[number] : nullptr; }
  /// The number of the enumerator that has exactly this text.
  /// \throws CQnInvalidValueException "The value [%s] is not one of the enumeration [%s]".
  int FromText(std::string_view text) const;
  /// The name of the enumeration.
  char const* GetName() const { return m_name; }

 private:
  int const* Sorted() const;

  char const* m_name;
  char const* const* m_texts;
  int m_count;
  mutable std::atomic<int const*> m_sorted{nullptr};  // the enumerators in the order of their texts; never freed
};

/// Base of all CEnumCol: the enumerators as numbers.
class QUILLON9_API CEnumCollection : public detail::ValueCol<int> {
 public:
  ~CEnumCollection() override;
  /// Whether it belongs to a generated class.
  bool HoldsUtf8Text() const override { return true; }
  /// Apply the white-space rule of the type to \p text, and add the enumerator.
  /// \throws CQnInvalidValueException as CEnumTexts::FromText() does.
  void AddFromString(std::string text) override;

 protected:
  /// The collection of a row whose value is an enumeration.
  explicit CEnumCollection(CElementRow const& row);
  /// \throws CQnInvalidParamException "Index out of range" unless \p index is 0 to GetCount(); CQnInvalidValueException
  ///         "The number %d is not one of the enumeration [%s]" for a number without text.
  void InsertNumber(int index, int number);
  /// \throws CQnValidationException for a count outside its limits.
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;

 private:
  CEnumTexts const* m_texts;  // null for an empty collection that nobody fills
};

/// A collection of enumerators, with the manners of a standard container.
template <class Enum>
class CEnumCol : public CEnumCollection {
 public:
  /// Goes through the enumerators. Valid until the collection changes.
  class const_iterator {
   public:
    /// The member types that algorithms expect of an iterator.
    ///@{
    using iterator_category = std::forward_iterator_tag;
    using value_type = Enum;
    using difference_type = std::ptrdiff_t;
    using pointer = Enum const*;
    using reference = Enum;
    ///@}
    const_iterator() = default;
    /// Point at this number.
    explicit const_iterator(std::vector<int>::const_iterator at) : m_at(at) {}
    /// The enumerator.
    Enum operator*() const { return static_cast<Enum>(*m_at); }
    /// Go to the next one.
    ///@{
    const_iterator& operator++() {
      ++m_at;
      return *this;
    }
    const_iterator operator++(int) { return const_iterator(m_at++); }
    ///@}
    /// Whether both point at the same one.
    ///@{
    bool operator==(const_iterator const& other) const { return m_at == other.m_at; }
    bool operator!=(const_iterator const& other) const { return m_at != other.m_at; }
    ///@}

   private:
    std::vector<int>::const_iterator m_at;
  };
  /// The member types that algorithms expect of a container.
  ///@{
  using value_type = Enum;
  using reference = Enum;
  using const_reference = Enum;
  using iterator = const_iterator;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  ///@}

  /// The collection of a row.
  static CSmartPtr<CXmlObjectBase> ForRow(CElementRow const& row) { return new CEnumCol(row); }

  /// The enumerators in order.
  ///@{
  const_iterator begin() const { return const_iterator(CEnumCollection::begin()); }
  const_iterator end() const { return const_iterator(CEnumCollection::end()); }
  ///@}
  /// The enumerator at \p index, from 0.
  /// \throws CQnInvalidParamException "Index %d is out of range, use 0 - %d" when there is none.
  ///@{
  Enum operator[](int index) const { return static_cast<Enum>(ItemAt(index)); }
  Enum Item(int index) const { return static_cast<Enum>(ItemAt(index)); }
  ///@}
  /// Add an enumerator at the end, or at \p index, from 0 to GetCount().
  /// \throws CQnInvalidParamException "Index out of range".
  ///@{
  void Add(Enum value) { InsertNumber(GetCount(), static_cast<int>(value)); }
  void AddAt(int index, Enum value) { InsertNumber(index, static_cast<int>(value)); }
  ///@}

 private:
  explicit CEnumCol(CElementRow const& row) : CEnumCollection(row) {}
};

}  // namespace Quillon9
