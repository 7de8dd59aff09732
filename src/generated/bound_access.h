#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "descriptors/form_access.h"
#include "quillon9/binding/collection.h"
#include "quillon9/generated/bound_object.h"
#include "quillon9/generated/object_col.h"

namespace Quillon9 {

/// What the descriptors of generated classes do with their objects.
struct BoundAccess {
  static CPropertyRef Property(CXmlGeneratedClass const* holder, int index) {
    return static_cast<CBoundObject const*>(holder)->ConstProperty(index);
  }
  /// A new object of the class that \p element becomes where the type that has \p tables is declared.
  static CSmartPtr<CXmlObjectBase> MakeFor(CClassTables const& tables, CXmlElement const& element,
                                           char const* elementName, unsigned block) {
    CSmartPtr<CXmlObjectBase> object = tables.TypeOf(element, block).CreateObject(elementName);
    MarkNew(*object);
    return object;
  }
  /// Say that \p object, which is bound, was made just now for a read.
  static void MarkNew(CXmlObjectBase& object) { static_cast<CBoundObject&>(object).m_isNew = true; }
  /// Check the name of \p object, or set it if it has none, and note whether its type is not \p declared.
  /// \throws CQnInvalidParamException for another name, and for a type that the declaration blocks.
  static void Adopt(CBoundObject& object, char const* elementName, CClassTables const& declared, unsigned block);
  /// The places of the members of an all group in the order in which they were read; null where that is their own.
  ///@{
  static std::vector<int> const* Order(CXmlGeneratedClass const* holder) {
    ObjectForm const* const form = FormAccess::Find(*holder);
    return form != nullptr && !form->members.empty() ? &form->members : nullptr;
  }
  static void SetOrder(CXmlGeneratedClass* holder, std::vector<int> order) {
    FormAccess::ToChange(*holder).members = std::move(order);
  }
  ///@}
  /// The places of the text of mixed content; null if all of it follows the elements.
  ///@{
  static std::vector<std::size_t> const* Places(CBoundObject const& holder) {
    static auto const& none = *new std::vector<std::size_t>();
    ObjectForm const* const form = FormAccess::Find(holder);
    if (form == nullptr) return &none;
    return form->places ? &*form->places : nullptr;
  }
  static void SetPlaces(CBoundObject& holder, std::optional<std::vector<std::size_t>> places) {
    bool const isDefault = places && places->empty() && FormAccess::Find(holder) == nullptr;
    if (!isDefault) FormAccess::ToChange(holder).places = std::move(places);
  }
  ///@}
  static void SetPrefixes(CBoundObject& holder, std::vector<std::pair<std::string, std::string>> prefixes) {
    bool const isDefault = prefixes.empty() && FormAccess::Find(holder) == nullptr;
    if (!isDefault) FormAccess::ToChange(holder).prefixes = std::move(prefixes);
  }
  static BuiltClass const& Built(CBoundObject const& holder) { return holder.m_tables->Built(); }
  /// The first item of a collection of objects.
  static CNode const* FirstNode(CObjectCollection const& collection) { return collection.GetFirstNode(); }
  /// \throws CQnValidationException for \p cursor, a child of \p parent that is left over.
  static void RejectLeftOver(CXmlGeneratedClass const& holder, CXmlSerializationContext const& ctx,
                             CXmlElement const* parent, CXmlElement const* cursor) {
    static_cast<CBoundObject const&>(holder).RejectLeftOver(ctx, parent, cursor);
  }
  /// The namespace of the global element that \p object was made for, a constant; null where it is not known.
  ///@{
  static char const* ElementNamespace(CBoundObject const& object) { return object.m_elementNamespace; }
  static void SetElementNamespace(CXmlObjectBase& object, char const* ns) {
    static_cast<CBoundObject&>(object).m_elementNamespace = ns;
  }
  ///@}
};

}  // namespace Quillon9
