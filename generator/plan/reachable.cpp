#include "plan/reachable.h"

#include <algorithm>
#include <variant>

#include "plan/value_types.h"

namespace Quillon9Generator::Plan {

namespace {

using Schema::ComplexType;
using Schema::ElementDeclaration;
using Schema::ModelGroup;
using Schema::SimpleType;

using Elements = std::vector<ElementDeclaration const*>;

/// Follows the references between components, with lists of what is still to be looked at: chains may be long.
class Reach {
 public:
  void Add(ElementDeclaration const& element) {
    if (m_elements.insert(&element).second) m_pendingElements.push_back(&element);
  }

  void FollowAll() {
    while (!m_pendingElements.empty() || !m_pendingTypes.empty()) {
      if (!m_pendingTypes.empty()) {
        ComplexType const* const next = m_pendingTypes.back();
        m_pendingTypes.pop_back();
        Follow(*next);
      } else {
        ElementDeclaration const* const next = m_pendingElements.back();
        m_pendingElements.pop_back();
        Follow(*next);
      }
    }
  }

  bool Has(ElementDeclaration const* element) const { return m_elements.count(element) != 0; }
  bool Has(ComplexType const* type) const { return m_types.count(type) != 0; }
  bool Has(SimpleType const* type) const { return m_simpleTypes.count(type) != 0; }

 private:
  void Follow(ElementDeclaration const& element) {
    for (ElementDeclaration const* each : element.standIns) Add(*each);
    if (element.simpleType != nullptr) m_simpleTypes.insert(element.simpleType);
    // No document has an abstract element, whose type is but a base of those of the others.
    if (element.complexType != nullptr)
      element.abstract ? Add(*element.complexType) : AddWithDerived(*element.complexType);
  }

  void Add(ComplexType const& type) {
    if (m_types.insert(&type).second) m_pendingTypes.push_back(&type);
  }

  void AddWithDerived(ComplexType const& type) {
    std::vector<ComplexType const*> pending{&type};
    while (!pending.empty()) {
      ComplexType const* const next = pending.back();
      pending.pop_back();
      if (next->anyType || !m_withDerived.insert(next).second) continue;
      Add(*next);
      for (ComplexType const* derived : next->derived) {
        if (!derived->IsAnonymous()) pending.push_back(derived);
      }
    }
  }

  void Follow(ComplexType const& type) {
    if (type.base != nullptr) Add(*type.base);
    if (type.simpleContent != nullptr) m_simpleTypes.insert(type.simpleContent);
    for (Schema::AttributeUse const& use : type.attributes) m_simpleTypes.insert(use.declaration->type);
    if (type.particle) Follow(*type.particle);
  }

  void Follow(Schema::Particle const& particle) {
    std::vector<Schema::Particle const*> pending{&particle};
    while (!pending.empty()) {
      Schema::Particle const& next = *pending.back();
      pending.pop_back();
      if (auto const* const element = std::get_if<ElementDeclaration const*>(&next.term)) {
        Add(**element);
      } else if (auto const* const group = std::get_if<ModelGroup const*>(&next.term)) {
        if (*group == nullptr || !m_modelGroups.insert(*group).second) continue;
        for (Schema::Particle const& inner : (*group)->particles) pending.push_back(&inner);
      }
    }
  }

  std::set<ElementDeclaration const*> m_elements;
  std::set<ComplexType const*> m_types;
  std::set<ComplexType const*> m_withDerived;
  std::set<SimpleType const*> m_simpleTypes;  ///< those of values, not those that only others derive from
  std::set<ModelGroup const*> m_modelGroups;
  Elements m_pendingElements;
  std::vector<ComplexType const*> m_pendingTypes;
};

Elements ElementsCalled(std::string const& name, Elements const& all) {
  Elements found;
  for (ElementDeclaration const* element : all) {
    if (KeyOf(element->name) == name) return {element};
    if (element->name.local == name) found.push_back(element);
  }
  return found;
}

std::string ListOf(Elements const& elements) {
  std::string list;
  for (ElementDeclaration const* element : elements) list += (list.empty() ? "" : ", ") + KeyOf(element->name);
  return list;
}

/// Add the elements that \p root stands for, or an error.
void Choose(std::string const& root, Elements const& all, std::set<ElementDeclaration const*>& chosen,
            Schema::Diagnostics& diagnostics) {
  Elements const found = ElementsCalled(root, all);
  if (found.empty()) return diagnostics.Error("", "no global element \"" + root + "\" to begin with");
  if (found.size() > 1) {
    return diagnostics.Error(
        "", "\"" + root + "\" may be any of the elements " + ListOf(found) + "; name it with its namespace");
  }
  ElementDeclaration const& element = *found.front();
  if (!element.abstract) {
    chosen.insert(&element);
  } else if (element.standIns.empty()) {
    diagnostics.Error("", "the element \"" + root + "\" is abstract, and no other may stand in its place");
  } else {
    chosen.insert(element.standIns.begin(), element.standIns.end());
  }
}

template <class Object>
void Keep(std::vector<Object const*>& objects, Reach const& reach) {
  auto const isLost = [&reach](Object const* object) { return !reach.Has(object); };
  objects.erase(std::remove_if(objects.begin(), objects.end(), isLost), objects.end());
}

}  // namespace

Selection SelectAll(Schema::SchemaSet const& set) { return {set, {set.elements.begin(), set.elements.end()}}; }

Selection SelectReachable(Schema::SchemaSet const& set, std::vector<std::string> const& roots,
                          Schema::Diagnostics& diagnostics) {
  Selection selection{set, {}};
  for (std::string const& root : roots) Choose(root, set.elements, selection.documents, diagnostics);
  Reach reach;
  for (ElementDeclaration const* element : selection.documents) reach.Add(*element);
  reach.FollowAll();
  Keep(selection.set.elements, reach);
  Keep(selection.set.complexTypes, reach);
  Keep(selection.set.simpleTypes, reach);
  return selection;
}

}  // namespace Quillon9Generator::Plan
