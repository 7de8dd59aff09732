#pragma once

#include <string>

#include "quillon9/xmlio/document.h"

namespace Quillon9::Testing {

/// A tree on one line: `{uri}name @{uri}name=value 'text' (children)`, with empty parts left out.
inline std::string Dump(CXmlElement const& element) {
  auto const name = [](std::string const& uri, std::string const& local) {
    return (uri.empty() ? "" : "{" + uri + "}") + local;
  };
  std::string text = name(element.GetNamespaceURI(), element.GetLocalName());
  for (CXmlAttribute const* attribute : element.GetAttributes()) {
    text += " @" + name(attribute->GetNamespaceURI(), attribute->GetLocalName()) + "=" + attribute->GetValue();
  }
  if (!element.GetText().empty()) text += " '" + element.GetText() + "'";
  for (auto const* child = element.GetFirstElement(); child != nullptr; child = child->GetNextSiblingElement()) {
    text += " (" + Dump(*child) + ")";
  }
  return text;
}

}  // namespace Quillon9::Testing
