#include "quillon9/xmlio/document.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

#include "base/failure_detail.h"
#include "base/nesting_failure.h"
#include "base/text_arguments.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"
#include "quillon9/xmlio/writer.h"
#include "xmlio/node_access.h"
#include "xmlio/tree_memory.h"

namespace Quillon9 {

namespace {

/// The charge for an element with mixed content besides the places of its children.
constexpr std::size_t kMixedCharge = 128;
/// Few documents nest deeper.
constexpr std::size_t kUsualDepth = 16;

std::size_t ChargeOf(CXmlName const& name) { return static_cast<TreeName const&>(name).charge; }

}  // namespace

CXmlDocument::~CXmlDocument() { CXmlDocument::Cleanup(); }

CTreeMemory& CXmlDocument::Memory() {
  if (m_memory == nullptr) m_memory = CTreeMemory::For(*this);
  return *m_memory;
}

CXmlName const* CXmlDocument::ShareName(std::string_view namespaceUri, std::string_view localName) {
  return Memory().ShareName(namespaceUri, localName);
}

void CXmlDocument::Cleanup() {
  ++m_cleanups;
  XmlNodeAccess::DropTree(*this);
  m_inputData = nullptr;
  m_ownedInput.reset();
  m_inputSize = 0;
  m_contentSize = 0;
  m_contentLimit = kNoLimit;
}

void XmlNodeAccess::DropTree(CXmlDocument& document) noexcept {
  CXmlElement* const root = std::exchange(document.m_documentElement, nullptr);
  if (document.m_memory != nullptr) std::exchange(document.m_memory, nullptr)->Abandon(root);
  document.m_elementStack.clear();
  document.m_previous.clear();
  document.m_places.clear();
  document.m_namespaceAliases.clear();
}

std::string CXmlDocument::LookupNamespaceFromAlias(char const* prefix) const {
  auto const found = m_namespaceAliases.find(OrEmpty(prefix));
  return found != m_namespaceAliases.end() ? found->second : std::string();
}

// A filter may remove the elements by which the place of a declaration is known.
std::string const* XmlNodeAccess::NoteNamespace(CXmlDocument& document, std::string_view prefix, std::string_view uri,
                                                NamespaceDeclarations::Kind kind) {
  if (document.m_filter != nullptr) return nullptr;
  CXmlElement* const parent = document.GetOpenElement();
  CXmlElement* const before = parent != nullptr ? LastChild(*parent) : nullptr;
  return &document.Memory().Declarations().Add(parent, before, prefix, uri, kind);
}

std::string const* XmlNodeAccess::DeclareNamespace(CXmlDocument& document, std::string_view prefix,
                                                   std::string_view uri) {
  document.CountContent(CTreeMemory::kNodeCharge + prefix.size() + uri.size());
  std::string const* const kept = NoteNamespace(document, prefix, uri);
  document.m_namespaceAliases.insert_or_assign(std::string(prefix), uri);
  return kept;
}

void XmlNodeAccess::AddMarkup(CXmlDocument& document, std::string target, std::string text) {
  document.CountContent(TreeMarkup::kCharge + target.size() + text.size());
  CXmlElement const* const parent = document.GetOpenElement();
  CXmlElement const* const after = parent != nullptr ? LastChild(*parent) : document.m_documentElement;
  std::size_t const textInFront = parent != nullptr ? TextOf(*parent).size() : 0;
  document.Memory().MarkupToChange().Add(parent, after, textInFront, std::move(target), std::move(text));
}

std::vector<std::pair<std::string, std::string>> XmlNodeAccess::PrefixesOf(CXmlDocument const& document) {
  if (document.m_memory == nullptr) return {};
  return document.m_memory->Declarations().ForDocumentElement();
}

bool CXmlDocument::LookupNamespace(CXmlElement const& element, std::string_view prefix,
                                   std::string& namespaceUri) const {
  namespaceUri.clear();
  if (prefix == "xml") {
    namespaceUri = CXmlWriter::XML_NAMESPACE;
    return true;
  }
  if (m_filter != nullptr) {
    namespaceUri = LookupNamespaceFromAlias(std::string(prefix).c_str());
    return !namespaceUri.empty();
  }
  std::string const* const found =
      m_memory != nullptr ? m_memory->Declarations().Find(m_documentElement, element, prefix) : nullptr;
  if (found != nullptr) namespaceUri = *found;
  return !namespaceUri.empty();
}

CXmlElement* CXmlDocument::AddDocElement(char const* namespaceUri, char const* localName) {
  return AddDocElement(std::string_view(OrEmpty(namespaceUri)), OrEmpty(localName));
}

CXmlElement* CXmlDocument::AddDocElement(std::string_view namespaceUri, std::string_view localName) {
  return AddDocElement(ShareName(namespaceUri, localName));
}

CXmlElement* CXmlDocument::AddDocElement(CXmlName const* name) {
  if (m_documentElement != nullptr) throw CQnException("The document has a document element already");
  CheckDepth();
  CountContent(ChargeOf(*name));
  m_elementStack.reserve(kUsualDepth);
  m_documentElement = XmlNodeAccess::NewElement(*name, Memory());
  if (m_filter != nullptr) m_previous.push_back(nullptr);
  return XmlNodeAccess::Open(*this, m_documentElement);
}

CXmlElement* CXmlDocument::AddChildElement(char const* namespaceUri, char const* localName) {
  return AddChildElement(std::string_view(OrEmpty(namespaceUri)), OrEmpty(localName));
}

CXmlElement* CXmlDocument::AddChildElement(std::string_view namespaceUri, std::string_view localName) {
  return AddChildElement(ShareName(namespaceUri, localName));
}

CXmlElement* CXmlDocument::AddChildElement(CXmlName const* name) {
  CXmlElement* const parent = OpenElementOrThrow();
  CheckDepth();
  if (m_filter != nullptr) m_previous.push_back(XmlNodeAccess::LastChild(*parent));
  return XmlNodeAccess::Open(*this, XmlNodeAccess::AddCountedChild(*this, *parent, *name));
}

void CXmlDocument::NotePlace(CXmlElement const& parent) {
  m_places.push_back(XmlNodeAccess::TextOf(parent).size());
  ++m_elementStack.back().placed;
}

void CXmlDocument::EndElement() { XmlNodeAccess::EndElement(*this); }

void CXmlDocument::CloseElement() { XmlNodeAccess::CloseElement(*this); }

void CXmlDocument::EndFilteredElement() {
  CXmlElement* const element = OpenElementOrThrow();
  CXmlElement* const previous = m_previous.back();
  CloseElement();
  bool const isDropped = AskFilter(element);
  if (m_elementStack.empty()) return;
  CXmlElement* const parent = m_elementStack.back().element;
  bool const isDetached = XmlNodeAccess::LastChild(*parent) != element;  // by the filter
  if (isDropped || isDetached) DropPlaceOfLastChild();
  if (isDropped && !isDetached) XmlNodeAccess::Dispose(XmlNodeAccess::RemoveLastChild(*parent, previous));
}

void CXmlDocument::DropPlaceOfLastChild() {
  if (m_elementStack.back().placed == 0) return;
  --m_elementStack.back().placed;
  m_places.pop_back();
}

// The innermost open element is complete. Most have only white space beside their children, and nothing is kept then.
void CXmlDocument::SettlePlaces() {
  OpenElement& open = m_elementStack.back();
  auto const first = m_places.end() - std::ptrdiff_t{open.placed};
  if (open.element->IsMixed()) {
    std::size_t const children = XmlNodeAccess::CountChildren(*open.element);
    CChildPlaces const* const known = XmlNodeAccess::PlacesOf(*open.element);
    bool const isBuiltElsewhere = open.placed > children || (known != nullptr && known->others.size() > open.placed);
    if (!isBuiltElsewhere) {
      CountContent(kMixedCharge + std::size_t{open.placed} * sizeof(std::size_t));
      XmlNodeAccess::KeepPlaces(*open.element, {children - open.placed, {first, m_places.end()}});
    }
  }
  m_places.resize(m_places.size() - open.placed);
  open.placed = 0;
}

bool CXmlDocument::AskFilter(CXmlElement* element) {
  std::uint64_t const cleanups = m_cleanups;
  bool const answer = m_filter(element);
  if (cleanups != m_cleanups) throw CQnException("The filter changed the document that is being read");
  return answer;
}

void CXmlDocument::StartCounting() {
  std::uint64_t const grown = std::uint64_t{CLimits::GetMaxContentGrowth()} * m_inputSize;
  m_contentSize = 0;
  m_contentLimit = std::min(std::max(CLimits::GetMaxContentSize(), grown), CLimits::GetMaxContentTotal());
}

void CXmlDocument::ThrowContentTooLarge() const {
  throw OfKind(FailureKind_Limit,
               CQnException(FormatString("The content of the document exceeds the limit of %llu bytes",
                                         static_cast<unsigned long long>(m_contentLimit))));
}

void CXmlDocument::CheckDocumentType() {
  if (CLimits::GetAllowDocumentType()) return;
  throw OfKind(FailureKind_Limit, CQnException("The document has a document type declaration, which is not allowed"));
}

void CXmlDocument::ThrowNoneOpen() { throw CQnException("No element is open"); }

void CXmlDocument::CheckDepth() const {
  unsigned int const limit = CLimits::GetMaxElementDepth();
  if (m_elementStack.size() >= limit) ThrowNestedTooDeep(limit);
}

void CXmlDocument::AddElementAttribute(CXmlElement* element, std::string_view localName, std::string_view value,
                                       std::string_view namespaceUri) {
  CountContent(CTreeMemory::ChargeOfNode(namespaceUri.size() + localName.size()) + value.size());
  element->AddAttribute(localName, value, namespaceUri);
}

void CXmlDocument::AddElementAttribute(CXmlElement* element, CXmlName const* name, std::string_view value) {
  CountContent(ChargeOf(*name) + value.size());
  XmlNodeAccess::AddAttribute(*element, *name, value);
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, char const* text, unsigned long length) {
  char const* const end = text + strnlen(text, length);
  CountContent(static_cast<std::size_t>(end - text));
  while (text != end) {
    auto const left = static_cast<std::size_t>(end - text);
    auto const* const found = static_cast<char const*>(std::memchr(text, '\r', left));
    char const* const runEnd = found != nullptr ? found : end;
    std::string_view const run(text, static_cast<std::size_t>(runEnd - text));
    if (element == GetOpenElement()) {
      XmlNodeAccess::AppendText(*element, run);
    } else if (!run.empty()) {
      element->AppendText(run);
    }
    text = found != nullptr ? found + 1 : end;
  }
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, char const* text) {
  AppendTextExcludingCR(element, text, ~0UL);
}

void CXmlDocument::SetNamespaceAlias(std::string prefix, std::string namespaceUri) {
  XmlNodeAccess::DeclareNamespace(*this, prefix, namespaceUri);
}

}  // namespace Quillon9
