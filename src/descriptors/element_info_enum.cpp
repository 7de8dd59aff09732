#include "descriptors/member_signatures.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9Data {

using namespace Quillon9;

// ---- Sequence

QN_ELEMENT_TO_XML(CElementInfoSeqEnumMnd) { return ElementToXmlEnum(ctx, holder, writer, m_toText); }

QN_ELEMENT_FROM_XML(CElementInfoSeqEnumMnd) {
  if (holderType == XmlElementType_Element) {
    return !SeekRequiredElement(ctx, cursor) || TakeEnum(holder, cursor, m_fromText);
  }
  return IsThisElement(ctx, *cursor) && TakeEnum(holder, cursor, m_fromText);  // skips nothing, unlike a value
}

QN_ELEMENT_TO_XML(CElementInfoSeqEnumOpt) { return ElementToXmlEnumOpt(ctx, holder, writer, m_toText); }

QN_ELEMENT_FROM_XML(CElementInfoSeqEnumOpt) {
  return !IsThisElement(ctx, *cursor) || TakeEnum(holder, cursor, m_fromText);
}

// ---- All

QN_ELEMENT_TO_XML(CElementInfoAllEnumMnd) { return ElementToXmlEnum(ctx, holder, writer, m_toText); }
QN_ELEMENT_FROM_XML(CElementInfoAllEnumMnd) {
  return IsThisElement(ctx, *cursor) && TakeEnum(holder, cursor, m_fromText);
}
QN_VALIDATE(CElementInfoAllEnumMnd) { return ValidateMandatory(found, required); }

QN_ELEMENT_TO_XML(CElementInfoAllEnumOpt) { return ElementToXmlEnumOpt(ctx, holder, writer, m_toText); }
QN_ELEMENT_FROM_XML(CElementInfoAllEnumOpt) {
  return IsThisElement(ctx, *cursor) && TakeEnum(holder, cursor, m_fromText);
}
QN_VALIDATE(CElementInfoAllEnumOpt) { return true; }

// ---- Choice

QN_ELEMENT_TO_XML(CElementInfoChoiceEnumOpt) { return ElementToXmlEnumOpt(ctx, holder, writer, m_toText); }
QN_ELEMENT_FROM_XML(CElementInfoChoiceEnumOpt) {
  return IsThisElement(ctx, *cursor) && TakeEnum(holder, cursor, m_fromText);
}

}  // namespace Quillon9Data
