// Calls that Windows CE has in another form than desktop Windows, or alone; <windows.h> leaves them out.
#ifndef QXHOST_COMMON_CALLS_CE_CALLS_H
#define QXHOST_COMMON_CALLS_CE_CALLS_H

#include <windows.h>

extern "C" {

/// function: 2 resets the event, 3 sets it.
DECLSPEC_IMPORT BOOL WINAPI EventModify(HANDLE event, DWORD function);
DECLSPEC_IMPORT DWORD WINAPI SetSystemPowerState(LPCWSTR state_name, DWORD state_flags, DWORD options);
DECLSPEC_IMPORT void WINAPI SystemIdleTimerReset(void);
/// index: -4, the window's procedure, or -21, its user value.
DECLSPEC_IMPORT LONG_PTR WINAPI GetWindowLongW(HWND window, int index);
/// Returns the value before.
DECLSPEC_IMPORT LONG_PTR WINAPI SetWindowLongW(HWND window, int index, LONG_PTR value);
/// name: a procedure's name, or MAKEINTRESOURCEW(ordinal).
DECLSPEC_IMPORT FARPROC WINAPI GetProcAddressW(HMODULE module, LPCWSTR name);

}  // extern "C"

#endif
