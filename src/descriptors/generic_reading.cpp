#include "descriptors/generic_reading.h"

#include <utility>
#include <vector>

#include "descriptors/mixed_access.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

CXmlAttribute const* FindTypeAttribute(CXmlElement const& element) {
  return element.FindAttribute("type", "http://www.w3.org/2001/XMLSchema-instance");
}

bool HasOnlyLayout(CXmlElement const& element) {
  return element.GetFirstElement() != nullptr &&
         element.GetTextView().find_first_not_of(" \t\r\n") == std::string_view::npos;
}

namespace {

// Letters beyond ASCII are taken for parts of names.
bool BeginsName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<signed char>(c) < 0;
}
bool IsInName(char c) { return BeginsName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.'; }

/// Calls \p visit with what may be a prefix: a name, with a colon and another name after it.
template <class Visit>
void ForEachPrefix(std::string_view value, Visit visit) {
  for (std::size_t colon = value.find(':'); colon != value.npos; colon = value.find(':', colon + 1)) {
    if (colon + 1 == value.size() || !BeginsName(value[colon + 1])) continue;
    std::size_t begin = colon;
    while (begin != 0 && IsInName(value[begin - 1])) --begin;
    if (begin != colon && BeginsName(value[begin])) visit(value.substr(begin, colon - begin));
  }
}

/// Whether there is a colon, or a type that may have the default namespace.
bool HasPrefixes(CXmlElement const& element) {
  if (element.GetTextView().find(':') != std::string_view::npos) return true;
  for (CXmlAttribute const& attribute : element.Attributes()) {
    if (attribute.GetValueView().find(':') != std::string_view::npos) return true;
  }
  return element.GetFirstAttribute() != nullptr && FindTypeAttribute(element) != nullptr;
}

}  // namespace

namespace {

void NotePrefix(CXmlElement const& element, std::string_view prefix, CAttributeCol& attributes) {
  auto const* const known = attributes.GetPrefixes();
  if (known != nullptr && known->count(std::string(prefix)) != 0) return;
  std::string uri;
  if (prefix != "xml" && element.GetDocument()->LookupNamespace(element, prefix, uri)) {
    attributes.SetPrefix(std::string(prefix), uri);
  }
}

}  // namespace

void NotePrefixes(CXmlElement const& element, std::string_view value, CAttributeCol& attributes) {
  if (element.GetDocument() == nullptr) return;
  ForEachPrefix(value, [&](std::string_view prefix) { NotePrefix(element, prefix, attributes); });
}

void NotePrefixes(CXmlElement const& element, CAttributeCol& attributes) {
  if (element.GetDocument() == nullptr) return;
  for (CXmlAttribute const& attribute : element.Attributes()) {
    NotePrefixes(element, attribute.GetValueView(), attributes);
  }
  NotePrefixes(element, element.GetTextView(), attributes);
  CXmlAttribute const* const type = element.GetFirstAttribute() != nullptr ? FindTypeAttribute(element) : nullptr;
  if (type != nullptr && type->GetValueView().find(':') == std::string_view::npos) {
    NotePrefix(element, "", attributes);
  }
}

namespace {

/// Drop the layout, and keep where other text stands. \p copy has been read from \p source, so it has the same children.
/// Uses a list instead of the stack, since a document may nest deeply.
void SettleText(CXmlElement const& source, CElement& copy) {
  std::vector<std::pair<CXmlElement const*, CElement*>> open = {{&source, &copy}};
  while (!open.empty()) {
    auto const [from, to] = open.back();
    open.pop_back();
    if (HasPrefixes(*from)) NotePrefixes(*from, *to->GetAttributes());
    if (from->GetFirstElement() == nullptr) continue;
    if (HasOnlyLayout(*from)) {
      to->SetText("");
    } else {
      MixedAccess::KeepPlaces(*to, *from);
    }
    CXmlElement const* child = from->GetFirstElement();
    for (CElement& made : *to->GetElements()) {
      open.emplace_back(child, &made);
      child = child->GetNextSiblingElement();
    }
  }
}

}  // namespace

CSmartPtr<CElement> TakeGeneric(CXmlElement* parent, CXmlElement** cursor, CXmlSerializationContext const& ctx) {
  CSmartPtr<CElement> element = new CElement("");
  CXmlElement const& source = **cursor;
  *cursor = CXmlObjectBase::FromXml_Int(element.Get(), parent, *cursor, ctx);
  SettleText(source, *element);
  return element;
}

CSmartPtr<CElement> CopyGeneric(CXmlElement const& root) {
  CSmartPtr<CElement> element = new CElement("");
  element->CopyXmlElement(&root);
  SettleText(root, *element);
  return element;
}

}  // namespace Quillon9
