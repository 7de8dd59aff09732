#include "base/failure_detail.h"
#include "descriptors/member_signatures.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/xmlio/document.h"

// Members that hold a CElement, or a CElementCol if the element is repeated. The cursor shows whether a member took the
// element: a CElement returns the element it was given when the namespace is outside its restriction.
namespace Quillon9Data {

using namespace Quillon9;

namespace {

constexpr char kAnyElement[] = "AnyElement";

}  // namespace

bool CElementInfo::IsUntypedName(CXmlElement const* element) const {
  return m_elementName == kAnyElement || element->GetLocalName() == m_elementName;
}

bool CElementInfo::ReadUntyped(CXmlSerializationContext const& ctx, CXmlObjectBase* held, CXmlElement* parent,
                               CXmlElement** cursor) const {
  return IsUntypedName(*cursor) && ReadPseudoChild(ctx, held, parent, cursor);
}

CSmartPtr<CXmlObjectBase> CElementInfo::ReadNewUntyped(CXmlSerializationContext const& ctx, CXmlElement* parent,
                                                       CXmlElement** cursor, char const* holderNamespace,
                                                       std::string const& restriction,
                                                       std::string const& targetNamespace) const {
  std::string const ns = GetAnyDefaultNamespace(restriction.c_str(), holderNamespace, targetNamespace.c_str());
  // Checks the namespace as the constructor would, but before the name; the object is made only for a matching name.
  CXmlObjectHelper::TestNamespace(ns, restriction, targetNamespace);
  if (!IsUntypedName(*cursor)) return nullptr;
  CSmartPtr<CXmlObjectBase> element(
      new CElement(m_elementName.c_str(), ns.c_str(), restriction.c_str(), targetNamespace.c_str()));
  if (!ReadPseudoChild(ctx, element.Get(), parent, cursor)) return nullptr;
  return element;
}

CXmlElement* CElementInfo::ReadUntypedCollection(CXmlSerializationContext const& ctx, CXmlCollectionBase* collection,
                                                 CXmlElement* parent, CXmlElement* cursor) const {
  if (m_elementName == kAnyElement) return FromXml_Int(collection, parent, cursor, ctx, false);
  auto* const elements = dynamic_cast<CElementCol*>(collection);
  if (elements == nullptr) {
    throw OfKind(FailureKind_Factory,
                 CQnException(FormatString("The collection for the element [%s] is none of untyped elements",
                                           m_elementName.c_str())));
  }
  std::string const ns = cursor != nullptr ? cursor->GetNamespaceURI() : "";
  return elements->FromXmlLockElementName_Int(m_elementName, ns, parent, cursor, ctx);
}

// ---- Sequence

QN_ELEMENT_TO_XML(CElementInfoSeqUntpdMnd) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoSeqUntpdMnd) {
  if (*cursor == nullptr) ThrowRequiredElement();  // whatever the holder is, unlike the other members
  if (ReadUntyped(ctx, FetchChild(holder).Get(), parent, cursor)) return true;
  if (holderType != XmlElementType_Element) return false;
  throw OfKind(FailureKind_MissingElement,
               CQnValidationException(
                   FormatString("Failed to find the required element from namespace [%s]", m_namespace.c_str())));
}

QN_ELEMENT_TO_XML(CElementInfoSeqUntpdOpt) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoSeqUntpdOpt) {
  if (*cursor == nullptr) return true;
  CXmlElement* next = *cursor;
  CSmartPtr<CXmlObjectBase> const element =
      ReadNewUntyped(ctx, parent, &next, holderNamespace, m_namespaceRestriction, m_targetNamespace);
  if (element) StoreChild(holder, element.Get());
  *cursor = next;
  return true;
}

// ---- All

QN_ELEMENT_TO_XML(CElementInfoAllUntpdMnd) { return ElementToXmlCls(ctx, holder, writer, false); }
QN_ELEMENT_FROM_XML(CElementInfoAllUntpdMnd) {
  return *cursor != nullptr && ReadUntyped(ctx, FetchChild(holder).Get(), parent, cursor);
}
QN_VALIDATE(CElementInfoAllUntpdMnd) { return ValidateMandatory(found, required); }

QN_ELEMENT_TO_XML(CElementInfoAllUntpdOpt) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoAllUntpdOpt) {
  if (*cursor == nullptr) return false;
  CXmlElement* next = *cursor;
  CSmartPtr<CXmlObjectBase> const element =
      ReadNewUntyped(ctx, parent, &next, holderNamespace, m_namespaceRestriction, m_targetNamespace);
  if (!element) return false;
  StoreChild(holder, element.Get());
  *cursor = next;
  return true;
}

QN_VALIDATE(CElementInfoAllUntpdOpt) { return true; }

// ---- Choice: an attempt that took nothing leaves the property null

QN_ELEMENT_TO_XML(CElementInfoChoiceUntpdOpt) { return ElementToXmlCls(ctx, holder, writer, false); }

QN_ELEMENT_FROM_XML(CElementInfoChoiceUntpdOpt) {
  if (*cursor == nullptr) return false;
  CXmlElement* next = *cursor;
  CSmartPtr<CXmlObjectBase> const element =
      ReadNewUntyped(ctx, parent, &next, holderNamespace, m_namespaceRestriction, m_targetNamespace);
  StoreChild(holder, element.Get());
  *cursor = next;
  return static_cast<bool>(element);
}

// ---- Repeated

QN_ELEMENT_FROM_XML(CElementInfoSeqUntpdCol) {
  CSmartPtr<CXmlCollectionBase> const collection = FetchCollection(holder);
  *cursor = ReadUntypedCollection(ctx, collection.Get(), parent, *cursor);
  return JudgeCount(*collection, ctx, holderType);
}

QN_ELEMENT_FROM_XML(CElementInfoChoiceUntpdCol) {
  CSmartPtr<CXmlCollectionBase> const collection = FetchCollection(holder);
  return AcceptChosen(*collection, ctx, ReadUntypedCollection(ctx, collection.Get(), parent, *cursor), cursor,
                      holderType);
}

}  // namespace Quillon9Data
