#pragma once

#include <string>
#include <utility>

#include "quillon9/binding/exceptions.h"

namespace Quillon9 {

/// Throws a `Wrapper` with \p message and \p cause as its inner exception. The chain of \p cause is handed over,
/// not cloned: a fault below n open elements costs n copies of a text, not n * n.
template <class Wrapper>
[[noreturn]] void ThrowWrapped(std::string message, CQnException& cause) {
  Wrapper wrapper(std::move(message));
  wrapper.AdoptInner(CQnException::DetachToHeap(cause));
  throw wrapper;
}

}  // namespace Quillon9
