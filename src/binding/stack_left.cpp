#include "binding/stack_left.h"

#include <pthread.h>

#include <algorithm>
#include <cstdint>

namespace Quillon9 {

namespace {

constexpr std::size_t kReserve = 64 * 1024;

struct Stack {
  std::uintptr_t lowest = 0;
  std::size_t size = 0;     ///< 0 when it could not be found out
  std::size_t reserve = 0;  ///< what has to stay free of it
};

Stack FindStack() {
  Stack stack;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return stack;
  void* lowest = nullptr;
  pthread_attr_getstack(&attributes, &lowest, &stack.size);
  pthread_attr_destroy(&attributes);
  stack.lowest = reinterpret_cast<std::uintptr_t>(lowest);
  stack.reserve = std::min(kReserve, stack.size / 4);
  return stack;
}

thread_local Stack t_stack;

/// Asked for once a thread: for the main thread libc reads a file.
Stack const& ThreadStack() {
  if (t_stack.size == 0) t_stack = FindStack();
  return t_stack;
}

}  // namespace

std::optional<std::size_t> StackLeft() {
  Stack const& stack = ThreadStack();
  auto const here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (here < stack.lowest || here - stack.lowest >= stack.size) return std::nullopt;
  return here - stack.lowest;
}

// As StackLeft() tells it, in one look: 2 % of the instructions of writing.
bool IsStackShort() {
  Stack const& stack = ThreadStack();
  std::size_t const left = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) - stack.lowest;
  return left < stack.size && left < stack.reserve;
}

}  // namespace Quillon9
