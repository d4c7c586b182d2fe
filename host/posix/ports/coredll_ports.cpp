// COREDLL: serial ports, as the library calls them.
#include <windows.h>

#include "posix/calls/coredll_call.h"
#include "posix/ports/serial_calls.h"

using host::Buffer;
using host::CoreDllCall;
using host::kListed;
using host::kUnlisted;

extern "C" {

BOOL SetupComm(HANDLE port, DWORD in_queue, DWORD out_queue) {
  return CoreDllCall("SetupComm", kListed, host::SetupComm, port, in_queue, out_queue);
}

BOOL GetCommState(HANDLE port, LPDCB state) {
  return CoreDllCall("GetCommState", kUnlisted, host::GetCommState, port, Buffer(state));
}

BOOL SetCommState(HANDLE port, LPDCB state) {
  return CoreDllCall("SetCommState", kListed, host::SetCommState, port, state);
}

BOOL SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts) {
  return CoreDllCall("SetCommTimeouts", kListed, host::SetCommTimeouts, port, timeouts);
}

BOOL SetCommMask(HANDLE port, DWORD mask) { return CoreDllCall("SetCommMask", kListed, host::SetCommMask, port, mask); }

BOOL WaitCommEvent(HANDLE port, LPDWORD mask, LPOVERLAPPED overlapped) {
  return CoreDllCall("WaitCommEvent", kUnlisted, host::WaitCommEvent, port, mask, overlapped);
}

BOOL ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status) {
  return CoreDllCall("ClearCommError", kUnlisted, host::ClearCommError, port, errors, status);
}

BOOL PurgeComm(HANDLE port, DWORD flags) { return CoreDllCall("PurgeComm", kListed, host::PurgeComm, port, flags); }

}  // extern "C"
