#include "binding/failure_report.h"
#include "descriptors/member_signatures.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9Data {

using namespace Quillon9;

// The members that add nothing to their group have their destructors, and with them their virtual tables, here.
CElementInfoSeqPrimCol::~CElementInfoSeqPrimCol() = default;
CElementInfoSeqEnumCol::~CElementInfoSeqEnumCol() = default;
CElementInfoSeqClsCol::~CElementInfoSeqClsCol() = default;
CElementInfoSeqAbsClsCol::~CElementInfoSeqAbsClsCol() = default;
CElementInfoSeqNonCol::~CElementInfoSeqNonCol() = default;
CElementInfoAllPrimCol::~CElementInfoAllPrimCol() = default;
CElementInfoAllEnumCol::~CElementInfoAllEnumCol() = default;
CElementInfoAllClsCol::~CElementInfoAllClsCol() = default;
CElementInfoAllAbsClsCol::~CElementInfoAllAbsClsCol() = default;
CElementInfoAllUntpdCol::~CElementInfoAllUntpdCol() = default;
CElementInfoAllNonCol::~CElementInfoAllNonCol() = default;
CElementInfoChoicePrimCol::~CElementInfoChoicePrimCol() = default;
CElementInfoChoiceEnumCol::~CElementInfoChoiceEnumCol() = default;
CElementInfoChoiceClsCol::~CElementInfoChoiceClsCol() = default;
CElementInfoChoiceAbsClsCol::~CElementInfoChoiceAbsClsCol() = default;

void CElementInfo::ValidateCountOnWriting(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder) const {
  QnVariant value;
  if (!ctx.GetIgnoreInvalidCollectionCounts()) LookAtCollection(holder, value)->ValidateCount(ctx);
}

namespace {

/// The first item of \p collection above its maximum, or \p next if there are too few. The items are the children of
/// \p parent in front of \p next that have the name of \p member.
FailurePoint WhereCountIsWrong(CElementInfo const& member, CXmlSerializationContext const& ctx,
                               CXmlCollectionBase const& collection, CXmlElement const* parent,
                               CXmlElement const* next) {
  if (collection.GetCount() < collection.GetMinOccurs()) return FailurePoint::At(parent, next);
  int count = 0;
  for (CXmlElement const* item = parent->GetFirstElement(); item != next; item = item->GetNextSiblingElement()) {
    if (member.IsThisElement(ctx, item) && ++count > collection.GetMaxOccurs()) return {item};
  }
  return FailurePoint::At(parent, next);
}

/// Whether \p collection has too few items because of failures that the sink knows.
bool IsExcused(CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx) {
  return collection.GetCount() < collection.GetMinOccurs() && FailureReport::HasLost(ctx, collection);
}

}  // namespace

bool CElementInfo::JudgeCount(CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx,
                              XmlElementType holderType) {
  if (holderType != XmlElementType_Element) return collection.IsValidCount(ctx) || IsExcused(collection, ctx);
  try {
    collection.ValidateCount(ctx);
  } catch (CQnException const&) {
    if (!IsExcused(collection, ctx)) throw;
  }
  return true;
}

bool CElementInfo::AcceptChosen(CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx,
                                CXmlElement* next, CXmlElement** cursor, XmlElementType holderType) {
  if (next == *cursor) return false;                         // an empty collection is not the chosen member
  if (holderType == XmlElementType_Element) *cursor = next;  // moved before the count may throw
  if (!JudgeCount(collection, ctx, holderType)) return false;
  *cursor = next;
  return true;
}

// ---- Sequence: the collection takes every following sibling that it recognises; its count is checked immediately

QN_ELEMENT_TO_XML(CElementInfoSeqCol) {
  ValidateCountOnWriting(ctx, holder);
  return ElementToXmlCol(ctx, holder, writer);
}

QN_ELEMENT_FROM_XML(CElementInfoSeqCol) {
  CSmartPtr<CXmlCollectionBase> const collection = FetchCollection(holder);
  *cursor = FromXml_Int(collection.Get(), parent, *cursor, ctx, false);
  try {
    return JudgeCount(*collection, ctx, holderType);
  } catch (CQnException& failure) {
    FailureReport::Note(failure, WhereCountIsWrong(*this, ctx, *collection, parent, *cursor));
    throw;
  }
}

// ---- All: no table contains one

QN_ELEMENT_TO_XML(CElementInfoAllCol) {
  ValidateCountOnWriting(ctx, holder);
  return ElementToXmlCol(ctx, holder, writer);
}

QN_ELEMENT_FROM_XML(CElementInfoAllCol) {
  *cursor = FromXml_Int(FetchCollection(holder).Get(), parent, *cursor, ctx, false);
  return false;
}

// ---- Choice: the count is not checked on writing, and the driver goes on when the collection is empty

QN_ELEMENT_TO_XML(CElementInfoChoiceCol) { return ElementToXmlCol(ctx, holder, writer); }

QN_ELEMENT_FROM_XML(CElementInfoChoiceCol) {
  CSmartPtr<CXmlCollectionBase> const collection = FetchCollection(holder);
  CXmlElement* const next = FromXml_Int(collection.Get(), parent, *cursor, ctx, false);
  try {
    return AcceptChosen(*collection, ctx, next, cursor, holderType);
  } catch (CQnException& failure) {
    FailureReport::Note(failure, WhereCountIsWrong(*this, ctx, *collection, parent, *cursor));
    throw;
  }
}

}  // namespace Quillon9Data
