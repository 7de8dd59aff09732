#include "descriptors/member_signatures.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/binding/collection.h"

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

bool CElementInfo::JudgeCount(CXmlCollectionBase const& collection, CXmlSerializationContext const& ctx,
                              XmlElementType holderType) {
  if (holderType != XmlElementType_Element) return collection.IsValidCount(ctx);
  collection.ValidateCount(ctx);
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
  return JudgeCount(*collection, ctx, holderType);
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
  return AcceptChosen(*collection, ctx, FromXml_Int(collection.Get(), parent, *cursor, ctx, false), cursor, holderType);
}

}  // namespace Quillon9Data
