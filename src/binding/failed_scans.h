#pragma once

#include <vector>

#include "quillon9/xmlio/document.h"

namespace Quillon9 {

/// Remembers, while one element is read under the option that ignores unknown children, through which of them a member
/// of a group without a tag has looked in vain. The reading of the element skips one child after a failed group and
/// asks the group again; without this the group would look through the same children for each of them, and a document
/// of unknown children would cost the square of its size, or its cube where groups nest.
///
/// Each element has its own, so that nothing outlives the tree that it is about.
class FailedScans {
 public:
  /// \p active is whether the option is on; otherwise nothing is remembered, also not for the element around this one.
  explicit FailedScans(bool active) : m_outer(t_current) { t_current = active ? this : nullptr; }
  ~FailedScans() { t_current = m_outer; }
  FailedScans(FailedScans const&) = delete;
  FailedScans& operator=(FailedScans const&) = delete;

  /// The first child from \p cursor on that \p member may take, as far as is known; null for none.
  static CXmlElement* Skip(void const* member, CXmlElement const* parent, CXmlElement* cursor) {
    Scan* const scan = t_current != nullptr && cursor != nullptr ? t_current->Find(member, parent) : nullptr;
    if (scan == nullptr || scan->start == scan->stop) return cursor;
    if (cursor != scan->start && cursor != scan->start->GetNextSiblingElement()) return cursor;
    scan->start = cursor;
    return scan->stop;
  }
  /// \p member took none of the children from \p start to the one in front of \p stop, or to the last.
  static void Note(void const* member, CXmlElement const* parent, CXmlElement* start, CXmlElement* stop) {
    if (t_current == nullptr || start == nullptr) return;
    Scan* const scan = t_current->Find(member, parent);
    if (scan != nullptr) {
      scan->start = start;
      scan->stop = stop;
    } else {
      t_current->m_scans.push_back({member, parent, start, stop});
    }
  }

  // What a collection holds decides on its answer, so that one that took something meanwhile makes a scan worthless.
  static unsigned long Takes() { return t_current != nullptr ? t_current->m_takes : 0; }
  static void CountTake() {
    if (t_current != nullptr) ++t_current->m_takes;
  }

  /// Whether the descriptors \p table are known to take no attribute of \p parent.
  static bool TakesNoAttribute(void const* table, CXmlElement const* parent) {
    return t_current != nullptr && t_current->Find(table, parent) != nullptr;
  }
  static void NoteNoAttribute(void const* table, CXmlElement const* parent) {
    if (t_current != nullptr) t_current->m_scans.push_back({table, parent, nullptr, nullptr});
  }

 private:
  struct Scan {
    void const* member;
    CXmlElement const* parent;
    CXmlElement* start;
    CXmlElement* stop;
  };

  // There are no more entries than members in the groups of one class.
  Scan* Find(void const* member, CXmlElement const* parent) {
    for (Scan& scan : m_scans) {
      if (scan.member == member && scan.parent == parent) return &scan;
    }
    return nullptr;
  }

  inline static thread_local FailedScans* t_current = nullptr;

  FailedScans* m_outer;
  std::vector<Scan> m_scans;
  unsigned long m_takes = 0;
};

}  // namespace Quillon9
