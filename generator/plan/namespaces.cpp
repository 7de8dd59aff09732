#include "plan/namespaces.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "plan/names.h"

namespace Quillon9Generator::Plan {

namespace {

std::string FileStemOf(std::string const& cppNamespace) {
  std::size_t const colon = cppNamespace.rfind(':');
  return LowerCase(colon == std::string::npos ? cppNamespace : cppNamespace.substr(colon + 1));
}

/// Distributes the parts of one plan.
class Distribution {
 public:
  Distribution(Schema::SchemaSet const& set, PlanOptions const& options, Plan& plan)
      : m_options(options), m_plan(plan) {
    m_roots = std::exchange(plan.namespaces.front().roots, {});
    plan.namespaces.clear();
    NamespaceCalled(options.cppNamespace);
    for (std::string const& ns : set.targetNamespaces) NamespaceCalled(NameFor(ns));
  }

  void Distribute() {
    for (auto const& cls : m_plan.classStorage) cls->cppNamespace = NameFor(cls->cppNamespace);
    for (Class const* cls : m_plan.classes) NamespaceCalled(cls->cppNamespace).classes.push_back(cls);
    for (auto const& each : m_plan.enumerationStorage) {
      each->cppNamespace = NameFor(each->cppNamespace);
      if (each->owner == nullptr) NamespaceCalled(each->cppNamespace).enumerations.push_back(each.get());
    }
    for (Root& root : m_roots) NamespaceCalled(NameFor(root.name.ns)).roots.push_back(std::move(root));
  }

 private:
  std::string const& NameFor(std::string const& xmlNamespace) const {
    auto const chosen = m_options.namespaces.find(xmlNamespace);
    return chosen != m_options.namespaces.end() ? chosen->second : m_options.cppNamespace;
  }

  Namespace& NamespaceCalled(std::string const& name) {
    for (Namespace& each : m_plan.namespaces) {
      if (each.cppName == name) return each;
    }
    Namespace& added = m_plan.namespaces.emplace_back();
    added.cppName = name;
    added.fileStem = m_stems.Take(FileStemOf(name));
    return added;
  }

  PlanOptions const& m_options;
  Plan& m_plan;
  std::vector<Root> m_roots;
  NameScope m_stems;
};

}  // namespace

void AssignNamespaces(Schema::SchemaSet const& set, PlanOptions const& options, Plan& plan,
                      Schema::Diagnostics& diagnostics) {
  for (auto const& each : options.namespaces) {
    auto const& known = set.targetNamespaces;
    if (std::find(known.begin(), known.end(), each.first) == known.end()) {
      diagnostics.Error("", "no schema has the namespace \"" + each.first + "\", which shall become " + each.second);
    }
  }
  Distribution(set, options, plan).Distribute();
}

}  // namespace Quillon9Generator::Plan
