// The desktop's <windows.h> as the host, its tools and its tests see it: where a call differs between Windows CE and
// the desktop, the desktop's declaration is renamed away (common/calls/ce_calls.h declares the CE form).
#ifndef QXHOST_WINDOWS_INCLUDE_WINDOWS_H
#define QXHOST_WINDOWS_INCLUDE_WINDOWS_H

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
#include_next <windows.h>
#undef SetSystemPowerState
#undef SetWindowLongW
#undef GetWindowLongW

#endif
