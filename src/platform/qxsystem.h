// The instrument's system library (QxSystem.dll), imported by ordinal only. Each call is named here by its role.
#ifndef QXCM_PLATFORM_QXSYSTEM_H
#define QXCM_PLATFORM_QXSYSTEM_H

#include <cstdint>

#include "platform/windows_api.h"

extern "C" {

/// Ordinal 63. Hands back the application's window that receives the instrument's events, and the number of the
/// message that carries them (wParam = the event mask). Leaves both as they are when there is no such window.
DECLSPEC_IMPORT std::int32_t WINAPI QxSystemGetEventWindow(HWND* window, UINT* message);

}  // extern "C"

#endif
