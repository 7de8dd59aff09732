#pragma once

namespace Quillon9 {

/// The Object of the calling thread, which is made when it is first asked for and destroyed with the other data of the
/// thread. Static objects and other data of the thread may be destroyed later and still use the library, so callers
/// must be able to do without. The destructor of Object must not ask for it.
template <class Object>
class PerThread {
 public:
  /// Null when the thread has destroyed it already.
  static Object* Find() {
    if (t_isGone) return nullptr;
    static thread_local Holder holder;
    return &holder.object;
  }

 private:
  struct Holder {
    ~Holder() { t_isGone = true; }
    Object object;
  };
  static inline thread_local bool t_isGone = false;  // has no destructor, so it can be read until the thread is gone
};

}  // namespace Quillon9
