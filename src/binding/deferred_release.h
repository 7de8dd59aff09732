#pragma once

#include <vector>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/object_base.h"

namespace Quillon9 {

/// Lets the destruction of nested objects take constant stack, since the depth may be a document's choice: the first
/// one that is destroyed on a thread releases, one after the other, what those below it leave here.
class DeferredRelease {
 public:
  /// Release \p object, which becomes null, now or when the outermost destruction gets to it.
  template <class Object>
  static void Release(CSmartPtr<Object>& object) {
    if (t_pending != nullptr) {
      t_pending->push_back(object);
      object = nullptr;
      return;
    }
    Queue pending;
    pending.push_back(object);
    object = nullptr;
    t_pending = &pending;
    while (!pending.empty()) {
      CSmartPtr<CXmlObjectBase> const next = pending.back();
      pending.pop_back();
    }
    t_pending = nullptr;
  }

  /// While one exists, code that knows nothing of a destruction around it runs: what it destroys goes at once.
  class Pause {
   public:
    Pause() : m_pending(t_pending) { t_pending = nullptr; }
    ~Pause() { t_pending = m_pending; }
    Pause(Pause const&) = delete;
    Pause& operator=(Pause const&) = delete;

   private:
    std::vector<CSmartPtr<CXmlObjectBase>>* m_pending;
  };

 private:
  using Queue = std::vector<CSmartPtr<CXmlObjectBase>>;
  static inline thread_local Queue* t_pending = nullptr;
};

}  // namespace Quillon9
