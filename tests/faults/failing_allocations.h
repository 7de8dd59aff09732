#pragma once

#include <cstddef>

/// The allocations of this program, which a test can count and let fail: operator new, and where no sanitizer stands
/// in the way also the malloc of the C libraries.
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
  Lasts  ///< it fails, and so does every one behind it
};

/// While one exists, allocations of the calling thread fail as told. One at a time in a thread.
class FailingAllocations {
 public:
  /// \p passing allocations pass before the first that fails.
  FailingAllocations(unsigned long passing, Shortage shortage);
  ~FailingAllocations();
  FailingAllocations(FailingAllocations const&) = delete;
  FailingAllocations& operator=(FailingAllocations const&) = delete;

  /// Whether one of the calling thread failed since the last scope began.
  static bool HasFailed();
};

/// Allocations of all threads that were not freed yet.
long CountLiveAllocations();

/// Bytes that the calling thread has asked for until now, those that were freed again included.
std::size_t CountBytesTaken();

/// The octets of these, with what the allocator adds.
long CountLiveOctets();

/// Whether those of the C libraries fail and count too.
bool AreCLibrariesIncluded();

}  // namespace Quillon9::Testing
