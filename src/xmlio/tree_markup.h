#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "quillon9/fwd.h"
#include "quillon9/xmlio/markup.h"

namespace Quillon9 {

/// The comments and processing instructions of a tree that keeps them, which few do.
class TreeMarkup {
 public:
  /// Note one in \p parent, after its child \p after or in front of all, with that much text of the parent in front of
  /// it. A null \p parent stands for the document.
  void Add(CXmlElement const* parent, CXmlElement const* after, std::size_t textInFront, std::string target,
           std::string text) {
    m_places[parent].push_back({std::move(target), std::move(text), after, textInFront});
  }
  /// The child \p removed of \p parent is gone, and \p before is the one in front of it.
  void ForgetChild(CXmlElement const& parent, CXmlElement const& removed, CXmlElement const* before) {
    auto const found = m_places.find(&parent);
    if (found == m_places.end()) return;
    for (Entry& entry : found->second) {
      if (entry.after == &removed) entry.after = before;
    }
  }
  void Forget(CXmlElement const& parent) { m_places.erase(&parent); }

  /// Those in \p parent in document order.
  std::vector<CMarkup> In(CXmlElement const& parent) const;
  /// Those around the document element, after which CMarkup::childrenInFront is 1.
  std::vector<CMarkup> InDocument() const;

  /// The charge for one besides its texts.
  static constexpr std::size_t kCharge = 128;

 private:
  struct Entry {
    std::string target;
    std::string text;
    CXmlElement const* after;
    std::size_t textInFront;
  };

  std::unordered_map<CXmlElement const*, std::vector<Entry>> m_places;
};

}  // namespace Quillon9
