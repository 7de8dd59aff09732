#include "generated/generic_reading.h"

#include <utility>
#include <vector>

#include "descriptors/mixed_access.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

bool HasOnlyLayout(CXmlElement const& element) {
  return element.GetFirstElement() != nullptr &&
         element.GetTextView().find_first_not_of(" \t\r\n") == std::string_view::npos;
}

namespace {

/// Drop the layout, and keep where other text stands. \p copy has been read from \p source, so it has the same children. Uses a list instead of the stack, since a document
/// may nest deeply.
void SettleText(CXmlElement const& source, CElement& copy) {
  std::vector<std::pair<CXmlElement const*, CElement*>> open = {{&source, &copy}};
  while (!open.empty()) {
    auto const [from, to] = open.back();
    open.pop_back();
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
