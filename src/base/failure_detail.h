#pragma once

#include <memory>
#include <string>
#include <utility>

#include "quillon9/base/exceptions.h"
#include "quillon9/base/failures.h"

namespace Quillon9 {

/// What a failure knows about its cause beside its text. All failures of a chain share one object, which changes only
/// while the read or write that it ends is unwound.
struct CFailureDetail {
  FailureKind kind = FailureKind_Other;
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
    if (failure.m_detail == nullptr) failure.m_detail = std::make_shared<CFailureDetail>();
    return *failure.m_detail;
  }
  /// The detail, or null.
  static CFailureDetail const* FindDetail(CQnException const& failure) { return failure.m_detail.get(); }
};

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
