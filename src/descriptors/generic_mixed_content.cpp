// Generic elements that keep where their text stands between their children. A child has the size of the text in front
// of it; one that was added later has none.

#include <algorithm>
#include <cstddef>
#include <vector>

#include "descriptors/generic_size.h"
#include "quillon9/descriptors/generic_content.h"
#include "quillon9/xmlio/document.h"
#include "quillon9/xmlio/writer.h"
#include "xmlio/content_writing.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

namespace {

constexpr std::size_t kLastPlace = 0x7FFFFFFE;

std::uint32_t AsPlace(std::size_t size) { return static_cast<std::uint32_t>(std::min(size, kLastPlace)); }

bool HasNamesOf(CElement const& copy, CXmlElement const& source) {
  return copy.GetName() == source.GetLocalName() && copy.GetNamespace() == source.GetNamespaceURI();
}

}  // namespace

// The children of the source are the last ones here, but some may have been left out.
void CElement::KeepPlaces(CXmlElement const& source) {
  if (!source.IsMixed()) return;
  std::vector<CElement*> copies;
  for (CElement& child : *GetElements()) {
    child.m_place = kNoPlace;
    copies.push_back(&child);
  }
  std::size_t const count = XmlNodeAccess::CountChildren(source);
  auto next = copies.end() - static_cast<std::ptrdiff_t>(std::min(count, copies.size()));
  std::size_t place = 0;
  for (auto const& item : source.Content()) {
    place += item.GetText().size();
    if (item.IsText() || next == copies.end() || !HasNamesOf(**next, *item.GetElement())) continue;
    (*next)->m_place = AsPlace(place) & kNoPlace;
    ++next;
  }
  m_isMixed = 1;
}

// The same for the children.
void CElement::KeepMarkup(CXmlElement const& source) {
  m_markup.reset();
  std::vector<CMarkup> markup = XmlNodeAccess::MarkupIn(source);
  if (markup.empty()) return;
  std::size_t const children = m_elements.Get() != nullptr ? static_cast<std::size_t>(m_elements.Get()->GetCount()) : 0;
  std::size_t const count = XmlNodeAccess::CountChildren(source);
  for (CMarkup& item : markup) {
    GenericSize::CountMarkup(source, item);
    item.childrenInFront += children - std::min(count, children);
  }
  m_markup = std::make_unique<std::vector<CMarkup>>(std::move(markup));
}

std::vector<CMarkup> const& CElement::GetMarkup() const {
  static auto const& none = *new std::vector<CMarkup>();
  return m_markup != nullptr ? *m_markup : none;
}

void CElement::WriteWithMarkup(CXmlWriter* writer, char const* ns, CXmlSerializationContext const& ctx) const {
  if (!m_text.empty()) writer->PreserveSpace();
  WriteContentItems(*writer, Content(), *m_markup,
                    [&](CElement const& child) { CXmlObjectBase::ToXml_Int(&child, writer, false, ns, ctx, false); });
}

void CElement::AppendText(std::string_view text) {
  if (text.empty()) return;
  if (CElementCol const* const elements = m_elements.Get()) {
    if (!m_isMixed) {  // so far, the text follows the children
      for (CElement& child : *elements) child.m_place = 0;
    }
    for (int i = elements->GetCount(); i-- > 0;) {
      CSmartPtr<CElement> const child = elements->Item(i);
      if (child->m_place != kNoPlace) break;
      child->m_place = AsPlace(m_text.size()) & kNoPlace;
    }
  }
  m_isMixed = 1;
  m_text += text;
}

CContentList<CElement> CElement::Content() const {
  std::vector<CElement*> children;
  if (CElementCol const* const elements = m_elements.Get()) {
    for (CElement& child : *elements) children.push_back(&child);
  }
  // A child without a place stands directly in front of the next one.
  std::vector<std::size_t> places(children.size());
  std::size_t next = m_isMixed ? m_text.size() : 0;
  for (std::size_t i = children.size(); i-- > 0; places[i] = next) {
    if (m_isMixed && children[i]->m_place != kNoPlace) next = std::min<std::size_t>(next, children[i]->m_place);
  }
  CContentList<CElement> content;
  std::string_view const text = m_text;
  std::size_t at = 0;
  for (std::size_t i = 0; i < children.size(); ++i) {
    if (places[i] > at) content.emplace_back(text.substr(at, places[i] - at));
    at = places[i];
    content.emplace_back(*children[i]);
  }
  if (at < text.size()) content.emplace_back(text.substr(at));
  return content;
}

}  // namespace Quillon9
