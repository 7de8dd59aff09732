#include "schema/validity/unique_attribution.h"

#include <algorithm>

#include "schema/validity/wildcard_rules.h"

namespace Quillon9Generator::Schema {

UniqueAttribution::Faults UniqueAttribution::Find(Particle const& content) {
  m_faults = {};
  m_particles = 0;
  ModelOf(content);
  return m_faults;
}

UniqueAttribution::Model UniqueAttribution::ModelOf(Particle const& particle) {
  if (!m_faults.error.empty() || !m_context.MaySpend(1)) return {};
  Model model = ModelOfTerm(particle);
  if (particle.maxOccurs != 1) {
    Check(model.follow, model.first);
    // Where the number of rounds is fixed, each round but the last must be followed by another, the last by none.
    if (particle.minOccurs != particle.maxOccurs || model.nullable) Add(model.follow, model.first);
  }
  if (particle.minOccurs == 0) model.nullable = true;
  return model;
}

UniqueAttribution::Model UniqueAttribution::ModelOfTerm(Particle const& particle) {
  if (auto const* const element = std::get_if<ElementDeclaration const*>(&particle.term)) {
    return ModelOfElement(**element);
  }
  if (auto const* const group = std::get_if<ModelGroup const*>(&particle.term)) return ModelOfGroup(**group);
  Model model;
  model.nullable = false;
  Wildcard const* const wildcard = std::get<Wildcard const*>(particle.term);
  if (!wildcard->isLimited) model.first.wildcards.emplace_back(wildcard, m_particles);
  ++m_particles;
  return model;
}

UniqueAttribution::Model UniqueAttribution::ModelOfElement(ElementDeclaration const& element) {
  Model model;
  model.nullable = false;
  model.first.names.push_back({NumberOf(element.name), m_particles});
  if (!element.standIns.empty()) {
    for (ElementDeclaration const* member : element.standIns) {
      model.first.names.push_back({NumberOf(member->name), m_particles});
    }
    m_context.MaySpend(model.first.names.size());
    std::sort(model.first.names.begin(), model.first.names.end(),
              [](Set::Name const& a, Set::Name const& b) { return a.name < b.name; });
  }
  ++m_particles;
  return model;
}

UniqueAttribution::Model UniqueAttribution::ModelOfGroup(ModelGroup const& group) {
  Model model;
  bool const isSequence = group.compositor == ModelGroup::Compositor::Sequence;
  if (group.compositor == ModelGroup::Compositor::Choice) model.nullable = group.particles.empty();
  for (Particle const& particle : group.particles) {
    Model next = ModelOf(particle);
    if (isSequence) {
      Append(model, std::move(next));
      continue;
    }
    bool const isChoice = group.compositor == ModelGroup::Compositor::Choice;
    Check(model.first, next.first);
    Add(model.first, next.first);
    Add(model.follow, next.follow);
    model.nullable = isChoice ? model.nullable || next.nullable : model.nullable && next.nullable;
  }
  return model;
}

void UniqueAttribution::Append(Model& model, Model&& next) {
  if (model.nullable) Check(model.first, next.first);
  Check(model.follow, next.first);
  if (next.nullable) {
    Add(next.follow, model.follow);
    Add(next.follow, next.first);
  }
  model.follow = std::move(next.follow);
  if (model.nullable) Add(model.first, next.first);
  model.nullable = model.nullable && next.nullable;
}

std::size_t UniqueAttribution::NumberOf(QualifiedName const& name) {
  auto const [entry, isNew] = m_numbers.try_emplace(name.local + ' ' + name.ns, m_names.size());
  if (isNew) m_names.push_back(&name);
  return entry->second;
}

void UniqueAttribution::Check(Set const& a, Set const& b) {
  if (!m_faults.error.empty()) return;
  auto first = a.names.begin();
  auto second = b.names.begin();
  if (!m_context.MaySpend(a.names.size() + b.names.size())) return;
  while (first != a.names.end() && second != b.names.end()) {
    if (first->name < second->name) {
      ++first;
    } else if (second->name < first->name) {
      ++second;
    } else {
      // All particles of one name meet: a set has several only after a fault or for one particle.
      if (first->particle != second->particle) return Report("\"" + m_names[first->name]->local + "\"");
      ++second;
    }
  }
  CheckWildcards(a, b);
  CheckWildcards(b, a);
}

void UniqueAttribution::CheckWildcards(Set const& a, Set const& b) {
  for (auto const& [wildcard, particle] : a.wildcards) {
    for (auto const& [other, number] : b.wildcards) {
      if (particle != number && Overlap(*wildcard, *other)) return Report("what two wildcards allow");
    }
    if (!m_context.MaySpend(b.names.size())) return;
    for (Set::Name const& name : b.names) {
      if (!Allows(*wildcard, m_names[name.name]->ns)) continue;
      m_faults.warning = "\"" + m_names[name.name]->local +
                         "\" may belong to a wildcard as well, which XML Schema allows from version 1.1 on only";
      return;
    }
  }
}

void UniqueAttribution::Report(std::string const& subject) {
  if (m_faults.error.empty())
    m_faults.error = subject + " may belong to either of two particles at one point of the content";
}

void UniqueAttribution::Add(Set& set, Set const& more) {
  if (!m_context.MaySpend(set.names.size() + more.names.size())) return;
  auto const before = static_cast<std::ptrdiff_t>(set.names.size());
  set.names.insert(set.names.end(), more.names.begin(), more.names.end());
  std::inplace_merge(set.names.begin(), set.names.begin() + before, set.names.end(),
                     [](Set::Name const& a, Set::Name const& b) { return a.name < b.name; });
  auto const isSame = [](Set::Name const& a, Set::Name const& b) {
    return a.name == b.name && a.particle == b.particle;
  };
  set.names.erase(std::unique(set.names.begin(), set.names.end(), isSame), set.names.end());
  for (auto const& wildcard : more.wildcards) {
    if (std::find(set.wildcards.begin(), set.wildcards.end(), wildcard) == set.wildcards.end()) {
      set.wildcards.push_back(wildcard);
    }
  }
}

}  // namespace Quillon9Generator::Schema
