#pragma once

#include <pthread.h>

#include "quillon9/export.h"

/// Wraps one POSIX mutex with default attributes: it is not recursive. Errors of the mutex calls are ignored. Any
/// thread may call; the object must outlive every lock held on it.
class QUILLON9_API CQNCriticalSection {
 public:
  CQNCriticalSection();
  virtual ~CQNCriticalSection();
  CQNCriticalSection(CQNCriticalSection const&) = delete;
  CQNCriticalSection& operator=(CQNCriticalSection const&) = delete;

  /// Lock the mutex; waits while another thread holds the lock.
  void Enter() { pthread_mutex_lock(&m_mutex); }
  /// Unlock the mutex that Enter() locked in the same thread.
  void Leave() { pthread_mutex_unlock(&m_mutex); }

 private:
  pthread_mutex_t m_mutex;
};

/// Holds a CQNCriticalSection for the life of a scope, so that an exception in between unlocks it too.
class CQNCriticalSectionLock {
 public:
  /// Enter \p section, which must outlive this object.
  explicit CQNCriticalSectionLock(CQNCriticalSection& section) : m_section(section) { m_section.Enter(); }
  ~CQNCriticalSectionLock() { m_section.Leave(); }
  CQNCriticalSectionLock(CQNCriticalSectionLock const&) = delete;
  CQNCriticalSectionLock& operator=(CQNCriticalSectionLock const&) = delete;

 private:
  CQNCriticalSection& m_section;
};
