#include "common/sync/threads.h"

#include "common/calls/errors.h"
#include "windows/kernel/real_handles.h"
#include "windows/sync/thread_table.h"

namespace host {

HANDLE CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE start, LPVOID argument, DWORD flags,
                    LPDWORD id) {
  if (start == nullptr || (flags & ~static_cast<DWORD>(CREATE_SUSPENDED)) != 0) {
    return Fail(ERROR_INVALID_PARAMETER, HANDLE{});
  }
  const HANDLE thread = ::CreateThread(nullptr, 0, start, argument, flags, id);
  if (thread != nullptr) NoteThread(NoteHandle(thread), (flags & CREATE_SUSPENDED) != 0);
  return thread;
}

DWORD ResumeThread(HANDLE thread) {
  TakeSuspended(thread);
  return ::ResumeThread(thread);
}

BOOL TerminateThread(HANDLE thread, DWORD code) {
  if (::GetThreadId(thread) == 0) return Fail(ERROR_INVALID_HANDLE, FALSE);
  return TakeSuspended(thread) ? ::TerminateThread(thread, code) : Fail(ERROR_NOT_SUPPORTED, FALSE);
}

BOOL GetExitCodeThread(HANDLE thread, LPDWORD code) { return ::GetExitCodeThread(thread, code); }

DWORD GetCurrentThreadId() { return ::GetCurrentThreadId(); }

DWORD GetCurrentProcessId() { return ::GetCurrentProcessId(); }

void Sleep(DWORD milliseconds) { ::Sleep(milliseconds); }

DWORD GetTickCount() { return ::GetTickCount(); }

}  // namespace host
