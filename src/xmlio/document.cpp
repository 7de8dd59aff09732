#include "quillon9/xmlio/document.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

#include "binding/nesting_failure.h"
#include "quillon9/binding/exceptions.h"
#include "quillon9/binding/limits.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

namespace {

constexpr std::string_view kSchemaInstance = "http://www.w3.org/2001/XMLSchema-instance";
constexpr std::string_view kNamespaceDeclarations = "http://www.w3.org/2000/xmlns/";

bool IsSchemaMachinery(std::string_view namespaceUri) {
  return namespaceUri == kSchemaInstance || namespaceUri == kNamespaceDeclarations;
}

std::string_view TextOrEmpty(char const* text) { return text != nullptr ? text : std::string_view(); }

/// What a node counts for besides its texts.
constexpr std::size_t kNodeCharge = 64;

/// What a node of this name counts for. The name is stored once; but whoever copies the tree copies it with each node.
std::size_t ContentOf(CXmlName const& name) { return kNodeCharge + name.namespaceUri.size() + name.localName.size(); }

CXmlName const& NoName() {
  static CXmlName const* const name = new CXmlName{"", "", true};  // for nodes of any life time
  return *name;
}

void FreeName(CXmlName const* name) {
  if (!name->isShared) delete name;
}

}  // namespace

CXmlAttribute::CXmlAttribute(std::string localName, std::string value, std::string namespaceUri)
    : m_name(new CXmlName{std::move(namespaceUri), std::move(localName)}), m_value(std::move(value)) {}

CXmlAttribute::~CXmlAttribute() { FreeName(m_name); }

void* CXmlAttribute::operator new(std::size_t size) { return CTreeMemory::AllocateAlone(size); }
void* CXmlAttribute::operator new(std::size_t size, CTreeMemory& memory) { return memory.Allocate(size); }
void CXmlAttribute::operator delete(void* node, std::size_t size) noexcept { CTreeMemory::Free(node, size); }
void CXmlAttribute::operator delete(void* node, CTreeMemory&) noexcept {
  CTreeMemory::Free(node, sizeof(CXmlAttribute));
}

bool CXmlAttribute::IsNilAttribute() const { return GetLocalName() == "nil" && IsSchemaMachinery(GetNamespaceURI()); }

bool CXmlAttribute::IsNamespaceAttribute() const {
  if (!IsSchemaMachinery(GetNamespaceURI())) return false;
  std::string const& name = GetLocalName();
  return name == "xmlns" || name == "type" || name == "schemaLocation" || name == "noNamespaceSchemaLocation";
}

CXmlElement::CXmlElement(CXmlDocument const* document) : m_document(document), m_name(&NoName()) {}

CXmlElement::CXmlElement(CXmlDocument const* document, CTreeMemory* memory) noexcept
    : m_document(document), m_name(&NoName()), m_memory(memory) {}

CXmlElement::~CXmlElement() {
  if (m_firstChild != nullptr) DeleteChildren();
  if (m_attributes != nullptr) DeleteAttributes();
  FreeName(m_name);
}

std::vector<CXmlAttribute*> const& CXmlElement::None() {
  static std::vector<CXmlAttribute*> const none;
  return none;
}

std::vector<CXmlAttribute*>& CXmlElement::OwnAttributes() {
  if (m_attributes == nullptr) m_attributes = std::make_unique<std::vector<CXmlAttribute*>>();
  return *m_attributes;
}

void CXmlElement::DeleteAttributes() {
  for (CXmlAttribute* attribute : *m_attributes) delete attribute;
}

void* CXmlElement::operator new(std::size_t size) { return CTreeMemory::AllocateAlone(size); }
void* CXmlElement::operator new(std::size_t size, CTreeMemory& memory) { return memory.Allocate(size); }
void CXmlElement::operator delete(void* node, std::size_t size) noexcept { CTreeMemory::Free(node, size); }
void CXmlElement::operator delete(void* node, CTreeMemory&) noexcept { CTreeMemory::Free(node, sizeof(CXmlElement)); }

void CXmlElement::SetName(CXmlName const* name) {
  FreeName(m_name);
  m_name = name;
}

/// The name as this element's own, which may be changed.
CXmlName* CXmlElement::OwnName() {
  auto* const own = new CXmlName{m_name->namespaceUri, m_name->localName};
  SetName(own);
  return own;
}

void CXmlElement::SetElementName(std::string_view localName) { OwnName()->localName.assign(localName); }

void CXmlElement::SetNamespace(std::string_view namespaceUri) { OwnName()->namespaceUri.assign(namespaceUri); }

// A loop, since the depth of the tree is the document's choice: each element hands its children over to the chain
// before it dies.
void CXmlElement::DeleteChildren() {
  CXmlElement* chain = std::exchange(m_firstChild, nullptr);
  while (chain != nullptr) {
    CXmlElement* element = chain;
    chain = element->m_nextSibling;
    if (element->m_firstChild != nullptr) {
      element->m_lastChild->m_nextSibling = chain;
      chain = std::exchange(element->m_firstChild, nullptr);
    }
    delete element;
  }
}

std::string const& CXmlElement::GetAttribute(std::string const& localName, std::string const& namespaceUri) const {
  static std::string const absent;
  for (CXmlAttribute const* attribute : GetAttributes()) {
    if (attribute->GetLocalName() == localName && attribute->GetNamespaceURI() == namespaceUri) {
      return attribute->GetValue();
    }
  }
  return absent;
}

void CXmlElement::AppendText(char const* text, int length) {
  if (length > 0) m_text.append(text, static_cast<std::size_t>(length));
}

void CXmlElement::AddAttribute(std::string localName, std::string value, std::string namespaceUri) {
  auto attribute = std::make_unique<CXmlAttribute>(std::move(localName), std::move(value), std::move(namespaceUri));
  OwnAttributes().push_back(attribute.get());
  attribute.release();
}

void CXmlElement::AddAttribute(CXmlName const* name, std::string value) {
  std::unique_ptr<CXmlAttribute> attribute(m_memory != nullptr ? new (*m_memory) CXmlAttribute(name, std::move(value))
                                                               : new CXmlAttribute(name, std::move(value)));
  OwnAttributes().push_back(attribute.get());
  attribute.release();
}

CXmlElement* CXmlElement::CreateNewChildElement() {
  auto* child = m_memory != nullptr ? new (*m_memory) CXmlElement(m_document, m_memory) : new CXmlElement(m_document);
  child->m_previousSibling = m_lastChild;
  (m_lastChild != nullptr ? m_lastChild->m_nextSibling : m_firstChild) = child;
  m_lastChild = child;
  return child;
}

CXmlElement* CXmlElement::RemoveLastChildElement() {
  if (m_lastChild == nullptr) return nullptr;
  CXmlElement* child = std::exchange(m_lastChild, m_lastChild->m_previousSibling);
  (m_lastChild != nullptr ? m_lastChild->m_nextSibling : m_firstChild) = nullptr;
  child->m_previousSibling = nullptr;
  return child;
}

CXmlDocument::CXmlDocument() : CXmlDocument(nullptr, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilter filter) : CXmlDocument(filter, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(CXmlSerializationContext const& context) : CXmlDocument(nullptr, context) {}

CXmlDocument::CXmlDocument(ElementFilter filter, CXmlSerializationContext const& context)
    : m_filter(filter), m_context(context) {
  Init();
}

CXmlDocument::~CXmlDocument() { CXmlDocument::Cleanup(); }

CTreeMemory& CXmlDocument::Memory() {
  if (m_memory == nullptr) m_memory = new CTreeMemory;
  return *m_memory;
}

CXmlName const* CXmlDocument::ShareName(std::string_view namespaceUri, std::string_view localName) {
  return Memory().ShareName(namespaceUri, localName);
}

void CXmlDocument::Init() {
  m_inputData = nullptr;
  m_inputSize = 0;
  m_documentElement = nullptr;
  m_schemaType = m_context.GetSchemaType();
}

void CXmlDocument::Cleanup() {
  delete std::exchange(m_documentElement, nullptr);
  if (m_memory != nullptr) std::exchange(m_memory, nullptr)->Abandon();
  delete[] std::exchange(m_inputData, nullptr);
  m_inputSize = 0;
  m_elementStack.clear();
  m_namespaceAliases.clear();
}

std::string CXmlDocument::LookupNamespaceFromAlias(char const* prefix) const {
  auto const found = m_namespaceAliases.find(std::string(TextOrEmpty(prefix)));
  return found != m_namespaceAliases.end() ? found->second : std::string();
}

CXmlElement* CXmlDocument::AddDocElement(char const* namespaceUri, char const* localName) {
  return AddDocElement(TextOrEmpty(namespaceUri), TextOrEmpty(localName));
}

CXmlElement* CXmlDocument::AddDocElement(std::string_view namespaceUri, std::string_view localName) {
  return AddDocElement(ShareName(namespaceUri, localName));
}

CXmlElement* CXmlDocument::AddDocElement(CXmlName const* name) {
  if (m_documentElement != nullptr) throw CQnException("The document has a document element already");
  CheckDepth();
  CountContent(ContentOf(*name));
  m_elementStack.reserve(1);
  m_documentElement = new (Memory()) CXmlElement(this, m_memory);
  m_documentElement->SetName(name);
  m_elementStack.push_back(m_documentElement);
  return m_documentElement;
}

CXmlElement* CXmlDocument::AddChildElement(char const* namespaceUri, char const* localName) {
  return AddChildElement(TextOrEmpty(namespaceUri), TextOrEmpty(localName));
}

CXmlElement* CXmlDocument::AddChildElement(std::string_view namespaceUri, std::string_view localName) {
  return AddChildElement(ShareName(namespaceUri, localName));
}

CXmlElement* CXmlDocument::AddChildElement(CXmlName const* name) {
  CXmlElement* parent = OpenElementOrThrow();
  CheckDepth();
  CountContent(ContentOf(*name));
  CXmlElement* const child = parent->CreateNewChildElement();
  child->SetName(name);
  m_elementStack.push_back(child);
  return child;
}

void CXmlDocument::EndElement() {
  CXmlElement* element = OpenElementOrThrow();
  m_elementStack.pop_back();
  if (m_filter == nullptr || !m_filter(element)) return;
  if (!m_elementStack.empty()) delete m_elementStack.back()->RemoveLastChildElement();
}

void CXmlDocument::CloseElement() {
  OpenElementOrThrow();
  m_elementStack.pop_back();
}

void CXmlDocument::StartCounting() {
  m_contentSize = 0;
  m_contentLimit = std::max(CLimits::GetMaxContentSize(), std::uint64_t{CLimits::GetMaxContentGrowth()} * m_inputSize);
}

void CXmlDocument::ThrowContentTooLarge() const {
  throw CQnException(FormatString("The content of the document exceeds the limit of %llu bytes",
                                  static_cast<unsigned long long>(m_contentLimit)));
}

CXmlElement* CXmlDocument::OpenElementOrThrow() const {
  if (m_elementStack.empty()) throw CQnException("No element is open");
  return m_elementStack.back();
}

void CXmlDocument::CheckDepth() const {
  unsigned int const limit = CLimits::GetMaxElementDepth();
  if (m_elementStack.size() >= limit) ThrowNestedTooDeep(limit);
}

void CXmlDocument::AddElementAttribute(CXmlElement* element, std::string localName, std::string value,
                                       std::string namespaceUri) {
  CountContent(kNodeCharge + localName.size() + value.size() + namespaceUri.size());
  element->AddAttribute(std::move(localName), std::move(value), std::move(namespaceUri));
}

void CXmlDocument::AddElementAttribute(CXmlElement* element, CXmlName const* name, std::string value) {
  CountContent(ContentOf(*name) + value.size());
  element->AddAttribute(name, std::move(value));
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, char const* text, unsigned long length) {
  char const* const end = text + strnlen(text, length);
  CountContent(static_cast<std::size_t>(end - text));
  while (text != end) {
    auto const left = static_cast<std::size_t>(end - text);
    auto const* const found = static_cast<char const*>(std::memchr(text, '\r', left));
    char const* const runEnd = found != nullptr ? found : end;
    if (runEnd != text) element->AppendText({text, static_cast<std::size_t>(runEnd - text)});
    text = found != nullptr ? found + 1 : end;
  }
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, char const* text) {
  AppendTextExcludingCR(element, text, ~0UL);
}

void CXmlDocument::SetNamespaceAlias(std::string prefix, std::string namespaceUri) {
  CountContent(prefix.size() + namespaceUri.size());
  m_namespaceAliases.insert_or_assign(std::move(prefix), std::move(namespaceUri));
}

}  // namespace Quillon9
