#pragma once

#include <cstddef>

/// Lets a test count the allocations of this program and make them fail: operator new and, unless a sanitizer prevents
/// it, the malloc of the C libraries.
namespace Quillon9::Testing {

#if defined(__SANITIZE_THREAD__)
#define QN_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QN_THREAD_SANITIZER 1
#endif
#endif

enum class Shortage {
  One,   ///< a single allocation fails
  Lasts  ///< it fails, and so does every later one
};

/// While an object exists, allocations of the calling thread fail as described. One at a time in a thread.
class FailingAllocations {
 public:
  /// \p passing allocations pass before the first one fails.
  FailingAllocations(unsigned long passing, Shortage shortage);
  ~FailingAllocations();
  FailingAllocations(FailingAllocations const&) = delete;
  FailingAllocations& operator=(FailingAllocations const&) = delete;

  /// Whether an allocation of the calling thread has failed since the last scope began.
  static bool HasFailed();
};

/// The number of allocations, by all threads, that are not freed yet.
long CountLiveAllocations();

/// The bytes that the calling thread has requested so far, including those already freed.
std::size_t CountBytesTaken();

/// The octets of the live allocations, including the overhead of the allocator.
long CountLiveOctets();

/// Whether the allocations of the C libraries fail and count too.
bool AreCLibrariesIncluded();

}  // namespace Quillon9::Testing
