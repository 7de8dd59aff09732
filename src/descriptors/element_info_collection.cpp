#include "quillon9/binding/collection.h"
#include "quillon9/binding/exceptions.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {

using namespace Quillon9;

CElementInfoSeqCol::~CElementInfoSeqCol() = default;
CElementInfoSeqPrimCol::~CElementInfoSeqPrimCol() = default;
CElementInfoSeqEnumCol::~CElementInfoSeqEnumCol() = default;
CElementInfoSeqClsCol::~CElementInfoSeqClsCol() = default;
CElementInfoSeqAbsClsCol::~CElementInfoSeqAbsClsCol() = default;
CElementInfoSeqNonCol::~CElementInfoSeqNonCol() = default;
CElementInfoChoiceCol::~CElementInfoChoiceCol() = default;
CElementInfoChoicePrimCol::~CElementInfoChoicePrimCol() = default;
CElementInfoChoiceEnumCol::~CElementInfoChoiceEnumCol() = default;
CElementInfoChoiceClsCol::~CElementInfoChoiceClsCol() = default;
CElementInfoChoiceAbsClsCol::~CElementInfoChoiceAbsClsCol() = default;
CElementInfoAllCol::~CElementInfoAllCol() = default;
CElementInfoAllPrimCol::~CElementInfoAllPrimCol() = default;
CElementInfoAllClsCol::~CElementInfoAllClsCol() = default;
CElementInfoAllAbsClsCol::~CElementInfoAllAbsClsCol() = default;
CElementInfoAllEnumCol::~CElementInfoAllEnumCol() = default;
CElementInfoAllNonCol::~CElementInfoAllNonCol() = default;

// ---- Writing: a choice does not judge the count, and its driver goes on when the collection is empty.

bool CElementInfoSeqCol::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                      CXmlWriter* writer) const {
  if (!ctx.GetIgnoreInvalidCollectionCounts()) ReadCollection(holder)->ValidateCount(ctx);
  return ElementToXmlCol(ctx, holder, writer);
}

bool CElementInfoAllCol::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                      CXmlWriter* writer) const {
  if (!ctx.GetIgnoreInvalidCollectionCounts()) ReadCollection(holder)->ValidateCount(ctx);
  return ElementToXmlCol(ctx, holder, writer);
}

bool CElementInfoChoiceCol::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                         CXmlWriter* writer) const {
  return ElementToXmlCol(ctx, holder, writer);
}

// ---- Reading: the collection takes every following sibling that it recognises.

bool CElementInfoSeqCol::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                        CXmlElement* parent, CXmlElement** cursor, char const*,
                                        XmlElementType holderType) {
  CSmartPtr<CXmlCollectionBase> const collection = FetchCollection(holder);
  *cursor = FromXml_Int(collection.Get(), parent, *cursor, ctx, false);
  if (holderType != XmlElementType_Element) return collection->IsValidCount(ctx);
  collection->ValidateCount(ctx);
  return true;
}

bool CElementInfoChoiceCol::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                           CXmlElement* parent, CXmlElement** cursor, char const*,
                                           XmlElementType holderType) {
  CSmartPtr<CXmlCollectionBase> const collection = FetchCollection(holder);
  CXmlElement* const next = FromXml_Int(collection.Get(), parent, *cursor, ctx, false);
  if (next == *cursor) return false;
  if (holderType != XmlElementType_Element && !collection->IsValidCount(ctx)) return false;
  *cursor = next;
  if (holderType == XmlElementType_Element) collection->ValidateCount(ctx);
  return true;
}

bool CElementInfoAllCol::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                        CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType) {
  *cursor = FromXml_Int(FetchCollection(holder).Get(), parent, *cursor, ctx, false);
  return false;
}

// ---- Attributes of items without a tag

void CElementInfoSeqClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                      CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoItemsAttributesToXml(m_childType, ctx, holder, writer);
}

void CElementInfoSeqAbsClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                         CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoItemsAttributesToXml(m_childType, ctx, holder, writer);
}

void CElementInfoChoiceClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                         CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoItemsAttributesToXml(m_childType, ctx, holder, writer);
}

void CElementInfoChoiceAbsClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                            CXmlGeneratedClass const* holder,
                                                            CXmlWriter* writer) const {
  PseudoItemsAttributesToXml(m_childType, ctx, holder, writer);
}

void CElementInfoAllClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                      CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoItemsAttributesToXml(m_childType, ctx, holder, writer);
}

void CElementInfoAllAbsClsCol::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                         CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoItemsAttributesToXml(m_childType, ctx, holder, writer);
}

}  // namespace Quillon9Data
