// Threads and their time.
#ifndef QXHOST_COMMON_SYNC_THREADS_H
#define QXHOST_COMMON_SYNC_THREADS_H

#include <windows.h>

namespace host {

/// Starts a thread (CREATE_SUSPENDED: one that waits for ResumeThread). Its handle is signalled when it has ended, its
/// thread-local objects destroyed and its mutexes and windows given up. Closing the handle does not end it.
/// `stack` is ignored. Null: last error 8 (no room) or 87 (other flags).
HANDLE CreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stack, LPTHREAD_START_ROUTINE start, LPVOID argument,
                    DWORD flags, LPDWORD id);

/// The suspend count before the call (1 or 0); 0xFFFFFFFF with last error 6.
DWORD ResumeThread(HANDLE thread);

/// Ends a thread that has not been resumed yet. FALSE: last error 6, or 50 for any other thread.
BOOL TerminateThread(HANDLE thread, DWORD code);

/// 259 while the thread runs. FALSE: last error 6.
BOOL GetExitCodeThread(HANDLE thread, LPDWORD code);

DWORD GetCurrentThreadId();
DWORD GetCurrentProcessId();

void Sleep(DWORD milliseconds);

/// Milliseconds of a steady clock; wraps after 49.7 days.
DWORD GetTickCount();

}  // namespace host

#endif
