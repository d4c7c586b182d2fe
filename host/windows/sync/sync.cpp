// Events, mutexes and critical sections are the system's own; the host notes whose they are.
#include "common/sync/sync.h"

#include "common/calls/errors.h"
#include "windows/kernel/named_mutexes.h"
#include "windows/kernel/object_names.h"
#include "windows/kernel/real_handles.h"

namespace host {

HANDLE CreateEventW(LPSECURITY_ATTRIBUTES, BOOL manual_reset, BOOL initial_state, LPCWSTR name) {
  const WideString system_name = SystemName(name);
  SetLastError(ERROR_SUCCESS);
  const HANDLE event = ::CreateEventW(nullptr, manual_reset, initial_state, NameOrNull(system_name));
  return system_name.empty() ? NoteHandle(event) : NoteNamedHandle(event);
}

BOOL EventModify(HANDLE event, DWORD function) {
  if (function == kEventSet) return ::SetEvent(event);
  return function == kEventReset ? ::ResetEvent(event) : Fail(ERROR_INVALID_PARAMETER, FALSE);
}

HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES, BOOL initial_owner, LPCWSTR name) {
  const WideString system_name = SystemName(name);
  SetLastError(ERROR_SUCCESS);
  const HANDLE mutex = ::CreateMutexW(nullptr, initial_owner, NameOrNull(system_name));
  if (system_name.empty()) return NoteHandle(mutex);
  NoteMutexHandle(mutex, name, initial_owner != FALSE && GetLastError() != ERROR_ALREADY_EXISTS);
  return NoteNamedHandle(mutex);
}

BOOL ReleaseMutex(HANDLE mutex) {
  const BOOL released = ::ReleaseMutex(mutex);
  if (released != FALSE) NoteReleased(mutex);
  return released;
}

void InitializeCriticalSection(LPCRITICAL_SECTION section) { ::InitializeCriticalSection(section); }
void DeleteCriticalSection(LPCRITICAL_SECTION section) { ::DeleteCriticalSection(section); }
void EnterCriticalSection(LPCRITICAL_SECTION section) { ::EnterCriticalSection(section); }
BOOL TryEnterCriticalSection(LPCRITICAL_SECTION section) { return ::TryEnterCriticalSection(section); }
void LeaveCriticalSection(LPCRITICAL_SECTION section) { ::LeaveCriticalSection(section); }

}  // namespace host
