// COREDLL: devices, serial ports and power, as the library calls them.
#include <windows.h>

#include "posix/ce_calls.h"
#include "posix/coredll_call.h"
#include "posix/devices.h"
#include "posix/power.h"
#include "posix/serial_calls.h"

using host::Buffer;
using host::CoreDllCall;
using host::FailsWith;
using host::kListed;
using host::kUnlisted;
using host::ListedOn;

extern "C" {

HANDLE CreateFileW(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                   DWORD flags, HANDLE template_file) {
  return CoreDllCall("CreateFileW", kListed, FailsWith::kMinusOne, host::CreateFileW, name, access, share, security,
                     disposition, flags, template_file);
}

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD read, LPOVERLAPPED overlapped) {
  return CoreDllCall("ReadFile", ListedOn(file), host::ReadFile, file, Buffer(buffer), bytes, read, overlapped);
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD written, LPOVERLAPPED overlapped) {
  return CoreDllCall("WriteFile", ListedOn(file), host::WriteFile, file, buffer, bytes, written, overlapped);
}

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

DWORD SetSystemPowerState(LPCWSTR state_name, DWORD state_flags, DWORD options) {
  return CoreDllCall("SetSystemPowerState", kListed, FailsWith::kErrorCode, host::SetSystemPowerState, state_name,
                     state_flags, options);
}

void SystemIdleTimerReset(void) { CoreDllCall("SystemIdleTimerReset", kListed, host::SystemIdleTimerReset); }

}  // extern "C"
