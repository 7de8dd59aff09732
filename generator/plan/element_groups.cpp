#include "plan/element_groups.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace Quillon9Generator::Plan {

namespace {

using Element = ElementGroup::Element;
using Holder = ElementGroup::Holder;

bool IsOrDerivesFrom(Class const* cls, Class const* base) {
  while (cls != nullptr && cls != base) cls = cls->base;
  return cls != nullptr;
}

/// The nearest of \p cls and its bases that all elements are or derive from; null for none.
Class const* CommonClass(std::vector<Element> const& elements, Class const* cls) {
  auto const isCommon = [&cls](Element const& element) { return IsOrDerivesFrom(element.type, cls); };
  while (cls != nullptr && !std::all_of(elements.begin(), elements.end(), isCommon)) cls = cls->base;
  return cls;
}

bool HaveOneValueType(std::vector<Element> const& elements) {
  ValueType const& first = elements.front().value;
  return std::all_of(elements.begin(), elements.end(), [&first](Element const& element) {
    return element.type == nullptr && element.value.IsHeldLike(first);
  });
}

}  // namespace

bool StandsFor(Schema::ElementDeclaration const& element, Schema::ElementDeclaration const& head) {
  Schema::ElementDeclaration const* each = element.substitutionHead;
  while (each != nullptr && each != &head) each = each->substitutionHead;
  return each != nullptr;
}

void FinishGroup(ElementGroup& group) {
  std::vector<Element>& elements = group.elements;
  auto const key = [](Element const& element) { return std::tie(element.name.local, element.name.ns); };
  std::sort(elements.begin(), elements.end(), [&](Element const& a, Element const& b) { return key(a) < key(b); });
  auto const head = std::find_if(elements.begin(), elements.end(),
                                 [&](Element const& element) { return element.name == group.head->name; });

  group.type = CommonClass(elements, group.type != nullptr ? group.type : elements.front().type);
  if (std::any_of(elements.begin(), elements.end(), [](Element const& element) { return element.anyType; })) {
    group.holder = Holder::AnyObject;
  } else if (group.type != nullptr) {
    group.holder = Holder::Class;
    group.canCreateHead = head != elements.end() && head->type == group.type && !group.type->abstract;
  } else if (HaveOneValueType(elements)) {
    group.holder = Holder::Value;
    group.value = elements.front().value;
    group.canCreateHead = head != elements.end();
  }
}

}  // namespace Quillon9Generator::Plan
