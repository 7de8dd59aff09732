#include "base/failure_detail.h"
#include "descriptors/member_signatures.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/xmlio/document.h"

// Members that hold one object: of a known class (Cls), or of a class determined from the element (AbsCls).
namespace Quillon9Data {

using namespace Quillon9;

// ---- Sequence, known class

QN_ELEMENT_TO_XML(CElementInfoSeqClsMnd) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoSeqClsMnd) {
  if (m_childType == XmlElementType_Element) return TakeElementChild(ctx, holder, cursor, holderType);
  if (!m_requiresContent) return TakePseudoChild(ctx, holder, parent, cursor, holderType);
  if (*cursor != nullptr && ReadPseudoChild(ctx, FetchChild(holder).Get(), parent, cursor)) return true;
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
  ReadChild(ctx, FetchChild(holder).Get(), cursor, false);
  return true;
}

// A child that may be empty counts as present whether or not it took anything.
bool CElementInfoSeqClsMnd::TakePseudoChild(CXmlSerializationContext const& ctx, CXmlGeneratedClass* holder,
                                            CXmlElement* parent, CXmlElement** cursor, XmlElementType holderType) {
  if (ReadPseudoChild(ctx, FetchChild(holder).Get(), parent, cursor) || *cursor == nullptr) return true;
  // Where unknown elements are ignored, the driver skips this one and tries again.
  return !ctx.GetIgnoreUnknownElements() || holderType != XmlElementType_Element;
}

QN_ELEMENT_TO_XML(CElementInfoSeqClsOpt) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoSeqClsOpt) {
  if (m_childType == XmlElementType_Element) {
    if (!IsThisElement(ctx, *cursor)) return true;
    CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
    ReadChild(ctx, child.Get(), cursor, false);
    StoreChild(holder, child.Get());  // only now: a child that fails leaves the property unchanged
    return true;
  }
  if (*cursor == nullptr) return true;
  CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
  CXmlElement* next = *cursor;
  if (!ReadPseudoChild(ctx, child.Get(), parent, &next)) return true;  // it took nothing: the property keeps its value
  StoreChild(holder, child.Get());
  *cursor = next;
  return true;
}

// ---- All, known class

QN_ELEMENT_TO_XML(CElementInfoAllClsMnd) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoAllClsMnd) {
  if (m_childType != XmlElementType_Element) {
    return ReadPseudoChild(ctx, FetchChild(holder).Get(), parent, cursor);
  }
  if (!IsThisElement(ctx, *cursor)) return false;
  ReadChild(ctx, FetchChild(holder).Get(), cursor, false);
  return true;
}

QN_VALIDATE(CElementInfoAllClsMnd) {
  if (!found && required && m_childType != XmlElementType_Pseudo && !m_requiresContent) return true;
  return ValidateMandatory(found, required);
}

QN_ELEMENT_TO_XML(CElementInfoAllClsOpt) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoAllClsOpt) {
  if (m_childType == XmlElementType_Element) {
    if (!IsThisElement(ctx, *cursor)) return false;
    CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
    ReadChild(ctx, child.Get(), cursor, false);
    StoreChild(holder, child.Get());
    return true;
  }
  if (*cursor == nullptr) return false;
  CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
  CXmlElement* next = *cursor;
  if (!ReadPseudoChild(ctx, child.Get(), parent, &next)) return false;
  StoreChild(holder, child.Get());
  *cursor = next;
  return true;
}

QN_VALIDATE(CElementInfoAllClsOpt) { return true; }

// ---- Choice, known class: stored before it is read, and cleared again when it took nothing

QN_ELEMENT_TO_XML(CElementInfoChoiceClsOpt) { return ElementToXmlCls(ctx, holder, writer, true); }

QN_ELEMENT_FROM_XML(CElementInfoChoiceClsOpt) {
  if (m_childType == XmlElementType_Element) {
    if (!IsThisElement(ctx, *cursor)) return false;
    CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
    StoreChild(holder, child.Get());
    ReadChild(ctx, child.Get(), cursor, true);
    return true;
  }
  if (*cursor == nullptr) return false;
  CSmartPtr<CXmlObjectBase> const child = MakeChild(m_classFactory, m_classId);
  StoreChild(holder, child.Get());
  if (ReadPseudoChild(ctx, child.Get(), parent, cursor)) return true;
  StoreChild(holder, nullptr);
  return false;
}

// ---- Sequence, class determined from the element. Neither ignoring option affects Mnd; its failure has its own text.

QN_ELEMENT_TO_XML(CElementInfoSeqAbsClsMnd) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoSeqAbsClsMnd) {
  CSmartPtr<CXmlObjectBase> child;
  if (IsThisElement(ctx, *cursor)) child = m_elementFactory(*cursor);
  if (!child) {
    if (holderType != XmlElementType_Element) return false;
    throw OfKind(*cursor == nullptr || !IsThisElement(ctx, *cursor) ? FailureKind_MissingElement : FailureKind_Factory,
                 CQnValidationException(
                     FormatString("Failed to find a suitable substitution element for [%s]", m_elementName.c_str())));
  }
  ReadAndStoreChild(ctx, holder, child.Get(), cursor);
  return true;
}

QN_ELEMENT_TO_XML(CElementInfoSeqAbsClsOpt) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoSeqAbsClsOpt) {
  if (!IsThisElement(ctx, *cursor)) return true;
  CSmartPtr<CXmlObjectBase> const child = m_elementFactory(*cursor);
  if (!child) return true;  // the element stays for the next descriptor, or for the driver's check at the end
  ReadAndStoreChild(ctx, holder, child.Get(), cursor);
  return true;
}

// ---- All, class determined from the element: can be written but not read

QN_ELEMENT_TO_XML(CElementInfoAllAbsClsMnd) { return ElementToXmlCls(ctx, holder, writer, false); }
QN_ELEMENT_FROM_XML(CElementInfoAllAbsClsMnd) {
  throw CQnException(
      "CElementInfoAllAbsClsMnd::ElementFromXml, has not been implemented fully, please contact the support of the "
      "code generator");
}
QN_VALIDATE(CElementInfoAllAbsClsMnd) { return ValidateMandatory(found, required); }

QN_ELEMENT_TO_XML(CElementInfoAllAbsClsOpt) { return ElementToXmlCls(ctx, holder, writer, false); }
QN_ELEMENT_FROM_XML(CElementInfoAllAbsClsOpt) {
  throw CQnException(
      "CElementInfoAllAbsClsOpt::ElementFromXml, has not been implemented fully, please contact the support of the "
      "code generator");
}
QN_VALIDATE(CElementInfoAllAbsClsOpt) { return true; }

// ---- Choice, class determined from the element

QN_ELEMENT_TO_XML(CElementInfoChoiceAbsClsOpt) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoChoiceAbsClsOpt) {
  if (!IsThisElement(ctx, *cursor)) return false;
  CSmartPtr<CXmlObjectBase> const child = m_elementFactory(*cursor);
  StoreChild(holder, child.Get());  // even if null: this shows that the member was tried
  if (!child) return false;
  ReadChild(ctx, child.Get(), cursor, false);
  return true;
}

}  // namespace Quillon9Data
