#include "quillon9/xmlio/element.h"

#include <memory>
#include <utility>

#include "xmlio/tree_memory.h"

namespace Quillon9 {

namespace {

constexpr std::string_view kSchemaInstance = "http://www.w3.org/2001/XMLSchema-instance";
constexpr std::string_view kNamespaceDeclarations = "http://www.w3.org/2000/xmlns/";

bool IsSchemaMachinery(std::string_view namespaceUri) {
  return namespaceUri == kSchemaInstance || namespaceUri == kNamespaceDeclarations;
}

/// The bit in CXmlElement::m_attributes that marks a pointer to the table instead of the last attribute.
constexpr std::uintptr_t kIsAttributeTable = 1;

CTreeAttributes* TableOf(std::uintptr_t attributes) {
  bool const isTable = (attributes & kIsAttributeTable) != 0;
  return isTable ? reinterpret_cast<CTreeAttributes*>(attributes & ~kIsAttributeTable) : nullptr;
}

/// The tree element that is being deleted: its destructor records where the storage came from, which `operator delete`
/// can no longer find out.
thread_local struct {
  void const* element;
  CTreeMemory* memory;
} t_deleted = {nullptr, nullptr};

}  // namespace

// ---- Attributes

CXmlAttribute::CXmlAttribute(std::string localName, std::string_view value, std::string namespaceUri) {
  auto name = std::make_unique<CXmlName>();
  name->namespaceUri = std::move(namespaceUri);
  name->localName = std::move(localName);
  m_value.Append(value, nullptr);
  m_name = name.release();
}

CXmlAttribute::~CXmlAttribute() {
  m_value.Free(m_name->memory);
  if (m_name->memory == nullptr) delete m_name;
}

bool CXmlAttribute::IsNilAttribute() const { return GetLocalName() == "nil" && IsSchemaMachinery(GetNamespaceURI()); }

bool CXmlAttribute::IsNamespaceAttribute() const {
  if (!IsSchemaMachinery(GetNamespaceURI())) return false;
  std::string const& name = GetLocalName();
  return name == "xmlns" || name == "type" || name == "schemaLocation" || name == "noNamespaceSchemaLocation";
}

void CXmlAttribute::Dispose() noexcept {
  CTreeMemory* const memory = m_name->memory;
  if (memory == nullptr) {
    delete this;
  } else {
    m_value.Free(memory);
    memory->Free(this, sizeof(CXmlAttribute));
  }
}

// ---- The element itself

CXmlElement::CXmlElement(CXmlDocument const* document) : m_name(new CXmlName{{}, {}, nullptr, document}) {}

CXmlElement::~CXmlElement() {
  DeleteChildren();
  FreeContents();
  if (CTreeMemory* const memory = Memory()) {
    t_deleted = {this, memory};
  } else {
    delete m_name;
  }
}

void* CXmlElement::operator new(std::size_t size) { return CTreeMemory::AllocateAlone(size); }

void* CXmlElement::operator new(std::size_t size, CTreeMemory& memory) { return memory.Allocate(size); }

void CXmlElement::operator delete(void* node, CTreeMemory& memory) noexcept { memory.Free(node, sizeof(CXmlElement)); }

void CXmlElement::operator delete(void* node, std::size_t) noexcept {
  if (t_deleted.element != node) return CTreeMemory::FreeAlone(node);
  t_deleted.element = nullptr;
  t_deleted.memory->FreeDetached(node);
}

CXmlDocument const* CXmlElement::GetDocument() const {
  CTreeMemory const* const memory = Memory();
  return memory != nullptr ? memory->GetDocument() : m_name->document;
}

void CXmlElement::SetElementName(std::string_view localName) {
  if (CTreeMemory* const memory = Memory()) {
    m_name = memory->ShareName(GetNamespaceURI(), localName);
  } else {
    OwnName().localName = std::string(localName);  // copied first: it may be part of the text it replaces
  }
}

void CXmlElement::SetNamespace(std::string_view namespaceUri) {
  if (CTreeMemory* const memory = Memory()) {
    m_name = memory->ShareName(namespaceUri, GetLocalName());
  } else {
    OwnName().namespaceUri = std::string(namespaceUri);
  }
}

void CXmlElement::AppendText(char const* text, int length) {
  if (length > 0) AppendText(std::string_view(text, static_cast<std::size_t>(length)));
}

// ---- Its attributes

CXmlAttribute* CXmlElement::LastAttribute() const {
  CTreeAttributes* const held = TableOf(m_attributes);
  return held != nullptr ? held->table.back() : reinterpret_cast<CXmlAttribute*>(m_attributes);
}

CXmlAttribute* CXmlElement::GetFirstAttribute() const {
  if (m_attributes == 0) return nullptr;
  return reinterpret_cast<CXmlAttribute*>(LastAttribute()->m_next & ~CXmlAttribute::kIsLast);
}

std::vector<CXmlAttribute*> const& CXmlElement::GetAttributes() const {
  static auto const* const none = new std::vector<CXmlAttribute*>;
  if (m_attributes == 0) return *none;
  if (TableOf(m_attributes) == nullptr) {
    auto attributes = std::make_unique<CTreeAttributes>(Memory());
    for (auto* next = GetFirstAttribute(); next != nullptr; next = next->GetNextAttribute()) {
      attributes->table.push_back(next);
    }
    m_attributes = reinterpret_cast<std::uintptr_t>(attributes.release()) | kIsAttributeTable;
  }
  return TableOf(m_attributes)->table;
}

std::string const& CXmlElement::GetAttribute(std::string const& localName, std::string const& namespaceUri) const {
  static auto const* const absent = new std::string;
  for (auto const* next = GetFirstAttribute(); next != nullptr; next = next->GetNextAttribute()) {
    if (next->GetLocalName() == localName && next->GetNamespaceURI() == namespaceUri) return next->GetValue();
  }
  return *absent;
}

void CXmlElement::AddAttribute(std::string_view localName, std::string_view value, std::string_view namespaceUri) {
  if (CTreeMemory* const memory = Memory()) return AddAttribute(memory->ShareName(namespaceUri, localName), value);
  auto attribute = std::make_unique<CXmlAttribute>(std::string(localName), value, std::string(namespaceUri));
  LinkAttribute(attribute.get());
  attribute.release();
}

void CXmlElement::AddAttribute(CXmlName const* name, std::string_view value) {
  CTreeMemory& memory = *Memory();
  auto* const attribute = new (memory.Allocate(sizeof(CXmlAttribute))) CXmlAttribute(*name);
  attribute->m_value.Append(value, &memory);
  LinkAttribute(attribute);
}

void CXmlElement::LinkAttribute(CXmlAttribute* attribute) {
  auto const place = reinterpret_cast<std::uintptr_t>(attribute);
  CXmlAttribute* const last = m_attributes != 0 ? LastAttribute() : nullptr;
  if (CTreeAttributes* const held = TableOf(m_attributes)) {
    held->table.push_back(attribute);
  } else {
    m_attributes = place;
  }
  attribute->m_next = (last != nullptr ? last->m_next : place) | CXmlAttribute::kIsLast;
  if (last != nullptr) last->m_next = place;
}

// ---- Its children

CXmlElement* CXmlElement::CreateNewChildElement() {
  CTreeMemory const* const memory = Memory();
  return memory != nullptr ? AddChild(memory->NoName()) : AddChild(new CXmlElement(GetDocument()));
}

CXmlElement* CXmlElement::RemoveLastChildElement() {
  if (m_lastChild == nullptr) return nullptr;
  CXmlElement* before = nullptr;
  for (auto* child = GetFirstElement(); child != m_lastChild; child = child->GetNextSiblingElement()) before = child;
  CXmlElement* const removed = RemoveLastChild(before);
  if (CTreeMemory* const memory = Memory()) memory->CountDetached();
  return removed;
}

/// The caller knows the child in front of it.
CXmlElement* CXmlElement::RemoveLastChild(CXmlElement* before) noexcept {
  CXmlElement* const removed = std::exchange(m_lastChild, before);
  if (before != nullptr) before->m_next = removed->m_next;
  removed->m_next = kIsLast;
  return removed;
}

/// Return the first child, with \p rest linked after the last one; this element has no children afterwards.
CXmlElement* CXmlElement::TakeChildren(CXmlElement* rest) noexcept {
  CXmlElement* const first = GetFirstElement();
  CXmlElement* const last = std::exchange(m_lastChild, nullptr);
  last->m_next = rest != nullptr ? reinterpret_cast<std::uintptr_t>(rest) : kIsLast;
  return first;
}

// Iterative, because the document determines the depth of the tree: each element passes its children to the chain
// before it is destroyed.
void CXmlElement::DeleteChildren() noexcept {
  CXmlElement* chain = m_lastChild != nullptr ? TakeChildren(nullptr) : nullptr;
  while (chain != nullptr) {
    CXmlElement* const element = chain;
    chain = element->GetNextSiblingElement();
    if (element->m_lastChild != nullptr) chain = element->TakeChildren(chain);
    element->Dispose();
  }
}

/// Free everything except the children and the name.
void CXmlElement::FreeContents() noexcept {
  CXmlAttribute* next = GetFirstAttribute();
  while (next != nullptr) {
    CXmlAttribute* const attribute = next;
    next = attribute->GetNextAttribute();
    attribute->Dispose();
  }
  delete TableOf(m_attributes);
  m_text.Free(Memory());
}

/// Destroy an element that no caller owns.
void CXmlElement::Dispose() noexcept {
  CTreeMemory* const memory = Memory();
  if (memory == nullptr) {
    delete this;
    return;
  }
  DeleteChildren();
  FreeContents();
  memory->Free(this, sizeof(CXmlElement));
}

}  // namespace Quillon9
