#pragma once

// Marks the parts of a block that must not be accessed for AddressSanitizer; without it the macros do nothing.

#if defined(__SANITIZE_ADDRESS__)
#define QN_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QN_ADDRESS_SANITIZER 1
#endif
#endif
#ifdef QN_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(address, size) (static_cast<void>(address), static_cast<void>(size))
#endif
