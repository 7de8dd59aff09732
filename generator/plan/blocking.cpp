#include "plan/blocking.h"

#include <map>
#include <set>

namespace Quillon9Generator::Plan {

namespace {

class Settling {
 public:
  explicit Settling(Plan& plan) : m_plan(plan) {
    for (auto const& cls : plan.classStorage) m_derivations[cls.get()] = cls->derivation;
  }

  void Settle() {
    for (auto const& cls : m_plan.classStorage) {
      Keep(cls->block, cls.get());
      for (Member& member : cls->members) Keep(member.block, member.type);
      for (Member& member : cls->restated) Keep(member.block, member.type);
    }
    for (auto const& group : m_plan.groupStorage) {
      for (ElementGroup::Element& element : group->elements) Keep(element.block, element.type);
    }
    for (Namespace& ns : m_plan.namespaces) {
      for (Root& root : ns.roots) Keep(root.block, root.type);
    }
    for (auto const& cls : m_plan.classStorage) {
      if (m_told.count(cls.get()) == 0) cls->derivation = 0;
    }
  }

 private:
  /// Keep of \p block what excludes a class derived from \p declared, which may be null, and note the classes that lead
  /// there.
  void Keep(unsigned& block, Class const* declared) {
    unsigned effective = 0;
    if (declared != nullptr && block != 0) {
      for (Class const* derived : declared->derived) effective |= block & DerivationTo(*derived, *declared);
      if (effective != 0) m_told.insert(declared->derived.begin(), declared->derived.end());
    }
    block = effective;
  }

  unsigned DerivationTo(Class const& derived, Class const& declared) const {
    unsigned derivations = 0;
    for (Class const* each = &derived; each != &declared; each = each->base) derivations |= m_derivations.at(each);
    return derivations;
  }

  Plan& m_plan;
  std::map<Class const*, unsigned> m_derivations;
  std::set<Class const*> m_told;
};

}  // namespace

void SettleBlocking(Plan& plan) { Settling(plan).Settle(); }

}  // namespace Quillon9Generator::Plan
