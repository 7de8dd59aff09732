#include "schemas/content_match.h"

#include <algorithm>
#include <variant>

namespace SchemaTests {

using namespace Schema;

QualifiedName NameOf(Quillon9::CXmlElement const& element) {
  return {element.GetNamespaceURI(), element.GetLocalName()};
}

bool Allows(Wildcard const& wildcard, std::string const& ns) {
  switch (wildcard.constraint) {
    case Wildcard::Constraint::Any: return true;
    case Wildcard::Constraint::Other: return !ns.empty() && ns != wildcard.notNamespace;
    case Wildcard::Constraint::Listed: break;
  }
  return std::find(wildcard.namespaces.begin(), wildcard.namespaces.end(), ns) != wildcard.namespaces.end();
}

namespace {

ElementDeclaration const* ElementFor(ElementDeclaration const& declared, QualifiedName const& name) {
  if (declared.name == name) return &declared;
  auto const other = std::find_if(declared.standIns.begin(), declared.standIns.end(),
                                  [&name](ElementDeclaration const* each) { return each->name == name; });
  return other != declared.standIns.end() ? *other : nullptr;
}

}  // namespace

Taker TakerOf(Particle const& particle, QualifiedName const& name) {
  if (auto const* const element = std::get_if<ElementDeclaration const*>(&particle.term)) {
    return {ElementFor(**element, name), nullptr};
  }
  if (auto const* const wildcard = std::get_if<Wildcard const*>(&particle.term)) {
    return {nullptr, Allows(**wildcard, name.ns) ? *wildcard : nullptr};
  }
  Taker found;
  for (Particle const& each : std::get<ModelGroup const*>(particle.term)->particles) {
    Taker const taker = TakerOf(each, name);
    if (taker.element != nullptr) return taker;
    if (taker.wildcard != nullptr) found = taker;
  }
  return found;
}

ContentMatch::ContentMatch(Quillon9::CXmlElement const& parent) {
  for (Quillon9::CXmlElement const& child : parent.Children()) m_names.push_back(NameOf(child));
}

bool ContentMatch::Fits(Particle const& particle) const { return After(particle, {0}).count(m_names.size()) != 0; }

ContentMatch::Positions ContentMatch::After(Particle const& particle, Positions const& starts) const {
  Positions ends;
  Positions current = starts;
  for (int count = 0; !current.empty(); ++count) {
    if (count >= particle.minOccurs) {
      std::size_t const before = ends.size();
      ends.insert(current.begin(), current.end());
      if (ends.size() == before) break;  // another round leads nowhere new
    }
    if (count == particle.maxOccurs) break;
    current = AfterTerm(particle, current);
  }
  return ends;
}

ContentMatch::Positions ContentMatch::AfterTerm(Particle const& particle, Positions const& starts) const {
  if (auto const* const group = std::get_if<ModelGroup const*>(&particle.term)) return AfterGroup(**group, starts);
  Positions ends;
  for (std::size_t const start : starts) {
    if (start == m_names.size()) continue;
    Taker const taker = TakerOf(particle, m_names[start]);
    if (taker.element != nullptr || taker.wildcard != nullptr) ends.insert(start + 1);
  }
  return ends;
}

ContentMatch::Positions ContentMatch::AfterGroup(ModelGroup const& group, Positions const& starts) const {
  if (group.compositor == ModelGroup::Compositor::All) return AfterAll(group, starts);
  bool const isChoice = group.compositor == ModelGroup::Compositor::Choice;
  Positions ends = isChoice ? Positions() : starts;
  for (Particle const& each : group.particles) {
    if (!isChoice) {
      ends = After(each, ends);
      continue;
    }
    Positions const branch = After(each, starts);
    ends.insert(branch.begin(), branch.end());
  }
  return ends;
}

ContentMatch::Positions ContentMatch::AfterAll(ModelGroup const& group, Positions const& starts) const {
  Positions ends;
  for (std::size_t position : starts) {
    std::vector<Particle const*> left;
    for (Particle const& each : group.particles) left.push_back(&each);
    for (; position < m_names.size(); ++position) {
      auto const taken = std::find_if(left.begin(), left.end(), [&](Particle const* each) {
        return TakerOf(*each, m_names[position]).element != nullptr;
      });
      if (taken == left.end()) break;
      left.erase(taken);
    }
    bool const isComplete =
        std::all_of(left.begin(), left.end(), [](Particle const* each) { return each->minOccurs == 0; });
    if (isComplete) ends.insert(position);
  }
  return ends;
}

}  // namespace SchemaTests
