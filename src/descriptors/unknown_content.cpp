#include "quillon9/descriptors/unknown_content.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "descriptors/form_access.h"
#include "descriptors/generic_reading.h"
#include "descriptors/generic_size.h"
#include "descriptors/unknown_reading.h"
#include "quillon9/descriptors/generated_class.h"
#include "quillon9/xmlio/document.h"
#include "xmlio/node_access.h"

namespace Quillon9 {

CUnknownContent::CUnknownContent() : m_attributes(new CAttributeCol("", "##any", "")) {}

CUnknownContent::~CUnknownContent() = default;

bool CUnknownContent::IsEmpty() const {
  return m_items.empty() && m_documentMarkup.empty() && m_attributes->GetCount() == 0;
}

// ---- The object

CUnknownContent* CXmlGeneratedClass::GetUnknownContent() { return m_form != nullptr ? m_form->unknown.get() : nullptr; }

CUnknownContent const* CXmlGeneratedClass::GetUnknownContent() const {
  return m_form != nullptr ? m_form->unknown.get() : nullptr;
}

void CXmlGeneratedClass::DropUnknownContent() {
  if (m_form != nullptr) m_form->unknown.reset();
}

// ---- Reading

void UnknownReading::KeepIn(CXmlGeneratedClass& object, CXmlSerializationContext const& ctx) const {
  if (!HasRest()) return;
  auto unknown = std::make_unique<CUnknownContent>();
  KeepAttributes(*unknown);
  KeepChildren(*unknown, ctx);
  if (IsDocumentElement()) {
    unknown->GetDocumentMarkup() = XmlNodeAccess::MarkupIn(*m_element.GetDocument());
    for (CMarkup const& markup : unknown->GetDocumentMarkup()) GenericSize::CountMarkup(m_element, markup);
  }
  ObjectContent::Count(m_element, sizeof(CUnknownContent) + sizeof(ObjectForm) + sizeof(CAttributeCol));
  ObjectForm& form = FormAccess::ToChange(object);
  form.unknown = std::move(unknown);
  form.textSize = m_element.GetTextView().size();
}

bool UnknownReading::HasRest() const {
  for (CXmlAttribute const& attribute : m_element.Attributes()) {
    if (IsUnknown(attribute)) return true;
  }
  if (!m_isAll && XmlNodeAccess::CountChildren(m_element) != m_children.size()) return true;
  if (!XmlNodeAccess::MarkupIn(m_element).empty()) return true;
  return IsDocumentElement() && !XmlNodeAccess::MarkupIn(*m_element.GetDocument()).empty();
}

bool UnknownReading::IsUnknown(CXmlAttribute const& attribute) const {
  return m_attributes.count(&attribute) == 0 && !attribute.IsNamespaceAttribute() && !attribute.IsNilAttribute();
}

bool UnknownReading::IsDocumentElement() const {
  CXmlDocument const* const document = m_element.GetDocument();
  return document != nullptr && document->GetDocumentElement() == &m_element;
}

void UnknownReading::KeepAttributes(CUnknownContent& unknown) const {
  CAttributeCol& kept = *unknown.GetAttributes();
  for (CXmlAttribute const& attribute : m_element.Attributes()) {
    if (!IsUnknown(attribute)) continue;
    GenericSize::CountAttribute(m_element, attribute);
    kept.Add(attribute.GetLocalName().c_str(), attribute.GetValueView().data(), attribute.GetNamespaceURI().c_str());
    NotePrefixes(m_element, attribute.GetValueView(), kept);
  }
}

namespace {

/// For each child of \p element, the size of the text in front of it, if that is mixed with the children.
std::vector<std::size_t> PlacesOf(CXmlElement const& element) {
  std::vector<std::size_t> places;
  if (!element.IsMixed()) return places;
  std::size_t place = 0;
  for (auto const& item : element.Content()) {
    place += item.GetText().size();
    if (!item.IsText()) places.push_back(place);
  }
  return places;
}

}  // namespace

// Blank text in front of an item is part of the layout.
void UnknownReading::KeepChildren(CUnknownContent& unknown, CXmlSerializationContext const& ctx) const {
  std::vector<CMarkup> markup = XmlNodeAccess::MarkupIn(m_element);
  if (m_isAll && markup.empty()) return;
  std::vector<std::size_t> const places = PlacesOf(m_element);
  std::string_view const text = m_element.GetTextView();
  std::size_t const layout = std::min(text.find_first_not_of(" \t\r\n"), text.size());
  std::size_t known = 0;
  auto const keep = [&](CUnknownItem item, std::size_t textInFront) {
    item.childrenInFront = known;
    item.textInFront = textInFront > layout ? textInFront : 0;
    unknown.GetItems().push_back(std::move(item));
  };
  auto next = markup.begin();
  auto const keepMarkup = [&](std::size_t childrenInFront) {
    for (; next != markup.end() && next->childrenInFront <= childrenInFront; ++next) {
      GenericSize::CountMarkup(m_element, *next);
      keep({std::move(*next), nullptr}, next->textInFront);
    }
  };
  auto taken = m_children.begin();
  std::size_t index = 0;
  auto* const parent = const_cast<CXmlElement*>(&m_element);  // a read changes nothing in it
  for (CXmlElement* child = parent->GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    keepMarkup(index);
    bool const isTaken = m_isAll || (taken != m_children.end() && *taken == child);
    if (isTaken) {
      ++known;
      if (!m_isAll) ++taken;
    } else {
      CXmlElement* cursor = child;
      ObjectContent::Count(m_element, sizeof(CUnknownItem));
      CUnknownItem item;
      item.element = TakeGeneric(parent, &cursor, ctx);
      keep(std::move(item), index < places.size() ? places[index] : 0);
    }
    ++index;
  }
  keepMarkup(index);
}

}  // namespace Quillon9
