#include "quillon9/binding/exceptions.h"
#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9Data {

using namespace Quillon9;

// ---- ClsMnd

CElementInfoSeqClsMnd::CElementInfoSeqClsMnd(char const* name, char const* ns, int index, XmlElementType childType,
                                             ClassFactory classFactory, int classId, bool requiresContent)
    : CElementInfoSeq(name, ns, index),
      m_childType(childType),
      m_requiresContent(requiresContent),
      m_classFactory(classFactory),
      m_classId(classId) {}

CElementInfoSeqClsMnd::~CElementInfoSeqClsMnd() = default;

bool CElementInfoSeqClsMnd::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, holder, writer, false);
}

void CElementInfoSeqClsMnd::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                      CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoObjectAttributesToXml(m_childType, ctx, holder, writer);
}

bool CElementInfoSeqClsMnd::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                           CXmlElement* parent, CXmlElement** cursor, char const*,
                                           XmlElementType holderType) {
  if (m_childType == XmlElementType_Element) return TakeElementChild(ctx, holder, cursor, holderType);
  if (!m_requiresContent) return TakePseudoChild(ctx, holder, parent, cursor, holderType);
  if (TakeRequiredPseudoChild(ctx, holder, parent, cursor)) return true;
  if (holderType == XmlElementType_Element) ThrowRequiredElement();
  return false;
}

bool CElementInfoSeqClsMnd::TakeElementChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                             CXmlElement** cursor, XmlElementType holderType) {
  if (holderType != XmlElementType_Element) {
    if (!IsThisElement(ctx, *cursor)) return false;
  } else if (!SeekRequiredElement(ctx, cursor)) {
    return true;
  }
  ReadChild(ctx, FetchChild(holder).Get(), cursor);
  return true;
}

// A child that may be empty counts as present whether it took something or not.
bool CElementInfoSeqClsMnd::TakePseudoChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                            CXmlElement* parent, CXmlElement** cursor, XmlElementType holderType) {
  CXmlElement* const next = FromXml_Int(FetchChild(holder).Get(), parent, *cursor, ctx, false);
  if (*cursor != nullptr && next == *cursor && ctx.GetIgnoreUnknownElements() && holderType == XmlElementType_Element) {
    return false;  // the driver skips this element and asks again
  }
  *cursor = next;
  return true;
}

bool CElementInfoSeqClsMnd::TakeRequiredPseudoChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                                    CXmlElement* parent, CXmlElement** cursor) {
  if (*cursor == nullptr) return false;
  CXmlElement* const next = FromXml_Int(FetchChild(holder).Get(), parent, *cursor, ctx, false);
  if (next == *cursor) return false;
  *cursor = next;
  return true;
}

// ---- ClsOpt

CElementInfoSeqClsOpt::CElementInfoSeqClsOpt(char const* name, char const* ns, int index, XmlElementType childType,
                                             ClassFactory classFactory, int classId)
    : CElementInfoSeq(name, ns, index), m_childType(childType), m_classFactory(classFactory), m_classId(classId) {}

CElementInfoSeqClsOpt::~CElementInfoSeqClsOpt() = default;

bool CElementInfoSeqClsOpt::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                         CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, holder, writer, false);
}

void CElementInfoSeqClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                      CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoObjectAttributesToXml(m_childType, ctx, holder, writer);
}

bool CElementInfoSeqClsOpt::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                           CXmlElement* parent, CXmlElement** cursor, char const*, XmlElementType) {
  if (m_childType == XmlElementType_Element) {
    if (!IsThisElement(ctx, *cursor)) return true;
    CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
    ReadChild(ctx, child.Get(), cursor);
    StoreChild(holder, child.Get());  // only now: a child that fails leaves the property as it was
    return true;
  }
  if (*cursor == nullptr) return true;
  CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
  CXmlElement* const next = FromXml_Int(child.Get(), parent, *cursor, ctx, false);
  if (next == *cursor) return true;  // it took nothing: the property keeps what it had
  StoreChild(holder, child.Get());
  *cursor = next;
  return true;
}

// ---- AbsClsMnd. Neither ignoring option reaches it, and its failure has a text of its own.

CElementInfoSeqAbsClsMnd::CElementInfoSeqAbsClsMnd(char const* name, char const* ns, int index,
                                                   XmlElementType childType, ElementFactory elementFactory)
    : CElementInfoSeq(name, ns, index), m_childType(childType), m_elementFactory(elementFactory) {}

CElementInfoSeqAbsClsMnd::~CElementInfoSeqAbsClsMnd() = default;

bool CElementInfoSeqAbsClsMnd::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, holder, writer, false);
}

void CElementInfoSeqAbsClsMnd::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                         CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoObjectAttributesToXml(m_childType, ctx, holder, writer);
}

bool CElementInfoSeqAbsClsMnd::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                              CXmlElement*, CXmlElement** cursor, char const*,
                                              XmlElementType holderType) {
  CSmartPtr<CXmlObjectBase> child;
  if (IsThisElement(ctx, *cursor)) child = m_elementFactory(*cursor);
  if (!child) {
    if (holderType != XmlElementType_Element) return false;
    throw CQnValidationException(
        FormatString("Failed to find a suitable substitution element for [%s]", m_elementName.c_str()));
  }
  ReadAndStoreChild(ctx, holder, child.Get(), cursor);
  return true;
}

// ---- AbsClsOpt

CElementInfoSeqAbsClsOpt::CElementInfoSeqAbsClsOpt(char const* name, char const* ns, int index,
                                                   XmlElementType childType, ElementFactory elementFactory)
    : CElementInfoSeq(name, ns, index), m_childType(childType), m_elementFactory(elementFactory) {}

CElementInfoSeqAbsClsOpt::~CElementInfoSeqAbsClsOpt() = default;

bool CElementInfoSeqAbsClsOpt::ElementToXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass const* holder,
                                            CXmlWriter* writer) const {
  return ElementToXmlCls(ctx, holder, writer, false);
}

void CElementInfoSeqAbsClsOpt::PseudoChildAttributeToXml(CXmlSerializationContext const& ctx,
                                                         CXmlGeneratedClass const* holder, CXmlWriter* writer) const {
  PseudoObjectAttributesToXml(m_childType, ctx, holder, writer);
}

bool CElementInfoSeqAbsClsOpt::ElementFromXml(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                              CXmlElement*, CXmlElement** cursor, char const*, XmlElementType) {
  if (!IsThisElement(ctx, *cursor)) return true;
  CSmartPtr<CXmlObjectBase> const child = m_elementFactory(*cursor);
  if (!child) return true;  // the element stays for the next descriptor, or for the driver's check at the end
  ReadAndStoreChild(ctx, holder, child.Get(), cursor);
  return true;
}

}  // namespace Quillon9Data
