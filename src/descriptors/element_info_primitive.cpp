#include "descriptors/known_element.h"
#include "descriptors/member_signatures.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9Data {

using namespace Quillon9;

// ---- Sequence

QN_ELEMENT_TO_XML(CElementInfoSeqPrimMnd) { return ElementToXmlPrim(ctx, holder, writer); }

QN_ELEMENT_FROM_XML(CElementInfoSeqPrimMnd) {
  if (holderType == XmlElementType_Element) {
    if (!IsKnown(*cursor) && !SeekRequiredElement(ctx, cursor)) return true;
    return TakePrimitive(ctx, holder, cursor);
  }
  // In a holder without a tag the whole group may be absent. Unlike the enumeration and class members, this one skips
  // unknown elements here, and never excuses a missing element.
  while (!IsThisElement(ctx, *cursor)) {
    if (!ctx.GetIgnoreUnknownElements() || *cursor == nullptr) return false;
    *cursor = (*cursor)->GetNextSiblingElement();
  }
  return TakePrimitive(ctx, holder, cursor);
}

QN_ELEMENT_TO_XML(CElementInfoSeqPrimOpt) { return ElementToXmlPrimOpt(ctx, holder, writer); }

QN_ELEMENT_FROM_XML(CElementInfoSeqPrimOpt) {
  return !IsThisElement(ctx, *cursor) || TakePrimitive(ctx, holder, cursor);  // if it is absent, the cursor stays
}

// ---- All: false if the element is absent, because it may come later

QN_ELEMENT_TO_XML(CElementInfoAllPrimMnd) { return ElementToXmlPrim(ctx, holder, writer); }
QN_ELEMENT_FROM_XML(CElementInfoAllPrimMnd) {
  return IsThisElement(ctx, *cursor) && TakePrimitive(ctx, holder, cursor);
}
QN_VALIDATE(CElementInfoAllPrimMnd) { return ValidateMandatory(found, required); }

QN_ELEMENT_TO_XML(CElementInfoAllPrimOpt) { return ElementToXmlPrimOpt(ctx, holder, writer); }
QN_ELEMENT_FROM_XML(CElementInfoAllPrimOpt) {
  return IsThisElement(ctx, *cursor) && TakePrimitive(ctx, holder, cursor);
}
QN_VALIDATE(CElementInfoAllPrimOpt) { return true; }

// ---- Choice: false if the element is absent, because another member may take it

QN_ELEMENT_TO_XML(CElementInfoChoicePrimOpt) { return ElementToXmlPrimOpt(ctx, holder, writer); }
QN_ELEMENT_FROM_XML(CElementInfoChoicePrimOpt) {
  return IsThisElement(ctx, *cursor) && TakePrimitive(ctx, holder, cursor);
}

}  // namespace Quillon9Data
