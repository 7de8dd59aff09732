#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <functional>

namespace Quillon9::Testing {

/// Runs \p work on a thread that has \p size bytes of stack.
inline void RunWithStack(std::size_t size, std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, size));
  pthread_t thread;
  auto const run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(0, pthread_create(&thread, &attributes, run, &work));
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace Quillon9::Testing
