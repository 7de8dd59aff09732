#pragma once

#include <vector>

#include "quillon9/descriptors/element_info.h"
#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// Remembers, while one element is read under the option that ignores unknown children, which descriptors looked
/// through all remaining children in vain. The sequence driver skips one child after a failed group and asks again;
/// without this the group would look through the rest once for each child, and a document of unknown children would
/// cost the square of its size. Nobody can tell: the children do not change meanwhile.
class FailedScans {
 public:
  /// \p active is whether the option is on; otherwise nothing happens here.
  explicit FailedScans(bool active) : m_active(active), m_outer(t_current) {
    if (m_active) t_current = this;
  }
  ~FailedScans() {
    if (m_active) t_current = m_outer;
  }
  FailedScans(FailedScans const&) = delete;
  FailedScans& operator=(FailedScans const&) = delete;

  /// Whether \p descriptor is known to find nothing from \p cursor, a child of \p parent, to the last child.
  static bool Knows(Quillon9Data::CElementInfo const* descriptor, CXmlElement const* parent, CXmlElement* cursor) {
    Scan* const scan = t_current != nullptr ? t_current->Find(descriptor, parent) : nullptr;
    if (scan == nullptr) return false;
    if (cursor != scan->start && cursor != scan->start->GetNextSiblingElement()) return false;
    if (cursor != nullptr) scan->start = cursor;
    return true;
  }
  static void Note(Quillon9Data::CElementInfo const* descriptor, CXmlElement const* parent, CXmlElement* start) {
    if (t_current == nullptr || start == nullptr) return;
    Scan* const scan = t_current->Find(descriptor, parent);
    if (scan != nullptr) {
      scan->start = start;
    } else {
      t_current->m_scans.push_back({descriptor, parent, start});
    }
  }

 private:
  struct Scan {
    Quillon9Data::CElementInfo const* descriptor;
    CXmlElement const* parent;
    CXmlElement* start;  // from here on there is none
  };

  Scan* Find(Quillon9Data::CElementInfo const* descriptor, CXmlElement const* parent) {
    for (Scan& scan : m_scans) {
      if (scan.descriptor == descriptor && scan.parent == parent) return &scan;
    }
    return nullptr;
  }

  inline static thread_local FailedScans* t_current = nullptr;

  bool m_active;
  FailedScans* m_outer;
  std::vector<Scan> m_scans;
};

}  // namespace Quillon9
