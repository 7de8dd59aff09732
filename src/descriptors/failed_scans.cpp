#include "descriptors/failed_scans.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "base/fast_paths.h"
#include "descriptors/member_kind.h"

namespace Quillon9 {

using Quillon9Data::CElementInfo;

namespace {

// Most members find their element within a few children, so the index of all children is not needed.
constexpr int kNear = 8;

CXmlElement* Search(CElementInfo const& member, CXmlSerializationContext const& ctx, CXmlElement* cursor) {
  while (cursor != nullptr && !member.IsThisElement(ctx, cursor)) cursor = cursor->GetNextSiblingElement();
  return cursor;
}

}  // namespace

FailedScans::FailedScans(CXmlElement const& parent, CXmlSerializationContext const& ctx)
    : m_outer(t_current),
      m_parent(&parent),
      m_ignoresNamespaces(ctx.GetIgnoreNamespaces()),
      m_ownAllowance(parent),
      m_allowance(m_outer != nullptr ? m_outer->m_allowance : m_ownAllowance) {
  Spend(ReadingAllowance::SizeOf(parent));
  t_current = this;
}

FailedScans::Kind FailedScans::Note(CElementInfo const& member) {
  ++ReadingAllowance::t_steps;
  auto const found = m_members.find(&member);
  if (found != m_members.end()) return found->second.kind;
  Kind const kind = Quillon9Data::KindOf(member);
  if (kind == Kind::kOther) NoteEffect();
  m_members.emplace(&member, Member{kind});
  m_allowance.NoteMembers(m_members.size());
  return kind;
}

void FailedScans::NoteAnswer(Kind kind, CXmlElement const* start, CXmlElement const* stop, std::uint64_t groups) {
  if (kind == Kind::kGroup) {  // a group counts its own steps, unless the program overrides how it is read
    if (start == nullptr || m_groups != groups) return;
    NoteEffect();
    return Spend(1);
  }
  // An element factory may refuse every child that has the name, and is asked about all of them again.
  bool const isRefused = IsSought(kind) && start != nullptr && start == stop;
  std::size_t steps = kind == Kind::kOther || isRefused ? 1 : 0;
  for (CXmlElement const* child = start; child != nullptr && child != stop; child = child->GetNextSiblingElement()) {
    steps += 1 + child->GetTextView().size() / 32;
  }
  Spend(steps);
}

void FailedScans::ListTaken(CElementInfo const& member, Kind kind, CXmlSerializationContext const& ctx,
                            CXmlElement const* start, CXmlElement const* stop, std::size_t listed) {
  if (!m_isListing) return;
  // A group has listed its members' elements, which are lost if it took none in the end.
  if (start == stop) return m_taken.resize(listed);
  if (kind == Kind::kGroup || m_taken.size() != listed) return;
  // Elements in front of the first one that the member takes were passed over.
  auto const isFirst = [&](CXmlElement const* child) {
    return kind == Kind::kOther ? member.MayBegin(ctx, child) : member.IsThisElement(ctx, child);
  };
  while (start != stop && !isFirst(start)) start = start->GetNextSiblingElement();
  for (; start != stop; start = start->GetNextSiblingElement()) m_taken.push_back(start);
}

CXmlElement* FailedScans::Find(CElementInfo const& member, CXmlSerializationContext const& ctx, CXmlElement* cursor) {
  for (int i = 0; i < kNear; ++i) {
    if (cursor == nullptr || member.IsThisElement(ctx, cursor)) return cursor;
    cursor = cursor->GetNextSiblingElement();
  }
  if (cursor == nullptr) return nullptr;
  if (m_children.empty()) NumberChildren();
  std::size_t const start = PlaceOf(cursor);
  if (start == m_children.size()) {  // a collection of the program moved the cursor out of the children
    return Search(member, ctx, cursor);
  }
  std::vector<std::uint32_t> const& places = PlacesOf(member, ctx);
  auto const place = std::lower_bound(places.begin(), places.end(), start);
  CXmlElement* const found = place != places.end() ? m_children[*place] : nullptr;
  kFailedScans.Verify(
      [&] { return m_children.size() > std::size_t{kMostVerified} || found == Search(member, ctx, cursor); });
  return found;
}

CXmlElement* FailedScans::Pass(CXmlSerializationContext const& ctx, CXmlElement* cursor) {
  CXmlElement* next = cursor->GetNextSiblingElement();
  if (!m_allowance.IsShort() || m_hasEffects || IsKnown(ctx, cursor)) return next;
  std::size_t steps = 0;
  for (; next != nullptr && !IsKnown(ctx, next); next = next->GetNextSiblingElement()) ++steps;
  Spend(steps);
  return next;
}

bool FailedScans::IsKnown(CXmlSerializationContext const& ctx, CXmlElement const* child) const {
  return std::any_of(m_members.begin(), m_members.end(), [&](auto const& member) {
    return member.second.kind <= Kind::kHeld && member.first->IsThisElement(ctx, child);
  });
}

void FailedScans::NumberChildren() {
  for (CXmlElement* child = m_parent->GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    m_children.push_back(child);
  }
  m_byAddress.resize(m_children.size());
  std::iota(m_byAddress.begin(), m_byAddress.end(), 0u);
  auto const isInFront = [this](std::uint32_t one, std::uint32_t other) {
    return std::less<>()(m_children[one], m_children[other]);
  };
  // The memory of a document usually allocates at increasing addresses.
  if (!std::is_sorted(m_byAddress.begin(), m_byAddress.end(), isInFront)) {
    std::sort(m_byAddress.begin(), m_byAddress.end(), isInFront);
  }
}

std::size_t FailedScans::PlaceOf(CXmlElement const* child) const {
  auto const isInFront = [this](std::uint32_t place, CXmlElement const* wanted) {
    return std::less<>()(m_children[place], wanted);
  };
  auto const found = std::lower_bound(m_byAddress.begin(), m_byAddress.end(), child, isInFront);
  return found != m_byAddress.end() && m_children[*found] == child ? *found : m_children.size();
}

std::vector<std::uint32_t> const& FailedScans::PlacesOf(CElementInfo const& member,
                                                        CXmlSerializationContext const& ctx) {
  Member& known = m_members.at(&member);
  if (known.isFound) return known.places;
  ReadingAllowance::t_steps += m_children.size();
  for (std::uint32_t place = 0; place < m_children.size(); ++place) {
    if (member.IsThisElement(ctx, m_children[place])) known.places.push_back(place);
  }
  known.isFound = true;
  return known.places;
}

}  // namespace Quillon9
