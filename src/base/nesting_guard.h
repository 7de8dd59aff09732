#pragma once

#include <cstdint>

#include "base/failure_detail.h"
#include "base/nesting_failure.h"
#include "base/stack_left.h"
#include "quillon9/base/exceptions.h"
#include "quillon9/base/limits.h"

namespace Quillon9 {

/// Bounds the recursion of generated classes on this thread: nested elements, nested groups without a tag inside one
/// element, and both together, of which there may be four times as many. A document's elements are counted when its
/// tree is built; this class counts the nesting in trees and object graphs made by hand, and in groups that contain
/// each other without end. A thread whose stack is too small for the limit fails as well, instead of overrunning it.
class NestingGuard {
 public:
  /// \p hasTag is whether an element is entered, not a group without a tag.
  explicit NestingGuard(bool hasTag)
      : m_nesting(ThreadNesting::OfThread()), m_groups(m_nesting.groups), m_hasTag(hasTag) {
    ++m_nesting.all;
    m_nesting.elements += hasTag;
    m_nesting.groups = hasTag ? 0 : m_groups + 1;
    std::uint32_t const limit = CLimits::GetMaxElementDepth();
    bool const isWithinTotal = m_nesting.all / 4 <= limit;
    bool const isWithinLimit = m_nesting.elements <= limit && m_nesting.groups <= limit && isWithinTotal;
    if (isWithinLimit && !m_nesting.IsStackShort()) return;
    Leave();
    if (isWithinLimit)
      throw OfKind(FailureKind_Limit, CQnException("The element nesting exceeds the stack of the thread"));
    ThrowNestedTooDeep(limit);
  }
  ~NestingGuard() { Leave(); }
  NestingGuard(NestingGuard const&) = delete;
  NestingGuard& operator=(NestingGuard const&) = delete;

 private:
  void Leave() {
    --m_nesting.all;
    m_nesting.elements -= m_hasTag;
    m_nesting.groups = m_groups;
  }

  ThreadNesting& m_nesting;
  std::uint32_t const m_groups;  // around this one
  bool const m_hasTag;
};

}  // namespace Quillon9
