// COREDLL: serial ports, as the library calls them.
#include <windows.h>

#include "common/calls/coredll_call.h"
#include "common/ports/serial_calls.h"

using host::Buffer;
using host::CoreDllCall;
using host::kListed;
using host::kUnlisted;

extern "C" {

BOOL COREDLL(SetupComm)(HANDLE port, DWORD in_queue, DWORD out_queue) {
  return CoreDllCall("SetupComm", kListed, host::SetupComm, port, in_queue, out_queue);
}

BOOL COREDLL(GetCommState)(HANDLE port, LPDCB state) {
  return CoreDllCall("GetCommState", kUnlisted, host::GetCommState, port, Buffer(state));
}

BOOL COREDLL(SetCommState)(HANDLE port, LPDCB state) {
  return CoreDllCall("SetCommState", kListed, host::SetCommState, port, state);
}

BOOL COREDLL(SetCommTimeouts)(HANDLE port, LPCOMMTIMEOUTS timeouts) {
  return CoreDllCall("SetCommTimeouts", kListed, host::SetCommTimeouts, port, timeouts);
}

BOOL COREDLL(SetCommMask)(HANDLE port, DWORD mask) {
  return CoreDllCall("SetCommMask", kListed, host::SetCommMask, port, mask);
}

BOOL COREDLL(WaitCommEvent)(HANDLE port, LPDWORD mask, LPOVERLAPPED overlapped) {
  return CoreDllCall("WaitCommEvent", kUnlisted, host::WaitCommEvent, port, mask, overlapped);
}

BOOL COREDLL(ClearCommError)(HANDLE port, LPDWORD errors, LPCOMSTAT status) {
  return CoreDllCall("ClearCommError", kUnlisted, host::ClearCommError, port, errors, status);
}

BOOL COREDLL(PurgeComm)(HANDLE port, DWORD flags) {
  return CoreDllCall("PurgeComm", kListed, host::PurgeComm, port, flags);
}

}  // extern "C"
