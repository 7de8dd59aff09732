#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Quillon9 {

/// Bytes of the calling thread's stack that are still free; nothing where they cannot be told: on a coroutine's stack,
/// or without memory to ask.
std::optional<std::size_t> StackLeft();

/// Where the stack of a thread lies.
struct ThreadStack {
  std::uintptr_t lowest = 0;
  std::size_t size = 0;     ///< 0 when it could not be found out, or was not asked for yet
  std::size_t reserve = 0;  ///< what has to stay free of it: 64 KiB, or a quarter of one smaller than 256 KiB

  /// Fill this with the calling thread's.
  void Find();
  /// Whether so little is left of this stack, the calling thread's, that recursion has to end. What converts a value
  /// and what throws a failure fits in the rest.
  bool IsShort() {
    if (size == 0) Find();
    std::size_t const left = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) - lowest;
    return left < size && left < reserve;
  }
};

/// What recursion keeps for each thread, in one place: to find the data of a thread takes a call.
struct ThreadNesting {
  std::uint32_t elements = 0;
  std::uint32_t groups = 0;  ///< since the last element
  std::uint32_t all = 0;
  ThreadStack stack;

  /// That of the calling thread. Not in the header: where compilers see that it is thread-local data they look for it
  /// again at each use.
  static ThreadNesting& OfThread();
};

}  // namespace Quillon9
