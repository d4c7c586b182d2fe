#include <windows.h>

namespace {

// The calling thread's.
DWORD& ThreadError() {
  thread_local DWORD error = ERROR_SUCCESS;
  return error;
}

}  // namespace

extern "C" DWORD WINAPI GetLastError(void) { return ThreadError(); }

extern "C" void WINAPI SetLastError(DWORD error) { ThreadError() = error; }
