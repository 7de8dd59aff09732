#include "generated/element_group.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <typeinfo>

#include "descriptors/generic_reading.h"
#include "generated/bound_access.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

namespace {

/// The elements of one local name.
struct Range {
  CGroupElement const* first;
  CGroupElement const* last;

  CGroupElement const* begin() const { return first; }
  CGroupElement const* end() const { return last; }
  bool IsEmpty() const { return first == last; }
};

Range ElementsNamed(CElementGroup const& group, std::string_view name) {
  struct ByName {
    bool operator()(CGroupElement const& element, std::string_view wanted) const { return element.name < wanted; }
    bool operator()(std::string_view wanted, CGroupElement const& element) const { return wanted < element.name; }
  };
  auto const found = std::equal_range(group.elements, group.elements + group.count, name, ByName());
  return {found.first, found.second};
}

CGroupElement const* InNamespace(Range const& elements, std::string_view ns) {
  auto const found =
      std::find_if(elements.begin(), elements.end(), [ns](CGroupElement const& element) { return element.ns == ns; });
  return found != elements.end() ? found : nullptr;
}

CGroupElement const* FindHead(CElementRow const& row) {
  return InNamespace(ElementsNamed(*row.group, row.name), row.ns);
}

bool IsOrDerivesFrom(CClassTables const* tables, CClassTables const* base) {
  while (tables != nullptr && tables != base) tables = tables->GetRow().base;
  return tables != nullptr;
}

// ---- Which element an object is

/// The only element of the class of \p object; else the head, if it may be that; else null.
CGroupElement const* ElementOfClass(CBoundObject const& object, CElementRow const& row) {
  CGroupElement const* found = nullptr;
  int count = 0;
  for (int i = 0; i < row.group->count; ++i) {
    CGroupElement const& element = row.group->elements[i];
    if (element.type != &object.GetClassTables()) continue;
    found = &element;
    ++count;
  }
  if (count == 1) return found;
  CGroupElement const* const head = FindHead(row);
  return head != nullptr && IsOrDerivesFrom(&object.GetClassTables(), head->type) ? head : nullptr;
}

CGroupElement const* ElementOf(CBoundObject const& object, CElementRow const& row) {
  std::string const& name = object.GetElementName();
  if (name.empty()) return ElementOfClass(object, row);
  Range const elements = ElementsNamed(*row.group, name);
  char const* const known = BoundAccess::ElementNamespace(object);
  if (known != nullptr) return InNamespace(elements, known);
  // Made by CreateInstance(), which does not say the namespace.
  auto const isOfClass = [&](CGroupElement const& element) {
    return IsOrDerivesFrom(&object.GetClassTables(), element.type);
  };
  auto const found = std::find_if(elements.begin(), elements.end(), isOfClass);
  return found != elements.end() ? found : elements.IsEmpty() ? nullptr : elements.begin();
}

[[noreturn]] void ThrowNotInGroup(std::string const& name, CElementRow const& row) {
  throw CQnInvalidParamException(
      FormatString("The element [%s] is not in the substitution group of [%s]", name.c_str(), row.name));
}

void Adopt(CBoundObject& object, CElementRow const& row) {
  CGroupElement const* const element = ElementOf(object, row);
  if (element == nullptr) ThrowNotInGroup(object.GetElementName(), row);
  if (element->type == nullptr || !IsOrDerivesFrom(&object.GetClassTables(), element->type)) {
    throw CQnInvalidParamException(FormatString("An object of the type [%s] cannot be the element [%s]",
                                                object.GetClassTables().GetRow().typeName, element->name));
  }
  BoundAccess::SetElementNamespace(object, element->ns);
  BoundAccess::Adopt(object, element->name, *element->type, element->block);
}

}  // namespace

void AdoptStandIn(CXmlObjectBase& object, CElementRow const& row) {
  if (auto* const bound = dynamic_cast<CBoundObject*>(&object)) return Adopt(*bound, row);
  auto const* const generic = typeid(object) == typeid(CElement) ? static_cast<CElement const*>(&object) : nullptr;
  std::string const name = generic != nullptr ? generic->GetName() : object.GetElementName();
  CGroupElement const* const element =
      generic != nullptr ? InNamespace(ElementsNamed(*row.group, name), generic->GetNamespace()) : nullptr;
  if (element == nullptr || element->type != nullptr) ThrowNotInGroup(name, row);
}

// ---- Reading and writing

CGroupElement const* FindStandIn(CElementGroup const& group, CXmlSerializationContext const& ctx,
                                 CXmlElement const* element) {
  if (element == nullptr) return nullptr;
  Range const elements = ElementsNamed(group, element->GetLocalName());
  if (elements.IsEmpty()) return nullptr;
  CGroupElement const* const found = InNamespace(elements, element->GetNamespaceURI());
  return found == nullptr && ctx.GetIgnoreNamespaces() ? elements.begin() : found;
}

CSmartPtr<CXmlObjectBase> NewHead(CElementRow const& row) {
  CGroupElement const* const head = FindHead(row);
  if (head == nullptr || head->type == nullptr) {
    throw CQnInvalidStateException(FormatString("The element [%s] is abstract", row.name));
  }
  CSmartPtr<CXmlObjectBase> object = head->type->CreateObject(head->name);
  BoundAccess::SetElementNamespace(*object, head->ns);
  return object;
}

CSmartPtr<CXmlObjectBase> ReadStandIn(CElementRow const& row, CXmlElement* parent, CXmlElement** cursor,
                                      CXmlSerializationContext const& ctx) {
  CGroupElement const* const element = FindStandIn(*row.group, ctx, *cursor);
  if (element == nullptr) return nullptr;
  if (element->type == nullptr) return TakeGeneric(parent, cursor, ctx);
  CSmartPtr<CXmlObjectBase> object = BoundAccess::MakeFor(*element->type, **cursor, element->name, element->block);
  BoundAccess::SetElementNamespace(*object, element->ns);
  CXmlObjectBase::FromXml_Int(object.Get(), *cursor, (*cursor)->GetFirstElement(), ctx);
  *cursor = (*cursor)->GetNextSiblingElement();
  return object;
}

char const* NamespaceOfStandIn(CXmlObjectBase const& object, CElementRow const& row) {
  if (typeid(object) == typeid(CElement)) return row.ns;  // it knows its own
  char const* const known = BoundAccess::ElementNamespace(static_cast<CBoundObject const&>(object));
  return known != nullptr ? known : row.ns;
}

}  // namespace Quillon9
