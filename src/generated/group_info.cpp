#include <algorithm>

#include "base/failure_detail.h"
#include "binding/failure_report.h"
#include "descriptors/failed_scans.h"
#include "descriptors/member_check.h"
#include "descriptors/member_kind.h"
#include "descriptors/member_signatures.h"
#include "generated/bound_access.h"
#include "generated/content.h"
#include "generated/members.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

using namespace Quillon9Data;

namespace {

bool MustOccur(Particle const& particle) { return particle.isRequired; }

bool ContentIsRequired(RowKind kind, std::vector<Particle> const& particles) {
  if (kind != RowKind::BeginChoice) return std::any_of(particles.begin(), particles.end(), MustOccur);
  return !particles.empty() && std::all_of(particles.begin(), particles.end(), MustOccur);
}

}  // namespace

GroupInfo::GroupInfo(RowKind kind, Occurs occurs, std::vector<Particle> particles)
    : CElementInfoSeq("", "", -1),
      m_kind(kind),
      m_isRequired(occurs == Occurs::Once && ContentIsRequired(kind, particles)),
      m_particles(std::move(particles)) {}

GroupInfo::~GroupInfo() = default;

bool GroupInfo::Begins(CXmlSerializationContext const& ctx, CXmlElement const* cursor) const {
  if (cursor == nullptr) return false;
  for (Particle const& particle : m_particles) {
    if (particle.Begins(ctx, cursor)) return true;
    if (m_kind == RowKind::BeginSequence && particle.isRequired) return false;
  }
  return false;
}

bool GroupInfo::IsSet(CXmlGeneratedClass const* holder) const {
  return std::any_of(m_particles.begin(), m_particles.end(),
                     [&](Particle const& particle) { return particle.IsSet(holder); });
}

void GroupInfo::AppendNames(std::string& names) const {
  for (Particle const& particle : m_particles) {
    particle.AppendNames(names);
    if (m_kind == RowKind::BeginSequence && particle.isRequired) return;
  }
}

namespace {

std::string NamesOf(GroupInfo const& group) {
  std::string names;
  group.AppendNames(names);
  return names;
}

}  // namespace

void GroupInfo::ThrowMissing() const {
  auto const first = std::find_if(m_particles.begin(), m_particles.end(), MustOccur);
  if (m_kind != RowKind::BeginChoice && first != m_particles.end()) first->ThrowMissing();
  throw OfKind(
      FailureKind_EmptyChoice,
      CQnValidationException(FormatString("Failed to find one of the required elements [%s]", NamesOf(*this).c_str())));
}

bool GroupInfo::AcceptsMissing(CXmlSerializationContext const& ctx) const {
  return m_kind == RowKind::BeginChoice ? ctx.GetIgnoreMissingChoice() : ctx.GetIgnoreMissingMandatoryElements();
}

// ---- Reading

namespace {

/// Move \p cursor to the element that begins \p part, a particle or group. False, with the cursor unchanged, where that
/// is not the element under the cursor, or, where unknown elements are ignored, one of those after it.
template <class Part>
bool Seek(Part const& part, CXmlSerializationContext const& ctx, CXmlElement** cursor) {
  for (CXmlElement* at = *cursor; at != nullptr; at = at->GetNextSiblingElement()) {
    if (part.Begins(ctx, at)) {
      *cursor = at;
      return true;
    }
    if (!ctx.GetIgnoreUnknownElements()) return false;
  }
  return false;
}

}  // namespace

QN_ELEMENT_FROM_XML(GroupInfo) {
  Place const place = {ctx, holder, parent, cursor};
  if (Begins(ctx, *cursor)) {
    Read(place);
    return true;
  }
  if (!m_isRequired) return true;
  if (holderType != XmlElementType_Element) return false;
  if (Seek(*this, ctx, cursor)) {
    Read(place);
  } else if (!AcceptsMissing(ctx)) {
    ThrowMissing();
  }
  return true;
}

void GroupInfo::Read(Place const& place) const {
  switch (m_kind) {
    case RowKind::BeginChoice: return ReadChoice(place);
    case RowKind::BeginAll: return ReadAll(place);
    default: return ReadSequence(place);
  }
}

namespace {

/// Report that \p part, a particle or group, is missing.
template <class Part>
void Miss(Part const& part, CXmlSerializationContext const& ctx, CXmlElement const* parent, CXmlElement const* cursor) {
  try {
    part.ThrowMissing();
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, FailurePoint::At(parent, cursor))) throw;
  }
}

void Take(Particle const& particle, CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
          CXmlElement* parent, CXmlElement** cursor) {
  FailedScans* const scans = ctx.GetKeepUnknown() ? FailedScans::Of(parent, ctx) : nullptr;
  CXmlElement const* const start = *cursor;
  std::size_t const listed = scans != nullptr ? scans->Listed() : 0;
  particle.info->ElementFromXml(ctx, holder, parent, cursor, "", XmlElementType_Pseudo);
  if (scans != nullptr) scans->ListTaken(*particle.info, KindOf(*particle.info), ctx, start, *cursor, listed);
}

}  // namespace

void GroupInfo::ReadSequence(Place const& place) const {
  for (Particle const& particle : m_particles) {
    if (particle.isRequired ? Seek(particle, place.ctx, place.cursor) : particle.Begins(place.ctx, *place.cursor)) {
      Take(particle, place.ctx, place.holder, place.parent, place.cursor);
    } else if (particle.isRequired && !place.ctx.GetIgnoreMissingMandatoryElements()) {
      Miss(particle, place.ctx, place.parent, *place.cursor);
    }
  }
}

void GroupInfo::ReadChoice(Place const& place) const {
  for (Particle const& particle : m_particles) {
    if (!particle.Begins(place.ctx, *place.cursor)) continue;
    return Take(particle, place.ctx, place.holder, place.parent, place.cursor);
  }
}

void GroupInfo::ReadAll(Place const& place) const {
  std::vector<Particle const*> left;
  std::vector<int> order;
  for (Particle const& particle : m_particles) left.push_back(&particle);
  while (*place.cursor != nullptr) {
    auto const next = std::find_if(
        left.begin(), left.end(), [&](Particle const* particle) { return particle->Begins(place.ctx, *place.cursor); });
    if (next != left.end()) {
      order.push_back(static_cast<int>(*next - m_particles.data()));
      Take(**next, place.ctx, place.holder, place.parent, place.cursor);
      left.erase(next);
    } else if (place.ctx.GetIgnoreUnknownElements()) {
      *place.cursor = (*place.cursor)->GetNextSiblingElement();
    } else {
      break;
    }
  }
  if (!std::is_sorted(order.begin(), order.end())) BoundAccess::SetOrder(place.holder, std::move(order));
  if (place.ctx.GetIgnoreMissingMandatoryElements()) return;
  for (Particle const* const particle : left) {
    if (particle->isRequired) Miss(*particle, place.ctx, place.parent, *place.cursor);
  }
}

// ---- Writing

QN_ELEMENT_TO_XML(GroupInfo) {
  if (m_kind == RowKind::BeginChoice) return WriteChoice(ctx, holder, writer);
  if (!m_isRequired && !IsSet(holder)) return false;
  return WriteMembers(ctx, holder, writer);
}

bool GroupInfo::WriteChoice(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                            CXmlWriter* writer) const {
  auto const isSet = [&](Particle const& particle) { return particle.IsSet(holder); };
  auto const chosen = std::find_if(m_particles.begin(), m_particles.end(), isSet);
  if (chosen == m_particles.end()) {
    if (!m_isRequired || ctx.GetIgnoreMissingChoice()) return false;
    throw OfKind(FailureKind_EmptyChoice,
                 CQnValidationException(
                     FormatString("None of the elements [%s] is set, and one is required", NamesOf(*this).c_str())));
  }
  if (std::any_of(chosen + 1, m_particles.end(), isSet)) {
    try {
      MemberCheck::ThrowMoreThanOne(NamesOf(*this).c_str());
    } catch (CQnException& failure) {
      if (!MemberCheck::GoesOn(*writer, failure, *this)) throw;
    }
  }
  return chosen->info->ElementToXml(ctx, holder, writer);
}

namespace {

bool WriteMember(Particle const& particle, CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                 CXmlWriter* writer) {
  // A group inside says itself what it lacks.
  if (particle.group != nullptr || particle.IsSet(holder)) return particle.info->ElementToXml(ctx, holder, writer);
  if (!particle.isRequired || ctx.GetIgnoreMissingMandatoryElements()) return false;
  std::string name;
  particle.AppendNames(name);
  ThrowElementNotSet(name.c_str());
}

/// The same, and a check goes on after a failure.
bool WriteOrCheckMember(Particle const& particle, CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                        CXmlWriter* writer) {
  try {
    return WriteMember(particle, ctx, holder, writer);
  } catch (CQnException& failure) {
    if (!MemberCheck::GoesOn(*writer, failure, *particle.info)) throw;
    return true;
  }
}

}  // namespace

// The members of an all group keep the order of the document, although it means nothing; others follow.
bool GroupInfo::WriteMembers(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                             CXmlWriter* writer) const {
  std::vector<int> const* const order = m_kind == RowKind::BeginAll ? BoundAccess::Order(holder) : nullptr;
  bool isWritten = false;
  auto const isFirst = [&](int place) {
    return order != nullptr && std::find(order->begin(), order->end(), place) != order->end();
  };
  if (order != nullptr) {
    for (int const place : *order) {
      auto const at = static_cast<std::size_t>(place);
      if (at < m_particles.size()) isWritten |= WriteOrCheckMember(m_particles[at], ctx, holder, writer);
    }
  }
  for (std::size_t i = 0; i < m_particles.size(); ++i) {
    if (!isFirst(static_cast<int>(i))) isWritten |= WriteOrCheckMember(m_particles[i], ctx, holder, writer);
  }
  return isWritten;
}

}  // namespace Quillon9
