#pragma once

#include <cstddef>
#include <cstdint>

#include "quillon9/xmlio/element.h"

namespace Quillon9 {

/// Bounds the work of one read that ignores unknown children. A group without a tag may begin at every child, inside a
/// group that may also begin at every child. Each attempt has effects that must not be left out, so the work is bounded
/// instead, in proportion to the size of the tree and of the tables.
///
/// A step is an attempt at a group, or an attribute, an element or 32 bytes of text that a reader passes.
class ReadingAllowance {
 public:
  /// For a read that begins at \p root, which is borrowed.
  explicit ReadingAllowance(CXmlElement const& root) : m_root(root), m_limit(t_base), m_patience(t_base) {}
  ReadingAllowance(ReadingAllowance const&) = delete;
  ReadingAllowance& operator=(ReadingAllowance const&) = delete;

  /// \throws CQnException "Reading the element [%s] takes too many attempts at groups without a tag" with the name of
  ///         the root.
  void Spend(std::size_t steps) {
    t_steps += steps;
    m_spent += steps;
    if (m_spent > m_limit) Extend();
  }
  /// Whether so many steps have been spent that readers should save work wherever this changes only the number of
  /// calls.
  bool IsShort() const { return m_spent > m_patience || t_isHasty; }
  /// Record that \p count different members have been tried for the children of one element.
  void NoteMembers(std::size_t count) {
    if (count > m_members) m_members = count;
  }

  /// The size of \p element in steps, without the elements below its children.
  static std::size_t SizeOf(CXmlElement const& element);

  /// For tests: all steps of this thread so far; the steps that any read may take before IsShort() can be true; how
  /// often a read may pass its tree for each member; whether IsShort() is always true.
  ///@{
  inline static thread_local std::uint64_t t_steps = 0;
  inline static thread_local std::size_t t_base = 1000000;
  inline static thread_local std::size_t t_times = 4;
  inline static thread_local bool t_isHasty = false;
  ///@}

 private:
  void Extend();

  CXmlElement const& m_root;
  std::size_t m_limit;
  std::size_t m_patience;
  std::size_t m_spent = 0;
  std::size_t m_members = 0;
  std::size_t m_size = 0;  // 0 until it is determined
};

}  // namespace Quillon9
