#pragma once

#include <vector>

#include "quillon9/base/smart_ptr.h"
#include "quillon9/binding/object_base.h"

namespace Quillon9 {

/// Destroys nested objects with constant stack, because a document may choose the depth. The first object that is
/// destroyed on a thread releases, one after the other, the objects that those below it leave here.
class DeferredRelease {
 public:
  /// Release \p object, which becomes null, now or when the outermost destruction reaches it.
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

  /// For code that is unaware of a destruction around it: while a Pause exists, what this code destroys is released at
  /// once.
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
