#include "failing_allocations.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "base/address_sanitizer.h"  // QN_ADDRESS_SANITIZER

namespace {

std::atomic<long> g_live{0};
std::atomic<long> g_octets{0};
thread_local bool t_isArmed = false;
thread_local bool t_hasFailed = false;
thread_local bool t_keepsFailing = false;
thread_local unsigned long t_passing = 0;
thread_local std::size_t t_bytesTaken = 0;

bool MustFail(std::size_t size) {
  t_bytesTaken += size;
  if (!t_isArmed) return false;
  if (t_passing > 0) {
    --t_passing;
    return false;
  }
  if (t_hasFailed && !t_keepsFailing) return false;
  t_hasFailed = true;
  return true;
}

long OctetsOf(void* memory) { return static_cast<long>(malloc_usable_size(memory) + sizeof(std::size_t)); }

void* Count(void* memory) {
  if (memory == nullptr) return nullptr;
  g_live.fetch_add(1, std::memory_order_relaxed);
  g_octets.fetch_add(OctetsOf(memory), std::memory_order_relaxed);
  return memory;
}

void CountFreed(void* memory) {
  if (memory == nullptr) return;
  g_live.fetch_sub(1, std::memory_order_relaxed);
  g_octets.fetch_sub(OctetsOf(memory), std::memory_order_relaxed);
}

}  // namespace

namespace Quillon9::Testing {

FailingAllocations::FailingAllocations(unsigned long passing, Shortage shortage) {
  t_passing = passing;
  t_hasFailed = false;
  t_keepsFailing = shortage == Shortage::Lasts;
  t_isArmed = true;
}

FailingAllocations::~FailingAllocations() { t_isArmed = false; }

bool FailingAllocations::HasFailed() { return t_hasFailed; }

long CountLiveAllocations() { return g_live.load(); }

std::size_t CountBytesTaken() { return t_bytesTaken; }

long CountLiveOctets() { return g_octets.load(); }

}  // namespace Quillon9::Testing

#if defined(QN_ADDRESS_SANITIZER) || defined(QN_THREAD_SANITIZER)

bool Quillon9::Testing::AreCLibrariesIncluded() { return false; }

namespace {

void* New(std::size_t size) {
  void* const memory = MustFail(size) ? nullptr : Count(std::malloc(size != 0 ? size : 1));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void Delete(void* memory) {
  CountFreed(memory);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) { return New(size); }
void* operator new[](std::size_t size) { return New(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
  return MustFail(size) ? nullptr : Count(std::malloc(size != 0 ? size : 1));
}
void* operator new[](std::size_t size, std::nothrow_t const& tag) noexcept { return operator new(size, tag); }
void operator delete(void* memory) noexcept { Delete(memory); }
void operator delete[](void* memory) noexcept { Delete(memory); }
void operator delete(void* memory, std::size_t) noexcept { Delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Delete(memory); }
void operator delete(void* memory, std::nothrow_t const&) noexcept { Delete(memory); }
void operator delete[](void* memory, std::nothrow_t const&) noexcept { Delete(memory); }

#else

bool Quillon9::Testing::AreCLibrariesIncluded() { return true; }

// The program's malloc replaces that of libc for every library in it, and forwards to it. operator new ends here as
// well.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) noexcept {
  if (!MustFail(size)) return Count(__libc_malloc(size));
  errno = ENOMEM;
  return nullptr;
}

void* calloc(std::size_t count, std::size_t size) noexcept {
  if (!MustFail(count * size)) return Count(__libc_calloc(count, size));
  errno = ENOMEM;
  return nullptr;
}

void* realloc(void* memory, std::size_t size) noexcept {
  if (memory == nullptr) return malloc(size);
  if (size == 0) {
    free(memory);
    return nullptr;
  }
  if (MustFail(size)) {
    errno = ENOMEM;
    return nullptr;
  }
  long const before = OctetsOf(memory);
  void* const moved = __libc_realloc(memory, size);
  if (moved != nullptr) g_octets.fetch_add(OctetsOf(moved) - before, std::memory_order_relaxed);
  return moved;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  if (!MustFail(size)) return Count(__libc_memalign(alignment, size));
  errno = ENOMEM;
  return nullptr;
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  void* const result = aligned_alloc(alignment, size);
  if (result == nullptr) return ENOMEM;
  *memory = result;
  return 0;
}

void free(void* memory) noexcept {
  CountFreed(memory);
  __libc_free(memory);
}

// The first use of a thread-local object that has a destructor registers it with libc, which ends the process when it
// has no memory for that. No code above libc can prevent this, so this allocation always passes.
int __cxa_thread_atexit_impl(void (*destructor)(void*), void* object, void* library);
int __cxa_thread_atexit(void (*destructor)(void*), void* object, void* library) noexcept {
  bool const wasArmed = t_isArmed;
  t_isArmed = false;
  int const result = __cxa_thread_atexit_impl(destructor, object, library);
  t_isArmed = wasArmed;
  return result;
}

}  // extern "C"

#endif
