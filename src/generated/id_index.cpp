#include "quillon9/generated/id_index.h"

#include <algorithm>
#include <vector>

#include "generated/bound_access.h"
#include "generated/built_class.h"
#include "quillon9/binding/typed_collections.h"
#include "quillon9/generated/object_col.h"

namespace Quillon9 {

namespace {

void AppendObjects(CXmlObjectBase* held, std::vector<CBoundObject*>& objects) {
  if (auto* const object = dynamic_cast<CBoundObject*>(held)) return objects.push_back(object);
  auto* const collection = dynamic_cast<CObjectCollection*>(held);
  if (collection == nullptr) return;
  for (CNode const* node = BoundAccess::FirstNode(*collection); node != nullptr; node = node->m_next) {
    if (auto* const object = dynamic_cast<CBoundObject*>(node->m_item.Get())) objects.push_back(object);
  }
}

/// Calls \p visit with the identifiers that a property has, until it returns false. Returns whether all of them were
/// visited.
template <class Visit>
bool ForEachIdIn(CPropertyRef const& property, Visit visit) {
  if (property.IsObject()) {
    auto const* const texts = static_cast<CstringCol const*>(property.Look());
    return texts == nullptr || std::all_of(texts->begin(), texts->end(), visit);
  }
  QnVariant id;
  property.Read(id);
  return !id.IsValid() || visit(id.GetString());
}

/// Calls \p visit with each identifier and its object, in the order of the members, until it returns false. Uses a list
/// instead of the stack, since objects may nest deeply.
template <class Visit>
void ForEachId(CBoundObject& root, Visit visit) {
  std::vector<CBoundObject*> open = {&root};
  while (!open.empty()) {
    CBoundObject& object = *open.back();
    open.pop_back();
    BuiltClass const& built = BoundAccess::Built(object);
    for (int const number : built.IdProperties()) {
      auto const visitOne = [&](std::string const& id) { return visit(id, object); };
      if (!ForEachIdIn(BoundAccess::Property(&object, number), visitOne)) return;
    }
    std::vector<CBoundObject*> inner;
    for (int i = 0; i < built.PropertyCount(); ++i) {
      CPropertyRef const property = BoundAccess::Property(&object, i);
      if (property && property.IsObject()) AppendObjects(property.Look(), inner);
    }
    open.insert(open.end(), inner.rbegin(), inner.rend());
  }
}

}  // namespace

CBoundObject* CBoundObject::FindById(std::string_view id) {
  CBoundObject* found = nullptr;
  ForEachId(*this, [&](std::string const& each, CBoundObject& object) {
    if (each == id) found = &object;
    return found == nullptr;
  });
  return found;
}

CIdIndex::CIdIndex(CBoundObject& root) {
  ForEachId(root, [this](std::string const& id, CBoundObject& object) {
    m_objects.emplace(id, &object);
    return true;
  });
}

CBoundObject* CIdIndex::Find(std::string_view id) const {
  auto const found = m_objects.find(std::string(id));
  return found != m_objects.end() ? found->second : nullptr;
}

}  // namespace Quillon9
