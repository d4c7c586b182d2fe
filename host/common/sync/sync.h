// Events, mutexes, critical sections and the waits for them.
//
// Named events and mutexes are shared with every process of the same namespace (named_objects.h).
#ifndef QXHOST_COMMON_SYNC_SYNC_H
#define QXHOST_COMMON_SYNC_SYNC_H

#include <windows.h>

namespace host {

/// Creates or opens an event. Null: last error 6 (the name is another kind of object's), 8 (no room), 206 (name too
/// long). Else the last error is 183 when the event existed (the other arguments are then ignored) and 0 otherwise.
HANDLE CreateEventW(LPSECURITY_ATTRIBUTES security, BOOL manual_reset, BOOL initial_state, LPCWSTR name);

constexpr DWORD kEventReset = 2;
constexpr DWORD kEventSet = 3;

/// Resets or sets the event. FALSE: last error 6 (no event) or 87 (another function).
BOOL EventModify(HANDLE event, DWORD function);

/// Creates or opens a mutex; last errors as for events. Its owner may take it again and releases it as often. A mutex
/// whose owning thread or process has ended is taken by the next waiter, who is told by WAIT_ABANDONED.
HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES security, BOOL initial_owner, LPCWSTR name);

/// FALSE: last error 6 (no mutex) or 288 (not the calling thread's).
BOOL ReleaseMutex(HANDLE mutex);

/// Waits for an event, a mutex or the end of a thread. WAIT_FAILED: last error 6.
DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds);

/// Waits for one of several objects (the lowest index counts when several are ready), or for all of them at once.
/// WAIT_FAILED: last error 6 (a handle) or 87 (no objects, or more than MAXIMUM_WAIT_OBJECTS).
DWORD WaitForMultipleObjects(DWORD count, const HANDLE* objects, BOOL all, DWORD milliseconds);

/// The same for one of at most 63 objects, which may be none, or input for the calling thread's windows: then the
/// result is WAIT_OBJECT_0 + count. Posted messages count once until they are looked for, unless the flags hold
/// MWMO_INPUTAVAILABLE; sent messages count as long as they wait.
DWORD MsgWaitForMultipleObjectsEx(DWORD count, const HANDLE* objects, DWORD milliseconds, DWORD wake_mask, DWORD flags);

void InitializeCriticalSection(LPCRITICAL_SECTION section);
void DeleteCriticalSection(LPCRITICAL_SECTION section);
void EnterCriticalSection(LPCRITICAL_SECTION section);
BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section);
void LeaveCriticalSection(LPCRITICAL_SECTION section);

}  // namespace host

#endif
