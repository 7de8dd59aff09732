#pragma once

namespace Quillon9 {

/// The Object of the calling thread, which is created on first use and destroyed with the other data of the thread.
/// Static objects and other data of the thread may be destroyed later and still use the library, so callers must be
/// able to work without it. The destructor of Object must not call Find().
template <class Object>
class PerThread {
 public:
  /// Return the object, or null when the thread has already destroyed it.
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
