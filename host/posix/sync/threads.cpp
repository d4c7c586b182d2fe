#include "common/sync/threads.h"

#include <sched.h>
#include <unistd.h>

#include <chrono>
#include <ctime>
#include <thread>

#include "common/calls/errors.h"
#include "common/kernel/handles.h"
#include "posix/sync/thread_object.h"
#include "posix/sync/thread_state.h"

namespace host {

HANDLE CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE start, LPVOID argument, DWORD flags,
                    LPDWORD id) {
  if (start == nullptr || (flags & ~CREATE_SUSPENDED) != 0) return Fail(ERROR_INVALID_PARAMETER, HANDLE{});
  const auto thread = std::make_shared<Thread>(start, argument, (flags & CREATE_SUSPENDED) != 0);
  HANDLE handle = InsertHandle(thread);
  if (handle == nullptr) return nullptr;
  if (!Thread::Start(thread)) {
    host::CloseHandle(handle);
    return Fail(ERROR_NOT_ENOUGH_MEMORY, HANDLE{});
  }
  if (id != nullptr) *id = thread->Id();
  return handle;
}

DWORD ResumeThread(HANDLE handle) {
  const auto thread = FindHandle<Thread>(handle);
  return thread == nullptr ? 0xFFFFFFFFu : thread->Resume();
}

BOOL TerminateThread(HANDLE handle, DWORD code) {
  const auto thread = FindHandle<Thread>(handle);
  if (thread == nullptr) return FALSE;
  return thread->EndUnlessResumed(code) ? TRUE : Fail(ERROR_NOT_SUPPORTED, FALSE);
}

BOOL GetExitCodeThread(HANDLE handle, LPDWORD code) {
  const auto thread = FindHandle<Thread>(handle);
  if (thread == nullptr) return FALSE;
  *code = thread->ExitCode();
  return TRUE;
}

DWORD GetCurrentThreadId() { return CurrentThread().id; }

DWORD GetCurrentProcessId() { return static_cast<DWORD>(getpid()); }

void Sleep(DWORD milliseconds) {
  if (milliseconds == 0) sched_yield();
  do {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
  } while (milliseconds == INFINITE);
}

DWORD GetTickCount() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace host
