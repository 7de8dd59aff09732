#pragma once

#include "descriptors/failed_scans.h"
#include "quillon9/descriptors/element_info.h"

namespace Quillon9Data {

/// What \p member is when a group tries it. A member of a class that a program derived is Kind::kOther, since it may do
/// anything.
Quillon9::FailedScans::Kind KindOf(CElementInfo const& member);

/// Reads the child type of the members that hold an object.
struct ChildTypes {
  template <class Member>
  static XmlElementType Of(CElementInfo const& member) {
    return static_cast<Member const&>(member).m_childType;
  }
};

}  // namespace Quillon9Data
