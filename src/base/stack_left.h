#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Quillon9 {

/// Bytes of the calling thread's stack that are still free; empty where they cannot be determined: on a coroutine's
/// stack, or when out of memory.
std::optional<std::size_t> StackLeft();

/// Where the stack of a thread lies.
struct ThreadStack {
  std::uintptr_t lowest = 0;
  std::size_t size = 0;     ///< 0 when it could not be determined, or has not been queried yet
  std::size_t reserve = 0;  ///< the part that must stay free: 64 KiB, or a quarter of a stack smaller than 256 KiB

  /// Set this to the calling thread's stack.
  void Find();
  /// Whether so little is left of this stack, the calling thread's, that recursion has to end. The rest is enough for
  /// code that converts a value or throws a failure.
  bool IsShort() {
    if (size == 0) Find();
    std::size_t const left = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) - lowest;
    return left < size && left < reserve;
  }
};

/// The per-thread state of recursion, in one place because finding the data of a thread takes a call.
struct ThreadNesting {
  std::uint32_t elements = 0;
  std::uint32_t groups = 0;  ///< since the last element
  std::uint32_t all = 0;
  ThreadStack stack;

  /// Whether recursion has to end for want of stack. The first levels need so little that libc is not asked for them,
  /// which for the main thread reads a file.
  bool IsStackShort() { return (all > kShallow || stack.size != 0) && stack.IsShort(); }

  static constexpr std::uint32_t kShallow = 8;

  /// The state of the calling thread. Not in the header: where compilers see that it is thread-local data they look it
  /// up again at each use.
  static ThreadNesting& OfThread();
};

}  // namespace Quillon9
