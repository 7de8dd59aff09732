#pragma once

#include <memory>

namespace Quillon9::detail {

/// What few values of a class have, in memory of its own that the others do not take. A copy owns a copy of it. For
/// internal use.
template <class Part>
class RarePart {
 public:
  RarePart() = default;
  /// Copy the part, or take it over.
  ///@{
  RarePart(RarePart const& other) {
    if (other.m_part != nullptr) m_part = std::make_unique<Part>(*other.m_part);
  }
  RarePart& operator=(RarePart const& other) {
    if (m_part != nullptr || other.m_part != nullptr) *this = RarePart(other);
    return *this;
  }
  RarePart(RarePart&& other) = default;
  RarePart& operator=(RarePart&& other) = default;
  ///@}

  /// The part if there is one; otherwise null.
  Part const* Find() const { return m_part.get(); }
  /// The part, which is made if there is none.
  Part& Make() {
    if (m_part == nullptr) m_part = std::make_unique<Part>();
    return *m_part;
  }
  /// Leave no part.
  void Drop() { m_part = nullptr; }

 private:
  std::unique_ptr<Part> m_part;
};

}  // namespace Quillon9::detail
