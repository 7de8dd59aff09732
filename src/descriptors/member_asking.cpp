#include "descriptors/member_asking.h"

#include "base/failure_detail.h"
#include "descriptors/failed_scans.h"
#include "descriptors/member_kind.h"

namespace Quillon9 {

using namespace Quillon9Data;

// Called from a handler. Each turn moves the cursor past an item of a collection.
bool MemberAsking::Recover(CXmlSerializationContext const& ctx, CQnException& failure, CXmlGeneratedClass* holder,
                           CElementInfo& member, CXmlElement* parent, CXmlElement** cursor, XmlElementType type) {
  bool isClaimed = PassFaulty(ctx, failure, member, parent, cursor);
  while (isClaimed && member.IsRepeated()) {
    try {
      return Once(ctx, holder, member, parent, cursor, type);
    } catch (CQnException& next) {
      isClaimed = PassFaulty(ctx, next, member, parent, cursor);
    }
  }
  return isClaimed || holder->GetClassInfo()->m_groupType == XmlElementGroupType_Sequence;
}

bool MemberAsking::PassFaulty(CXmlSerializationContext const& ctx, CQnException& failure, CElementInfo const& member,
                              CXmlElement const* parent, CXmlElement** cursor) {
  bool const isClaimed = ctx.GetFailureSink() != nullptr && IsAboutClaimed(failure, member, *cursor);
  CXmlElement* const next = isClaimed ? Behind(ctx, failure, member, *cursor) : *cursor;
  if (!FailureReport::GoesOn(ctx, failure, FailurePoint::At(parent, *cursor))) throw;
  *cursor = next;
  return isClaimed;
}

bool MemberAsking::IsAboutClaimed(CQnException const& failure, CElementInfo const& member, CXmlElement const* cursor) {
  if (cursor == nullptr || KindOf(member) == FailedScans::Kind::kGroup) return false;
  if (failure.GetInnerException() != nullptr) return true;  // from within an object
  FailureKind const kind = failure.GetKind();
  return kind != FailureKind_MissingElement && kind != FailureKind_Count && kind != FailureKind_Namespace;
}

CXmlElement* MemberAsking::Behind(CXmlSerializationContext const& ctx, CQnException const& failure,
                                  CElementInfo const& member, CXmlElement* cursor) {
  if (!member.IsRepeated()) return cursor->GetNextSiblingElement();
  // The items before the faulty one are in the collection already, and must not enter it again.
  CXmlElement const* const faulty = FailureReport::ElementOf(failure);
  CXmlElement const* item = cursor;
  while (item != nullptr && item != faulty) item = item->GetNextSiblingElement();
  if (item != nullptr) return item->GetNextSiblingElement();
  do {
    cursor = cursor->GetNextSiblingElement();
  } while (member.IsThisElement(ctx, cursor));
  return cursor;
}

CXmlElement* MemberAsking::PassVain(CXmlSerializationContext const& ctx, CElementInfo const& member,
                                    CXmlElement const* parent, CXmlElement* cursor) {
  FailedScans* const scans = FailedScans::Of(parent, ctx);
  if (scans == nullptr) return cursor->GetNextSiblingElement();
  scans->Note(member);  // records an effect if the descriptor is one of the program
  return scans->Pass(ctx, cursor);
}

CElementInfoAll const& MemberAsking::OfAllGroup(CElementInfo const& member) {
  auto const* const inAll = dynamic_cast<CElementInfoAll const*>(&member);
  if (inAll == nullptr) throw CQnException("The table of an all group holds a member of another group");
  return *inAll;
}

void MemberAsking::ThrowLeftOver(CXmlElement const* parent, CXmlElement const* cursor) {
  throw FailureReport::Noted(
      {cursor}, OfKind(FailureKind_UnexpectedElement,
                       CQnValidationException(FormatString(
                           "Failed read all the elements held within the element [%s]. The unexpected element [%s] "
                           "remains un processed",
                           parent->GetLocalName().c_str(), cursor->GetLocalName().c_str()))));
}

void MemberAsking::ThrowEmptyChoice(CXmlElement const* parent, CXmlElement const* cursor) {
  throw FailureReport::Noted(
      FailurePoint::At(parent, cursor),
      OfKind(FailureKind_EmptyChoice,
             CQnValidationException(
                 FormatString("No child elements within the element [%s] were populated. The element represents a "
                              "choice, so one and only "
                              "one element should be populated. The element contained no sutable child elements",
                              parent->GetLocalName().c_str()))));
}

}  // namespace Quillon9
