#include "base/stack_left.h"

#include <pthread.h>

#include <algorithm>

namespace Quillon9 {

namespace {

constexpr std::size_t kReserve = 64 * 1024;

}  // namespace

// Called once for each thread, because libc reads a file for the main thread.
void ThreadStack::Find() {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
  void* start = nullptr;
  pthread_attr_getstack(&attributes, &start, &size);
  pthread_attr_destroy(&attributes);
  lowest = reinterpret_cast<std::uintptr_t>(start);
  reserve = std::min(kReserve, size / 4);
}

ThreadNesting& ThreadNesting::OfThread() {
  static thread_local ThreadNesting nesting;
  return nesting;
}

std::optional<std::size_t> StackLeft() {
  ThreadStack& stack = ThreadNesting::OfThread().stack;
  if (stack.size == 0) stack.Find();
  auto const here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (here < stack.lowest || here - stack.lowest >= stack.size) return std::nullopt;
  return here - stack.lowest;
}

}  // namespace Quillon9
