#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

#include "quillon9/binding/collection.h"
#include "quillon9/binding/node_iterator.h"
#include "quillon9/export.h"
#include "quillon9/generated/bound_object.h"
#include "quillon9/generated/class_tables.h"

namespace Quillon9 {

/// Base of all CObjectCol: how a run of elements, or of groups without a tag, is read and written.
class QUILLON9_API CObjectCollection : public CXmlCollection {
  friend struct BoundAccess;

 public:
  ~CObjectCollection() override;
  /// Whether it belongs to a generated class.
  bool HoldsUtf8Text() const override { return m_tables != nullptr || m_row != nullptr; }
  /// Those of the class of its items, if that is a CBoundObject.
  ValueRules GetDefaultValueRules() const override;
  /// As for any collection. The failure names rounds, which have no name, by those of the elements that begin them.
  void ValidateCount(CXmlSerializationContext const& ctx) const override;

  /// The number of items.
  std::size_t size() const { return static_cast<std::size_t>(GetCount()); }
  /// Whether there are none.
  bool empty() const { return GetCount() == 0; }

 protected:
  /// Makes an item with this element name.
  using Create = CSmartPtr<CXmlObjectBase> (*)(char const* elementName);

  /// The arguments of CXmlCollectionBase, the function that makes an item, and whether the items have a tag. \p tables
  /// are those of the class of the items, which are then made by them; null if that class is not a CBoundObject.
  CObjectCollection(char const* name, char const* ns, int minOccurs, int maxOccurs, CClassTables const* tables,
                    Create create, Quillon9Data::XmlElementType itemType);
  /// The collection of a row. Where a group of the row may be empty, there is no minimum.
  explicit CObjectCollection(CElementRow const& row);

  /// The item that \p element becomes, which is under the cursor; null where it is not an item. Here, an element of
  /// the name and namespace of this collection is an item, and its xsi:type chooses among derived classes of
  /// CBoundObject. A collection of a substitution group, or of an abstract type of other classes, overrides it.
  virtual CSmartPtr<CXmlObjectBase> ItemFor(CXmlSerializationContext const& ctx, CXmlElement* element);

  /// Check the count, then write each item.
  /// \throws CQnValidationException for a count outside its limits; what the items throw.
  void ToXml_Int(CXmlWriter* writer, bool isRoot, char const* ns, CXmlSerializationContext const& ctx,
                 bool inChoice) const override;
  /// Append an item for each element from \p cursor on, up to the first that is not one; or, where the items have no
  /// tag, as long as an item takes elements.
  CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                           bool inChoice) override;

  /// A new item, which is not in the collection yet.
  CSmartPtr<CXmlObjectBase> NewItem() const;
  /// Check an item that the program adds, and give it the name of this collection if it has none.
  void Prepare(CXmlObjectBase* item);

 private:
  friend struct BoundAccess;

  CXmlElement* ReadRounds(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx);
  CSmartPtr<CXmlObjectBase> ReadItem(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx);
  bool HasGroup() const;
  unsigned Block() const;
  CXmlElement* ReadItems(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx);

  std::string m_itemNamespace;
  CElementRow const* m_row = nullptr;  // null unless it was made for one
  CClassTables const* m_tables;
  Create m_create;
  bool m_hasRounds;  // the items have no tag
};

/// A collection of objects of the class \p T, or derived from it, with the manners of a standard container. Items are
/// reached in constant time at both ends and next to the last place used.
///
/// It serves classes of any origin: those derived from CBoundObject, and others that have a static
/// `CreateInstance(elementName)`, under CElementInfoSeqClsCol, CElementInfoSeqAbsClsCol and their sisters.
template <class T>
class CObjectCol : public CObjectCollection {
 public:
  // The member types that algorithms expect of a container.
  using value_type = T;                                  ///< the items
  using reference = T&;                                  ///< an item
  using const_reference = T const&;                      ///< an item that is only read
  using size_type = std::size_t;                         ///< a number of items
  using difference_type = std::ptrdiff_t;                ///< a distance between items
  using iterator = detail::NodeIterator<T>;              ///< valid as long as its item is in the collection
  using const_iterator = detail::NodeIterator<T const>;  ///< the same, for reading

  /// The name and the namespace of the items and the limits of their number; \p maxOccurs -1 means no upper limit.
  /// \p itemType says whether the items have a tag, as the record of their class does.
  CObjectCol(char const* name, char const* ns, int minOccurs, int maxOccurs,
             Quillon9Data::XmlElementType itemType = Quillon9Data::XmlElementType_Element)
      : CObjectCollection(name, ns, minOccurs, maxOccurs, OwnTables(), OwnCreate(), itemType) {}
  /// The collection of a row, with the tables that the row names.
  static CSmartPtr<CXmlObjectBase> ForRow(CElementRow const& row) { return new CObjectCol(row); }

  /// The first item.
  iterator begin() { return iterator(GetFirstNode()); }
  /// The end of the items.
  iterator end() { return iterator(); }
  /// The first item.
  const_iterator begin() const { return const_iterator(GetFirstNode()); }
  /// The end of the items.
  const_iterator end() const { return const_iterator(); }
  /// The first item.
  const_iterator cbegin() const { return begin(); }
  /// The end of the items.
  const_iterator cend() const { return end(); }

  // All of these throw CQnInvalidParamException "Index %d is out of range, use 0 - %d" when there is no such item.
  T& operator[](int index) { return At(index); }              ///< The item at \p index, from 0.
  T const& operator[](int index) const { return At(index); }  ///< The item at \p index, from 0.
  T& at(int index) { return At(index); }                      ///< The item at \p index, from 0.
  T const& at(int index) const { return At(index); }          ///< The item at \p index, from 0.
  T& front() { return At(0); }                                ///< The first item.
  T const& front() const { return At(0); }                    ///< The first item.
  T& back() { return At(GetCount() - 1); }                    ///< The last item.
  T const& back() const { return At(GetCount() - 1); }        ///< The last item.

  /// Append a new item; of a substitution group, its head.
  /// \throws CQnInvalidStateException "The type [%s] is abstract", "The element [%s] is abstract".
  T& Add() {
    CSmartPtr<CXmlObjectBase> const item = NewItem();
    AppendItem(item.Get());
    return *static_cast<T*>(item.Get());
  }
  /// Append \p item. The collection shares it with the caller. One of a derived class of CBoundObject will be written
  /// with xsi:type, unless it is another element of a substitution group.
  /// \throws CQnInvalidParamException when it is null or was made for another element.
  T& Add(CSmartPtr<T> const& item) {
    Prepare(item.Get());
    AppendItem(item.Get());
    return *item;
  }
  /// The same for an object of a derived class, as which it is returned.
  template <class Derived, class = std::enable_if_t<std::is_convertible_v<Derived*, T*>>>
  Derived& Add(CSmartPtr<Derived> const& item) {
    Add(CSmartPtr<T>(item));
    return *item;
  }
  /// The same, but put it at \p index, from 0 to size().
  /// \throws CQnInvalidParamException as Add(), and "Index out of range".
  T& Insert(int index, CSmartPtr<T> const& item) {
    Prepare(item.Get());
    AddItemAt(index, item.Get());
    return *item;
  }
  /// Remove the item at \p place, which must be one of this collection. Returns the place after it.
  iterator erase(const_iterator place) {
    iterator const next(place.GetNode()->m_next);
    RemoveNode(place.GetNode());
    return next;
  }
  /// Remove all items from \p first up to \p last, and return that place.
  iterator erase(const_iterator first, const_iterator last) {
    while (first != last) first = erase(first);
    return iterator(last.GetNode());
  }

 protected:
  /// The collection of a row.
  explicit CObjectCol(CElementRow const& row) : CObjectCollection(row) {}

 private:
  T& At(int index) const { return *static_cast<T*>(GetNodeAtIndex(index)->m_item.Get()); }
  static CClassTables const* OwnTables() {
    if constexpr (std::is_base_of_v<CBoundObject, T>) return &T::s_class;
    return nullptr;
  }
  static Create OwnCreate() {
    if constexpr (std::is_base_of_v<CBoundObject, T>) {
      return nullptr;
    } else {
      return [](char const* name) -> CSmartPtr<CXmlObjectBase> { return T::CreateInstance(name); };
    }
  }
};

}  // namespace Quillon9
