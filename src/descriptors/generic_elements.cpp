#include <utility>

#include "base/failure_detail.h"
#include "base/nesting_guard.h"
#include "base/text_arguments.h"
#include "binding/deferred_release.h"
#include "binding/failure_report.h"
#include "binding/object_access.h"
#include "binding/reported_read.h"
#include "binding/text_scope.h"
#include "descriptors/failed_scans.h"
#include "descriptors/generic_names.h"
#include "descriptors/generic_size.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/values/object_helper.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/streams.h"
#include "quillon9/xmlio/text_writer.h"
#include "xmlio/checking_writer.h"
#include "xmlio/writer_access.h"

namespace Quillon9 {

using detail::GenericNames;
using detail::GenericNamesPtr;
using detail::GenericRules;

namespace {

bool IsWildcard(std::string const& text) {
  return text == "##any" || text == "##other" || text == "##local" || text == "##targetNamespace";
}

/// The names of an element that a program makes.
///@{
GenericNames* NewNames(char const* name, char const* ns, CSmartPtr<GenericRules const> const& rules) {
  if (name == nullptr) throw CQnInvalidNamespaceException("Element Name must have a value");
  return new GenericNames(name, OrEmpty(ns), rules);
}

GenericNames* NewNames(char const* name, char const* ns, char const* restriction, char const* targetNamespace) {
  if (name == nullptr) throw CQnInvalidNamespaceException("Element Name must have a value");
  if (restriction == nullptr) throw CQnInvalidNamespaceException("Namespace Restriction must have a value");
  if (targetNamespace == nullptr) throw CQnInvalidNamespaceException("Target Namespace must have a value");
  CXmlObjectHelper::TestNamespace(OrEmpty(ns), restriction, targetNamespace);
  return NewNames(name, ns, GenericNamesOf::Rules(restriction, targetNamespace));
}

GenericNames* NewNames(char const* name, char const* ns) {
  if (IsWildcard(OrEmpty(ns))) throw CQnInvalidNamespaceException(FormatString("Invalid Namespace [%s]", ns));
  return NewNames(name, ns, ns, "");
}
///@}

/// The number of siblings from \p element on.
std::size_t CountFrom(CXmlElement const* element) {
  std::size_t count = 0;
  for (; element != nullptr; element = element->GetNextSiblingElement()) ++count;
  return count;
}

/// Bounds the recursion over nested elements.
NestingGuard Descend() { return NestingGuard(true); }

}  // namespace

// ---- CElement

CElement::CElement(GenericNamesPtr names)
    : CInstanceMonitor("CElement"), m_isMixed(0), m_place(kNoPlace), m_names(std::move(names)) {}

CElement::CElement(char const* name) : CElement(NewNames(name, "", "##any", "")) {}

CElement::CElement(char const* name, char const* ns) : CElement(NewNames(name, ns)) {}

CElement::CElement(char const* name, char const* ns, char const* restriction, char const* targetNamespace)
    : CElement(NewNames(name, ns, restriction, targetNamespace)) {}

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
  if (defaultNamespace != nullptr) SetDefaultNamespace(defaultNamespace);
  if (source == nullptr) throw CQnInvalidParamException("The object to copy from may not be NULL");
  CXmlSerializationContext context;
  context.SetDefaultNamespaceURI(GetDefaultNamespace().c_str());
  context.SetKeepUnknown(true);  // what the source has kept of its document
  context.SetValueRules(RulesInUse::AreSchema() ? ValueRules_XmlSchema : source->GetDefaultValueRules());
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

CAttributeCol* CElement::MakeAttributes() const {
  return m_attributes.Keep(new CAttributeCol(GenericNamesOf::Collections(m_names)));
}

CElementCol* CElement::MakeElements() const {
  return m_elements.Keep(new CElementCol(GenericNamesOf::Collections(m_names)));
}

// The collections keep the first namespace, which is lost once this element has another one.
void CElement::KeepFirstNamespace(std::string const& newNamespace) {
  if (m_names->hadNoNamespace || newNamespace == m_names->ns) return;
  GetAttributes();
  GetElements();
}

void CElement::SetName(std::string name) { GenericNamesOf::Own(m_names).name = std::move(name); }

void CElement::SetNamespace(std::string ns) {
  CXmlObjectHelper::TestNamespace(ns, m_names->rules->restriction, m_names->rules->target);
  KeepFirstNamespace(ns);
  GenericNamesOf::Own(m_names).ns = std::move(ns);
}

void CElement::SetDefaultNamespace(std::string ns) {
  if (ns != GetDefaultNamespace()) GenericNamesOf::Own(m_names).defaultNamespace = std::move(ns);
}

void CElement::TakeNames(CXmlElement const& element) {
  GenericNamesPtr names = m_names;
  GenericNamesOf::FindForElement(element, *m_names->rules, m_names->hadNoNamespace, names);
  if (names == m_names) return;
  KeepFirstNamespace(names->ns);
  if (!GetDefaultNamespace().empty()) GenericNamesOf::Own(names).defaultNamespace = GetDefaultNamespace();
  m_names = std::move(names);
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
  if (ctx.GetKeepPrefixes()) KeepPrefixes(*element);
}

// The declarations at the document element serve all elements below it.
void CElement::KeepPrefixes(CXmlElement const& element) {
  if (CAttributeCol* const attributes = m_attributes.Get()) attributes->m_prefixes.reset();
  CXmlDocument const* const document = element.GetDocument();
  if (document == nullptr || document->GetDocumentElement() != &element) return;
  for (auto& [prefix, uri] : XmlNodeAccess::PrefixesOf(*document)) {
    if (!uri.empty()) GetAttributes()->SetPrefix(prefix, std::move(uri));  // an infoset may undeclare a prefix
  }
}

void CElement::CopyWhole(CXmlElement const* element, bool keepsMixed) {
  if (element == nullptr) throw CQnInvalidParamException("The element to copy from may not be NULL");
  ObjectContent const content(*element);
  CopyFrom(*element, keepsMixed);
}

void CElement::CopyFrom(CXmlElement const& element, bool keepsMixed) {
  NestingGuard const guard = Descend();
  GenericSize::CountElement(element);
  TakeNames(element);
  SetText(std::string(element.GetTextView()));
  if (CAttributeCol* const attributes = m_attributes.Get()) attributes->Clear();
  if (CElementCol* const elements = m_elements.Get()) elements->Clear();
  for (auto const* attribute = element.GetFirstAttribute(); attribute != nullptr;
       attribute = attribute->GetNextAttribute()) {
    GetAttributes()->Take(element, *attribute);
    if (attribute->GetLocalName() == "xmlns") SetDefaultNamespace(std::string(attribute->GetValueView()));
  }
  CXmlElement* child = element.GetFirstElement();
  if (child != nullptr) ObjectAccess::Reserve(*GetElements(), XmlNodeAccess::CountChildren(element));
  for (; child != nullptr; child = child->GetNextSiblingElement()) {
    GenericNamesPtr names;
    GenericNamesOf::FindForElement(*child, *GenericNamesOf::Rules("##any", ""), true, names);
    CSmartPtr<CElement> const copy(new CElement(std::move(names)));
    copy->CopyFrom(*child, keepsMixed);
    GetElements()->AppendItem(copy.Get());
  }
  if (keepsMixed) KeepPlaces(element);
  KeepMarkup(element);
}

CSmartPtr<CElement> CElement::Clone() const {
  NestingGuard const guard = Descend();
  CXmlObjectHelper::TestNamespace(m_names->ns, m_names->rules->restriction, m_names->rules->target);
  CSmartPtr<CElement> copy(new CElement(m_names));
  copy->SetDefaultNamespace("");
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
    CXmlObjectHelper::TestNamespace(m_names->ns, list, target);
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
        FormatString("The namespace %s in the class %s is invalid against restriction %s", GetName().c_str(),
                     m_names->ns.c_str(), list.c_str()),
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
    XmlNodeAccess::LoadLentText(document, text);
    CXmlElement* const root = document.GetDocumentElement();
    FromXml_Int(root, root, ctx, false);
  });
}

CXmlElement* CElement::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& ctx, bool) {
  if (cursor == nullptr) return nullptr;
  GenericRules const& rules = *m_names->rules;
  if (!CXmlObjectHelper::IsNamespaceValid(cursor->GetNamespaceURI(), rules.restriction, rules.target)) return cursor;
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
                                                           cursor->GetLocalName().c_str(), GetName().c_str()))));
  }
  TakeNames(*cursor);
  m_text = XmlNodeAccess::TextOf(*cursor);  // not earlier: the document may have been read from this very text
  m_isMixed = 0;
  if (ctx.GetKeepMixedContent()) KeepPlaces(*cursor);
  KeepMarkup(*cursor);
  return cursor->GetNextSiblingElement();
}

// ---- Writing

void CElement::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& ctx,
                         bool inChoice) const {
  NestingGuard const guard = Descend();
  if (GetDefaultNamespace().empty()) return WriteContent(writer, ns, ctx, inChoice);
  CheckingWriter* const check = XmlWriterAccess::Checking(*writer);
  if (check != nullptr && check->WritesText()) return WriteApartTo(*check, inChoice);
  auto* const textWriter = dynamic_cast<CXmlTextWriter*>(writer);
  if (textWriter == nullptr) {
    if (check != nullptr) check->WriteStartElement(m_names->name, m_names->ns);  // for the place of the failure
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
  writer->WriteStartElement(m_names->name, m_names->ns);
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
  inner.SetEscapesNamespaces(writer.GetEscapesNamespaces());
  inner.SetDefaultNamespace(GetDefaultNamespace());
  WriteApartTo(inner, inChoice);
  stream.Flush();
  writer.CloseParentElm();
  writer.WriteRawElement(stream.GetText());
}

void CElement::WriteApartTo(CXmlWriter& writer, bool inChoice) const {
  writer.WriteStartElement(m_names->name, m_names->ns);
  CXmlSerializationContext context;
  context.SetDefaultNamespaceURI(GetDefaultNamespace().c_str());
  WriteChildrenAndText(&writer, m_names->ns.c_str(), context, inChoice);
  writer.WriteEndElement();
}

// ---- CElementCol

namespace {

GenericNames* NewNamesOfCollection(std::string ns, std::string const& restriction, std::string const& target) {
  CXmlObjectHelper::TestNamespace(ns, restriction, target);
  if (ns.empty() && StartsWith(restriction, "##")) ns = restriction;
  auto* const names = new GenericNames("", std::move(ns), GenericNamesOf::Rules("##any", target));
  names->hadNoNamespace = false;  // an empty namespace stays empty
  return names;
}

}  // namespace

CElementCol::CElementCol(char const* ns, char const* restriction, char const* targetNamespace, int, int)
    : CElementCol(NewNamesOfCollection(OrEmpty(ns), OrEmpty(restriction), OrEmpty(targetNamespace))) {}

CElementCol::CElementCol(GenericNamesPtr const& names) : m_names(names) {}

CElementCol::~CElementCol() = default;

std::string const& CElementCol::Namespace() const {
  return m_names->hadNoNamespace ? m_names->rules->restriction : m_names->ns;
}

CSmartPtr<CElementCol> CElementCol::Clone() const {
  CSmartPtr<CElementCol> copy(new CElementCol(m_names));
  for (CElement const& element : *this) copy->Add(element.Clone().Get())->m_place = element.m_place;
  return copy;
}

CSmartPtr<CElement> CElementCol::Add(CElement* element) {
  CSmartPtr<CElement> held(element);
  if (!held) throw CQnInvalidParamException("The element to add may not be NULL");
  element->m_place = CElement::kNoPlace;
  AppendItem(element);
  return held;
}

CSmartPtr<CElement> CElementCol::Add(char const* name) {
  if (Namespace().empty()) throw CQnInvalidStateException("A Namespace has not been set for this Collection");
  return Add(name, Namespace().c_str());
}

CSmartPtr<CElement> CElementCol::Add(char const* name, char const* ns) {
  return Add(new CElement(NewNames(name, ns, m_names->rules)));
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

CXmlElement* CElementCol::Take(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx) {
  try {
    GenericNamesPtr names;
    GenericNamesOf::FindForElement(*cursor, *m_names->rules, cursor->GetNamespaceURI().empty(), names);
    CSmartPtr<CElement> const element(new CElement(std::move(names)));
    CXmlElement* const next = CXmlObjectBase::FromXml_Int(element.Get(), parent, cursor, ctx);
    if (next != cursor) AppendItem(element.Get());
    return next;
  } catch (CQnException& failure) {
    if (!FailureReport::GoesOn(ctx, failure, {cursor})) throw;
    return cursor->GetNextSiblingElement();
  }
}

CXmlElement* CElementCol::FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& ctx,
                                      bool) {
  ObjectAccess::Reserve(*this, CountFrom(cursor));
  while (cursor != nullptr) {
    CXmlElement* const next = Take(parent, cursor, ctx);
    if (next == cursor) break;
    cursor = next;
  }
  return cursor;
}

CXmlElement* CElementCol::FromXmlLockElementName_Int(std::string name, std::string ns, CXmlElement* parent,
                                                     CXmlElement* cursor, CXmlSerializationContext const& ctx) {
  while (cursor != nullptr && cursor->GetLocalName() == name && cursor->GetNamespaceURI() == ns) {
    CXmlElement* const next = Take(parent, cursor, ctx);
    if (next == cursor) break;
    cursor = next;
  }
  return cursor;
}

}  // namespace Quillon9
