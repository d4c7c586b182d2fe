// The library's locks: a re-entrant critical section, and its guard.
#ifndef QXCM_PLATFORM_LOCK_H
#define QXCM_PLATFORM_LOCK_H

#include "platform/thread_annotations.h"
#include "platform/windows_api.h"

namespace qxcm {

/// A critical section. The thread that holds it may enter again and leaves as often.
class QXCM_CAPABILITY Lock {
 public:
  Lock() { InitializeCriticalSection(&section_); }
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;
  ~Lock() { DeleteCriticalSection(&section_); }

  void Enter() QXCM_ACQUIRE() { EnterCriticalSection(&section_); }
  void Leave() QXCM_RELEASE() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION section_;
};

/// Holds a lock (Lock, WindowSafeLock, NamedMutex) for a scope.
template <class AnyLock>
class QXCM_SCOPED_CAPABILITY Guard {
 public:
  explicit Guard(AnyLock& lock) QXCM_ACQUIRE(lock) : lock_(lock) { lock_.Enter(); }
  Guard(const Guard&) = delete;
  Guard& operator=(const Guard&) = delete;
  ~Guard() QXCM_RELEASE() { lock_.Leave(); }

 private:
  AnyLock& lock_;
};

}  // namespace qxcm

#endif
