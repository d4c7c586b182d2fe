// The platform's calls on serial ports. Handles that are not open ports: error 6; null structures: error 87.
#ifndef QXHOST_COMMON_PORTS_SERIAL_CALLS_H
#define QXHOST_COMMON_PORTS_SERIAL_CALLS_H

#include <windows.h>

namespace host {

/// The queue sizes are taken as wishes: the tty has its own.
BOOL SetupComm(HANDLE port, DWORD in_queue, DWORD out_queue);
BOOL GetCommState(HANDLE port, LPDCB state);
BOOL SetCommState(HANDLE port, LPDCB state);
BOOL SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts);
BOOL SetCommMask(HANDLE port, DWORD mask);
BOOL WaitCommEvent(HANDLE port, LPDWORD mask, LPOVERLAPPED overlapped);
BOOL ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status);
BOOL PurgeComm(HANDLE port, DWORD flags);

}  // namespace host

#endif
