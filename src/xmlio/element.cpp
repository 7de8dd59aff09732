#include "quillon9/xmlio/element.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "text/blank_text.h"
#include "xmlio/node_access.h"
#include "xmlio/node_text.h"
#include "xmlio/reserved_namespaces.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

namespace {

constexpr std::string_view kSchemaInstance = "http://www.w3.org/2001/XMLSchema-instance";

bool IsSchemaMachinery(std::string_view namespaceUri) {
  return namespaceUri == kSchemaInstance || namespaceUri == kDeclarationsNamespace;
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
  auto name = std::make_unique<TreeName>(std::move(namespaceUri), std::move(localName), nullptr);
  NodeText::Append(m_value, value, nullptr);
  m_name = name.release();
}

CXmlAttribute::~CXmlAttribute() {
  CTreeMemory* const memory = XmlNodeAccess::MemoryOf(*this);
  NodeText::Free(m_value, memory);
  if (memory == nullptr) delete &XmlNodeAccess::NameOf(*this);
}

std::string const& CXmlAttribute::GetValue() const {
  return NodeText::GetString(m_value, XmlNodeAccess::MemoryOf(*this));
}

std::string_view CXmlAttribute::GetValueView() const { return XmlNodeAccess::TextOf(*this); }

bool CXmlAttribute::IsNilAttribute() const { return GetLocalName() == "nil" && IsSchemaMachinery(GetNamespaceURI()); }

bool CXmlAttribute::IsNamespaceAttribute() const {
  if (!IsSchemaMachinery(GetNamespaceURI())) return false;
  std::string const& name = GetLocalName();
  return name == "xmlns" || name == "type" || name == "schemaLocation" || name == "noNamespaceSchemaLocation";
}

void XmlNodeAccess::Dispose(CXmlAttribute* attribute) noexcept {
  CTreeMemory* const memory = MemoryOf(*attribute);
  if (memory == nullptr) {
    delete attribute;
  } else {
    NodeText::Free(attribute->m_value, memory);
    memory->Free(attribute, sizeof(CXmlAttribute));
  }
}

// ---- The element itself

CXmlElement::CXmlElement(CXmlDocument const* document) : m_name(new TreeName({}, {}, document)) {}

CXmlElement::~CXmlElement() {
  XmlNodeAccess::DeleteChildren(*this);
  XmlNodeAccess::FreeContents(*this);
  if (CTreeMemory* const memory = XmlNodeAccess::MemoryOf(*this)) {
    t_deleted = {this, memory};
  } else {
    delete &XmlNodeAccess::NameOf(*this);
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
  TreeName const& name = XmlNodeAccess::NameOf(*this);
  return name.memory != nullptr ? name.memory->GetDocument() : name.document;
}

namespace {

/// The name of a standalone element.
CXmlName& OwnName(CXmlElement& element) { return const_cast<CXmlName&>(element.GetNames()); }

}  // namespace

std::string const& CXmlElement::GetText() const { return NodeText::GetString(m_text, XmlNodeAccess::MemoryOf(*this)); }

std::string_view CXmlElement::GetTextView() const { return XmlNodeAccess::TextOf(*this); }

void CXmlElement::SetElementName(std::string_view localName) {
  if (CTreeMemory* const memory = XmlNodeAccess::MemoryOf(*this)) {
    m_name = memory->ShareName(GetNamespaceURI(), localName);
  } else {
    OwnName(*this).localName = std::string(localName);  // copied first: it may be part of the text it replaces
  }
}

void CXmlElement::SetNamespace(std::string_view namespaceUri) {
  if (CTreeMemory* const memory = XmlNodeAccess::MemoryOf(*this)) {
    m_name = memory->ShareName(namespaceUri, GetLocalName());
  } else {
    OwnName(*this).namespaceUri = std::string(namespaceUri);
  }
}

void CXmlElement::AppendText(char const* text, int length) {
  if (length > 0) AppendText(std::string_view(text, static_cast<std::size_t>(length)));
}

void CXmlElement::AppendText(std::string_view text) {
  if (m_lastChild != nullptr && !text.empty()) XmlNodeAccess::MakePlaces(*this);
  XmlNodeAccess::AppendText(*this, text);
}

bool CXmlElement::AppendPlainText(std::string_view text) {
  bool const isAppended = XmlNodeAccess::AppendPlainText(*this, text);
  if (isAppended && m_lastChild != nullptr) XmlNodeAccess::MakePlaces(*this);
  return isAppended;
}

CChildPlaces& XmlNodeAccess::MakePlaces(CXmlElement& element) {
  if (PlacesOf(element) == nullptr) KeepPlaces(element, {CountChildren(element), {}});
  return *PlacesOf(element);
}

std::size_t XmlNodeAccess::CountChildren(CXmlElement const& element) {
  auto const children = element.Children();
  return static_cast<std::size_t>(std::distance(children.begin(), children.end()));
}

// ---- Its content

bool CXmlElement::IsMixed() const { return m_lastChild != nullptr && !IsBlankText(GetTextView()); }

namespace {

/// The size of the text in front of the child with this \p index.
std::size_t PlaceOf(std::size_t index, CChildPlaces const* places) {
  if (places == nullptr || index < places->leading) return 0;
  std::size_t const other = index - places->leading;
  return other < places->others.size() ? places->others[other] : std::string_view::npos;
}

template <class Element>
CContentList<Element> ContentOf(Element& element) {
  CContentList<Element> content;
  bool const isLayout = element.GetFirstElement() != nullptr && !element.IsMixed();
  std::string_view rest = isLayout ? std::string_view() : element.GetTextView();
  std::size_t passed = 0;
  auto const addText = [&](std::size_t end) {
    std::string_view const run = rest.substr(0, end - std::min(passed, end));
    if (!run.empty()) content.emplace_back(run);
    rest.remove_prefix(run.size());
    passed += run.size();
  };
  CChildPlaces const* const places = XmlNodeAccess::PlacesOf(element);
  std::size_t index = 0;
  for (Element& child : element.Children()) {
    addText(PlaceOf(index++, places));
    content.emplace_back(child);
  }
  addText(std::string_view::npos);
  return content;
}

}  // namespace

CContentList<CXmlElement> CXmlElement::Content() { return ContentOf(*this); }

CContentList<CXmlElement const> CXmlElement::Content() const { return ContentOf(*this); }

// ---- Its attributes

CXmlAttribute* XmlNodeAccess::LastAttribute(CXmlElement const& element) {
  CTreeAttributes* const held = TableOf(element.m_attributes);
  return held != nullptr ? held->table.back() : reinterpret_cast<CXmlAttribute*>(element.m_attributes);
}

CXmlAttribute* XmlNodeAccess::FirstAttribute(CXmlElement const& element) {
  if (element.m_attributes == 0) return nullptr;
  return reinterpret_cast<CXmlAttribute*>(LastAttribute(element)->m_next & ~CXmlAttribute::kIsLast);
}

CXmlAttribute* CXmlElement::GetFirstAttribute() const { return XmlNodeAccess::FirstAttribute(*this); }

std::vector<CXmlAttribute*> const& CXmlElement::GetAttributes() const {
  static auto const* const none = new std::vector<CXmlAttribute*>;
  if (m_attributes == 0) return *none;
  if (TableOf(m_attributes) == nullptr) {
    auto attributes = std::make_unique<CTreeAttributes>(XmlNodeAccess::MemoryOf(*this));
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
  if (CTreeMemory* const memory = XmlNodeAccess::MemoryOf(*this)) {
    return XmlNodeAccess::AddAttribute(*this, *memory->ShareName(namespaceUri, localName), value);
  }
  auto attribute = std::make_unique<CXmlAttribute>(std::string(localName), value, std::string(namespaceUri));
  XmlNodeAccess::LinkAttribute(*this, attribute.get());
  attribute.release();
}

void XmlNodeAccess::AddAttribute(CXmlElement& element, CXmlName const& name, std::string_view value) {
  CTreeMemory& memory = *MemoryOf(element);
  auto* const attribute = new (memory.Allocate(sizeof(CXmlAttribute))) CXmlAttribute(name);
  NodeText::Append(attribute->m_value, value, &memory);
  LinkAttribute(element, attribute);
}

void XmlNodeAccess::LinkAttribute(CXmlElement& element, CXmlAttribute* attribute) {
  auto const place = reinterpret_cast<std::uintptr_t>(attribute);
  CXmlAttribute* const last = element.m_attributes != 0 ? LastAttribute(element) : nullptr;
  if (CTreeAttributes* const held = TableOf(element.m_attributes)) {
    held->table.push_back(attribute);
  } else {
    element.m_attributes = place;
  }
  attribute->m_next = (last != nullptr ? last->m_next : place) | CXmlAttribute::kIsLast;
  if (last != nullptr) last->m_next = place;
}

// ---- Its children

CXmlElement* CXmlElement::CreateNewChildElement() {
  if (m_text != 0) {
    XmlNodeAccess::MakePlaces(*this).others.push_back(GetTextView().size());
  }
  CTreeMemory const* const memory = XmlNodeAccess::MemoryOf(*this);
  if (memory != nullptr) return XmlNodeAccess::AddChild(*this, *memory->NoName());
  return XmlNodeAccess::AddChild(*this, new CXmlElement(GetDocument()));
}

CXmlElement* CXmlElement::RemoveLastChildElement() {
  if (m_lastChild == nullptr) return nullptr;
  CXmlElement* before = nullptr;
  for (auto* child = GetFirstElement(); child != m_lastChild; child = child->GetNextSiblingElement()) before = child;
  CXmlElement* const removed = XmlNodeAccess::RemoveLastChild(*this, before);
  if (CTreeMemory* const memory = XmlNodeAccess::MemoryOf(*this)) memory->CountDetached();
  return removed;
}

CXmlElement* XmlNodeAccess::RemoveLastChild(CXmlElement& parent, CXmlElement* before) noexcept {
  if (CChildPlaces* const places = PlacesOf(parent)) {
    if (!places->others.empty()) {
      places->others.pop_back();
    } else if (places->leading > 0) {
      --places->leading;
    }
  }
  CXmlElement* const removed = std::exchange(parent.m_lastChild, before);
  CTreeMemory const* const memory = MemoryOf(parent);
  if (memory != nullptr && memory->Markup() != nullptr) memory->Markup()->ForgetChild(parent, *removed, before);
  if (before != nullptr) before->m_next = removed->m_next;
  removed->m_next = CXmlElement::kIsLast;
  return removed;
}

CXmlElement* XmlNodeAccess::TakeChildren(CXmlElement& parent, CXmlElement* rest) noexcept {
  CXmlElement* const first = parent.GetFirstElement();
  CXmlElement* const last = std::exchange(parent.m_lastChild, nullptr);
  last->m_next = rest != nullptr ? reinterpret_cast<std::uintptr_t>(rest) : CXmlElement::kIsLast;
  return first;
}

// Iterative, because the document determines the depth of the tree: each element passes its children to the chain
// before it is destroyed.
void XmlNodeAccess::DeleteChildren(CXmlElement& parent) noexcept {
  CXmlElement* chain = parent.m_lastChild != nullptr ? TakeChildren(parent, nullptr) : nullptr;
  while (chain != nullptr) {
    CXmlElement* const element = chain;
    chain = element->GetNextSiblingElement();
    if (element->m_lastChild != nullptr) chain = TakeChildren(*element, chain);
    Dispose(element);
  }
}

void XmlNodeAccess::FreeContents(CXmlElement& element) noexcept {
  CXmlAttribute* next = FirstAttribute(element);
  while (next != nullptr) {
    CXmlAttribute* const attribute = next;
    next = attribute->GetNextAttribute();
    Dispose(attribute);
  }
  delete TableOf(element.m_attributes);
  CTreeMemory* const memory = MemoryOf(element);
  if (memory != nullptr && memory->Markup() != nullptr) memory->Markup()->Forget(element);
  NodeText::Free(element.m_text, memory);
}

void XmlNodeAccess::Dispose(CXmlElement* element) noexcept {
  CTreeMemory* const memory = MemoryOf(*element);
  if (memory == nullptr) {
    delete element;
    return;
  }
  DeleteChildren(*element);
  FreeContents(*element);
  memory->Free(element, sizeof(CXmlElement));
}

}  // namespace Quillon9
