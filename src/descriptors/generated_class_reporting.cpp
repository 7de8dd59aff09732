// How a generated class with a tag is read where a sink wants all failures. The members are asked as without a sink, so
// the first failure is the same. After it, the read goes on with what the failure leaves in doubt: is an element missing,
// or is the one that stands in its place too much?

#include <exception>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/flag_set.h"
#include "binding/failure_report.h"
#include "descriptors/failed_scans.h"
#include "descriptors/member_asking.h"
#include "descriptors/member_kind.h"
#include "descriptors/unknown_reading.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

using namespace Quillon9Data;

namespace {

/// Reads the children of one element. An element that no member takes is skipped, and the members are then asked again,
/// from the one on that took the last element.
class ReportedContent {
 public:
  ReportedContent(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder, CXmlElement* parent,
                  CXmlElement* cursor, FailedScans* scans)
      : m_ctx(ctx),
        m_holder(holder),
        m_parent(parent),
        m_entry(cursor),
        m_cursor(cursor),
        m_members(holder->GetClassElementInfo()),
        m_count(static_cast<std::size_t>(holder->GetClassElementInfoCount())),
        m_isSequence(holder->GetClassInfo()->m_groupType == XmlElementGroupType_Sequence),
        m_scans(scans),
        m_isTold(m_count) {}

  CXmlElement* Read(XmlElementGroupType group, bool inChoice) {
    switch (group) {
      case XmlElementGroupType_Sequence: return ReadSequence();
      case XmlElementGroupType_Choice: return ReadChoice(inChoice);
      case XmlElementGroupType_All: return ReadAll();
    }
    throw CQnException("Unknow Group Type");
  }

 private:
  CXmlElement* ReadSequence();
  CXmlElement* ReadAll();
  CXmlElement* ReadChoice(bool inChoice);
  bool AskFrom(std::size_t i);
  bool Ask(std::size_t i);
  bool AskNoted(CElementInfo& member);
  void Settle(std::size_t i, CXmlElement const* start, std::size_t listed);
  bool Offer();
  bool Judge(FlagSet const& found);
  void NoteTaken(std::size_t i);
  void PassOver(std::size_t i, CQnException& failure);
  void Doubt(bool isTold);
  void SkipLeftOver();
  bool IsExpected(std::size_t from) const;
  bool MayBeTaken(std::size_t from) const;

  CXmlSerializationContext const& m_ctx;
  CXmlGeneratedClass* const m_holder;
  CXmlElement* const m_parent;
  CXmlElement* const m_entry;
  CXmlElement* m_cursor;
  CElementInfo** const m_members;
  std::size_t const m_count;
  bool const m_isSequence;
  FailedScans* const m_scans;  // null unless unknown elements are ignored
  bool m_isNoted = false;      // whether m_scans learns of the members' answers
  std::size_t m_next = 0;      // the member to ask first after an element has been skipped
  FlagSet m_isTold;            // the members whose absence the sink knows

  // The element in front of which something was missing, and which may itself be the fault; whether the sink knows that;
  // and what else was missing in front of it.
  CXmlElement const* m_doubtful = nullptr;
  bool m_isDoubtTold = false;
  std::vector<std::pair<std::size_t, std::exception_ptr>> m_alsoMissing;
};

CXmlElement* ReportedContent::ReadSequence() {
  for (std::size_t from = 0; AskFrom(from); from = m_next) {
    if (m_cursor == nullptr || m_ctx.GetIgnoreUnknownElements()) return m_cursor;
    do {
      SkipLeftOver();
    } while (m_cursor != nullptr && !MayBeTaken(m_next));
  }
  return m_entry;
}

// Returns false where a member is not satisfied although nothing failed.
bool ReportedContent::AskFrom(std::size_t i) {
  for (; i < m_count; ++i) {
    while (!Ask(i)) {
      if (!m_ctx.GetIgnoreUnknownElements() || m_cursor == nullptr) return false;
      m_cursor = MemberAsking::PassVain(m_ctx, *m_members[i], m_parent, m_cursor);
    }
  }
  return true;
}

bool ReportedContent::Ask(std::size_t i) {
  CElementInfo& member = *m_members[i];
  for (;;) {
    CXmlElement* const start = m_cursor;
    std::size_t const listed = m_scans != nullptr ? m_scans->Listed() : 0;
    bool isSatisfied = false;
    try {
      isSatisfied = AskNoted(member);
    } catch (CQnException& failure) {
      if (MemberAsking::IsAboutClaimed(failure, member, m_cursor)) {
        MemberAsking::PassFaulty(m_ctx, failure, member, m_parent, &m_cursor);
        Settle(i, start, listed);
        if (!member.IsRepeated()) return true;
        continue;
      }
      FailureReport::Note(failure, FailurePoint::At(m_parent, m_cursor));
      if (failure.GetKind() != FailureKind_Count) m_cursor = start;  // what was sought in vain may stop later members
      Settle(i, start, listed);
      PassOver(i, failure);
      return m_cursor != start || m_isSequence;
    }
    Settle(i, start, listed);
    return isSatisfied;
  }
}

bool ReportedContent::AskNoted(CElementInfo& member) {
  FailedScans::Kind const kind = m_isNoted ? m_scans->Note(member) : FailedScans::Kind::kOther;
  CXmlElement const* const start = m_cursor;
  std::uint64_t const groups = m_isNoted ? m_scans->Groups() : 0;
  bool const isSatisfied = MemberAsking::Once(m_ctx, m_holder, member, m_parent, &m_cursor, XmlElementType_Element);
  if (m_isNoted) m_scans->NoteAnswer(kind, start, m_cursor, groups);
  return isSatisfied;
}

// Member i has moved the cursor from `start`, or has taken nothing.
void ReportedContent::Settle(std::size_t i, CXmlElement const* start, std::size_t listed) {
  CElementInfo const& member = *m_members[i];
  if (m_scans != nullptr) m_scans->ListTaken(member, KindOf(member), m_ctx, start, m_cursor, listed);
  if (m_cursor != start) NoteTaken(i);
}

// The doubtful element belongs to a member, so what was missing in front of it is missing indeed.
void ReportedContent::NoteTaken(std::size_t i) {
  m_next = m_members[i]->IsRepeated() ? i : i + 1;
  m_doubtful = nullptr;
  for (auto const& [member, cause] : std::exchange(m_alsoMissing, {})) {
    try {
      std::rethrow_exception(cause);
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(m_ctx, failure, {m_parent})) throw;
      m_isTold.Set(member);
    }
  }
}

// Called from a handler: something is missing at the cursor, or the count of what ends there is wrong.
void ReportedContent::PassOver(std::size_t i, CQnException& failure) {
  bool const isSure = m_cursor == nullptr || m_ctx.GetIgnoreUnknownElements() || (m_isSequence && IsExpected(i + 1));
  if (m_isTold[i]) {
    if (!isSure) Doubt(false);
    return;
  }
  if (!isSure && m_cursor == m_doubtful) {
    m_alsoMissing.emplace_back(i, std::current_exception());
    return;
  }
  if (!FailureReport::GoesOn(m_ctx, failure, {m_parent})) throw;
  m_isTold.Set(i);
  if (!isSure) Doubt(true);
}

void ReportedContent::Doubt(bool isTold) {
  if (m_cursor == m_doubtful) return;
  m_doubtful = m_cursor;
  m_isDoubtTold = isTold;
}

void ReportedContent::SkipLeftOver() {
  if (m_cursor != m_doubtful || !m_isDoubtTold) {
    try {
      MemberAsking::ThrowLeftOver(m_parent, m_cursor);
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(m_ctx, failure, {m_cursor})) throw;
    }
  }
  m_doubtful = nullptr;
  m_alsoMissing.clear();
  m_cursor = m_cursor->GetNextSiblingElement();
}

// Whether the element at the cursor has the name of a member.
bool ReportedContent::IsExpected(std::size_t from) const {
  for (std::size_t i = from; i < m_count; ++i) {
    if (KindOf(*m_members[i]) != FailedScans::Kind::kGroup && m_members[i]->IsThisElement(m_ctx, m_cursor)) return true;
  }
  return false;
}

// The same, but groups and collections may begin with elements of any name.
bool ReportedContent::MayBeTaken(std::size_t from) const {
  for (std::size_t i = from; i < m_count; ++i) {
    CElementInfo const& member = *m_members[i];
    bool const isByName = KindOf(member) <= FailedScans::Kind::kHeld;
    if (isByName ? member.IsThisElement(m_ctx, m_cursor) : member.MayBegin(m_ctx, m_cursor)) return true;
  }
  return false;
}

CXmlElement* ReportedContent::ReadAll() {
  FlagSet found(m_count);
  for (bool isFirst = true;; isFirst = false) {
    CXmlElement const* previous = nullptr;
    while (m_cursor != nullptr && m_cursor != previous) {
      previous = m_cursor;
      for (std::size_t i = 0; i < m_count; ++i) {
        if (!found[i] && Ask(i)) found.Set(i);
      }
    }
    if ((isFirst || m_cursor == nullptr) && !Judge(found)) return m_entry;
    if (m_cursor == nullptr || m_ctx.GetIgnoreUnknownElements()) return m_cursor;
    SkipLeftOver();
  }
}

// If elements are left, only the first missing member is told: the others may follow.
bool ReportedContent::Judge(FlagSet const& found) {
  for (std::size_t i = 0; i < m_count; ++i) {
    CElementInfoAll const& member = MemberAsking::OfAllGroup(*m_members[i]);
    if (m_isTold[i] || (m_cursor != nullptr && m_cursor == m_doubtful)) continue;
    try {
      if (!member.Validate(m_ctx, m_holder, found[i], true)) return false;
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(m_ctx, failure, FailurePoint::At(m_parent, m_cursor))) throw;
      m_isTold.Set(i);
      if (!m_ctx.GetIgnoreUnknownElements()) Doubt(true);
    }
  }
  return true;
}

CXmlElement* ReportedContent::ReadChoice(bool inChoice) {
  bool isChosen = Offer();
  while (!isChosen && m_ctx.GetIgnoreUnknownElements() && m_cursor != nullptr) {
    m_cursor = m_isNoted ? m_scans->Pass(m_ctx, m_cursor) : m_cursor->GetNextSiblingElement();
    m_isNoted = true;
    if (m_cursor != nullptr) isChosen = Offer();
  }
  if (!isChosen && !inChoice && !m_holder->DoesElementContainOptionalElements() && !m_ctx.GetIgnoreMissingChoice()) {
    try {
      MemberAsking::ThrowEmptyChoice(m_parent, m_cursor);
    } catch (CQnException& failure) {
      if (!FailureReport::GoesOn(m_ctx, failure, {m_parent})) throw;
      Doubt(true);
    }
  }
  while (m_cursor != nullptr && !m_ctx.GetIgnoreUnknownElements()) {
    SkipLeftOver();
    if (m_cursor == nullptr) break;
    if (!isChosen) {
      isChosen = Offer();
    } else if (m_next < m_count && m_members[m_next]->IsRepeated()) {
      Ask(m_next);
    }
  }
  return m_cursor;
}

bool ReportedContent::Offer() {
  for (std::size_t i = 0; i < m_count; ++i) {
    if (!Ask(i)) continue;
    m_next = m_members[i]->IsRepeated() ? i : m_count;  // no other member may follow
    return true;
  }
  return false;
}

}  // namespace

CXmlElement* CXmlGeneratedClass::ReadMembersReported(CXmlElement* parent, CXmlElement* cursor,
                                                     CXmlSerializationContext const& ctx, bool inChoice) {
  CXmlElement* const next = ReadMembersWithSink(parent, cursor, ctx, inChoice);
  CParentElementInfo const& info = *GetClassInfo();
  bool const hasText = parent->GetTextView().find_first_not_of(" \t\r\n") != std::string_view::npos;
  if (hasText && info.m_textPropertyIndex == -1 && info.m_elementType == XmlElementType_Element) {
    FailureReport::Remark(ctx, FailureKind_DroppedText, {parent},
                          FormatString("The text of the element [%s] is ignored", parent->GetLocalName().c_str()));
  }
  return next;
}

CXmlElement* CXmlGeneratedClass::ReadMembersWithSink(CXmlElement* parent, CXmlElement* cursor,
                                                     CXmlSerializationContext const& ctx, bool inChoice) {
  CParentElementInfo const& info = *GetClassInfo();
  if (info.m_elementType != XmlElementType_Element) return ReadMembers(info, parent, cursor, ctx, inChoice);
  std::optional<FailedScans> scans;
  if (ctx.GetIgnoreUnknownElements()) scans.emplace(*parent, ctx).StartListing();
  ReportedContent content(ctx, this, parent, cursor, scans ? &*scans : nullptr);
  CXmlElement* const next = content.Read(info.m_groupType, inChoice);
  if (!scans) return next;
  if (UnknownReading* const unknown = UnknownReading::Of(parent, ctx)) {
    unknown->NoteChildren(scans->Taken());
    return next;
  }
  scans->ForEachDropped([&](CXmlElement const& child) {
    FailureReport::Remark(ctx, FailureKind_DroppedElement, {&child},
                          FormatString("The element [%s] is ignored", child.GetLocalName().c_str()));
  });
  return next;
}

}  // namespace Quillon9
