#include <utility>

#include "base/failure_detail.h"
#include "base/nesting_guard.h"
#include "base/text_arguments.h"
#include "binding/deferred_release.h"
#include "binding/failure_report.h"
#include "binding/reported_read.h"
#include "binding/text_scope.h"
#include "descriptors/failed_scans.h"
#include "descriptors/generic_size.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/checking_writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

namespace {

bool IsWildcard(std::string const& text) {
  return text == "##any" || text == "##other" || text == "##local" || text == "##targetNamespace";
}

/// Bounds the recursion over nested elements.
NestingGuard Descend() { return NestingGuard(true); }

}  // namespace

// ---- CElement

CElement::CElement(char const* name) : CInstanceMonitor("CElement") { Init(name, "", "##any", ""); }

CElement::CElement(char const* name, char const* ns) : CInstanceMonitor("CElement") {
  if (IsWildcard(OrEmpty(ns))) throw CQnInvalidNamespaceException(FormatString("Invalid Namespace [%s]", ns));
  Init(name, ns, ns, "");
}

CElement::CElement(char const* name, char const* ns, char const* restriction, char const* targetNamespace)
    : CInstanceMonitor("CElement") {
  Init(name, ns, restriction, targetNamespace);
}

bool CElement::HasMixedParts() const {
  std::vector<CElement const*> open = {this};  // instead of the stack, since elements may nest deeply
  while (!open.empty()) {
    CElement const& element = *open.back();
    open.pop_back();
    if (element.m_isMixed) return true;
    CElementCol const* const elements = element.m_elements.Get();
    if (elements == nullptr) continue;
    for (CElement const& child : *elements) open.push_back(&child);
  }
  return false;
}

void CElement::CopyObject(CXmlObjectBase* source, char const* defaultNamespace) {
  Init("", "", "##any", "");
  if (defaultNamespace != nullptr) m_defaultNamespace = defaultNamespace;
  if (source == nullptr) throw CQnInvalidParamException("The object to copy from may not be NULL");
  CXmlSerializationContext context;
  context.SetDefaultNamespaceURI(m_defaultNamespace.c_str());
  context.SetKeepUnknown(true);  // what the source has kept of its document
  if (source->HoldsUtf8Text() || Utf8Text::IsInUse()) context.SetTextEncoding(TextEncoding_UTF8);
  CBinaryData const text = source->ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, context);
  CXmlDocument document(context);
  document.LoadXmlStream(text.GetData(), text.GetLength());
  // Of other objects, text that follows the children does so whatever is added later.
  auto const* const element = dynamic_cast<CElement const*>(source);
  bool const keepsMixed = element != nullptr ? element->HasMixedParts() : source->HoldsUtf8Text();
  CopyWhole(document.GetDocumentElement(), keepsMixed);
}

CElement::~CElement() {
  try {
    if (CSmartPtr<CElementCol> elements = m_elements.Release()) DeferredRelease::Release(elements);
  } catch (...) {  // out of memory for the list: they are destroyed with this element and use stack
  }
}

void CElement::Init(char const* name, char const* ns, char const* restriction, char const* targetNamespace) {
  if (name == nullptr) throw CQnInvalidNamespaceException("Element Name must have a value");
  if (restriction == nullptr) throw CQnInvalidNamespaceException("Namespace Restriction must have a value");
  if (targetNamespace == nullptr) throw CQnInvalidNamespaceException("Target Namespace must have a value");
  CXmlObjectHelper::TestNamespace(OrEmpty(ns), restriction, targetNamespace);
  m_name = name;
  m_namespace = OrEmpty(ns);
  m_namespaceRestriction = restriction;
  m_targetNamespace = targetNamespace;
  m_hadNoNamespace = m_namespace.empty();
}

CAttributeCol* CElement::MakeAttributes() const {
  return m_attributes.Keep(new CAttributeCol(FirstNamespace(), "##any", m_targetNamespace.c_str()));
}

CElementCol* CElement::MakeElements() const {
  return m_elements.Keep(new CElementCol(FirstNamespace(), "##any", m_targetNamespace.c_str(), 0, -1));
}

// The collections keep the first namespace, which is lost once this element has another one.
void CElement::ChangeNamespace(std::string ns) {
  if (!m_hadNoNamespace && ns != m_namespace) {
    GetAttributes();
    GetElements();
  }
  m_namespace = std::move(ns);
}

void CElement::SetNamespace(std::string ns) {
  CXmlObjectHelper::TestNamespace(ns, m_namespaceRestriction, m_targetNamespace);
  ChangeNamespace(std::move(ns));
}

CSmartPtr<CAttribute> CElement::FindAttribute(char const* name, char const* ns) const {
  CAttributeCol const* const attributes = m_attributes.Get();
  return attributes != nullptr ? attributes->Find(name, ns) : nullptr;
}

CSmartPtr<CElement> CElement::FindElement(char const* name, char const* ns) const {
  CElementCol const* const elements = m_elements.Get();
  return elements != nullptr ? elements->Find(name, ns) : nullptr;
}

void CElement::CopyXmlElement(CXmlElement const* element) { CopyWhole(element, false); }

void CElement::CopyXmlElement(CXmlElement const* element, CXmlSerializationContext const& ctx) {
  CopyWhole(element, ctx.GetKeepMixedContent());
}

void CElement::CopyWhole(CXmlElement const* element, bool keepsMixed) {
  if (element == nullptr) throw CQnInvalidParamException("The element to copy from may not be NULL");
  ObjectContent const content(*element);
  CopyFrom(*element, keepsMixed);
}

void CElement::CopyFrom(CXmlElement const& element, bool keepsMixed) {
  NestingGuard const guard = Descend();
  GenericSize::CountElement(element);
  m_name = element.GetLocalName();
  ChangeNamespace(element.GetNamespaceURI());
  SetText(std::string(element.GetTextView()));
  if (CAttributeCol* const attributes = m_attributes.Get()) attributes->Clear();
  if (CElementCol* const elements = m_elements.Get()) elements->Clear();
  for (auto const* attribute = element.GetFirstAttribute(); attribute != nullptr;
       attribute = attribute->GetNextAttribute()) {
    GenericSize::CountAttribute(element, *attribute);
    GetAttributes()->Add(attribute->GetLocalName().c_str(), attribute->GetValueView().data(),
                         attribute->GetNamespaceURI().c_str());
    if (attribute->GetLocalName() == "xmlns") m_defaultNamespace = attribute->GetValueView();
  }
  for (CXmlElement* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    CSmartPtr<CElement> const copy(new CElement(child->GetLocalName().c_str()));
    copy->CopyFrom(*child, keepsMixed);
    GetElements()->Add(copy.Get());
  }
  if (keepsMixed) KeepPlaces(element);
  KeepMarkup(element);
}

CSmartPtr<CElement> CElement::Clone() const {
  NestingGuard const guard = Descend();
  CSmartPtr<CElement> copy(
      new CElement(m_name.c_str(), m_namespace.c_str(), m_namespaceRestriction.c_str(), m_targetNamespace.c_str()));
  copy->m_hadNoNamespace = m_hadNoNamespace;
  if (CAttributeCol const* const attributes = m_attributes.Get()) copy->m_attributes.Keep(attributes->Clone());
  if (CElementCol const* const elements = m_elements.Get()) copy->m_elements.Keep(elements->Clone());
  copy->m_text = m_text;
  copy->m_isMixed = m_isMixed;
  if (m_markup != nullptr) copy->m_markup = std::make_unique<std::vector<CMarkup>>(*m_markup);
  return copy;
}

void CElement::SetNamespaceRestrictions(char const* restriction, char const* targetNamespace) {
  std::string const list = OrEmpty(restriction);
  std::string const target = OrEmpty(targetNamespace);
  NestingGuard const guard = Descend();
  try {
    CXmlObjectHelper::TestNamespace(m_namespace, list, target);
    if (CAttributeCol const* const attributes = m_attributes.Get()) {
      for (CAttribute const& attribute : *attributes) {
        CXmlObjectHelper::TestNamespace(attribute.GetNamespace(), list, target);
      }
    }
    if (CElementCol const* const elements = m_elements.Get()) {
      for (CElement& child : *elements) child.SetNamespaceRestrictions(list.c_str(), target.c_str());
    }
  } catch (CQnException const& cause) {
    // Throw a pointer, because callers expect one. One from a child is not caught here, since it is not a reference.
    throw new CQnInvalidNamespaceException(
        FormatString("The namespace %s in the class %s is invalid against restriction %s", m_name.c_str(),
                     m_namespace.c_str(), list.c_str()),
        cause);
  }
}

// ---- Reading

void CElement::FromXml(char const* text, CXmlSerializationContext const& ctx) { CXmlObjectBase::FromXml(text, ctx); }

void CElement::FromXml(wchar_t const* text, CXmlSerializationContext const& ctx) { CXmlObjectBase::FromXml(text, ctx); }

void CElement::FromXml(char const* text) {
  CXmlSerializationContext const& ctx = CXmlSerializationContext::m_defaultContext;
  TextScope const scope(*this, ctx);
  CXmlDocument document(ctx);
  DocumentPlaces places(document, InputForm::kBytes);
  ReadWithReport(ctx, places, [&] {
    document.LoadXml(text);
    CXmlElement* const root = document.GetDocumentElement();
    FromXml_Int(root, root, ctx, false);
  });
}

CXmlElement* CElement::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) {
  if (cursor == nullptr) return nullptr;
  if (!CXmlObjectHelper::IsNamespaceValid(cursor->GetNamespaceURI(), m_namespaceRestriction, m_targetNamespace)) {
    return cursor;
  }
  NestingGuard const guard = Descend();
  CXmlElement* left = cursor->GetFirstElement();
  try {
    GenericSize::CountElement(*cursor);
    FailedScans::SpendOnGeneric(*cursor, ctx);
    if (cursor->GetFirstAttribute() != nullptr) CXmlObjectBase::FromXml_Int(GetAttributes(), cursor, nullptr, ctx);
    if (left != nullptr) left = CXmlObjectBase::FromXml_Int(GetElements(), cursor, left, ctx);
  } catch (CQnException& failure) {
    FailureReport::Note(failure, {cursor});
    throw;
  }
  if (left != nullptr) {
    throw FailureReport::Noted(
        {left}, OfKind(FailureKind_UnexpectedElement,
                       CQnValidationException(FormatString("Invalid Element [%s] found in element [%s]",
                                                           cursor->GetLocalName().c_str(), m_name.c_str()))));
  }
  SetText(std::string(cursor->GetTextView()));
  if (ctx.GetKeepMixedContent()) KeepPlaces(*cursor);
  KeepMarkup(*cursor);
  m_name = cursor->GetLocalName();
  ChangeNamespace(cursor->GetNamespaceURI());
  return cursor->GetNextSiblingElement();
}

// ---- Writing

void CElement::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                         bool inChoice) const {
  NestingGuard const guard = Descend();
  if (m_defaultNamespace.empty()) return WriteContent(writer, ns, ctx, inChoice);
  CheckingWriter* const check = XmlWriterAccess::Checking(*writer);
  if (check != nullptr && check->WritesText()) return WriteApartTo(*check, inChoice);
  auto* const textWriter = dynamic_cast<CXmlTextWriter*>(writer);
  if (textWriter == nullptr) {
    if (check != nullptr) check->WriteStartElement(m_name, m_namespace);  // for the place of the failure
    throw CQnException("An element with a default namespace can only be written as text");
  }
  WriteApart(*textWriter, inChoice);
}

// Without places, writes the text after the children, wherever it was in the document.
void CElement::WriteChildrenAndText(CXmlWriter* writer, char const* ns, CXmlSerializationContext const& ctx,
                                    bool inChoice) const {
  if (m_markup != nullptr) return WriteWithMarkup(writer, ns, ctx);
  if (m_isMixed) {
    writer->PreserveSpace();
    for (CContentItem<CElement> const& item : Content()) {
      if (item.IsText()) {
        writer->WriteString(std::string(item.GetText()), ItemType_string);
      } else {
        CXmlObjectBase::ToXml_Int(item.GetElement(), writer, false, ns, ctx, false);
      }
    }
    return;
  }
  if (auto const* const elements = m_elements.Get()) {
    CXmlObjectBase::ToXml_Int(elements, writer, false, ns, ctx, inChoice);
  }
  writer->WriteString(m_text, ItemType_string);
}

void CElement::WriteContent(CXmlWriter* writer, char const* ns, CXmlSerializationContext const& ctx,
                            bool inChoice) const {
  writer->WriteStartElement(m_name, m_namespace);
  if (auto const* const attributes = m_attributes.Get()) {
    CXmlObjectBase::ToXml_Int(attributes, writer, false, ns, ctx, false);
  }
  WriteChildrenAndText(writer, ns, ctx, inChoice);
  writer->WriteEndElement();
}

// An element with a namespace declaration of its own is written by a separate writer and inserted verbatim, without its
// attributes and the caller's options.
void CElement::WriteApart(CXmlTextWriter& writer, bool inChoice) const {
  CTextStream stream(XmlEncoding_Default);
  CXmlTextWriter inner(stream);
  inner.SetEOLType(writer.GetEOLType());
  inner.SetFormat(writer.GetFormat());
  inner.SetDefaultNamespace(m_defaultNamespace);
  WriteApartTo(inner, inChoice);
  stream.Flush();
  writer.CloseParentElm();
  writer.WriteRawElement(stream.GetText());
}

void CElement::WriteApartTo(CXmlWriter& writer, bool inChoice) const {
  writer.WriteStartElement(m_name, m_namespace);
  CXmlSerializationContext context;
  context.SetDefaultNamespaceURI(m_defaultNamespace.c_str());
  WriteChildrenAndText(&writer, m_namespace.c_str(), context, inChoice);
  writer.WriteEndElement();
}

// ---- CElementCol

CElementCol::CElementCol(char const* ns, char const* restriction, char const* targetNamespace, int, int)
    : m_namespaceRestriction("##any"), m_namespace(OrEmpty(ns)), m_targetNamespace(OrEmpty(targetNamespace)) {
  std::string const list = OrEmpty(restriction);
  CXmlObjectHelper::TestNamespace(m_namespace, list, m_targetNamespace);
  if (m_namespace.empty() && StartsWith(list, "##")) m_namespace = list;
}

CElementCol::~CElementCol() = default;

CSmartPtr<CElementCol> CElementCol::Clone() const {
  CSmartPtr<CElementCol> copy(new CElementCol(m_namespace.c_str(), m_namespaceRestriction.c_str(),
                                              m_targetNamespace.c_str(), GetMinOccurs(), GetMaxOccurs()));
  copy->m_namespace = m_namespace;  // even if it is empty, and stays empty
  for (CElement const& element : *this) copy->Add(element.Clone().Get())->m_place = element.m_place;
  return copy;
}

CSmartPtr<CElement> CElementCol::Add(CElement* element) {
  CSmartPtr<CElement> held(element);
  if (!held) throw CQnInvalidParamException("The element to add may not be NULL");
  CXmlObjectHelper::TestNamespace(element->GetNamespace(), m_namespaceRestriction, m_targetNamespace);
  element->m_place = CElement::kNoPlace;
  AppendItem(element);
  return held;
}

CSmartPtr<CElement> CElementCol::Add(char const* name) {
  if (m_namespace.empty()) throw CQnInvalidStateException("A Namespace has not been set for this Collection");
  return Add(name, m_namespace.c_str());
}

CSmartPtr<CElement> CElementCol::Add(char const* name, char const* ns) {
  CXmlObjectHelper::TestNamespace(OrEmpty(ns), m_namespaceRestriction, m_targetNamespace);
  return Add(new CElement(name, ns, m_namespaceRestriction.c_str(), m_targetNamespace.c_str()));
}

CSmartPtr<CElement> CElementCol::Item(int index) const {
  if (index < 0 || index >= GetCount()) return nullptr;
  return static_cast<CElement*>(GetNodeAtIndex(index)->m_item.Get());
}

CSmartPtr<CElement> CElementCol::Find(char const* name, char const* ns) const {
  std::string const wanted = OrEmpty(name);
  for (CElement& element : *this) {
    if (element.GetName() == wanted && (ns == nullptr || element.GetNamespace() == ns)) return &element;
  }
  return nullptr;
}

void CElementCol::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx, bool) const {
  ValidateCount(ctx);
  for (CElement const& element : *this) CXmlObjectBase::ToXml_Int(&element, writer, false, ns, ctx, false);
}

CXmlElement* CElementCol::Take(char const* restriction, CXmlElement* parent, CXmlElement* cursor,
                               CXmlSerializationContext const& ctx) {
  CSmartPtr<CElement> const element(new CElement(cursor->GetLocalName().c_str(), cursor->GetNamespaceURI().c_str(),
                                                 restriction, m_targetNamespace.c_str()));
  try {
    CXmlElement* const next = CXmlObjectBase::FromXml_Int(element.Get(), parent, cursor, ctx);
    if (next != cursor) Add(element.Get());
    return next;
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, {cursor})) throw;
    return cursor->GetNextSiblingElement();
  }
}

CXmlElement* CElementCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                      bool) {
  while (cursor != nullptr &&
         CXmlObjectHelper::IsNamespaceValid(cursor->GetNamespaceURI(), m_namespaceRestriction, m_targetNamespace)) {
    CXmlElement* const next = Take(m_namespaceRestriction.c_str(), parent, cursor, ctx);
    if (next == cursor) break;
    cursor = next;
  }
  return cursor;
}

CXmlElement* CElementCol::FromXmlLockElementName_Int(std::string name, std::string ns, CXmlElement* parent,
                                                     CXmlElement* cursor, CXmlSerializationContext const& ctx) {
  while (cursor != nullptr && cursor->GetLocalName() == name && cursor->GetNamespaceURI() == ns) {
    CXmlElement* const next = Take("##any", parent, cursor, ctx);
    if (next == cursor) break;
    cursor = next;
  }
  return cursor;
}

}  // namespace Quillon9
