#include "plan/content.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace Quillon9Generator::Plan {

namespace {

using Kind = ContentNode::Kind;
constexpr int kUnbounded = Schema::Particle::kUnbounded;
constexpr int kMostLevels = 2000;

// ---- From the components

Kind KindOf(Schema::ModelGroup::Compositor compositor) {
  switch (compositor) {
    case Schema::ModelGroup::Compositor::Sequence: return Kind::Sequence;
    case Schema::ModelGroup::Compositor::Choice: return Kind::Choice;
    case Schema::ModelGroup::Compositor::All: return Kind::All;
  }
  return Kind::Sequence;
}

// Returns false when there are too many parts or levels.
bool Build(Schema::Particle const& particle, ContentNode& node, std::size_t& budget, int level) {
  if (budget == 0 || level > kMostLevels) return false;
  --budget;
  node.minOccurs = particle.minOccurs;
  node.maxOccurs = particle.maxOccurs;
  node.place = particle.place;
  node.group = particle.group;
  if (auto const* const element = std::get_if<Schema::ElementDeclaration const*>(&particle.term)) {
    node.kind = Kind::Element;
    node.element = *element;
    return true;
  }
  if (auto const* const wildcard = std::get_if<Schema::Wildcard const*>(&particle.term)) {
    node.kind = Kind::Wildcard;
    node.wildcard = *wildcard;
    return true;
  }
  Schema::ModelGroup const& group = *std::get<Schema::ModelGroup const*>(particle.term);
  node.kind = KindOf(group.compositor);
  node.children.resize(group.particles.size());
  for (std::size_t i = 0; i < group.particles.size(); ++i) {
    if (!Build(group.particles[i], node.children[i], budget, level + 1)) return false;
  }
  return true;
}

// ---- Occurrences

bool IsEmptiable(ContentNode const& node);

bool IsBodyEmptiable(ContentNode const& node) {
  if (!node.IsGroup()) return false;
  if (node.kind == Kind::Choice) {
    return node.children.empty() || std::any_of(node.children.begin(), node.children.end(), IsEmptiable);
  }
  return std::all_of(node.children.begin(), node.children.end(), IsEmptiable);
}

bool IsEmptiable(ContentNode const& node) { return node.minOccurs == 0 || IsBodyEmptiable(node); }

// The occurrences of a group of nothing but \p inner that occurs as often as \p outer says, if they are one range:
// (a{2,3}){2} has 4 to 6, but (a{2})? has 0 or 2.
std::optional<std::pair<int, int>> Product(ContentNode const& outer, ContentNode const& inner) {
  std::int64_t const m = outer.minOccurs, n = outer.maxOccurs, p = inner.minOccurs, q = inner.maxOccurs;
  bool const hasGap = m != n && (q == kUnbounded && m > 0 ? false : (m + 1) * p > (m == 0 ? 0 : m * q) + 1);
  if (hasGap) return std::nullopt;
  std::int64_t const least = m * p;
  std::int64_t const most = n == kUnbounded || q == kUnbounded ? kUnbounded : n * q;
  if (least > INT_MAX || most > INT_MAX) return std::nullopt;
  return std::pair(static_cast<int>(least), static_cast<int>(most));
}

// ---- Simplification, from the innermost group on. Each step keeps the language.

// A choice with an alternative that may be empty may itself be missing; (a? | b) is (a | b)?. Where the choice repeats
// without end, the repetitions of an alternative become rounds of the choice: (a* | b)* is (a | b)*.
void SimplifyAlternatives(ContentNode& choice) {
  if (IsBodyEmptiable(choice)) choice.minOccurs = 0;
  for (ContentNode& child : choice.children) {
    child.minOccurs = std::max(child.minOccurs, 1);
    if (choice.maxOccurs == kUnbounded && child.minOccurs == 1) child.maxOccurs = 1;
  }
}

bool VanishesInto(ContentNode const& child, ContentNode const& parent) {
  bool const isOnce = child.minOccurs == 1 && child.maxOccurs == 1;
  return isOnce && child.kind == parent.kind && (child.kind == Kind::Sequence || child.kind == Kind::Choice);
}

void SpliceChildren(ContentNode& node) {
  bool const none = std::none_of(node.children.begin(), node.children.end(),
                                 [&node](ContentNode const& child) { return VanishesInto(child, node); });
  if (none) return;
  std::vector<ContentNode> spliced;
  for (ContentNode& child : node.children) {
    if (VanishesInto(child, node)) {
      std::move(child.children.begin(), child.children.end(), std::back_inserter(spliced));
    } else {
      spliced.push_back(std::move(child));
    }
  }
  node.children = std::move(spliced);
}

void ReplaceByOnlyChild(ContentNode& node) {
  if (node.children.size() != 1) return;
  auto const occurrences = Product(node, node.children.front());
  if (!occurrences) return;
  ContentNode child = std::move(node.children.front());
  child.minOccurs = occurrences->first;
  child.maxOccurs = occurrences->second;
  if (child.group == nullptr && child.IsGroup()) child.group = node.group;
  node = std::move(child);
}

void Simplify(ContentNode& node) {
  if (!node.IsGroup()) return;
  for (ContentNode& child : node.children) Simplify(child);
  auto const isNothing = [](ContentNode const& child) { return child.IsGroup() && child.children.empty(); };
  // In a choice, nothing is an alternative too.
  bool const hasNothing = std::any_of(node.children.begin(), node.children.end(), isNothing);
  if (hasNothing && node.kind == Kind::Choice) node.minOccurs = 0;
  node.children.erase(std::remove_if(node.children.begin(), node.children.end(), isNothing), node.children.end());
  if (node.kind == Kind::Choice) SimplifyAlternatives(node);
  SpliceChildren(node);
  if (node.kind == Kind::Choice) SimplifyAlternatives(node);  // those of the choices that vanished
  bool const isEmptiable = IsBodyEmptiable(node);
  if (isEmptiable && node.kind != Kind::Choice) node.minOccurs = node.IsRepeated() ? 0 : 1;
  ReplaceByOnlyChild(node);
}

}  // namespace

std::optional<ContentNode> NormalizedContent(std::optional<Schema::Particle> const& particle, std::size_t& budget) {
  ContentNode content;
  if (!particle) return content;
  ContentNode node;
  if (!Build(*particle, node, budget, 0)) return std::nullopt;
  Simplify(node);
  if (node.kind == Kind::Sequence && node.minOccurs == 1 && node.maxOccurs == 1) return node;
  if (!node.IsGroup() || !node.children.empty()) content.children.push_back(std::move(node));
  return content;
}

}  // namespace Quillon9Generator::Plan
