// The only place that includes <windows.h>: the platform's calls under their documented names.
//
// The library is written for Windows CE. Where a call differs on desktop Windows, the desktop's declaration is renamed
// away while its header is read and the CE form is declared here; wide literals are written TEXT("...") and wide text
// is 16 bits on every host.
#ifndef QXCM_PLATFORM_WINDOWS_API_H
#define QXCM_PLATFORM_WINDOWS_API_H

#ifndef UNICODE
#define UNICODE
#endif
#ifndef _UNICODE
#define _UNICODE
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

#define SetSystemPowerState DesktopSetSystemPowerState
#define SetWindowLongW DesktopSetWindowLongW
#define GetWindowLongW DesktopGetWindowLongW
#include <windows.h>
#undef SetSystemPowerState
#undef SetWindowLongW
#undef GetWindowLongW
// The desktop's headers map some names of ours to their wide-text calls.
#undef SendMessage
#undef SetWindowLong
#undef GetWindowLong

extern "C" {

// Events: on CE, setting and resetting are inline wrappers around this call.
constexpr DWORD kEventReset = 2;
constexpr DWORD kEventSet = 3;
DECLSPEC_IMPORT BOOL WINAPI EventModify(HANDLE event, DWORD function);

// Power management.
constexpr DWORD kPowerStateOn = 0x00010000;
constexpr DWORD kPowerStateSuspend = 0x00200000;
constexpr DWORD kPowerStateReset = 0x00800000;
constexpr DWORD kPowerForce = 0x00001000;
DECLSPEC_IMPORT DWORD WINAPI SetSystemPowerState(LPCWSTR state_name, DWORD state_flags, DWORD options);
DECLSPEC_IMPORT void WINAPI SystemIdleTimerReset(void);

// Reads and replaces a window's procedure (index -4); wide enough for a pointer.
constexpr int kWindowProcedure = -4;
DECLSPEC_IMPORT LONG_PTR WINAPI GetWindowLongW(HWND window, int index);
DECLSPEC_IMPORT LONG_PTR WINAPI SetWindowLongW(HWND window, int index, LONG_PTR value);

// A procedure of a loaded library by its name or MAKEINTRESOURCEW(ordinal); the desktop's call takes narrow names only.
DECLSPEC_IMPORT FARPROC WINAPI GetProcAddressW(HMODULE module, LPCWSTR name);

}  // extern "C"

#endif
