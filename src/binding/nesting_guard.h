#pragma once

#include <cstdint>

#include "binding/nesting_failure.h"
#include "binding/stack_left.h"
#include "quillon9/binding/exceptions.h"
#include "quillon9/binding/limits.h"

namespace Quillon9 {

/// Bounds the recursion of generated classes on this thread: nested elements, nested groups without a tag inside one
/// element, and both together, of which there may be four times as many. A document's elements are counted when its
/// tree is built; this counts what trees and object graphs made by hand nest, and groups that hold each other without
/// end. A thread whose stack is too small for what the limit admits fails as well, instead of overrunning it.
class NestingGuard {
 public:
  /// \p hasTag is whether an element is entered, and not a group without a tag.
  explicit NestingGuard(bool hasTag) : m_levels(t_levels), m_outer(m_levels) {
    ++m_levels.all;
    if (hasTag) {
      ++m_levels.elements;
      m_levels.groups = 0;
    } else {
      ++m_levels.groups;
    }
    std::uint32_t const limit = CLimits::GetMaxElementDepth();
    bool const isWithinTotal = m_levels.all / 4 <= limit;
    bool const isWithinLimit = m_levels.elements <= limit && m_levels.groups <= limit && isWithinTotal;
    if (isWithinLimit && !IsStackShort()) return;
    m_levels = m_outer;
    if (isWithinLimit) throw CQnException("The element nesting exceeds the stack of the thread");
    ThrowNestedTooDeep(limit);
  }
  ~NestingGuard() { m_levels = m_outer; }
  NestingGuard(NestingGuard const&) = delete;
  NestingGuard& operator=(NestingGuard const&) = delete;

 private:
  struct Levels {
    std::uint32_t elements;
    std::uint32_t groups;
    std::uint32_t all;
  };
  inline static thread_local Levels t_levels = {0, 0, 0};

  Levels& m_levels;  // those of the thread, found once
  Levels m_outer;
};

}  // namespace Quillon9
