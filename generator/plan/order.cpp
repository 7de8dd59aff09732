#include "plan/order.h"

#include <cstddef>
#include <map>
#include <set>
#include <vector>

#include "plan/names.h"

namespace Quillon9Generator::Plan {

namespace {

Class const* Outermost(Class const* cls) {
  while (cls->owner != nullptr) cls = cls->owner;
  return cls;
}

/// Which classes must be defined before which, by the classes that are not nested.
class DefinitionOrder {
 public:
  explicit DefinitionOrder(Plan& plan) : m_plan(plan) {
    for (auto const& cls : plan.classStorage) m_parts[Outermost(cls.get())].push_back(cls.get());
  }

  // A class cannot be defined inside of one that its base needs.
  void MoveOutOfCircles() {
    for (auto const& cls : m_plan.classStorage) {
      if (cls->owner != nullptr && cls->base != nullptr && Needs(Outermost(cls->base), Outermost(cls.get()))) {
        MoveOut(*cls);
      }
    }
  }

  std::vector<Class const*> Sorted() {
    std::vector<Class const*> sorted;
    std::set<Class const*> done;
    for (auto const& cls : m_plan.classStorage) {
      if (cls->owner == nullptr) Append(*cls, done, sorted);
    }
    return sorted;
  }

 private:
  std::vector<Class const*> BasesOfParts(Class const* outermost) const {
    std::vector<Class const*> bases;
    for (Class const* part : m_parts.at(outermost)) {
      if (part->base != nullptr && Outermost(part->base) != outermost) bases.push_back(Outermost(part->base));
    }
    return bases;
  }

  bool Needs(Class const* from, Class const* wanted) const {
    std::vector<Class const*> pending{from};
    std::set<Class const*> seen{from};
    while (!pending.empty()) {
      Class const* const next = pending.back();
      pending.pop_back();
      if (next == wanted) return true;
      for (Class const* base : BasesOfParts(next)) {
        if (seen.insert(base).second) pending.push_back(base);
      }
    }
    return false;
  }

  void MoveOut(Class& cls) {
    std::string name = UpperCamel(cls.shortName);
    for (Class const* owner = cls.owner; owner != nullptr; owner = owner->owner) {
      name = UpperCamel(owner->shortName) + name;
    }
    cls.shortName = name;
    cls.owner = nullptr;
    m_parts.clear();
    for (auto const& each : m_plan.classStorage) m_parts[Outermost(each.get())].push_back(each.get());
  }

  // Depth first with a stack of its own: chains of derivation may be long.
  void Append(Class const& cls, std::set<Class const*>& done, std::vector<Class const*>& sorted) const {
    struct Step {
      Class const* cls;
      std::vector<Class const*> bases;
      std::size_t next = 0;
    };
    std::vector<Step> steps;
    auto const enter = [&](Class const* entered) {
      if (done.insert(entered).second) steps.push_back({entered, BasesOfParts(entered)});
    };
    enter(&cls);
    while (!steps.empty()) {
      Step& top = steps.back();
      if (top.next < top.bases.size()) {
        enter(top.bases[top.next++]);
      } else {
        sorted.push_back(top.cls);
        steps.pop_back();
      }
    }
  }

  Plan& m_plan;
  std::map<Class const*, std::vector<Class const*>> m_parts;
};

void NumberProperties(Class& cls, std::set<Class const*>& numbered, std::map<Class const*, Class*> const& mutableOf) {
  if (!numbered.insert(&cls).second) return;
  if (cls.base != nullptr) {
    NumberProperties(*mutableOf.at(cls.base), numbered, mutableOf);
    cls.firstProperty = cls.base->firstProperty + static_cast<int>(cls.base->members.size());
  }
  int number = cls.firstProperty;
  for (Member& member : cls.members) member.property = number++;
}

void AppendDerived(std::vector<Class const*> const& classes, std::map<Class const*, Class*> const& mutableOf) {
  for (Class const* cls : classes) {
    for (Class const* base = cls->base; base != nullptr; base = base->base) mutableOf.at(base)->derived.push_back(cls);
  }
}

// A class with those nested in it, as they are defined.
void AppendWithNested(Class const* cls, std::vector<Class const*>& classes) {
  classes.push_back(cls);
  for (Class const* nested : cls->nested) AppendWithNested(nested, classes);
}

}  // namespace

void OrderClasses(Plan& plan) {
  DefinitionOrder order(plan);
  order.MoveOutOfCircles();
  plan.classes = order.Sorted();

  std::map<Class const*, Class*> mutableOf;
  for (auto const& cls : plan.classStorage) mutableOf[cls.get()] = cls.get();
  for (auto const& cls : plan.classStorage) {
    if (cls->owner != nullptr) mutableOf.at(cls->owner)->nested.push_back(cls.get());
  }
  std::set<Class const*> numbered;
  for (auto const& cls : plan.classStorage) NumberProperties(*cls, numbered, mutableOf);
  std::vector<Class const*> all;
  for (Class const* cls : plan.classes) AppendWithNested(cls, all);
  AppendDerived(all, mutableOf);

  for (auto const& enumeration : plan.enumerationStorage) {
    if (enumeration->owner == nullptr) continue;
    mutableOf.at(enumeration->owner)->nestedEnumerations.push_back(enumeration.get());
  }
}

}  // namespace Quillon9Generator::Plan
