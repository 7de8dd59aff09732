#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/base/failures.h"

namespace Quillon9 {

/// What a failure knows about its cause beside its text. All failures of a chain share one object, which changes only
/// while the read or write that it ends is unwound. A program may keep a failure and throw it again, later or in several
/// threads at once: only the thread that created a detail may change it, and only while it may not have been kept.
struct CFailureDetail {
  FailureKind kind = FailureKind_Other;
  /// Who created it, and how many were created before it.
  ///@{
  void const* thread = nullptr;
  std::uint64_t number = 0;
  ///@}
  /// The node of the tree where the fault is, which lives until the read has ended; null if unknown. These are pointers
  /// to CXmlElement and CXmlAttribute, which are unknown on this floor.
  ///@{
  void const* element = nullptr;
  void const* attribute = nullptr;
  ///@}
  bool isAtEnd = false;   ///< the place is the end tag of the element
  bool isTold = false;    ///< a sink knows it, and ended the read
  bool hasPlace = false;  ///< place has been found
  CFailurePlace place;
};

/// The only friend of the exceptions.
struct FailureAccess {
  /// The detail of \p failure, which it gets if it has none.
  static CFailureDetail& DetailOf(CQnException& failure) {
    if (failure.m_detail == nullptr) failure.m_detail = NewDetail({});
    return *failure.m_detail;
  }
  /// A copy of \p detail of this thread, with a number of its own.
  static std::shared_ptr<CFailureDetail> NewDetail(CFailureDetail const& detail) {
    auto created = std::make_shared<CFailureDetail>(detail);
    created->thread = &t_thread;
    created->number = s_created.fetch_add(1, std::memory_order_relaxed) + 1;
    return created;
  }
  /// The detail if this thread created it after \p count others; otherwise null.
  static CFailureDetail* FindDetail(CQnException const& failure, std::uint64_t count) {
    CFailureDetail* const detail = failure.m_detail.get();
    return detail != nullptr && detail->thread == &t_thread && detail->number > count ? detail : nullptr;
  }
  /// The number of details that were created so far.
  static std::uint64_t CountDetails() { return s_created.load(std::memory_order_relaxed); }
  /// Give \p failure, and those of its inner failures that only its chain holds, another detail.
  static void SetDetail(CQnException& failure, std::shared_ptr<CFailureDetail> const& detail) {
    failure.m_detail = detail;
    CQnException* inner = failure.m_inner;
    for (; inner != nullptr && inner->m_outer.load(std::memory_order_acquire) == 1; inner = inner->m_inner) {
      inner->m_detail = detail;
    }
  }

 private:
  static inline thread_local char t_thread = 0;
  static inline std::atomic<std::uint64_t> s_created{0};
};

/// The innermost failure of the chain of \p failure.
inline CQnException const& CauseOf(CQnException const& failure) {
  CQnException const* cause = &failure;
  while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
  return *cause;
}

/// The failure itself, with its kind. For throw statements: `throw OfKind(FailureKind_Count, CQnException(...));`
template <class Exception>
Exception OfKind(FailureKind kind, Exception failure) {
  FailureAccess::DetailOf(failure).kind = kind;
  return failure;
}

/// Give \p failure this kind, unless its cause is known to be of another one.
inline void GiveKind(CQnException& failure, FailureKind kind) {
  CFailureDetail& detail = FailureAccess::DetailOf(failure);
  if (detail.kind == FailureKind_Other) detail.kind = kind;
}

}  // namespace Quillon9
