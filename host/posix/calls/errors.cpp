#include "posix/calls/errors.h"

namespace host {

DWORD& ThreadError() {
  thread_local DWORD error = ERROR_SUCCESS;
  return error;
}

}  // namespace host

extern "C" DWORD WINAPI GetLastError(void) { return host::ThreadError(); }

extern "C" void WINAPI SetLastError(DWORD error) { host::ThreadError() = error; }
