#include "schema/validity/particle_restriction.h"

#include <algorithm>

#include "schema/simple_values.h"
#include "schema/validity/derivation.h"
#include "schema/validity/wildcard_rules.h"

namespace Quillon9Generator::Schema {

namespace {

constexpr int kUnbounded = Particle::kUnbounded;

long Product(long a, long b) {
  return a == kUnbounded || b == kUnbounded ? (a == 0 || b == 0 ? 0 : kUnbounded) : a * b;
}
long Sum(long a, long b) { return a == kUnbounded || b == kUnbounded ? kUnbounded : a + b; }
long Larger(long a, long b) { return a == kUnbounded || b == kUnbounded ? kUnbounded : std::max(a, b); }

SimpleType const* TextOf(ElementDeclaration const& element) {
  return element.complexType != nullptr ? element.complexType->simpleContent : element.simpleType;
}

bool HasSameFixedValue(ElementDeclaration const& own, ElementDeclaration const& base) {
  SimpleType const* const type = TextOf(own);
  if (!own.fixedValue) return false;
  return type != nullptr ? AreEqual(*type, *own.fixedValue, *base.fixedValue) : own.fixedValue == base.fixedValue;
}

std::string Count(int count) { return count == kUnbounded ? "unbounded" : std::to_string(count); }

}  // namespace

std::string ParticleRestriction::Fault(Particle const& narrow, Particle const& wide) {
  m_parts.clear();
  m_fault.clear();
  Part const* const narrowPart = Simplified(narrow, nullptr);
  Part const* const widePart = Simplified(wide, nullptr);
  if (!m_context.MaySpend(1)) return {};
  if (narrowPart == nullptr)
    return m_context.IsEmptiable(wide) ? "" : "the content is empty, but that of the base cannot be";
  if (widePart == nullptr) return "the content of the base is empty";
  if (Restricts(*narrowPart, *widePart) || !m_context.MaySpend(1)) return {};
  return m_fault.empty() ? "the content does not restrict that of the base" : m_fault;
}

/// Return the particle in its simple form, or null for an empty group. \p parent is the kind of the group around it.
ParticleRestriction::Part const* ParticleRestriction::Simplified(Particle const& particle, Part::Kind const* parent) {
  if (!m_context.MaySpend(1)) return nullptr;
  Part part;
  part.min = particle.minOccurs;
  part.max = particle.maxOccurs;
  part.place = particle.place;
  if (auto const* const element = std::get_if<ElementDeclaration const*>(&particle.term)) {
    return SimplifiedElement(part, **element);
  }
  if (auto const* const wildcard = std::get_if<Wildcard const*>(&particle.term)) {
    part.kind = Part::Kind::Wildcard;
    part.wildcard = *wildcard;
    return Keep(part);
  }
  ModelGroup const& group = *std::get<ModelGroup const*>(particle.term);
  part.kind = group.compositor == ModelGroup::Compositor::All      ? Part::Kind::All
              : group.compositor == ModelGroup::Compositor::Choice ? Part::Kind::Choice
                                                                   : Part::Kind::Sequence;
  AddParts(part, group);
  bool const isOnce = part.min == 1 && part.max == 1;
  if (part.parts.empty() && (part.kind != Part::Kind::Choice || part.min == 0)) return nullptr;
  if (isOnce && part.parts.size() == 1 && (parent == nullptr || part.parts.front()->kind != *parent)) {
    return part.parts.front();
  }
  return Keep(std::move(part));
}

/// A group of the same kind that occurs once gives its parts to the group around it.
void ParticleRestriction::AddParts(Part& part, ModelGroup const& group) {
  for (Particle const& each : group.particles) {
    Part const* const child = Simplified(each, &part.kind);
    if (child == nullptr) continue;
    bool const isMerged = child->kind == part.kind && child->min == 1 && child->max == 1 &&
                          part.kind != Part::Kind::All && child->element == nullptr;
    if (isMerged) {
      part.parts.insert(part.parts.end(), child->parts.begin(), child->parts.end());
    } else {
      part.parts.push_back(child);
    }
  }
}

ParticleRestriction::Part const* ParticleRestriction::Keep(Part part) {
  part.total = TotalOf(part);
  return &m_parts.emplace_back(std::move(part));
}

ParticleRestriction::Part const* ParticleRestriction::SimplifiedElement(Part part, ElementDeclaration const& element) {
  part.kind = Part::Kind::Element;
  part.element = &element;
  if (element.standIns.empty()) return Keep(part);
  Part choice = part;
  choice.kind = Part::Kind::Choice;
  choice.element = &element;  // for messages
  part.min = part.max = 1;
  if (!element.abstract) choice.parts.push_back(Keep(part));
  for (ElementDeclaration const* member : element.standIns) {
    if (!m_context.MaySpend(1)) break;
    part.element = member;
    choice.parts.push_back(Keep(part));
  }
  return Keep(std::move(choice));
}

bool ParticleRestriction::Restricts(Part const& narrow, Part const& wide, bool checksCounts) {
  if (!m_context.MaySpend(1)) return true;
  if (&narrow == &wide) return true;
  bool const hasSameHead = narrow.element != nullptr && narrow.element == wide.element && narrow.kind == wide.kind;
  if (hasSameHead && IsWithin(narrow.min, narrow.max, wide)) return true;
  if (wide.kind == Part::Kind::Wildcard) {
    if (narrow.kind != Part::Kind::Element && narrow.kind != Part::Kind::Wildcard) return FitsWildcard(narrow, wide);
    if (checksCounts && !IsWithin(narrow.min, narrow.max, wide)) {
      return Fail(Described(narrow) + " may occur otherwise than the wildcard of the base allows");
    }
    if (narrow.kind == Part::Kind::Element) {
      if (Allows(*wide.wildcard, narrow.element->name.ns)) return true;
      return Fail("the wildcard of the base does not allow the namespace of " + Described(narrow));
    }
    if (!IsSubset(*narrow.wildcard, *wide.wildcard)) {
      return Fail("the wildcard allows namespaces that that of the base does not allow");
    }
    return IsAsStrict(*narrow.wildcard, *wide.wildcard) || Fail("the wildcard is less strict than that of the base");
  }
  if (narrow.kind == Part::Kind::Wildcard) return Fail("a wildcard stands where the base has none");
  if (narrow.kind == Part::Kind::Element) return ElementRestricts(narrow, wide);
  return GroupRestricts(narrow, wide);
}

bool ParticleRestriction::ElementRestricts(Part const& narrow, Part const& wide) {
  if (wide.kind == Part::Kind::Element) return IsNarrowerElement(narrow, wide);
  // As if it stood alone in a group of the same kind.
  Part group;
  group.kind = wide.kind;
  group.place = narrow.place;
  group.parts = {&narrow};
  if (wide.kind != Part::Kind::Choice) return Recurse(group, wide, false);
  if (Recurse(group, wide, true)) return true;
  // Several in a row are as many rounds of the choice.
  Part single = narrow;
  single.min = single.max = 1;
  bool const isFound =
      IsWithin(narrow.min, narrow.max, wide) &&
      std::any_of(wide.parts.begin(), wide.parts.end(), [&](Part const* part) { return Restricts(single, *part); });
  if (isFound) m_fault.clear();
  return isFound;
}

bool ParticleRestriction::GroupRestricts(Part const& narrow, Part const& wide) {
  using Kind = Part::Kind;
  if (wide.kind == Kind::Element) return RepeatsElement(narrow, wide);
  if (narrow.kind == wide.kind) return Recurse(narrow, wide, narrow.kind == Kind::Choice);
  if (narrow.kind == Kind::Sequence && wide.kind == Kind::All) return RecurseUnordered(narrow, wide);
  if (narrow.kind == Kind::Sequence && wide.kind == Kind::Choice) return MapAndSum(narrow, wide);
  return Fail(Described(narrow) + " stands where the base has " + Described(wide));
}

/// The standard has no group in place of an element that occurs more than once. It restricts that nevertheless if it has
/// as many of these elements.
bool ParticleRestriction::RepeatsElement(Part const& narrow, Part const& wide) {
  if (!IsWithin(narrow.total.min, narrow.total.max, wide)) {
    return Fail("a group stands where the base has " + Described(wide));
  }
  Part any = wide;
  any.min = 0;
  any.max = kUnbounded;
  return std::all_of(narrow.parts.begin(), narrow.parts.end(), [&](Part const* part) { return Restricts(*part, any); });
}

bool ParticleRestriction::IsNarrowerElement(Part const& narrow, Part const& wide) {
  ElementDeclaration const& own = *narrow.element;
  ElementDeclaration const& base = *wide.element;
  std::string const name = Described(narrow);
  if (own.name != base.name) return false;  // perhaps it restricts another part
  if (!IsWithin(narrow.min, narrow.max, wide)) {
    return Fail(name + " occurs " + Count(narrow.min) + " to " + Count(narrow.max) + " times, in the base " +
                Count(wide.min) + " to " + Count(wide.max) + " times");
  }
  if (&own == &base) return true;
  if (own.nillable && !base.nillable) return Fail(name + " is nillable, but not in the base");
  if (base.fixedValue && !HasSameFixedValue(own, base)) return Fail(name + " has not the fixed value of the base");
  if ((base.block & ~own.block) != 0) return Fail(name + " blocks less than in the base");
  bool const hasAll =
      std::all_of(own.identityConstraints.begin(), own.identityConstraints.end(), [&](auto const* each) {
        auto const& all = base.identityConstraints;
        return std::find(all.begin(), all.end(), each) != all.end();
      });
  if (!hasAll) return Fail(name + " has identity constraints that it does not have in the base");
  if (IsDerived(TypeOf(own), TypeOf(base), kExtension | kList | kUnion)) return true;
  return Fail("the type of " + name + " is not derived by restriction from its type in the base, which is " +
              Schema::Described(TypeOf(base)));
}

bool ParticleRestriction::Recurse(Part const& narrow, Part const& wide, bool isLax) {
  if (!IsWithin(narrow.min, narrow.max, wide)) {
    return Fail(Described(narrow) + " may occur otherwise than in the base");
  }
  auto next = wide.parts.begin();
  for (Part const* part : narrow.parts) {
    std::string const fault = m_fault;
    bool isFound = false;
    for (; !isFound && next != wide.parts.end(); ++next) {
      isFound = Restricts(*part, **next);
      if (!isFound && !isLax && (*next)->total.min != 0) return false;
    }
    if (!isFound) return Fail("the base has no place for " + Described(*part));
    m_fault = fault;
  }
  for (; !isLax && next != wide.parts.end(); ++next) {
    if ((*next)->total.min != 0) return Fail("the base needs " + Described(**next));
  }
  return true;
}

bool ParticleRestriction::RecurseUnordered(Part const& narrow, Part const& wide) {
  if (!IsWithin(narrow.min, narrow.max, wide)) return Fail(Described(narrow) + " may occur otherwise than in the base");
  std::vector<bool> isTaken(wide.parts.size());
  for (Part const* part : narrow.parts) {
    std::string const fault = m_fault;
    std::size_t i = 0;
    while (i != wide.parts.size() && (isTaken[i] || !Restricts(*part, *wide.parts[i]))) ++i;
    if (i == wide.parts.size()) return Fail("the base has no place for " + Described(*part));
    isTaken[i] = true;
    m_fault = fault;
  }
  for (std::size_t i = 0; i != wide.parts.size(); ++i) {
    if (!isTaken[i] && wide.parts[i]->total.min != 0) return Fail("the base needs " + Described(*wide.parts[i]));
  }
  return true;
}

bool ParticleRestriction::MapAndSum(Part const& narrow, Part const& wide) {
  auto const count = static_cast<long>(narrow.parts.size());
  if (!IsWithin(Product(narrow.min, count), Product(narrow.max, count), wide)) {
    return Fail(Described(narrow) + " has more or fewer parts than the choice of the base has rounds");
  }
  for (Part const* part : narrow.parts) {
    std::string const fault = m_fault;
    bool const isFound =
        std::any_of(wide.parts.begin(), wide.parts.end(), [&](Part const* each) { return Restricts(*part, *each); });
    if (!isFound) return Fail("the base has no place for " + Described(*part));
    m_fault = fault;
  }
  return true;
}

bool ParticleRestriction::FitsWildcard(Part const& narrow, Part const& wide) {
  Range const total = narrow.total;
  if (!IsWithin(total.min, total.max, wide)) {
    return Fail(Described(narrow) + " has more or fewer elements than the wildcard of the base allows");
  }
  return std::all_of(narrow.parts.begin(), narrow.parts.end(),
                     [&](Part const* part) { return Restricts(*part, wide, false); });
}

ParticleRestriction::Range ParticleRestriction::TotalOf(Part const& part) {
  if (part.kind == Part::Kind::Element || part.kind == Part::Kind::Wildcard) return {part.min, part.max};
  bool const isChoice = part.kind == Part::Kind::Choice;
  Range total{0, 0};
  for (std::size_t i = 0; i != part.parts.size(); ++i) {
    Range const range = part.parts[i]->total;
    if (isChoice) {
      total.min = i == 0 ? range.min : std::min(total.min, range.min);
      total.max = Larger(total.max, range.max);
    } else {
      total.min = std::min(Sum(total.min, range.min), 1000000000L);
      total.max = Sum(total.max, range.max);
    }
    if (total.max > 1000000000L) total.max = kUnbounded;
  }
  total = {Product(part.min, total.min), Product(part.max, total.max)};
  return total;
}

bool ParticleRestriction::IsWithin(long min, long max, Part const& wide) {
  return min >= wide.min && (wide.max == kUnbounded || (max != kUnbounded && max <= wide.max));
}

std::string ParticleRestriction::Described(Part const& part) {
  if (part.element != nullptr) return "\"" + part.element->name.local + "\"";
  switch (part.kind) {
    case Part::Kind::Wildcard: return "a wildcard";
    case Part::Kind::Choice: return "a choice";
    case Part::Kind::All: return "xs:all";
    default: return "a sequence";
  }
}

bool ParticleRestriction::Fail(std::string fault) {
  if (m_fault.empty()) m_fault = std::move(fault);
  return false;
}

}  // namespace Quillon9Generator::Schema
