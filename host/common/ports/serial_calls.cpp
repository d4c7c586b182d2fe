#include "common/ports/serial_calls.h"

#include "common/calls/errors.h"
#include "common/ports/serial_port.h"

namespace host {
namespace {

// Calls `operation` on the port behind the handle.
template <class Operation>
BOOL OnPort(HANDLE handle, bool good_arguments, Operation operation) {
  if (!good_arguments) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const auto port = FindStream<SerialPort>(handle);
  return port == nullptr ? FALSE : operation(*port);
}

}  // namespace

BOOL SetupComm(HANDLE port, DWORD, DWORD) {
  return OnPort(port, true, [](SerialPort&) { return TRUE; });
}

BOOL GetCommState(HANDLE port, LPDCB state) {
  return OnPort(port, state != nullptr, [=](SerialPort& serial) { return serial.GetState(state); });
}

BOOL SetCommState(HANDLE port, LPDCB state) {
  return OnPort(port, state != nullptr, [=](SerialPort& serial) { return serial.SetState(*state); });
}

BOOL SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts) {
  return OnPort(port, timeouts != nullptr, [=](SerialPort& serial) { return serial.SetTimeouts(*timeouts); });
}

BOOL SetCommMask(HANDLE port, DWORD mask) {
  return OnPort(port, true, [=](SerialPort& serial) { return serial.SetMask(mask); });
}

BOOL WaitCommEvent(HANDLE port, LPDWORD mask, LPOVERLAPPED overlapped) {
  const bool good = mask != nullptr && overlapped == nullptr;
  return OnPort(port, good, [=](SerialPort& serial) { return serial.WaitEvent(mask); });
}

BOOL ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status) {
  return OnPort(port, true, [=](SerialPort& serial) { return serial.ClearError(errors, status); });
}

BOOL PurgeComm(HANDLE port, DWORD flags) {
  return OnPort(port, true, [=](SerialPort& serial) { return serial.Purge(flags); });
}

}  // namespace host
