#include "xmlio/tree_markup.h"

#include "quillon9/xmlio/document.h"

namespace Quillon9 {

std::vector<CMarkup> TreeMarkup::In(CXmlElement const& parent) const {
  std::vector<CMarkup> markup;
  auto const found = m_places.find(&parent);
  if (found == m_places.end()) return markup;
  CXmlElement const* passed = nullptr;
  CXmlElement const* next = parent.GetFirstElement();
  std::size_t count = 0;
  for (Entry const& entry : found->second) {
    for (; passed != entry.after && next != nullptr; next = next->GetNextSiblingElement()) {
      passed = next;
      ++count;
    }
    markup.push_back({entry.target, entry.text, count, entry.textInFront});
  }
  return markup;
}

std::vector<CMarkup> TreeMarkup::InDocument() const {
  std::vector<CMarkup> markup;
  auto const found = m_places.find(nullptr);
  if (found == m_places.end()) return markup;
  for (Entry const& entry : found->second) {
    markup.push_back({entry.target, entry.text, entry.after != nullptr ? std::size_t{1} : std::size_t{0}, 0});
  }
  return markup;
}

}  // namespace Quillon9
