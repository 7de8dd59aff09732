#include "binding/failed_scans.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9Data {

using namespace Quillon9;

// ---- PrimMnd

CElementInfoSeqPrimMnd::CElementInfoSeqPrimMnd(char const* name, char const* ns, int index, ItemType type,
                                               char const* format, CWhitespaceUtils::WhitespaceRule rule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoSeq(name, ns, index, type, format, rule, restrictions) {}

CElementInfoSeqPrimMnd::~CElementInfoSeqPrimMnd() = default;

bool CElementInfoSeqPrimMnd::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrim(ctx, holder, writer);
}

bool CElementInfoSeqPrimMnd::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                            CXmlElement* parent, CXmlElement** cursor, char const*,
                                            XmlElementType holderType) {
  if (holderType == XmlElementType_Element) {
    return !SeekRequiredElement(ctx, cursor) || TakePrimitive(holder, cursor);
  }
  // In a holder without a tag the whole group may be absent. Unlike its enumeration and class sisters this member
  // skips unknown elements here, and never excuses a missing one.
  if (IsThisElement(ctx, *cursor)) return TakePrimitive(holder, cursor);
  if (!ctx.GetIgnoreUnknownElements()) return false;
  CXmlElement* const start = *cursor;
  if (FailedScans::Knows(this, parent, start)) {
    *cursor = nullptr;
    return false;
  }
  while (*cursor != nullptr && !IsThisElement(ctx, *cursor)) *cursor = (*cursor)->GetNextSiblingElement();
  if (*cursor != nullptr) return TakePrimitive(holder, cursor);
  FailedScans::Note(this, parent, start);
  return false;
}

// ---- PrimOpt

CElementInfoSeqPrimOpt::CElementInfoSeqPrimOpt(char const* name, char const* ns, int index, ItemType type,
                                               char const* format, CWhitespaceUtils::WhitespaceRule rule,
                                               CPrimitiveRestrictions const& restrictions)
    : CElementInfoSeq(name, ns, index, type, format, rule, restrictions) {}

CElementInfoSeqPrimOpt::~CElementInfoSeqPrimOpt() = default;

bool CElementInfoSeqPrimOpt::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                          CXmlWriter* writer) const {
  return ElementToXmlPrimOpt(ctx, holder, writer);
}

bool CElementInfoSeqPrimOpt::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                            CXmlElement*, CXmlElement** cursor, char const*, XmlElementType) {
  return !IsThisElement(ctx, *cursor) || TakePrimitive(holder, cursor);  // absent is fine: the cursor stays
}

}  // namespace Quillon9Data
