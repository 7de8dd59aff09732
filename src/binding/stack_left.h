#pragma once

#include <cstddef>
#include <optional>

namespace Quillon9 {

/// Bytes of the calling thread's stack that are still free; nothing where they cannot be told: on a coroutine's stack,
/// or without memory to ask.
std::optional<std::size_t> StackLeft();

/// Whether so little is left that recursion has to end: 64 KiB, or a quarter of a stack that is smaller than 256 KiB.
/// What converts a value and what throws a failure fits in it.
bool IsStackShort();

}  // namespace Quillon9
